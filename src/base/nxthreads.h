// What threads share without locks: numbers that are asked for once, and tables that one
// thread builds and all read.
#ifndef NXTHREADS_H
#define NXTHREADS_H

#include <atomic>

#ifdef NX_HELGRIND
#include <valgrind/helgrind.h>
#endif

// For members whose type is part of the interface, where std::atomic cannot stand.
#ifdef NX_HELGRIND
// Helgrind sees plain loads and stores, for which it asks a lock.
#define NX_UNORDERED(place) VALGRIND_HG_DISABLE_CHECKING(&(place), sizeof(place))
#else
#define NX_UNORDERED(place) static_cast<void>(0)
#endif

inline unsigned short NxLoadRelaxed(const unsigned short& place) {
  NX_UNORDERED(place);
  return __atomic_load_n(&place, __ATOMIC_RELAXED);
}
inline void NxStoreRelaxed(unsigned short& place, unsigned short value) {
  NX_UNORDERED(place);
  __atomic_store_n(&place, value, __ATOMIC_RELAXED);
}

/// A value that one thread completes and then shows to all; from then on it never changes.
template <class T>
class NxPublished {
 public:
  /// The value, or null when it is not there yet.
  const T* Get() const {
    const T* value = value_.load(std::memory_order_acquire);
#ifdef NX_HELGRIND
    NX_UNORDERED(value_);
    if (value) ANNOTATE_HAPPENS_AFTER(this);
#endif
    return value;
  }
  void Publish(const T& value) {
#ifdef NX_HELGRIND
    NX_UNORDERED(value_);
    ANNOTATE_HAPPENS_BEFORE(this);
#endif
    value_.store(&value, std::memory_order_release);
  }

 private:
  std::atomic<const T*> value_{nullptr};
};

#endif
