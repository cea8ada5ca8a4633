// The order of values that may be null.
#ifndef NXNULLORDER_H
#define NXNULLORDER_H

#include "nxnullcmp.h"

/// Negative, 0 or positive: null first, two nulls equal, and what order(a, b) says of values
/// of which none is null.
template <class T, class Order>
long NxOrderNullable(const T& a, const T& b, Order order) {
  switch (NxNullValueCompare(a, b)) {
    case kBothNull:
      return 0;
    case kFirstNull:
      return -1;
    case kSecondNull:
      return 1;
    case kNoneNull:
      break;
  }
  return order(a, b);
}

#endif
