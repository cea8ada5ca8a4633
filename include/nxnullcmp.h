/// The order of values that may be null, of every class with `IsNullValue`.
#ifndef NXNULLCMP_H
#define NXNULLCMP_H

#include "nxapi.h"

/// How two values order that may be null; null sorts first.
enum NxNullCompareResult {
  kBothNull = 0,    //
  kFirstNull = 1,   // only the first value is null
  kSecondNull = 2,  // only the second value is null
  kNoneNull = 3     // the values themselves decide
};

/// Orders the null states of two values.
template <class T>
NxNullCompareResult NxNullValueCompare(const T& a, const T& b) {
  if (a.IsNullValue()) return b.IsNullValue() ? kBothNull : kFirstNull;
  return b.IsNullValue() ? kSecondNull : kNoneNull;
}

#endif
