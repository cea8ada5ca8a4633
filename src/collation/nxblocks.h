// Two 8-bit texts, sixteen bytes at a time: where they differ.
//
// A text whose length is known is read within its bounds. Of texts that end with a zero, what
// is marked NX_READS_BLOCKS reads the aligned blocks of sixteen bytes in which their bytes
// stand, to the end of the block that holds the zero: such a block never lies in two pages.
// The build option NX_BLOCK_READS leaves that out.
#ifndef NXBLOCKS_H
#define NXBLOCKS_H

#include <emmintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

/// Marks what may read behind a text's end.
#define NX_READS_BLOCKS __attribute__((no_sanitize("address", "thread")))

inline constexpr unsigned kBlockBytes = 16;
inline constexpr unsigned kHalfBlock = kBlockBytes / 2;

/// Two places in texts that end with a zero.
struct NxZeroEnds {
#ifdef NX_BLOCK_READS
  /// The bytes that can be read from both places: up to the first zero, that included, where
  /// it stands in the aligned block of its place; else kBlockBytes.
  NX_READS_BLOCKS static unsigned Ahead(const char* a, const char* b) {
    return static_cast<unsigned>(__builtin_ctz(ZerosFrom(a) | ZerosFrom(b) | 1U << (kBlockBytes - 1))) + 1;
  }

 private:
  NX_READS_BLOCKS static unsigned ZerosFrom(const char* p) {
    const unsigned before = reinterpret_cast<std::uintptr_t>(p) % kBlockBytes;
    const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(p - before));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()))) >> before;
  }
#else
  static unsigned Ahead(const char* a, const char* b) {
    unsigned n = 0;
    while (n < kBlockBytes - 1 && a[n] != 0 && b[n] != 0) ++n;
    return n + 1;
  }
#endif
};

/// Two places in texts of which the shorter one's bytes, with its zero, are known.
struct NxKnownEnds {
  const char* end;  // of as many bytes of the first text
  unsigned Ahead(const char* a, const char* /*b*/) const {
    return std::min(static_cast<unsigned>(end - a), kBlockBytes);
  }
};

/// A block of one byte, made without a look into memory.
inline __m128i NxBlockOf(unsigned char byte) {
  unsigned four = byte * 0x01010101U;
  asm("" : "+r"(four));  // else it is a constant in memory, whose place has to be found first
  return _mm_shuffle_epi32(_mm_cvtsi32_si128(static_cast<int>(four)), 0);
}

/// Eight to sixteen bytes, read as the first eight and the last eight of them.
NX_READS_BLOCKS inline __m128i NxHalvesAt(const char* p, unsigned length) {
  const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
  const auto* const high = reinterpret_cast<const double*>(p + length - kHalfBlock);
  return _mm_castpd_si128(_mm_loadh_pd(_mm_castsi128_pd(low), high));
}

/// Four to eight bytes, read as the first four and the last four of them.
NX_READS_BLOCKS inline __m128i NxQuartersAt(const char* p, unsigned length) {
  int low, high;
  std::memcpy(&low, p, sizeof low);
  std::memcpy(&high, p + length - sizeof high, sizeof high);
  return _mm_unpacklo_epi32(_mm_cvtsi32_si128(low), _mm_cvtsi32_si128(high));
}

/// A bit for each of the bytes of x and y that differ, are the end of both, or a usual wildcard
/// in y.
inline unsigned NxStopsOf(__m128i x, __m128i y) {
  const __m128i same = _mm_and_si128(x, _mm_cmpeq_epi8(x, y));
  const __m128i ends = _mm_cmpeq_epi8(same, _mm_setzero_si128());
  const __m128i wildcards =
      _mm_or_si128(_mm_cmpeq_epi8(y, NxBlockOf('*')), _mm_cmpeq_epi8(y, NxBlockOf('?')));
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(ends, wildcards)));
}

/// NxStopsAt of less than half a block.
[[gnu::regparm(3)]] unsigned NxStopsAtFew(const char* a, const char* b, unsigned length);

/// The stops of the bytes at a and b, as NxStopsOf has them.
NX_READS_BLOCKS inline unsigned NxStopsAt(const char* a, const char* b, unsigned length) {
  if (__builtin_expect(length < kHalfBlock, 0)) return NxStopsAtFew(a, b, length);
  const unsigned bits = NxStopsOf(NxHalvesAt(a, length), NxHalvesAt(b, length));
  return (bits & 0xFF) | bits >> kHalfBlock << (length - kHalfBlock);
}

#endif
