/// The texts that stand for null values. Threads may read them at once; they are changed
/// before threads start.
#ifndef NXNULLTEXT_H
#define NXNULLTEXT_H

#include "nxapi.h"

class NxString;

/// What null values print as and scan from, `NxTypeMgr::GetNullPrintString` to callers;
/// "{NULL}" when the library is loaded.
extern NX_API NxString __NullPrintString;
/// "0": what a type scans to be made null when it knows no other way.
extern NX_API NxString SourceZeroString;

#endif
