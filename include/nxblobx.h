/// The slots of `NxBlob`.
#ifndef NXBLOBX_H
#define NXBLOBX_H

#include "nxapi.h"
#include "nxslot.h"

#endif
