// NxDate and NxTime: calendar dates and times of day. Dates compute by way of their
// day numbers (nxcalendar.h), times by field with carries, as their stored fields may
// hold what is no date or time.
#include "nxcomp.h"

#include "dates/nxdatetext.h"
#include "nxbase.h"
#include "nxnulltext.h"
#include "nxstring.h"

const char* const nx_months[12] = {"Januar", "Februar", "March",     "April",   "May",      "June",
                                   "July",   "August",  "September", "October", "November", "December"};
const char* const nx_weekdays[7] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                    "Friday", "Saturday", "Sunday"};

namespace {

constexpr short kNullYear = -32768;
constexpr signed char kNullField = -128;
constexpr int kAny = -1;  // a date field that is not compared

signed char Byte(long v) { return static_cast<signed char>(v); }

unsigned long Magnitude(long v) {
  return v < 0 ? 0 - static_cast<unsigned long>(v) : static_cast<unsigned long>(v);
}

/// Brings a time back into the day after fields were taken away.
void Borrow(NxTime& t) {
  if (t.second < 0) {
    t.second = Byte(t.second + 60);
    t.minute = Byte(t.minute - 1);
  }
  if (t.minute < 0) {
    t.minute = Byte(t.minute + 60);
    t.hour = Byte(t.hour - 1);
  }
  if (t.hour < 0) t.hour = Byte(t.hour + 24);
}

/// Brings a time back into the day after fields were added.
void Carry(NxTime& t) {
  if (t.second > 59) {
    t.second = Byte(t.second - 60);
    t.minute = Byte(t.minute + 1);
  }
  if (t.minute > 59) {
    t.minute = Byte(t.minute - 60);
    t.hour = Byte(t.hour + 1);
  }
  if (t.hour > 23) t.hour = Byte(t.hour % 24);
}

}  // namespace

// ---------------------------------------------------------------------------
// NxDate

NxDate::NxDate() { Today(); }

NxDate& NxDate::Today() {
  bdate today = {};
  bksgetdate(&today);
  year = today.year;
  month = today.month;
  day = today.day;
  return *this;
}

NxDate NxDate::operator+(long days) const { return NxDate(NxCalendar::WrapAdd(dayabs(), days)); }

NxDate NxDate::operator-(long days) const {
  return NxDate(NxCalendar::WrapAdd(dayabs(), NxCalendar::WrapMul(days, -1)));
}

long NxDate::operator-(const NxDate& other) const { return dayabs() - other.dayabs(); }

NxDate& NxDate::operator++() { return *this += 1; }

NxDate& NxDate::operator--() { return *this -= 1; }

NxDate& NxDate::operator+=(long days) { return *this = *this + days; }

NxDate& NxDate::operator-=(long days) { return *this = *this - days; }

int NxDate::operator!=(const NxDate& d) const {
  if (year != kAny && d.year != kAny && year != d.year) return year - d.year;
  if (month != kAny && d.month != kAny && month != d.month) return month - d.month;
  if (day != kAny && d.day != kAny) return day - d.day;
  return 0;
}

int NxDate::DayOfTheDate() const { return NxCalendar::Weekday(year, month, day); }

NxString NxDate::PrintDayOfTheDate() const { return NxString(nx_weekdays[DayOfTheDate()]); }

int NxDate::IsDate() const { return day >= 1 && day <= 31 && month >= 1 && month <= 12 && daynxtmonth() > 0; }

int NxDate::IsLastDayOfTheMonth() const { return daynxtmonth() == 1; }

long NxDate::daynxtmonth() const { return NxCalendar::DayNumber(year, month + 1, 1) - dayabs(); }

long NxDate::divide(long a, long b) const {
  const unsigned long quotient = Magnitude(a) / Magnitude(b);
  return static_cast<long>((a < 0) != (b < 0) ? 0 - quotient : quotient);
}

long NxDate::modulo(long a, long b) const {
  const unsigned long remainder = Magnitude(a) % Magnitude(b);
  return static_cast<long>((a < 0) != (b < 0) ? 0 - remainder : remainder);
}

NxString& NxDate::PrintToNxString(NxString& out, const char* fmt) const {
  if (IsNullValue()) return out = __NullPrintString;
  NxPrintDateTime(out, NxDateTime(*this), fmt ? fmt : "%Y-%m-%d");
  return out;
}

void NxDate::ScanFromNxString(const NxString& in, const char* fmt) {
  NxDateTime whole(*this, NxTime(0L));
  NxScanDateTime(whole, in, fmt ? fmt : "%Y-%m-%d");
  *this = whole.date;
}

int NxDate::IsNullValue() const { return year == kNullYear && month == kNullField && day == kNullField; }

int NxDate::SetNullValue() {
  year = kNullYear;
  month = kNullField;
  day = kNullField;
  return 0;
}

// ---------------------------------------------------------------------------
// NxTime

NxTime::NxTime() { Now(); }

NxTime::NxTime(long seconds)
    : hour(Byte(seconds / 3600)), minute(Byte(seconds % 3600 / 60)), second(Byte(seconds % 3600 % 60)) {}

NxTime& NxTime::Now() {
  btime now = {};
  bksgettime(&now);
  hour = now.hour;
  minute = now.minute;
  second = now.second;
  return *this;
}

NxTime::operator long() const { return hour * 3600L + minute * 60L + second; }

NxTime NxTime::operator+(long seconds) const {
  NxTime sum(*this);
  sum.hour = Byte(hour + seconds / 60 / 60);
  sum.minute = Byte(minute + seconds / 60 % 60);
  sum.second = Byte(second + seconds % 60);
  Carry(sum);
  return sum;
}

NxTime NxTime::operator-(long seconds) const {
  NxTime rest(*this);
  rest.hour = Byte(hour - seconds / 60 / 60);
  rest.minute = Byte(minute - seconds / 60 % 60);
  rest.second = Byte(second - seconds % 60);
  Borrow(rest);
  return rest;
}

NxTime NxTime::operator-(const NxTime& other) const {
  NxTime span(*this);
  span.hour = Byte(hour - other.hour);
  span.minute = Byte(minute - other.minute);
  span.second = Byte(second - other.second);
  Borrow(span);
  return span;
}

NxTime& NxTime::operator++() { return *this += 1; }

NxTime& NxTime::operator--() { return *this -= 1; }

NxTime& NxTime::operator+=(long seconds) { return *this = *this + seconds; }

NxTime& NxTime::operator-=(long seconds) { return *this = *this - seconds; }

int NxTime::operator!=(const NxTime& t) const {
  if (hour != t.hour) return hour > t.hour ? 1 : -1;
  if (minute != t.minute) return minute > t.minute ? 1 : -1;
  if (second != t.second) return second > t.second ? 1 : -1;
  return 0;
}

int NxTime::IsTime() const {
  return hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 && second <= 59;
}

NxString& NxTime::PrintToNxString(NxString& out, const char* fmt) const {
  if (IsNullValue()) return out = __NullPrintString;
  NxPrintDateTime(out, NxDateTime(*this), fmt ? fmt : "%H:%M:%S");
  return out;
}

void NxTime::ScanFromNxString(const NxString& in, const char* fmt) {
  NxDateTime whole(NxDate(0L), *this);
  NxScanDateTime(whole, in, fmt ? fmt : "%H:%M:%S");
  *this = whole.time;
}

int NxTime::IsNullValue() const { return hour == kNullField && minute == kNullField && second == kNullField; }

int NxTime::SetNullValue() {
  hour = minute = second = kNullField;
  return 0;
}
