// What the two alphabetic string types share: the byte maps, the walk over a text
// key by key, and the look at a stored image. The types differ by their map and by
// a few rules that name kFoldsCase.
#ifndef NXALPHA_H
#define NXALPHA_H

#include <climits>
#include <cstring>

#include "nxbase.h"
#include "nxcistr.h"
#include "nxcodset.h"
#include "nxistr.h"

// ---------------------------------------------------------------------------
// Byte maps

/// Sort key of every byte of the disk code set, and what comes with it: 0, an
/// accent weight below kFirstSecondKey, or a second key.
struct NxByteMap {
  unsigned char key[256];
  unsigned char extra[256];
};

inline constexpr unsigned char kFirstSecondKey = 9;

/// The key and extra of one byte.
struct NxMappedByte {
  unsigned char key;
  unsigned char extra;
};

/// A map from what differs between the two: the keys from 0x40 to 0x7F, the keys and
/// extras from 0xC0 to 0xFF, and the lower-case ligature oe.
constexpr NxByteMap NxMakeByteMap(const unsigned char (&from40to7F)[64],
                                  const unsigned char (&fromC0toFF)[64],
                                  const unsigned char (&overC0toFF)[64], NxMappedByte lowerOe) {
  NxByteMap map = {};
  for (int c = 0; c < 0x40; ++c) {
    map.key[c] = static_cast<unsigned char>(c);
    map.key[0x40 + c] = from40to7F[c];
    map.key[0x80 + c] = static_cast<unsigned char>(c < 0x20 ? c + 0xE0 : c + 0x90);
    map.key[0xC0 + c] = fromC0toFF[c];
    map.extra[0xC0 + c] = overC0toFF[c];
  }
  map.key[0x8C] = 0x90;  // ligature OE
  map.extra[0x8C] = 0x69;
  map.key[0x9C] = lowerOe.key;
  map.extra[0x9C] = lowerOe.extra;
  map.key[0x9F] = 0xB3;  // Y with diaeresis
  map.extra[0x9F] = 0x01;
  return map;
}

/// How a type differs from its twin.
template <class Text>
struct NxAlphaRules;

template <>
struct NxAlphaRules<NxIString> {
  static constexpr bool kFoldsCase = false;
  static const NxByteMap kMap;
};

template <>
struct NxAlphaRules<NxCaseIString> {
  static constexpr bool kFoldsCase = true;
  static const NxByteMap kMap;
};

// ---------------------------------------------------------------------------
// Texts

/// Bytes in [at, end). A text in it ends with its zero or at `end`, whichever comes
/// first; a null `end` is no limit.
struct NxTextSpan {
  const unsigned char* at;
  const unsigned char* end;

  bool HasByte() const { return at != end; }
  unsigned long Size() const { return static_cast<unsigned long>(end - at); }  // needs an end
};

/// The text that a value holds, terminator included; empty without one.
inline NxTextSpan NxTextOf(const char* text) {
  if (!text) text = "";
  auto* bytes = reinterpret_cast<const unsigned char*>(text);
  return {bytes, bytes + std::strlen(text) + 1};
}

/// Takes the first text out of `texts`, without its terminator; `texts` goes on
/// behind it. `texts` needs an end.
inline NxTextSpan NxNextText(NxTextSpan& texts) {
  auto* zero =
      texts.HasByte() ? static_cast<const unsigned char*>(std::memchr(texts.at, 0, texts.Size())) : nullptr;
  const NxTextSpan text = {texts.at, zero ? zero : texts.end};
  texts.at = zero ? zero + 1 : texts.end;
  return text;
}

/// Delivers the sort keys of a text one by one, then zeros.
class NxKeyReader {
 public:
  /// `form`: bits of nxistr.h. `accents`: accents raise the keys and second keys are
  /// not delivered.
  NxKeyReader(const NxByteMap& map, NxTextSpan text, unsigned char form, bool accents = false)
      : map_(map), text_(text), form_(form), accents_(accents) {}

  /// No key is left. A pending second key is one.
  bool AtEnd() const { return !pending_ && (!text_.HasByte() || *text_.at == 0); }

  unsigned char Next() {
    if (pending_) {
      const unsigned char key = pending_;
      pending_ = 0;
      return key;
    }
    if (AtEnd()) return 0;
    unsigned char c = *text_.at++;
    if (form_ & kAlphaKeys) return c;
    if (!(form_ & kAlphaDisk)) c = _NxConvertToDiskFormat(c);
    const unsigned char extra = map_.extra[c];
    if (accents_) return AccentKey(map_.key[c], extra);
    if (extra >= kFirstSecondKey) pending_ = extra;
    return map_.key[c];
  }

 private:
  static unsigned char AccentKey(unsigned char key, unsigned char extra) {
    return static_cast<unsigned char>(extra < kFirstSecondKey ? key + extra : key - 1);
  }

  const NxByteMap& map_;
  NxTextSpan text_;
  unsigned char form_;
  bool accents_;
  unsigned char pending_ = 0;  // second key of the last byte
};

/// Writes bytes as far as there is room and counts them all.
struct NxCutWriter {
  unsigned char* out;
  unsigned long room;
  unsigned long count = 0;

  void Put(unsigned char c) {
    if (count < room) out[count] = c;
    ++count;
  }
  unsigned long Written() const { return count < room ? count : room; }
};

// ---------------------------------------------------------------------------
// Comparing and mapping

/// Compares the keys of two texts as nxistrcmp does; neither is read past its end.
template <class Text>
int NxCompareAlpha(NxTextSpan a, NxTextSpan b, unsigned short len, unsigned char formA, unsigned char formB) {
  const int firstA = a.HasByte() ? *a.at : 0;
  const int firstB = b.HasByte() ? *b.at : 0;
  if (firstA == 0 || firstB == 0) return firstA - firstB;
  const bool accents = NxAlphaRules<Text>::kFoldsCase && (formA & kAlphaAccents);
  NxKeyReader readerA(NxAlphaRules<Text>::kMap, a, formA, accents);
  NxKeyReader readerB(NxAlphaRules<Text>::kMap, b, formB, accents);
  for (unsigned rounds = len ? len : 0xFFFF;; --rounds) {
    const bool ended = readerA.AtEnd() || readerB.AtEnd();
    const int difference = readerA.Next() - readerB.Next();
    if (difference || ended || rounds == 1) return difference;
  }
}

template <class Text>
int NxCompareAlpha(const char* a, const char* b, unsigned short len, unsigned char formA,
                   unsigned char formB) {
  if (!a) return b ? -1 : 0;
  if (!b) return 1;
  return NxCompareAlpha<Text>({reinterpret_cast<const unsigned char*>(a), nullptr},
                              {reinterpret_cast<const unsigned char*>(b), nullptr}, len, formA, formB);
}

template <class Text>
int NxMapString(unsigned char* dst, const unsigned char* src, unsigned short limit) {
  if (!dst || !src) return 0;
  NxKeyReader keys(NxAlphaRules<Text>::kMap, {src, nullptr}, kAlphaDisk);
  int written = 0;
  do {
    dst[written] = keys.Next();
  } while (dst[written++] != 0 && written != limit);
  return written;
}

// ---------------------------------------------------------------------------
// Images

inline constexpr unsigned long kNoLimit = ULONG_MAX;

/// A stored image in a buffer of `length` bytes: its head, and its texts as far as
/// both the head and the buffer say that they go. Fields outside the buffer are 0.
struct NxAlphaImage {
  static constexpr unsigned long kHeadSize = 3;  // header byte, bytes of text

  unsigned char header = 0;
  unsigned short total = 0;  // bytes of text by the head
  NxTextSpan texts;

  NxAlphaImage(const void* image, unsigned long length, unsigned char format) {
    auto* bytes = static_cast<const unsigned char*>(image);
    texts = {bytes, bytes};
    if (length >= 1) header = bytes[0];
    if (length < kHeadSize) return;
    ShortStore(&total, bytes + 1, format, 1);
    texts.at = bytes + kHeadSize;
    texts.end = texts.at + (total < length - kHeadSize ? total : length - kHeadSize);
  }

  bool IsKey() const { return header & kAlphaKeys; }
};

/// Bytes of the keys of a text with their terminator.
template <class Text>
unsigned long NxKeyBytes(NxTextSpan text, unsigned char form) {
  NxKeyReader keys(NxAlphaRules<Text>::kMap, text, form);
  unsigned long bytes = 1;
  while (keys.Next()) ++bytes;
  return bytes;
}

/// As _NxIMapLength, of an image in a buffer of `length` bytes.
template <class Text>
unsigned long NxMapLength(const void* data, unsigned char mode, unsigned long n,
                          unsigned long length = kNoLimit) {
  unsigned long bytes = 0;
  if (mode & kFormatMemory) {
    auto* values = static_cast<const Text*>(data);
    for (unsigned long i = 0; i < n; ++i) bytes += NxKeyBytes<Text>(NxTextOf(values[i]._pStr), 0);
    return bytes;
  }
  NxAlphaImage image(data, length, mode);
  if (image.IsKey()) return image.total;
  for (; n > 0 && image.texts.HasByte(); --n) bytes += NxKeyBytes<Text>(NxNextText(image.texts), kAlphaDisk);
  return bytes;
}

/// As _NxISizeNoMem, of an image in a buffer of `length` bytes.
template <class Text>
unsigned long NxSizeNoMem(const void* image, unsigned char mode, unsigned char mapped, unsigned long n,
                          unsigned long length = kNoLimit) {
  if (mapped & kFormatKey) return NxMapLength<Text>(image, mode, n, length);
  return NxAlphaImage(image, length, mode).total;
}

/// As _NxISizeMem.
template <class Text>
unsigned long NxSizeMem(const void* array, unsigned char mode, unsigned char mapped, unsigned long n) {
  if (mapped & kFormatKey) return NxMapLength<Text>(array, mode, n);
  auto* values = static_cast<const Text*>(array);
  unsigned long bytes = 0;
  for (unsigned long i = 0; i < n; ++i) bytes += values[i].Len() + 1UL;
  return bytes;
}

#endif
