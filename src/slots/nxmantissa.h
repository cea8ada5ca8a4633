// Formats of doubles that stand for mantissa and exponent.
#ifndef NXMANTISSA_H
#define NXMANTISSA_H

#include <cstring>

#include "nxtypfmt.h"

/// True for a format of doubles that stands for mantissa and exponent.
inline bool NxIsMantissaFormat(const char* format) {
  return format && *format != '%' && std::strncmp(format, pSpecialDoubleFmt, 4) == 0;
}

#endif
