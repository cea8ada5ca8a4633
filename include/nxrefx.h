/// The slots of identifiers and references.
#ifndef NXREFX_H
#define NXREFX_H

#include "nxapi.h"
#include "nxslot.h"

#endif
