/// `d_Date`: a calendar date, in the Julian calendar before 1582-10-15 and in the
/// Gregorian one from then on.
///
///   d_Date d(2000, 60);                           // the 60th day: 2000-02-29
///   d.next(d_Date::Monday);                       // 2000-03-06
///   d_Date e = d + d_Interval(2, 12, 0, 0);       // two whole days on: 2000-03-08
///   int days = e != d;                            // 2
///
/// Day numbers are those of julian_day: one less than the day numbers of NxDate, and
/// of another calendar before 1582. Fields are not checked; arithmetic on those that are
/// no date follows the formula of the day number.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef D_DATE_H
#define D_DATE_H

#include <cstddef>

#include "nxapi.h"
#include "nxcalendar.h"

class NxDate;
class NxDateTime;
class d_Date;
class d_Interval;
class d_Timestamp;

/// The day number of a date: 2451544 for 2000-01-01.
constexpr long julian_day(short year, char month, char day) {
  return NxCalendar::MixedDayNumber(year, static_cast<signed char>(month), static_cast<signed char>(day));
}

/// The date of a day number: the inverse of julian_day for every date of the years from 1
/// on. The places must not be null.
constexpr void jd_to_calendar(long dayNumber, short* year, char* month, char* day) {
  const NxCalendar::CivilDate date = NxCalendar::MixedDateOf(dayNumber);
  *year = date.year;
  *month = static_cast<char>(date.month);
  *day = static_cast<char>(date.day);
}

class NX_API d_Date {
 public:
  enum Weekday { Sunday = 0, Monday, Tuesday, Wednesday, Thursday, Friday, Saturday };

  /// Today's local date.
  d_Date();
  /// The n-th day of a year, 1 being the first of January.
  d_Date(short ofYear, unsigned short dayOfYear) {
    setAbsDate(NxCalendar::WrapAdd(julian_day(ofYear, 1, 1), dayOfYear - 1L));
  }
  /// The fields as they are given.
  d_Date(short y, unsigned short m, unsigned short d)
      : year(y), month(static_cast<signed char>(m)), day(static_cast<signed char>(d)) {}
  /// The date part.
  d_Date(const d_Timestamp& t);
  d_Date(const NxDate& d);
  d_Date(const NxDateTime& t);
  d_Date(const d_Date& d) = default;
  d_Date& operator=(const d_Date& d) = default;
  d_Date& operator=(const d_Timestamp& t);
  d_Date& operator=(const NxDate& d);
  d_Date& operator=(const NxDateTime& t);

  /// Today's local date.
  static d_Date current();

  // Calendar.

  /// 1 for the first of January to 366.
  unsigned short day_of_year() const {
    return static_cast<unsigned short>(getAbsDate() - julian_day(year, 1, 1) + 1);
  }
  Weekday day_of_week() const { return static_cast<Weekday>(NxCalendar::SundayBased(getAbsDate())); }
  /// Moves on to the next date, or back to the previous one, that has the weekday: 1 to 7
  /// days. Returns the date itself.
  d_Date& next(Weekday weekday);
  d_Date& previous(Weekday weekday);
  /// 28 to 31, or 0 for a month outside 1 to 12. Every fourth year up to 1600 has a
  /// leap day.
  static constexpr int days_in_month(short year, unsigned short month) {
    return NxCalendar::MixedDaysOfMonth(year, month);
  }
  int days_in_month() const { return days_in_month(year, static_cast<unsigned short>(month)); }

  /// The day number.
  long getAbsDate() const { return NxCalendar::MixedDayNumber(year, month, day); }
  /// Becomes the date of a day number.
  void setAbsDate(long dayNumber) {
    const NxCalendar::CivilDate date = NxCalendar::MixedDateOf(dayNumber);
    year = date.year;
    month = date.month;
    day = date.day;
  }

  // Arithmetic in the whole days of an interval; what is less than a day is dropped,
  // whatever its sign. The operators of two operands stand below the class, so that the
  // other types of dates take part in them.

  d_Date& operator+=(const d_Interval& iv);
  d_Date& operator-=(const d_Interval& iv);
  /// The date before it moved by one day.
  d_Date operator++(int);
  d_Date operator--(int);

  short year;         //
  signed char month;  // [1:12]
  signed char day;    // [1:31]
};
static_assert(sizeof(d_Date) == 4 && offsetof(d_Date, month) == 2 && offsetof(d_Date, day) == 3);

NX_API d_Date operator+(const d_Date& d, const d_Interval& iv);
NX_API d_Date operator+(const d_Interval& iv, const d_Date& d);
NX_API d_Date operator-(const d_Date& d, const d_Interval& iv);
/// Days from b to a: 0 when equal, negative when a is the earlier one.
NX_API int operator!=(const d_Date& a, const d_Date& b);

/// Whether the periods from a1 to a2 and from b1 to b2 share a date. A period may be given
/// backward; its end points belong to it.
NX_API bool overlaps(const d_Date& a1, const d_Date& a2, const d_Date& b1, const d_Date& b2);

#endif
