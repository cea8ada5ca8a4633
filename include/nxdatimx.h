/// The slots of `NxDateTime`.
#ifndef NXDATIMX_H
#define NXDATIMX_H

#include "nxapi.h"
#include "nxslot.h"

#endif
