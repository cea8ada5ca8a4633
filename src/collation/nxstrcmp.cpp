// NxStrCmp: the choice of the road, and the roads that are a few lines.

#include "collation/nxstrcmp.h"

#include <initializer_list>

#include "collation/nxlevelcmp.h"
#include "collation/nxplainbytes.h"
#include "strwild.h"
#include "text/nxchartext.h"
#include "text/nxstrbuild.h"

#ifdef NX_COUNT_ROADS
std::atomic<unsigned long> nxRoadsTaken[static_cast<int>(NxRoad::kKeyLevels) + 1];
#endif

// ---------------------------------------------------------------------------
// Short roads

namespace {

bool IsNull(const NxComparedText& text) { return NxIsNullText(text.codeSet, text.language); }
bool IsPattern(unsigned short op) { return (op & (kWildcardsOff | kOrderValuesOnly)) == 0; }

/// Null sorts first. A null value is matched with a pattern as an empty text is, but here
/// no characters are asked for.
int CompareUnread(const NxComparison& c) {
  if (!IsNull(c.second) && IsPattern(c.op)) return 0;
  return IsNull(c.second) - IsNull(c.first);
}

int CompareBytes(const NxComparison& c) {
  const int limit = c.len == kWholeText ? 0 : static_cast<unsigned short>(c.len);
  return IsPattern(c.op) ? nxstrwild(c.second.text, c.first.text, limit)
                         : nxstrcmp(c.first.text, c.second.text, limit);
}

NxOrderReader ReaderOf(const NxComparison& c, const NxComparedText& text, const NxOrderTable* table) {
  return NxOrderReader(text.text, text.codeSet, text.language, c.byteOrder, table);
}

/// The first two compare keys that differ decide.
int CompareOrderValues(const NxComparison& c, const NxTables& tables) {
  NxOrderReader first = ReaderOf(c, c.first, tables.first);
  NxOrderReader second = ReaderOf(c, c.second, tables.second);
  unsigned rounds = static_cast<unsigned short>(c.len);
  do {
    first.Next(1);
    second.Next(1);
    if (first.key != second.key) return static_cast<int>(first.key - second.key);
  } while (first.order != 0 && second.order != 0 && --rounds != 0);
  return 0;
}

int CompareByLevels(const NxComparison& c, const NxTables& tables) {
  return ProcessCharInfo(ReaderOf(c, c.first, tables.first), ReaderOf(c, c.second, tables.second), c.op,
                         c.len, c.outPos)
      .Run();
}

// ---------------------------------------------------------------------------
// Choice of the road

/// The road of a comparison as its operands are given, without a look at tables.
NxRoad RoadWithoutTables(const NxComparison& c) {
  if (IsNull(c.second) || (IsNull(c.first) && !IsPattern(c.op)) || c.len == 0) return NxRoad::kUnread;
  if (c.first.codeSet == kCodeSetNone && c.second.codeSet == kCodeSetNone) return NxRoad::kBytes;
  return c.op & kOrderValuesOnly ? NxRoad::kOrderValues : NxRoad::kLevels;
}

/// Puts the defaults where a text or one of two code sets is missing.
void Complete(NxComparison& c) {
  for (NxComparedText* text : {&c.first, &c.second}) {
    if (text->codeSet == kCodeSetNone) text->codeSet = NxLanguageContext::GetNativeCodeSet();
    if (!text->text) text->text = zeroString;
  }
}

/// The tables that readers of the texts may use: they need selectors to be updated while
/// reading, which texts of order values rule out for both.
NxTables TablesOf(const NxComparison& c) {
  if (c.first.codeSet == kCodeSetOrderValues || c.second.codeSet == kCodeSetOrderValues)
    return {nullptr, nullptr};
  return {NxOrderTable::Find(c.first.codeSet, c.first.language),
          NxOrderTable::Find(c.second.codeSet, c.second.language)};
}

/// Whether a comparison by levels can be walked with its tables.
bool CanWalk(const NxComparison& c, const NxTables& tables) {
  if (!tables.first || !tables.second) return false;
  const unsigned width = NxCharWidth(c.first.codeSet);
  if (width != NxCharWidth(c.second.codeSet)) return false;
  const bool highFirst = (StatedByteOrder(c.byteOrder) & kFormatCodeMask) == kFormatBigEndian;
  if (width == 2 && highFirst) return false;
  if (c.outPos && c.len >= 0 && (c.op & kSkipSpaces)) return false;  // every round is to be reported
  return (c.op & kWildcardsOff) || NxOrderTable::WildcardsAreSymbols();
}

/// Compares texts that are not for the road kPlainBytes.
int CompareUnlike(NxComparison c, bool general) {
  NxRoad road = RoadWithoutTables(c);
  NxTables tables = {nullptr, nullptr};
  if (IsNull(c.first) && !c.first.text) c.first.text = zeroString;
  if (road == NxRoad::kOrderValues || road == NxRoad::kLevels) {
    Complete(c);
    if (!general) tables = TablesOf(c);
    if (road == NxRoad::kLevels && CanWalk(c, tables)) road = NxRoad::kWalk;
  }
  NxNoteRoad(road);
  switch (road) {
    case NxRoad::kUnread:
      return CompareUnread(c);
    case NxRoad::kBytes:
      return CompareBytes(c);
    case NxRoad::kOrderValues:
      return CompareOrderValues(c, tables);
    case NxRoad::kWalk:
      return NxCompareByWalk(c, tables);
    default:
      return CompareByLevels(c, tables);
  }
}

/// NxStrCmp of what the road kPlainBytes does not take.
[[gnu::noinline]] int CompareOthers(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                                    unsigned char lang2, const char* s2, unsigned short op, short len,
                                    unsigned char byteOrder, int* outPos) {
  return CompareUnlike({{cs1, lang1, s1}, {cs2, lang2, s2}, op, len, byteOrder, outPos}, false);
}

}  // namespace

int NxStrCmp(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2, unsigned char lang2,
             const char* s2, unsigned short op, short len, unsigned char byteOrder, int* outPos) {
  if (len != kWholeText || !s1 || !s2)
    return CompareOthers(cs1, lang1, s1, cs2, lang2, s2, op, len, byteOrder, outPos);
  const NxOrderTable* const table = cs1 == cs2 && lang1 == lang2 ? NxTableOfBoth(cs1, lang1, op) : nullptr;
  if (!table) return CompareOthers(cs1, lang1, s1, cs2, lang2, s2, op, kWholeText, byteOrder, outPos);
  NxNoteRoad(NxRoad::kPlainBytes);
  const int result = NxCompareAlike(*table, s1, s2, NxZeroEnds(), op);
  if (result == kNoResult) return NxWalkBytes(*table, s1, s2, op, outPos);
  return result;
}

int NxStrCmpGeneral(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                    unsigned char lang2, const char* s2, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos) {
  return CompareUnlike({{cs1, lang1, s1}, {cs2, lang2, s2}, op, len, byteOrder, outPos}, true);
}
