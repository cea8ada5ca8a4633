// The clock: local and universal date and time of day, and the local zone.

// Seconds since 1970 in 64 bits, so that the clock does not end in 2038.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64

#include <time.h>

#include "nxbase.h"

namespace {

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

/// Local calendar of `seconds`; false when it cannot be told.
bool LocalCalendar(time_t seconds, tm* calendar) {
  tzset();  // the reentrant conversion need not follow a change of zone by itself
  return localtime_r(&seconds, calendar) != nullptr;
}

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
  if (LocalCalendar(Now().tv_sec, &calendar)) SetDate(date, calendar);
}

void bksgettime(btime* time) {
  const timespec now = Now();
  tm calendar{};
  if (LocalCalendar(now.tv_sec, &calendar)) SetTime(time, calendar, now.tv_nsec);
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
  if (!LocalCalendar(Now().tv_sec, &calendar)) return kTimeZoneUnavailable;
  return static_cast<int>(calendar.tm_gmtoff / 60);
}
