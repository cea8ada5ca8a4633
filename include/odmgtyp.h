/// The slots of the standard date and time types.
#ifndef ODMGTYP_H
#define ODMGTYP_H

#include "nxapi.h"
#include "nxslot.h"

#endif
