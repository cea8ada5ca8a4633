#include "values/nxint64text.h"

#include "nxint64.h"
#include "text/nxtextio.h"

namespace {

constexpr unsigned long long kLowest = 1ULL << 63;

/// What a directive says of a number's text.
struct Radix {
  unsigned base;
  const char* prefix;
  const char* digits;
};

/// Null for a character that is no directive.
const Radix* RadixOf(char directive) {
  static constexpr Radix kDecimal = {10, "", "0123456789"};
  static constexpr Radix kOctal = {8, "0", "01234567"};
  static constexpr Radix kHexadecimal = {16, "0x", "0123456789abcdef"};
  static constexpr Radix kUpperHexadecimal = {16, "0X", "0123456789ABCDEF"};
  switch (directive) {
    case 'S':
    case 'd':
    case 'i':
      return &kDecimal;
    case 'o':
      return &kOctal;
    case 'x':
      return &kHexadecimal;
    case 'X':
      return &kUpperHexadecimal;
    default:
      return nullptr;
  }
}

void AddInt64(NxPieceWriter& pieces, const NxInt64& value, const Radix& radix) {
  unsigned long long magnitude = static_cast<unsigned long long>(value.Abs().Wide());
  // The lowest value is its own magnitude; only its decimal text has a sign.
  if (value.high < 0 && (radix.base == 10 || magnitude != kLowest)) pieces.Add("-");
  pieces.Add(radix.prefix);
  char text[24];  // 22 octal digits
  char* p = text + sizeof text;
  do {
    *--p = radix.digits[magnitude % radix.base];
    magnitude /= radix.base;
  } while (magnitude);
  pieces.Add(p, static_cast<unsigned long>(text + sizeof text - p));
}

/// Reads an NxInt64 from a text, walking format and text together.
class Int64Scanner {
 public:
  Int64Scanner(const char* text, const char* fmt, NxInt64& value) : in_(text), fmt_(fmt), value_(value) {}

  /// False when the text does not fit the format.
  bool Scan() {
    for (; *fmt_ && *in_; Step()) {
      if (*fmt_ == '%') {
        ++fmt_;
        if (!(RadixOf(*fmt_) ? Number() : *in_ == '%')) return false;
      } else if (*fmt_ != *in_) {
        return false;
      }
    }
    return true;
  }

 private:
  /// One character of both; the end of either stays where it is.
  void Step() {
    if (*fmt_) ++fmt_;
    if (*in_) ++in_;
  }

  bool Number() {
    const char directive = *fmt_++;
    const char terminator = *fmt_;
    const bool negative = *in_ == '-';
    if (*in_ == '-' || *in_ == '+') ++in_;
    const unsigned base = Base();
    if (directive != 'S' && base != RadixOf(directive)->base) return false;
    NxInt64 number;
    for (; *in_ && *in_ != terminator; ++in_) {
      const unsigned digit = Digit(*in_);
      if (digit >= base) return false;
      number =
          number * NxInt64(static_cast<unsigned long>(base)) + NxInt64(static_cast<unsigned long>(digit));
    }
    value_ = negative ? -number : number;
    return *in_ == terminator;
  }

  /// The base by the number's prefix. That of 16 is skipped, that of 8 is a digit.
  unsigned Base() {
    if (*in_ != '0') return 10;
    if (in_[1] != 'x' && in_[1] != 'X') return 8;
    in_ += 2;
    return 16;
  }

  static unsigned Digit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned>(c - 'A') + 10;
    return 255;
  }

  const char* in_;
  const char* fmt_;
  NxInt64& value_;
};

const char* Int64Format(const char* fmt) { return fmt ? fmt : "%S"; }

}  // namespace

void NxPrintInt64(NxString& out, const NxInt64& value, const char* format) {
  NxPieceWriter pieces(out);
  for (const char* p = Int64Format(format); *p; ++p) {
    const Radix* radix = *p == '%' ? RadixOf(p[1]) : nullptr;
    if (radix) {
      AddInt64(pieces, value, *radix);
      ++p;
      continue;
    }
    pieces.Add(p, 1);
    if (*p == '%' && p[1]) pieces.Add(++p, 1);  // even a second "%" is then text
  }
}

void NxScanInt64(NxInt64& value, const char* text, const char* format) {
  if (!Int64Scanner(text, Int64Format(format), value).Scan()) value = -1;
}
