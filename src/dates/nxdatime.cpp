// NxDateTime: computes with its two parts, carrying from the time of day to the date.
#include "nxdatime.h"

#include "dates/nxdatetext.h"
#include "nxbase.h"
#include "nxnulltext.h"
#include "nxstring.h"

namespace {

constexpr long kSecondsOfDay = 86400;
constexpr long kMinutesOfDay = 1440;

signed char Byte(long v) { return static_cast<signed char>(v); }

}  // namespace

NxDateTime::NxDateTime() = default;  // both parts ask the clock
NxDateTime::NxDateTime(const NxDate& d) : date(d) {}
NxDateTime::NxDateTime(const NxTime& t) : time(t) {}

NxDateTime& NxDateTime::operator=(const NxTime& t) {
  time = t;
  return *this;
}

NxDateTime& NxDateTime::Now() {
  date.Today();
  time.Now();
  return *this;
}

NxDateTime& NxDateTime::NowUTC() {
  btime utcTime = {};
  bdate utcDate = {};
  bksgetsystemtime(&utcTime, &utcDate);
  date.year = utcDate.year;
  date.month = utcDate.month;
  date.day = utcDate.day;
  time.hour = utcTime.hour;
  time.minute = utcTime.minute;
  time.second = utcTime.second;
  return *this;
}

int NxDateTime::operator!=(const NxDateTime& t) const {
  const int dates = date != t.date;
  return dates != 0 ? dates : time != t.time;
}

void NxDateTime::AddSeconds(long seconds) {
  long days = seconds / kSecondsOfDay;
  const long rest = seconds % kSecondsOfDay;
  NxTime moved(time);
  if (rest < 0) {
    moved -= -rest;
    if (moved > time) --days;
  } else {
    moved += rest;
    if (moved < time) ++days;
  }
  date += days;
  time = moved;
}

void NxDateTime::AddMinutes(long minuteOfDay) {
  if (minuteOfDay >= kMinutesOfDay) {
    ++date;
    minuteOfDay -= kMinutesOfDay;
  } else if (minuteOfDay < 0) {
    --date;
    minuteOfDay += kMinutesOfDay;
  }
  const long minute = (minuteOfDay % 60 + 60) % 60;
  time.hour = Byte((minuteOfDay - minute) / 60);
  time.minute = Byte(minute);
}

int NxDateTime::ToLocalTime() {
  const int zone = bksgettimezone();
  if (zone == kTimeZoneUnavailable) return zone;
  AddMinutes(time.hour * 60L + time.minute + zone);
  return 0;
}

int NxDateTime::ToUTCTime() {
  const int zone = bksgettimezone();
  if (zone == kTimeZoneUnavailable) return zone;
  AddMinutes(time.hour * 60L + time.minute - zone);
  return 0;
}

NxString& NxDateTime::PrintToNxString(NxString& out, const char* fmt) const {
  if (IsNullValue()) return out = __NullPrintString;
  NxPrintDateTime(out, *this, fmt ? fmt : "%Y-%m-%dT%H:%M:%S");
  return out;
}

void NxDateTime::ScanFromNxString(const NxString& in, const char* fmt) {
  NxScanDateTime(*this, in, fmt ? fmt : "%Y-%m-%dT%H:%M:%S");
}

NxDateTime& NxDateTime::Null() {
  // Zeros from the start: several threads may ask first.
  alignas(NxDateTime) static unsigned char zeros[sizeof(NxDateTime)];
  return *reinterpret_cast<NxDateTime*>(zeros);
}

int NxDateTime::SetNullValue() {
  date.SetNullValue();
  return time.SetNullValue();
}
