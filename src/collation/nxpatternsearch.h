// The search for the parts of a pattern behind a star, in place and without the list of
// the level comparison: for characters that the order tables tell.
#ifndef NXPATTERNSEARCH_H
#define NXPATTERNSEARCH_H

#include "collation/nxlevels.h"
#include "collation/nxtextcursor.h"

enum class NxMatch {
  kMatches,   // the text matches the whole pattern
  kDiffers,   // it does not; the search has the difference
  kUnsuited,  // there are characters that the cursors cannot read
  kNextStar,  // a part of the pattern matches, up to the next star
  kNotHere    // the part does not match at this place of the text
};

/// What decides whether a character matches one of the pattern.
struct NxMatchRule {
  const NxOrderTable& text;     // the tables of both
  const NxOrderTable& pattern;  //
  unsigned mask;                // the bits of a compare key that count
  unsigned short asterisk;      // order values of the wildcards
  unsigned short question;      //
};

/// The difference of a text that ends where the pattern has a character.
inline int NxEndBefore(unsigned key, bool isQuestion) {
  return isQuestion ? -1 : NxLevels::OfBaseLetters(0, key & ~NxOrderTable::kMarks);
}

/// Matches a text against a pattern from a star on. Each part of the pattern, up to its
/// next star, is taken where it occurs first: what lies behind is found from there as well
/// as from any later place. So nothing is ever tried again for the sake of a part before.
template <class Cursor>
class NxPatternSearch {
 public:
  explicit NxPatternSearch(const NxMatchRule& rule) : rule_(rule) {}

  /// `pattern` stands on the star.
  NxMatch Run(Cursor text, Cursor pattern) {
    NxMatch match = NxMatch::kNextStar;
    while (match == NxMatch::kNextStar) {
      do {
        pattern.Next(rule_.pattern);
      } while (pattern.Order(rule_.pattern) == rule_.asterisk);
      if (pattern.Key(rule_.pattern) == 0) return NxMatch::kMatches;
      match = FindPart(text, pattern);
    }
    return match;
  }

  int Difference() const { return difference_; }

 private:
  /// Takes both cursors behind the part that begins at `part`.
  NxMatch FindPart(Cursor& text, Cursor& part) {
    const unsigned wanted = part.Key(rule_.pattern);
    const unsigned mask = part.Order(rule_.pattern) == rule_.question ? 0 : rule_.mask;
    for (Cursor begin = text;; begin.Next(rule_.text)) {
      unsigned key;
      while (key = begin.Key(rule_.text),
             ((key ^ wanted) & mask) != 0 && key != 0 && !(key & NxOrderTable::kNeedsIterator))
        begin.Next(rule_.text);
      text = begin;
      Cursor pattern = part;
      const NxMatch match = MatchHere(text, pattern);
      if (match == NxMatch::kNotHere) continue;
      part = pattern;
      return match;
    }
  }

  NxMatch MatchHere(Cursor& text, Cursor& part) {
    for (;; text.Next(rule_.text), part.Next(rule_.pattern)) {
      const unsigned key0 = text.Key(rule_.text);
      const unsigned key1 = part.Key(rule_.pattern);
      if ((key0 | key1) & NxOrderTable::kNeedsIterator) return NxMatch::kUnsuited;
      const unsigned short order = part.Order(rule_.pattern);
      if (order == rule_.asterisk) return NxMatch::kNextStar;
      if (key0 == 0) {
        if (key1 == 0) return NxMatch::kMatches;
        // This is the earliest place from which the text goes along with the pattern.
        difference_ = NxEndBefore(key1, order == rule_.question);
        return NxMatch::kDiffers;
      }
      if (order != rule_.question && ((key0 ^ key1) & rule_.mask) != 0) return NxMatch::kNotHere;
    }
  }

  const NxMatchRule rule_;
  int difference_ = 0;
};

/// Matches the text from p on against the pattern from the star at q on; kMatches,
/// kDiffers with the difference, or kUnsuited.
template <class Unit>
[[gnu::always_inline]] inline NxMatch NxMatchFromStar(const NxMatchRule& rule, const char* p, const char* q,
                                                      int& difference) {
  const auto search = [&](auto text, auto pattern) {
    NxPatternSearch<decltype(text)> search(rule);
    const NxMatch match = search.Run(text, pattern);
    difference = search.Difference();
    return match;
  };
  const NxMatch match = search(NxSimpleCursor<Unit>{p}, NxSimpleCursor<Unit>{q});
  if (match != NxMatch::kUnsuited) return match;
  return search(NxExpandingCursor<Unit>{p}, NxExpandingCursor<Unit>{q});
}

#endif
