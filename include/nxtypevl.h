/// Index bounds of query terms and the estimates of what they select.
///
/// An EvalAndBound slot puts the images that an index scan must keep between into
/// `bounds` and answers the fraction of the keys between `indexRange->lower` and
/// `indexRange->upper` that the term selects. Both records may be null: without the
/// index's range (or with images shorter than a value) the estimate is 0 for most types,
/// without bounds none are built.
/// The estimate is passed on as computed: it may lie outside 0 to 1.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXTYPEVL_H
#define NXTYPEVL_H

#include "nxapi.h"
#include "nxtypes.h"

/// A key interval of stored key images. Images that the library puts in are
/// allocated with malloc and belong to the record's holder, who releases them
/// with free. A bound already present is never replaced.
struct NxIdxBounds {
  void* lower;             // image of the lower bound, or null: open below
  void* upper;             // image of the upper bound, or null: open above
  unsigned char lowerLen;  // bytes of `lower`
  unsigned char upperLen;  // bytes of `upper`
};
static_assert(sizeof(NxIdxBounds) == 12, "two pointers and two length bytes");

/// Largest length in bytes of a string key image that is built as a bound.
inline constexpr unsigned long NxINDEX_MAX_KEYLEN = 254;

/// The size of the key space that the relation selects: of the keys from low to high,
/// and those below or above them, in an index that holds indexLow to indexHigh, each
/// key being `step` wide.
NX_API double CalcRange(unsigned short relation, double low, double high, double indexLow, double indexHigh,
                        double step);

/// Copies the first `size` bytes of key into the bounds that are empty and that the
/// relation allows: the lower one unless it accepts smaller values, the upper one
/// unless it accepts greater ones. Nothing happens without bounds.
NX_API void SetBoundaries(NxIdxBounds* bounds, void* key, unsigned short relation, unsigned long size);

/// The code set that a stored string has under a format byte: 254 stays; bit 5 turns
/// any other into 0, bit 6 turns 0 into the native code set.
NX_API unsigned char CalculateCodeSet(unsigned char codeSet, unsigned char format);

NX_API NxSlot::EvalAndBound CharEvalAndBound, ByteEvalAndBound, ShortEvalAndBound, WordEvalAndBound,
    IntEvalAndBound, UnsignedEvalAndBound, LongEvalAndBound, DwordEvalAndBound, FloatEvalAndBound,
    DoubleEvalAndBound, Int64EvalAndBound, BooleanEvalAndBound, DateEvalAndBound, TimeEvalAndBound,
    SealEvalAndBound, NxIllegalEvalAndBound;
/// String bounds are key images of at most NxINDEX_MAX_KEYLEN bytes. The last bytes
/// of the images handed in change during the call and are put back.
NX_API NxSlot::EvalAndBound StringEvalAndBound, StringOldEvalAndBound, NxIStringEvalAndBound,
    NxCaseIStringEvalAndBound;
/// The body of StringEvalAndBound (oldForm 0) and StringOldEvalAndBound (oldForm 1).
NX_API float StringEvalAndBoundCommon(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                                      unsigned char format, unsigned long count, NxIdxBounds* bounds,
                                      unsigned short oldForm);

#endif
