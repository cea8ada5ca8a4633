// MySscanf: reads one value from a text under a scan format. A format that does not
// fit the value leaves it unchanged.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/nxalloc.h"
#include "base/nxformat.h"
#include "nxstring.h"
#include "nxtypfmt.h"
#include "slots/nxmantissa.h"

namespace {

template <class T>
int ScanOne(const char* text, const char* fmt, NxFormatArg kind, T* out) {
  if (NxScanFormatFits(fmt, {kind})) std::sscanf(text, fmt, out);
  return 0;
}

/// An integer; the usual formats without the C library.
template <class T>
int ScanInteger(const char* text, const char* fmt, NxFormatArg kind, T* out) {
  NxPlainInteger plain;
  bool found;
  int value;
  const bool usual = NxReadPlainInteger(fmt, plain) && plain.isShort == (kind == NxFormatArg::kShort);
  if (!usual || !NxScanPlainInteger(plain, text, found, value)) return ScanOne(text, fmt, kind, out);
  if (found) *out = static_cast<T>(value);
  return 0;
}

/// A "0x" number gives its low byte, whatever the format.
template <class T>
int ScanByte(const char* text, const char* fmt, T* out) {
  unsigned int number;
  if (std::sscanf(text, "0x%x", &number) != 1) return ScanOne(text, fmt, NxFormatArg::kByte, out);
  *out = static_cast<T>(number);
  return 0;
}

}  // namespace

int MySscanf(const char* text, long /*len*/, const char* fmt, long n, NxString* out) {
  if (!NxScanFormatFits(fmt, {NxFormatArg::kText})) return 0;
  // No conversion writes more than the input holds or its width says, so that this area
  // always does; what would not have fitted into n bytes is cut afterwards.
  char* area = NxNewZeroArray<char>(std::strlen(text) + kMaxFormatWidth + 1);
  if (!area) return 0;
  std::sscanf(text, fmt, area);
  const unsigned long room = n > 0 ? static_cast<unsigned long>(n) - 1 : 0;
  if (std::strlen(area) > room) area[room] = 0;
  *out = area;
  delete[] area;
  return 0;
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, double* out) {
  if (!NxIsMantissaFormat(fmt)) return ScanOne(text, fmt, NxFormatArg::kDouble, out);
  double mantissa = 0;
  int exponent = 0;
  if (NxScanFormatFits(fmt, {NxFormatArg::kDouble, NxFormatArg::kWord}) &&
      std::sscanf(text, fmt, &mantissa, &exponent) == 2)
    *out = std::ldexp(mantissa, exponent);
  return 0;
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, float* out) {
  return ScanOne(text, fmt, NxFormatArg::kFloat, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, long* out) {
  return ScanInteger(text, fmt, NxFormatArg::kWord, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, unsigned long* out) {
  return ScanInteger(text, fmt, NxFormatArg::kWord, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, int* out) {
  return ScanInteger(text, fmt, NxFormatArg::kWord, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, unsigned int* out) {
  return ScanInteger(text, fmt, NxFormatArg::kWord, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, short* out) {
  return ScanInteger(text, fmt, NxFormatArg::kShort, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, unsigned short* out) {
  return ScanInteger(text, fmt, NxFormatArg::kShort, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, char* out) {
  return ScanByte(text, fmt, out);
}

int MySscanf(const char* text, long /*len*/, const char* fmt, long /*n*/, unsigned char* out) {
  return ScanByte(text, fmt, out);
}
