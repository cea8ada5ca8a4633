// d_Timestamp: a date and a time of day, moved together by intervals.
#include "d_timest.h"

#include <cmath>
#include <cstring>

#include "dates/nxdaytime.h"
#include "dates/nxoverlap.h"
#include "nxdatime.h"

namespace {

/// The local date and time since the last day of the month before.
d_Interval SinceMonthBegan(const d_Timestamp& t) {
  return {t.date.day, t.time.LocalHour(), t.time.LocalMinute(), t.time.Seconds()};
}

/// Makes t the point that an interval of that kind comes to.
d_Timestamp& MoveTo(d_Timestamp& t, d_Interval x) {
  long long days = 0;
  if (x.value < 0) {
    days = NxWholePart(x.value / kSecondsOfDay) - 1LL;
    x = x + d_Interval(static_cast<int>(-days), 0, 0, 0);
  }
  // What was raised may come to a whole day, and that day counts.
  days += NxWholePart(std::trunc(x.value) / double{kSecondsOfDay});
  t.date.setAbsDate(static_cast<long>(t.date.getAbsDate() - t.date.day + days));
  const NxDayTime time(x.value);
  t.time = d_Time(static_cast<unsigned short>(time.hour), static_cast<unsigned short>(time.minute),
                  time.second, t.time.tz_hour, t.time.tz_minute);
  return t;
}

bool SameDate(const d_Date& a, const d_Date& b) {
  return a.year == b.year && a.month == b.month && a.day == b.day;
}

/// Timestamps of one date order by their times, where less than a second between two
/// that are not the same leaves them without order.
struct TimestampOrder {
  static bool Before(const d_Timestamp& a, const d_Timestamp& b) {
    return (a.date != b.date) < 0 || (SameDate(a.date, b.date) && (a.time != b.time) < 0);
  }
  static bool NotAfter(const d_Timestamp& a, const d_Timestamp& b) {
    return Before(a, b) || (SameDate(a.date, b.date) && std::memcmp(&a.time, &b.time, sizeof(d_Time)) == 0);
  }
};

using DateOrder = NxDifferenceOrder<d_Date>;
using TimeOrder = NxDifferenceOrder<d_Time>;

}  // namespace

d_Timestamp& d_Timestamp::operator=(const d_Date& d) {
  date = d;
  return *this;
}

d_Timestamp& d_Timestamp::operator=(const NxDateTime& t) {
  date = t.date;
  time = t.time;
  return *this;
}

d_Timestamp d_Timestamp::current() { return d_Timestamp(); }

d_Timestamp& d_Timestamp::operator+=(const d_Interval& iv) {
  return MoveTo(*this, SinceMonthBegan(*this) + iv);
}

d_Timestamp& d_Timestamp::operator-=(const d_Interval& iv) {
  return MoveTo(*this, SinceMonthBegan(*this) - iv);
}

d_Timestamp operator+(const d_Timestamp& t, const d_Interval& iv) { return d_Timestamp(t) += iv; }

d_Timestamp operator+(const d_Interval& iv, const d_Timestamp& t) { return d_Timestamp(t) += iv; }

d_Timestamp operator-(const d_Timestamp& t, const d_Interval& iv) { return d_Timestamp(t) -= iv; }

int operator!=(const d_Timestamp& a, const d_Timestamp& b) {
  const int days = a.date != b.date;
  return days != 0 ? days : a.time != b.time;
}

bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Timestamp& b1, const d_Timestamp& b2) {
  return NxOverlaps<TimestampOrder>(TimestampOrder::NotAfter(a1, a2), a1, a2, b1, b2);
}

bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Date& b1, const d_Date& b2) {
  return NxOverlaps<DateOrder>(TimestampOrder::NotAfter(a1, a2), a1.date, a2.date, b1, b2);
}

bool overlaps(const d_Date& a1, const d_Date& a2, const d_Timestamp& b1, const d_Timestamp& b2) {
  return overlaps(a1, a2, b1.date, b2.date);
}

bool overlaps(const d_Timestamp& a1, const d_Timestamp& a2, const d_Time& b1, const d_Time& b2) {
  return NxOverlaps<TimeOrder>(TimestampOrder::NotAfter(a1, a2), a1.time, a2.time, b1, b2);
}

bool overlaps(const d_Time& a1, const d_Time& a2, const d_Timestamp& b1, const d_Timestamp& b2) {
  return overlaps(a1, a2, b1.time, b2.time);
}
