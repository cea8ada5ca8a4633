/// `d_Timestamp`: a date and a time.
#ifndef D_TIMEST_H
#define D_TIMEST_H

#include "nxapi.h"

#endif
