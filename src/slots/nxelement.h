// Walking arrays of fixed-size values in buffers of a stated length, to compare or to hash
// them, and reading single values from them, aligned or not.
#ifndef NXELEMENT_H
#define NXELEMENT_H

#include <climits>
#include <cstring>
#include <type_traits>

#include "nxbase.h"
#include "nxoption.h"
#include "nxtypes.h"

/// An array of values of `size` bytes with the end of its buffer.
class NxElements {
 public:
  /// A length of 0 means room for all count values.
  NxElements(const void* values, unsigned long length, unsigned long count, unsigned long size)
      : place_(static_cast<const unsigned char*>(values)), left_(length), size_(size) {
    // More than the address space holds counts as all of it.
    if (length == 0 && __builtin_mul_overflow(count, size, &left_)) left_ = ULONG_MAX;
  }

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
  unsigned long left_;  // bytes from place_ to the end
  unsigned long size_;
};

/// The two arrays of a comparison.
struct NxOperands {
  NxElements first, second;
};

/// Compares element by element until two differ or a buffer ends: compare(a, b) gets the
/// places of two values. An element that its buffer holds in part only is not read.
template <class CompareValues>
long NxCompareArrays(NxOperands arrays, unsigned long count, int& error, CompareValues compare) {
  error = 0;
  for (unsigned long i = 0; i < count; ++i) {
    if (!arrays.first.Holds() || !arrays.second.Holds()) {
      error = kPastBuffer;
      return 0;
    }
    const long result = compare(arrays.first.Place(), arrays.second.Place());
    // The way to the next element is checked whatever the result is.
    if (i + 1 < count && !(arrays.first.Advance() && arrays.second.Advance())) error = kPastBuffer;
    if (result != 0 || error != 0) return result;
  }
  return 0;
}

/// What the combined words of an array are multiplied by to become its hash. Embedded in hash
/// indexes, never to change.
inline constexpr unsigned long kHashMultiplier = 1103515245;

/// Combines the words of the elements that the buffer holds: word(p) makes one of the
/// value at p. Words are 32 bits wide.
template <class WordOf>
unsigned long NxCombineWords(NxElements array, unsigned long count, int& error, WordOf word) {
  error = 0;
  unsigned long h = 0;
  for (unsigned long i = 0; i < count && error == 0; ++i) {
    if (!array.Holds()) {
      error = kPastBuffer;
      break;
    }
    h ^= word(array.Place());
    if (i + 1 < count && !array.Advance()) error = kPastBuffer;
  }
  return h;
}

/// The hash of an array of values, made of the words of its elements.
template <class WordOf>
unsigned long NxHashArray(const NxElements& array, unsigned long count, int& error, WordOf word) {
  return NxCombineWords(array, count, error, word) * kHashMultiplier;
}

/// Whether the code of a format is that of values in memory, whatever its further bits.
inline bool NxInMemory(unsigned char format) { return (format & kFormatCodeMask) == kFormatMemory; }
/// Whether a format byte is that of values in memory and has no further bits, which alone says
/// so to some types.
inline bool NxIsMemoryByte(unsigned char format) { return format == kFormatMemory; }

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
  alignas(V) unsigned char value[sizeof(V)];  // no V: a default date would ask the clock
  std::memcpy(value, p, sizeof value);
  return *reinterpret_cast<const V*>(value);
}

/// A number whose bytes stand in the other order.
template <class V>
V NxReadSwapped(const void* p) {
  if constexpr (sizeof(V) == 2) {
    const unsigned short bits = __builtin_bswap16(NxReadValue<unsigned short>(p));
    return NxReadValue<V>(&bits);
  } else if constexpr (sizeof(V) == 4) {
    const unsigned bits = __builtin_bswap32(NxReadValue<unsigned>(p));
    return NxReadValue<V>(&bits);
  } else if constexpr (sizeof(V) == 8) {
    const unsigned long long bits = __builtin_bswap64(NxReadValue<unsigned long long>(p));
    return NxReadValue<V>(&bits);
  } else {
    static_assert(sizeof(V) == 1);
    return NxReadValue<V>(p);
  }
}

/// A value of any form, loaded by the type's own function where it needs it.
template <class V, NxSlot::Load* kLoad>
V NxReadElement(const void* p, unsigned char format) {
  if (NxReadsInPlace(format)) return NxReadValue<V>(p);
  if constexpr (std::is_arithmetic_v<V>) {
    // Most significant byte first, as LongStore and the like have it.
    if ((format & kFormatCodeMask) == kFormatBigEndian) return NxReadSwapped<V>(p);
  }
  V value{};
  kLoad(&value, p, format, 1);
  return value;
}

/// -1, 0 or 1; 0 for values without order.
template <class V>
long NxOrder(const V& a, const V& b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

/// Three fields in one word, as a sum: the sign of a field reaches into those above.
inline unsigned long NxJoinFields(long high, long middle, long low) {
  return (static_cast<unsigned long>(high) << 16) + (static_cast<unsigned long>(middle) << 8) +
         static_cast<unsigned long>(low);
}

#endif
