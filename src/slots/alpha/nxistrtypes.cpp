// The alphabetic string types: life cycle, stored images, string arrays and
// translation. One template each; the slots are its instances.
//
//   image   header (0x40 disk code set, 0x01 as in memory, 0xC0 key)
//           T (16 bits), bytes that follow
//           every text with its NUL

#include <algorithm>
#include <cstring>

#include "alpha/nxalpha.h"
#include "base/nxalloc.h"
#include "nxconv.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "slots/nxconvkit.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"

namespace {

using Bytes = unsigned char*;

// Header bytes. Do not change: embedded in stored images.
constexpr unsigned char kTextsAsInMemory = 0x01;
constexpr unsigned char kTextsOnDisk = kAlphaDisk;
constexpr unsigned char kKeyImage = kAlphaKeys | kAlphaDisk;

constexpr unsigned long kHeadSize = NxAlphaImage::kHeadSize;

/// Writes the head as far as `room` goes. The total is kept in 16 bits.
void PutHead(Bytes image, unsigned long room, unsigned char header, unsigned long total,
             unsigned char format) {
  unsigned char head[kHeadSize] = {header};
  const auto stored = static_cast<unsigned short>(total);
  ShortStore(head + 1, &stored, format, 1);
  std::copy_n(head, std::min(room, kHeadSize), image);
}

/// Bytes behind the head.
unsigned long TextRoom(unsigned long room) { return room > kHeadSize ? room - kHeadSize : 0; }

const char* TextOf(const char* text) { return text ? text : ""; }

// ---------------------------------------------------------------------------
// Stored images

template <class Text>
int NullSize(unsigned long n) {
  return static_cast<int>(n + kHeadSize);
}

/// The size of an image with `total` bytes of text; totals are kept in 16 bits.
int ImageSize(unsigned long total) {
  return static_cast<int>(kHeadSize + static_cast<unsigned short>(total));
}

/// Whether a format asks for keys in memory, of which there are no images.
bool IsKeyInMemory(unsigned char format) {
  constexpr unsigned char kKeyInMemory = kFormatKey | kFormatMemory;
  return (format & kKeyInMemory) == kKeyInMemory;
}

template <class Text>
int Size(const void* p, unsigned char form, unsigned char format, unsigned long n) {
  if (IsKeyInMemory(format)) return 0;
  return ImageSize(form & kFormatMemory ? NxSizeMem<Text>(p, form, format, n)
                                        : NxSizeNoMem<Text>(p, form, format, n));
}

template <class Text>
int SizeFromMemFile(MemFile* file, unsigned char format, unsigned long n) {
  unsigned long available = 0;
  const void* image = file->Seek(0, 1, &available, 0);
  if (!image || available < kHeadSize || IsKeyInMemory(format)) return 0;
  return ImageSize(NxSizeNoMem<Text>(image, format, format, n, available));
}

/// Writes an image as far as `room` goes; returns its whole size, with the total in 16
/// bits.
template <class Text>
int StoreWithin(Bytes image, unsigned long room, const void* values, unsigned char format, unsigned long n) {
  const bool asInMemory =
      NxAlphaRules<Text>::kFoldsCase ? format > kFormatCodeMask : (format & kFormatKey) != 0;
  auto* texts = static_cast<const Text*>(values);
  NxCutWriter out = {image + std::min(room, kHeadSize), TextRoom(room)};
  for (unsigned long i = 0; i < n; ++i) {
    const char* c = TextOf(texts[i]._pStr);
    do {
      const auto byte = static_cast<unsigned char>(*c);
      out.Put(asInMemory ? byte : _NxConvertToDiskFormat(byte));
    } while (*c++);
  }
  PutHead(image, room, asInMemory ? kTextsAsInMemory : kTextsOnDisk, out.count, format);
  return ImageSize(out.count);
}

template <class Text>
int Store(void* image, const void* values, unsigned char format, unsigned long n) {
  if (IsKeyInMemory(format)) return 0;  // the room that Size asks for
  return StoreWithin<Text>(static_cast<Bytes>(image), kNoLimit, values, format, n);
}

/// Gives a value the text that `stored` is in the disk code set.
template <class Text>
void SetDecoded(Text& value, NxTextSpan stored) {
  if (!stored.HasByte()) {
    value = nullptr;
    return;
  }
  char* text = NxNewArray<char>(stored.Size() + 1);
  if (!text) return;
  char* end = std::transform(stored.at, stored.end, text, _NxConvertFromDiskFormat);
  *end = 0;
  value = nullptr;
  value._pStr = text;
}

/// Loads from an image of `length` bytes; values for which it has no text become
/// empty. The head is not read. Returns the bytes consumed.
template <class Text>
int LoadWithin(void* values, const void* image, unsigned long length, unsigned long n) {
  auto* texts = static_cast<Text*>(values);
  auto* start = static_cast<const unsigned char*>(image);
  NxTextSpan rest = {start + std::min(length, kHeadSize), start + length};
  for (unsigned long i = 0; i < n; ++i) SetDecoded(texts[i], NxNextText(rest));
  return static_cast<int>(rest.at - start);
}

/// The image's own zeros end its texts: there is no other limit to go by.
template <class Text>
int Load(void* values, const void* image, unsigned long n) {
  auto* texts = static_cast<Text*>(values);
  auto* start = static_cast<const unsigned char*>(image);
  auto* at = start + kHeadSize;
  for (unsigned long i = 0; i < n; ++i) {
    const unsigned long length = std::strlen(reinterpret_cast<const char*>(at));
    SetDecoded(texts[i], {at, at + length});
    at += length + 1;
  }
  return static_cast<int>(at - start);
}

// ---------------------------------------------------------------------------
// String arrays

template <class Text>
NxTypeConvertData* ConvertTo(void* values, unsigned long n) {
  const NxShortageWatch shortage;
  auto* texts = static_cast<const Text*>(values);
  auto* strings = static_cast<NxString*>(NxStringCreate(n));
  for (unsigned long i = 0; strings && i < n; ++i) {
    strings[i].SetCodeSet(NxLanguageContext::GetNativeCodeSet());
    NxString text(texts[i]._pStr);
    text.SetCodeSetCode(kCodeSetNone);
    strings[i] += text;
  }
  return NxStringArray(strings, n, shortage);
}

template <class Text>
void* ConvertFrom(NxTypeConvertData* strings, unsigned long n) {
  const NxShortageWatch shortage;
  auto* values = static_cast<Text*>(NxObjectForm<Text>::Create(n));
  for (unsigned long i = 0; values && i < n; ++i) {
    NxString* s = strings ? strings->GetString(static_cast<int>(i)) : nullptr;
    if (s && !s->IsNullValue()) values[i] = s->StrGet();
  }
  return NxWholeOrNone(values, n, NxObjectForm<Text>::Delete, shortage);
}

// ---------------------------------------------------------------------------
// Translation
//
// A key image holds the keys of its texts and their terminators. T counts all of
// them; a key that its destination cut reads as longer than its buffer, by which
// comparisons know that it is cut. The last byte of a destination stays a
// terminator.

/// Bytes of keys that fit between the head and the last terminator.
unsigned long KeyRoom(unsigned long dstLength) {
  return dstLength > kHeadSize ? dstLength - kHeadSize - 1 : 0;
}

/// The key image of stored texts, or a copy of one that is a key already.
template <class Text>
int KeyFromImage(Bytes dst, unsigned char dstForm, unsigned long dstLength, const void* src,
                 unsigned char srcForm, unsigned long srcLength) {
  NxAlphaImage image(src, srcLength, srcForm);
  if (image.IsKey()) {
    const unsigned long k = std::min(srcLength, dstLength);
    if (k != 0) std::memmove(dst, src, k);
    return static_cast<int>(k);
  }
  if (dstLength > srcLength) std::memset(dst, 0, dstLength);
  NxCutWriter keys = {dst + std::min(dstLength, kHeadSize), KeyRoom(dstLength)};
  while (image.texts.HasByte()) {
    NxKeyReader text(NxAlphaRules<Text>::kMap, NxNextText(image.texts), kAlphaDisk);
    const bool terminated = image.texts.at[-1] == 0;
    while (unsigned char key = text.Next()) keys.Put(key);
    if (terminated) keys.Put(0);
  }
  if (dstLength > kHeadSize) keys.out[keys.Written()] = 0;
  PutHead(dst, dstLength, image.header | kKeyImage, keys.count, dstForm & kFormatCodeMask);
  // The closing terminator counts for the type that folds case only.
  const unsigned long closing = NxAlphaRules<Text>::kFoldsCase ? 1 : 0;
  const unsigned long most = dstLength ? dstLength - 1 + closing : 0;
  return static_cast<int>(std::min(kHeadSize + keys.count + closing, most));
}

/// The key image of the texts of values, cut where the destination ends.
template <class Text>
int KeyFromValues(Bytes dst, unsigned char dstForm, unsigned long dstLength, const Text* values,
                  unsigned long n) {
  NxCutWriter keys = {dst + std::min(dstLength, kHeadSize), KeyRoom(dstLength)};
  for (unsigned long i = 0; i < n; ++i) {
    if (i > 0) keys.Put(0);
    NxKeyReader text(NxAlphaRules<Text>::kMap, NxTextOf(values[i]._pStr), values[i]._nForm & kAlphaDisk);
    while (unsigned char key = text.Next()) keys.Put(key);
  }
  if (dstLength > kHeadSize) keys.out[keys.Written()] = 0;
  const unsigned long total = keys.Written() + 1;
  PutHead(dst, dstLength, kKeyImage, total, dstForm);
  return static_cast<int>(std::min(kHeadSize + total, dstLength));
}

/// Gives a value the text that a key image still tells.
int ValueFromKey(NxCaseIString& value, const void* src, unsigned char srcForm, unsigned long srcLength) {
  const NxAlphaImage image(src, srcLength, srcForm);
  const unsigned long length = image.texts.Size();
  if (length == 0) value = nullptr;
  Bytes work = length ? NxNewZeroArray<unsigned char>(2 * (length + 1)) : nullptr;
  if (work) {
    Bytes keys = work, text = work + length + 1;
    std::copy_n(image.texts.at, length, keys);
    _NxCaseIDeMapString(text, keys, static_cast<unsigned short>(length));
    SetDecoded(value, {text, text + std::strlen(reinterpret_cast<char*>(text))});
    delete[] work;
  }
  return static_cast<int>(kHeadSize + image.total);
}

/// Clears the destination and stores, cut where it ends.
template <class Text>
int StoreCut(Bytes dst, unsigned char dstForm, unsigned long dstLength, const void* src, unsigned long n) {
  if (dstLength != 0) std::memset(dst, 0, dstLength);
  const int size = StoreWithin<Text>(dst, dstLength, src, dstForm & kFormatCodeMask, n);
  return static_cast<int>(std::min<unsigned long>(size, dstLength));
}

template <class Text>
int Translate(void* dst, unsigned char dstForm, unsigned long dstLength, void* src, unsigned char srcForm,
              unsigned long srcLength, unsigned long n) {
  const bool toMemory = dstForm & kFormatMemory;
  const bool fromMemory = srcForm & kFormatMemory;
  auto* image = static_cast<Bytes>(dst);
  if (dstForm & kFormatKey) {
    if (toMemory) return 0;
    if (fromMemory) return KeyFromValues(image, dstForm, dstLength, static_cast<const Text*>(src), n);
    return KeyFromImage<Text>(image, dstForm, dstLength, src, srcForm, srcLength);
  }
  if (toMemory && fromMemory) {
    NxObjectValues<Text>::Assign(dst, src, n, 0);
    return static_cast<int>(n * sizeof(Text));
  }
  if constexpr (NxAlphaRules<Text>::kFoldsCase)
    if (toMemory && n > 0 && (srcForm & kFormatKey))
      return ValueFromKey(*static_cast<Text*>(dst), src, srcForm, srcLength);
  if (toMemory) return LoadWithin<Text>(dst, src, srcLength, n);
  if (fromMemory) return StoreCut<Text>(image, dstForm, dstLength, src, n);
  return NxResizeImage(image, dstLength, src, srcLength);
}

}  // namespace

#define NX_ALPHA_SLOTS(Text)                                                                        \
  void* Text##Create(unsigned long n) { return NxObjectForm<Text>::Create(n); }                     \
  int Text##Delete(void* values, unsigned long n) { return NxObjectForm<Text>::Delete(values, n); } \
  void Text##Constructor(void* place, unsigned long n, unsigned long) {                             \
    NxObjectValues<Text>::Construct(place, n);                                                      \
  }                                                                                                 \
  void Text##Destructor(void* place, unsigned long n, unsigned long) {                              \
    NxObjectValues<Text>::Destroy(place, n);                                                        \
  }                                                                                                 \
  void Text##Assignment(void* dst, void* src, unsigned long n, int fill) {                          \
    NxObjectValues<Text>::Assign(dst, src, n, fill);                                                \
  }                                                                                                 \
  void Text##Copy(void* dst, void* src, unsigned long n, int fill) {                                \
    NxObjectValues<Text>::Copy(dst, src, n, fill);                                                  \
  }                                                                                                 \
  void* Text##DefaultValue(unsigned long n, int) {                                                  \
    return NxDefaultFromEmptyText(Text##ConvertFromNxString, n);                                    \
  }                                                                                                 \
  int Text##Store(void* image, const void* values, unsigned char format, unsigned long n) {         \
    return Store<Text>(image, values, format, n);                                                   \
  }                                                                                                 \
  int Text##Load(void* values, const void* image, unsigned char, unsigned long n) {                 \
    return Load<Text>(values, image, n);                                                            \
  }                                                                                                 \
  int Text##NullSizeGet(unsigned long n) { return NullSize<Text>(n); }                              \
  int Text##SizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n) {     \
    return Size<Text>(p, form, format, n);                                                          \
  }                                                                                                 \
  int Text##SizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long n) {              \
    return SizeFromMemFile<Text>(file, format, n);                                                  \
  }                                                                                                 \
  NxTypeConvertData* Text##ConvertToNxString(void* values, unsigned long n) {                       \
    return ConvertTo<Text>(values, n);                                                              \
  }                                                                                                 \
  void* Text##ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {                    \
    return ConvertFrom<Text>(strings, n);                                                           \
  }                                                                                                 \
  int Text##Translate(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,         \
                      unsigned char srcForm, unsigned long srcLength, unsigned long n) {            \
    return Translate<Text>(dst, dstForm, dstLength, src, srcForm, srcLength, n);                    \
  }

NX_ALPHA_SLOTS(NxIString)
NX_ALPHA_SLOTS(NxCaseIString)

#undef NX_ALPHA_SLOTS
