// The comparison of two texts: what it is about, and the roads that it can take. NxStrCmp
// chooses the road once, at its entry; every road that serves a comparison gives the same
// result as the level comparison, the general one.
#ifndef NXSTRCMP_H
#define NXSTRCMP_H

#include "collation/nxlevels.h"
#include "collation/nxordertable.h"

#ifdef NX_COUNT_ROADS
#include <atomic>
#endif

/// A text to be compared.
struct NxComparedText {
  unsigned char codeSet;
  unsigned char language;
  const char* text;
};

/// One comparison; the members are the parameters of NxStrCmp (strwild.h).
struct NxComparison {
  NxComparedText first;
  NxComparedText second;
  unsigned short op;
  short len;
  unsigned char byteOrder;
  int* outPos;
};

/// The order tables of the two texts, null where there is none.
struct NxTables {
  const NxOrderTable* first;
  const NxOrderTable* second;
};

enum class NxRoad : unsigned char {
  kUnread,       // a null value, or no characters asked for: no text is read
  kBytes,        // no code set on either side: the bytes decide
  kOrderValues,  // order values alone, without levels
  kPlainBytes,   // two 8-bit texts of one code set and language (nxplainbytes.h)
  kWalk,         // two texts of one width, each with its table (nxplainwalk.h)
  kLevels,       // the level comparison (nxlevelcmp.h)
  kKeyBases,     // two stored keys, by base letters alone (nxstrcmpkeys.h)
  kKeyLevels,    // two stored keys, by all levels
};

#ifdef NX_COUNT_ROADS
/// How often each road has served a comparison; for tests, which set it to 0.
extern std::atomic<unsigned long> nxRoadsTaken[static_cast<int>(NxRoad::kKeyLevels) + 1];
inline void NxNoteRoad(NxRoad road) { ++nxRoadsTaken[static_cast<int>(road)]; }
#else
inline void NxNoteRoad(NxRoad /*road*/) {}
#endif

/// The road kWalk. The code sets are not 0, the texts not null and the tables there.
int NxCompareByWalk(const NxComparison& c, const NxTables& tables);

/// NxStrCmp by the level comparison alone, wherever a text is read, and without tables.
int NxStrCmpGeneral(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                    unsigned char lang2, const char* s2, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos);

#endif
