// The level rule over two index keys.

#include "collation/nxstrcmpkeys.h"

#include <algorithm>
#include <cstring>

#include "collation/nxordertable.h"
#include "nxstring.h"

namespace {

/// A key's order values, from some place on.
struct KeyText {
  const char* units;
  unsigned count;
};

template <bool kBigEndian>
unsigned UnitAt(const char* units, unsigned index) {
  return NxReadShort(units + 2 * index, kBigEndian ? kFormatBigEndian : kFormatNative);
}

template <bool kBigEndian>
KeyText TextOf(const char* image) {
  const unsigned n = UnitAt<kBigEndian>(image, 0);  // a key begins with its length
  return {NxStoredString::TextOf(image), (n - static_cast<unsigned>(NxStoredString::kEmptyLength)) / 2};
}

/// The levels of two keys of one alphabetic selector.
template <bool kBigEndian>
class KeyWalk {
 public:
  KeyWalk(const KeyText& a, const KeyText& b, unsigned selector, unsigned short options)
      : a_{a.units, a.count},
        b_{b.units, b.count},
        selector_(static_cast<unsigned char>(selector)),
        options_(options) {}

  /// kDecided; kUnsuited when there is a wildcard in the second key.
  NxVerdict Compare(long& result);

 private:
  struct Side {
    const char* units;
    unsigned count;
    unsigned at = 0;
    unsigned order = 0;      // what was read last; 0 at the end
    unsigned ignorable = 0;  // the ignorable value of this step

    unsigned Next() {
      const unsigned unit = at < count ? UnitAt<kBigEndian>(units, at) : 0;
      if (unit != 0) ++at;
      return unit;
    }
  };

  void PassEqual();
  bool Read(Side& side) const;
  bool ReadSignificant();
  bool IsWildcard(unsigned order) const {
    return !(options_ & kWildcardsOff) &&
           (order == NxString::GetAsterisk() || order == NxString::GetQuestion());
  }

  Side a_;
  Side b_;
  const unsigned char selector_;
  const unsigned short options_;
  int stepIgnorable_ = 0;
};

/// Digits and letters that are the same on both sides differ in nothing.
template <bool kBigEndian>
inline void KeyWalk<kBigEndian>::PassEqual() {
  const unsigned most = std::min(a_.count - a_.at, b_.count - b_.at);
  unsigned i = 0;
  for (; i < most; ++i) {
    const unsigned unit = UnitAt<kBigEndian>(a_.units, a_.at + i);
    if (unit != UnitAt<kBigEndian>(b_.units, b_.at + i) || unit < kFirstDigitOrder) break;
  }
  a_.at += i;
  b_.at += i;
}

/// Reads up to the next value that is significant, or ignorable and recorded (true).
template <bool kBigEndian>
inline bool KeyWalk<kBigEndian>::Read(Side& side) const {
  for (;;) {
    side.order = side.Next();
    if (!NxLevels::IsIgnorable(side.order, selector_)) return false;
    if (NxLevels::IsSkipped(side.order, options_) && !(&side == &b_ && IsWildcard(side.order))) continue;
    side.ignorable = side.order;
    return true;
  }
}

/// Reads both sides up to their next significant values; false at a wildcard.
template <bool kBigEndian>
inline bool KeyWalk<kBigEndian>::ReadSignificant() {
  a_.ignorable = b_.ignorable = 0;
  stepIgnorable_ = 0;
  bool readA = true;
  bool readB = true;
  while (readA || readB) {
    if (readA) readA = Read(a_);
    if (readB) readB = Read(b_);
    if (readB && IsWildcard(b_.order)) return false;
    if (a_.ignorable != b_.ignorable) stepIgnorable_ = static_cast<int>(a_.ignorable - b_.ignorable);
  }
  return true;
}

template <bool kBigEndian>
NxVerdict KeyWalk<kBigEndian>::Compare(long& result) {
  NxLevels levels;
  do {
    PassEqual();
    if (!ReadSignificant()) return NxVerdict::kUnsuited;
    const unsigned key0 = NxCompareKey(static_cast<unsigned short>(a_.order), selector_);
    const unsigned key1 = NxCompareKey(static_cast<unsigned short>(b_.order), selector_);
    result = NxLevels::OfBaseLetters(key0, key1);
    if (result != 0) return NxVerdict::kDecided;
    levels.TakePair(key0, key1);
    levels.TakeIgnorables(stepIgnorable_);
  } while (a_.order != 0 && b_.order != 0);
  result = levels.Result(options_);
  return NxVerdict::kDecided;
}

template <bool kBigEndian>
NxVerdict Compare(const char* image1, const char* image2, unsigned selector, unsigned short options,
                  long& result) {
  return KeyWalk<kBigEndian>(TextOf<kBigEndian>(image1), TextOf<kBigEndian>(image2), selector, options)
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
