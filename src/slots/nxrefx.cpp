// The slots of identifiers and references. Their texts are in values/nxreftext.cpp.
#include "nxrefx.h"

#include <cstring>

#include "nxtypes.h"
#include "nxtypevl.h"
#include "slots/nxconvkit.h"
#include "slots/nxelement.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"
#include "slots/nxterm.h"

namespace {

// Bytes of the images, embedded in databases and never to change.
constexpr unsigned long kObjIdBytes = 10;
constexpr unsigned long kClassIdBytes = 4;
constexpr unsigned long kRefBytes = 14;

// Places of the fields in an image. All but the last stand at the same ones in memory.
constexpr unsigned kLow = offsetof(NxObjId, low);
constexpr unsigned kHigh = offsetof(NxObjId, high);
constexpr unsigned kClassNumber = offsetof(NxClassId, classNumber);
constexpr unsigned kVersion = offsetof(NxClassId, version);
constexpr unsigned kStoredDatabase = 10;  // of a reference; behind it the class number

// ... and of those that references keep elsewhere in memory.
constexpr unsigned kDatabase = offsetof(NxRef, database);
constexpr unsigned kClassOfRef = offsetof(NxRef, classId);
static_assert(kClassOfRef == kDatabase + 2, "database and class number move together");

template <class T>
T FieldAt(const void* image, unsigned place) {
  return NxReadValue<T>(static_cast<const unsigned char*>(image) + place);
}

/// Values of which a new one has zeros in its first kData bytes. None is at a null place.
template <class T, unsigned long kData>
struct ZeroValues : NxPlainValues<T> {
  static void Construct(void* place, unsigned long n) {
    if (!place) return;
    auto* p = static_cast<unsigned char*>(place);
    for (unsigned long i = 0; i < n; ++i, p += sizeof(T)) std::memset(p, 0, kData);
  }
};

using ObjIdValues = ZeroValues<NxObjId, kObjIdBytes>;
using ClassIdValues = ZeroValues<NxClassId, sizeof(NxClassId)>;
using RefValues = ZeroValues<NxRef, sizeof(NxRef)>;

template <class T>
NxTypeConvertData* TextsOf(void* values, unsigned long n) {
  return NxTextsOf<T>(values, n, [](const T& v, NxString& s) {
    if (v.IsNullValue())
      s.SetNullValue();
    else
      v.PrintToNxString(s, nullptr);
  });
}

template <class T>
void* ValuesOf(NxTypeConvertData* strings, unsigned long n) {
  T null;
  null.SetNullValue();
  return NxValuesOf<T>(strings, n, T::Create, T::Delete, null, [](const NxString& s) {
    T v;
    v.ScanFromNxString(s, nullptr);
    return v;
  });
}

}  // namespace

// ---------------------------------------------------------------------------
// What does not depend on the fields

#define NX_IDENTIFIER_SLOTS(Class, Values, storedBytes)                                               \
  void* Class::Create(unsigned long n) { return NxObjectForm<Class>::Create(n); }                     \
  int Class::Delete(void* values, unsigned long n) { return NxObjectForm<Class>::Delete(values, n); } \
  NX_PLACES(Class, Values)                                                                            \
  int Class::NullSizeGet(unsigned long n) { return NxStoredSize(storedBytes, n); }                    \
  int Class::SizeGet(const void*, unsigned char, unsigned char, unsigned long n) {                    \
    return NxStoredSize(storedBytes, n);                                                              \
  }                                                                                                   \
  int Class::SizeGetFromMemFile(MemFile*, unsigned char, unsigned long n) {                           \
    return NxStoredSize(storedBytes, n);                                                              \
  }                                                                                                   \
  NX_FIXED_TRANSLATE(Class::Translate, sizeof(Class), Class::Load, Class::Store)                      \
  NxTypeConvertData* Class::ConvertToNxString(void* values, unsigned long n) {                        \
    return TextsOf<Class>(values, n);                                                                 \
  }                                                                                                   \
  void* Class::ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {                     \
    return ValuesOf<Class>(strings, n);                                                               \
  }                                                                                                   \
  void* Class##DefaultValue(unsigned long n, int asNull) {                                            \
    return asNull ? NxNullValues<Class>(n) : NxDefaultFromEmptyText(Class::ConvertFromNxString, n);   \
  }

NX_IDENTIFIER_SLOTS(NxObjId, ObjIdValues, kObjIdBytes)
NX_IDENTIFIER_SLOTS(NxClassId, ClassIdValues, kClassIdBytes)
NX_IDENTIFIER_SLOTS(NxRef, RefValues, kRefBytes)

#undef NX_IDENTIFIER_SLOTS

// ---------------------------------------------------------------------------
// Stored images

namespace {

/// Store and Load of object identifiers, which stand at distances of their own.
void ConvertObjId(unsigned char* to, const unsigned char* from, unsigned char code) {
  LongStore(to, from, code, 2);  // block and low
  ShortStore(to + kHigh, from + kHigh, code, 1);
}

template <unsigned long kTo, unsigned long kFrom, class Convert>
void ForEach(void* to, const void* from, unsigned long n, Convert convert) {
  auto* dst = static_cast<unsigned char*>(to);
  auto* src = static_cast<const unsigned char*>(from);
  for (unsigned long i = 0; i < n; ++i, dst += kTo, src += kFrom) convert(dst, src);
}

}  // namespace

int NxObjId::Store(void* image, const void* values, unsigned char format, unsigned long n) {
  const unsigned char code = format & kFormatCodeMask;
  ForEach<kObjIdBytes, sizeof(NxObjId)>(
      image, values, n,
      [code](unsigned char* to, const unsigned char* from) { ConvertObjId(to, from, code); });
  return NxStoredSize(kObjIdBytes, n);
}
int NxObjId::Load(void* values, const void* image, unsigned char format, unsigned long n) {
  const unsigned char code = format & kFormatCodeMask;
  ForEach<sizeof(NxObjId), kObjIdBytes>(
      values, image, n,
      [code](unsigned char* to, const unsigned char* from) { ConvertObjId(to, from, code); });
  return NxStoredSize(kObjIdBytes, n);
}

int NxClassId::Store(void* image, const void* values, unsigned char format, unsigned long n) {
  return ShortStore(image, values, format & kFormatCodeMask, 2 * n);
}
int NxClassId::Load(void* values, const void* image, unsigned char format, unsigned long n) {
  return ShortStore(values, image, format & kFormatCodeMask, 2 * n);
}

// The image of a reference has no version.

int NxRef::Store(void* image, const void* values, unsigned char format, unsigned long n) {
  const unsigned char code = format & kFormatCodeMask;
  ForEach<kRefBytes, sizeof(NxRef)>(image, values, n, [code](unsigned char* to, const unsigned char* from) {
    ConvertObjId(to, from, code);
    ShortStore(to + kStoredDatabase, from + kDatabase, code, 2);
  });
  return NxStoredSize(kRefBytes, n);
}
int NxRef::Load(void* values, const void* image, unsigned char format, unsigned long n) {
  const unsigned char code = format & kFormatCodeMask;
  ForEach<sizeof(NxRef), kRefBytes>(values, image, n, [code](unsigned char* to, const unsigned char* from) {
    ConvertObjId(to, from, code);
    ShortStore(to + kDatabase, from + kStoredDatabase, code, 2);
    std::memset(to + kClassOfRef + kVersion, 0, 2);
  });
  return NxStoredSize(kRefBytes, n);
}

// ---------------------------------------------------------------------------
// Comparison

namespace {

// Images compare byte by byte from the last that counts to the first, whatever the byte
// order of their format: as numbers whose least significant byte is the first.

/// The difference of the most significant bytes that differ.
long OrderBytes(unsigned long a, unsigned long b) {
  if (a == b) return 0;
  const int shift = (31 - __builtin_clzl(a ^ b)) & ~7;
  return static_cast<long>(a >> shift & 0xFF) - static_cast<long>(b >> shift & 0xFF);
}

/// By the high part, which Top reads with what is stored behind it, then by the low one.
template <class Top>
long OrderObjectImages(const void* a, const void* b) {
  const long tops = OrderBytes(FieldAt<Top>(a, kHigh), FieldAt<Top>(b, kHigh));
  return tops != 0 ? tops : OrderBytes(FieldAt<unsigned long>(a, kLow), FieldAt<unsigned long>(b, kLow));
}
constexpr auto OrderObjIdImages = OrderObjectImages<unsigned short>;
constexpr auto OrderRefImages = OrderObjectImages<unsigned long>;
static_assert(kStoredDatabase == kHigh + 2, "a reference's database counts above the high part");

/// Null sorts first, though its number and version are the highest.
long OrderClassIdImages(const void* a, const void* b) {
  const auto first = NxReadValue<NxClassId>(a), second = NxReadValue<NxClassId>(b);
  const long numbers = OrderBytes(first.classNumber, second.classNumber);
  const long difference = numbers != 0 ? numbers : OrderBytes(first.version, second.version);
  if (difference == 0) return 0;
  if (first.IsNullValue()) return -1;  // all its bits are set, in every byte order
  if (second.IsNullValue()) return 1;
  return difference;
}

template <class T>
long OrderValues(const void* a, const void* b) {
  return NxReadValue<T>(a) != NxReadValue<T>(b);
}

}  // namespace

#define NX_COMPARE_IDENTIFIERS(Class, storedBytes, orderImages)                                    \
  long Class::Compare(unsigned char format, unsigned long len1, void* value1, unsigned long len2,  \
                      void* value2, unsigned short /*options*/, unsigned long count, int& error) { \
    const unsigned long size = NxInMemory(format) ? sizeof(Class) : (storedBytes);                 \
    const NxOperands arrays = {{value1, len1, count, size}, {value2, len2, count, size}};          \
    if (NxInMemory(format)) return NxCompareArrays(arrays, count, error, OrderValues<Class>);      \
    return NxCompareArrays(arrays, count, error, orderImages);                                     \
  }

NX_COMPARE_IDENTIFIERS(NxObjId, kObjIdBytes, OrderObjIdImages)
NX_COMPARE_IDENTIFIERS(NxClassId, kClassIdBytes, OrderClassIdImages)
NX_COMPARE_IDENTIFIERS(NxRef, kRefBytes, OrderRefImages)

#undef NX_COMPARE_IDENTIFIERS

// ---------------------------------------------------------------------------
// Hashing
//
// Images are read as they stand, whatever the byte order of their format.

unsigned long NxObjId::Hash(unsigned char format, unsigned long len, void* value, unsigned long count,
                            int& error) {
  const unsigned long size = NxInMemory(format) ? sizeof(NxObjId) : kObjIdBytes;
  return NxHashArray({value, len, count, size}, count, error, [](const void* p) {
    return FieldAt<unsigned long>(p, kLow) ^ FieldAt<unsigned short>(p, kHigh);
  });
}

unsigned long NxClassId::Hash(unsigned char /*format*/, unsigned long len, void* value, unsigned long count,
                              int& error) {
  return NxHashArray({value, len, count, kClassIdBytes}, count, error, [](const void* p) {
    return static_cast<unsigned long>(FieldAt<unsigned short>(p, kClassNumber) ^
                                      FieldAt<unsigned short>(p, kVersion));
  });
}

unsigned long NxRef::Hash(unsigned char format, unsigned long len, void* value, unsigned long count,
                          int& error) {
  const bool inMemory = NxInMemory(format);
  const unsigned database = inMemory ? kDatabase : kStoredDatabase;
  return NxHashArray({value, len, count, inMemory ? sizeof(NxRef) : kRefBytes}, count, error,
                     [database](const void* p) {
                       return FieldAt<unsigned short>(p, database) ^ FieldAt<unsigned short>(p, kHigh) ^
                              FieldAt<unsigned long>(p, kLow);
                     });
}

// ---------------------------------------------------------------------------
// Bounds and estimates

float NxObjId::EvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                            unsigned char format, unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  // The high part counts 65535 times: plans rest on it, as images rest on their layout.
  const NxTerm<double> term(indexRange, key, kObjIdBytes, [format](const void* image) {
    NxObjId id;
    Load(&id, image, format, 1);
    return id.high * 65535.0 + id.low;
  });
  const double range = NxSelected(relation, term.key, term.low, term.high);
  SetBoundaries(bounds, key, relation, kObjIdBytes * count);
  return static_cast<float>(range / (term.high - term.low + 1));
}

float NxClassId::EvalAndBound(NxIdxBounds*, unsigned short&, void*, unsigned char, unsigned long,
                              NxIdxBounds*) {
  return 1;
}

float NxRef::EvalAndBound(NxIdxBounds* /*indexRange*/, unsigned short& relation, void* key,
                          unsigned char format, unsigned long count, NxIdxBounds* bounds) {
  // The part of all references that there may be: the index's range is not read.
  constexpr double kLows = 4294967295.0;
  constexpr double kAll = kLows * kLows;
  relation &= kRelationMask;
  NxRef ref;
  Load(&ref, key, format, 1);
  const double number = (ref.database * 65535.0 + ref.objId.high) * kLows + ref.objId.low;
  double selected = 0;
  if (relation & kRelationLess) selected += number;
  if (relation & kRelationGreater) selected += kAll - (number + 1);
  if (relation & kRelationEqual) selected += 1;
  SetBoundaries(bounds, key, relation, kRefBytes * count);
  return static_cast<float>(selected / kAll);
}

// ---------------------------------------------------------------------------
// Null states

int NxObjIdIsNull(void* value) { return NxReadValue<NxObjId>(value).IsNullValue(); }
int NxObjIdSetNull(void* value) {
  std::memset(value, 0, kObjIdBytes);
  return 0;
}

int NxRefIsNull(void* value) { return NxObjIdIsNull(value); }
int NxRefSetNull(void* value) { return NxObjIdSetNull(value); }

int NxClassIdIsNull(void* value) { return NxReadValue<NxClassId>(value).IsNullValue(); }
int NxClassIdSetNull(void* value) {
  std::memset(value, 0xFF, sizeof(NxClassId));
  return 0;
}
