/// Value hashing for hash indexes. Equal values in the same form hash alike; the
/// hash of an array is the exclusive or of its elements' words times 1103515245.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXTYPHASH_H
#define NXTYPHASH_H

#include "nxapi.h"
#include "nxtypes.h"

/// `error` becomes 0, or 2101 when the buffer ends before the last element (the
/// answer then covers the elements before its end).
NX_API NxSlot::Hash CharHash, ByteHash, ShortHash, WordHash, IntHash, UnsignedHash, LongHash, DwordHash,
    FloatHash, DoubleHash, Int64Hash, BooleanHash, DateHash, TimeHash, SealHash, NxIllegalHash;
/// Strings hash by collation. `error` may also become -2999 (nxtypcmp.h), the answer
/// being 0.
NX_API NxSlot::Hash StringHash, StringOldHash;
/// The alphabetic strings are not hashed: 0, `error` untouched.
NX_API NxSlot::Hash NxIStringHash, NxCaseIStringHash;
/// The body of StringHash (oldForm 0) and StringOldHash (oldForm 1).
NX_API unsigned long StringHashCommon(unsigned char format, unsigned long len, void* value,
                                      unsigned long count, int& error, unsigned short oldForm);

#endif
