/// The slots of the standard date and time types. What each does stands at its place in
/// `NxTypeTab`. None of the types has a null state.
///
/// Image of one value, by type; the byte order of year and float is the format code's:
///
///   d_Date       year (2 bytes), month, day
///   d_Time       hour and minute of the zone; hour, minute, second, hundredths as held,
///                  that is with the zone added
///   d_Timestamp  those of the date and of the time
///   d_Interval   the seconds, a float (4 bytes)
///
/// Texts of the string arrays, decimal numbers: the day number as NxDate counts it (one
/// more than getAbsDate), the local second of the day, both with ":" between them, and
/// the whole seconds of the interval.
#ifndef ODMGTYP_H
#define ODMGTYP_H

#include "nxapi.h"
#include "nxslot.h"

/// The values of Create and Constructor are the present date and time, and no interval.
NX_API NxSlot::Create d_DateCreate, d_TimeCreate, d_TimestampCreate, d_IntervalCreate;
NX_API NxSlot::Delete d_DateDelete, d_TimeDelete, d_TimestampDelete, d_IntervalDelete;
NX_API NxSlot::Place d_DateConstructor, d_TimeConstructor, d_TimestampConstructor, d_IntervalConstructor;
NX_API NxSlot::Place d_DateDestructor, d_TimeDestructor, d_TimestampDestructor, d_IntervalDestructor;
NX_API NxSlot::Copy d_DateAssignment, d_TimeAssignment, d_TimestampAssignment, d_IntervalAssignment;
NX_API NxSlot::Copy d_DateCopy, d_TimeCopy, d_TimestampCopy, d_IntervalCopy;
NX_API NxSlot::DefaultValue d_DateDefaultValue, d_TimeDefaultValue, d_TimestampDefaultValue,
    d_IntervalDefaultValue;

// The sizes, the comparison, the bounds, the hash and the translation of intervals are
// those of float.

NX_API NxSlot::Store d_DateStore, d_TimeStore, d_TimestampStore, d_IntervalStore;
NX_API NxSlot::Load d_DateLoad, d_TimeLoad, d_TimestampLoad, d_IntervalLoad;
NX_API NxSlot::NullSizeGet d_DateNullSizeGet, d_TimeNullSizeGet, d_TimestampNullSizeGet;
NX_API NxSlot::SizeGet d_DateSizeGet, d_TimeSizeGet, d_TimestampSizeGet;
NX_API NxSlot::SizeGetFromMemFile d_DateSizeGetFromMemFile, d_TimeSizeGetFromMemFile,
    d_TimestampSizeGetFromMemFile;
NX_API NxSlot::Translate d_DateTranslate, d_TimeTranslate, d_TimestampTranslate;

/// In memory (format byte 8 as a whole) as the classes' `!=` answers. Stored, dates
/// compare by their fields: the year unsigned, -1 in a field of the second operand
/// meaning any unless the options turn wildcards off; times by their six bytes.
NX_API NxSlot::Compare d_DateCompare, d_TimeCompare, d_TimestampCompare;
/// Stored times and times in memory (format byte 8 as a whole) hash differently.
NX_API NxSlot::Hash d_DateHash, d_TimeHash, d_TimestampHash;
/// A wildcard in a date key makes the bounds' field the lowest and the highest number
/// there is. Estimates of times tell seconds apart, those of timestamps minutes.
NX_API NxSlot::EvalAndBound d_DateEvalAndBound, d_TimeEvalAndBound, d_TimestampEvalAndBound;

NX_API NxSlot::ConvertTo d_DateConvertToNxString, d_TimeConvertToNxString, d_TimestampConvertToNxString,
    d_IntervalConvertToNxString;
/// A missing or null text gives 0 in every field (times: 0:00 in the default zone).
NX_API NxSlot::ConvertFrom d_DateConvertFromNxString, d_TimeConvertFromNxString,
    d_TimestampConvertFromNxString, d_IntervalConvertFromNxString;

/// Local times, under a format of dates and times (nxtypfmt.h); appended to the output.
NX_API NxSlot::Print d_DatePrintToNxString, d_TimePrintToNxString, d_TimestampPrintToNxString,
    d_IntervalPrintToNxString;
/// A scanned time is local time in the default zone.
NX_API NxSlot::Scan d_DateScanFromNxString, d_TimeScanFromNxString, d_TimestampScanFromNxString,
    d_IntervalScanFromNxString;

#endif
