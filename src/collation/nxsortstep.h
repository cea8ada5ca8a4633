// Eight characters of a text on their way into its sort key.
#ifndef NXSORTSTEP_H
#define NXSORTSTEP_H

#include <emmintrin.h>

#include "collation/nxplainkey.h"

/// The sort bytes of eight characters, taken apart.
class NxSortStep {
 public:
  static constexpr unsigned kSize = 8;

  /// The sort bytes of four characters, in the low half.
  static __m128i Four(const unsigned short* sortBytes, const unsigned char* text) {
    __m128i four = _mm_cvtsi32_si128(sortBytes[text[0]]);
    four = _mm_insert_epi16(four, sortBytes[text[1]], 1);
    four = _mm_insert_epi16(four, sortBytes[text[2]], 2);
    return _mm_insert_epi16(four, sortBytes[text[3]], 3);
  }

  NxSortStep(__m128i firstFour, __m128i lastFour) {
    const __m128i all = _mm_unpacklo_epi64(firstFour, lastFour);
    letters_ = _mm_packus_epi16(_mm_and_si128(all, _mm_set1_epi16(0xFF)), _mm_setzero_si128());
    marks_ = _mm_packus_epi16(_mm_srli_epi16(all, 8), _mm_setzero_si128());
  }

  /// Takes away the first `n` characters.
  void Drop(unsigned n) {
    const __m128i bits = _mm_cvtsi32_si128(static_cast<int>(8 * n));
    letters_ = _mm_srl_epi64(letters_, bits);
    marks_ = _mm_srl_epi64(marks_, bits);
  }
  /// Writes kSize bytes.
  void PutLetters(unsigned char* key) const { _mm_storel_epi64(reinterpret_cast<__m128i*>(key), letters_); }

  __m128i Marks() const { return marks_; }
  static bool AnyUnsuited(__m128i marks) {
    static_assert(kSortUnsuited == kSortCapital >> 2, "two bits below the one that movemask takes");
    return _mm_movemask_epi8(_mm_slli_epi16(marks, 2)) != 0;
  }

  // A bit for each of the characters.

  unsigned Capitals() const {
    static_assert(kSortCapital == 0x80, "the bit that movemask takes");
    return static_cast<unsigned>(_mm_movemask_epi8(marks_));
  }
  unsigned WithAccent() const {
    static_assert(kSortAccented == kSortCapital >> 1);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_slli_epi16(marks_, 1)));
  }

 private:
  __m128i letters_, marks_;  // in the low eight bytes
};

#endif
