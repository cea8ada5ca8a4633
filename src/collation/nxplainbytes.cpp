// The loops of the road of two 8-bit texts of one table.

#include "collation/nxplainbytes.h"

[[gnu::noinline, gnu::regparm(3)]] unsigned NxCountSameBytes(const NxOrderTable& table, const char* a,
                                                             const char* b) {
  unsigned i = 0;
  for (;; i += 2) {
    if (a[i] != b[i] || !table.EntryOf(a[i]).equalsItself) return i;
    if (a[i + 1] != b[i + 1] || !table.EntryOf(a[i + 1]).equalsItself) return i + 1;
  }
}

NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, unsigned same,
                                unsigned short op, int& result) {
  NxLevels levels;
  for (unsigned i = same;; ++i) {
    while (a[i] == b[i] && table.EntryOf(a[i]).equalsItself) ++i;
    const unsigned key0 = table.EntryOf(a[i]).key;
    const unsigned key1 = table.EntryOf(b[i]).key;
    if ((key0 | key1) & NxOrderTable::kNotPlain) return NxVerdict::kUnsuited;
    result = NxLevels::OfBaseLetters(key0, key1);
    if (result == 0 && key0 == 0) result = levels.OfLetters(op);  // both texts end
    if (result != 0 || key0 == 0) return NxVerdict::kDecided;
    levels.TakePair(key0, key1);
  }
}
