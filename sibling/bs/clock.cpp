// The clock: local and universal date and time of day, and the local zone.

// Seconds since 1970 in 64 bits, so that the clock does not end in 2038.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "nxbase.h"

namespace {

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

/// The local calendar, which costs microseconds to ask for: the C library looks whether
/// the zone's file has changed. Every date or time made without a value asks, so the
/// answer is kept for the second and the zone that it was given for.
class LocalClock {
 public:
  /// Local calendar of `seconds`; false when it cannot be told.
  bool Calendar(time_t seconds, tm* calendar) {
    const char* zone = getenv("TZ");
    if ((!known_ || seconds != second_ || !IsZone(zone)) && !Ask(seconds, zone)) return false;
    *calendar = calendar_;
    return true;
  }

 private:
  bool IsZone(const char* zone) const { return zone ? stated_ && strcmp(zone, zone_) == 0 : !stated_; }

  bool Ask(time_t seconds, const char* zone) {
    tzset();  // the reentrant conversion need not follow a change of zone by itself
    known_ = false;
    if (!localtime_r(&seconds, &calendar_)) return false;
    second_ = seconds;
    stated_ = zone != nullptr;
    known_ = !stated_ || strlen(zone) < sizeof zone_;
    if (stated_ && known_) strcpy(zone_, zone);
    return true;
  }

  tm calendar_{};
  time_t second_ = 0;
  bool known_ = false;   // the fields below say for what calendar_ holds
  bool stated_ = false;  // by the environment; else the system's zone
  char zone_[64] = {};
};

/// One a thread: the clock may be asked from any.
thread_local LocalClock localClock;

void SetDate(bdate* date, const tm& calendar) {
  date->year = static_cast<short>(calendar.tm_year + 1900);
  date->month = static_cast<signed char>(calendar.tm_mon + 1);
  date->day = static_cast<signed char>(calendar.tm_mday);
}

void SetTime(btime* time, const tm& calendar, long nanoseconds) {
  time->hour = static_cast<signed char>(calendar.tm_hour);
  time->minute = static_cast<signed char>(calendar.tm_min);
  time->second = static_cast<signed char>(calendar.tm_sec);
  time->hundredth = static_cast<signed char>(nanoseconds / 10'000'000);
  time->zone = static_cast<int>(calendar.tm_gmtoff);
}

}  // namespace

void bksgetdate(bdate* date) {
  tm calendar{};
  if (localClock.Calendar(Now().tv_sec, &calendar)) SetDate(date, calendar);
}

void bksgettime(btime* time) {
  const timespec now = Now();
  tm calendar{};
  if (localClock.Calendar(now.tv_sec, &calendar)) SetTime(time, calendar, now.tv_nsec);
}

void bksgetsystemtime(btime* time, bdate* date) {
  const timespec now = Now();
  tm calendar{};
  if (!gmtime_r(&now.tv_sec, &calendar)) return;
  SetTime(time, calendar, now.tv_nsec);
  SetDate(date, calendar);
}

int bksgettimezone() {
  tm calendar{};
  if (!localClock.Calendar(Now().tv_sec, &calendar)) return kTimeZoneUnavailable;
  return static_cast<int>(calendar.tm_gmtoff / 60);
}
