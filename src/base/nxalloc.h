// Allocation as the library does it: an allocation that fails calls the memory
// handler, and answers null when the handler returns. What takes several allocations
// and must be whole or not at all watches for a shortage.
#ifndef NXALLOC_H
#define NXALLOC_H

#include <cstdlib>
#include <new>
#include <utility>

#include "nxbase.h"

/// Allocations that have failed in this thread.
inline thread_local unsigned long nxShortages = 0;

inline void NxReportShortage(unsigned long size) {
  ++nxShortages;
  NxCallMemoryHandler(size);
}

/// Tells whether memory has run out in this thread since the watch was made.
class NxShortageWatch {
 public:
  bool Happened() const { return nxShortages != before_; }

 private:
  const unsigned long before_ = nxShortages;
};

/// Bytes that their holder releases with free, also for n 0.
inline void* NxAllocate(unsigned long n) {
  void* bytes = std::malloc(n != 0 ? n : 1);
  if (!bytes) NxReportShortage(n);
  return bytes;
}

/// An object, released with delete.
template <class T, class... Args>
T* NxNewObject(Args&&... args) {
  T* object = new (std::nothrow) T(std::forward<Args>(args)...);
  if (!object) NxReportShortage(sizeof(T));
  return object;
}

/// An array of n default-initialised values, released with delete[]; null when
/// the memory handler could not help.
template <class T>
T* NxNewArray(unsigned long n) {
  T* array = new (std::nothrow) T[n];
  if (!array) NxReportShortage(n * sizeof(T));
  return array;
}

/// As NxNewArray, zero-filled (values of class types: default-constructed).
template <class T>
T* NxNewZeroArray(unsigned long n) {
  T* array = new (std::nothrow) T[n]();
  if (!array) NxReportShortage(n * sizeof(T));
  return array;
}

#endif
