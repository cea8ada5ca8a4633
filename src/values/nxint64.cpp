// NxInt64: what is not inline in the header. Arithmetic there is the compiler's own
// 64-bit arithmetic on unsigned numbers, which wraps as the halves do.
#include "nxint64.h"

#include <cmath>
#include <cstdio>

#include "nxbase.h"
#include "nxstring.h"
#include "text/nxtextio.h"
#include "values/nxint64text.h"

namespace {

constexpr unsigned long long kLowest = 1ULL << 63;        // the magnitude of the lowest value
constexpr double kLargestDouble = 9223372036854774784.0;  // the largest double below 2^63

/// x (at least 1, below 2^63) rounded to seven significant digits, without fraction.
unsigned long long RoundToSevenDigits(double x) {
  char text[32];
  if (std::snprintf(text, sizeof text, "%E", x) <= 0) return 0;
  const char* mark = text;
  while (*mark != 'E' && *mark) ++mark;
  if (!*mark) return 0;  // not a number

  int exponent = 0;
  for (const char* p = mark + 2; *p; ++p) exponent = exponent * 10 + (*p - '0');
  unsigned long long magnitude = 0;
  bool fraction = false;
  for (const char* p = text; p != mark; ++p) {
    if (*p < '0' || *p > '9') {
      fraction = true;  // the decimal point, whatever the locale makes of it
      continue;
    }
    if (fraction && --exponent < 0) break;
    magnitude = magnitude * 10 + static_cast<unsigned long long>(*p - '0');
  }
  for (; exponent > 0; --exponent) magnitude *= 10;
  return magnitude;
}

}  // namespace

NxInt64::NxInt64(double d) {
  const double x = std::fabs(d);
  unsigned long long magnitude;
  if (x > kLargestDouble) {
    magnitude = kLowest - 1;
  } else if (x < 1.0) {
    magnitude = 0;
  } else {
    magnitude = RoundToSevenDigits(x);
  }
  *this = FromBits(d < 0 ? 0 - magnitude : magnitude);
}

NxInt64 NxInt64::Division(const NxInt64& b, int wantRemainder) const {
  if (b.Bits() == 0) {
    NEXO_assert("0 && \"NxInt64 divide by zero\"", "src/nxint64", 737);
    // The lowest value is divided as the value next to it and corrected by one.
    return wantRemainder && Bits() == kLowest ? NxInt64(-1) : NxInt64();
  }
  if (b.Wide() == -1) return wantRemainder ? NxInt64() : -*this;
  return FromWide(wantRemainder ? Wide() % b.Wide() : Wide() / b.Wide());
}

NxString& NxInt64::PrintToNxString(NxString& out, const char* format) const {
  NxPrintInt64(out, *this, format);
  return out;
}

void NxInt64::ScanFromNxString(const NxString& text, const char* format) {
  const NxScanText input(text);
  if (!input.IsMissing()) NxScanInt64(*this, input.Chars(), format);
}
