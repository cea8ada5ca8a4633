// The comparison of index keys of texts where they lie in their buffers: an ordered
// index calls it for every step of every search.
#ifndef NXSTRCMPKEYS_H
#define NXSTRCMPKEYS_H

#include <emmintrin.h>

#include <algorithm>
#include <climits>

#include "base/nxstored.h"
#include "collation/nxstrcmp.h"
#include "ord2str.h"

/// What NxCompareBases answers where base letters do not decide. No difference of two
/// order values is as large.
inline constexpr long kBasesDoNotDecide = LONG_MIN;

/// Whether code set (low byte) and language are those of a key in alphabetic order that
/// does not stop short of its text.
inline bool NxIsAlphabeticKey(unsigned kind) {
  constexpr unsigned kFirst = 1 << 8 | kCodeSetOrderValues;
  return ((kind - kFirst) & 0xFF) == 0 && kind - kFirst <= (kPlainOrderSelector - 2u) << 8;
}

inline unsigned NxWordAt(const char* image, unsigned at) { return NxUnitAt<unsigned short>(image + at); }

/// The base of a letter, which case and accent do not change; any other unit itself.
inline unsigned NxBaseOf(unsigned unit) {
  const bool letter = (unit & 0xC000) == kFirstLetterOrder;
  return letter ? unit & ~(kOrderCaseMask | kOrderAccentMask) : unit;
}

/// The first unit of two keys that is not the same letter on both sides, as far as whole
/// blocks of `end` bytes tell; 4, the first of all, when there is no block. In blocks,
/// because where texts part is hard to predict.
inline unsigned NxSameLetters(const char* image1, const char* image2, unsigned end) {
  constexpr unsigned kBlock = 16;
  if (end < kBlock) return NxStoredString::kHeadSize;
  const auto stopsAt = [=](unsigned block) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(image1 + block));
    const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(image2 + block));
    const __m128i base = _mm_set1_epi16(static_cast<short>(~(kOrderCaseMask | kOrderAccentMask)));
    const __m128i differ = _mm_and_si128(_mm_xor_si128(x, y), base);
    const __m128i letters = _mm_cmpgt_epi16(x, _mm_set1_epi16(kFirstLetterOrder - 1));
    const __m128i pass = _mm_and_si128(letters, _mm_cmpeq_epi16(differ, _mm_setzero_si128()));
    return static_cast<unsigned>(_mm_movemask_epi8(pass) ^ 0xFFFF);
  };
  unsigned at = 0;
  unsigned stops = stopsAt(0) & ~0xFu;  // behind the head
  while (stops == 0) {
    if (at + kBlock == end) return end;
    at = std::min(at + kBlock, end - kBlock);
    stops = stopsAt(at);
  }
  return at + static_cast<unsigned>(__builtin_ctz(stops));
}

/// NxCompareBases of keys that have the same letters up to the end of one of them, with
/// their lengths.
long NxCompareEnds(const char* image1, const char* image2, unsigned n1, unsigned n2);

/// Compares two keys of format code 1 without wildcards by their base letters: the
/// result of StringCompare, or kBasesDoNotDecide also for images that are no whole keys
/// of one selector in alphabetic order. Lengths are in bytes.
///
/// Every instruction counts here: a search waits for memory at each of its steps, and
/// goes ahead with the next ones meanwhile as far as the processor looks.
inline long NxCompareBases(const char* image1, unsigned long length1, const char* image2,
                           unsigned long length2) {
  if (length1 < NxStoredString::kEmptySize || length2 < NxStoredString::kEmptySize) return kBasesDoNotDecide;
  const unsigned n1 = NxWordAt(image1, 0);
  const unsigned n2 = NxWordAt(image2, 0);
  const unsigned kind = NxWordAt(image1, 2);
  if (n1 + 2 > length1 || n2 + 2 > length2 || kind != NxWordAt(image2, 2)) return kBasesDoNotDecide;
  if (!NxIsAlphabeticKey(kind)) return kBasesDoNotDecide;
  const unsigned n = std::min(n1, n2) & ~1u;
  for (unsigned at = NxSameLetters(image1, image2, n + 2); at < n; at += 2) {
    const unsigned unit1 = NxWordAt(image1, at);
    const unsigned unit2 = NxWordAt(image2, at);
    const int difference = static_cast<int>(NxBaseOf(unit1) - NxBaseOf(unit2));
    if (difference == 0 && unit1 != 0) continue;
    // Equal symbols and spaces before differ in nothing as none follows on either side.
    const bool significant = unit1 >= kFirstDigitOrder && unit2 >= kFirstDigitOrder;
    return significant ? difference * 256L : kBasesDoNotDecide;
  }
  return NxCompareEnds(image1, image2, n1, n2);
}

/// Compares two images of order-value text as StringCompare does. The images are whole
/// current ones, and lie whole in their buffers. False, with `result` unset, where it
/// cannot serve: other code sets, keys of different selectors or in plain order,
/// wildcards in the second, order values alone.
bool NxCompareKeys(const char* image1, const char* image2, unsigned char format, unsigned short options,
                   long& result, int& error);

#endif
