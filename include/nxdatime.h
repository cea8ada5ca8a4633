/// `NxDateTime`: a point in time to the second, a date with a time of day.
///
///   NxDateTime t(NxDate(2451545), NxTime(3661));   // 2000-01-01 01:01:01
///   t.AddSeconds(-7200);                           // 1999-12-31 23:01:01
///   NxString text;
///   t.PrintToNxString(text, "%e.%b %Y");           // 31.Dec 1999
///
/// Whether a value is in local or in universal time is not part of it.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXDATIME_H
#define NXDATIME_H

#include <cstddef>

#include "nxapi.h"
#include "nxcomp.h"

class NxString;

class NX_API NxDateTime {
 public:
  /// The local date and time.
  NxDateTime();
  NxDateTime(const NxDate& d, const NxTime& t) : date(d), time(t) {}
  /// That date at the current time of day.
  NxDateTime(const NxDate& d);
  /// That time today.
  NxDateTime(const NxTime& t);
  NxDateTime(const NxDateTime& t) = default;
  NxDateTime& operator=(const NxDateTime& t) = default;
  /// Replaces the time of day only.
  NxDateTime& operator=(const NxTime& t);

  /// Becomes the local date and time.
  NxDateTime& Now();
  /// Becomes the universal date and time.
  NxDateTime& NowUTC();

  /// 1 for a date that the calendar has at a time from 00:00:00 to 23:59:59.
  int IsDaTime() const { return date.IsDate() && time.IsTime(); }

  /// The difference of the first field of the date that differs, or -1, 0 or 1 by the
  /// times: negative when this is the earlier one. A date field of -1 equals any other.
  int operator!=(const NxDateTime& t) const;
  int Compare(const NxDateTime& t) const { return *this != t; }

  /// Moves by a number of seconds of either sign.
  void AddSeconds(long seconds);
  /// Puts hour and minute to a minute of the day, which may lie one day before (from
  /// -1440) or after this day (to 2879); the date follows, the second stays.
  void AddMinutes(long minuteOfDay);

  /// From universal to local time and back: 0, or -2171 with the value unchanged when
  /// the time zone cannot be told.
  int ToLocalTime();
  int ToUTCTime();

  /// Appends the text under a format (see nxtypfmt.h), "%Y-%m-%dT%H:%M:%S" for null;
  /// a null value replaces out by the null text. Returns out.
  NxString& PrintToNxString(NxString& out, const char* fmt) const;
  /// Reads the value from a text under such a format: null when it begins with the null
  /// text, year 0, month 1, day 1, 00:00:00 when it gives no date and time.
  void ScanFromNxString(const NxString& in, const char* fmt);

  /// The one date-time whose fields are all 0; not null as IsNullValue sees it.
  static NxDateTime& Null();

  // Null state: both parts are null.

  int IsNullValue() const { return date.IsNullValue() && time.IsNullValue(); }
  /// Makes the value null and returns 0.
  int SetNullValue();

  NxDate date;
  NxTime time;
};
static_assert(sizeof(NxDateTime) == 8 && offsetof(NxDateTime, time) == 4);

#endif
