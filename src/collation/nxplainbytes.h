// The road of most comparisons: two 8-bit texts of one code set and language, by the
// order table of both. It goes as far as both consist of digits and letters with one
// order value each, and hands what is left to the walk (nxplainwalk.h).
#ifndef NXPLAINBYTES_H
#define NXPLAINBYTES_H

#include "collation/nxlevels.h"
#include "collation/nxordertable.h"

/// The table of two texts that this road serves; null when they are others. Their limit
/// is not asked about: this road compares whole texts.
inline const NxOrderTable* NxTableOfBoth(unsigned char codeSet0, unsigned char language0,
                                         unsigned char codeSet1, unsigned char language1, unsigned short op) {
  constexpr unsigned kWithoutTable = 0xFF & ~(NxOrderTable::kCodeSets - 1);
  const unsigned unlike =
      (codeSet0 ^ codeSet1) | (language0 ^ language1) | (codeSet0 & kWithoutTable) | (op & kOrderValuesOnly);
  if (unlike != 0 || !NxOrderTable::WildcardsAreSymbols()) return nullptr;
  return NxOrderTable::FindBuilt(codeSet0, language0);
}

/// How many bytes at the start of two texts are the same and make no difference at any
/// level. The loop is most of a comparison and wants its registers for itself.
[[gnu::regparm(3)]] unsigned NxCountSameBytes(const NxOrderTable& table, const char* a, const char* b);

/// Compares up to the first pair that differs, behind `same` bytes that do not. kOpen
/// when it differs in accent or case alone.
inline NxVerdict NxCompareBaseLetters(const NxOrderTable& table, const char* a, const char* b, unsigned& same,
                                      int& result) {
  const unsigned i = a[0] == b[0] ? NxCountSameBytes(table, a, b) : 0;
  same = i;
  const unsigned key0 = table.EntryOf(a[i]).key;
  const unsigned key1 = table.EntryOf(b[i]).key;
  if ((key0 | key1) & NxOrderTable::kNotPlain) return NxVerdict::kUnsuited;
  result = NxLevels::OfBaseLetters(key0, key1);
  if (__builtin_expect(result != 0, 1) || key0 == 0) return NxVerdict::kDecided;
  return NxVerdict::kOpen;
}

/// Goes on from there to the end of the texts. kDecided or kUnsuited.
NxVerdict NxCompareLesserLevels(const NxOrderTable& table, const char* a, const char* b, unsigned same,
                                unsigned short op, int& result);

/// The walk over two such texts, of which `same` bytes need not be looked at again.
int NxWalkBytes(const NxOrderTable& table, unsigned char codeSet, unsigned char language, const char* a,
                const char* b, unsigned same, unsigned short op, unsigned char byteOrder, int* outPos);

/// NxStrCmp of two whole texts whose NxTableOfBoth is the table.
inline int NxCompareAlike(const NxOrderTable& table, unsigned char codeSet, unsigned char language,
                          const char* a, const char* b, unsigned short op, unsigned char byteOrder,
                          int* outPos) {
  unsigned same;
  int result;
  NxVerdict verdict = NxCompareBaseLetters(table, a, b, same, result);
  if (verdict == NxVerdict::kOpen) verdict = NxCompareLesserLevels(table, a, b, same, op, result);
  if (verdict == NxVerdict::kDecided) return result;
  return NxWalkBytes(table, codeSet, language, a, b, same, op, byteOrder, outPos);
}

#endif
