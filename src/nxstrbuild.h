// What the files of NxString share: texts measured in 32 bits, buffers, and the one
// routine that every edit goes through. NxString's own members pass 16-bit counts,
// in which a long text would wrap around.
#ifndef NXSTRBUILD_H
#define NXSTRBUILD_H

#include <cstring>

#include "nxalloc.h"
#include "nxlang.h"
#include "nxstring.h"

inline constexpr unsigned char kDefaultByteOrder = 255;  // in parameters: this machine's order

/// A 16-bit unit at any address.
inline unsigned short NxUnitAt(const char* p) {
  unsigned short unit;
  std::memcpy(&unit, p, sizeof unit);
  return unit;
}

/// The character at p of a text with characters of the width.
inline unsigned short NxCharAt(const char* p, unsigned width) {
  return width == 1 ? static_cast<unsigned char>(*p) : NxUnitAt(p);
}

/// Characters before the first zero character, or limit when it comes first.
unsigned long NxTextLength(const char* text, unsigned width, unsigned long limit = ~0UL);

/// A new buffer of the first `bytes` bytes of text and a terminator of the width.
inline char* NxCopyText(const char* text, unsigned long bytes, unsigned width) {
  char* buffer = NxNewArray<char>(bytes + width);
  if (!buffer) return nullptr;
  std::memcpy(buffer, text, bytes);
  std::memset(buffer + bytes, 0, width);
  return buffer;
}

/// Takes buffer (of size bytes) in place of the present one.
inline void NxAttach(NxString& s, char* buffer, unsigned long size) {
  delete[] s._pBuffer;
  s._pBuffer = buffer;
  s._nSize = static_cast<unsigned short>(size);
}

enum class NxBuildMode : unsigned short { kOverwrite = 1, kInsert = 2, kCompose = 3 };

/// A source text and where it goes; positions and counts in characters.
struct NxPiece {
  const char* text;           // null: zero characters are put in its place
  unsigned char codeSet;      //
  unsigned long length;       // characters taken
  unsigned long destPos = 0;  //
  unsigned long start = 0;    // the first character taken
  unsigned long repeat = 1;   // other than 1: copies of the first character of text
  unsigned char byteOrder = kDefaultByteOrder;
};

/// NxString::BuildString in 32 bits. False when the string stayed as it was because
/// of an overflow, which is reported, or for want of memory.
bool NxBuildText(NxString& s, const NxPiece& piece, NxBuildMode mode);

/// Makes s a text of n characters, in a buffer also when n is 0; false as above.
inline bool NxComposeText(NxString& s, const char* text, unsigned char codeSet, unsigned long n,
                          unsigned char byteOrder = kDefaultByteOrder) {
  return NxBuildText(s, {text, codeSet, n, 0, 0, 1, byteOrder}, NxBuildMode::kCompose);
}

/// Converts at most limit characters, up to the first zero character, from src to
/// dst, which has room for them. Returns how many. No terminator is written.
unsigned long NxMapText(unsigned char srcCodeSet, const char* src, unsigned char dstCodeSet, char* dst,
                        unsigned long limit);

/// Where an overflow is reported to come from.
inline constexpr int kOverflowInBuild = 1361;
inline constexpr int kOverflowInMapping = 1150;
/// Reports a text too long for its buffer, unless the configuration says not to.
void NxReportOverflow(int line);

#endif
