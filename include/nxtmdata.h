/// The library's context: start-up and shutdown, the default type manager, options.
#ifndef NXTMDATA_H
#define NXTMDATA_H

#include "nxapi.h"

class NxTypeMgr;

/// Bit of the options word: strings convert to int, short and long in base 10
/// only; otherwise the C prefixes 0x and 0 count.
inline constexpr unsigned long kOptionDecimalOnly = 1;

/// The default manager, or null; a manager handed in becomes the default. The one
/// before it is not released.
NX_API NxTypeMgr* DefaultTypeMgr(NxTypeMgr* mgr);

/// Starts (not 0) or shuts down (0) the library: the language context first, then
/// the default manager, of format 5. The shutdown releases the default manager,
/// whoever installed it.
NX_API void ___NxTypemgrContext(int start);

/// The options word, initially 0.
NX_API unsigned long* ___NxTypeMgrOptions();

#endif
