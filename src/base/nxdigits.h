// Decimal digits of numbers, two at a time: printf takes several times as long.
#ifndef NXDIGITS_H
#define NXDIGITS_H

#include <emmintrin.h>

#include <cstring>

/// "00" to "99".
inline constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839404142434445464748495051"
    "5253545556575859606162636465666768697071727374757677787980818283848586878889909192939495969798"
    "99";
static_assert(sizeof kDigitPairs == 2 * 100 + 1);

/// The two digits of a number below 100. Returns the place behind them.
inline char* NxPutPair(char* place, unsigned v) {
  std::memcpy(place, kDigitPairs + 2 * v, 2);
  return place + 2;
}

/// The digits of v so that they end at `end`. Returns where they begin.
inline char* NxPutDecimal(char* end, unsigned v) {
  for (; v >= 100; v /= 100) NxPutPair(end -= 2, v % 100);
  if (v >= 10)
    NxPutPair(end -= 2, v);
  else
    *--end = static_cast<char>('0' + v);
  return end;
}

/// The number of decimal digits of v.
inline unsigned NxDecimalLength(unsigned v) {
  static constexpr unsigned kPowers[] = {0,      10,      100,      1000,      10000,
                                         100000, 1000000, 10000000, 100000000, 1000000000};
  // 1233 / 4096 is the logarithm of 2, so that this is the length or one less.
  const unsigned length = (32U - static_cast<unsigned>(__builtin_clz(v | 1))) * 1233 >> 12;
  return length + (v >= kPowers[length]);
}

/// The decimal text of an integer.
class NxIntegerText {
 public:
  NxIntegerText(unsigned magnitude, bool negative)
      : magnitude_(magnitude), length_(NxDecimalLength(magnitude) + negative) {}

  unsigned long Length() const { return length_; }
  /// Returns the place behind it.
  char* Put(char* place) const {
    *place = '-';  // or a digit
    NxPutDecimal(place + length_, magnitude_);
    return place + length_;
  }

 private:
  unsigned magnitude_;
  unsigned long length_;
};

/// The eight digits of a number below 10^8 in the low bytes, the first one lowest. Fours,
/// then pairs, then digits are divided side by side, by multiplication.
inline __m128i NxEightDigits(unsigned v) {
  const __m128i fours = _mm_cvtsi32_si128(static_cast<int>(v % 10000 << 16 | v / 10000));
  const __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
  const __m128i rest = _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
  const __m128i pairs = _mm_unpacklo_epi16(hundreds, rest);
  const __m128i tens = _mm_srli_epi16(_mm_mullo_epi16(pairs, _mm_set1_epi16(103)), 10);
  const __m128i ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
  const __m128i digits = _mm_packus_epi16(_mm_unpacklo_epi16(tens, ones), _mm_setzero_si128());
  return _mm_or_si128(digits, _mm_set1_epi8('0'));
}

/// The nine digits of a number below 10^9. Returns the place behind them.
inline char* NxPutNine(char* place, unsigned v) {
  constexpr unsigned kEightDigits = 100'000'000;
  *place = static_cast<char>('0' + v / kEightDigits);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(place + 1), NxEightDigits(v % kEightDigits));
  return place + 9;
}

/// The last `length` digits of a number below 10^9, where nine bytes may be written. Returns
/// the place behind them. No branch depends on a length below nine, which nobody can foresee.
inline char* NxPutLeading(char* place, unsigned v, unsigned length) {
  if (length == 9) return NxPutNine(place, v);
  const __m128i unused = _mm_cvtsi32_si128(static_cast<int>(64 - 8 * length));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(place), _mm_srl_epi64(NxEightDigits(v), unused));
  return place + length;
}

/// Divides v by 10^9. Returns the rest. A 32-bit program calls a function for what is one
/// instruction where the quotient has 32 bits.
inline unsigned NxTakeNine(unsigned long long& v) {
  constexpr unsigned kNineDigits = 1'000'000'000;
  const auto high = static_cast<unsigned>(v >> 32);
  unsigned quotient = static_cast<unsigned>(v), rest = high % kNineDigits;
  asm("divl %2" : "+a"(quotient), "+d"(rest) : "r"(kNineDigits) : "cc");
  v = static_cast<unsigned long long>(high / kNineDigits) << 32 | quotient;
  return rest;
}

/// The value of a decimal digit; 10 and above for any other character.
inline unsigned NxDigitValue(char c) { return static_cast<unsigned char>(c - '0'); }

#endif
