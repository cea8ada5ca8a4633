// The sort key of a short 8-bit text of plain letters and digits of the first selector, which
// most words are. It is what NxWriteTextKeyByLevels writes, put where it belongs.
#ifndef NXPLAINKEY_H
#define NXPLAINKEY_H

#include "base/nxkeywriter.h"
#include "collation/nxordertable.h"

// The sort bytes of a character (NxOrderTable::sortBytes) are what a key has of it: the letter's
// byte, and above it these marks.
inline constexpr unsigned kSortAccent = 0x1F;    // its accent
inline constexpr unsigned kSortUnsuited = 0x20;  // the character takes more than that
inline constexpr unsigned kSortAccented = 0x40;
inline constexpr unsigned kSortCapital = 0x80;

/// Writes the key of a text of `size` bytes, before which there are kBeforePlainText more that can
/// be read, in `room` bytes. Answers the bytes of the key; 0, whatever has been written into the
/// room, for another text or where the key might not fit.
[[gnu::regparm(3)]] unsigned NxWritePlainKey(const NxOrderTable& table, const char* text, unsigned size,
                                             unsigned char* key, unsigned long room);
inline constexpr unsigned kBeforePlainText = 4;

/// The same of a text up to its zero character, put into a writer; false for 0.
bool NxPutPlainKey(const NxOrderTable& table, const char* text, NxKeyWriter& key);

#endif
