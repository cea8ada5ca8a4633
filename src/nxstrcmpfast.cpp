// The plain walk: texts of characters that each have one order value are compared
// over a table of compare keys, and a pattern behind a star is searched in place.
// Whatever else comes up is left to the level comparison, round by round.

#include <atomic>
#include <cstring>

#include "nxchartext.h"
#include "nxstrcmp.h"
#include "nxstring.h"
#include "ord2str.h"

// ---------------------------------------------------------------------------
// Tables

namespace {

constexpr unsigned kTableCodeSets = 8;  // 8-bit code sets 1 to 6; the last is Unicode
constexpr unsigned kTableLanguages = 16;
constexpr unsigned kUnicodeTable = kTableCodeSets - 1;

enum TableState : unsigned char { kNotBuilt, kBeingBuilt, kBuilt };

NxOrderTable tables[kTableCodeSets][kTableLanguages];
std::atomic<TableState> tableStates[kTableCodeSets][kTableLanguages];

const NxCharInfo* RecordOf(unsigned short value, unsigned char codeSet, unsigned char language) {
  const NxCharTable* records = NxLanguageContext::QueryCodeSet(codeSet)->CharTable();
  const NxCharInfo* info = records ? records->Find(value) : nullptr;
  if (!info || !info->variants) return info;
  const NxLanguage* known = NxLanguageContext::QueryLanguage(language);
  const NxCharInfo* variant = known && known->hasVariants ? info->variants->Find(known->number) : nullptr;
  return variant ? variant : info;
}

}  // namespace

const NxOrderTable* NxOrderTable::Find(unsigned char codeSet, unsigned char language) {
  if (language == kLanguageDefault) language = NxLanguageContext::GetDefaultLanguage();
  const unsigned row = codeSet == kCodeSetUnicode ? kUnicodeTable : codeSet;
  const bool kept = codeSet != kCodeSetNone && (codeSet == kCodeSetUnicode || codeSet < kUnicodeTable);
  if (!kept || language >= kTableLanguages) return nullptr;
  std::atomic<TableState>& state = tableStates[row][language];
  NxOrderTable& table = tables[row][language];
  if (state.load(std::memory_order_acquire) == kBuilt) return &table;
  // Comparing needs no lock: of several threads one builds, the others do without.
  TableState expected = kNotBuilt;
  if (!state.compare_exchange_strong(expected, kBeingBuilt)) return nullptr;
  table.Build(codeSet, language);
  state.store(kBuilt, std::memory_order_release);
  return &table;
}

void NxOrderTable::Build(unsigned char codeSet, unsigned char language) {
  entries[0] = {kNotPlain | kNeedsIterator, 0, 0};
  for (unsigned value = 1; value < 256; ++value) {
    const unsigned short text[2] = {static_cast<unsigned short>(value), 0};
    NxStringIterator it(reinterpret_cast<const char*>(text), codeSet, language, kFormatNative);
    const unsigned short order = it.GetNextOrder(1);
    const unsigned char selector = it._nCollation;
    const NxCharInfo* record = RecordOf(static_cast<unsigned short>(value), codeSet, language);
    Entry& entry = entries[value];
    entry = {NxCompareKey(order, selector), order, selector};
    const bool alone = record && !record->followers && !record->expansion && !it._pOverflow;
    if (!alone || (entry.key & kMarks) != 0) {
      entry = {kNotPlain | kNeedsIterator, 0, selector};
    } else if (order < kFirstDigitOrder || selector >= kPlainOrderSelector) {
      entry.key |= kNotPlain;
    }
  }
}

// ---------------------------------------------------------------------------
// Walk

namespace {

/// Stands for every character that a table does not hold.
constexpr NxOrderTable::Entry kOutsideTable = {NxOrderTable::kMarks, 0, 0};

/// One comparison of two texts whose characters are Units.
template <class Unit>
class PlainWalk {
 public:
  PlainWalk(const NxComparedText& a, const NxComparedText& b, const NxOrderTable& tableA,
            const NxOrderTable& tableB, unsigned short op, short len)
      : a_(a),
        b_(b),
        tableA_(tableA),
        tableB_(tableB),
        op_(op),
        len_(len),
        wildcards_((op & kWildcardsOff) == 0),
        asterisk_(NxString::GetAsterisk()),
        question_(NxString::GetQuestion()),
        p_(a.text),
        q_(b.text),
        left_(len == -1 ? ProcessCharInfo::kNoLimit : static_cast<unsigned short>(len)) {}

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
  static const Entry& EntryAt(const NxOrderTable& table, const char* p) {
    const unsigned value = At(p);
    return kUnitSize == 1 || value < 256 ? table.entries[value] : kOutsideTable;
  }
  bool SkipsCharacters() const { return (op_ & (kSkipSpaces | kSkipSymbols)) != 0; }
  bool IsWildcard(const Entry& entry) const {
    return wildcards_ && entry.order != 0 && (entry.order == asterisk_ || entry.order == question_);
  }

  bool Walk();
  Finding TakeSpecial();
  Finding TakeWildcard(const Entry& text, const Entry& pattern);
  bool PassEqualIgnorables();
  int Result() const;

  Finding MatchAfterStar();
  Finding FindPart(const char* part);
  Finding MatchPart(const char*& text, const char*& pattern);

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
  int accent_ = 0;
  int letterCase_ = 0;
  int ignorable_ = 0;
  int result_ = 0;
};

/// Walks on to the end, or to what only the level comparison can compare (false).
template <class Unit>
bool PlainWalk<Unit>::Walk() {
  for (; left_ != 0; --left_, p_ += kUnitSize, q_ += kUnitSize) {
    const unsigned k0 = EntryAt(tableA_, p_).key;
    const unsigned k1 = EntryAt(tableB_, q_).key;
    if ((k0 | k1) & NxOrderTable::kNotPlain) {
      const Finding finding = TakeSpecial();
      if (finding != kGoOn) return finding == kEnded;
    } else if (k0 != k1) {
      result_ = NxPrimaryDifference(k0, k1);
      if (result_ != 0) return true;
      if (letterCase_ == 0) letterCase_ = NxCaseDifference(k0, k1);
      if (const int difference = NxAccentDifference(k0, k1)) accent_ = difference;
    }
  }
  result_ = Result();
  return true;
}

template <class Unit>
int PlainWalk<Unit>::Result() const {
  if (accent_ != 0 && !(op_ & kIgnoreAccents)) return accent_;
  if (letterCase_ != 0 && !(op_ & kIgnoreCase)) return letterCase_;
  return ignorable_;
}

/// A pair with an end of text, a wildcard, a space or symbol in it.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::TakeSpecial() {
  const Entry& e0 = EntryAt(tableA_, p_);
  const Entry& e1 = EntryAt(tableB_, q_);
  if (IsWildcard(e1)) return TakeWildcard(e0, e1);
  const bool end0 = At(p_) == 0;
  const bool end1 = At(q_) == 0;
  if (end0 && end1) {
    result_ = Result();
    return kEnded;
  }
  if (end0 && !(e1.key & NxOrderTable::kNotPlain)) {
    result_ = NxPrimaryDifference(0, e1.key);
    return kEnded;
  }
  if (end1 && !(e0.key & NxOrderTable::kNotPlain)) {
    result_ = NxPrimaryDifference(e0.key, 0);
    return kEnded;
  }
  return PassEqualIgnorables() ? kGoOn : kUnsuited;
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
    const bool begins0 = !(e0.key & NxOrderTable::kNotPlain) || At(p_ + n * kUnitSize) == 0;
    const bool begins1 = !(e1.key & NxOrderTable::kNotPlain) || At(q_ + n * kUnitSize) == 0;
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

// ---------------------------------------------------------------------------
// Patterns

/// Matches the text from p_ on against the pattern from the star at q_ on. Every part
/// of the pattern between two stars is taken where it occurs first.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::MatchAfterStar() {
  if (len_ != -1) return kUnsuited;
  // A difference before the star makes every character after it a mismatch.
  if (accent_ != 0 && !(op_ & kIgnoreAccents)) return kUnsuited;
  if (letterCase_ != 0 && !(op_ & kIgnoreCase)) return kUnsuited;
  const char* const starText = p_;
  const char* const star = q_;
  Finding finding;
  do {
    do {
      q_ += kUnitSize;
    } while (EntryAt(tableB_, q_).order == asterisk_);
    if (At(q_) == 0) {
      result_ = Result();
      return kEnded;
    }
    finding = FindPart(q_);
  } while (finding == kGoOn);
  if (finding == kUnsuited) {
    p_ = starText;
    q_ = star;
  }
  return finding;
}

/// Finds the part of the pattern that begins at `part`; kGoOn leaves p_ behind it in
/// the text and q_ on the star that follows it.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::FindPart(const char* part) {
  const unsigned mask = NxWildcardKeyMask(op_) & ~NxOrderTable::kMarks;
  const Entry& first = EntryAt(tableB_, part);
  const unsigned wanted = first.key & mask;
  for (;; p_ += kUnitSize) {
    if (first.order != question_) {
      unsigned key;
      while (key = EntryAt(tableA_, p_).key, (key & mask) != wanted && !(key & NxOrderTable::kNeedsIterator))
        p_ += kUnitSize;
    }
    const char* text = p_;
    q_ = part;
    const Finding finding = MatchPart(text, q_);
    if (finding == kEnded || finding == kUnsuited) return finding;
    if (At(q_) != 0 && EntryAt(tableB_, q_).order == asterisk_) {
      p_ = text;
      return kGoOn;
    }
  }
}

/// Compares in lockstep; kGoOn leaves `pattern` on the star after a part that matches,
/// and elsewhere on a mismatch.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::MatchPart(const char*& text, const char*& pattern) {
  const unsigned mask = NxWildcardKeyMask(op_) & ~NxOrderTable::kMarks;
  for (;; text += kUnitSize, pattern += kUnitSize) {
    const bool textEnds = At(text) == 0;
    if (At(pattern) == 0) {
      if (!textEnds) return kGoOn;
      result_ = Result();
      return kEnded;
    }
    const Entry& e0 = EntryAt(tableA_, text);
    const Entry& e1 = EntryAt(tableB_, pattern);
    if (e1.key & NxOrderTable::kNeedsIterator) return kUnsuited;
    if (e1.order == asterisk_) return kGoOn;
    if (textEnds) {
      // This is the earliest place where the text goes along with the pattern.
      result_ = e1.order == question_ ? -1 : NxPrimaryDifference(0, e1.key & ~NxOrderTable::kMarks);
      return kEnded;
    }
    if (e0.key & NxOrderTable::kNeedsIterator) return kUnsuited;
    if (e1.order != question_ && ((e0.key ^ e1.key) & mask) != 0) return kGoOn;
  }
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
    levels.accent = accent_;
    levels.letterCase = letterCase_;
    if (levels.Round()) return levels.Result();
    NxStringIterator& it0 = levels.first.reader.it;
    NxStringIterator& it1 = levels.second.reader.it;
    if (len_ != -1 || levels.IsStarPending()) return levels.Run();
    accent_ = levels.accent;
    letterCase_ = levels.letterCase;
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
  const bool wildcardsAreSymbols =
      NxString::GetAsterisk() < kFirstDigitOrder && NxString::GetQuestion() < kFirstDigitOrder;
  if (!wildcardsAreSymbols && !(op & kWildcardsOff)) return false;
  if (width == 1) {
    result = PlainWalk<unsigned char>(a, b, *tableA, *tableB, op, len).Compare(byteOrder, outPos);
  } else {
    if ((StatedByteOrder(byteOrder) & kFormatCodeMask) == kFormatBigEndian) return false;
    result = PlainWalk<unsigned short>(a, b, *tableA, *tableB, op, len).Compare(byteOrder, outPos);
  }
  return true;
}
