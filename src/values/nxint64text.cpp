#include "values/nxint64text.h"

#include "base/nxdigits.h"
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

/// Writes v in decimal. Returns the place behind it.
char* PutDecimal(char* place, unsigned long long v) {
  constexpr unsigned kNineDigits = 1'000'000'000;
  if (v >> 32) {  // nine digits at a time, as far as 64 bits have to be divided
    const unsigned long long rest = v / kNineDigits;
    place = PutDecimal(place, rest);
    return NxPutNine(place, static_cast<unsigned>(v) - static_cast<unsigned>(rest) * kNineDigits);
  }
  const auto low = static_cast<unsigned>(v);
  place += NxDecimalLength(low);
  NxPutDecimal(place, low);
  return place;
}

/// The same in a base that is a power of 2.
char* PutBits(char* place, unsigned long long v, const Radix& radix) {
  const unsigned shift = radix.base == 8 ? 3 : 4;
  unsigned length = 1;
  for (unsigned long long rest = v >> shift; rest; rest >>= shift) ++length;
  for (char* p = place + length; p > place; v >>= shift) *--p = radix.digits[v & (radix.base - 1)];
  return place + length;
}

void AddInt64(NxPieceWriter& pieces, const NxInt64& value, const Radix& radix) {
  constexpr unsigned long kLongest = 26;  // sign, prefix and 22 octal digits
  const unsigned long long magnitude = static_cast<unsigned long long>(value.Abs().Wide());
  char* place = pieces.Room(kLongest);
  // The lowest value is its own magnitude; only its decimal text has a sign.
  if (value.high < 0 && (radix.base == 10 || magnitude != kLowest)) *place++ = '-';
  for (const char* p = radix.prefix; *p; ++p) *place++ = *p;
  pieces.Took(radix.base == 10 ? PutDecimal(place, magnitude) : PutBits(place, magnitude, radix));
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
    return !(*fmt_ == '%' && RadixOf(fmt_[1]));  // nothing is left for the number
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
    const unsigned base = Base(*RadixOf(directive), terminator);
    if (directive != 'S' && base != RadixOf(directive)->base) return false;
    return Digits(base, terminator, negative) && *in_ == terminator;
  }

  /// The base by the number's prefix. That of 16 is skipped, that of 8 is a digit, and a
  /// single 0 is a number in base 10 as well.
  unsigned Base(const Radix& wanted, char terminator) {
    if (*in_ != '0') return 10;
    if (in_[1] == 'x' || in_[1] == 'X') {
      in_ += 2;
      return 16;
    }
    const bool single = in_[1] == 0 || in_[1] == terminator;
    return single && wanted.base == 10 ? 10 : 8;
  }

  /// Reads digits up to the terminator; false without any, or at one beyond the base.
  bool Digits(unsigned base, char terminator, bool negative) {
    // Several digits at a time are collected in 32 bits.
    constexpr unsigned kFull = 1U << 28;
    const char* const begin = in_;
    unsigned long long number = 0;
    unsigned part = 0, scale = 1;
    for (; *in_ && *in_ != terminator; ++in_) {
      const unsigned digit = Digit(*in_);
      if (digit >= base) return false;
      part = part * base + digit;
      scale *= base;
      if (scale < kFull) continue;
      number = number * scale + part;
      part = 0;
      scale = 1;
    }
    number = number * scale + part;
    value_ = NxInt64::FromWide(static_cast<long long>(negative ? 0 - number : number));
    return in_ != begin;
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
