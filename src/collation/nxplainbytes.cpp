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
NX_READS_BLOCKS inline unsigned long long FindStops(const char* a, const char* b, Ends ends) {
  if (const unsigned bits = NxStopsAt(a, b, ends.Ahead(a, b))) return NxStops(0, bits).Both();
  return FindStopsFrom(a, b, ends, kBlockBytes);
}

template <class Ends>
inline NxVerdict CompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, Ends ends,
                                     unsigned long long stops, unsigned short op, int& result) {
  NxLevels levels;
  unsigned begin = NxStops(stops).Begin();
  for (unsigned bits = NxStops(stops).Bits();;) {
    for (; bits != 0; bits &= bits - 1) {
      const unsigned i = begin + static_cast<unsigned>(__builtin_ctz(bits));
      const unsigned key0 = table.EntryOf(a[i]).key;
      const unsigned key1 = table.EntryOf(b[i]).key;
      if (((key0 | key1) & NxOrderTable::kNotPlain) || NxMayContract(table, a, i))
        return NxVerdict::kUnsuited;
      result = NxLevels::OfBaseLetters(key0, key1);
      if (result == 0 && key0 == 0) result = levels.OfLetters(op);  // both texts end
      if (result != 0 || key0 == 0) return NxVerdict::kDecided;
      levels.TakePair(key0, key1);
    }
    const NxStops next(FindStopsFrom(a, b, ends, begin + kBlockBytes));
    begin = next.Begin();
    bits = next.Bits();
  }
}

}  // namespace

[[gnu::noinline]] NX_READS_BLOCKS unsigned long long NxFindStops(const char* a, const char* b,
                                                                 NxZeroEnds ends) {
  return FindStops(a, b, ends);
}
[[gnu::noinline]] unsigned long long NxFindStops(const char* a, const char* b, NxKnownEnds ends) {
  return FindStops(a, b, ends);
}

NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, NxZeroEnds ends,
                                unsigned long long stops, unsigned short op, int& result) {
  return CompareLesserLevels(table, a, b, ends, stops, op, result);
}
NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, NxKnownEnds ends,
                                unsigned long long stops, unsigned short op, int& result) {
  return CompareLesserLevels(table, a, b, ends, stops, op, result);
}
