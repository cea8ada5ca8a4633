/// The slots of identifiers and references that are no members of their classes; the
/// members are in nxref.h, the null states in nxtypes.h.
#ifndef NXREFX_H
#define NXREFX_H

#include "nxapi.h"
#include "nxref.h"
#include "nxslot.h"

/// New values are all zero.
NX_API NxSlot::Place NxObjIdConstructor, NxClassIdConstructor, NxRefConstructor;
NX_API NxSlot::Place NxObjIdDestructor, NxClassIdDestructor, NxRefDestructor;
NX_API NxSlot::Copy NxObjIdAssignment, NxClassIdAssignment, NxRefAssignment;
NX_API NxSlot::Copy NxObjIdCopy, NxClassIdCopy, NxRefCopy;
NX_API NxSlot::DefaultValue NxObjIdDefaultValue, NxClassIdDefaultValue, NxRefDefaultValue;

#endif
