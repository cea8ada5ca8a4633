// The walk over two texts of one character width by their order tables: the road of texts that
// nxplainbytes.h leaves over. A pattern behind a star goes on with NxPatternSearch.
#ifndef NXPLAINWALK_H
#define NXPLAINWALK_H

#include "collation/nxlevelcmp.h"
#include "collation/nxpatternmiss.h"
#include "collation/nxpatternsearch.h"

/// The walk over two texts of Units (bytes or 16-bit units). Its steps are inlined by force.
template <class Unit>
class NxPlainWalk {
 public:
  /// Begins at p and q, which `left` characters follow that count (kNoLimit: all).
  NxPlainWalk(const NxOrderTable& tableP, const NxOrderTable& tableQ, const char* p, const char* q,
              unsigned left, unsigned short op)
      : first(p),
        second(q),
        tableP_(tableP),
        tableQ_(tableQ),
        op_(op),
        wildcards_((op & kWildcardsOff) == 0),
        asterisk_(NxString::GetAsterisk()),
        question_(NxString::GetQuestion()),
        left_(left),
        wholeTexts_(left == ProcessCharInfo::kNoLimit) {}

  /// Walks on: kDecided with the result, or kUnsuited where the walk cannot pass; the
  /// level comparison must go on from there.
  NxVerdict Run() {
    for (;;) {
      NxVerdict verdict = PassPlain();
      if (verdict == NxVerdict::kOpen) verdict = TakeSpecial();
      if (verdict != NxVerdict::kOpen) return verdict;
      Skip(1);
    }
  }

  int Result() const { return result_; }
  const char* first;   // where the walk stands in both texts
  const char* second;  //
  NxLevels levels;     // what the levels say up to there

 private:
  using Entry = NxOrderTable::Entry;

  bool SkipsCharacters() const { return (op_ & (kSkipSpaces | kSkipSymbols)) != 0; }
  bool IsWildcard(const Entry& entry) const {
    return wildcards_ && entry.order != 0 && (entry.order == asterisk_ || entry.order == question_);
  }
  void Skip(unsigned characters) {
    first += characters * sizeof(Unit);
    second += characters * sizeof(Unit);
    left_ -= characters;
  }
  NxVerdict Decide(int result) {
    result_ = result;
    return NxVerdict::kDecided;
  }

  /// Walks over digits and letters, to the end or to another character (kOpen).
  [[gnu::always_inline]] NxVerdict PassPlain() {
    const char* p = first;
    const char* q = second;
    unsigned left = left_;
    for (; left != 0; --left, p += sizeof(Unit), q += sizeof(Unit)) {
      const unsigned key0 = NxEntryAt<Unit>(tableP_, p).key;
      const unsigned key1 = NxEntryAt<Unit>(tableQ_, q).key;
      if ((key0 | key1) & NxOrderTable::kNotPlain) {
        first = p;
        second = q;
        left_ = left;
        return NxVerdict::kOpen;
      }
      const int difference = NxLevels::OfBaseLetters(key0, key1);
      if (difference != 0) return Decide(difference);
      if (key0 == 0) break;
      if (key0 != key1) levels.TakePair(key0, key1);
    }
    return Decide(levels.Result(op_));
  }

  /// A pair with a wildcard in it, a space or symbol, or what may need the iterator.
  [[gnu::always_inline]] NxVerdict TakeSpecial() {
    const Entry& entry0 = NxEntryAt<Unit>(tableP_, first);
    const Entry& entry1 = NxEntryAt<Unit>(tableQ_, second);
    if (IsWildcard(entry1)) return TakeWildcard(entry0, entry1);
    const bool pair = NxIsPlainAt<Unit>(tableP_, first) && NxIsPlainAt<Unit>(tableQ_, second);
    if (!pair) return PassSameIgnorables();
    const unsigned key0 = entry0.key & ~NxOrderTable::kMarks;
    const unsigned key1 = entry1.key & ~NxOrderTable::kMarks;
    const int difference = NxLevels::OfBaseLetters(key0, key1);
    if (difference != 0) return Decide(difference);
    levels.TakePair(key0, key1);
    return NxVerdict::kOpen;
  }

  [[gnu::always_inline]] NxVerdict TakeWildcard(const Entry& text, const Entry& pattern) {
    if (SkipsCharacters()) return NxVerdict::kUnsuited;
    if (pattern.order == asterisk_) return MatchAfterStar();
    if (NxUnitAt<Unit>(first) == 0) return Decide(-1);
    return text.key & NxOrderTable::kNeedsIterator ? NxVerdict::kUnsuited : NxVerdict::kOpen;
  }

  /// The same spaces and symbols on both sides differ in nothing, provided that what
  /// follows them begins a new pair. Leaves the walk on the last of them.
  NxVerdict PassSameIgnorables() {
    for (unsigned n = 0; n < left_; ++n) {
      const char* const p = first + n * sizeof(Unit);
      const char* const q = second + n * sizeof(Unit);
      const Entry& entry0 = NxEntryAt<Unit>(tableP_, p);
      const Entry& entry1 = NxEntryAt<Unit>(tableQ_, q);
      const bool plain0 = NxIsPlainAt<Unit>(tableP_, p);
      const bool plain1 = NxIsPlainAt<Unit>(tableQ_, q);
      const bool wildcard = IsWildcard(entry1);
      if (n > 0 && ((plain0 && plain1) || (wildcard && !SkipsCharacters()))) {
        Skip(n - 1);
        return NxVerdict::kOpen;
      }
      const bool readable = !((entry0.key | entry1.key) & NxOrderTable::kNeedsIterator) &&
                            entry0.selector < kPlainOrderSelector && entry1.selector < kPlainOrderSelector;
      if (plain0 || plain1 || wildcard || entry0.order != entry1.order || !readable) break;
    }
    return NxVerdict::kUnsuited;
  }

  /// Matches the text from first on against the pattern from the star at second on.
  [[gnu::always_inline]] NxVerdict MatchAfterStar() {
    if (!wholeTexts_) return NxVerdict::kUnsuited;
    const unsigned mask = NxLevels::CountingBits(op_) & ~NxOrderTable::kMarks;
    const NxMatchRule rule = {tableP_, tableQ_, mask, asterisk_, question_};
    int difference = 0;
    const NxMatch match = levels.OfLetters(op_) != 0 ? NxPassMismatches<Unit>(rule, first, second, difference)
                                                     : NxMatchFromStar<Unit>(rule, first, second, difference);
    if (match == NxMatch::kMatches) difference = levels.Result(op_);
    return match == NxMatch::kUnsuited ? NxVerdict::kUnsuited : Decide(difference);
  }

  const NxOrderTable& tableP_;
  const NxOrderTable& tableQ_;
  const unsigned short op_;
  const bool wildcards_;
  const unsigned short asterisk_;
  const unsigned short question_;
  unsigned left_;  // characters still to be compared
  const bool wholeTexts_;
  int result_ = 0;
};

#endif
