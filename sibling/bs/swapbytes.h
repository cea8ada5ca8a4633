// Turning round the bytes of values of 2, 4 and 8 bytes, aligned or not.
// SwapArrayPlain is the truth; SwapArray answers the same bytes, sixteen
// at a time with the best instructions that the processor has.
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

/// The value at an address that need not be aligned.
template <class Value>
inline Value ReadValue(const void* src) {
  Value value;
  std::memcpy(&value, src, sizeof value);
  return value;
}
template <class Value>
inline void WriteValue(void* dst, Value value) {
  std::memcpy(dst, &value, sizeof value);
}

/// Value by value; `dst` may equal `src`.
template <unsigned Width>
inline void SwapArrayPlain(void* dst, const void* src, unsigned long n) {
  using Value = typename UintOf<Width>::Type;
  auto* to = static_cast<unsigned char*>(dst);
  auto* from = static_cast<const unsigned char*>(src);
  for (; n != 0; --n, to += Width, from += Width) WriteValue(to, Swapped(ReadValue<Value>(from)));
}

/// What a fast way needs of the processor. Wider vectors gain nothing: with these
/// the memory is the limit.
enum class SwapLevel {
  kSse2,   // every processor of the target
  kSsse3,  // has a byte shuffle
};

/// The best level of this processor.
SwapLevel BestSwapLevel();

/// As SwapArrayPlain, with the instructions of `level`, which the processor must
/// have. Exists for the widths 2, 4 and 8.
template <unsigned Width>
void SwapArrayAt(SwapLevel level, void* dst, const void* src, unsigned long n);

/// As SwapArrayPlain, the fastest way.
template <unsigned Width>
inline void SwapArray(void* dst, const void* src, unsigned long n) {
  SwapArrayAt<Width>(BestSwapLevel(), dst, src, n);
}

#endif
