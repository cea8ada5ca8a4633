// The stored image of a string, and of a key of one, as it lies in a buffer of known
// length: the one place that takes its head apart.
//
//   current   N (16 bits)  code set  language  text  0x00 0xFF
//   early     N (16 bits)  text 0x00 [text 0x00 ...]
//
// N counts the bytes that follow it. An image whose last byte is 0 is an early one.
#ifndef NXSTORED_H
#define NXSTORED_H

#include <algorithm>
#include <limits>

#include "base/nxbytes.h"

/// Bit of the language byte of a key that stops short of its string because the
/// collation selector changes there.
inline constexpr unsigned char kMixedCollation = 0x80;

/// What an image's head says, as far as the buffer holds it: the constructor and the
/// members that are not static never read past the buffer, whatever the bytes say.
struct NxStoredString {
  static constexpr unsigned long kLengthSize = 2;   // N itself
  static constexpr unsigned long kHeadSize = 4;     // N, code set, language
  static constexpr unsigned long kTrailerSize = 2;  // of a current image
  static constexpr unsigned long kEmptyLength = 4;  // N of an empty string
  static constexpr unsigned long kEmptySize = kLengthSize + kEmptyLength;
  static constexpr unsigned long kLongestLength = 65535;      // the largest N
  static constexpr unsigned char kLastByte = 0xFF;            // of a current image
  static constexpr unsigned short kTrailer = kLastByte << 8;  // read as one number, low byte first
  static constexpr unsigned long kNoEnd = std::numeric_limits<unsigned long>::max();  // a length not stated

  // Fields of an image whose head is known to be there. `format` is a format byte.

  static unsigned short LengthOf(const void* image, unsigned char format) {
    return NxReadShort(image, format);
  }
  static unsigned char CodeSetOf(const void* image) {
    return NxUnitAt<unsigned char>(At(image, kLengthSize));
  }
  static unsigned char LanguageOf(const void* image) {
    return NxUnitAt<unsigned char>(At(image, kLengthSize + 1));
  }
  /// Code set (low byte) and language as one number.
  static unsigned short KindOf(const void* image) { return NxUnitAt<unsigned short>(At(image, kLengthSize)); }
  static const char* TextOf(const void* image) { return At(image, kHeadSize); }
  /// Whether an image with the length field n ends as early ones do. Only its last byte
  /// is read; with an n of 0 that is the second byte of the field.
  static bool EndsEarly(const void* image, unsigned long n) { return *At(image, kLengthSize + n - 1) == 0; }

  /// Whether a buffer of `length` bytes, 0 for no limit, holds a whole image that ends as current
  /// ones do, with 00 FF.
  static bool IsWhole(const void* image, unsigned long length, unsigned char format) {
    const unsigned long last = length - 1;  // without a limit: beyond every image
    if (last < kEmptySize - 1) return false;
    const unsigned long n = LengthOf(image, format);
    if (n < kEmptyLength || last <= n) return false;
    return NxUnitAt<unsigned short>(At(image, n)) == kTrailer;
  }

  static void PutHead(void* image, unsigned long n, unsigned char codeSet, unsigned char language,
                      unsigned char format) {
    auto* bytes = static_cast<unsigned char*>(image);
    NxWriteShort(bytes, static_cast<unsigned short>(n), format);
    bytes[kLengthSize] = codeSet;
    bytes[kLengthSize + 1] = language;
  }

  const unsigned char* bytes = nullptr;
  unsigned long length = 0;    // bytes of the buffer
  unsigned short n = 0;        // the image's length field
  unsigned char codeSet = 0;   // 0 for an early image
  unsigned char language = 0;  // 0 for an early image
  bool early = false;

  NxStoredString() = default;
  /// A buffer or an image too short for a field reads as 0 there.
  NxStoredString(const void* image, unsigned long bufferLength, unsigned char format)
      : bytes(static_cast<const unsigned char*>(image)), length(bufferLength) {
    if (length < kLengthSize) return;
    n = LengthOf(image, format);
    early = n > 0 && Fits() && EndsEarly(image, n);
    if (early || length < kHeadSize || Size() < kHeadSize) return;
    codeSet = CodeSetOf(image);
    language = LanguageOf(image);
  }

  unsigned long Size() const { return kLengthSize + n; }
  /// A byte of the image; 0 where its length or the buffer's says that there is none.
  unsigned char ByteAt(unsigned long offset) const {
    return offset < Size() && offset < length ? bytes[offset] : 0;
  }
  bool Fits() const { return length >= Size(); }

  const unsigned char* Text() const { return bytes + std::min(length, early ? kLengthSize : kHeadSize); }
  /// Bytes of text in the buffer, without the terminator.
  unsigned long TextBytes() const {
    if (early) return n - 1UL;
    if (n <= kEmptyLength || length <= kHeadSize) return 0;
    return std::min(n - kEmptyLength, length - kHeadSize);
  }
  /// Whether the buffer holds the byte behind the text: only the last byte of the
  /// image may be missing.
  bool HasTerminator() const { return length >= Size() - 1 && n >= kEmptyLength - (early ? 3 : 0); }

 private:
  static const char* At(const void* image, unsigned long offset) {
    return static_cast<const char*>(image) + offset;
  }
};

#endif
