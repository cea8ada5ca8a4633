/// Value comparison: the Compare slots. The option word and the error words are those of
/// nxoption.h, the order of null states that of nxnullcmp.h.
///
/// A Compare slot walks count elements of two arrays and answers at the first
/// difference: negative when the first operand sorts before the second, 0 when
/// equal (strings: matching the pattern), positive when after. Buffer lengths are in
/// bytes, 0 meaning no limit; an element that its buffer holds only in part is not read
/// (0 with 2101). `error` is 0, 2101 or -2999 on return.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXTYPCMP_H
#define NXTYPCMP_H

#include "nxapi.h"
#include "nxnullcmp.h"
#include "nxoption.h"
#include "nxtypes.h"

/// Moves p on by size bytes and answers 0; leaves it and answers 2101 when the new
/// place would not lie before end.
NX_API int IncrementPointer(void*& p, void* end, unsigned long size);

/// Scalars answer -1, 0 or 1 and ignore the options; an unordered pair of floats
/// answers 0. Null booleans sort first. Dates take wildcards (-1) in their fields.
NX_API NxSlot::Compare CharCompare, ByteCompare, ShortCompare, WordCompare, IntCompare, UnsignedCompare,
    LongCompare, DwordCompare, FloatCompare, DoubleCompare, Int64Compare, BooleanCompare, DateCompare,
    TimeCompare, SealCompare, NxIllegalCompare;
/// The second operand is the pattern where wildcards are active.
NX_API NxSlot::Compare StringCompare, StringOldCompare, NxIStringCompare, NxCaseIStringCompare;
/// The body of StringCompare (oldForm 0) and StringOldCompare (oldForm 1).
NX_API long StringCompareCommon(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                                void* value2, unsigned short options, unsigned long count, int& error,
                                unsigned short oldForm);

#endif
