/// `d_Time`: a time of day with fractions of a second and a zone.
#ifndef D_TIME_H
#define D_TIME_H

#include "nxapi.h"

#endif
