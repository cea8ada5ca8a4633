// Numbers of seconds in single precision, as the standard date and time types compute with
// them: their whole part, and the time of day that they come to.
#ifndef NXDAYTIME_H
#define NXDAYTIME_H

#include <climits>
#include <cmath>

inline constexpr int kSecondsOfDay = 86400;

/// The whole part of a number; the smallest long for what no long holds and for what is
/// no number.
inline long NxWholePart(double value) {
  constexpr double kEnd = 2147483648.0;
  return value > -kEnd - 1 && value < kEnd ? static_cast<long>(value) : LONG_MIN;
}

/// The time of day of a number of seconds that is not negative; whole days are left out.
struct NxDayTime {
  long hour;
  long minute;
  float second;  // with its fraction

  explicit NxDayTime(float seconds) {
    const float whole = std::trunc(seconds);
    const long secondOfDay = NxWholePart(std::fmod(whole, static_cast<float>(kSecondsOfDay)));
    hour = secondOfDay / 3600;
    minute = secondOfDay % 3600 / 60;
    second = seconds - whole + static_cast<float>(secondOfDay % 60);
  }
};

#endif
