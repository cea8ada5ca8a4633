// The slots of NxDateTime. A stored date-time is the seven bytes of its fields, and only
// the year has a byte order.
#include "nxdatimx.h"

#include <cstring>

#include "nxconv.h"
#include "nxdatime.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "slots/nxconvkit.h"
#include "slots/nxelement.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"
#include "slots/nxstoreddate.h"
#include "slots/nxterm.h"

namespace {

constexpr unsigned long kImageBytes = 7;
constexpr unsigned long kYearBytes = 2;  // then month, day, hour, minute, second

unsigned long ElementSize(unsigned char format) {
  return NxIsMemoryByte(format) ? sizeof(NxDateTime) : kImageBytes;
}

/// Converts a date-time between its two forms, which differ in the order of the year.
void ConvertFields(void* dst, const void* src, unsigned char format) {
  ShortStore(dst, src, format & kFormatCodeMask, 1);
  std::memmove(static_cast<char*>(dst) + kYearBytes, static_cast<const char*>(src) + kYearBytes,
               kImageBytes - kYearBytes);
}

int ConvertArray(void* dst, unsigned long dstStep, const void* src, unsigned long srcStep,
                 unsigned char format, unsigned long n) {
  auto* to = static_cast<char*>(dst);
  auto* from = static_cast<const char*>(src);
  for (unsigned long i = 0; i < n; ++i, to += dstStep, from += srcStep) ConvertFields(to, from, format);
  return NxStoredSize(kImageBytes, n);
}

NxDateTime Zero() { return NxDateTime::Null(); }

/// A date-time from the place of one of either form.
NxDateTime Read(const void* place, unsigned char format) {
  NxDateTime value = Zero();
  ConvertFields(&value, place, NxIsMemoryByte(format) ? kFormatNative : format);
  return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Life cycle and null state

using Form = NxClockForm<NxDateTime>;
NX_LIFE_CYCLE(NxDateTime, NxDateTime, Form, NxPlainValues<NxDateTime>)

void* NxDateTimeDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxDateTime, Form>(n) : NxDefaultFromEmptyText(DaTimeConvertFromNxString, n);
}

int NxDateTimeIsNull(void* value) { return static_cast<NxDateTime*>(value)->IsNullValue(); }
int NxDateTimeSetNull(void* value) { return static_cast<NxDateTime*>(value)->SetNullValue(); }

// ---------------------------------------------------------------------------
// Stored images

int DaTimeStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return ConvertArray(image, kImageBytes, values, sizeof(NxDateTime), format, n);
}
int DaTimeLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return ConvertArray(values, sizeof(NxDateTime), image, kImageBytes, format, n);
}

NX_FIXED_SIZE(DaTime, kImageBytes)
NX_FIXED_TRANSLATE(DaTimeTranslate, sizeof(NxDateTime), DaTimeLoad, DaTimeStore)

// ---------------------------------------------------------------------------
// Queries

namespace {

long OrderInMemory(const void* a, const void* b) { return Read(a, kFormatMemory) != Read(b, kFormatMemory); }

/// By the fields as plain numbers: no -1 is a wildcard here.
long OrderImages(const void* a, const void* b, unsigned char format) {
  const long years =
      NxOrder(NxReadElement<short, ShortStore>(a, format), NxReadElement<short, ShortStore>(b, format));
  return years != 0 ? years : NxOrderChars(a, b, kYearBytes, kImageBytes - kYearBytes);
}

}  // namespace

long DaTimeCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                   unsigned short /*options*/, unsigned long count, int& error) {
  const unsigned long size = ElementSize(format);
  const NxOperands arrays = {{value1, len1, count, size}, {value2, len2, count, size}};
  if (NxIsMemoryByte(format)) return NxCompareArrays(arrays, count, error, OrderInMemory);
  return NxCompareArrays(arrays, count, error,
                         [format](const void* a, const void* b) { return OrderImages(a, b, format); });
}

unsigned long DaTimeHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  return NxHashArray({value, len, count, ElementSize(format)}, count, error, [format](const void* place) {
    const NxDateTime v = Read(place, format);
    return NxJoinFields(v.date.year, v.date.month, v.date.day) ^
           NxJoinFields(v.time.hour, v.time.minute, v.time.second);
  });
}

float DaTimeEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                         unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  // Minutes as if every month had 31 days. Key and range are images whatever the format.
  const NxTerm<double> term(indexRange, key, kImageBytes, [format](const void* image) {
    const auto* field = static_cast<const signed char*>(image);
    const short year = NxLoadOne<short, ShortStore>(image, format);
    return (((year * 12.0 + field[2]) * 31 + field[3]) * 24 + field[4]) * 60 + field[5];
  });
  SetBoundaries(bounds, key, relation, kImageBytes * count);
  const double range = CalcRange(relation, term.key, term.key, term.low, term.high, 1.0);
  return static_cast<float>(range / (term.high - term.low + 1));
}

// ---------------------------------------------------------------------------
// String arrays

NxTypeConvertData* DaTimeConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<NxDateTime>(values, n, [](const NxDateTime& v, NxString& s) {
    if (v.IsNullValue()) {
      s.SetNullValue();
      return;
    }
    NxPutDaysAndSeconds(s, static_cast<long>(v.date), static_cast<long>(v.time));
  });
}

void* DaTimeConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  NxDateTime null = Zero();
  null.SetNullValue();
  return NxValuesOf<NxDateTime>(strings, n, NxDateTimeCreate, NxDateTimeDelete, null, [](const NxString& s) {
    const NxDaysAndSeconds text(s);
    return NxDateTime(text.days ? NxDate(*text.days) : Zero().date, NxTime(text.seconds.value_or(0)));
  });
}
