// Walking arrays of fixed-size values in buffers of a stated length, and reading
// single values from them, aligned or not. Shared by comparison, hashing and bounds.
#ifndef NXELEMENT_H
#define NXELEMENT_H

#include <cstring>

#include "nxbase.h"
#include "nxtypes.h"

/// What the combined words of an array are multiplied by to become its hash.
inline constexpr unsigned long kHashMultiplier = 1103515245;

/// An array of values of `size` bytes with the end of its buffer.
class NxElements {
 public:
  /// A length of 0 means room for all count values.
  NxElements(const void* values, unsigned long length, unsigned long count, unsigned long size)
      : place_(static_cast<const unsigned char*>(values)),
        left_(length ? length : static_cast<unsigned long long>(count) * size),
        size_(size) {}

  const void* Place() const { return place_; }
  /// Whether the buffer holds the whole value.
  bool Holds() const { return left_ >= size_; }
  /// Moves to the next value; stays and answers false when it would not start
  /// before the end.
  bool Advance() {
    if (size_ >= left_) return false;
    place_ += size_;
    left_ -= size_;
    return true;
  }

 private:
  const unsigned char* place_;
  unsigned long long left_;  // bytes from place_ to the end
  unsigned long size_;
};

inline bool NxInMemory(unsigned char format) { return (format & kFormatCodeMask) == kFormatMemory; }

/// Bytes of an int under a format.
inline unsigned long NxIntBytes(unsigned char format) {
  return NxInMemory(format) ? sizeof(int) : IntSizeGet(nullptr, kFormatMemory, format & kFormatCodeMask, 1);
}

/// Whether stored values of this format stand as they do in memory.
inline bool NxReadsInPlace(unsigned char format) {
  const unsigned char code = format & kFormatCodeMask;
  return code == kFormatMemory || code == kFormatNative;
}

/// A value in memory form.
template <class V>
V NxReadValue(const void* p) {
  V value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

/// A value of any form, loaded by the type's own function where it needs it.
template <class V, NxSlot::Load* kLoad>
V NxReadElement(const void* p, unsigned char format) {
  V value{};
  if (NxReadsInPlace(format))
    std::memcpy(static_cast<void*>(&value), p, sizeof value);
  else
    kLoad(&value, p, format, 1);
  return value;
}

#endif
