/// The calendar as arithmetic: day numbers (Julian Day Numbers of the proleptic
/// Gregorian calendar) from dates, dates from day numbers, weekdays.
///
///   NxCalendar::DayNumber(2000, 1, 1);   // 2451545
///   NxCalendar::DateOf(2451545);         // {2000, 1, 1}
///   NxCalendar::Weekday(2000, 1, 1);     // 5: Saturday
///
/// Fields outside a valid date are computed as they come.
#ifndef NXCALENDAR_H
#define NXCALENDAR_H

namespace NxCalendar {

struct CivilDate {
  short year;         // astronomical
  signed char month;  // [1:12]
  signed char day;    // [1:31]
};

inline constexpr long kFirstYear = -4800;         // the first of the 400-year cycle that holds day 0
inline constexpr long kFirstMarch = -32044;       // day number of its first of March
inline constexpr long kLastDay = 13689325;        // 32767-12-31
inline constexpr long kFirstGregorian = 2299160;  // 1582-10-15 in the mixed calendar's numbers

/// -1 for January and February, which close the year that begins with March; 0 for
/// the other months of a valid date.
constexpr long YearShift(long month) { return (month - 14) / 12; }

/// DayNumber for any fields. All divisions truncate towards zero. Kept out of line, as
/// loops over dates would otherwise compute both ways.
[[gnu::noinline]] constexpr long GeneralDayNumber(long year, long month, long day) {
  const long shift = YearShift(month);
  const long y = year + shift + 4800;
  return 1461 * y / 4 + day - 32075 + (367 * (month - 12 * shift) - 734) / 12 - 3 * ((y + 100) / 100) / 4;
}

/// By month, the day number of the day before it in the year that begins with March of
/// year kFirstYear: January and February close that year. Month 13 is January again.
inline constexpr long kBeforeMonth[] = {0,
                                        kFirstMarch + 305,
                                        kFirstMarch + 336,
                                        kFirstMarch - 1,
                                        kFirstMarch + 30,
                                        kFirstMarch + 60,
                                        kFirstMarch + 91,
                                        kFirstMarch + 121,
                                        kFirstMarch + 152,
                                        kFirstMarch + 183,
                                        kFirstMarch + 213,
                                        kFirstMarch + 244,
                                        kFirstMarch + 274,
                                        kFirstMarch + 305};

/// The day number of a date. Month 13 counts as January of the next year. The
/// arguments have the range of the fields of a date (one more for the month).
constexpr long DayNumber(long year, long month, long day) {
  if (year <= kFirstYear || month < 1 || month > 13) return GeneralDayNumber(year, month, day);
  // Years begin with March, and none is negative here: shifts do for divisions.
  const unsigned long y = static_cast<unsigned long>(year - kFirstYear) - (month <= 2);
  const unsigned long centuries = 5243 * y >> 19;  // y / 100 for y below 43690
  return static_cast<long>((1461 * y >> 2) - centuries + (centuries >> 2)) + day + kBeforeMonth[month];
}

/// Sum and product that wrap in 32 bits, as day numbers far beyond any date do.
constexpr long WrapAdd(long a, long b) {
  return static_cast<long>(static_cast<unsigned long>(a) + static_cast<unsigned long>(b));
}
constexpr long WrapMul(long a, long b) {
  return static_cast<long>(static_cast<unsigned long>(a) * static_cast<unsigned long>(b));
}

/// DateOf for any number. All divisions truncate towards zero.
[[gnu::noinline]] constexpr CivilDate GeneralDateOf(long dayNumber) {
  long l = WrapAdd(dayNumber, 68569);
  const long n = WrapMul(4, l) / 146097;
  l = WrapAdd(l, -(WrapAdd(WrapMul(146097, n), 3) / 4));
  const long i = WrapMul(4000, WrapAdd(l, 1)) / 1461001;
  l = WrapAdd(WrapAdd(l, -(WrapMul(1461, i) / 4)), 31);
  const long j = WrapMul(80, l) / 2447;
  const long day = WrapAdd(l, -(WrapMul(2447, j) / 80));
  l = j / 11;
  return {static_cast<short>(100 * n + i + l - 4900), static_cast<signed char>(j + 2 - 12 * l),
          static_cast<signed char>(day)};
}

/// The date of a day number: the inverse of DayNumber for every date from day 0 to the
/// last of year 32767.
constexpr CivilDate DateOf(long dayNumber) {
  if (dayNumber < 0 || dayNumber > kLastDay) return GeneralDateOf(dayNumber);
  // Quotients by multiplication, remainders from the low half of the product, after
  // C. Neri and L. Schneider, "Euclidean affine functions and their application to
  // calendar algorithms" (2023). Years begin with March here.
  const unsigned long quarters = 4 * static_cast<unsigned long>(dayNumber - kFirstMarch) + 3;
  const unsigned long century = quarters / 146097;
  const unsigned long long product = 2939745ULL * (quarters % 146097 | 3);
  const unsigned long yearOfCentury = static_cast<unsigned long>(product >> 32);
  const unsigned long dayOfYear = static_cast<unsigned long>(product) / 2939745 / 4;
  const unsigned long monthAndDay = 2141 * dayOfYear + 197913;
  const bool early = dayOfYear >= 306;  // January and February of the next year
  return {static_cast<short>(static_cast<long>(100 * century + yearOfCentury + early) + kFirstYear),
          static_cast<signed char>((monthAndDay >> 16) - (early ? 12 : 0)),
          static_cast<signed char>((monthAndDay & 0xFFFF) / 2141 + 1)};
}

/// Weekday for any fields.
[[gnu::noinline]] constexpr int GeneralWeekday(long year, long month, long day) {
  const long y = year + YearShift(month);
  const long m = month + 10 - (month + 10) / 13 * 12;  // March is 1
  const long century = y / 100;
  const long w = (13 * m - 1) / 5 + day + 5 * (y - 100 * century) / 4 + y / 400 - 2 * century + 77;
  long r = w % 7;
  if (r < 0 && year > 0) r += 7;
  return r <= 0 ? 6 : static_cast<int>(r - 1);
}

/// 0 for Monday to 6 for Sunday, for every date from year 1 on. For earlier years a
/// negative congruence counts as Sunday.
constexpr int Weekday(long year, long month, long day) {
  if (year < 1 || month < 1 || month > 13) return GeneralWeekday(year, month, day);
  return static_cast<int>(static_cast<unsigned long>(DayNumber(year, month, day)) % 7);  // day 0 was a Monday
}

// ---------------------------------------------------------------------------
// The mixed calendar: Julian before 1582-10-15, Gregorian from then on. Its day numbers
// are one less than those above.

/// MixedDayNumber for any fields. All divisions truncate towards zero.
[[gnu::noinline]] constexpr long GeneralMixedDayNumber(long year, long month, long day) {
  constexpr long kLastJulian = 2299169;  // the number that the Julian calendar gives 1582-10-14
  const bool early = month <= 2;         // January and February close the year before
  const long y = early ? year - 1 : year;
  const long m = early ? month + 13 : month + 1;
  const long julian = 1461 * y / 4 + 306001 * m / 10000 + day + 1720994;
  if (julian <= kLastJulian) return julian;
  const long century = y / 100;
  return julian + 2 - century + century / 4;
}

/// The day number of a date of the mixed calendar. The arguments have the range of the
/// fields of a date.
constexpr long MixedDayNumber(long year, long month, long day) {
  // From 1584 on no day field reaches back to the year of the change.
  if (year < 1584 || month < 1 || month > 12) return GeneralMixedDayNumber(year, month, day);
  return DayNumber(year, month, day) - 1;
}

/// MixedDateOf for any number. All divisions truncate towards zero.
[[gnu::noinline]] constexpr CivilDate GeneralMixedDateOf(long dayNumber) {
  long long j = dayNumber + 1LL;
  if (j > kFirstGregorian) {
    const long long century = (4 * j - 7468865) / 146097;
    j += 1 + century - century / 4;
  }
  const long long b = j + 1524;
  const long long c = (20 * b - 2442) / 7305;
  const long long dayOfYear = b - 1461 * c / 4;
  const long long e = 10000 * dayOfYear / 306001;
  const long long month = e <= 13 ? e - 1 : e - 13;
  long long monthStart = 306001 * e / 10000;
  if (e < 0) --monthStart;  // this one rounds down
  return {static_cast<short>(month > 2 ? c - 4716 : c - 4715), static_cast<signed char>(month),
          static_cast<signed char>(dayOfYear - monthStart)};
}

/// The date in the mixed calendar of a day number: the inverse of MixedDayNumber for every
/// date of the years from 1 on.
constexpr CivilDate MixedDateOf(long dayNumber) {
  if (dayNumber < kFirstGregorian || dayNumber >= kLastDay) return GeneralMixedDateOf(dayNumber);
  return DateOf(dayNumber + 1);
}

/// 0 for Sunday to 6 for Saturday, of a day number of the mixed calendar.
constexpr int SundayBased(long dayNumber) {
  const long r = (dayNumber % 7 + 2) % 7;
  return static_cast<int>(r < 0 ? r + 7 : r);
}

/// Days of a month of the mixed calendar; 0 for a month outside 1 to 12.
constexpr int MixedDaysOfMonth(long year, long month) {
  constexpr signed char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  if (month != 2 || year % 4 != 0) return kDays[month - 1];
  return year % 100 != 0 || year % 400 == 0 || year < 1600 ? 29 : 28;
}

static_assert(DayNumber(2000, 1, 1) == 2451545 && DayNumber(-4713, 11, 24) == 0);
static_assert(DayNumber(32767, 12, 31) == kLastDay &&
              DayNumber(kFirstYear + 1, 3, 1) == GeneralDayNumber(kFirstYear + 1, 3, 1));
static_assert(Weekday(2000, 1, 1) == 5);
static_assert(MixedDayNumber(2000, 1, 1) == 2451544 && MixedDayNumber(1582, 10, 15) == kFirstGregorian &&
              MixedDayNumber(1582, 10, 4) == kFirstGregorian - 1);

}  // namespace NxCalendar

#endif
