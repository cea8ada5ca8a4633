// The print and scan slots of dates and times. Each widens its value to an NxDateTime,
// which the engine of nxdatetext.h prints and scans.
#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "d_timest.h"
#include "dates/nxdatetext.h"
#include "dates/nxdaytime.h"
#include "nxdatime.h"
#include "nxtypfmt.h"
#include "odmgtyp.h"
#include "text/nxtextio.h"

namespace {

template <class T>
NxString& Print(NxString& out, void* value, const char* fmt) {
  return static_cast<T*>(value)->PrintToNxString(out, fmt);
}

template <class T>
void* Scan(void* value, const NxString& in, const char* fmt) {
  if (value) static_cast<T*>(value)->ScanFromNxString(in, fmt);
  return value;
}

}  // namespace

NxString& DatePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return Print<NxDate>(out, value, fmt);
}
void* DateScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return Scan<NxDate>(value, in, fmt);
}

NxString& TimePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return Print<NxTime>(out, value, fmt);
}
void* TimeScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return Scan<NxTime>(value, in, fmt);
}

NxString& DaTimePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return Print<NxDateTime>(out, value, fmt);
}
void* DaTimeScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return Scan<NxDateTime>(value, in, fmt);
}

// ---------------------------------------------------------------------------
// The standard types. None of them prints the null text.

namespace {

signed char Byte(long v) { return static_cast<signed char>(v); }

/// A date-time of given fields, as bytes hold them.
NxDateTime Fields(const NxDate& date, long hour, long minute, long second) {
  NxDateTime fields(date, NxTime(0L));
  fields.time.hour = Byte(hour);
  fields.time.minute = Byte(minute);
  fields.time.second = Byte(second);
  return fields;
}

NxDate DateOf(short year, signed char month, signed char day) {
  NxDate date(0L);
  date.year = year;
  date.month = month;
  date.day = day;
  return date;
}

NxDate DateOf(const d_Date& d) { return DateOf(d.year, d.month, d.day); }

NxDateTime Widened(const d_Date& d) { return Fields(DateOf(d), 0, 0, 0); }

NxDateTime At(const NxDate& date, const d_Time& t) {
  return Fields(date, t.LocalHour(), t.LocalMinute(), static_cast<long>(t.Seconds()));
}

NxDateTime Widened(const d_Time& t) { return At(DateOf(0, 1, 1), t); }

NxDateTime Widened(const d_Timestamp& t) { return At(DateOf(t.date), t.time); }

/// The day of the month holds the days of an interval, as far as a byte does.
NxDateTime Widened(const d_Interval& iv) {
  const long seconds = NxWholePart(iv.value);
  return Fields(DateOf(0, 1, Byte(NxWholePart(iv.value / 86400))), seconds % 86400 / 3600,
                seconds % 3600 / 60, seconds % 60);
}

template <class T>
NxString& PrintWidened(NxString& out, void* value, const char* fmt) {
  NxPrintDateTime(out, Widened(*static_cast<T*>(value)), fmt);
  return out;
}

/// T takes the part of a date-time that it has.
template <class T>
void* ScanWidened(void* value, const NxString& in, const char* fmt) {
  if (!value) return nullptr;
  const NxShortageWatch shortage;
  NxDateTime whole(NxDateTime::Null());
  NxScanDateTime(whole, in, fmt);
  if (!shortage.Happened()) *static_cast<T*>(value) = whole;
  return value;
}

}  // namespace

NxString& d_DatePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintWidened<d_Date>(out, value, fmt);
}
void* d_DateScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanWidened<d_Date>(value, in, fmt);
}

NxString& d_TimePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintWidened<d_Time>(out, value, fmt);
}
void* d_TimeScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanWidened<d_Time>(value, in, fmt);
}

NxString& d_TimestampPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintWidened<d_Timestamp>(out, value, fmt);
}
void* d_TimestampScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanWidened<d_Timestamp>(value, in, fmt);
}

NxString& d_IntervalPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintWidened<d_Interval>(out, value, fmt);
}

void* d_IntervalScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  if (!value) return nullptr;
  // From day 0, and whether or not the fields make a date: it is a length that is read.
  NxDateTime length(NxDateTime::Null());
  const NxScanText text(in);
  if (text.IsMissing()) return value;
  if (NxBeginsWithNullText(text.String()))
    length.SetNullValue();
  else
    NxScanDateTimeFields(length, text.Chars(), fmt);
  *static_cast<d_Interval*>(value) =
      d_Interval(length.date.day, length.time.hour, length.time.minute, length.time.second);
  return value;
}
