// The level rule over two index keys (nxstrcmpkeys.h).
#ifndef NXKEYWALK_H
#define NXKEYWALK_H

#include <algorithm>

#include "base/nxstored.h"
#include "collation/nxlevels.h"
#include "nxstring.h"

/// A key's order values, from some place on.
struct NxKeyUnits {
  const char* units;
  unsigned count;
};

template <bool kBigEndian>
unsigned NxKeyUnitAt(const char* units, unsigned index) {
  return NxReadShort(units + 2 * index, kBigEndian ? kFormatBigEndian : kFormatNative);
}

/// The levels of two keys of one alphabetic selector.
template <bool kBigEndian>
class NxKeyWalk {
 public:
  NxKeyWalk(const NxKeyUnits& a, const NxKeyUnits& b, unsigned selector, unsigned short options)
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
      const unsigned unit = at < count ? NxKeyUnitAt<kBigEndian>(units, at) : 0;
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
inline void NxKeyWalk<kBigEndian>::PassEqual() {
  const unsigned most = std::min(a_.count - a_.at, b_.count - b_.at);
  unsigned i = 0;
  for (; i < most; ++i) {
    const unsigned unit = NxKeyUnitAt<kBigEndian>(a_.units, a_.at + i);
    if (unit != NxKeyUnitAt<kBigEndian>(b_.units, b_.at + i) || unit < kFirstDigitOrder) break;
  }
  a_.at += i;
  b_.at += i;
}

/// Reads up to the next value that is significant, or ignorable and recorded (true).
template <bool kBigEndian>
inline bool NxKeyWalk<kBigEndian>::Read(Side& side) const {
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
inline bool NxKeyWalk<kBigEndian>::ReadSignificant() {
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
NxVerdict NxKeyWalk<kBigEndian>::Compare(long& result) {
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

#endif
