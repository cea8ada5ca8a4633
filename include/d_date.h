/// `d_Date`: a calendar date.
#ifndef D_DATE_H
#define D_DATE_H

#include "nxapi.h"

#endif
