// The fast ways to turn round the bytes of an array. Each takes whole blocks off
// the front and leaves the rest, less than one vector, to the plain loop. A block
// is read before it is written, so that the array may be its own destination.

#include "swapbytes.h"

#include <immintrin.h>

namespace {

using Bytes = unsigned char;

// SSE2 has no byte shuffle: the 16-bit words of each value change places, then the
// two bytes of each word. A product's two halves are the word shifted left and right
// by eight; multiplications keep free the units that move the words.
template <unsigned Width>
inline __m128i SwapSse2(__m128i v) {
  if (Width == 4) v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0xB1), 0xB1);
  if (Width == 8) v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0x1B), 0x1B);
  const __m128i shift = _mm_set1_epi16(0x100);
  return _mm_or_si128(_mm_mullo_epi16(v, shift), _mm_mulhi_epu16(v, shift));
}

inline __m128i Load(const Bytes* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
inline void Store(Bytes* to, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v); }

/// Swaps what fills whole vectors and returns the bytes done.
template <unsigned Width>
unsigned long VectorsSse2(Bytes* to, const Bytes* from, unsigned long bytes) {
  unsigned long done = 0;
  for (; bytes - done >= 64; done += 64) {
    const __m128i a = Load(from + done), b = Load(from + done + 16);
    const __m128i c = Load(from + done + 32), d = Load(from + done + 48);
    Store(to + done, SwapSse2<Width>(a));
    Store(to + done + 16, SwapSse2<Width>(b));
    Store(to + done + 32, SwapSse2<Width>(c));
    Store(to + done + 48, SwapSse2<Width>(d));
  }
  for (; bytes - done >= 16; done += 16) Store(to + done, SwapSse2<Width>(Load(from + done)));
  return done;
}

/// Where each of sixteen bytes comes from: byte i of a vector from byte i ^ (Width - 1).
template <unsigned Width>
inline __m128i Places() {
  constexpr int kFlip = (Width - 1) * 0x01010101;
  return _mm_xor_si128(_mm_setr_epi32(0x03020100, 0x07060504, 0x0B0A0908, 0x0F0E0D0C), _mm_set1_epi32(kFlip));
}

template <unsigned Width>
__attribute__((target("ssse3"))) unsigned long VectorsSsse3(Bytes* to, const Bytes* from,
                                                            unsigned long bytes) {
  const __m128i places = Places<Width>();
  unsigned long done = 0;
  for (; bytes - done >= 64; done += 64) {
    const __m128i a = Load(from + done), b = Load(from + done + 16);
    const __m128i c = Load(from + done + 32), d = Load(from + done + 48);
    Store(to + done, _mm_shuffle_epi8(a, places));
    Store(to + done + 16, _mm_shuffle_epi8(b, places));
    Store(to + done + 32, _mm_shuffle_epi8(c, places));
    Store(to + done + 48, _mm_shuffle_epi8(d, places));
  }
  for (; bytes - done >= 16; done += 16) Store(to + done, _mm_shuffle_epi8(Load(from + done), places));
  return done;
}

}  // namespace

SwapLevel BestSwapLevel() { return __builtin_cpu_supports("ssse3") ? SwapLevel::kSsse3 : SwapLevel::kSse2; }

template <unsigned Width>
void SwapArrayAt(SwapLevel level, void* dst, const void* src, unsigned long n) {
  auto* to = static_cast<Bytes*>(dst);
  auto* from = static_cast<const Bytes*>(src);
  const unsigned long done = level == SwapLevel::kSsse3 ? VectorsSsse3<Width>(to, from, n * Width)
                                                        : VectorsSse2<Width>(to, from, n * Width);
  SwapArrayPlain<Width>(to + done, from + done, n - done / Width);
}

template void SwapArrayAt<2>(SwapLevel, void*, const void*, unsigned long);
template void SwapArrayAt<4>(SwapLevel, void*, const void*, unsigned long);
template void SwapArrayAt<8>(SwapLevel, void*, const void*, unsigned long);
