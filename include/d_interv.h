/// `d_Interval`: a length of time in seconds, of either sign.
///
///   d_Interval flight(0, 11, 30, 0);       // 41400 seconds
///   d_Interval delay(0, 0, -20, 0);        // -1200 seconds
///   d_Interval both = 2 * flight + delay;  // 81600 seconds
///
/// It computes in single precision: from 2^24 seconds (194 days) on not every second can
/// be told from the next.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef D_INTERV_H
#define D_INTERV_H

#include "nxapi.h"

class NX_API d_Interval {
 public:
  /// No time at all.
  d_Interval() : value(0) {}
  /// The magnitudes of the parts added up; one negative part makes the whole negative.
  d_Interval(int day, int hour, int minute, float second);
  d_Interval(const d_Interval& iv) = default;
  d_Interval& operator=(const d_Interval& iv) = default;

  /// The sign changes, that of 0 too.
  d_Interval operator-() const { return OfSeconds(-value); }
  friend d_Interval operator+(const d_Interval& a, const d_Interval& b) {
    return OfSeconds(a.value + b.value);
  }
  friend d_Interval operator-(const d_Interval& a, const d_Interval& b) {
    return OfSeconds(a.value - b.value);
  }
  friend d_Interval operator*(const d_Interval& iv, int n) {
    return OfSeconds(iv.value * static_cast<float>(n));
  }
  friend d_Interval operator*(int n, const d_Interval& iv) { return iv * n; }
  /// A division by 0 leaves the interval as it is.
  friend d_Interval operator/(const d_Interval& iv, int n) {
    return n == 0 ? iv : OfSeconds(iv.value / static_cast<float>(n));
  }

  float value;  // seconds

 private:
  static d_Interval OfSeconds(float seconds) {
    d_Interval iv;
    iv.value = seconds;
    return iv;
  }
};
static_assert(sizeof(d_Interval) == 4);

/// Adds the fewest whole days that leave the interval not negative. An infinite one stays.
NX_API void makePositiveInterval(d_Interval& iv);

#endif
