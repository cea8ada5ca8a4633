/// `d_Timestamp`: a date and a time of day with its zone.
///
///   d_Timestamp t(d_Date(2000, 3, 1), d_Time(1, 0, 0));
///   t -= d_Interval(0, 2, 0, 0);          // 2000-02-29 23:00
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef D_TIMEST_H
#define D_TIMEST_H

#include <cstddef>

#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "nxapi.h"

class NxDate;
class NxDateTime;

class NX_API d_Timestamp {
 public:
  /// The current local date and time in the default zone.
  d_Timestamp() = default;
  d_Timestamp(const d_Date& d, const d_Time& t) : date(d), time(t) {}
  d_Timestamp(const d_Timestamp& t) = default;
  d_Timestamp& operator=(const d_Timestamp& t) = default;
  /// Replaces the date only.
  d_Timestamp& operator=(const d_Date& d);
  d_Timestamp& operator=(const NxDate& d) { return *this = d_Date(d); }
  /// The time of t counts as local time in the default zone.
  d_Timestamp& operator=(const NxDateTime& t);

  /// The current local date and time in the default zone.
  static d_Timestamp current();

  // Arithmetic moves the local date and time and keeps the zone. It counts in single
  // precision from the first of the month: near its end to a quarter of a second.

  d_Timestamp& operator+=(const d_Interval& iv);
  d_Timestamp& operator-=(const d_Interval& iv);

  d_Date date;
  d_Time time;
};
static_assert(sizeof(d_Timestamp) == 10 && offsetof(d_Timestamp, time) == 4);

NX_API d_Timestamp operator+(const d_Timestamp& t, const d_Interval& iv);
NX_API d_Timestamp operator+(const d_Interval& iv, const d_Timestamp& t);
NX_API d_Timestamp operator-(const d_Timestamp& t, const d_Interval& iv);
/// The difference of the dates in days, or that of the times (see d_Time).
NX_API int operator!=(const d_Timestamp& a, const d_Timestamp& b);

// Whether the periods from a1 to a2 and from b1 to b2 share a point. A period may be given
// backward; its end points belong to it. Beside dates only the dates of the timestamps
// count, beside times only their times.

NX_API bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Timestamp& b1,
                     const d_Timestamp& b2);
NX_API bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Date& b1, const d_Date& b2);
NX_API bool overlaps(const d_Date& a1, const d_Date& a2, const d_Timestamp& b1, const d_Timestamp& b2);
NX_API bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Time& b1, const d_Time& b2);
NX_API bool overlaps(const d_Time& a1, const d_Time& a2, const d_Timestamp& b1, const d_Timestamp& b2);

#endif
