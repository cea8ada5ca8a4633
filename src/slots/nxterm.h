// The key of a query term beside the smallest and the largest key of the index.
#ifndef NXTERM_H
#define NXTERM_H

#include "nxtypevl.h"

/// Whether an image of the stated length holds `size` bytes. The length field is one
/// byte, so that 0 may stand for any multiple of 256.
inline bool NxReaches(unsigned char length, unsigned long size) { return length == 0 || length >= size; }

/// Whether both ends of the index's range can be read.
inline bool NxHasRange(const NxIdxBounds* range, unsigned long size) {
  return range && range->lower && range->upper && NxReaches(range->lowerLen, size) &&
         NxReaches(range->upperLen, size);
}

/// A key beside the ends of the index's range; the ends are 0 without one.
template <class V>
struct NxTerm {
  V key{};
  V low{};
  V high{};
  bool hasRange = false;

  /// load(image) makes a value of a stored one of `size` bytes.
  template <class Load>
  NxTerm(const NxIdxBounds* range, const void* keyImage, unsigned long size, Load load)
      : key(load(keyImage)), hasRange(NxHasRange(range, size)) {
    if (!hasRange) return;
    low = load(range->lower);
    high = load(range->upper);
  }
};

/// A stored value of the type that kLoad reads.
template <class V, NxSlot::Load* kLoad>
V NxLoadOne(const void* image, unsigned char format) {
  V value{};
  kLoad(&value, image, format, 1);
  return value;
}

/// What a term of one key selects of the index's keys from low to high, each key being 1 wide.
inline double NxSelected(unsigned short relation, double key, double low, double high) {
  return CalcRange(relation, key, key, low, high, 1.0);
}

#endif
