#include "collation/nxtextkey.h"

#include <algorithm>

#include "base/nxgrowlist.h"
#include "collation/nxkeybytes.h"
#include "collation/nxlevels.h"
#include "collation/nxordertable.h"
#include "collation/nxplainkey.h"
#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "ord2str.h"
#include "text/nxchartext.h"

namespace {

using namespace NxKeyBytes;

/// Writes base letters, naming the selector where it changes.
class BaseLetterWriter {
 public:
  explicit BaseLetterWriter(NxKeyWriter& key) : key_(key) {}

  void Put(unsigned short order, unsigned char selector) {
    if (selector != selector_) {
      key_.Put(selector < selector_ ? kSelectorBelow : kSelectorAbove);
      key_.Put(selector);
      selector_ = selector;
    }
    if (selector >= kPlainOrderSelector)
      PutPlain(GetCompareFromOrder(order, selector) >> 8 & 0xFFFF);
    else
      PutAlphabetic(order);
  }

 private:
  void PutPlain(unsigned base) {
    if (base < kPlainInTwo)
      key_.Put(kFirstPlain + (base >> 8));
    else
      key_.Put(kHighPlain), key_.Put(base >> 8);
    key_.Put(base & 0xFF);
  }
  void PutAlphabetic(unsigned order) {
    if (order >= kFirstHanOrder) {
      key_.Put(kOtherBase);
      key_.Put16(order);
    } else if (order >= kFirstLetterOrder) {
      key_.Put(kFirstBase + (order & 0x7F));
    } else {
      const unsigned digit = (order - kFirstDigitOrder) / 10;
      const unsigned expansion = (order - kFirstDigitOrder) % 10;
      key_.Put(kFirstDigit + 2 * digit + (expansion != 0));
      if (expansion != 0) key_.Put(expansion);
    }
  }

  NxKeyWriter& key_;
  unsigned char selector_ = kHomeSelector;
};

/// The distance to the next entry, of a level that is read from the right.
void PutDistance(NxKeyWriter& key, unsigned long distance) {
  for (; distance >= kDistances; distance -= kDistances) key.Put(kFarther);
  key.Put(0xFF - distance);
}

/// Reads a text and writes its key: the base letters while it reads, the other levels from
/// what it notes of them.
class TextKey {
 public:
  explicit TextKey(NxKeyWriter& key) : key_(key), letters_(key) {}

  bool Read(NxStringIterator it) {
    while (const unsigned short order = it.GetNextOrder(1))
      if (!Take(order, it._nCollation)) return false;
    return CloseGap();
  }
  void WriteLesserLevels() {
    WriteAccents();
    WriteCase();
  }

 private:
  struct Entry {
    unsigned long place;  // significant characters before it
    unsigned char value;
  };
  /// The spaces and symbols before a significant character.
  struct Gap {
    unsigned long place;
    unsigned long begin, end;  // in ignorables_
  };

  bool Take(unsigned short order, unsigned char selector) {
    if (NxLevels::IsIgnorable(order, selector)) return ignorables_.Add(order);
    if (!CloseGap()) return false;
    letters_.Put(order, selector);
    const unsigned key = GetCompareFromOrder(order, selector);
    const bool isLetter = NxIsLetterOrder(order) && selector != kPlainOrderSelector;
    const auto accent = static_cast<unsigned char>(key & NxLevels::kAccentBits);
    const auto letterCase = static_cast<unsigned char>((key & NxLevels::kCaseBits) >> 5);
    if (accent != 0 && !accents_.Add({count_, accent})) return false;
    if (isLetter && letterCase != kSmallCase && !cases_.Add({count_, letterCase})) return false;
    ++count_;
    return true;
  }

  bool CloseGap() {
    const unsigned long begin = gaps_.Size() ? gaps_[gaps_.Size() - 1].end : 0;
    return begin == ignorables_.Size() || gaps_.Add({count_, begin, ignorables_.Size()});
  }

  void WriteAccents() {
    if (accents_.Size() == 0) return;
    key_.Put(kAccents);
    unsigned long end = count_;
    for (unsigned long i = accents_.Size(); i-- > 0;) {
      PutDistance(key_, end - 1 - accents_[i].place);
      key_.Put(accents_[i].value);
      end = accents_[i].place;
    }
  }

  void WriteCase() {
    if (cases_.Size() == 0) {
      if (gaps_.Size() > 0) key_.Put(kIgnorables);
      WriteIgnorables();
      return;
    }
    key_.Put(cases_[0].value > kSmallCase ? kLowCase : kHighCase);
    unsigned long begin = 0;
    for (unsigned long i = 0; i < cases_.Size(); ++i) {
      PutCase(cases_[i].place - begin, cases_[i].value);
      begin = cases_[i].place + 1;
    }
    key_.Put(gaps_.Size() > 0 ? kCaseIgnorables : kCaseEnd);
    if (gaps_.Size() > 0) WriteIgnorables();
  }

  void PutCase(unsigned long distance, unsigned value) {
    const bool low = value > kSmallCase;
    for (; distance >= kCaseDistances; distance -= kCaseDistances) key_.Put(low ? kLowFarther : kHighFarther);
    key_.Put(low ? kFirstLow + distance : 0xFF - distance);
    if (low) key_.Put(4 - value);
  }

  void WriteIgnorables() {
    unsigned long end = count_ + 1;
    for (unsigned long i = gaps_.Size(); i-- > 0;) {
      PutDistance(key_, end - 1 - gaps_[i].place);
      PutGap(gaps_[i]);
      end = gaps_[i].place;
    }
    key_.Put(kEnd);
  }

  /// A row is compared from its end, and goes on there as long as the other one with its last
  /// character: so runs of one character at the end are equal whatever their length.
  void PutGap(const Gap& gap) {
    const unsigned short last = ignorables_[gap.end - 1];
    unsigned long end = gap.end - 1;
    while (end > gap.begin && ignorables_[end - 1] == last) --end;
    key_.Put16(last);
    const unsigned long before = end - gap.begin;
    const bool above = before > 0 && ignorables_[end - 1] > last;
    if (before <= kShortRow) {
      key_.Put(static_cast<unsigned>(above ? kNoneBefore + before : kNoneBefore - before));
    } else {
      key_.Put(above ? 0xFF : 0x01);
      key_.Put16(static_cast<unsigned>(above ? before : ~before));
    }
    while (end > gap.begin) key_.Put16(ignorables_[--end]);
  }

  NxKeyWriter& key_;
  BaseLetterWriter letters_;
  unsigned long count_ = 0;  // significant characters
  NxGrowList<Entry, 32> accents_;
  NxGrowList<Entry, 32> cases_;
  NxGrowList<Gap, 16> gaps_;
  NxGrowList<unsigned short, 32> ignorables_;
};

/// A text without code set is compared byte by byte.
void WritePlainBytes(const char* text, NxKeyWriter& key) {
  constexpr unsigned kTextEnd = 0x01;
  constexpr unsigned kEscape = 0x02;  // and the byte, for bytes up to this one
  key.Put(kPlainBytes);
  for (; *text; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    if (byte <= kEscape) key.Put(kEscape);
    key.Put(byte);
  }
  key.Put(kTextEnd);
}

NxStringIterator Open(const NxKeyText& text) {
  return {text.text ? text.text : zeroString, text.codeSet, text.language, text.byteOrder};
}

}  // namespace

bool NxWriteTextKey(const NxKeyText& text, NxKeyWriter& key) {
  if (NxIsNullText(text.codeSet, text.language)) {
    key.Put(kNullKey);
    return true;
  }
  if (text.codeSet == kCodeSetNone) {
    WritePlainBytes(text.text ? text.text : "", key);
    return true;
  }
  const NxOrderTable* table = NxOrderTable::FindBuilt(text.codeSet, text.language);
  if (!table && text.codeSet < NxOrderTable::kCodeSets)
    table = NxOrderTable::Find(text.codeSet, text.language);
  if (table && text.text && NxPutPlainKey(*table, text.text, key)) return true;
  return NxWriteTextKeyByLevels(text, key);
}

bool NxWriteTextKeyByLevels(const NxKeyText& text, NxKeyWriter& key) {
  TextKey levels(key);
  if (!levels.Read(Open(text))) return false;
  levels.WriteLesserLevels();
  return true;
}

bool NxWriteTextKeyPrefix(const NxKeyText& term, bool wildcards, NxKeyWriter& key) {
  const unsigned short asterisk = NxString::GetAsterisk();
  const unsigned short question = NxString::GetQuestion();
  BaseLetterWriter letters(key);
  NxStringIterator it = Open(term);
  while (const unsigned short order = it.GetNextOrder(1)) {
    if (wildcards && (order == asterisk || order == question)) return true;
    if (!NxLevels::IsIgnorable(order, it._nCollation)) letters.Put(order, it._nCollation);
  }
  return false;
}
