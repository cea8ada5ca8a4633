// The hash of a text that ends with a zero and whose length is known.
#ifndef NXSTRHASH_H
#define NXSTRHASH_H

/// HashString of a whole text of 8-bit characters, `length` of them before its zero, unless it
/// has a zero before that, too.
unsigned long NxHashBytes(unsigned char cs, unsigned char lang, const char* text, unsigned long length,
                          unsigned char byteOrder);

#endif
