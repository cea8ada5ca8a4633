/// Index bounds of query terms and the estimates of what they select.
#ifndef NXTYPEVL_H
#define NXTYPEVL_H

#include "nxapi.h"

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

#endif
