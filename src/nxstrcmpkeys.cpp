// The comparison of two index keys of texts without copy and iterator: an ordered index
// calls it for every step of every search. It holds to the level comparison, which
// takes whatever does not fit here.

#include "nxstrcmpkeys.h"

#include <algorithm>
#include <cstring>

#include "nxstored.h"
#include "nxstrcmp.h"
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

/// Whether an image is whole, current and of order values; the language byte is of an
/// alphabetic selector.
template <bool kBigEndian>
inline bool Locate(const char* image, unsigned long length, unsigned char format, KeyText& key) {
  if (length != 0 && length < NxStoredString::kEmptySize) return false;
  const unsigned n = UnitAt<kBigEndian>(image, 0);
  if (n < NxStoredString::kEmptyLength || (n & 1) != 0 || (length != 0 && length < n + 2)) return false;
  const bool early = !(format & kFormatKey) && image[n + 1] == 0;
  const unsigned selector = static_cast<unsigned char>(image[3]) & ~kMixedCollation;
  key = {image + NxStoredString::kHeadSize, (n - static_cast<unsigned>(NxStoredString::kEmptyLength)) / 2};
  return !early && static_cast<unsigned char>(image[2]) == kCodeSetOrderValues && selector != kLanguageNone &&
         selector < kPlainOrderSelector;
}

/// The end of a text, a digit, a letter or a HAN character.
bool IsSignificantOrEnd(unsigned unit) { return unit == 0 || unit >= kFirstDigitOrder; }

/// The levels of two keys of one alphabetic selector.
template <bool kBigEndian>
class KeyWalk {
 public:
  KeyWalk(const KeyText& a, const KeyText& b, unsigned char selector, unsigned short options)
      : a_{a.units, a.count}, b_{b.units, b.count}, selector_(selector), options_(options) {}

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

/// The comparison of all that follows the first difference, which is none of base
/// letters. Apart, so that the frequent case needs few registers.
template <bool kBigEndian>
[[gnu::noinline]] bool CompareLevels(const KeyText& a, const KeyText& b, unsigned char selector,
                                     unsigned short options, long& result) {
  return KeyWalk<kBigEndian>(a, b, selector, options).Compare(result);
}

template <bool kBigEndian>
inline bool Compare(const KeyText& a, const KeyText& b, unsigned char selector, unsigned short options,
                    long& result) {
  const unsigned most = std::min(a.count, b.count);
  unsigned i = 0;
  unsigned unitA = 0;
  unsigned unitB = 0;
  for (;; ++i) {
    unitA = i < a.count ? UnitAt<kBigEndian>(a.units, i) : 0;
    unitB = i < b.count ? UnitAt<kBigEndian>(b.units, i) : 0;
    if (i == most || unitA != unitB || unitA < kFirstDigitOrder) break;
  }
  if (IsSignificantOrEnd(unitA) && IsSignificantOrEnd(unitB)) {
    result = NxPrimaryDifference(NxCompareKey(static_cast<unsigned short>(unitA), selector),
                                 NxCompareKey(static_cast<unsigned short>(unitB), selector));
    if (result != 0 || unitA == 0) return true;
  }
  return CompareLevels<kBigEndian>({a.units + 2 * i, a.count - i}, {b.units + 2 * i, b.count - i}, selector,
                                   options, result);
}

template <bool kBigEndian>
inline bool CompareImages(const char* image1, unsigned long length1, const char* image2,
                          unsigned long length2, unsigned char format, unsigned short options, long& result,
                          int& error) {
  KeyText a, b;
  if (!Locate<kBigEndian>(image1, length1, format, a) || !Locate<kBigEndian>(image2, length2, format, b))
    return false;
  const unsigned char languageA = static_cast<unsigned char>(image1[3]);
  const unsigned char languageB = static_cast<unsigned char>(image2[3]);
  const unsigned char selector = languageA & ~kMixedCollation;
  if (selector != (languageB & ~kMixedCollation)) return false;
  if ((languageB & kMixedCollation) && !(options & kWildcardsOff)) return false;  // a wildcard may be cut off
  if (!Compare<kBigEndian>(a, b, selector, options, result)) return false;
  error = (languageA | languageB) & kMixedCollation ? kPastBuffer : 0;
  return true;
}

}  // namespace

bool NxCompareKeyImages(const char* image1, unsigned long length1, const char* image2, unsigned long length2,
                        unsigned char format, unsigned short options, long& result, int& error) {
  const bool wildcardsAreSymbols = (options & kWildcardsOff) || NxOrderTable::WildcardsAreSymbols();
  if (format == kFormatMemory || (options & kOrderValuesOnly) || !wildcardsAreSymbols) return false;
  return (format & kFormatCodeMask) == kFormatBigEndian
             ? CompareImages<true>(image1, length1, image2, length2, format, options, result, error)
             : CompareImages<false>(image1, length1, image2, length2, format, options, result, error);
}
