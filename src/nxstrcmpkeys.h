// The comparison of two whole index keys of texts where they lie in their buffers.
#ifndef NXSTRCMPKEYS_H
#define NXSTRCMPKEYS_H

/// Compares two images of order-value text as StringCompare does for one element.
/// False, with `result` and `error` unset, where it cannot serve: an image that is
/// none of these or not whole, keys of different selectors, wildcards, order values
/// alone. Lengths are in bytes, 0 meaning no limit.
bool NxCompareKeyImages(const char* image1, unsigned long length1, const char* image2, unsigned long length2,
                        unsigned char format, unsigned short options, long& result, int& error);

#endif
