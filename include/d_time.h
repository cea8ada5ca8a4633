/// `d_Time`: a time of day to a hundredth of a second, with the time zone that it was
/// given in.
///
///   d_Time::set_default_Time_Zone(d_Time::UtcPlus2);
///   d_Time t(10, 30, 15.25);             // held as 12:30:15.25, zone 2:00
///   t += d_Interval(0, 14, 0, 0);        // 00:30:15.25 of the local day: held as 2:30
///
/// Hour and minute are held with the zone added. The local time, which is what is given
/// and what is printed and compared, is what they leave when the zone is taken off.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef D_TIME_H
#define D_TIME_H

#include <cstddef>

#include "d_interv.h"
#include "nxapi.h"

class NxDateTime;
class NxTime;
class d_Timestamp;

class NX_API d_Time {
 public:
  /// Whole hours east of universal time. Other whole numbers may be cast to it.
  enum Time_Zone : int {
    UtcMinus12 = -12,
    UtcMinus11,
    UtcMinus10,
    UtcMinus9,
    UtcMinus8,
    UtcMinus7,
    UtcMinus6,
    UtcMinus5,
    UtcMinus4,
    UtcMinus3,
    UtcMinus2,
    UtcMinus1,
    Utc,
    UtcPlus1,
    UtcPlus2,
    UtcPlus3,
    UtcPlus4,
    UtcPlus5,
    UtcPlus6,
    UtcPlus7,
    UtcPlus8,
    UtcPlus9,
    UtcPlus10,
    UtcPlus11,
    UtcPlus12,
    UtcPlus13,
    UtcPlus14
  };

  // Construction from a local time. Where no zone is given it is the default one.

  /// The current local time.
  d_Time();
  /// What is less than a hundredth of a second is dropped.
  d_Time(unsigned short h, unsigned short m, float s);
  d_Time(unsigned short h, unsigned short m, float s, short tzHour, short tzMinute);
  /// Seconds of the day. Whole days are added to a negative number until it is not;
  /// hours may exceed 23.
  d_Time(long seconds);
  d_Time(const NxTime& t);
  /// The time part.
  d_Time(const NxDateTime& t);
  d_Time(const d_Timestamp& t);
  d_Time(const d_Time& t) = default;
  d_Time& operator=(const d_Time& t) = default;
  d_Time& operator=(long seconds) { return *this = d_Time(seconds); }
  d_Time& operator=(const NxTime& t);
  d_Time& operator=(const NxDateTime& t);
  d_Time& operator=(const d_Timestamp& t);

  /// The current local time in the default zone.
  static d_Time current();

  // The default zone. It is the whole process's: set it before other threads make times.

  static void set_default_Time_Zone(Time_Zone zone);
  /// Takes the system's zone, in whole hours; a zone of 0 leaves the default as it is.
  static void set_default_Time_Zone_to_local();

  // Arithmetic wraps round midnight and keeps the zone. Where an interval is added, the
  // in-place form keeps the hundredths of the time; the others, below the class, begin
  // at its whole second.

  d_Time& operator+=(const d_Interval& iv);
  d_Time& operator-=(const d_Interval& iv);

  // The local time.

  int LocalHour() const { return hour - tz_hour; }
  int LocalMinute() const { return minute - tz_minute; }
  /// Seconds with their fraction.
  float Seconds() const { return static_cast<float>(second) + static_cast<float>(hundredths) / 100; }

  signed char tz_hour;
  signed char tz_minute;
  signed char hour;        // the local hour + tz_hour
  signed char minute;      // the local minute + tz_minute
  signed char second;      // [0:59]
  signed char hundredths;  // [0:99]

  static Time_Zone _tz;  // the default zone, initially Utc
};
static_assert(sizeof(d_Time) == 6 && offsetof(d_Time, hour) == 2 && offsetof(d_Time, hundredths) == 5);

NX_API d_Time operator+(const d_Time& t, const d_Interval& iv);
NX_API d_Time operator+(const d_Interval& iv, const d_Time& t);
NX_API d_Time operator-(const d_Time& t, const d_Interval& iv);
/// From b to a in whole seconds, as the hours and minutes are held.
NX_API d_Interval operator-(const d_Time& a, const d_Time& b);

/// Compares local times: the difference of the hours, else of the minutes, else of the
/// seconds with their fraction, of which only whole seconds count. So times of one
/// minute that are less than a second apart are equal.
NX_API int operator!=(const d_Time& a, const d_Time& b);

/// Whether the periods from a1 to a2 and from b1 to b2 share a point. A period may be given
/// backward; its end points belong to it.
NX_API bool overlaps(const d_Time& a1, const d_Time& a2, const d_Time& b1, const d_Time& b2);

#endif
