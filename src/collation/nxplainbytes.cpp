// The loops of the road of two 8-bit texts of one table.

#include "collation/nxplainbytes.h"

NX_READS_BLOCKS unsigned NxStopsAtFew(const char* a, const char* b, unsigned length) {
  constexpr unsigned kQuarter = kHalfBlock / 2;
  if (length >= kQuarter) {
    const unsigned bits = NxStopsOf(NxQuartersAt(a, length), NxQuartersAt(b, length));
    return (bits & 0xF) | (bits >> kQuarter & 0xF) << (length - kQuarter);
  }
  unsigned stops = 0;
  for (unsigned i = length; i-- > 0;)
    stops = stops << 1 | (a[i] != b[i] || a[i] == 0 || b[i] == '*' || b[i] == '?');
  return stops;
}

namespace {

template <class Ends>
[[gnu::noinline]] NX_READS_BLOCKS unsigned long long FindStopsFrom(const char* a, const char* b, Ends ends,
                                                                   unsigned begin) {
  for (;; begin += kBlockBytes)
    if (const unsigned bits = NxStopsAt(a + begin, b + begin, ends.Ahead(a + begin, b + begin)))
      return NxStops(begin, bits).Both();
}

template <class Ends>
inline int CompareFrom(const NxOrderTable& table, const char* a, const char* b, Ends ends, unsigned stops,
                       unsigned short op) {
  NxLevels levels;
  for (unsigned begin = 0;;) {
    for (; stops != 0; stops &= stops - 1) {
      const unsigned i = begin + static_cast<unsigned>(__builtin_ctz(stops));
      if (const int result = NxCompareBaseLetters(table, a, b, i)) return result;
      if (a[i] == 0) return levels.OfLetters(op);  // both texts end
      levels.TakePair(table.EntryOf(a[i]).key, table.EntryOf(b[i]).key);
    }
    const NxStops next(FindStopsFrom(a, b, ends, begin + kBlockBytes));
    begin = next.Begin();
    stops = next.Bits();
  }
}

}  // namespace

unsigned long long NxFindStops(const char* a, const char* b) { return FindStopsFrom(a, b, NxZeroEnds(), 0); }

[[gnu::noinline]] int NxCompareFrom(const NxOrderTable& table, const char* a, const char* b, NxZeroEnds ends,
                                    unsigned stops, unsigned short op) {
  return CompareFrom(table, a, b, ends, stops, op);
}
[[gnu::noinline]] int NxCompareFrom(const NxOrderTable& table, const char* a, const char* b, NxKnownEnds ends,
                                    unsigned stops, unsigned short op) {
  return CompareFrom(table, a, b, ends, stops, op);
}
