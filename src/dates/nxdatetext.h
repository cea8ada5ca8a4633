// Dates and times as text: the one engine behind the print and scan functions of all
// types that have to do with the calendar or the clock. What they have in common is
// NxDateTime: each fills one in, or takes its fields from one. The directives are listed
// in nxtypfmt.h.
#ifndef NXDATETEXT_H
#define NXDATETEXT_H

#include "nxdatime.h"

/// Appends the text of a date-time, null or not, to out. A null format prints nothing.
void NxPrintDateTime(NxString& out, const NxDateTime& value, const char* format);

/// Reads from text the fields that the format names, whether or not they make a date and
/// a time; the others keep their values. A null format names none.
void NxScanDateTimeFields(NxDateTime& fields, const char* text, const char* format);

/// Reads a date-time: null from a text that begins with the null text, else its fields
/// from 0000-01-01 00:00:00 on, which also stands for those that make no date and time.
/// Fields that are all 0 stay so.
void NxScanDateTime(NxDateTime& value, const NxString& in, const char* format);

#endif
