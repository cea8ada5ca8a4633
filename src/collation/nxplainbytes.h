// The road of most comparisons: two 8-bit texts of one code set and language, by the
// order table of both. It goes as far as both consist of digits and letters with one
// order value each, and hands what is left to the walk (nxplainwalk.h).
#ifndef NXPLAINBYTES_H
#define NXPLAINBYTES_H

#include <climits>

#include "collation/nxblocks.h"
#include "collation/nxlevels.h"
#include "collation/nxordertable.h"

/// The table of two texts of one code set and language that this road serves; null when they are
/// others. The texts' limit is not asked about: this road compares whole texts.
inline const NxOrderTable* NxTableOfBoth(unsigned char codeSet, unsigned char language, unsigned short op) {
  if (op & kOrderValuesOnly) return nullptr;
  const NxOrderTable* const table = NxOrderTable::FindBuilt(codeSet, language);
  return table && table->WildcardsAreUsual() ? table : nullptr;
}

/// Where two texts stop being the same, or have a wildcard: in the block from `begin` on, at
/// the bytes that have a bit each. What is the same reads alike by any rule and is not looked
/// up. One number, so that it is handed over in registers.
class NxStops {
 public:
  NxStops(unsigned begin, unsigned bits) : both_(static_cast<unsigned long long>(begin) << 32 | bits) {}
  explicit NxStops(unsigned long long both) : both_(both) {}
  unsigned long long Both() const { return both_; }
  unsigned Begin() const { return static_cast<unsigned>(both_ >> 32); }
  unsigned Bits() const { return static_cast<unsigned>(both_); }
  unsigned First() const { return Begin() + static_cast<unsigned>(__builtin_ctz(Bits())); }

 private:
  unsigned long long both_;
};

/// The first stops of two texts, as NxStops::Both.
[[gnu::regparm(3)]] unsigned long long NxFindStops(const char* a, const char* b);

/// What a comparison answers that has no result. No difference of two keys is that great.
inline constexpr int kNoResult = INT_MIN;

/// The difference of the base letters at i. kNoResult where they are no digits or letters with one
/// order value each.
inline int NxCompareBaseLetters(const NxOrderTable& table, const char* a, const char* b, unsigned i) {
  const unsigned key0 = table.EntryOf(a[i]).key;
  const unsigned key1 = table.EntryOf(b[i]).key;
  if ((key0 | key1) & NxOrderTable::kNotPlain) return kNoResult;
  // What stands before the pair may make a character with one side of it.
  if (table.contracts && i > 0 && table.Contracts(a[i - 1])) return kNoResult;
  return NxLevels::OfBaseLetters(key0, key1);
}

/// Compares two texts of the table by all levels, given the stops of their first block.
[[gnu::regparm(3)]] int NxCompareFrom(const NxOrderTable& table, const char* a, const char* b,
                                      NxZeroEnds ends, unsigned stops, unsigned short op);
[[gnu::regparm(3)]] int NxCompareFrom(const NxOrderTable& table, const char* a, const char* b,
                                      NxKnownEnds ends, unsigned stops, unsigned short op);

/// Compares two whole texts whose NxTableOfBoth is the table. kNoResult where this road ends.
template <class Ends>
NX_READS_BLOCKS inline int NxCompareAlike(const NxOrderTable& table, const char* a, const char* b, Ends ends,
                                          unsigned short op) {
  if (a[0] != b[0])  // as in most steps of a search
    if (const int result = NxCompareBaseLetters(table, a, b, 0)) return result;
  const unsigned stops = NxStopsAt(a, b, ends.Ahead(a, b));
  if (stops != 0)
    if (const int result = NxCompareBaseLetters(table, a, b, static_cast<unsigned>(__builtin_ctz(stops))))
      return result;
  return NxCompareFrom(table, a, b, ends, stops, op);
}

/// The walk over two such texts, when NxCompareAlike does not decide.
[[gnu::regparm(3)]] int NxWalkBytes(const NxOrderTable& table, const char* a, const char* b,
                                    unsigned short op, int* outPos);

#endif
