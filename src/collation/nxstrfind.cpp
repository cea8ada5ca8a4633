// NxString: searching, comparison by collation, numbers and single characters.

#include "collation/nxstrfind.h"

#include <cstdlib>

#include "collation/nxlevels.h"
#include "collation/nxordertable.h"
#include "nxchar.h"
#include "nxwchar.h"
#include "strwild.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kLongestCompared = 32767;  // characters that a comparison can be limited to

/// NxStrCmp of two texts, the second one the pattern.
int CompareTexts(const NxString& a, const char* aText, const NxString& b, unsigned short op, short length) {
  return NxStrCmp(a._nCodeSet, a._nLanguage, aText, b._nCodeSet, b._nLanguage, b.StrGet(), op, length,
                  kFormatNative, nullptr);
}

int CompareDefault(const NxString& a, const NxString& b) {
  return CompareTexts(a, a.StrGet(), b, NxLanguageContext::GetDefaultCmpOp(), kWholeText);
}

/// CompareTexts over more characters than its count can say: the first text is ended
/// behind them for as long as it takes.
int CompareLong(const NxString& a, char* aText, const NxString& b, unsigned short op, unsigned long length) {
  const unsigned width = NxCharWidth(a._nCodeSet);
  if (NxLimitedLength(aText, width, length) < length) return CompareTexts(a, aText, b, op, kWholeText);
  char* end = aText + length * width;
  char kept[2];
  std::memcpy(kept, end, width);
  std::memset(end, 0, width);
  const int result = CompareTexts(a, aText, b, op, kWholeText);
  std::memcpy(end, kept, width);
  return result;
}

/// The value of a text in the base that the options word or its prefix gives.
long ToLong(const NxString& s) {
  const int base = *___NxTypeMgrOptions() & kOptionDecimalOnly ? 10 : 0;
  return std::strtol(s._pBuffer, nullptr, base);
}

const unsigned short* Units(const NxString& s) { return reinterpret_cast<const unsigned short*>(s._pBuffer); }

int ParseLong(const NxString& s, int base, long& v) {
  v = 0;
  const unsigned width = NxCharWidth(s._nCodeSet);
  if (s.IsEmpty()) return -1;
  const NxChar first(s._pBuffer, s._nCodeSet, s._nLanguage, kFormatNative);
  if (!first.IsDigit() && !(first == '-')) return -1;
  v = width == 1 ? std::strtol(s._pBuffer, nullptr, base) : NxWStrToL(Units(s));
  return 0;
}

}  // namespace

// ---------------------------------------------------------------------------
// Searching

namespace {

/// Tells by the first letter of a pattern where in a text a match cannot begin. Without
/// it every blank is compared with what follows all blanks behind it.
class MatchStart {
 public:
  MatchStart(const NxString& s, const NxString& pattern, unsigned short op)
      : op_(op), wide_(NxCharWidth(s._nCodeSet) == 2) {
    const NxOrderTable* table = NxOrderTable::Find(s._nCodeSet, s._nLanguage);
    const NxOrderTable* letters = NxOrderTable::Find(pattern._nCodeSet, pattern._nLanguage);
    const unsigned first = CharacterAt(pattern._pBuffer, NxCharWidth(pattern._nCodeSet) == 2);
    if (!table || !letters || first > kLastInTable || (op & kOrderValuesOnly)) return;
    key_ = letters->entries[first].key;
    const bool isLetter = key_ != 0 && !(key_ & NxOrderTable::kMarks);
    if (isLetter && NxOrderTable::WildcardsAreSymbols()) table_ = table;
  }

  /// False where a match cannot begin: at other letters, and at spaces and symbols that
  /// count, since they are a difference whatever follows.
  bool IsPossible(const char* text) const {
    const NxOrderTable::Entry* entry = EntryAt(text);
    if (!entry) return true;
    if (entry->key & NxOrderTable::kNotPlain) return !IsIgnorable(*entry) || IsSkipped(*entry);
    return NxLevels::OfBaseLetters(entry->key, key_) == 0;
  }

  /// Skipped characters that the text begins with: from each of them a comparison of
  /// whole texts says the same.
  long CountSkipped(const char* text) const {
    const unsigned width = wide_ ? 2 : 1;
    long count = 0;
    for (const NxOrderTable::Entry* entry;
         (entry = EntryAt(text + count * width)) && IsIgnorable(*entry) && IsSkipped(*entry);)
      ++count;
    return count;
  }

 private:
  static constexpr unsigned kLastInTable = 255;

  static unsigned CharacterAt(const char* text, bool wide) {
    return wide ? NxUnitAt<unsigned short>(text) : NxUnitAt<unsigned char>(text);
  }

  /// Null for what the iterator has to look at.
  const NxOrderTable::Entry* EntryAt(const char* text) const {
    const unsigned value = table_ ? CharacterAt(text, wide_) : 0;
    if (!table_ || value > kLastInTable) return nullptr;
    const NxOrderTable::Entry& entry = table_->entries[value];
    return entry.key & NxOrderTable::kNeedsIterator ? nullptr : &entry;
  }

  static bool IsIgnorable(const NxOrderTable::Entry& entry) {
    return NxLevels::IsIgnorable(entry.order, entry.selector);
  }
  bool IsSkipped(const NxOrderTable::Entry& entry) const { return NxLevels::IsSkipped(entry.order, op_); }

  const unsigned short op_;
  const bool wide_;
  unsigned key_ = 0;                     // of the pattern's first letter
  const NxOrderTable* table_ = nullptr;  // of the text; null when all places are possible
};

}  // namespace

long NxFindText(const NxString& s, const NxString& pattern, unsigned long start, unsigned short op) {
  if (!pattern._pBuffer || !s._pBuffer || start > s.Len()) return kNoMatch;
  // The byte sizes of both texts decide where the search stops, whatever the widths.
  const long patternSize = pattern._nSize - pattern.NullLen();
  const long width = NxCharWidth(s._nCodeSet);
  const long last = s._nSize - width - patternSize;

  const bool wildcards = !(op & kWildcardsOff);
  const unsigned long length = pattern.Len();
  NxString open;  // the pattern, matching every text that begins with it
  if (wildcards) {
    open = pattern;
    open += NxString('*');
  }
  const NxString& used = wildcards ? open : pattern;
  if (op == kDefaultOptions) op = NxLanguageContext::GetDefaultCmpOp();

  const MatchStart starts(s, pattern, op);
  for (long pos = static_cast<long>(start); pos * width <= last; ++pos) {
    char* text = s._pBuffer + pos * width;
    if (!starts.IsPossible(text)) continue;
    const int result =
        wildcards || length <= kLongestCompared
            ? CompareTexts(s, text, used, op, wildcards ? kWholeText : static_cast<short>(length))
            : CompareLong(s, text, used, op, length);
    if (result == 0) return pos;
    if (wildcards) pos += starts.CountSkipped(text);
  }
  return kNoMatch;
}

short NxString::Find(const NxString& pattern, unsigned short start, unsigned short op) const {
  return static_cast<short>(NxFindText(*this, pattern, start, op));
}
short NxString::Find(char c, unsigned short start, unsigned short op) const {
  return Find(NxString(c), start, op);
}
short NxString::Find(unsigned short c, unsigned short start, unsigned short op) const {
  return Find(NxString(c), start, op);
}
short NxString::SubStringPos(const NxString& pattern, unsigned short op) const {
  return Find(pattern, 0, op);
}

// ---------------------------------------------------------------------------
// Comparison

int NxString::operator==(const NxString& s) const { return this == &s || CompareDefault(*this, s) == 0; }
int NxString::operator!=(const NxString& s) const { return CompareDefault(*this, s) != 0; }
int NxString::operator<(const NxString& s) const { return CompareDefault(*this, s) < 0; }
int NxString::operator>(const NxString& s) const { return CompareDefault(*this, s) > 0; }
int NxString::operator<=(const NxString& s) const { return CompareDefault(*this, s) <= 0; }
int NxString::operator>=(const NxString& s) const { return CompareDefault(*this, s) >= 0; }

int NxString::Compare(const NxString& s, short len, unsigned short op) const {
  if (op == kDefaultOptions) op = NxLanguageContext::GetDefaultCmpOp();
  return CompareTexts(*this, StrGet(), s, op, len);
}

int NxString::EqualsIgnoreLanguage(const NxString& s) const {
  const unsigned char language = _nLanguage == s._nLanguage ? _nLanguage : kLanguageNone;
  return NxStrCmp(_nCodeSet, language, StrGet(), s._nCodeSet, language, s.StrGet(), kOrderValuesOnly,
                  kWholeText, kFormatNative, nullptr) == 0;
}

// ---------------------------------------------------------------------------
// Numbers

NxString::operator int() const {
  if (!_pBuffer) return 0;
  return NxCharWidth(_nCodeSet) == 1 ? static_cast<int>(ToLong(*this)) : NxWStrToI(Units(*this));
}

NxString::operator long() const {
  if (!_pBuffer) return 0;
  return NxCharWidth(_nCodeSet) == 1 ? ToLong(*this) : NxWStrToL(Units(*this));
}

NxString::operator short() const { return static_cast<short>(operator int()); }

NxString::operator double() const {
  if (!_pBuffer) return 0.0;
  return NxCharWidth(_nCodeSet) == 1 ? std::strtod(_pBuffer, nullptr) : NxWStrToD(Units(*this));
}

int NxString::Atol(long& v) const { return ParseLong(*this, 10, v); }
int NxString::Strtol(long& v) const { return ParseLong(*this, 0, v); }

// ---------------------------------------------------------------------------
// Characters

NxChar NxString::operator[](int i) {
  if (i < 0 || i >= Len()) return NxChar(static_cast<unsigned short>(0));
  return NxChar(*this, i * NxCharWidth(_nCodeSet));
}
