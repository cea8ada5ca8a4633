// Places in a text, as a pattern is matched with it. Key has the mark kNeedsIterator
// where the place cannot be read, and is 0 at the end.
#ifndef NXTEXTCURSOR_H
#define NXTEXTCURSOR_H

#include "collation/nxordertable.h"
#include "ord2str.h"

/// Takes the characters that have one order value.
template <class Unit>
struct NxSimpleCursor {
  const char* p;

  unsigned Key(const NxOrderTable& table) const { return NxEntryAt<Unit>(table, p).key; }
  unsigned short Order(const NxOrderTable& table) const { return NxEntryAt<Unit>(table, p).order; }
  void Next(const NxOrderTable& /*table*/) { p += sizeof(Unit); }
};

/// Takes expansions, too, one order value after the other.
template <class Unit>
struct NxExpandingCursor {
  const char* p;
  short index = 0;  // of the order value at p

  unsigned Key(const NxOrderTable& table) const {
    const NxOrderTable::Entry& entry = NxEntryAt<Unit>(table, p);
    if (!(entry.key & NxOrderTable::kNeedsIterator)) return entry.key;
    const NxCharInfo* const record = NxRecordAlone<Unit>(table, p);
    if (!record) return NxOrderTable::kMarks;
    if (index == 0) return entry.key & ~NxOrderTable::kMarks;
    return NxCompareKey(record->expansion->At(static_cast<short>(index - 1)), entry.selector);
  }
  unsigned short Order(const NxOrderTable& table) const {
    const NxCharInfo* const record = NxRecordAlone<Unit>(table, p);
    if (!record) return NxEntryAt<Unit>(table, p).order;
    return index == 0 ? record->order : record->expansion->At(static_cast<short>(index - 1));
  }
  void Next(const NxOrderTable& table) {
    const NxCharInfo* const record = NxRecordAlone<Unit>(table, p);
    if (record && record->expansion && index < record->expansion->Count()) {
      ++index;
    } else {
      p += sizeof(Unit);
      index = 0;
    }
  }
};

#endif
