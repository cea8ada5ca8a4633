// The walk and the level comparison taking turns: the level comparison takes the pairs
// that the walk cannot, and the walk goes on behind them where the texts allow.

#include "collation/nxplainwalk.h"

#include "collation/nxpatternmasks.h"
#include "collation/nxplainbytes.h"
#include "collation/nxstrcmp.h"
#include "text/nxstrbuild.h"

namespace {

/// Whether the level comparison stands between characters in both texts, so that the walk
/// can go on from there; with characters left over from an expansion it does not.
bool StandsInText(const ProcessCharInfo& levels) {
  return !levels.first.reader.it._pOverflow && !levels.second.reader.it._pOverflow;
}

/// Takes a side of the level comparison to where the walk stands.
template <class Unit>
void MoveTo(ProcessCharInfo::Side& side, const char* place, const NxOrderTable& table) {
  side.reader.it._pPos = const_cast<char*>(place);
  // The selector as the last character walked over leaves it.
  side.reader.it._nCollation = NxEntryAt<Unit>(table, place - sizeof(Unit)).selector;
}

template <class Unit>
int WalkAndCompare(const NxComparison& c, const NxTables& tables, unsigned same) {
  const unsigned limit = c.len == kWholeText ? ProcessCharInfo::kNoLimit : static_cast<unsigned short>(c.len);
  const unsigned left = c.len == kWholeText ? limit : limit - same;
  NxPlainWalk<Unit> walk(*tables.first, *tables.second, c.first.text + same * sizeof(Unit),
                         c.second.text + same * sizeof(Unit), left, c.op);
  if (walk.Run() == NxVerdict::kDecided) return walk.Result();

  ProcessCharInfo levels({walk.first, c.first.codeSet, c.first.language, c.byteOrder, tables.first},
                         {walk.second, c.second.codeSet, c.second.language, c.byteOrder, tables.second}, c.op,
                         c.len, c.outPos);
  levels.first.count = levels.second.count =
      static_cast<unsigned>(walk.first - c.first.text) / static_cast<unsigned>(sizeof(Unit));
  for (;;) {
    levels.levels.ReturnTo(walk.levels);
    if (levels.Round()) return levels.Result();
    if (c.len != kWholeText || levels.IsStarPending()) return levels.Run();
    walk.levels = levels.levels;
    if (!StandsInText(levels)) continue;
    const char* const before = levels.first.reader.it._pPos;
    walk.first = before;
    walk.second = levels.second.reader.it._pPos;
    if (walk.Run() == NxVerdict::kDecided) return walk.Result();
    if (walk.first == before) continue;
    MoveTo<Unit>(levels.first, walk.first, *tables.first);
    MoveTo<Unit>(levels.second, walk.second, *tables.second);
  }
}

}  // namespace

int NxCompareByWalk(const NxComparison& c, const NxTables& tables) {
  return NxCharWidth(c.first.codeSet) == 1 ? WalkAndCompare<unsigned char>(c, tables, 0)
                                           : WalkAndCompare<unsigned short>(c, tables, 0);
}

namespace {

/// NxWalkBytes from the character on up to which the texts are the same.
[[gnu::noinline]] int WalkFrom(const NxOrderTable& table, const char* a, const char* b, unsigned same,
                               unsigned short op, int* outPos) {
  // Spaces and symbols are compared as a row, a contraction as a whole.
  while (same > 0 && !table.EntryOf(a[same - 1]).equalsItself) --same;
  const NxComparison c = {{table.codeSet, table.language, a},
                          {table.codeSet, table.language, b},
                          op,
                          kWholeText,
                          kFormatNative,
                          outPos};
  return WalkAndCompare<unsigned char>(c, {&table, &table}, same);
}

}  // namespace

int NxWalkBytes(const NxOrderTable& table, const char* a, const char* b, unsigned short op, int* outPos) {
  const unsigned same = a[0] == b[0] ? NxStops(NxFindStops(a, b)).First() : 0;
#ifdef NX_BLOCK_READS
  constexpr unsigned short kOthers =
      kWildcardsOff | kIgnoreCase | kIgnoreAccents | kSkipSpaces | kSkipSymbols;
  if (b[same] == '*' && !(op & kOthers)) {
    int difference = 0;
    const NxMatch match = NxMatchByMasks(table, a + same, b + same, difference);
    if (match != NxMatch::kUnsuited) return difference;
  }
#endif
  return WalkFrom(table, a, b, same, op, outPos);
}
