/// `NxDateTime`: a date and a time of day.
#ifndef NXDATIME_H
#define NXDATIME_H

#include "nxapi.h"

#endif
