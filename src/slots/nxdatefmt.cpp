// The print and scan slots of dates and times. Each widens its value to an NxDateTime,
// which the engine of nxdatetext.h prints and scans.
#include "dates/nxdatetext.h"
#include "nxdatime.h"
#include "nxtypfmt.h"

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
