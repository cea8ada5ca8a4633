// The comparison of two index keys of texts without copy and iterator: an ordered index
// calls it for every step of every search. It holds to the level comparison, which
// takes whatever does not fit here.

#include "collation/nxstrcmpkeys.h"

#include <algorithm>
#include <cstring>

#include "base/nxstored.h"
#include "collation/nxstrcmp.h"
#include "ord2str.h"

namespace {

/// A key's order values, from some place on.
struct KeyText {
  const char* units;
  unsigned count;
};

template <bool kBigEndian>
unsigned UnitAt(const char* units, unsigned index) {
  const unsigned unit = NxUnitAt<unsigned short>(units + 2 * index);
  return kBigEndian ? (unit >> 8 | (unit & 0xFF) << 8) : unit;
}

template <bool kBigEndian>
KeyText TextOf(const char* image) {
  const unsigned n = UnitAt<kBigEndian>(image, 0);
  return {image + NxStoredString::kHeadSize, (n - static_cast<unsigned>(NxStoredString::kEmptyLength)) / 2};
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

  /// False when there is a wildcard in the second key.
  bool Compare(long& result);

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
    if (side.order == 0 || side.order >= kFirstDigitOrder) return false;
    const unsigned skipped = side.order < kFirstSymbolOrder ? kSkipSpaces : kSkipSymbols;
    if ((options_ & skipped) && !(&side == &b_ && IsWildcard(side.order))) continue;
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
bool KeyWalk<kBigEndian>::Compare(long& result) {
  int accent = 0;
  int letterCase = 0;
  int ignorable = 0;
  do {
    PassEqual();
    if (!ReadSignificant()) return false;
    const unsigned k0 = NxCompareKey(static_cast<unsigned short>(a_.order), selector_);
    const unsigned k1 = NxCompareKey(static_cast<unsigned short>(b_.order), selector_);
    result = NxPrimaryDifference(k0, k1);
    if (result != 0) return true;
    if (letterCase == 0) letterCase = NxCaseDifference(k0, k1);
    if (const int difference = NxAccentDifference(k0, k1)) accent = difference;
    if (stepIgnorable_ != 0) ignorable = stepIgnorable_;
  } while (a_.order != 0 && b_.order != 0);
  if (accent != 0 && !(options_ & kIgnoreAccents)) {
    result = accent;
  } else if (letterCase != 0 && !(options_ & kIgnoreCase)) {
    result = letterCase;
  } else {
    result = ignorable;
  }
  return true;
}

template <bool kBigEndian>
bool Compare(const char* image1, const char* image2, unsigned selector, unsigned short options,
             long& result) {
  return KeyWalk<kBigEndian>(TextOf<kBigEndian>(image1), TextOf<kBigEndian>(image2), selector, options)
      .Compare(result);
}

bool IsAlphabetic(unsigned kind) {
  const unsigned selector = kind >> 8;
  return (kind & 0xFF) == kCodeSetOrderValues && selector != kLanguageNone && selector < kPlainOrderSelector;
}

constexpr unsigned kCutMark = kMixedCollation << 8;  // in code set and language, read as one

}  // namespace

bool NxCompareKeys(const char* image1, const char* image2, unsigned char format, unsigned short options,
                   long& result, int& error) {
  const bool bigEndian = (format & kFormatCodeMask) == kFormatBigEndian;
  const unsigned kind1 = NxUnitAt<unsigned short>(image1 + 2);
  const unsigned kind2 = NxUnitAt<unsigned short>(image2 + 2);
  const bool halfUnit = ((image1[bigEndian] | image2[bigEndian]) & 1) != 0;  // of the lengths' low bytes
  if (((kind1 ^ kind2) & ~kCutMark) != 0 || !IsAlphabetic(kind1 & ~kCutMark) || halfUnit) return false;
  if (options & kOrderValuesOnly) return false;
  if (!(options & kWildcardsOff) && ((kind2 & kCutMark) || !NxOrderTable::WildcardsAreSymbols()))
    return false;
  const unsigned selector = (kind1 & ~kCutMark) >> 8;
  error = (kind1 | kind2) & kCutMark ? kPastBuffer : 0;
  return bigEndian ? Compare<true>(image1, image2, selector, options, result)
                   : Compare<false>(image1, image2, selector, options, result);
}

long NxCompareEnds(const char* image1, const char* image2, unsigned n1, unsigned n2) {
  const bool firstIsLonger = n1 > n2;
  const unsigned n = std::min(n1, n2);
  if (n < NxStoredString::kEmptyLength || ((n1 | n2) & 1) != 0) return kBasesDoNotDecide;
  if (n1 == n2) return std::memcmp(image1, image2, n) == 0 ? 0 : kBasesDoNotDecide;
  const unsigned unit = NxWordAt(firstIsLonger ? image1 : image2, n);
  if (unit < kFirstDigitOrder) return kBasesDoNotDecide;
  const unsigned char selector = static_cast<unsigned char>(image1[3]);
  const unsigned key = NxCompareKey(static_cast<unsigned short>(unit), selector);
  return firstIsLonger ? NxPrimaryDifference(key, 0) : NxPrimaryDifference(0, key);
}
