// Reads the conversions of print and scan formats, as the C standard defines them
// (positions "%1$d", widths from arguments "*", "%n" and "%p" are never accepted), and
// holds them against the values that they would get.
#include "base/nxformat.h"

#include <cstring>

namespace {

bool OneOf(char c, const char* set) { return c && std::strchr(set, c); }

/// One conversion of a format: "%-8.3ld" has length 'l' and specifier 'd'.
struct Conversion {
  bool suppressed = false;
  unsigned long width = 0;  // 0: none stated
  char length = 0;          // 0, 'h', 'l', 'z', 't', or 'H' for hh
  char specifier = 0;
};

/// Walks the conversions of a format. "%%" is text.
class FormatReader {
 public:
  explicit FormatReader(const char* format) : p_(format) {}

  /// Moves behind the next "%" that starts a conversion; false at the end.
  bool Find() {
    while (*p_) {
      if (*p_++ != '%') continue;
      if (*p_ != '%') return true;
      ++p_;
    }
    return false;
  }

  bool ReadPrint(Conversion& c) {
    while (OneOf(*p_, "-+ #0'")) ++p_;
    unsigned long precision = 0;
    if (!ReadNumber(c.width)) return false;
    if (*p_ == '.') {
      ++p_;
      if (!ReadNumber(precision)) return false;
    }
    return ReadSpecifier(c);
  }

  bool ReadScan(Conversion& c) {
    if (*p_ == '*') {
      c.suppressed = true;
      ++p_;
    }
    return ReadNumber(c.width) && ReadSpecifier(c) && (c.specifier != '[' || SkipSet());
  }

 private:
  bool ReadNumber(unsigned long& number) {
    for (; *p_ >= '0' && *p_ <= '9'; ++p_) {
      number = number * 10 + static_cast<unsigned long>(*p_ - '0');
      if (number > kMaxFormatWidth) return false;
    }
    return true;
  }

  /// Lengths of eight bytes and more have no value here: their letter is then taken
  /// for the specifier and fits nothing.
  bool ReadSpecifier(Conversion& c) {
    if (OneOf(*p_, "hlzt")) {
      c.length = *p_;
      ++p_;
      if (c.length == 'h' && *p_ == 'h') {
        c.length = 'H';
        ++p_;
      }
    }
    c.specifier = *p_;
    if (*p_) ++p_;
    return c.specifier != 0;
  }

  /// Moves behind the "]" of a set; one that comes first belongs to the set.
  bool SkipSet() {
    if (*p_ == '^') ++p_;
    if (*p_ == ']') ++p_;
    const char* end = std::strchr(p_, ']');
    if (end) p_ = end + 1;
    return end != nullptr;
  }

  const char* p_;
};

bool IsInteger(char specifier) { return OneOf(specifier, "diouxX"); }
bool IsFloating(char specifier) { return OneOf(specifier, "eEfFgGaA"); }

bool PrintFits(const Conversion& c, NxFormatArg arg) {
  switch (arg) {
    case NxFormatArg::kByte:
    case NxFormatArg::kShort:
    case NxFormatArg::kWord:
      return IsInteger(c.specifier) || (c.specifier == 'c' && !c.length);
    case NxFormatArg::kFloat:
    case NxFormatArg::kDouble:
      return IsFloating(c.specifier) && (!c.length || c.length == 'l');
    case NxFormatArg::kText:
      return c.specifier == 's' && !c.length;
  }
  return false;
}

/// Bytes that an integer or character conversion writes.
unsigned long ScanBytes(const Conversion& c) {
  if (c.specifier == 'c') return c.width ? c.width : 1;
  if (c.length == 'H') return 1;
  return c.length == 'h' ? 2 : 4;
}

bool ScanFits(const Conversion& c, NxFormatArg arg) {
  const bool integer = IsInteger(c.specifier) || (c.specifier == 'c' && !c.length);
  switch (arg) {
    case NxFormatArg::kByte:
      return integer && ScanBytes(c) <= 1;
    case NxFormatArg::kShort:
      return integer && ScanBytes(c) <= 2;
    case NxFormatArg::kWord:
      return integer && ScanBytes(c) <= 4;
    case NxFormatArg::kFloat:
      return IsFloating(c.specifier) && !c.length;
    case NxFormatArg::kDouble:
      return IsFloating(c.specifier) && c.length == 'l';
    case NxFormatArg::kText:
      return OneOf(c.specifier, "sc[") && !c.length;
  }
  return false;
}

/// A conversion whose result is dropped writes nothing, but it must be one.
bool SuppressedFits(const Conversion& c) {
  return IsInteger(c.specifier) || IsFloating(c.specifier) || OneOf(c.specifier, "sc[");
}

}  // namespace

bool NxPrintFormatFits(const char* format, std::initializer_list<NxFormatArg> args) {
  if (!format) return false;
  FormatReader reader(format);
  for (const NxFormatArg* arg = args.begin(); reader.Find(); ++arg) {
    Conversion c;
    if (arg == args.end() || !reader.ReadPrint(c) || !PrintFits(c, *arg)) return false;
  }
  return true;
}

bool NxScanFormatFits(const char* format, std::initializer_list<NxFormatArg> args) {
  if (!format) return false;
  FormatReader reader(format);
  const NxFormatArg* arg = args.begin();
  while (reader.Find()) {
    Conversion c;
    if (!reader.ReadScan(c)) return false;
    if (c.suppressed) {
      if (!SuppressedFits(c)) return false;
    } else if (arg == args.end() || !ScanFits(c, *arg++)) {
      return false;
    }
  }
  return true;
}

// ---------------------------------------------------------------------------
// Plain integers

namespace {

constexpr unsigned long kIntegerBytes = 11;  // "-2147483648"
constexpr int kSafeDigits = 9;               // never overflow

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

bool NxReadPlainInteger(const char* format, NxPlainInteger& plain) {
  if (!format) return false;
  const char* p = format;
  while (*p && *p != '%') ++p;
  plain.before = format;
  plain.beforeLength = static_cast<unsigned long>(p - format);
  if (*p) ++p;
  plain.isShort = *p == 'h';
  if (*p == 'h' || *p == 'l') ++p;
  if (*p != 'd' && *p != 'u') return false;
  plain.isSigned = *p == 'd';
  plain.after = ++p;
  while (*p && *p != '%') ++p;
  plain.afterLength = static_cast<unsigned long>(p - plain.after);
  return *p == 0;
}

NxIntegerText NxTextOfPlainInteger(const NxPlainInteger& plain, int value) {
  if (plain.isShort) value = plain.isSigned ? static_cast<short>(value) : static_cast<unsigned short>(value);
  const bool negative = plain.isSigned && value < 0;
  const auto bits = static_cast<unsigned>(value);
  return {negative ? 0 - bits : bits, negative};
}

unsigned long NxPrintPlainInteger(const NxPlainInteger& plain, int value, char* area, unsigned long size) {
  if (plain.beforeLength + kIntegerBytes + plain.afterLength > size) return 0;
  char* place = area;
  for (unsigned long i = 0; i < plain.beforeLength; ++i) *place++ = plain.before[i];
  place = NxTextOfPlainInteger(plain, value).Put(place);
  for (unsigned long i = 0; i < plain.afterLength; ++i) *place++ = plain.after[i];
  return static_cast<unsigned long>(place - area);
}

bool NxScanPlainInteger(const NxPlainInteger& plain, const char* text, bool& found, int& value) {
  found = false;
  for (unsigned long i = 0; i < plain.beforeLength; ++i) {
    if (IsBlank(plain.before[i])) return false;  // it stands for any blanks
    if (*text++ != plain.before[i]) return true;
  }
  while (IsBlank(*text)) ++text;
  const bool negative = *text == '-';
  if (negative && !plain.isSigned) return false;
  if (negative || *text == '+') ++text;
  int digits = 0;
  int number = 0;
  for (; NxDigitValue(*text) <= 9; ++text) {
    if (++digits > kSafeDigits) return false;
    number = number * 10 + static_cast<int>(NxDigitValue(*text));
  }
  found = digits > 0;
  if (found) value = negative ? -number : number;
  return true;
}
