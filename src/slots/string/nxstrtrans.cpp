// Translation of strings: between memory and stored images, from one stored image
// to another of a different size, and into index keys, whose text is the string's
// sequence of collation order values.

#include <algorithm>
#include <cstring>

#include "base/nxalloc.h"
#include "base/nxclosedcopy.h"
#include "base/nxstored.h"
#include "collation/nxordertable.h"
#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "slots/nxfixed.h"
#include "text/nxchartext.h"

namespace {

using Bytes = unsigned char*;

constexpr unsigned long kLengthSize = NxStoredString::kLengthSize;
/// Bytes that a current image has and an early one of the same text has not: code set,
/// language and the last one.
constexpr unsigned short kCurrentHasMore = 3;
/// Where the report of forms that no translation joins says that it comes from; those who
/// read reports know it by this number, which therefore stays.
constexpr int kUnsupportedFormsLine = 1509;

bool InMemory(unsigned char form) { return form & kFormatMemory; }
bool IsKeyForm(unsigned char form) { return form & kFormatKey; }
bool IsTranslated(unsigned char codeSet) { return codeSet != kCodeSetNone && codeSet != kCodeSetOrderValues; }

int AssignStrings(void* dst, void* src, unsigned long n) {
  auto* to = static_cast<NxString*>(dst);
  auto* from = static_cast<NxString*>(src);
  for (unsigned long i = 0; i < n; ++i) to[i] = from[i];
  return static_cast<int>(n * sizeof(NxString));
}

/// Bytes of the images of n strings in memory. Wider than 16 bits, which the stored
/// sizes are not.
unsigned long ImageBytes(const NxString* strings, unsigned long n) {
  unsigned long bytes = 0;
  for (unsigned long i = 0; i < n; ++i) bytes += StringSizeGet(strings + i, kFormatMemory, kFormatNative, 1);
  return bytes;
}

/// The same for the one early image of all of them.
unsigned long EarlyImageBytes(const NxString* strings, unsigned long n) {
  unsigned long bytes = kLengthSize;
  for (unsigned long i = 0; i < n; ++i)
    bytes += StringOldSizeGet(strings + i, kFormatMemory, kFormatNative, 1) - kLengthSize;
  return bytes;
}

using StringStoreFunc = int (*)(void*, const void*, unsigned char, unsigned long);

/// Stores strings, whose images take `bytes`, into a destination of dstLength bytes,
/// cut when it is too small.
int StoreCut(StringStoreFunc store, unsigned long bytes, void* dst, unsigned long dstLength, void* src,
             unsigned char format, unsigned long n) {
  if (dstLength == 0) return 0;
  if (bytes <= dstLength) {
    std::memset(dst, 0, dstLength);
    return store(dst, src, format, n);
  }
  char* image = NxNewZeroArray<char>(bytes);
  if (!image) return 0;
  store(image, src, format, n);
  const int k = NxResizeImage(dst, dstLength, image, bytes);
  delete[] image;
  return k;
}

// ---------------------------------------------------------------------------
// Stored images to memory

/// Whether the n images lie within length bytes, so that they may be loaded
/// without looking at the length again.
bool ImagesFit(const void* src, unsigned char format, unsigned long length, unsigned long n) {
  NxStoredString image(src, length, format);
  if (image.early) return true;
  for (unsigned long pos = 0; n > 0; --n) {
    image = NxStoredString(static_cast<const unsigned char*>(src) + pos, length - pos, format);
    if (!image.Fits() || image.n < NxStoredString::kEmptyLength) return false;
    pos += image.Size();
  }
  return true;
}

/// Reads images one by one from a source that may end before they do. Values that
/// the source has no image for become empty strings, each counting as an empty image.
int LoadWithin(NxString* strings, const void* src, unsigned char format, unsigned long length,
               unsigned long n) {
  auto* bytes = static_cast<const unsigned char*>(src);
  unsigned long read = 0;
  unsigned long count = 0;
  unsigned char codeSet = kCodeSetNone;
  unsigned char language = kLanguageNone;
  for (; n > 0; --n, ++strings) {
    unsigned short characters = 0;
    const unsigned char* text = nullptr;
    if (read + NxStoredString::kEmptySize <= length) {
      const NxStoredString image(bytes + read, length - read, format);
      // A key that was cut counts the terminator that it lacks, so its characters
      // reach exactly to the end of the source.
      const unsigned long size = std::min<unsigned long>(image.n, length - read);
      codeSet = NxStoredString::CodeSetOf(bytes + read);
      language = NxStoredString::LanguageOf(bytes + read);
      text = bytes + read + NxStoredString::kHeadSize;
      const unsigned long textBytes =
          size > NxStoredString::kEmptyLength ? size - NxStoredString::kEmptyLength : 0;
      characters = static_cast<unsigned short>(textBytes / NxCharWidth(codeSet));
      read += image.Size();
      count += std::min<unsigned long>(image.Size(), length - (read - image.Size()));
    } else {
      count += NxStoredString::kEmptySize;
    }
    strings->MakeString(nullptr, codeSet, 0, format);
    strings->_nCodeSet = codeSet;
    strings->_nLanguage = language;
    if (characters)
      strings->MakeString(reinterpret_cast<const char*>(text), codeSet, static_cast<short>(characters),
                          format);
  }
  return static_cast<int>(count);
}

// ---------------------------------------------------------------------------
// Stored images to stored images

/// Whether 16-bit texts of the universal code set are narrowed to bytes when their
/// images are copied. The setting is asked for once, when the first such text comes.
bool NarrowsUnicode() {
  static const bool narrows = [] {
    unsigned short keepOrder = 0;
    if (NxConfig* config = DefaultConfig(NxAskConfig()))
      config->Query("oldIndexUnicodeOrder", &keepOrder, nullptr);
    return keepOrder == 0;
  }();
  return narrows;
}

/// Copies images into a destination of limited size, byte by byte past its end.
class CutWriter {
 public:
  CutWriter(void* dst, unsigned long length) : dst_(static_cast<Bytes>(dst)), length_(length) {}

  void Put(unsigned char byte) {
    if (written_ < length_) dst_[written_++] = byte;
  }
  void PutLength(unsigned short n, unsigned char format) {
    unsigned char bytes[kLengthSize];
    NxWriteShort(bytes, n, format);
    Put(bytes, sizeof bytes);
  }
  void Put(const unsigned char* bytes, unsigned long n) {
    n = std::min(n, length_ - written_);
    std::memcpy(dst_ + written_, bytes, n);
    written_ += n;
  }
  /// Zeroes what was not written; returns the bytes written.
  int Finish() {
    std::memset(dst_ + written_, 0, length_ - written_);
    return static_cast<int>(written_);
  }

 private:
  Bytes dst_;
  unsigned long length_;
  unsigned long written_ = 0;
};

/// An early image as a current one of the code set. The text of an early image ends
/// with a zero byte, which the trailer shares.
int CopyEarlyAsCurrent(CutWriter& out, const NxStoredString& image, unsigned char codeSet,
                       unsigned char format) {
  out.PutLength(static_cast<unsigned short>(image.n + kCurrentHasMore), format);
  out.Put(codeSet);
  out.Put(kLanguageNone);
  out.Put(image.bytes + kLengthSize, image.n);
  out.Put(NxStoredString::kLastByte);
  return out.Finish();
}

/// Writes one image of the universal code set with a byte for every unit; a unit
/// that a byte cannot hold is replaced. An image whose text its source cuts stays a
/// cut one: its length still counts the whole text, and it has no trailer.
void PutNarrowed(CutWriter& out, const NxStoredString& image, unsigned char codeSet, unsigned char srcFormat,
                 unsigned char dstFormat) {
  constexpr unsigned short kEmpty = NxStoredString::kEmptyLength;
  constexpr unsigned char kReplacement = 0x7F;
  const unsigned long units = image.TextBytes() / 2;
  const int stated = (std::max(image.n, kEmpty) - kEmpty) / 2;
  out.PutLength(static_cast<unsigned short>(stated + kEmpty), dstFormat);
  out.Put(codeSet);
  out.Put(image.language);
  for (unsigned long i = 0; i < units; ++i) {
    const unsigned short unit = NxReadShort(image.Text() + 2 * i, srcFormat);
    out.Put(unit < 256 ? static_cast<unsigned char>(unit) : kReplacement);
  }
  if (units < static_cast<unsigned long>(stated)) return;
  out.Put(0x00);
  out.Put(NxStoredString::kLastByte);
}

int CopyNarrowed(CutWriter& out, const unsigned char* src, unsigned long length, unsigned long n,
                 unsigned char codeSet, unsigned char srcFormat, unsigned char dstFormat) {
  for (unsigned long pos = 0; n > 0 && pos + NxStoredString::kHeadSize <= length; --n) {
    const NxStoredString image(src + pos, length - pos, srcFormat);
    if (image.codeSet == kCodeSetUnicode)
      PutNarrowed(out, image, codeSet, srcFormat, dstFormat);
    else
      out.Put(src + pos, std::min<unsigned long>(image.Size(), length - pos));
    pos += image.Size();
  }
  return out.Finish();
}

/// Copies stored images, the first one relabelled with the code set. What is copied
/// as it is keeps the byte order of the source.
int CopyImages(void* dst, unsigned long dstLength, unsigned char dstFormat, const void* src,
               unsigned long srcLength, unsigned char srcFormat, unsigned char codeSet, unsigned long n) {
  NxStoredString image(src, srcLength, srcFormat);
  CutWriter out(dst, dstLength);
  if (image.early) return CopyEarlyAsCurrent(out, image, codeSet, dstFormat);
  if (image.codeSet == kCodeSetUnicode && srcLength >= NxStoredString::kHeadSize && NarrowsUnicode())
    return CopyNarrowed(out, image.bytes, srcLength, n, codeSet, srcFormat, dstFormat);
  const int k = NxResizeImage(dst, dstLength, src, srcLength);
  if (k > static_cast<int>(kLengthSize)) static_cast<Bytes>(dst)[kLengthSize] = codeSet;
  return k;
}

/// The same for strings in memory, by way of their images.
int CopyStrings(void* dst, unsigned long dstLength, NxString* strings, unsigned char format,
                unsigned char codeSet, unsigned long n) {
  char* images = NxNewZeroArray<char>(ImageBytes(strings, n));
  if (!images) return 0;
  unsigned long stored = 0;
  for (unsigned long i = 0; i < n; ++i) stored += StringStore(images + stored, strings + i, format, 1);
  const int k = CopyImages(dst, dstLength, format, images, stored, format, codeSet, n);
  delete[] images;
  return k;
}

// ---------------------------------------------------------------------------
// Index keys

/// A text that a key is made of. `text` is zero-terminated at or after `end`.
struct KeySource {
  const char* text;
  const char* end;  // where the source ends without a terminator of its own, or null
  unsigned char codeSet;
  unsigned char language;
  unsigned char byteOrder;

  bool IsNull() const { return NxIsNullText(codeSet, language); }
};

/// Builds the key of one text: a head and then the text's order values, the last of
/// them 0 unless the key is cut.
class KeyBuilder {
 public:
  KeyBuilder(Bytes dst, unsigned long room, unsigned char format)
      : dst_(dst), room_(room), written_(NxStoredString::kHeadSize), highFirst_(format == kFormatBigEndian) {}

  /// Returns the bytes written; 0 when not even the head has room.
  unsigned long Build(const KeySource& source, unsigned char format) {
    if (room_ < NxStoredString::kHeadSize) return 0;
    if (!source.IsNull())
      collation_ = NxLanguageContext::QueryCodeSet(source.codeSet)->GetCollation(source.language);
    const char* position = PutSimple(source);
    if (position) PutGeneral(source, position);
    PutHead(format);
    return written_;
  }

 private:
  bool HasRoom() const { return written_ + 2 <= room_; }

  void Put(unsigned short order) {
    const unsigned short unit = highFirst_ ? __builtin_bswap16(order) : order;
    std::memcpy(dst_ + written_, &unit, sizeof unit);
    written_ += 2;
    ended_ = order == 0;
  }

  /// The common case, an 8-bit text of characters that order by one value each:
  /// goes as far as that holds. Returns where the iterator must go on, or null
  /// when the key is done.
  const char* PutSimple(const KeySource& source) {
    const bool byBytes = NxCharWidth(source.codeSet) == 1 && !source.IsNull();
    const NxOrderTable* table = byBytes ? NxOrderTable::Find(source.codeSet, source.language) : nullptr;
    if (!table) return source.text;
    for (const char* p = source.text; HasRoom() && p != source.end; ++p) {
      const NxOrderTable::Entry& entry = table->EntryOf(*p);
      if (entry.key & NxOrderTable::kNeedsIterator) return p;
      if (entry.selector != collation_ && entry.order != 0) return p;
      Put(entry.order);
      if (ended_) return nullptr;
    }
    return nullptr;
  }

  /// Every other text, through the iterator. A selector that changes within the
  /// text ends the key there and marks it: values of two selectors do not compare.
  void PutGeneral(const KeySource& source, const char* position) {
    NxStringIterator it(position, source.codeSet, source.language, source.byteOrder);
    while (!ended_ && HasRoom() && (it._pPos != source.end || it._pOverflow)) {
      unsigned short order = it.GetNextOrder(1);
      if (it._nCollation != collation_) {
        if (written_ > NxStoredString::kHeadSize) {
          if (order != 0) collation_ |= kMixedCollation;
          order = 0;
        } else if (order != 0) {
          collation_ = it._nCollation;
        }
      }
      Put(order);
    }
  }

  /// A key that was cut counts the terminator that it lacks, so that it reads as
  /// longer than its buffer.
  void PutHead(unsigned char format) {
    if (ended_) dst_[written_ - 1] = NxStoredString::kLastByte;
    const unsigned long size = written_ + (ended_ ? 0 : NxStoredString::kTrailerSize);
    NxStoredString::PutHead(dst_, size - kLengthSize, kCodeSetOrderValues, collation_, format);
  }

  Bytes dst_;
  unsigned long room_;
  unsigned long written_;
  bool highFirst_;
  bool ended_ = false;  // the last value written was 0
  unsigned char collation_ = 0;
};

/// The key of one stored image, of whose text no more is copied than a key of `room`
/// bytes can need.
unsigned long PutImageKey(KeyBuilder& key, const NxStoredString& image, unsigned char codeSet,
                          unsigned char srcFormat, unsigned char dstFormat, unsigned long room) {
  constexpr unsigned long kMostBytes = 4 * 2;  // of an order value's characters: a contraction has up to four
  const unsigned long needed = (room / 2 + 1) * kMostBytes;
  const unsigned long bytes = std::min(image.TextBytes(), needed);
  KeySource source{reinterpret_cast<const char*>(image.Text()), nullptr, codeSet, image.language, srcFormat};
  NxClosedCopy<1024> copy;
  const bool terminated =
      NxCharWidth(codeSet) == 1 && image.HasTerminator() && image.Text()[image.TextBytes()] == 0;
  if (!terminated) source.text = copy.Take(image.Text(), bytes);
  if (!source.text) return 0;
  if (!image.HasTerminator()) source.end = source.text + bytes / NxCharWidth(codeSet) * NxCharWidth(codeSet);
  return key.Build(source, dstFormat);
}

/// The keys of the texts of an early image, which has one head for all of them.
int PutEarlyKeys(Bytes dst, unsigned long dstLength, unsigned char dstForm, const NxStoredString& image,
                 unsigned long n) {
  const unsigned char format = dstForm & kFormatCodeMask;
  auto* text = reinterpret_cast<const char*>(image.Text());
  const char* end = text + image.n;
  unsigned long written = 0;
  for (; n > 0 && text < end; --n, text += std::strlen(text) + 1) {
    KeyBuilder key(dst + written, dstLength - written, format);
    const KeySource source{text, nullptr, CalculateCodeSet(kCodeSetNone, dstForm), kLanguageNone,
                           kFormatNative};
    const unsigned long size = key.Build(source, format);
    if (size == 0) break;
    written += size;
  }
  return static_cast<int>(written);
}

int PutImageKeys(Bytes dst, unsigned long dstLength, unsigned char dstForm, const unsigned char* src,
                 unsigned long srcLength, unsigned char srcFormat, unsigned long n) {
  const unsigned char format = dstForm & kFormatCodeMask;
  unsigned long written = 0;
  for (unsigned long pos = 0; n > 0 && pos < srcLength; --n) {
    const NxStoredString image(src + pos, srcLength - pos, srcFormat);
    if (image.early)
      return static_cast<int>(written) + PutEarlyKeys(dst + written, dstLength - written, dstForm, image, n);
    KeyBuilder key(dst + written, dstLength - written, format);
    const unsigned long size = PutImageKey(key, image, CalculateCodeSet(image.codeSet, dstForm), srcFormat,
                                           format, dstLength - written);
    if (size == 0) break;
    written += size;
    pos += image.Size();
  }
  return static_cast<int>(written);
}

int PutStringKeys(Bytes dst, unsigned long dstLength, unsigned char dstForm, const NxString* strings,
                  unsigned long n) {
  const unsigned char format = dstForm & kFormatCodeMask;
  unsigned long written = 0;
  for (; n > 0; --n, ++strings) {
    KeyBuilder key(dst + written, dstLength - written, format);
    const KeySource source{strings->StrGet(), nullptr, CalculateCodeSet(strings->_nCodeSet, dstForm),
                           strings->_nLanguage, kFormatMemory};
    const unsigned long size = key.Build(source, format);
    if (size == 0) break;
    written += size;
  }
  return static_cast<int>(written);
}

}  // namespace

int NxStringTranslate(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                      unsigned char srcForm, unsigned long srcLength, unsigned long n) {
  const unsigned char srcFormat = srcForm & kFormatCodeMask;
  const unsigned char dstFormat = dstForm & kFormatCodeMask;
  auto* strings = static_cast<NxString*>(src);

  if (InMemory(dstForm)) {
    if (InMemory(srcForm)) return AssignStrings(dst, src, n);
    const NxStoredString first(src, srcLength, srcFormat);
    const bool loadable = ImagesFit(src, srcFormat, srcLength, n) && !(IsKeyForm(srcForm) && n > 1);
    if (loadable) return StringLoad(dst, src, srcForm, n);
    return LoadWithin(static_cast<NxString*>(dst), src, srcFormat, srcLength, n);
  }
  if (InMemory(srcForm) && !IsKeyForm(dstForm))
    return StoreCut(StringStore, ImageBytes(strings, n), dst, dstLength, src, dstFormat, n);
  if (!IsKeyForm(dstForm) && srcForm != dstForm) {
    NEXO_assert("\"format combination not supported\" && 0", "src/nxtypes", kUnsupportedFormsLine);
    return 0;
  }
  if (n == 0 || dstLength == 0) return 0;

  const NxStoredString first =
      InMemory(srcForm) ? NxStoredString() : NxStoredString(src, srcLength, srcFormat);
  const unsigned char codeSet = InMemory(srcForm) ? strings->_nCodeSet : first.codeSet;
  const unsigned char newCodeSet = CalculateCodeSet(codeSet, dstForm);
  const bool needsKey = IsKeyForm(dstForm) && IsTranslated(newCodeSet);
  if (needsKey && InMemory(srcForm))
    return PutStringKeys(static_cast<Bytes>(dst), dstLength, dstForm, strings, n);
  if (needsKey)
    return PutImageKeys(static_cast<Bytes>(dst), dstLength, dstForm, first.bytes, srcLength, srcFormat, n);
  if (InMemory(srcForm)) return CopyStrings(dst, dstLength, strings, dstFormat, newCodeSet, n);
  return CopyImages(dst, dstLength, dstFormat, src, srcLength, srcFormat, newCodeSet, n);
}

int NxStringOldTranslate(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                         unsigned char srcForm, unsigned long srcLength, unsigned long n) {
  if (InMemory(dstForm)) {
    if (InMemory(srcForm)) return AssignStrings(dst, src, n);
    if (ImagesFit(src, srcForm & kFormatCodeMask, srcLength, n)) return StringLoad(dst, src, srcForm, n);
    return LoadWithin(static_cast<NxString*>(dst), src, srcForm & kFormatCodeMask, srcLength, n);
  }
  if (InMemory(srcForm)) {
    const unsigned long bytes = EarlyImageBytes(static_cast<NxString*>(src), n);
    return StoreCut(StringOldStore, bytes, dst, dstLength, src, dstForm, n);
  }

  auto* from = static_cast<const unsigned char*>(src);
  const NxStoredString image(src, srcLength, srcForm & kFormatCodeMask);
  unsigned short length = image.n;
  unsigned long copied = srcLength;
  const unsigned char* text = from + std::min(srcLength, kLengthSize);
  if (image.Fits() && image.n >= NxStoredString::kEmptyLength &&
      from[image.Size() - 1] == NxStoredString::kLastByte) {
    length = static_cast<unsigned short>(image.n - kCurrentHasMore);
    copied = srcLength - kCurrentHasMore;
    text = from + NxStoredString::kHeadSize;
  }
  const unsigned long k = std::min(copied, dstLength);
  if (k < dstLength) std::memset(dst, 0, dstLength);
  if (k < kLengthSize) return 0;
  NxWriteShort(dst, length, dstForm);
  std::memcpy(static_cast<Bytes>(dst) + kLengthSize, text, k - kLengthSize);
  return static_cast<int>(k);
}
