// A list of plain values that grows. The first few lie in the list itself, so that short
// ones cost no allocation.
#ifndef NXGROWLIST_H
#define NXGROWLIST_H

#include <cstring>
#include <type_traits>

#include "base/nxalloc.h"

template <class T, unsigned long kInside>
class NxGrowList {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  NxGrowList() = default;
  NxGrowList(const NxGrowList&) = delete;
  NxGrowList& operator=(const NxGrowList&) = delete;
  ~NxGrowList() { delete[] heap_; }

  /// False, with the list as it was, for want of memory.
  bool Add(T value) {
    if (size_ == room_ && !Grow()) return false;
    items_[size_++] = value;
    return true;
  }
  unsigned long Size() const { return size_; }
  const T& operator[](unsigned long i) const { return items_[i]; }

 private:
  bool Grow() {
    T* larger = NxNewArray<T>(2 * room_);
    if (!larger) return false;
    std::memcpy(larger, items_, size_ * sizeof(T));
    delete[] heap_;
    items_ = heap_ = larger;
    room_ *= 2;
    return true;
  }

  T inside_[kInside];
  T* heap_ = nullptr;
  T* items_ = inside_;
  unsigned long size_ = 0;
  unsigned long room_ = kInside;
};

#endif
