#include "collation/nxstrcmpkeys.h"

#include <algorithm>
#include <cstring>

#include "collation/nxkeywalk.h"
#include "collation/nxordertable.h"

namespace {

template <bool kBigEndian>
NxKeyUnits TextOf(const char* image) {
  const unsigned n = NxKeyUnitAt<kBigEndian>(image, 0);  // a key begins with its length
  return {NxStoredString::TextOf(image), (n - static_cast<unsigned>(NxStoredString::kEmptyLength)) / 2};
}

template <bool kBigEndian>
NxVerdict Compare(const char* image1, const char* image2, unsigned selector, unsigned short options,
                  long& result) {
  return NxKeyWalk<kBigEndian>(TextOf<kBigEndian>(image1), TextOf<kBigEndian>(image2), selector, options)
      .Compare(result);
}

constexpr unsigned kCutMark = kMixedCollation << 8;  // in code set and language, read as one

}  // namespace

NxVerdict NxCompareKeys(const char* image1, const char* image2, unsigned char format, unsigned short options,
                        long& result, int& error) {
  const bool bigEndian = (format & kFormatCodeMask) == kFormatBigEndian;
  const unsigned kind1 = NxStoredString::KindOf(image1);
  const unsigned kind2 = NxStoredString::KindOf(image2);
  const bool halfUnit = ((image1[bigEndian] | image2[bigEndian]) & 1) != 0;  // of the lengths' low bytes
  if (((kind1 ^ kind2) & ~kCutMark) != 0 || !NxIsAlphabeticKey(kind1 & ~kCutMark) || halfUnit)
    return NxVerdict::kUnsuited;
  if (options & kOrderValuesOnly) return NxVerdict::kUnsuited;
  if (!(options & kWildcardsOff) && ((kind2 & kCutMark) || !NxOrderTable::WildcardsAreSymbols()))
    return NxVerdict::kUnsuited;
  const unsigned selector = (kind1 & ~kCutMark) >> 8;
  error = (kind1 | kind2) & kCutMark ? kPastBuffer : 0;
  return bigEndian ? Compare<true>(image1, image2, selector, options, result)
                   : Compare<false>(image1, image2, selector, options, result);
}

NxVerdict NxCompareEnds(const char* image1, const char* image2, unsigned n1, unsigned n2, long& result) {
  const bool firstIsLonger = n1 > n2;
  const unsigned n = std::min(n1, n2);
  if (n < NxStoredString::kEmptyLength || ((n1 | n2) & 1) != 0) return NxVerdict::kUnsuited;
  if (n1 == n2) {
    result = 0;
    return std::memcmp(image1, image2, n) == 0 ? NxVerdict::kDecided : NxVerdict::kUnsuited;
  }
  const auto unit = NxUnitAt<unsigned short>((firstIsLonger ? image1 : image2) + n);
  if (unit < kFirstDigitOrder) return NxVerdict::kUnsuited;
  const unsigned key = NxCompareKey(unit, NxStoredString::LanguageOf(image1));
  result = firstIsLonger ? NxLevels::OfBaseLetters(key, 0) : NxLevels::OfBaseLetters(0, key);
  return NxVerdict::kDecided;
}
