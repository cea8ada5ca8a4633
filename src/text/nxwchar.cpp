// 16-bit texts, unit by unit.

#include "nxwchar.h"

namespace {

/// The number that the units up to the zero spell.
unsigned int DigitValue(const unsigned short* s) {
  unsigned int value = 0;
  for (; *s != 0; ++s) value = value * 10 + *s - '0';
  return value;
}

}  // namespace

unsigned short* NxWStrCpy(unsigned short* dst, const unsigned short* src) {
  while ((*dst++ = *src++) != 0) {
  }
  return dst;
}

unsigned int NxWStrLen(const unsigned short* s) {
  const unsigned short* end = s;
  while (*end != 0) ++end;
  return static_cast<unsigned int>(end - s);
}

int NxWStrCmp(const unsigned short* a, const unsigned short* b) { return NxWStrNCmp(a, b, 0); }

unsigned short* NxWStrNCpy(unsigned short* dst, const unsigned short* src, unsigned int n) {
  for (unsigned int i = 0;; ++i) {
    dst[i] = src[i];
    if (src[i] == 0 || i == n) return dst + i + 1;
  }
}

int NxWStrNCmp(const unsigned short* a, const unsigned short* b, unsigned int n) {
  if (!a) return b ? -1 : 0;
  if (!b) return 1;
  for (unsigned int compared = 1;; ++a, ++b, ++compared)
    if (*a != *b || *a == 0 || compared == n) return *a - *b;
}

int NxWStrToI(const unsigned short* s) { return static_cast<int>(DigitValue(s)); }

long NxWStrToL(const unsigned short* s) { return static_cast<int>(DigitValue(s)); }

double NxWStrToD(const unsigned short* s) {
  double value = 0.0;
  for (; *s != 0 && *s != '.'; ++s) value = value * 10.0 + (*s - '0');
  if (*s == 0) return value;
  double place = 1.0;
  while (*++s != 0) {
    place *= 10.0;
    value += (*s - '0') / place;
  }
  return value;
}

unsigned short* NxWStrInc(const unsigned short* p) { return const_cast<unsigned short*>(p + 1); }

unsigned short* NxWMemSet(unsigned short* dst, unsigned short c, unsigned int n) {
  for (unsigned int i = 0; i < n; ++i) dst[i] = c;
  return dst;
}
