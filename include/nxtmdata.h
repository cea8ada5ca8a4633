/// The library's context: start-up and shutdown, the default type manager
/// (the options word: nxoption.h).
#ifndef NXTMDATA_H
#define NXTMDATA_H

#include "nxapi.h"
#include "nxoption.h"

class NxTypeMgr;

/// Neither is called while other threads use the library, but to ask for the default manager
/// by null.

/// The default manager, or null; a manager handed in becomes the default. The one
/// before it is not released.
NX_API NxTypeMgr* DefaultTypeMgr(NxTypeMgr* mgr);

/// Starts (not 0) or shuts down (0) the library: the language context first, then
/// the default manager, of format 5. The shutdown releases the default manager,
/// whoever installed it.
NX_API void ___NxTypemgrContext(int start);

#endif
