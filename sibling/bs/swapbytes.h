// Turning round the bytes of values of 2, 4 and 8 bytes, aligned or not.
// SwapArrayPlain is the truth; SwapArray gives the same bytes faster.
#ifndef NX_SWAPBYTES_H
#define NX_SWAPBYTES_H

#include <cstdint>
#include <cstring>

/// Unsigned integer of `Width` bytes.
template <unsigned Width>
struct UintOf;
template <>
struct UintOf<1> {
  using Type = std::uint8_t;
};
template <>
struct UintOf<2> {
  using Type = std::uint16_t;
};
template <>
struct UintOf<4> {
  using Type = std::uint32_t;
};
template <>
struct UintOf<8> {
  using Type = std::uint64_t;
};

inline std::uint8_t Swapped(std::uint8_t value) { return value; }
inline std::uint16_t Swapped(std::uint16_t value) { return __builtin_bswap16(value); }
inline std::uint32_t Swapped(std::uint32_t value) { return __builtin_bswap32(value); }
inline std::uint64_t Swapped(std::uint64_t value) { return __builtin_bswap64(value); }

template <unsigned Width>
inline void CopyOne(void* dst, const void* src) {
  typename UintOf<Width>::Type value;
  std::memcpy(&value, src, Width);
  std::memcpy(dst, &value, Width);
}

template <unsigned Width>
inline void SwapOne(void* dst, const void* src) {
  typename UintOf<Width>::Type value;
  std::memcpy(&value, src, Width);
  value = Swapped(value);
  std::memcpy(dst, &value, Width);
}

/// Value by value; `dst` may equal `src`.
template <unsigned Width>
inline void SwapArrayPlain(void* dst, const void* src, unsigned long n) {
  auto* to = static_cast<unsigned char*>(dst);
  auto* from = static_cast<const unsigned char*>(src);
  for (; n != 0; --n, to += Width, from += Width) SwapOne<Width>(to, from);
}

template <unsigned Width>
inline void SwapArray(void* dst, const void* src, unsigned long n) {
  SwapArrayPlain<Width>(dst, src, n);
}

#endif
