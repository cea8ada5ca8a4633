// A stored string image as it lies in a buffer of known length: the one place that
// takes its head apart. Nothing here reads past the buffer, whatever the bytes say.
//
//   current   N (16 bits)  code set  language  text  0x00 0xFF
//   early     N (16 bits)  text 0x00 [text 0x00 ...]
//
// N counts the bytes that follow it. An image whose last byte is 0 is an early one.
#ifndef NXSTORED_H
#define NXSTORED_H

#include <algorithm>

#include "nxbase.h"

/// Bit of the language byte of a key that stops short of its string because the
/// collation selector changes there.
inline constexpr unsigned char kMixedCollation = 0x80;

struct NxStoredString {
  static constexpr unsigned long kHeadSize = 4;     // length, code set, language
  static constexpr unsigned long kEmptyLength = 4;  // N of an empty string
  static constexpr unsigned long kEmptySize = 6;    // bytes of an empty string's image

  const unsigned char* bytes = nullptr;
  unsigned long length = 0;    // bytes of the buffer
  unsigned short n = 0;        // the image's length field
  unsigned char codeSet = 0;   // 0 for an early image
  unsigned char language = 0;  // 0 for an early image
  bool early = false;

  NxStoredString() = default;
  /// `format` is a format code. A buffer too short for a field reads as 0 there.
  NxStoredString(const void* image, unsigned long bufferLength, unsigned char format)
      : bytes(static_cast<const unsigned char*>(image)), length(bufferLength) {
    if (length < 2) return;
    // Here rather than by ShortStore: every key and bound begins with it.
    n = static_cast<unsigned short>(format == kFormatBigEndian ? bytes[0] << 8 | bytes[1]
                                                               : bytes[1] << 8 | bytes[0]);
    early = n > 0 && Fits() && bytes[n + 1UL] == 0;
    if (early || length < kHeadSize) return;
    codeSet = bytes[2];
    language = bytes[3];
  }

  unsigned long Size() const { return n + 2UL; }
  bool Fits() const { return length >= Size(); }

  const unsigned char* Text() const { return bytes + std::min(length, early ? 2UL : kHeadSize); }
  /// Bytes of text in the buffer, without the terminator.
  unsigned long TextBytes() const {
    if (early) return n - 1UL;
    if (n <= kEmptyLength || length <= kHeadSize) return 0;
    return std::min(n - kEmptyLength, length - kHeadSize);
  }
  /// Whether the buffer holds the byte behind the text: only the last byte of the
  /// image may be missing.
  bool HasTerminator() const { return length + 1 >= Size() && n >= kEmptyLength - (early ? 3 : 0); }
};

#endif
