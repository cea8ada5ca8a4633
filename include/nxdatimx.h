/// The slots of `NxDateTime`. What each does stands at its place in `NxTypeTab`.
///
/// Image of one value: year (2 bytes, in the format code's order), month, day, hour,
/// minute, second. Texts of the string arrays: day number, ":", seconds of the day;
/// null strings for null values.
#ifndef NXDATIMX_H
#define NXDATIMX_H

#include "nxapi.h"
#include "nxslot.h"
#include "nxtypes.h"  // the null state

NX_API NxSlot::Create NxDateTimeCreate;
NX_API NxSlot::Delete NxDateTimeDelete;
NX_API NxSlot::Place NxDateTimeConstructor, NxDateTimeDestructor;
NX_API NxSlot::Copy NxDateTimeAssignment, NxDateTimeCopy;
NX_API NxSlot::DefaultValue NxDateTimeDefaultValue;

NX_API NxSlot::Store DaTimeStore;
NX_API NxSlot::Load DaTimeLoad;
NX_API NxSlot::NullSizeGet DaTimeNullSizeGet;
NX_API NxSlot::SizeGet DaTimeSizeGet;
NX_API NxSlot::SizeGetFromMemFile DaTimeSizeGetFromMemFile;
NX_API NxSlot::Translate DaTimeTranslate;

/// In memory as NxDateTime's `!=` answers, the options playing no part; stored by the
/// plain numbers of the fields. Only format byte 8 as a whole means in memory.
NX_API NxSlot::Compare DaTimeCompare;
NX_API NxSlot::Hash DaTimeHash;
/// Estimates do not tell the seconds of a minute apart.
NX_API NxSlot::EvalAndBound DaTimeEvalAndBound;

NX_API NxSlot::ConvertTo DaTimeConvertToNxString;
NX_API NxSlot::ConvertFrom DaTimeConvertFromNxString;

#endif
