/// The clock of the operating system.
#ifndef NXOSTIME_H
#define NXOSTIME_H

#include "nxapi.h"

#endif
