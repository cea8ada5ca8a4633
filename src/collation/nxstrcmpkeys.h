// The comparison of index keys of texts where they lie in their buffers, without copy and
// iterator: an ordered index calls it for every step of every search. A key is a stored
// image (nxstored.h) whose text is the order values of a string and whose language byte
// is their collation selector.
#ifndef NXSTRCMPKEYS_H
#define NXSTRCMPKEYS_H

#include <emmintrin.h>

#include <algorithm>

#include "base/nxstored.h"
#include "collation/nxlevels.h"
#include "ord2str.h"
#include "text/nxchartext.h"

/// Whether code set (low byte) and language are those of a key in alphabetic order that
/// does not stop short of its text.
inline bool NxIsAlphabeticKey(unsigned kind) {
  constexpr unsigned kFirst = 1 << 8 | kCodeSetOrderValues;
  return ((kind - kFirst) & 0xFF) == 0 && kind - kFirst <= (kPlainOrderSelector - 2u) << 8;
}

/// The base of a letter, which case and accent do not change; any other unit itself.
inline unsigned NxBaseOf(unsigned unit) {
  return NxIsLetterOrder(unit) ? unit & ~(kOrderCaseMask | kOrderAccentMask) : unit;
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
/// their length fields.
NxVerdict NxCompareEnds(const char* image1, const char* image2, unsigned n1, unsigned n2, long& result);

/// Compares two keys of format code 1 without wildcards by their base letters. kDecided
/// with what StringCompare answers, or kUnsuited, also for images that are no whole keys
/// of one selector in alphabetic order. Lengths are in bytes.
///
/// Every instruction counts here: a search waits for memory at each of its steps, and
/// goes ahead with the next ones meanwhile as far as the processor looks.
inline NxVerdict NxCompareBases(const char* image1, unsigned long length1, const char* image2,
                                unsigned long length2, long& result) {
  if (length1 < NxStoredString::kEmptySize || length2 < NxStoredString::kEmptySize)
    return NxVerdict::kUnsuited;
  const unsigned n1 = NxStoredString::LengthOf(image1, kFormatNative);
  const unsigned n2 = NxStoredString::LengthOf(image2, kFormatNative);
  const unsigned kind = NxStoredString::KindOf(image1);
  if (n1 + NxStoredString::kLengthSize > length1 || n2 + NxStoredString::kLengthSize > length2)
    return NxVerdict::kUnsuited;
  if (kind != NxStoredString::KindOf(image2) || !NxIsAlphabeticKey(kind)) return NxVerdict::kUnsuited;
  const unsigned n = std::min(n1, n2) & ~1u;
  for (unsigned at = NxSameLetters(image1, image2, n + NxStoredString::kLengthSize); at < n; at += 2) {
    const unsigned unit1 = NxUnitAt<unsigned short>(image1 + at);
    const unsigned unit2 = NxUnitAt<unsigned short>(image2 + at);
    const int difference = static_cast<int>(NxBaseOf(unit1) - NxBaseOf(unit2));
    if (difference == 0 && unit1 != 0) continue;
    // Equal symbols and spaces before differ in nothing as none follows on either side.
    if (unit1 < kFirstDigitOrder || unit2 < kFirstDigitOrder) return NxVerdict::kUnsuited;
    constexpr long kOrderInKey = 256;  // an order value stands above the lowest byte of a compare key
    result = difference * kOrderInKey;
    return NxVerdict::kDecided;
  }
  return NxCompareEnds(image1, image2, n1, n2, result);
}

/// Compares two images of order-value text as StringCompare does. The images are whole
/// current ones, and lie whole in their buffers. kDecided, or kUnsuited with `result` as
/// it was: for other code sets, keys of different selectors or in plain order, wildcards
/// in the second, order values alone.
NxVerdict NxCompareKeys(const char* image1, const char* image2, unsigned char format, unsigned short options,
                        long& result, int& error);

#endif
