// d_Time: a time of day with its zone, computed in seconds in single precision.
#include "d_time.h"

#include <cmath>

#include "d_timest.h"
#include "dates/nxdaytime.h"
#include "dates/nxoverlap.h"
#include "nxbase.h"
#include "nxcomp.h"
#include "nxdatime.h"

d_Time::Time_Zone d_Time::_tz = d_Time::Utc;

namespace {

signed char Byte(long v) { return static_cast<signed char>(v); }

void SetSeconds(d_Time& t, float seconds) {
  const float whole = std::trunc(seconds);
  t.second = Byte(NxWholePart(whole));
  t.hundredths = Byte(NxWholePart((seconds - whole) * 100));
}

/// Hour and minute as they are held, and seconds, since midnight.
d_Interval SinceMidnight(const d_Time& t, float seconds) { return {0, t.hour, t.minute, seconds}; }

/// The time of day that an interval since midnight comes to, in the zone of t.
d_Time At(d_Interval sinceMidnight, d_Time t) {
  makePositiveInterval(sinceMidnight);
  const NxDayTime time(sinceMidnight.value);
  t.hour = Byte(time.hour);
  t.minute = Byte(time.minute);
  SetSeconds(t, time.second);
  return t;
}

long NotNegative(long seconds) {
  const long rest = seconds % kSecondsOfDay;
  return seconds >= 0 ? seconds : rest < 0 ? rest + kSecondsOfDay : 0;
}

}  // namespace

d_Time::d_Time() : tz_hour(Byte(_tz)), tz_minute(0), hundredths(0) {
  btime now = {};
  bksgettime(&now);
  hour = Byte(tz_hour + now.hour);
  minute = now.minute;
  second = now.second;
}

d_Time::d_Time(unsigned short h, unsigned short m, float s) : d_Time(h, m, s, Byte(_tz), 0) {}

d_Time::d_Time(unsigned short h, unsigned short m, float s, short tzHour, short tzMinute)
    : tz_hour(Byte(tzHour)), tz_minute(Byte(tzMinute)), hour(Byte(tzHour + h)), minute(Byte(tzMinute + m)) {
  SetSeconds(*this, s);
}

d_Time::d_Time(long seconds) : tz_hour(Byte(_tz)), tz_minute(0), hundredths(0) {
  seconds = NotNegative(seconds);
  hour = Byte(tz_hour + seconds / 3600);
  minute = Byte(seconds % 3600 / 60);
  second = Byte(seconds % 60);
}

d_Time::d_Time(const NxTime& t)
    : tz_hour(Byte(_tz)),
      tz_minute(0),
      hour(Byte(tz_hour + t.hour)),
      minute(t.minute),
      second(t.second),
      hundredths(0) {}

d_Time::d_Time(const NxDateTime& t) : d_Time(t.time) {}

d_Time::d_Time(const d_Timestamp& t) : d_Time(t.time) {}

d_Time& d_Time::operator=(const NxTime& t) { return *this = d_Time(t); }

d_Time& d_Time::operator=(const NxDateTime& t) { return *this = d_Time(t.time); }

d_Time& d_Time::operator=(const d_Timestamp& t) { return *this = t.time; }

d_Time d_Time::current() { return d_Time(); }

void d_Time::set_default_Time_Zone(Time_Zone zone) { _tz = zone; }

void d_Time::set_default_Time_Zone_to_local() {
  btime now = {};
  bksgettime(&now);
  if (now.zone != 0) _tz = static_cast<Time_Zone>(now.zone / 3600);
}

d_Time& d_Time::operator+=(const d_Interval& iv) {
  return *this = At(SinceMidnight(*this, Seconds()) + iv, *this);
}

d_Time& d_Time::operator-=(const d_Interval& iv) { return *this = *this - iv; }

d_Time operator+(const d_Time& t, const d_Interval& iv) { return At(SinceMidnight(t, t.second) + iv, t); }

d_Time operator+(const d_Interval& iv, const d_Time& t) { return t + iv; }

d_Time operator-(const d_Time& t, const d_Interval& iv) { return At(SinceMidnight(t, t.second) - iv, t); }

d_Interval operator-(const d_Time& a, const d_Time& b) {
  return SinceMidnight(a, a.second) - SinceMidnight(b, b.second);
}

int operator!=(const d_Time& a, const d_Time& b) {
  if (const int hours = a.LocalHour() - b.LocalHour()) return hours;
  if (const int minutes = a.LocalMinute() - b.LocalMinute()) return minutes;
  return static_cast<int>(a.Seconds() - b.Seconds());
}

bool overlaps(const d_Time& a1, const d_Time& a2, const d_Time& b1, const d_Time& b2) {
  using Order = NxDifferenceOrder<d_Time>;
  return NxOverlaps<Order>(Order::NotAfter(a1, a2), a1, a2, b1, b2);
}
