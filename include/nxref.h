/// Identifiers of objects and classes, and references to objects.
#ifndef NXREF_H
#define NXREF_H

#include "nxapi.h"

#endif
