// The road of most comparisons: two 8-bit texts of one code set and language, by the
// order table of both. It goes as far as both consist of digits and letters with one
// order value each, and hands what is left to the walk (nxplainwalk.h).
#ifndef NXPLAINBYTES_H
#define NXPLAINBYTES_H

#include "collation/nxblocks.h"
#include "collation/nxlevels.h"
#include "collation/nxordertable.h"

/// The table of two texts that this road serves, from the code set and language of one; null when
/// they are others, or `differing`, the bits in which those of the other text differ, is not 0. The
/// texts' limit is not asked about: this road compares whole texts.
inline const NxOrderTable* NxTableOfBoth(unsigned char codeSet, unsigned char language, int differing,
                                         unsigned short op) {
  constexpr unsigned char kWithoutTable = 0xFF & ~(NxOrderTable::kCodeSets - 1);
  if ((differing | (codeSet & kWithoutTable) | (op & kOrderValuesOnly)) != 0) return nullptr;
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
[[gnu::regparm(3)]] unsigned long long NxFindStops(const char* a, const char* b, NxZeroEnds ends);
[[gnu::regparm(3)]] unsigned long long NxFindStops(const char* a, const char* b, NxKnownEnds ends);

/// What may stand before the pair at i that is not read alike on both sides.
inline bool NxMayContract(const NxOrderTable& table, const char* a, unsigned i) {
  return table.contracts && i > 0 && table.Contracts(a[i - 1]);
}

/// Compares up to the first pair that differs. kOpen when it differs in accent or case alone.
inline NxVerdict NxCompareBaseLetters(const NxOrderTable& table, const char* a, const char* b, unsigned i,
                                      int& result) {
  const unsigned key0 = table.EntryOf(a[i]).key;
  const unsigned key1 = table.EntryOf(b[i]).key;
  if (((key0 | key1) & NxOrderTable::kNotPlain) || NxMayContract(table, a, i)) return NxVerdict::kUnsuited;
  result = NxLevels::OfBaseLetters(key0, key1);
  if (__builtin_expect(result != 0, 1) || key0 == 0) return NxVerdict::kDecided;
  return NxVerdict::kOpen;
}

/// Goes on from there to the end of the texts. kDecided or kUnsuited.
NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, NxZeroEnds ends,
                                unsigned long long stops, unsigned short op, int& result);
NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, NxKnownEnds ends,
                                unsigned long long stops, unsigned short op, int& result);

/// The walk over two such texts, when NxCompareAlike does not decide.
int NxWalkBytes(const NxOrderTable& table, unsigned char codeSet, unsigned char language, const char* a,
                const char* b, unsigned short op, unsigned char byteOrder, int* outPos);

/// Compares two whole texts whose NxTableOfBoth is the table. kDecided or kUnsuited.
template <class Ends>
inline NxVerdict NxCompareAlike(const NxOrderTable& table, const char* a, const char* b, Ends ends,
                                unsigned short op, int& result) {
  if (a[0] != b[0]) {  // as in most steps of a search
    const NxVerdict verdict = NxCompareBaseLetters(table, a, b, 0, result);
    if (__builtin_expect(verdict != NxVerdict::kOpen, 1)) return verdict;
  }
  const NxStops stops(NxFindStops(a, b, ends));
  const NxVerdict verdict = NxCompareBaseLetters(table, a, b, stops.First(), result);
  if (__builtin_expect(verdict != NxVerdict::kOpen, 1)) return verdict;
  int lesser;  // of its own, so that `result` can be in a register
  const NxVerdict last = NxCompareLesserLevels(table, a, b, ends, stops.Both(), op, lesser);
  result = lesser;
  return last;
}

#endif
