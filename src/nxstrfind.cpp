// NxString: searching, comparison by collation, numbers and single characters.

#include "nxstrfind.h"

#include <cstdlib>

#include "nxchar.h"
#include "nxstrbuild.h"
#include "nxtmdata.h"
#include "nxwchar.h"
#include "strwild.h"

namespace {

constexpr short kWholeText = -1;
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

long NxFindText(const NxString& s, const NxString& pattern, unsigned long start, unsigned short op) {
  if (!pattern._pBuffer || !s._pBuffer || start > s.Len()) return kNotFound;
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

  for (long pos = static_cast<long>(start); pos * width <= last; ++pos) {
    char* text = s._pBuffer + pos * width;
    const int result =
        wildcards || length <= kLongestCompared
            ? CompareTexts(s, text, used, op, wildcards ? kWholeText : static_cast<short>(length))
            : CompareLong(s, text, used, op, length);
    if (result == 0) return pos;
  }
  return kNotFound;
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
