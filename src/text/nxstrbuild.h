// What the files of NxString share: texts measured in 32 bits, buffers, and the one
// routine that every edit goes through. NxString's own members pass 16-bit counts,
// in which a long text would wrap around.
#ifndef NXSTRBUILD_H
#define NXSTRBUILD_H

#include <cstring>

#include "base/nxalloc.h"
#include "nxlang.h"
#include "nxstring.h"
#include "text/nxchartext.h"

/// As a count of characters: all of them. Also 65535, where the count is unsigned.
inline constexpr short kWholeText = -1;

/// The character at p of a text with characters of the width.
inline unsigned short NxCharAt(const char* p, unsigned width) {
  return width == 1 ? static_cast<unsigned char>(*p) : NxUnitAt<unsigned short>(p);
}

/// Characters before the first zero character, or limit when it comes first.
unsigned long NxLimitedLength(const char* text, unsigned width, unsigned long limit);
inline unsigned long NxTextLength(const char* text, unsigned width) {
  return width == 1 ? std::strlen(text) : NxLimitedLength(text, width, ~0UL);
}

/// The first and the last Size of n bytes.
template <unsigned long Size>
inline void NxCopyBlocks(char* dst, const char* src, unsigned long n) {
  char first[Size], last[Size];
  std::memcpy(first, src, Size);
  std::memcpy(last, src + n - Size, Size);
  std::memcpy(dst, first, Size);
  std::memcpy(dst + n - Size, last, Size);
}

/// std::memcpy for texts, most of which are short: no call for up to 16 bytes.
inline void NxCopyBytes(void* to, const void* from, unsigned long n) {
  auto* dst = static_cast<char*>(to);
  const auto* src = static_cast<const char*>(from);
  if (n > 16) {
    std::memcpy(dst, src, n);
  } else if (n >= 8) {  // two blocks that overlap
    NxCopyBlocks<8>(dst, src, n);
  } else if (n >= 4) {
    NxCopyBlocks<4>(dst, src, n);
  } else {
    for (unsigned long i = 0; i < n; ++i) dst[i] = src[i];
  }
}

/// A zero character at p.
inline void NxPutTerminator(char* p, unsigned width) {
  p[0] = 0;
  if (width == 2) p[1] = 0;
}

/// Takes buffer (of size bytes) in place of the present one.
inline void NxAttach(NxString& s, char* buffer, unsigned long size) {
  delete[] s._pBuffer;
  s._pBuffer = buffer;
  s._nSize = static_cast<unsigned short>(size);
}

/// A buffer of size bytes for s: the present one where it has as many or a few more, which
/// spares the allocation where a string takes text after text. Null, with s as it was, for
/// want of memory.
inline char* NxBufferFor(NxString& s, unsigned long size) {
  constexpr unsigned long kFew = 16;  // about what an allocation is rounded up to
  if (s._pBuffer && s._nSize - size < kFew) {
    s._nSize = static_cast<unsigned short>(size);
    return s._pBuffer;
  }
  char* buffer = NxNewArray<char>(size);
  if (buffer) NxAttach(s, buffer, size);
  return buffer;
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

/// Makes s the first n characters of a text in another or in its own buffer; null leaves
/// no buffer. The code set becomes that of the text, the language the default one.
void NxAssignText(NxString& s, const char* text, unsigned char codeSet, unsigned long n);

/// Appends n characters of the default 8-bit code set that are no part of s.
void NxAppendText(NxString& s, const char* text, unsigned long n);

/// Whether n characters of the default 8-bit code set behind the `old` ones of s need no
/// conversion and are not too many.
inline bool NxTakesAsItIs(const NxString& s, unsigned long old, unsigned long n) {
  return s._nCodeSet == NxLanguageContext::GetDefault8CodeSet() && old + n < kMaxStringBytes;
}

/// Makes room for n such characters, with the terminator behind them. Returns the place;
/// null, with s as it was, for want of memory.
inline char* NxRoomBehind(NxString& s, unsigned long old, unsigned long n) {
  char* buffer = NxNewArray<char>(old + n + 1);
  if (!buffer) return nullptr;
  if (old != 0) std::memcpy(buffer, s._pBuffer, old);
  buffer[old + n] = 0;
  NxAttach(s, buffer, old + n + 1);
  return buffer + old;
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
