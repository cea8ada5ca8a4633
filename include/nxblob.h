/// `NxBlob`: binary large objects.
#ifndef NXBLOB_H
#define NXBLOB_H

#include "nxapi.h"

#endif
