// NxStrCmp, the short way: texts of characters that each have one order value are
// compared over a table of compare keys, and a pattern behind a star is searched in
// place. Whatever else comes up is left to the level comparison, round by round.

#include <atomic>
#include <cstring>

#include "collation/nxstrcmp.h"
#include "nxstring.h"
#include "ord2str.h"
#include "strwild.h"
#include "text/nxchartext.h"

// ---------------------------------------------------------------------------
// Tables

namespace {

const NxCharInfo* RecordOf(unsigned short value, unsigned char codeSet, unsigned char language) {
  const NxCharTable* records = NxLanguageContext::QueryCodeSet(codeSet)->CharTable();
  const NxCharInfo* info = records ? records->Find(value) : nullptr;
  if (!info || !info->variants) return info;
  const NxLanguage* known = NxLanguageContext::QueryLanguage(language);
  const NxCharInfo* variant = known && known->hasVariants ? info->variants->Find(known->number) : nullptr;
  return variant ? variant : info;
}

/// Whether a character with an expansion is all digits and letters.
bool OnlyLetters(unsigned short order, const NxWCharList* expansion) {
  if (order < kFirstDigitOrder || !expansion) return false;
  for (short i = 0; i < expansion->Count(); ++i)
    if (expansion->At(i) < kFirstDigitOrder) return false;
  return true;
}

}  // namespace

NxOrderTable NxOrderTable::tables_[kLanguages][kRows];
std::atomic<bool> NxOrderTable::taken_[kLanguages][kRows];
std::atomic<const NxOrderTable*> NxOrderTable::built_[256][kCodeSets];
std::atomic<const NxOrderTable*> NxOrderTable::builtUnicode_[kLanguages];

const NxOrderTable* NxOrderTable::Find(unsigned char codeSet, unsigned char language) {
  if (language == kLanguageDefault) language = NxLanguageContext::GetDefaultLanguage();
  const bool wide = codeSet == kCodeSetUnicode;
  if (!wide && (codeSet == kCodeSetNone || codeSet >= kCodeSets)) return nullptr;
  if (language >= kLanguages) return nullptr;
  std::atomic<const NxOrderTable*>& built = wide ? builtUnicode_[language] : built_[language][codeSet];
  if (const NxOrderTable* table = built.load(std::memory_order_acquire)) return table;
  // Comparing takes no lock: of several threads one builds, the others do without.
  const unsigned row = wide ? kCodeSets : codeSet;
  if (taken_[language][row].exchange(true)) return nullptr;
  NxOrderTable& table = tables_[language][row];
  table.Build(codeSet, language);
  built.store(&table, std::memory_order_release);
  return &table;
}

void NxOrderTable::Build(unsigned char codeSet, unsigned char language) {
  entries[0] = {0, 0, 0, false};
  for (unsigned value = 1; value < 256; ++value) {
    const unsigned short text[2] = {static_cast<unsigned short>(value), 0};
    NxStringIterator it(reinterpret_cast<const char*>(text), codeSet, language, kFormatNative);
    const unsigned short order = it.GetNextOrder(1);
    const unsigned char selector = it._nCollation;
    const NxCharInfo* record = RecordOf(static_cast<unsigned short>(value), codeSet, language);
    Entry& entry = entries[value];
    entry = {NxCompareKey(order, selector), order, selector, false};
    records[value] = nullptr;
    if (!record || record->followers || record->expansion || (entry.key & kMarks) != 0) {
      if ((entry.key & kMarks) == 0) records[value] = record;
      entry.key |= kMarks;
      entry.order = 0;
      entry.equalPass = record && !record->followers && OnlyLetters(order, record->expansion);
    } else if (order >= kFirstDigitOrder && selector < kPlainOrderSelector) {
      entry.equalPass = true;
    } else {
      entry.key |= kNotPlain;
    }
  }
}

// ---------------------------------------------------------------------------
// Characters

namespace {

/// Stands for every character that a table does not hold.
constexpr NxOrderTable::Entry kOutsideTable = {NxOrderTable::kMarks, 0, 0, false};

template <class Unit>
const NxOrderTable::Entry& EntryAt(const NxOrderTable& table, const char* p) {
  const unsigned value = NxUnitAt<Unit>(p);
  return sizeof(Unit) == 1 || value < 256 ? table.entries[value] : kOutsideTable;
}

/// The record of a character that needs the iterator, unless what follows it makes a
/// contraction; else null.
template <class Unit>
const NxCharInfo* RecordAlone(const NxOrderTable& table, const char* p) {
  const unsigned value = NxUnitAt<Unit>(p);
  const NxCharInfo* record = sizeof(Unit) == 1 || value < 256 ? table.records[value] : nullptr;
  if (!record || !record->followers) return record;
  const unsigned next = NxUnitAt<Unit>(p + sizeof(Unit));
  return record->followers->Find(static_cast<unsigned short>(next)) ? nullptr : record;
}

// Places in a text, as a pattern is matched with it. Key has the mark kNeedsIterator
// where the place cannot be read, and is 0 at the end.

/// Takes the characters that have one order value.
template <class Unit>
struct SimpleCursor {
  const char* p;

  unsigned Key(const NxOrderTable& table) const { return EntryAt<Unit>(table, p).key; }
  unsigned short Order(const NxOrderTable& table) const { return EntryAt<Unit>(table, p).order; }
  void Next(const NxOrderTable& /*table*/) { p += sizeof(Unit); }
};

/// Takes expansions, too, one order value after the other.
template <class Unit>
struct ExpandingCursor {
  const char* p;
  short index = 0;  // of the order value at p

  unsigned Key(const NxOrderTable& table) const {
    const NxOrderTable::Entry& entry = EntryAt<Unit>(table, p);
    if (!(entry.key & NxOrderTable::kNeedsIterator)) return entry.key;
    const NxCharInfo* record = RecordAlone<Unit>(table, p);
    if (!record) return NxOrderTable::kMarks;
    if (index == 0) return entry.key & ~NxOrderTable::kMarks;
    return NxCompareKey(record->expansion->At(static_cast<short>(index - 1)), entry.selector);
  }
  unsigned short Order(const NxOrderTable& table) const {
    const NxCharInfo* record = RecordAlone<Unit>(table, p);
    if (!record) return EntryAt<Unit>(table, p).order;
    return index == 0 ? record->order : record->expansion->At(static_cast<short>(index - 1));
  }
  void Next(const NxOrderTable& table) {
    const NxCharInfo* record = RecordAlone<Unit>(table, p);
    if (record && record->expansion && index < record->expansion->Count()) {
      ++index;
    } else {
      p += sizeof(Unit);
      index = 0;
    }
  }
};

}  // namespace

// ---------------------------------------------------------------------------
// Patterns

namespace {

enum class Match {
  kMatches,   //
  kDiffers,   // the result is the search's
  kUnsuited,  // there are characters that the cursors cannot read
  kNextStar,  // a part of the pattern matches up to its next star
  kNotHere    // it does not match at this place
};

/// Matches a text against a pattern from a star on. Every part of the pattern between
/// two stars is taken where it occurs first.
template <class Cursor>
class PatternSearch {
 public:
  PatternSearch(const NxOrderTable& tableA, const NxOrderTable& tableB, unsigned mask,
                unsigned short asterisk, unsigned short question)
      : tableA_(tableA), tableB_(tableB), mask_(mask), asterisk_(asterisk), question_(question) {}

  /// `pattern` stands on the star.
  Match Run(Cursor text, Cursor pattern) {
    Match match = Match::kNextStar;
    while (match == Match::kNextStar) {
      do {
        pattern.Next(tableB_);
      } while (pattern.Order(tableB_) == asterisk_);
      if (pattern.Key(tableB_) == 0) return Match::kMatches;
      match = FindPart(text, pattern);
    }
    return match;
  }

  int result = 0;

 private:
  Match FindPart(Cursor& text, Cursor& part);
  Match MatchHere(Cursor& text, Cursor& part);

  const NxOrderTable& tableA_;
  const NxOrderTable& tableB_;
  const unsigned mask_;  // what counts of a key
  const unsigned short asterisk_;
  const unsigned short question_;
};

/// Takes both cursors behind the part that begins at `part`.
template <class Cursor>
Match PatternSearch<Cursor>::FindPart(Cursor& text, Cursor& part) {
  const unsigned wanted = part.Key(tableB_);
  const unsigned mask = part.Order(tableB_) == question_ ? 0 : mask_;
  for (Cursor begin = text;; begin.Next(tableA_)) {
    unsigned key;
    while (key = begin.Key(tableA_),
           ((key ^ wanted) & mask) != 0 && key != 0 && !(key & NxOrderTable::kNeedsIterator))
      begin.Next(tableA_);
    text = begin;
    Cursor pattern = part;
    const Match match = MatchHere(text, pattern);
    if (match == Match::kNotHere) continue;
    part = pattern;
    return match;
  }
}

template <class Cursor>
Match PatternSearch<Cursor>::MatchHere(Cursor& text, Cursor& part) {
  for (;; text.Next(tableA_), part.Next(tableB_)) {
    const unsigned k0 = text.Key(tableA_);
    const unsigned k1 = part.Key(tableB_);
    if ((k0 | k1) & NxOrderTable::kNeedsIterator) return Match::kUnsuited;
    const unsigned short order = part.Order(tableB_);
    if (order == asterisk_) return Match::kNextStar;
    if (k0 == 0) {
      if (k1 == 0) return Match::kMatches;
      // This is the earliest place from which the text goes along with the pattern.
      result = order == question_ ? -1 : NxPrimaryDifference(0, k1 & ~NxOrderTable::kMarks);
      return Match::kDiffers;
    }
    if (order != question_ && ((k0 ^ k1) & mask_) != 0) return Match::kNotHere;
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// Walk

namespace {

/// One comparison of two texts whose characters are Units.
template <class Unit>
class PlainWalk {
 public:
  PlainWalk(const NxComparedText& a, const NxComparedText& b, const NxOrderTable& tableA,
            const NxOrderTable& tableB, unsigned equal, unsigned short op, short len)
      : a_(a),
        b_(b),
        tableA_(tableA),
        tableB_(tableB),
        op_(op),
        len_(len),
        wildcards_((op & kWildcardsOff) == 0),
        asterisk_(NxString::_nAsterisk ? NxString::_nAsterisk : NxString::GetAsterisk()),
        question_(NxString::_nQuestion ? NxString::_nQuestion : NxString::GetQuestion()),
        p_(a.text + equal * kUnitSize),
        q_(b.text + equal * kUnitSize),
        left_((len == -1 ? ProcessCharInfo::kNoLimit : static_cast<unsigned short>(len)) - equal) {}

  int Compare(unsigned char byteOrder, int* outPos) {
    return Walk() ? result_ : CompareLevels(byteOrder, outPos);
  }

 private:
  using Entry = NxOrderTable::Entry;
  static constexpr unsigned kUnitSize = sizeof(Unit);

  enum Finding {
    kGoOn,     // the pair is dealt with
    kEnded,    // result_ is the comparison's
    kUnsuited  // the level comparison must go on from here
  };

  static unsigned At(const char* p) { return NxUnitAt<Unit>(p); }
  static const Entry& EntryAt(const NxOrderTable& table, const char* p) { return ::EntryAt<Unit>(table, p); }
  /// Whether a character is plain where it stands, or the end.
  static bool IsPlain(const NxOrderTable& table, const char* p) {
    const Entry& entry = EntryAt(table, p);
    if (!(entry.key & NxOrderTable::kNotPlain)) return true;
    const NxCharInfo* record = RecordAlone<Unit>(table, p);
    return record && !record->expansion && record->order >= kFirstDigitOrder &&
           entry.selector < kPlainOrderSelector;
  }
  bool SkipsCharacters() const { return (op_ & (kSkipSpaces | kSkipSymbols)) != 0; }
  bool IsWildcard(const Entry& entry) const {
    return wildcards_ && entry.order != 0 && (entry.order == asterisk_ || entry.order == question_);
  }

  bool Walk();
  Finding PassPlain();
  Finding TakeSpecial();
  Finding TakeWildcard(const Entry& text, const Entry& pattern);
  bool PassEqualIgnorables();
  int Result() const;

  Finding MatchAfterStar();

  int CompareLevels(unsigned char byteOrder, int* outPos);

  const NxComparedText& a_;
  const NxComparedText& b_;
  const NxOrderTable& tableA_;
  const NxOrderTable& tableB_;
  const unsigned short op_;
  const short len_;
  const bool wildcards_;
  const unsigned short asterisk_;
  const unsigned short question_;

  const char* p_;  // where the walk stands in both texts
  const char* q_;
  unsigned left_;  // characters still to be compared
  NxLesserLevels levels_;
  int ignorable_ = 0;
  int result_ = 0;
};

/// Walks on to the end, or to what only the level comparison can compare (false).
template <class Unit>
bool PlainWalk<Unit>::Walk() {
  for (;;) {
    Finding finding = PassPlain();
    if (finding == kGoOn) finding = TakeSpecial();
    if (finding != kGoOn) return finding == kEnded;
    p_ += kUnitSize;
    q_ += kUnitSize;
    --left_;
  }
}

/// Walks over plain characters to the end or to another character (kGoOn).
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::PassPlain() {
  const char* p = p_;
  const char* q = q_;
  unsigned left = left_;
  for (; left != 0; --left, p += kUnitSize, q += kUnitSize) {
    const unsigned k0 = EntryAt(tableA_, p).key;
    const unsigned k1 = EntryAt(tableB_, q).key;
    if ((k0 | k1) & NxOrderTable::kNotPlain) {
      p_ = p;
      q_ = q;
      left_ = left;
      return kGoOn;
    }
    result_ = NxPrimaryDifference(k0, k1);
    if (result_ != 0) return kEnded;
    if (k0 == 0) break;
    if (k0 != k1) levels_.Note(k0, k1);
  }
  result_ = Result();
  return kEnded;
}

template <class Unit>
int PlainWalk<Unit>::Result() const {
  const int result = levels_.Result(op_);
  return result != 0 ? result : ignorable_;
}

/// A pair with a wildcard in it, a space or symbol, or what may need the iterator.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::TakeSpecial() {
  const Entry& e0 = EntryAt(tableA_, p_);
  const Entry& e1 = EntryAt(tableB_, q_);
  if (IsWildcard(e1)) return TakeWildcard(e0, e1);
  if (!IsPlain(tableA_, p_) || !IsPlain(tableB_, q_)) return PassEqualIgnorables() ? kGoOn : kUnsuited;
  const unsigned k0 = e0.key & ~NxOrderTable::kMarks;
  const unsigned k1 = e1.key & ~NxOrderTable::kMarks;
  result_ = NxPrimaryDifference(k0, k1);
  if (result_ != 0) return kEnded;
  levels_.Note(k0, k1);
  return kGoOn;
}

template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::TakeWildcard(const Entry& text, const Entry& pattern) {
  if (SkipsCharacters()) return kUnsuited;
  if (pattern.order == asterisk_) return MatchAfterStar();
  if (At(p_) == 0) {
    result_ = -1;
    return kEnded;
  }
  return text.key & NxOrderTable::kNeedsIterator ? kUnsuited : kGoOn;
}

/// Equal spaces and symbols on both sides differ in nothing, provided that what
/// follows them begins a new pair. Leaves the walk on the last of them.
template <class Unit>
bool PlainWalk<Unit>::PassEqualIgnorables() {
  for (unsigned n = 0; n < left_; ++n) {
    const Entry& e0 = EntryAt(tableA_, p_ + n * kUnitSize);
    const Entry& e1 = EntryAt(tableB_, q_ + n * kUnitSize);
    const bool begins0 = IsPlain(tableA_, p_ + n * kUnitSize);
    const bool begins1 = IsPlain(tableB_, q_ + n * kUnitSize);
    if (n > 0 && ((begins0 && begins1) || (IsWildcard(e1) && !SkipsCharacters()))) {
      p_ += (n - 1) * kUnitSize;
      q_ += (n - 1) * kUnitSize;
      left_ -= n - 1;
      return true;
    }
    if (begins0 || begins1 || e0.order != e1.order || IsWildcard(e1)) return false;
    if (((e0.key | e1.key) & NxOrderTable::kNeedsIterator) || e0.selector >= kPlainOrderSelector ||
        e1.selector >= kPlainOrderSelector)
      return false;
  }
  return false;
}

/// Matches the text from p_ on against the pattern from the star at q_ on.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::MatchAfterStar() {
  if (len_ != -1) return kUnsuited;
  // A difference before the star makes every character after it a mismatch.
  if (levels_.Result(op_) != 0) return kUnsuited;
  const auto matches = [this](auto cursor) {
    const unsigned mask = NxWildcardKeyMask(op_) & ~NxOrderTable::kMarks;
    PatternSearch<decltype(cursor)> search(tableA_, tableB_, mask, asterisk_, question_);
    const Match match = search.Run({p_}, {q_});
    result_ = match == Match::kMatches ? Result() : search.result;
    return match != Match::kUnsuited;
  };
  return matches(SimpleCursor<Unit>()) || matches(ExpandingCursor<Unit>()) ? kEnded : kUnsuited;
}

// ---------------------------------------------------------------------------
// Handing over

/// Lets the level comparison take the pairs that the walk cannot, and walks on behind
/// them where the texts allow.
template <class Unit>
int PlainWalk<Unit>::CompareLevels(unsigned char byteOrder, int* outPos) {
  NxOrderReader first(p_, a_.codeSet, a_.language, byteOrder, &tableA_);
  NxOrderReader second(q_, b_.codeSet, b_.language, byteOrder, &tableB_);
  ProcessCharInfo levels(first, second, op_, len_, outPos);
  const unsigned walked = static_cast<unsigned>(p_ - a_.text) / kUnitSize;
  levels.first.count = levels.second.count = walked;
  for (;;) {
    levels.accent = levels_.accent;
    levels.letterCase = levels_.letterCase;
    if (levels.Round()) return levels.Result();
    NxStringIterator& it0 = levels.first.reader.it;
    NxStringIterator& it1 = levels.second.reader.it;
    if (len_ != -1 || levels.IsStarPending()) return levels.Run();
    levels_.accent = levels.accent;
    levels_.letterCase = levels.letterCase;
    ignorable_ = levels.ignorable;
    if (it0._pOverflow || it1._pOverflow) continue;
    p_ = it0._pPos;
    q_ = it1._pPos;
    if (Walk()) return result_;
    if (p_ == it0._pPos) continue;
    it0._pPos = const_cast<char*>(p_);
    it1._pPos = const_cast<char*>(q_);
    // The selectors as the characters walked over leave them.
    it0._nCollation = EntryAt(tableA_, p_ - kUnitSize).selector;
    it1._nCollation = EntryAt(tableB_, q_ - kUnitSize).selector;
  }
}

}  // namespace

bool NxComparePlain(const NxComparedText& a, const NxComparedText& b, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos, int& result) {
  const NxOrderTable* const tableA = NxOrderTable::Find(a.codeSet, a.language);
  const NxOrderTable* const tableB = NxOrderTable::Find(b.codeSet, b.language);
  const unsigned width = NxCharWidth(a.codeSet);
  if (!tableA || !tableB || width != NxCharWidth(b.codeSet)) return false;
  if (outPos && len >= 0 && (op & kSkipSpaces)) return false;  // every round is to be reported
  if (!(op & kWildcardsOff) && !NxOrderTable::WildcardsAreSymbols()) return false;
  if (width == 1) {
    result = PlainWalk<unsigned char>(a, b, *tableA, *tableB, 0, op, len).Compare(byteOrder, outPos);
  } else {
    if ((StatedByteOrder(byteOrder) & kFormatCodeMask) == kFormatBigEndian) return false;
    result = PlainWalk<unsigned short>(a, b, *tableA, *tableB, 0, op, len).Compare(byteOrder, outPos);
  }
  return true;
}

[[gnu::noinline, gnu::regparm(3)]] unsigned NxEqualBytes(const NxOrderTable& table, const char* a,
                                                         const char* b) {
  unsigned i = 0;
  for (;; i += 2) {
    if (a[i] != b[i] || !table.EntryOf(a[i]).equalPass) return i;
    if (a[i + 1] != b[i + 1] || !table.EntryOf(a[i + 1]).equalPass) return i + 1;
  }
}

bool NxComparePlainBytes(const NxOrderTable& table, const char* a, const char* b, unsigned equal,
                         unsigned short op, int& result) {
  NxLesserLevels levels;
  for (unsigned i = equal;; ++i) {
    while (a[i] == b[i] && table.EntryOf(a[i]).equalPass) ++i;
    const unsigned k0 = table.EntryOf(a[i]).key;
    const unsigned k1 = table.EntryOf(b[i]).key;
    if ((k0 | k1) & NxOrderTable::kNotPlain) return false;
    result = NxPrimaryDifference(k0, k1);
    if (result != 0) return true;
    if (k0 == 0) {  // both texts end
      result = levels.Result(op);
      return true;
    }
    levels.Note(k0, k1);
  }
}

__attribute__((noinline)) int NxWalkBytes(const NxOrderTable& table, unsigned char codeSet,
                                          unsigned char language, const char* a, const char* b,
                                          unsigned equal, unsigned short op, unsigned char byteOrder,
                                          int* outPos) {
  const NxComparedText textA = {codeSet, language, a};
  const NxComparedText textB = {codeSet, language, b};
  return PlainWalk<unsigned char>(textA, textB, table, table, equal, op, -1).Compare(byteOrder, outPos);
}

int NxStrCmp(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2, unsigned char lang2,
             const char* s2, unsigned short op, short len, unsigned char byteOrder, int* outPos) {
  // Most texts are of one code set and language and hold nothing but digits and letters.
  constexpr unsigned kNoTable = ~(NxOrderTable::kCodeSets - 1);
  const unsigned unlike = (cs1 ^ cs2) | (lang1 ^ lang2) | static_cast<unsigned short>(len + 1) |
                          (op & kOrderValuesOnly) | (cs1 & kNoTable);
  if (unlike == 0 && s1 && s2 && NxOrderTable::WildcardsAreSymbols()) {
    if (const NxOrderTable* table = NxOrderTable::FindBuilt(cs1, lang1)) {
      return NxCompareAlike(*table, cs1, lang1, s1, s2, op, byteOrder, outPos);
    }
  }
  return NxStrCmpAny(cs1, lang1, s1, cs2, lang2, s2, op, len, byteOrder, outPos);
}
