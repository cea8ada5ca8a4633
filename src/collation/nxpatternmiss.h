// A pattern behind a star that cannot match, since the text differs from it in accent or case
// before the star: what the comparison answers then.
#ifndef NXPATTERNMISS_H
#define NXPATTERNMISS_H

#include "collation/nxpatternsearch.h"

/// Tells what the level comparison comes to that stands at p of a text and at the star at
/// `part` of a pattern: kDiffers with the difference, kMatches when the levels so far decide,
/// or kUnsuited.
///
/// For the level comparison every character behind the star is a mismatch then, and it begins
/// anew at each. So where the text ends it stands before the first character of a part of the
/// pattern, or behind it where that is the text's last one, too; and it passes on to a further
/// star only behind a part of one character.
template <class Unit>
[[gnu::noinline]] NxMatch NxPassMismatches(const NxMatchRule& rule, const char* p, const char* part,
                                           int& difference) {
  using Entry = NxOrderTable::Entry;
  const auto entryOf = [&rule](const char* at) { return NxEntryAt<Unit>(rule.pattern, at); };
  for (;; part += sizeof(Unit)) {
    while (entryOf(part).order == rule.asterisk) part += sizeof(Unit);
    const Entry begin = entryOf(part);
    if (begin.key == 0) return NxMatch::kMatches;
    Entry now = begin;  // what the text's character is compared with
    for (bool atStar = true; atStar || now.order != rule.asterisk; atStar = false, p += sizeof(Unit)) {
      const unsigned key = NxEntryAt<Unit>(rule.text, p).key;
      if ((key | now.key | begin.key) & NxOrderTable::kNeedsIterator) return NxMatch::kUnsuited;
      if (key == 0 && now.key == 0) return NxMatch::kMatches;
      if (key == 0) {
        difference = NxEndBefore(now.key, now.order == rule.question);
        return NxMatch::kDiffers;
      }
      // The character at the star is passed over.
      const bool begins = !atStar && (begin.order == rule.question || ((key ^ begin.key) & rule.mask) == 0);
      now = begins ? entryOf(part + sizeof(Unit)) : begin;
    }
  }
}

#endif
