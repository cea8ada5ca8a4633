// Numbers at places that need no alignment: the units of texts and the 16-bit fields of
// stored images.
#ifndef NXBYTES_H
#define NXBYTES_H

#include <cstring>

#include "nxbase.h"

/// The unit of a text at p, in this machine's byte order.
template <class Unit>
Unit NxUnitAt(const void* p) {
  Unit unit;
  std::memcpy(&unit, p, sizeof unit);
  return unit;
}

/// The 16-bit number at p in the byte order of a format. ShortStore does the same; this
/// is for places that every text passes.
inline unsigned short NxReadShort(const void* p, unsigned char format) {
  const auto value = NxUnitAt<unsigned short>(p);
  return (format & kFormatCodeMask) == kFormatBigEndian ? __builtin_bswap16(value) : value;
}

inline void NxWriteShort(void* p, unsigned short value, unsigned char format) {
  if ((format & kFormatCodeMask) == kFormatBigEndian) value = __builtin_bswap16(value);
  std::memcpy(p, &value, sizeof value);
}

#endif
