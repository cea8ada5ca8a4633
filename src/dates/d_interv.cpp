// d_Interval: a length of time in single precision.
#include "d_interv.h"

#include <cmath>
#include <cstdlib>

#include "dates/nxdaytime.h"

namespace {

/// The seconds of a number of minutes, hours or days, without its sign.
float Magnitude(int count, int seconds) {
  return static_cast<float>(std::llabs(static_cast<long long>(count)) * seconds);
}

}  // namespace

d_Interval::d_Interval(int day, int hour, int minute, float second)
    : value(std::fabs(second) + Magnitude(minute, 60) + Magnitude(hour, 3600) +
            Magnitude(day, kSecondsOfDay)) {
  if (day < 0 || hour < 0 || minute < 0 || second < 0) value = -value;
}

void makePositiveInterval(d_Interval& iv) {
  if (!(iv.value < 0) || std::isinf(iv.value)) return;
  constexpr float kDay = kSecondsOfDay;
  // Days that fit in a number are taken off without rounding, so this is one addition in
  // place of one for every day.
  const float beforeMidnight = std::fmod(iv.value, kDay);
  iv.value = beforeMidnight < 0 ? beforeMidnight + kDay : 0;
}
