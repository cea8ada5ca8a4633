// Allocation as the library does it: an allocation that fails calls the memory
// handler, and answers null when the handler returns.
#ifndef NXALLOC_H
#define NXALLOC_H

#include <cstddef>
#include <new>

#include "nxbase.h"

/// An array of n default-initialised values, released with delete[]; null when
/// the memory handler could not help.
template <class T>
T* NxNewArray(unsigned long n) {
  T* array = new (std::nothrow) T[n];
  if (!array) NxCallMemoryHandler(n * sizeof(T));
  return array;
}

/// As NxNewArray, zero-filled (values of class types: default-constructed).
template <class T>
T* NxNewZeroArray(unsigned long n) {
  T* array = new (std::nothrow) T[n]();
  if (!array) NxCallMemoryHandler(n * sizeof(T));
  return array;
}

#endif
