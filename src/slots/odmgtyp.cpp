// The slots of the standard date and time types. Stored, only year and interval have a
// byte order; a timestamp is its date and, behind it, its time.
#include "odmgtyp.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "d_timest.h"
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

// The images are as long as the values, and their fields stand at the same offsets.
constexpr unsigned kDateBytes = 4;
constexpr unsigned kTimeBytes = 6;
constexpr unsigned kTimestampBytes = kDateBytes + kTimeBytes;

const void* TimePart(const void* timestamp) { return static_cast<const char*>(timestamp) + kDateBytes; }

}  // namespace

// ---------------------------------------------------------------------------
// Life cycle

NX_LIFE_CYCLE(d_Date, d_Date, NxClockForm<d_Date>, NxPlainValues<d_Date>)
NX_LIFE_CYCLE(d_Time, d_Time, NxClockForm<d_Time>, NxPlainValues<d_Time>)
NX_LIFE_CYCLE(d_Timestamp, d_Timestamp, NxClockForm<d_Timestamp>, NxPlainValues<d_Timestamp>)
NX_LIFE_CYCLE(d_Interval, d_Interval, NxObjectForm<d_Interval>, NxPlainValues<d_Interval>)

void* d_DateDefaultValue(unsigned long n, int) {
  return NxDefaultFromEmptyText(d_DateConvertFromNxString, n);
}
void* d_TimeDefaultValue(unsigned long n, int) {
  return NxDefaultFromEmptyText(d_TimeConvertFromNxString, n);
}
void* d_TimestampDefaultValue(unsigned long n, int) {
  return NxDefaultFromEmptyText(d_TimestampConvertFromNxString, n);
}
void* d_IntervalDefaultValue(unsigned long n, int) {
  return NxDefaultFromEmptyText(d_IntervalConvertFromNxString, n);
}

// ---------------------------------------------------------------------------
// Stored images

namespace {

int ConvertTimestamps(void* dst, const void* src, unsigned char format, unsigned long n) {
  auto* to = static_cast<unsigned char*>(dst);
  auto* from = static_cast<const unsigned char*>(src);
  for (unsigned long i = 0; i < n; ++i, to += kTimestampBytes, from += kTimestampBytes) {
    d_DateStore(to, from, format, 1);
    d_TimeStore(to + kDateBytes, from + kDateBytes, format, 1);
  }
  return NxStoredSize(kTimestampBytes, n);
}

}  // namespace

int d_DateStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return DateStore(image, values, format, n);  // the fields are those of NxDate
}
int d_DateLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return DateLoad(values, image, format, n);
}

int d_TimeStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return CharStore(image, values, format & kFormatCodeMask, kTimeBytes * n);
}
int d_TimeLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return CharStore(values, image, format & kFormatCodeMask, kTimeBytes * n);
}

int d_TimestampStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return ConvertTimestamps(image, values, format, n);
}
int d_TimestampLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return ConvertTimestamps(values, image, format, n);
}

int d_IntervalStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return FloatStore(image, values, format & kFormatCodeMask, n);
}
int d_IntervalLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  return FloatStore(values, image, format & kFormatCodeMask, n);
}

NX_FIXED_SIZE(d_Date, kDateBytes)
NX_FIXED_SIZE(d_Time, kTimeBytes)
NX_FIXED_SIZE(d_Timestamp, kTimestampBytes)

NX_FIXED_TRANSLATE(d_DateTranslate, sizeof(d_Date), d_DateLoad, d_DateStore)
NX_FIXED_TRANSLATE(d_TimeTranslate, sizeof(d_Time), d_TimeLoad, d_TimeStore)
NX_FIXED_TRANSLATE(d_TimestampTranslate, sizeof(d_Timestamp), d_TimestampLoad, d_TimestampStore)

// ---------------------------------------------------------------------------
// Comparison

namespace {

template <class T>
long OrderInMemory(const void* a, const void* b) {
  return NxReadValue<T>(a) != NxReadValue<T>(b);
}

using StoredDateOrder = NxStoredDateOrder<unsigned short>;

long OrderTimeImages(const void* a, const void* b) { return NxOrderChars(a, b, 0, kTimeBytes); }

}  // namespace

long d_DateCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                   unsigned short options, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, kDateBytes}, {value2, len2, count, kDateBytes}};
  if (NxIsMemoryByte(format)) return NxCompareArrays(arrays, count, error, OrderInMemory<d_Date>);
  return NxCompareArrays(arrays, count, error, StoredDateOrder(format, options));
}

long d_TimeCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                   unsigned short /*options*/, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, kTimeBytes}, {value2, len2, count, kTimeBytes}};
  return NxCompareArrays(arrays, count, error,
                         NxIsMemoryByte(format) ? OrderInMemory<d_Time> : OrderTimeImages);
}

long d_TimestampCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                        void* value2, unsigned short options, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, kTimestampBytes}, {value2, len2, count, kTimestampBytes}};
  if (NxIsMemoryByte(format)) return NxCompareArrays(arrays, count, error, OrderInMemory<d_Timestamp>);
  const StoredDateOrder orderDates(format, options);
  return NxCompareArrays(arrays, count, error, [orderDates](const void* a, const void* b) {
    const long dates = orderDates(a, b);
    return dates != 0 ? dates : OrderTimeImages(TimePart(a), TimePart(b));
  });
}

// ---------------------------------------------------------------------------
// Hashing

namespace {

/// The word of a date in memory, or of any stored one when its month and day count
/// without their sign.
unsigned long DateWord(const void* date, unsigned char format) {
  const auto field = [date](unsigned at) { return static_cast<unsigned short>(NxCharAt(date, at)); };
  return NxJoinFields(NxReadElement<short, ShortStore>(date, format), field(kStoredMonth), field(kStoredDay));
}

/// The word of the date in a stored timestamp.
unsigned long SignedDateWord(const void* date, unsigned char format) {
  return NxJoinFields(NxReadElement<short, ShortStore>(date, format), NxCharAt(date, kStoredMonth),
                      NxCharAt(date, kStoredDay));
}

/// The word of a stored time: its bytes, each as a number of type Byte.
template <class Byte>
unsigned long TimeImageWord(const void* time) {
  auto* bytes = static_cast<const Byte*>(time);
  long word = 0;
  for (unsigned i = 0; i < kTimeBytes; ++i) word = NxCalendar::WrapMul(word, 16) ^ bytes[i];
  return static_cast<unsigned long>(word);
}

/// The word of a time in memory: of its local time in whole seconds.
unsigned long TimeWord(const void* place) {
  const auto time = NxReadValue<d_Time>(place);
  return (static_cast<unsigned long>(time.LocalHour()) << 24) +
         (static_cast<unsigned long>(time.LocalMinute()) << 16) +
         static_cast<unsigned long>(static_cast<long>(time.Seconds()));
}

}  // namespace

unsigned long d_DateHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  return NxHashArray({value, len, count, kDateBytes}, count, error,
                     [format](const void* p) { return DateWord(p, format); });
}

unsigned long d_TimeHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  return NxHashArray({value, len, count, kTimeBytes}, count, error,
                     NxIsMemoryByte(format) ? TimeWord : TimeImageWord<unsigned char>);
}

unsigned long d_TimestampHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                              int& error) {
  return NxHashArray({value, len, count, kTimestampBytes}, count, error, [format](const void* p) {
    if (NxIsMemoryByte(format)) return DateWord(p, format) ^ TimeWord(TimePart(p));
    return SignedDateWord(p, format) ^ TimeImageWord<signed char>(TimePart(p));
  });
}

// ---------------------------------------------------------------------------
// Bounds and estimates

namespace {

// Estimates number dates as if every month had 31 days and every year 12 months.
constexpr long kMonths = 12;
constexpr long kDays = 31;
constexpr long kYearZero = 40000;  // what makes every year positive

short StoredYear(const void* image, unsigned char format) {
  return NxLoadOne<short, ShortStore>(image, format);
}

long DateNumber(const void* image, unsigned char format) {
  return ((StoredYear(image, format) + kYearZero) * kMonths + NxCharAt(image, kStoredMonth)) * kDays +
         NxCharAt(image, kStoredDay);
}

long MinuteOfDay(const void* time) { return NxCharAt(time, 2) * 60L + NxCharAt(time, 3); }

/// The part of the numbers from low to high that a relation to the key selects.
template <class Number>
float SelectedPart(unsigned short relation, const NxTerm<Number>& term) {
  const Number range = term.high - term.low + 1;
  const Number below = term.key - term.low;
  Number selected = 0;
  if (relation & kRelationLess) selected = below;
  if (relation & kRelationGreater) selected += range - (below + 1);
  if (relation & kRelationEqual) selected += 1;
  return static_cast<float>(std::max<double>(selected, 0) / range);
}

/// The bound images of a date key, whose wildcards become the lowest and the highest
/// number of their field. Images too short for a date stay as they are.
class DateBounds {
 public:
  DateBounds(const NxIdxBounds* bounds, unsigned char format) : format_(format) {
    if (!bounds) return;
    if (NxReaches(bounds->lowerLen, kDateBytes)) lower_ = bounds->lower;
    if (NxReaches(bounds->upperLen, kDateBytes)) upper_ = bounds->upper;
  }

  void WidenYear() const {
    const short lowest = -32768, highest = 32767;
    if (lower_) ShortStore(lower_, &lowest, format_, 1);
    if (upper_) ShortStore(upper_, &highest, format_, 1);
  }

  /// Widens a field in which either image has the wildcard; answers whether one has.
  bool Widen(unsigned at) const {
    if (!IsAny(lower_, at) && !IsAny(upper_, at)) return false;
    if (lower_) static_cast<signed char*>(lower_)[at] = -128;
    if (upper_) static_cast<signed char*>(upper_)[at] = 127;
    return true;
  }

 private:
  static bool IsAny(const void* image, unsigned at) { return image && NxCharAt(image, at) == kAnyField; }

  void* lower_ = nullptr;
  void* upper_ = nullptr;
  unsigned char format_;
};

}  // namespace

float d_DateEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                         unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  NxTerm<long> term(indexRange, key, kDateBytes,
                    [format](const void* image) { return DateNumber(image, format); });
  const bool anyYear = StoredYear(key, format) == kAnyField;
  const long toLastMonth = (kMonths - NxCharAt(key, kStoredMonth)) * kDays;
  const long toLastDay = kDays - NxCharAt(key, kStoredDay);
  SetBoundaries(bounds, key, relation, kDateBytes * count);

  const DateBounds images(count != 0 ? bounds : nullptr, format);
  if (anyYear) images.WidenYear();
  // A wildcard counts as the last month or day.
  if (images.Widen(kStoredMonth)) term.key += toLastMonth;
  if (images.Widen(kStoredDay)) term.key += toLastDay;

  if (anyYear) {  // all of the range, if there is any
    const double range = term.high - term.low + 1;
    return static_cast<float>(std::max(range, 0.0) / range);
  }
  return SelectedPart(relation, term);
}

float d_TimeEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                         unsigned char /*format*/, unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  const NxTerm<long> term(indexRange, key, kTimeBytes,
                          [](const void* image) { return MinuteOfDay(image) * 60 + NxCharAt(image, 4); });
  SetBoundaries(bounds, key, relation, kTimeBytes * count);
  return SelectedPart(relation, term);
}

float d_TimestampEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                              unsigned char format, unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  const NxTerm<double> term(indexRange, key, kTimestampBytes, [format](const void* image) {
    return (DateNumber(image, format) * 1440.0 + MinuteOfDay(TimePart(image))) * 60;
  });
  SetBoundaries(bounds, key, relation, kTimestampBytes * count);
  return SelectedPart(relation, term);
}

// ---------------------------------------------------------------------------
// String arrays

namespace {

constexpr long kJulianDay = 1;  // what the day numbers of texts have more than those of dates

d_Date DateOfDay(long day) {
  d_Date date(0, 0, 0);
  date.setAbsDate(NxCalendar::WrapAdd(day, -kJulianDay));
  return date;
}

long DayOf(const d_Date& date) { return date.getAbsDate() + kJulianDay; }

long LocalSecond(const d_Time& time) {
  return time.LocalHour() * 3600L + time.LocalMinute() * 60L + time.second;
}

}  // namespace

NxTypeConvertData* d_DateConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<d_Date>(values, n, [](const d_Date& v, NxString& s) { s += NxString(DayOf(v)); });
}
void* d_DateConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<d_Date>(strings, n, d_DateCreate, d_DateDelete, d_Date(0, 0, 0),
                            [](const NxString& s) { return DateOfDay(static_cast<long>(s)); });
}

NxTypeConvertData* d_TimeConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<d_Time>(values, n, [](const d_Time& v, NxString& s) { s += NxString(LocalSecond(v)); });
}
void* d_TimeConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<d_Time>(strings, n, d_TimeCreate, d_TimeDelete, d_Time(0L),
                            [](const NxString& s) { return d_Time(static_cast<long>(s)); });
}

NxTypeConvertData* d_TimestampConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<d_Timestamp>(values, n, [](const d_Timestamp& v, NxString& s) {
    NxPutDaysAndSeconds(s, DayOf(v.date), LocalSecond(v.time));
  });
}
void* d_TimestampConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  const d_Date none(0, 0, 0);
  return NxValuesOf<d_Timestamp>(
      strings, n, d_TimestampCreate, d_TimestampDelete, {none, 0L}, [none](const NxString& s) {
        const NxDaysAndSeconds text(s);
        return d_Timestamp(text.days ? DateOfDay(*text.days) : none, text.seconds.value_or(0));
      });
}

NxTypeConvertData* d_IntervalConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<d_Interval>(values, n, [](const d_Interval& v, NxString& s) {
    char text[48];  // the largest float has 39 digits
    std::snprintf(text, sizeof text, "%.0f", std::trunc(double{v.value}) + 0.0);  // -0 becomes 0
    s += NxString(text);
  });
}
void* d_IntervalConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<d_Interval>(strings, n, d_IntervalCreate, d_IntervalDelete, d_Interval(),
                                [](const NxString& s) {
                                  d_Interval iv;
                                  iv.value = static_cast<float>(static_cast<double>(s));
                                  return iv;
                                });
}
