// The sort key of a text: bytes that order, compared as unsigned bytes, as NxStrCmp orders
// the texts with wildcards off.
//
// NxStrCmp decides by levels: base letters from the left, then accents from the right, then
// case from the left, then spaces and symbols from the right. The key has the levels one
// behind the other. A level that says nothing is left out, and the byte that stands in its
// place tells that: it orders as the level would. docs/formats.md has the bytes.
#ifndef NXTEXTKEY_H
#define NXTEXTKEY_H

#include "base/nxkeywriter.h"
#include "collation/nxordertable.h"

/// A text to make a key of, up to its zero character. A null text is an empty one.
struct NxKeyText {
  unsigned char codeSet;
  unsigned char language;  // 254, or 0 with code set 254: a null value
  const char* text;
  unsigned char byteOrder;  // format code of 16-bit units
};

/// Writes the key; false when memory was short.
bool NxWriteTextKey(const NxKeyText& text, NxKeyWriter& key);

/// The same without the short road for plain words: of a text that is not null and has a code
/// set.
bool NxWriteTextKeyByLevels(const NxKeyText& text, NxKeyWriter& key);

/// Writes the base letters that every text begins with that a term selects or is compared
/// with: those of the term up to its first wildcard. Answers whether there is a wildcard.
/// All keys with these base letters lie from what is written up to kAfterBaseLetters behind it.
bool NxWriteTextKeyPrefix(const NxKeyText& term, bool wildcards, NxKeyWriter& key);

/// A byte above all that may follow the last base letter of a key.
inline constexpr unsigned char kAfterBaseLetters = 0x06;

#endif
