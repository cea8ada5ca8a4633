// NxStrCmp, the short way: texts of characters that each have one order value are
// compared over a table of compare keys, and a pattern behind a star is searched in
// place. Whatever else comes up is left to the level comparison, round by round.

#include <atomic>
#include <cstring>

#include "nxchartext.h"
#include "nxstrcmp.h"
#include "nxstring.h"
#include "ord2str.h"
#include "strwild.h"

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
    followers[value] = nullptr;
    const bool significant = order >= kFirstDigitOrder && selector < kPlainOrderSelector;
    if (!record || record->followers || record->expansion || (entry.key & kMarks) != 0) {
      const bool wholeKey = (entry.key & kMarks) == 0 && record && !record->expansion;
      if (wholeKey && significant) followers[value] = record->followers;
      entry.key |= kMarks;
      entry.order = 0;
      entry.equalPass = record && !record->followers && OnlyLetters(order, record->expansion);
    } else if (significant) {
      entry.equalPass = true;
    } else {
      entry.key |= kNotPlain;
    }
  }
}

// ---------------------------------------------------------------------------
// Walk

namespace {

/// Stands for every character that a table does not hold.
constexpr NxOrderTable::Entry kOutsideTable = {NxOrderTable::kMarks, 0, 0, false};

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
    kGoOn,      // the pair is dealt with
    kEnded,     // result_ is the comparison's
    kUnsuited,  // the level comparison must go on from here
    kNotHere    // the part of the pattern does not match at this place
  };

  static unsigned At(const char* p) { return NxUnitAt<Unit>(p); }
  static const Entry& EntryAt(const NxOrderTable& table, const char* p) {
    const unsigned value = At(p);
    return kUnitSize == 1 || value < 256 ? table.entries[value] : kOutsideTable;
  }
  /// Whether a character is plain where it stands, or the end.
  static bool IsPlain(const NxOrderTable& table, const char* p) {
    if (!(EntryAt(table, p).key & NxOrderTable::kNotPlain)) return true;
    const unsigned value = At(p);
    const NxCharFollowers* followers = kUnitSize == 1 || value < 256 ? table.followers[value] : nullptr;
    return followers && !followers->Find(static_cast<unsigned short>(At(p + kUnitSize)));
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
  Finding FindPart(const char* part);
  Finding MatchPart(const char* text, const char* pattern);

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

// ---------------------------------------------------------------------------
// Patterns

/// Matches the text from p_ on against the pattern from the star at q_ on. Every part
/// of the pattern between two stars is taken where it occurs first.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::MatchAfterStar() {
  if (len_ != -1) return kUnsuited;
  // A difference before the star makes every character after it a mismatch.
  if (levels_.Result(op_) != 0) return kUnsuited;
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
  const Entry& first = EntryAt(tableB_, part);
  const unsigned mask = first.order == question_ ? 0 : NxWildcardKeyMask(op_) & ~NxOrderTable::kMarks;
  for (const char* text = p_;; text += kUnitSize) {
    unsigned key = EntryAt(tableA_, text).key;
    while (((key ^ first.key) & mask) != 0 && key != 0 && !(key & NxOrderTable::kNeedsIterator)) {
      text += kUnitSize;
      key = EntryAt(tableA_, text).key;
    }
    const Finding finding = MatchPart(text, part);
    if (finding != kNotHere) return finding;
  }
}

/// Compares a part of the pattern with the text from a place on.
template <class Unit>
typename PlainWalk<Unit>::Finding PlainWalk<Unit>::MatchPart(const char* text, const char* pattern) {
  const unsigned mask = NxWildcardKeyMask(op_) & ~NxOrderTable::kMarks;
  for (;; text += kUnitSize, pattern += kUnitSize) {
    const Entry& e0 = EntryAt(tableA_, text);
    const Entry& e1 = EntryAt(tableB_, pattern);
    if ((e0.key | e1.key) & NxOrderTable::kNeedsIterator) return kUnsuited;
    if (e1.order == asterisk_) {
      p_ = text;
      q_ = pattern;
      return kGoOn;
    }
    if (e0.key == 0) {
      // This is the earliest place from which the text goes along with the pattern.
      result_ = e1.order == question_ ? -1 : NxPrimaryDifference(0, e1.key & ~NxOrderTable::kMarks);
      if (e1.key == 0) result_ = Result();
      return kEnded;
    }
    if (e1.order != question_ && ((e0.key ^ e1.key) & mask) != 0) return kNotHere;
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
