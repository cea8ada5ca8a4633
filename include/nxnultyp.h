/// Nullable scalars.
#ifndef NXNULTYP_H
#define NXNULTYP_H

#include "nxapi.h"
#include "nxslot.h"

#endif
