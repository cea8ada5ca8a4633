/// `d_Interval`: a length of time.
#ifndef D_INTERV_H
#define D_INTERV_H

#include "nxapi.h"

#endif
