// Life cycle, stored images and translation of the fixed-size types. Each family is
// one template or one function; the slots are its instances under their own names.

#include "nxtypes.h"

#include <algorithm>
#include <cstring>

#include "nxbool.h"
#include "nxcomp.h"
#include "nxconv.h"
#include "nxint64.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"

void* NxDefaultFromEmptyText(NxSlot::ConvertFrom* convertFrom, unsigned long n) {
  NxString* texts = NxNewArray<NxString>(n);
  if (!texts) return nullptr;
  void* values;
  {
    NxTypeConvertData record(kStringTypeId, n, texts, nullptr);  // the texts stay ours
    values = convertFrom(&record, n);
  }
  delete[] texts;
  return values;
}

// ---------------------------------------------------------------------------
// Life cycle

NX_LIFE_CYCLE(Short, Short, NxArrayForm<short>, NxPlainValues<short>)
NX_LIFE_CYCLE(Int, Int, NxArrayForm<int>, NxPlainValues<int>)
NX_LIFE_CYCLE(Long, Long, NxArrayForm<long>, NxPlainValues<long>)
NX_LIFE_CYCLE(Float, Float, NxArrayForm<float>, NxPlainValues<float>)
NX_LIFE_CYCLE(Double, Double, NxArrayForm<double>, NxPlainValues<double>)
NX_LIFE_CYCLE(NxDate, NxDate, NxClockForm<NxDate>, NxPlainValues<NxDate>)
NX_LIFE_CYCLE(NxTime, NxTime, NxClockForm<NxTime>, NxPlainValues<NxTime>)
NX_LIFE_CYCLE(NxInt64, Int64, NxObjectForm<NxInt64>, NxPlainValues<NxInt64>)
NX_LIFE_CYCLE(NxBoolean, Boolean, NxObjectForm<NxBoolean>, NxPlainValues<NxBoolean>)
NX_LIFE_CYCLE(NxSeal, Seal, NxObjectForm<NxSeal>, NxPlainValues<NxSeal>)

namespace {

/// Chars are made zero-filled.
struct CharForm : NxArrayForm<char> {
  static void* Create(unsigned long n) { return NxNewZeroArray<char>(n); }
};

}  // namespace

NX_LIFE_CYCLE(Char, Char, CharForm, NxPlainValues<char>)

void* CharDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(CharConvertFromNxString, n); }
void* ShortDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(ShortConvertFromNxString, n); }
void* IntDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(IntConvertFromNxString, n); }
void* LongDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(LongConvertFromNxString, n); }
void* FloatDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(FloatConvertFromNxString, n); }
void* DoubleDefaultValue(unsigned long n, int) {
  return NxDefaultFromEmptyText(DoubleConvertFromNxString, n);
}
void* Int64DefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(Int64ConvertFromNxString, n); }
void* SealDefaultValue(unsigned long n, int) { return NxDefaultFromEmptyText(SealConvertFromNxString, n); }
void* NxDateDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxDate, NxClockForm<NxDate>>(n)
                : NxDefaultFromEmptyText(NxDateConvertFromNxString, n);
}
void* NxTimeDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxTime, NxClockForm<NxTime>>(n)
                : NxDefaultFromEmptyText(NxTimeConvertFromNxString, n);
}
void* NxBooleanDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxBoolean>(n) : NxDefaultFromEmptyText(BooleanConvertFromNxString, n);
}

// ---------------------------------------------------------------------------
// Stored images

namespace {

constexpr unsigned long kYearBytes = 2;  // then month and day
constexpr unsigned long kDateBytes = 4;
constexpr unsigned long kTimeBytes = 3;
constexpr unsigned long kInt64Bytes = 8;
constexpr unsigned long kBooleanBytes = 1;
constexpr unsigned long kSealBytes = 6;

/// Store and Load of dates: the year changes its byte order, the rest does not.
int ConvertDates(void* dst, const void* src, unsigned char format, unsigned long n) {
  auto* to = static_cast<unsigned char*>(dst);
  auto* from = static_cast<const unsigned char*>(src);
  for (unsigned long i = 0; i < n; ++i, to += kDateBytes, from += kDateBytes) {
    ShortStore(to, from, format & kFormatCodeMask, 1);
    std::memmove(to + kYearBytes, from + kYearBytes, kDateBytes - kYearBytes);
  }
  return NxStoredSize(kDateBytes, n);
}

}  // namespace

int DateStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return ConvertDates(image, values, format, n);
}
int DateLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return ConvertDates(values, image, format, n);
}

int TimeStore(void* image, const void* values, unsigned char, unsigned long n) {
  return CharStore(image, values, kFormatNative, kTimeBytes * n);
}
int TimeLoad(void* values, const void* image, unsigned char, unsigned long n) {
  return CharStore(values, image, kFormatNative, kTimeBytes * n);
}

// Both halves of a 64-bit integer are longs, the low one first in every code.

int Int64Store(void* image, const void* values, unsigned char format, unsigned long n) {
  return LongStore(image, values, format & kFormatCodeMask, 2 * n);
}
int Int64Load(void* values, const void* image, unsigned char format, unsigned long n) {
  return LongStore(values, image, format & kFormatCodeMask, 2 * n);
}

int BooleanStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return CharStore(image, values, format & kFormatCodeMask, n);
}
int BooleanLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return CharStore(values, image, format & kFormatCodeMask, n);
}

// Seals are stored most significant byte first, so that their images order as bytes.

int SealStore(void* image, const void* values, unsigned char, unsigned long n) {
  return ShortStore(image, values, kFormatBigEndian, 3 * n);
}
int SealLoad(void* values, const void* image, unsigned char, unsigned long n) {
  return ShortStore(values, image, kFormatBigEndian, 3 * n);
}

NX_FIXED_SIZE(Date, kDateBytes)
NX_FIXED_SIZE(Time, kTimeBytes)
NX_FIXED_SIZE(Int64, kInt64Bytes)
NX_FIXED_SIZE(Boolean, kBooleanBytes)
NX_FIXED_SIZE(Seal, kSealBytes)

int CharSizeGetFromMemFile(MemFile*, unsigned char, unsigned long n) { return NxStoredSize(1, n); }
int ShortSizeGetFromMemFile(MemFile*, unsigned char, unsigned long n) { return NxStoredSize(2, n); }
int LongSizeGetFromMemFile(MemFile*, unsigned char, unsigned long n) { return NxStoredSize(4, n); }
int IntSizeGetFromMemFile(MemFile*, unsigned char format, unsigned long n) {
  return IntSizeGet(nullptr, kFormatMemory, format, n);
}
int FloatSizeGetFromMemFile(MemFile*, unsigned char format, unsigned long n) {
  return FloatSizeGet(nullptr, kFormatMemory, format, n);
}
int DoubleSizeGetFromMemFile(MemFile*, unsigned char format, unsigned long n) {
  return DoubleSizeGet(nullptr, kFormatMemory, format, n);
}

// ---------------------------------------------------------------------------
// Translation

NX_FIXED_TRANSLATE(CharTranslate, sizeof(char), CharStore, CharStore)
NX_FIXED_TRANSLATE(ShortTranslate, sizeof(short), ShortStore, ShortStore)
NX_FIXED_TRANSLATE(IntTranslate, sizeof(int), IntLoad, IntStore)
NX_FIXED_TRANSLATE(EnumTranslate, sizeof(int), IntLoad, IntStore)
NX_FIXED_TRANSLATE(UnsignedTranslate, sizeof(unsigned), UnsignedLoad, UnsignedStore)
NX_FIXED_TRANSLATE(LongTranslate, sizeof(long), LongStore, LongStore)
NX_FIXED_TRANSLATE(FloatTranslate, sizeof(float), FloatStore, FloatStore)
NX_FIXED_TRANSLATE(DoubleTranslate, sizeof(double), DoubleStore, DoubleStore)
NX_FIXED_TRANSLATE(NxDateTranslate, sizeof(NxDate), DateLoad, DateStore)
NX_FIXED_TRANSLATE(NxTimeTranslate, sizeof(NxTime), TimeLoad, TimeStore)
NX_FIXED_TRANSLATE(Int64Translate, sizeof(NxInt64), Int64Load, Int64Store)
NX_FIXED_TRANSLATE(BooleanTranslate, sizeof(NxBoolean), BooleanLoad, BooleanStore)
NX_FIXED_TRANSLATE(SealTranslate, sizeof(NxSeal), SealLoad, SealStore)

// ---------------------------------------------------------------------------
// Null state

int NoIsNullDefined(void*) { return 0; }

int NxDateIsNull(void* value) { return static_cast<NxDate*>(value)->IsNullValue(); }
int NxDateSetNull(void* value) { return static_cast<NxDate*>(value)->SetNullValue(); }
int NxTimeIsNull(void* value) { return static_cast<NxTime*>(value)->IsNullValue(); }
int NxTimeSetNull(void* value) { return static_cast<NxTime*>(value)->SetNullValue(); }
int NxBooleanIsNull(void* value) { return static_cast<NxBoolean*>(value)->IsNullValue(); }
int NxBooleanSetNull(void* value) { return static_cast<NxBoolean*>(value)->SetNullValue(); }

// ---------------------------------------------------------------------------
// The illegal type: nothing is done, and 0 answered.

void* NxIllegalCreate(unsigned long) { return nullptr; }
int NxIllegalDelete(void*, unsigned long) { return 0; }
int NxIllegalStore(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxIllegalLoad(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxIllegalNullSizeGet(unsigned long) { return 0; }
int NxIllegalSizeGet(const void*, unsigned char, unsigned char, unsigned long) { return 0; }
int NxIllegalSizeGetFromMemFile(MemFile*, unsigned char, unsigned long) { return 0; }
long NxIllegalCompare(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short,
                      unsigned long, int&) {
  return 0;
}
float NxIllegalEvalAndBound(NxIdxBounds*, unsigned short&, void*, unsigned char, unsigned long,
                            NxIdxBounds*) {
  return 0;
}
unsigned long NxIllegalHash(unsigned char, unsigned long, void*, unsigned long, int&) { return 0; }
NxTypeConvertData* NxIllegalConvertTo(void*, unsigned long) { return nullptr; }
void* NxIllegalConvertFrom(NxTypeConvertData*, unsigned long) { return nullptr; }
void NxIllegalConstructor(void*, unsigned long, unsigned long) {}
void NxIllegalDestructor(void*, unsigned long, unsigned long) {}
void NxIllegalAssignment(void*, void*, unsigned long, int) {}
void NxIllegalCopy(void*, void*, unsigned long, int) {}
int NxIllegalTranslate(void*, unsigned char, unsigned long, void*, unsigned char, unsigned long,
                       unsigned long) {
  return 0;
}
NxString& NxIllegalPrintToNxString(NxString& out, void*, const char*, unsigned long) { return out; }
void* NxIllegalScanFromNxString(void*, NxString&, const char*, unsigned long) { return nullptr; }
void* NxIllegalDefaultValue(unsigned long, int) { return nullptr; }
