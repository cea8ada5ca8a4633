// Index bounds and estimates of the fixed-size types: a bound is the key itself, an
// estimate the part of the index's range that the relation selects.

#include "nxtypevl.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/nxalloc.h"
#include "nxcalendar.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxseal.h"
#include "nxtypcmp.h"
#include "slots/nxelement.h"
#include "slots/nxterm.h"

namespace {

constexpr double kLargest = std::numeric_limits<double>::max();

/// What is not a number counts as the largest one.
double NumberOr(double value) { return std::isnan(value) ? kLargest : value; }

}  // namespace

double CalcRange(unsigned short relation, double low, double high, double indexLow, double indexHigh,
                 double step) {
  double range = 0;
  const auto add = [&range](double piece) {
    if (piece > 0) range += piece;
  };
  if (relation & kRelationGreater)
    add(NumberOr(indexLow > high ? indexHigh - (indexLow - step) : indexHigh - high));
  if (relation & kRelationLess)
    add(NumberOr(low > indexHigh ? (indexHigh + step) - indexLow : low - indexLow));
  if (relation & kRelationEqual) add(NumberOr(std::min(high, indexHigh) - std::max(low, indexLow)) + step);
  return range;
}

namespace {

/// A new copy of the key as a bound that its holder frees.
void SetBound(void*& bound, unsigned char& boundLength, const void* key, unsigned long size) {
  void* image = NxAllocate(size);
  if (!image) return;
  bound = std::memcpy(image, key, size);
  boundLength = static_cast<unsigned char>(size);
}

}  // namespace

void SetBoundaries(NxIdxBounds* bounds, void* key, unsigned short relation, unsigned long size) {
  if (!bounds) return;
  if (!bounds->lower && !(relation & kRelationLess)) SetBound(bounds->lower, bounds->lowerLen, key, size);
  if (!bounds->upper && !(relation & kRelationGreater)) SetBound(bounds->upper, bounds->upperLen, key, size);
}

namespace {

/// Smallest estimate of a range of floating numbers that is not empty.
constexpr double kLeastFraction = 1.1920928955078125e-7;

double AtLeast(double range, double fraction) {
  return range != 0 && fraction < kLeastFraction ? kLeastFraction : fraction;
}

// The part that a range is of the keys from low to high, by the arithmetic of the
// keys' type.

template <class V>
double Fraction(double range, V low, V high) {
  if constexpr (sizeof(V) < sizeof(int))
    return range / (high - low + 1);
  else
    return range / (static_cast<double>(high) - static_cast<double>(low) + 1);
}

template <>
double Fraction(double range, float low, float high) {
  return AtLeast(range, range / (static_cast<double>(high) - static_cast<double>(low) + 1));
}

template <>
double Fraction(double range, double low, double high) {
  range = NumberOr(range);
  return AtLeast(range, range / (NumberOr(high - low) + 1));
}

template <class V, NxSlot::Load* kLoad>
float EvalNumber(const NxIdxBounds* indexRange, unsigned short relation, void* key, unsigned char format,
                 unsigned long boundSize, NxIdxBounds* bounds) {
  const NxTerm<V> term(indexRange, key, sizeof(V),
                       [format](const void* image) { return NxLoadOne<V, kLoad>(image, format); });
  const double range = term.hasRange ? NxSelected(relation, term.key, term.low, term.high) : 0;
  SetBoundaries(bounds, key, relation, boundSize);
  return static_cast<float>(Fraction(range, term.low, term.high));
}

}  // namespace

// ---------------------------------------------------------------------------
// Numbers

#define NX_EVAL_NUMBER(Name, Value, load, size)                                                  \
  float Name(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format, \
             unsigned long count, NxIdxBounds* bounds) {                                         \
    return EvalNumber<Value, load>(indexRange, relation, key, format, size, bounds);             \
  }

NX_EVAL_NUMBER(CharEvalAndBound, signed char, CharStore, count)
NX_EVAL_NUMBER(ByteEvalAndBound, unsigned char, CharStore, count)
NX_EVAL_NUMBER(ShortEvalAndBound, short, ShortStore, count * 2)
NX_EVAL_NUMBER(WordEvalAndBound, unsigned short, ShortStore, count * 2)
NX_EVAL_NUMBER(IntEvalAndBound, int, IntLoad, count * 4)
NX_EVAL_NUMBER(UnsignedEvalAndBound, unsigned int, IntLoad, count * 4)
NX_EVAL_NUMBER(LongEvalAndBound, long, LongStore, count * 4)
NX_EVAL_NUMBER(DwordEvalAndBound, unsigned long, LongStore, count * 4)
NX_EVAL_NUMBER(FloatEvalAndBound, float, FloatStore, FloatSizeGet(nullptr, kFormatMemory, format, count))
NX_EVAL_NUMBER(DoubleEvalAndBound, double, DoubleStore, DoubleSizeGet(nullptr, kFormatMemory, format, count))

#undef NX_EVAL_NUMBER

namespace {

double Widen(const NxInt64& v) { return v.low + v.high * 4294967296.0; }

/// An equal key that the doubles cannot tell from its neighbours still selects one.
double SelectedWide(unsigned short relation, const NxTerm<NxInt64>& term) {
  const double range = NxSelected(relation, Widen(term.key), Widen(term.low), Widen(term.high));
  if (range != 0) return range;
  const bool notBelow = (relation & kRelationGreater) || term.low <= term.key;
  const bool notAbove = (relation & kRelationLess) || term.key <= term.high;
  return notBelow && notAbove ? 1.0 : 0.0;
}

float EvalWide(unsigned short relation, const NxTerm<NxInt64>& term) {
  const double range = term.hasRange ? SelectedWide(relation, term) : 0;
  return static_cast<float>(range / (Widen(term.high) - Widen(term.low) + 1.0));
}

}  // namespace

float Int64EvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                        unsigned long count, NxIdxBounds* bounds) {
  const NxTerm<NxInt64> term(indexRange, key, sizeof(NxInt64), [format](const void* image) {
    return NxLoadOne<NxInt64, Int64Load>(image, format);
  });
  SetBoundaries(bounds, key, relation, count * sizeof(NxInt64));
  return EvalWide(relation, term);
}

float SealEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                       unsigned long count, NxIdxBounds* bounds) {
  const NxTerm<NxInt64> term(indexRange, key, sizeof(NxSeal), [format](const void* image) {
    NxInt64 number;
    NxLoadOne<NxSeal, SealLoad>(image, format).ConvertTo(number);
    return number;
  });
  SetBoundaries(bounds, key, relation, count * sizeof(NxSeal));
  return EvalWide(relation, term);
}

float BooleanEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                          unsigned char /*format*/, unsigned long count, NxIdxBounds* bounds) {
  SetBoundaries(bounds, key, relation, count);
  // False, true and null are taken to be equally frequent.
  return indexRange ? static_cast<float>(1.0 / 3.0) : 0;
}

// ---------------------------------------------------------------------------
// Times and dates

float TimeEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                       unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  const NxTerm<long> term(indexRange, key, sizeof(NxTime), [](const void* image) {
    auto* fields = static_cast<const signed char*>(image);
    return (fields[0] * 60L + fields[1]) * 60 + fields[2];
  });
  const double range = NxSelected(relation, term.key, term.low, term.high);
  SetBoundaries(bounds, key, relation, TimeSizeGet(nullptr, kFormatMemory, format, count));
  return static_cast<float>(Fraction(range, term.low, term.high));
}

namespace {

/// The fields of a date, wider than the date has them so that no step overflows.
struct DateFields {
  int year;
  int month;
  int day;

  long DayNumber() const { return NxCalendar::DayNumber(year, month, day); }
};

DateFields ReadDate(const void* image, unsigned char format) {
  auto* bytes = static_cast<const signed char*>(image);
  return {NxLoadOne<short, ShortStore>(image, format), bytes[2], bytes[3]};
}

long DaysOfMonth(int year, int month) {
  const DateFields next = month == 12 ? DateFields{year + 1, 1, 1} : DateFields{year, month + 1, 1};
  return next.DayNumber() - DateFields{year, month, 1}.DayNumber();
}

/// The dates that a key with wildcards (-1) in its fields stands for: what its lowest
/// and its highest are, and the bound images made into them.
class DateRange {
 public:
  /// Images too short for a date stay as they are.
  DateRange(const DateFields& key, unsigned char format, const NxIdxBounds* bounds)
      : key_(key), low_(key), high_(key), format_(format) {
    if (bounds && NxReaches(bounds->lowerLen, sizeof(NxDate))) lowImage_ = bounds->lower;
    if (bounds && NxReaches(bounds->upperLen, sizeof(NxDate))) highImage_ = bounds->upper;
    Year();
    Month();
    Day();
  }

  const DateFields& Low() const { return low_; }
  const DateFields& High() const { return high_; }
  bool HasWildcard() const { return wildcard_; }

 private:
  static constexpr int kAny = -1;
  static constexpr short kLastYear = 0x7FFE;

  void Year() {
    if (key_.year != kAny) return;
    wildcard_ = true;
    low_.year = first_.year;
    high_.year = kLastYear;
    PutYear(lowImage_, low_.year);
    PutYear(highImage_, high_.year);
  }

  void Month() {
    const bool firstYear = low_.year == first_.year;
    if (key_.month != kAny) {
      // The image keeps the key's month; what is before the first date only counts.
      if (firstYear) low_.month = std::max(low_.month, int{first_.month});
      return;
    }
    wildcard_ = true;
    low_.month = firstYear ? first_.month : 1;
    high_.month = 12;
    PutField(kMonth, low_.month, high_.month);
  }

  void Day() {
    const bool firstMonth = low_.year == first_.year && low_.month == first_.month;
    if (key_.day != kAny) {
      if (firstMonth) low_.day = std::max(low_.day, int{first_.day});
      return;
    }
    wildcard_ = true;
    low_.day = firstMonth ? first_.day : 1;
    high_.day = static_cast<int>(DaysOfMonth(high_.year, high_.month));
    PutField(kDay, low_.day, high_.day);
  }

  void PutYear(void* image, int year) const {
    const auto value = static_cast<short>(year);
    if (image) ShortStore(image, &value, format_, 1);
  }

  enum Place { kMonth = 2, kDay = 3 };

  void PutField(Place place, int low, int high) const {
    if (lowImage_) static_cast<signed char*>(lowImage_)[place] = static_cast<signed char>(low);
    if (highImage_) static_cast<signed char*>(highImage_)[place] = static_cast<signed char>(high);
  }

  const NxDate first_{0L};  // the earliest date
  DateFields key_;
  DateFields low_;
  DateFields high_;
  unsigned char format_;
  void* lowImage_ = nullptr;
  void* highImage_ = nullptr;
  bool wildcard_ = false;
};

}  // namespace

float DateEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                       unsigned long count, NxIdxBounds* bounds) {
  relation &= kRelationMask;
  const NxTerm<long> index(indexRange, key, sizeof(NxDate),
                           [format](const void* image) { return ReadDate(image, format).DayNumber(); });
  SetBoundaries(bounds, key, relation, DateSizeGet(nullptr, kFormatMemory, format, count));
  const DateRange dates(ReadDate(key, format), format, count != 0 ? bounds : nullptr);
  if (dates.HasWildcard()) relation |= kWildcardFound;
  const double range =
      CalcRange(relation, dates.Low().DayNumber(), dates.High().DayNumber(), index.low, index.high, 1.0);
  return static_cast<float>(Fraction(range, index.low, index.high));
}
