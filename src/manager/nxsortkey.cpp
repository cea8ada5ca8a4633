// Sort keys and their bounds, by type. A value of fixed size is brought into its stored image
// of the usual byte order, whose fields then are written most significant first; texts have
// keys of their own.
#include "nxsortkey.h"

#include <cstdlib>
#include <cstring>

#include "alpha/nxalpha.h"
#include "base/nxalloc.h"
#include "base/nxkeywriter.h"
#include "base/nxstored.h"
#include "collation/nxplainkey.h"
#include "collation/nxtextkey.h"
#include "nxcistr.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxoption.h"
#include "nxstring.h"
#include "nxtypmgr.h"
#include "slots/nxelement.h"
#include "strwild.h"

namespace {

constexpr char kIStringTypeId = 20;
constexpr char kCaseIStringTypeId = 21;
constexpr unsigned char kNullDateField = 0xFF;  // of a term: any year, month, day

// ---------------------------------------------------------------------------
// Values of fixed size

/// How a field of an image orders.
enum class Kind : unsigned char { kNone, kSigned, kUnsigned, kFloating, kBoolean, kNullFlag, kNullClass };

constexpr unsigned kAllFields = 10;  // more than any type has

/// Bytes of an image under format code 1, in which they stand low byte first.
struct Field {
  Kind kind = Kind::kNone;
  unsigned char offset = 0;
  unsigned char width = 0;
};

/// The fields that decide the order of a type, the first one first.
struct FieldOrder {
  Field fields[kAllFields];
};

constexpr FieldOrder Number(Kind kind, unsigned char width) { return {{{kind, 0, width}}}; }
/// A null flag and, behind it, the number.
constexpr FieldOrder NullableNumber(Kind kind, unsigned char width) {
  return {{{Kind::kNullFlag, 0, 1}, {kind, 1, width}}};
}
/// A year, and `n` signed bytes behind it.
constexpr FieldOrder YearAndBytes(Kind year, unsigned char n) {
  FieldOrder order = {{{year, 0, 2}}};
  for (unsigned char i = 0; i < n; ++i)
    order.fields[1 + i] = {Kind::kSigned, static_cast<unsigned char>(2 + i), 1};
  return order;
}
constexpr FieldOrder SignedBytes(unsigned char n) {
  FieldOrder order = {};
  for (unsigned char i = 0; i < n; ++i) order.fields[i] = {Kind::kSigned, i, 1};
  return order;
}

/// By type identifier; nothing for types that are no fixed fields or have no order.
constexpr FieldOrder kFieldOrders[kTypeCount] = {
    Number(Kind::kSigned, 1),                                                        // char
    Number(Kind::kSigned, 2),                                                        // short
    Number(Kind::kSigned, 4),                                                        // long
    Number(Kind::kFloating, 8),                                                      // double
    Number(Kind::kFloating, 4),                                                      // float
    Number(Kind::kUnsigned, 2),                                                      // NxWord
    Number(Kind::kUnsigned, 4),                                                      // NxDWord
    Number(Kind::kSigned, 4),                                                        // int
    Number(Kind::kUnsigned, 4),                                                      // unsigned
    Number(Kind::kSigned, 4),                                                        // enum
    Number(Kind::kUnsigned, 1),                                                      // NxByte
    {},                                                                              // NxString
    YearAndBytes(Kind::kSigned, 2),                                                  // NxDate
    SignedBytes(3),                                                                  // NxTime
    Number(Kind::kUnsigned, 4),                                                      // BlockId
    {{{Kind::kUnsigned, 8, 2}, {Kind::kUnsigned, 4, 4}}},                            // NxObjId: high, low
    {{{Kind::kNullClass, 0, 4}, {Kind::kUnsigned, 0, 2}, {Kind::kUnsigned, 2, 2}}},  // NxClassId
    {{{Kind::kUnsigned, 10, 2}, {Kind::kUnsigned, 8, 2}, {Kind::kUnsigned, 4, 4}}},  // NxRef: database first
    {},                                                                              // NxBlob
    YearAndBytes(Kind::kSigned, 5),                                                  // NxDateTime
    {},                                                                              // NxIString
    {},                                                                              // NxCaseIString
    YearAndBytes(Kind::kUnsigned, 2),                                                // d_Date
    SignedBytes(6),                                                                  // d_Time
    YearAndBytes(Kind::kUnsigned, 8),                                                // d_Timestamp
    Number(Kind::kFloating, 4),                                                      // d_Interval
    {{{Kind::kSigned, 4, 4}, {Kind::kUnsigned, 0, 4}}},                              // NxInt64: high, low
    Number(Kind::kBoolean, 1),                                                       // NxBoolean
    NullableNumber(Kind::kSigned, 1),                                                // NxNull_char
    NullableNumber(Kind::kUnsigned, 1),                                              // NxNull_uchar
    NullableNumber(Kind::kSigned, 2),                                                // NxNull_short
    NullableNumber(Kind::kUnsigned, 2),                                              // NxNull_ushort
    NullableNumber(Kind::kSigned, 4),                                                // NxNull_int
    NullableNumber(Kind::kUnsigned, 4),                                              // NxNull_unsigned
    NullableNumber(Kind::kSigned, 4),                                                // NxNull_long
    NullableNumber(Kind::kUnsigned, 4),                                              // NxNull_ulong
    NullableNumber(Kind::kFloating, 4),                                              // NxNull_float
    NullableNumber(Kind::kFloating, 8),                                              // NxNull_double
    {{{Kind::kNullFlag, 0, 1}, {Kind::kSigned, 5, 4}, {Kind::kUnsigned, 1, 4}}},     // NxNull_NxInt64
    {{{Kind::kUnsigned, 0, 1},
      {Kind::kUnsigned, 1, 1},
      {Kind::kUnsigned, 2, 1},  // NxSeal
      {Kind::kUnsigned, 3, 1},
      {Kind::kUnsigned, 4, 1},
      {Kind::kUnsigned, 5, 1}}},
    {},  // illegal
};

const FieldOrder* FieldOrderOf(char typeId) {
  const auto id = static_cast<unsigned char>(typeId);
  return id < kTypeCount && kFieldOrders[id].fields[0].kind != Kind::kNone ? &kFieldOrders[id] : nullptr;
}

/// The image of a value under format code 1.
class PlainImage {
 public:
  static constexpr unsigned long kMost = 20;

  /// False when the buffer does not hold the value.
  bool Read(char typeId, const void* value, unsigned char format, unsigned long length) {
    const NxTypeTab& type = *NxNewtypetab[static_cast<unsigned char>(typeId)];
    const auto size = static_cast<unsigned long>(type.NullSizeGet(1));
    if (NxInMemory(format)) {
      type.Store(bytes, value, kFormatNative, 1);
      return true;
    }
    if (length != 0 && length < size) return false;
    if ((format & kFormatCodeMask) == kFormatNative) {
      std::memcpy(bytes, value, size);
      return true;
    }
    alignas(8) unsigned char loaded[2 * kMost] = {};
    type.Load(loaded, value, format, 1);
    type.Store(bytes, loaded, kFormatNative, 1);
    return true;
  }

  unsigned char bytes[kMost];
};

/// The first `n` of the fields that decide.
void WriteFields(const FieldOrder& order, const PlainImage& image, NxKeyWriter& key,
                 unsigned n = kAllFields) {
  for (const Field& field : order.fields) {
    if (field.kind == Kind::kNone || n-- == 0) return;
    const unsigned char* const bytes = image.bytes + field.offset;
    unsigned long long value = 0;
    for (unsigned i = field.width; i-- > 0;) value = value << 8 | bytes[i];
    const unsigned long long sign = field.width != 0 ? 1ULL << (8 * field.width - 1) : 0;
    switch (field.kind) {
      case Kind::kNullFlag:
        key.Put(value != 1);
        if (value == 1) return;
        continue;
      case Kind::kNullClass:
        key.Put(value != 0xFFFFFFFF);
        if (value == 0xFFFFFFFF) return;
        continue;
      case Kind::kBoolean:  // null, false, true
        key.Put(value == 0xFF ? 0 : value == 0 ? 1 : 2);
        continue;
      case Kind::kFloating:
        if (value == sign) value = 0;  // -0 is 0
        value = value & sign ? ~value : value | sign;
        break;
      case Kind::kSigned:
        value ^= sign;
        break;
      default:
        break;
    }
    for (unsigned i = field.width; i-- > 0;) key.Put(static_cast<unsigned>(value >> 8 * i & 0xFF));
  }
}

// ---------------------------------------------------------------------------
// Texts

/// A text taken out of a value or an image, with a zero character behind it.
class KeyText {
 public:
  KeyText() = default;
  KeyText(const KeyText&) = delete;
  KeyText& operator=(const KeyText&) = delete;
  ~KeyText() { delete[] heap_; }

  /// False for an image that is not whole and sound, or for want of memory.
  bool Read(const void* value, unsigned char format, unsigned long length) {
    if (NxInMemory(format)) {
      const NxString& s = *static_cast<const NxString*>(value);
      text = {s._nCodeSet, s._nLanguage, s._pBuffer, kFormatNative};
      return true;
    }
    const unsigned char code = format & kFormatCodeMask;
    const NxStoredString image(value, length ? length : ~0UL, code);
    if (image.n == 0 || !image.Fits()) return false;
    if (!image.early) {
      if (image.n < NxStoredString::kEmptyLength || image.bytes[image.n] != 0) return false;
      if (image.codeSet == kCodeSetOrderValues && (image.language & kMixedCollation)) return false;
    }
    text = {image.codeSet, image.language, nullptr, code};
    if (NxCharWidth(image.codeSet) == 1) {  // it stands there already
      text.text = reinterpret_cast<const char*>(image.Text());
      return true;
    }
    return Close(image.Text(), image.TextBytes());
  }

  NxKeyText text = {};

 private:
  static constexpr unsigned long kClosingZeros = 3;  // an odd byte and a 16-bit zero

  bool Close(const unsigned char* bytes, unsigned long n) {
    char* copy = local_;
    if (n + kClosingZeros > sizeof local_ && !(copy = heap_ = NxNewArray<char>(n + kClosingZeros)))
      return false;
    std::memcpy(copy, bytes, n);
    std::memset(copy + n, 0, kClosingZeros);
    text.text = copy;
    return true;
  }

  char* heap_ = nullptr;
  char local_[512];
};

/// A text of an alphabetic string, with the form in which its bytes are.
struct AlphaText {
  NxTextSpan span;
  unsigned char form;

  /// False for an image that is not whole.
  bool Read(const void* value, unsigned char format, unsigned long length) {
    if (NxInMemory(format)) {
      const NxIString& s = *static_cast<const NxIString*>(value);  // both classes lie alike
      span = NxTextOf(s._pStr);
      form = s._nForm;
      return true;
    }
    NxAlphaImage image(value, length ? length : kNoLimit, format & kFormatCodeMask);
    if (length != 0 && (length < NxAlphaImage::kHeadSize || length - NxAlphaImage::kHeadSize < image.total))
      return false;
    span = NxNextText(image.texts);
    form = image.header;
    return true;
  }
};

/// The sort keys of the letters, up to `limit` of them; then, when all are written, a zero.
template <class Text>
void WriteAlphaKey(const AlphaText& text, unsigned long limit, NxKeyWriter& key) {
  NxKeyReader keys(NxAlphaRules<Text>::kMap, text.span, text.form);
  for (; limit > 0 && !keys.AtEnd(); --limit) key.Put(keys.Next());
  if (limit > 0) key.Put(0);
}

void WriteAlphaKey(char typeId, const AlphaText& text, unsigned long limit, NxKeyWriter& key) {
  if (typeId == kIStringTypeId)
    WriteAlphaKey<NxIString>(text, limit, key);
  else
    WriteAlphaKey<NxCaseIString>(text, limit, key);
}

bool IsAlpha(char typeId) { return typeId == kIStringTypeId || typeId == kCaseIStringTypeId; }

/// NxSortKey of what it does not write itself.
[[gnu::noinline]] unsigned long WriteOthers(char typeId, const void* value, unsigned char format,
                                            unsigned long length, unsigned short options, void* key,
                                            unsigned long room) {
  NxKeyWriter writer(key, room, (options & kSortKeyDescending) != 0);
  if (typeId == kStringTypeId) {
    KeyText text;
    if (!text.Read(value, format, length) || !NxWriteTextKey(text.text, writer)) return 0;
  } else if (IsAlpha(typeId)) {
    AlphaText text;
    if (!text.Read(value, format, length)) return 0;
    WriteAlphaKey(typeId, text, kNoLimit, writer);
  } else if (const FieldOrder* order = FieldOrderOf(typeId)) {
    PlainImage image;
    if (!image.Read(typeId, value, format, length)) return 0;
    WriteFields(*order, image, writer);
  }
  return writer.Length();
}

}  // namespace

unsigned long NxSortKey(char typeId, const void* value, unsigned char format, unsigned long length,
                        unsigned short options, void* key, unsigned long room) {
  if (typeId == kStringTypeId && format == kFormatNative && !(options & kSortKeyDescending)) {
    static_assert(kBeforePlainText <= NxStoredString::kHeadSize);
    unsigned size;
    if (const NxOrderTable* const table = NxTableOfStored(value, length, size))
      if (const unsigned n = NxWritePlainKey(*table, NxStoredString::TextOf(value), size,
                                             static_cast<unsigned char*>(key), room))
        return n;
  }
  return WriteOthers(typeId, value, format, length, options, key, room);
}

// ---------------------------------------------------------------------------
// Bounds

namespace {

/// A bound that is being built. Its bytes are allocated when their number is known.
struct Bound {
  void* bytes = nullptr;
  unsigned long length = 0;

  /// What write(NxKeyWriter&) writes. False for want of memory.
  template <class Write>
  bool Make(Write write) {
    NxKeyWriter count(nullptr, 0);
    write(count);
    bytes = NxAllocate(count.Length());
    if (!bytes) return false;
    NxKeyWriter writer(bytes, count.Length());
    write(writer);
    length = writer.Length();
    return true;
  }
};

/// The first byte string behind all that begin with a prefix: nothing when it is all FF.
bool RaisePrefix(Bound& bound) {
  auto* const bytes = static_cast<unsigned char*>(bound.bytes);
  for (; bound.length > 0; --bound.length)
    if (++bytes[bound.length - 1] != 0) return true;
  std::free(bound.bytes);
  bound.bytes = nullptr;
  return true;
}

/// Builds the range of a term.
class RangeMaker {
 public:
  RangeMaker(unsigned short options, NxSortKeyRange& range) : options_(options), range_(range) {
    range_ = {};
  }

  /// Between values that compare with the term as their keys do with its key.
  template <class Write>
  bool Exact(Write write, bool openBelow = false) {
    const auto andAll = [&write](NxKeyWriter& key) { write(key), key.Put(0); };
    Bound lower, upper;
    if (!Has(kRelationLess) && !openBelow && !(Has(kRelationEqual) ? lower.Make(write) : lower.Make(andAll)))
      return false;
    if (!Has(kRelationGreater) && !(Has(kRelationEqual) ? upper.Make(andAll) : upper.Make(write))) {
      std::free(lower.bytes);
      return false;
    }
    return Take(lower, upper);
  }

  /// Where values whose keys begin with the prefix compare somehow with the term, and the
  /// others as their keys do. `raise(bound)` makes of the prefix what lies behind them all.
  template <class Write, class Raise>
  bool ByPrefix(Write write, Raise raise, bool openBelow = false) {
    Bound lower, upper;
    if (!Has(kRelationLess) && !openBelow && !lower.Make(write)) return false;
    if (!Has(kRelationGreater) && !(upper.Make(write) && raise(upper))) {
      std::free(lower.bytes);
      return false;
    }
    return Take(lower, upper);
  }

  bool Has(unsigned short bit) const { return (options_ & bit) != 0; }

 private:
  bool Take(const Bound& lower, const Bound& upper) {
    range_ = {lower.bytes, upper.bytes, lower.length, upper.length};
    return true;
  }

  const unsigned short options_;
  NxSortKeyRange& range_;
};

bool BoundText(const KeyText& term, RangeMaker& maker) {
  const NxKeyText& text = term.text;
  const bool wildcards = !maker.Has(kWildcardsOff);
  const bool isNull = text.language == kLanguageNull;
  const auto whole = [&text](NxKeyWriter& key) { NxWriteTextKey(text, key); };
  if (isNull) return maker.Exact(whole);
  // A text without code set is compared with others in the native one; order values alone
  // have another order, and a text of them compares without the selectors of the others.
  if (text.codeSet == kCodeSetNone || text.codeSet == kCodeSetOrderValues || maker.Has(kOrderValuesOnly))
    return true;
  NxKeyWriter count(nullptr, 0);
  const bool pattern = NxWriteTextKeyPrefix(text, wildcards, count);
  // With wildcards a null value compares as an empty text, and its key lies before all others.
  const bool openBelow = wildcards && count.Length() == 0;
  const bool ignores = maker.Has(kIgnoreCase | kIgnoreAccents | kSkipSpaces | kSkipSymbols);
  if (!pattern && !ignores) return maker.Exact(whole, openBelow);
  const auto prefix = [&](NxKeyWriter& key) { NxWriteTextKeyPrefix(text, wildcards, key); };
  if (pattern) return maker.ByPrefix(prefix, RaisePrefix, openBelow);
  const auto closed = [&](NxKeyWriter& key) { prefix(key), key.Put(kAfterBaseLetters); };
  return maker.ByPrefix(
      prefix, [&](Bound& bound) { return std::free(bound.bytes), bound.Make(closed); }, openBelow);
}

bool BoundAlpha(char typeId, const AlphaText& term, RangeMaker& maker) {
  const bool wildcards = !maker.Has(kWildcardsOff) && !maker.Has(kOrderValuesOnly);
  const auto whole = [&](NxKeyWriter& key) { WriteAlphaKey(typeId, term, kNoLimit, key); };
  if (!wildcards) return maker.Exact(whole);
  // While wildcards are active the folding type lets accents move a letter in the order.
  if (typeId == kCaseIStringTypeId || (term.form & kAlphaKeys)) return true;
  unsigned long length = 0;  // of the text before its first wildcard
  while (length < term.span.Size() && term.span.at[length] && !std::strchr("?*\\", term.span.at[length]))
    ++length;
  const bool pattern = length < term.span.Size() && term.span.at[length];
  const auto before = [&](NxKeyWriter& key) { WriteAlphaKey(typeId, term, length, key); };
  if (pattern) return maker.ByPrefix(before, RaisePrefix);
  // Bytes decide between texts of equal letters.
  return maker.ByPrefix(whole, RaisePrefix);
}

/// Fields of a term that begins with a date, before the first that stands for any.
unsigned FieldsBeforeWildcard(const PlainImage& term) {
  if (term.bytes[0] == kNullDateField && term.bytes[1] == kNullDateField) return 0;
  if (term.bytes[2] == kNullDateField) return 1;
  return term.bytes[3] == kNullDateField ? 2 : kAllFields;
}

bool BoundFields(char typeId, const PlainImage& term, RangeMaker& maker) {
  constexpr char kDateTypeId = 12;
  constexpr char kStandardDateTypeId = 22;
  constexpr char kTimestampTypeId = 24;
  const FieldOrder& order = *FieldOrderOf(typeId);
  const bool isDate = typeId == kDateTypeId || typeId == kStandardDateTypeId || typeId == kTimestampTypeId;
  const unsigned fields = isDate && !maker.Has(kWildcardsOff) ? FieldsBeforeWildcard(term) : kAllFields;
  const auto write = [&](NxKeyWriter& key) { WriteFields(order, term, key, fields); };
  if (fields == 0) return true;
  return fields < kAllFields ? maker.ByPrefix(write, RaisePrefix) : maker.Exact(write);
}

}  // namespace

int NxSortKeyBounds(char typeId, const void* term, unsigned char format, unsigned long length,
                    unsigned short options, NxSortKeyRange& range) {
  RangeMaker maker(options, range);
  if (typeId == kStringTypeId) {
    KeyText text;
    return text.Read(term, format, length) && BoundText(text, maker);
  }
  if (IsAlpha(typeId)) {
    AlphaText text;
    return text.Read(term, format, length) && BoundAlpha(typeId, text, maker);
  }
  if (!FieldOrderOf(typeId)) return 0;
  PlainImage image;
  return image.Read(typeId, term, format, length) && BoundFields(typeId, image, maker);
}
