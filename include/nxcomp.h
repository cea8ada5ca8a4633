/// `NxDate`, a calendar date, and `NxTime`, a time of day to the second.
///
///   NxDate d(2451545);                  // 2000-01-01
///   NxDate e = d + 59;                  // 2000-02-29
///   long days = e - d;                  // 59
///   int weekday = d.DayOfTheDate();     // 5: Saturday
///
/// Dates compute with day numbers: the Julian Day Number of the proleptic Gregorian
/// calendar (day 0 is -4713-11-24). Years are numbered astronomically: there is a
/// year 0, and years before it are negative. A field of -1 means "any" to `!=` and the
/// ordering operators of NxDate. Values that are no date or time can be held; only
/// IsDate and IsTime tell.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXCOMP_H
#define NXCOMP_H

#include <cstddef>

#include "nxapi.h"
#include "nxcalendar.h"

class NxString;

class NX_API NxDate {
 public:
  /// Today's local date.
  NxDate();
  /// The date of a day number.
  NxDate(long dayNumber) { dateabs(dayNumber); }
  NxDate(const NxDate& d) = default;
  NxDate& operator=(const NxDate& d) = default;

  /// Becomes today's local date.
  NxDate& Today();

  // Arithmetic in days. The int forms only keep a plain number from being
  // ambiguous beside the conversion to long.

  NxDate operator+(long days) const;
  NxDate operator-(long days) const;
  NxDate operator+(int days) const { return *this + static_cast<long>(days); }
  NxDate operator-(int days) const { return *this - static_cast<long>(days); }
  /// Days from other to this date.
  long operator-(const NxDate& other) const;
  NxDate& operator++();
  NxDate& operator--();
  NxDate& operator+=(long days);
  NxDate& operator-=(long days);

  // Comparison.

  /// Difference of the first field (year, month, day) that differs: 0 when equal,
  /// negative when this date is the earlier one. A field of -1 equals any other.
  int operator!=(const NxDate& d) const;
  int operator<(const NxDate& d) const { return (*this != d) < 0; }
  int operator>(const NxDate& d) const { return (*this != d) > 0; }
  int operator<=(const NxDate& d) const { return (*this != d) < 1; }
  int operator>=(const NxDate& d) const { return (*this != d) >= 0; }
  /// 1 when all fields are equal; -1 equals only -1 here.
  int operator==(const NxDate& d) const { return year == d.year && month == d.month && day == d.day; }

  // Calendar.

  /// 0 for Monday to 6 for Sunday: the index into nx_weekdays.
  int DayOfTheDate() const;
  /// The name of the weekday.
  NxString PrintDayOfTheDate() const;
  /// 1 for a date that the calendar has.
  int IsDate() const;
  int IsLastDayOfTheMonth() const;
  /// The day number.
  long dayabs() const { return NxCalendar::DayNumber(year, month, day); }
  operator long() const { return dayabs(); }
  /// Days to the first day of the next month: 1 on the last day of a month.
  long daynxtmonth() const;
  /// Becomes the date of a day number.
  void dateabs(long dayNumber) {
    const NxCalendar::CivilDate date = NxCalendar::DateOf(dayNumber);
    year = date.year;
    month = date.month;
    day = date.day;
  }
  /// Quotient towards zero. b is not 0.
  long divide(long a, long b) const;
  /// |a| mod |b|, negated when the signs of a and b differ. b is not 0.
  long modulo(long a, long b) const;

  // Text, under the formats of nxtypfmt.h; a null format means "%Y-%m-%d".

  /// Appends the text to out; a null date replaces out by the null text. Returns out.
  NxString& PrintToNxString(NxString& out, const char* fmt) const;
  /// Null when the text begins with the null text, 0000-01-01 when it gives no date.
  void ScanFromNxString(const NxString& in, const char* fmt);

  // Null state: every field has its lowest value.

  int IsNullValue() const;
  /// Makes the date null and returns 0.
  int SetNullValue();

  short year;         // astronomical
  signed char month;  // [1:12]
  signed char day;    // [1:31]
};
static_assert(sizeof(NxDate) == 4 && offsetof(NxDate, month) == 2 && offsetof(NxDate, day) == 3);

class NX_API NxTime {
 public:
  /// The current local time of day.
  NxTime();
  /// That many seconds as hours, minutes and seconds; hours may exceed 23.
  NxTime(long seconds);
  NxTime(const NxTime& t) = default;
  NxTime& operator=(const NxTime& t) = default;

  /// Becomes the current local time of day.
  NxTime& Now();

  /// Seconds of the day.
  operator long() const;

  // Arithmetic in seconds, wrapping round midnight. A negative number added or
  // taken away is not brought back into the day.

  NxTime operator+(long seconds) const;
  NxTime operator-(long seconds) const;
  NxTime operator+(int seconds) const { return *this + static_cast<long>(seconds); }
  NxTime operator-(int seconds) const { return *this - static_cast<long>(seconds); }
  /// The span from other forward to this time, within one day.
  NxTime operator-(const NxTime& other) const;
  NxTime& operator++();
  NxTime& operator--();
  NxTime& operator+=(long seconds);
  NxTime& operator-=(long seconds);

  // Comparison by hour, minute, second.

  /// -1, 0 or 1: 1 when this time is the later one.
  int operator!=(const NxTime& t) const;
  int operator<(const NxTime& t) const { return (*this != t) < 0; }
  int operator>(const NxTime& t) const { return (*this != t) > 0; }
  int operator<=(const NxTime& t) const { return (*this != t) <= 0; }
  int operator>=(const NxTime& t) const { return (*this != t) >= 0; }
  int operator==(const NxTime& t) const { return hour == t.hour && minute == t.minute && second == t.second; }

  /// 1 for a time from 00:00:00 to 23:59:59.
  int IsTime() const;

  // Text, under the formats of nxtypfmt.h; a null format means "%H:%M:%S".

  /// Appends the text to out; a null time replaces out by the null text. Returns out.
  NxString& PrintToNxString(NxString& out, const char* fmt) const;
  /// Null when the text begins with the null text, 00:00:00 when it gives no time.
  void ScanFromNxString(const NxString& in, const char* fmt);

  // Null state: every field has its lowest value.

  int IsNullValue() const;
  /// Makes the time null and returns 0.
  int SetNullValue();

  signed char hour;    // [0:23]
  signed char minute;  // [0:59]
  signed char second;  // [0:59]
};
static_assert(sizeof(NxTime) == 3 && offsetof(NxTime, minute) == 1 && offsetof(NxTime, second) == 2);

/// Names as they are printed and scanned, January and Monday first.
extern NX_API const char* const nx_months[12];
extern NX_API const char* const nx_weekdays[7];

#endif
