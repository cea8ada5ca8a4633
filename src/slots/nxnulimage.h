// The images of nullable scalars: how they are measured, written and read.
//
// The templates are named for their slots. T is the nullable type, V the type of its number
// and H says which scalar's functions serve the number. The pointers behind the arguments
// only select the instance, for callers that do not name it.
#ifndef NXNULIMAGE_H
#define NXNULIMAGE_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "nxbase.h"
#include "nxnultyp.h"
#include "nxtyphash.h"
#include "slots/nxelement.h"
#include "slots/nxnulpack.h"

#define NX_LS_HELPER(Scalar, load)                                \
  struct Scalar##LSHelper {                                       \
    static constexpr NxSlot::Store* kStore = Scalar##Store;       \
    static constexpr NxSlot::Load* kLoad = load;                  \
    static constexpr NxSlot::SizeGet* kSizeGet = Scalar##SizeGet; \
    static constexpr NxSlot::Hash* kHash = Scalar##Hash;          \
  };

NX_LS_HELPER(Char, CharStore)
NX_LS_HELPER(Short, ShortStore)
NX_LS_HELPER(Int, IntLoad)
NX_LS_HELPER(Long, LongStore)
NX_LS_HELPER(Float, FloatStore)
NX_LS_HELPER(Double, DoubleStore)
NX_LS_HELPER(Int64, Int64Load)

#undef NX_LS_HELPER

/// The helper of a nullable type.
template <class T>
struct NxLSHelperOf;

#define NX_HELPER_OF(Type, Value, Scalar, Format) \
  template <>                                     \
  struct NxLSHelperOf<Type> {                     \
    using Helper = Scalar##LSHelper;              \
  };
NX_NULLABLE_TYPES(NX_HELPER_OF)
#undef NX_HELPER_OF

/// Serves NullSizeGet too: the size depends on the count alone.
template <class T>
int NxNullTypeSizeGet(unsigned long count, T* = nullptr) {
  return NxLSHelperOf<T>::Helper::kSizeGet(nullptr, 0, 0, count) + static_cast<int>(count);
}

template <class T>
int NxNullTypeSizeGetFromMemFile(MemFile*, unsigned char, unsigned long count, T* = nullptr) {
  return NxNullTypeSizeGet<T>(count);
}

/// Where flag and number stand in an image.
template <class V>
struct NxNullImage {
  static constexpr unsigned long kBytes = sizeof(V) + 1;
  static constexpr unsigned char kNull = 1;  // the flag of a stored null

  /// The codes from 8 on have the number first.
  explicit NxNullImage(unsigned char format)
      : flag(format & kFormatMemory ? sizeof(V) : 0), number(format & kFormatMemory ? 0 : 1) {}

  unsigned long flag;
  unsigned long number;
};

/// As many bytes as a number has, to move it by.
template <class V>
using NxBitsOf =
    std::conditional_t<sizeof(V) == 1, std::uint8_t,
                       std::conditional_t<sizeof(V) == 2, std::uint16_t,
                                          std::conditional_t<sizeof(V) == 4, std::uint32_t, std::uint64_t>>>;

/// How images lie under a format; `convert` converts their numbers.
template <class V>
NxNullShape NxShapeOf(NxSlot::Load* convert, unsigned char format) {
  const NxNullImage<V> at(format);
  NxNullShape shape = {
      static_cast<unsigned>(at.number), static_cast<unsigned>(at.flag), {0, 1, 2, 3, 4, 5, 6, 7}};
  convert(shape.order, shape.order, format & kFormatCodeMask, 1);
  return shape;
}

/// Numbers that one call converts: they gather in a work area, since flags stand between
/// them on both sides.
inline constexpr unsigned long kNullBlock = 16;

template <class T, class V, class H>
int NxNullTypeStore(void* dst, const void* src, unsigned char format, unsigned long count, T* = nullptr,
                    V* = nullptr, H* = nullptr) {
  const NxNullImage<V> at(format);
  const unsigned long moved =
      count < kNullPackMin ? 0 : NxPackNulls<sizeof(V)>(NxShapeOf<V>(H::kStore, format), dst, src, count);
  auto* image = static_cast<unsigned char*>(dst) + moved * at.kBytes;
  auto* value = static_cast<const unsigned char*>(src) + moved * sizeof(T);
  NxBitsOf<V> numbers[kNullBlock];
  for (unsigned long left = count - moved; left != 0;) {
    const unsigned long n = std::min(left, kNullBlock);
    for (unsigned long i = 0; i < n; ++i, value += sizeof(T)) {
      const bool null = value[sizeof(V)] != 0;
      const auto number = NxReadValue<NxBitsOf<V>>(value);
      numbers[i] = null ? 0 : number;
      image[i * at.kBytes + at.flag] = null ? at.kNull : 0;
    }
    H::kStore(numbers, numbers, format & kFormatCodeMask, n);
    for (unsigned long i = 0; i < n; ++i, image += at.kBytes)
      std::memcpy(image + at.number, numbers + i, sizeof(V));
    left -= n;
  }
  return static_cast<int>(count * at.kBytes);
}

template <class T, class V, class H>
int NxNullTypeLoad(void* dst, const void* src, unsigned char format, unsigned long count, T* = nullptr,
                   V* = nullptr, H* = nullptr) {
  const NxNullImage<V> at(format);
  const unsigned long moved =
      count < kNullPackMin ? 0 : NxUnpackNulls<sizeof(V)>(NxShapeOf<V>(H::kLoad, format), dst, src, count);
  auto* value = static_cast<unsigned char*>(dst) + moved * sizeof(T);
  auto* image = static_cast<const unsigned char*>(src) + moved * at.kBytes;
  NxBitsOf<V> numbers[kNullBlock];
  for (unsigned long left = count - moved; left != 0;) {
    const unsigned long n = std::min(left, kNullBlock);
    for (unsigned long i = 0; i < n; ++i)
      numbers[i] = NxReadValue<NxBitsOf<V>>(image + i * at.kBytes + at.number);
    H::kLoad(numbers, numbers, format & kFormatCodeMask, n);
    for (unsigned long i = 0; i < n; ++i, image += at.kBytes, value += sizeof(T)) {
      const bool null = image[at.flag] == at.kNull;
      const NxBitsOf<V> number = null ? 0 : numbers[i];
      std::memcpy(value, &number, sizeof(V));
      value[sizeof(V)] = null;
    }
    left -= n;
  }
  return static_cast<int>(count * at.kBytes);
}

/// One value in memory, where every flag but 0 means null.
template <class T>
T NxReadNullable(const void* place) {
  const T value = NxReadValue<T>(place);
  return value.IsNullValue() ? T() : value;
}

/// One stored value.
template <class T, class V, class H>
T NxLoadNullable(const void* image, unsigned char format) {
  const NxNullImage<V> at(format);
  auto* bytes = static_cast<const unsigned char*>(image);
  return bytes[at.flag] == at.kNull ? T() : T(NxReadElement<V, H::kLoad>(bytes + at.number, format));
}

#endif
