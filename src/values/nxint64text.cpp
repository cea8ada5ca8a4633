#include "values/nxint64text.h"

#include "base/nxdigits.h"
#include "nxint64.h"
#include "text/nxstrbuild.h"
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

/// The decimal text of a number, in parts of nine digits.
class DecimalText {
 public:
  explicit DecimalText(unsigned long long v) {
    constexpr unsigned kNineDigits = 1'000'000'000;
    for (; v >= kNineDigits; ++nines_) part_[nines_] = NxTakeNine(v);
    part_[nines_] = static_cast<unsigned>(v);
    lead_ = NxDecimalLength(part_[nines_]);
  }

  unsigned long Length() const { return lead_ + 9 * nines_; }
  /// Returns the place behind it.
  char* Put(char* place) const {
    if (nines_ == 0) return NxPutDecimal(place + lead_, part_[0]) + lead_;
    place = NxPutLeading(place, part_[nines_], lead_);
    for (unsigned long i = nines_; i-- > 0;) place = NxPutNine(place, part_[i]);
    return place;
  }

 private:
  unsigned part_[3];         // the last nine digits first
  unsigned long nines_ = 0;  // parts before the leading one
  unsigned lead_;            // digits of that
};

/// Writes v in a base that is a power of 2. Returns the place behind it.
char* PutBits(char* place, unsigned long long v, const Radix& radix) {
  const unsigned shift = radix.base == 8 ? 3 : 4;
  unsigned length = 1;
  for (unsigned long long rest = v >> shift; rest; rest >>= shift) ++length;
  for (char* p = place + length; p > place; v >>= shift) *--p = radix.digits[v & (radix.base - 1)];
  return place + length;
}

unsigned long long Magnitude(const NxInt64& value) {
  return static_cast<unsigned long long>(value.Abs().Wide());
}

void AddInt64(NxPieceWriter& pieces, const NxInt64& value, const Radix& radix) {
  constexpr unsigned long kLongest = 26;  // sign, prefix and 22 octal digits
  const unsigned long long magnitude = Magnitude(value);
  char* place = pieces.Room(kLongest);
  // The lowest value is its own magnitude; only its decimal text has a sign.
  if (value.high < 0 && (radix.base == 10 || magnitude != kLowest)) *place++ = '-';
  for (const char* p = radix.prefix; *p; ++p) *place++ = *p;
  pieces.Took(radix.base == 10 ? DecimalText(magnitude).Put(place) : PutBits(place, magnitude, radix));
}

/// Whether a format is one decimal number and nothing else, as most are.
bool IsDecimalAlone(const char* fmt) {
  return fmt[0] == '%' && (fmt[1] == 'S' || fmt[1] == 'd') && fmt[2] == 0;
}

/// Appends the number to a text that takes it as it is; false for another one.
bool AppendDecimal(NxString& out, const NxInt64& value) {
  const bool negative = value.high < 0;
  const DecimalText text(Magnitude(value));
  const unsigned long old = out._pBuffer ? out.Len() : 0;
  if (!NxTakesAsItIs(out, old, text.Length() + negative)) return false;
  char* place = NxRoomBehind(out, old, text.Length() + negative);
  if (!place) return true;  // for want of memory
  *place = '-';
  text.Put(place + negative);
  return true;
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
  if (IsDecimalAlone(Int64Format(format)) && AppendDecimal(out, value)) return;
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
