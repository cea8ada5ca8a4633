#include "collation/nxtextkey.h"

#include <algorithm>

#include "base/nxgrowlist.h"
#include "collation/nxlevels.h"
#include "collation/nxordertable.h"
#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "ord2str.h"
#include "text/nxchartext.h"

namespace {

// Bytes of a key. Do not change: indexes keep them.

constexpr unsigned kNullKey = 0x00;  // the whole key of a null value

// Behind the base letters, and behind the accents: what comes next.
constexpr unsigned kLowCase = 0x01;     // case, first a letter lower than small
constexpr unsigned kEnd = 0x02;         // nothing: the end of the key
constexpr unsigned kIgnorables = 0x03;  // spaces and symbols
constexpr unsigned kHighCase = 0x04;    // case, first a capital
constexpr unsigned kAccents = 0x05;     // accents; behind the base letters only

// Base letters. Each is of the selector that was named last, 1 in the beginning.
constexpr unsigned kSelectorBelow = 0x06;  // and the selector
constexpr unsigned kPlainBytes = 0x07;     // first byte of the key of a text without code set
constexpr unsigned kFirstDigit = 0x08;     // two bytes for each value: plain, and with an expansion
constexpr unsigned kFirstBase = 0x3C;      // letter and extension
constexpr unsigned kOtherBase = 0xBC;      // and 16 bits
constexpr unsigned kSelectorAbove = 0xBD;  // and the selector
// In plain order (selectors from 20 on) a base letter is any 16 bits.
constexpr unsigned kFirstPlain = 0x08;  // and the high byte; then the low byte
constexpr unsigned kPlainInTwo = 0xB000;
constexpr unsigned kHighPlain = 0xB8;  // and 16 bits

// Distances between the entries of a level that is read from the right: the farther away the
// next one, the lower the byte.
constexpr unsigned kFarther = 0x06;
constexpr unsigned long kDistances = 0xFF - kFarther;

// Entries of case: the distance of a low one counts up, that of a high one down; between them
// lies what follows the last entry.
constexpr unsigned kFirstLow = 0x02;
constexpr unsigned kLowFarther = 0x7F;
constexpr unsigned kCaseEnd = 0x80;
constexpr unsigned kCaseIgnorables = 0x81;
constexpr unsigned kHighFarther = 0x82;
constexpr unsigned long kCaseDistances = kLowFarther - kFirstLow;

// Where spaces and symbols stand in a row: how often they end in the same one, and to which
// side the one before those differs.
constexpr unsigned kNoneBefore = 0x80;
constexpr unsigned long kShortRow = 0x7D;

constexpr unsigned char kHomeSelector = 1;
constexpr unsigned kSmallCase = 1;  // of an order value; 0 is a capital, 2 and 3 are lower still

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

/// The key of a short 8-bit text of plain letters and digits of the first selector, which
/// most words are. It is what TextKey writes, put where it belongs.
class PlainTextKey {
 public:
  /// False, with the writer as it was, for another text or where the key might not fit.
  static bool Write(const NxOrderTable& table, const char* text, NxKeyWriter& key) {
    constexpr unsigned kAround = 4;  // three bytes between the levels, and a letter that is no longer read
    const unsigned long room = key.Room();
    if (room < kAround) return false;
    PlainTextKey plain(key.Place());
    if (!plain.ReadBaseLetters(table, text, std::min((room - kAround) / kBytesOfLetter, kLongest)))
      return false;
    plain.WriteAccents();
    plain.WriteCase();
    key.TakeUpTo(plain.end_);
    return true;
  }

 private:
  static constexpr unsigned long kBytesOfLetter = 4;  // itself, an accent of two bytes, case
  static constexpr unsigned long kLongest = 100;      // no distance then needs more than its byte

  explicit PlainTextKey(unsigned char* key) : begin_(key) {}

  bool ReadBaseLetters(const NxOrderTable& table, const char* text, unsigned long longest) {
    unsigned length = 0;
    unsigned marked = 0;
    unsigned all = 0;
    for (;; ++length) {
      const NxOrderTable::SortBytes& sort = table.sortBytes[static_cast<unsigned char>(text[length])];
      if (sort.letter == 0) break;
      if (length == longest) return false;
      begin_[length] = sort.letter;
      marks_[marked] = {static_cast<unsigned char>(length), sort.mark};
      marked += sort.mark != 0;
      all |= sort.mark;
    }
    length_ = length;
    marked_ = marked;
    all_ = all;
    end_ = begin_ + length;
    return text[length] == 0;
  }
  void WriteAccents() {
    if (!(all_ & kSortAccent)) return;
    *end_++ = kAccents;
    unsigned end = length_;
    for (unsigned i = marked_; i-- > 0;) {
      const Mark mark = marks_[i];
      if (!(mark.value & kSortAccent)) continue;
      *end_++ = static_cast<unsigned char>(0xFF - (end - 1 - mark.place));
      *end_++ = mark.value & kSortAccent;
      end = mark.place;
    }
  }
  void WriteCase() {
    if (!(all_ & kSortCapital)) {
      *end_++ = kEnd;
      return;
    }
    *end_++ = kHighCase;
    unsigned begin = 0;
    for (unsigned i = 0; i < marked_; ++i) {
      const Mark mark = marks_[i];
      if (!(mark.value & kSortCapital)) continue;
      *end_++ = static_cast<unsigned char>(0xFF - (mark.place - begin));
      begin = mark.place + 1U;
    }
    *end_++ = kCaseEnd;
  }

  struct Mark {
    unsigned char place;
    unsigned char value;
  };

  unsigned char* const begin_;
  unsigned char* end_ = nullptr;
  unsigned length_ = 0;
  unsigned marked_ = 0;  // letters with an accent, or capitals
  unsigned all_ = 0;     // marks of all of them
  Mark marks_[kLongest + 1];
};

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
  const NxOrderTable* const table =
      text.codeSet < NxOrderTable::kCodeSets ? NxOrderTable::Find(text.codeSet, text.language) : nullptr;
  if (table && text.text && PlainTextKey::Write(*table, text.text, key)) return true;
  return NxWriteTextKeyByLevels(text, key);
}

NxOrderTable::SortBytes NxSortBytesOf(unsigned short order, unsigned char selector) {
  if (selector != kHomeSelector || order < kFirstDigitOrder || order >= kFirstHanOrder) return {0, 0};
  if (order < kFirstLetterOrder) {
    const unsigned digit = order - kFirstDigitOrder;
    return {static_cast<unsigned char>(digit % 10 == 0 ? kFirstDigit + digit / 5 : 0), 0};
  }
  const unsigned letterCase = order >> 12 & 3;
  if (letterCase > kSmallCase) return {0, 0};
  return {static_cast<unsigned char>(kFirstBase + (order & 0x7F)),
          static_cast<unsigned char>((order >> 7 & kSortAccent) | (letterCase == 0 ? kSortCapital : 0))};
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
