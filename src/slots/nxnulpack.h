// Moves long arrays of nullable scalars between memory and image sixteen bytes at a time,
// where the processor can shuffle bytes. The general way is in nxnulimage.h.
#ifndef NXNULPACK_H
#define NXNULPACK_H

/// How an image lies.
struct NxNullShape {
  unsigned numberAt;
  unsigned flagAt;
  unsigned char order[8];  // the converted number's bytes, as places in the unconverted one
};

/// Fewer values are not worth the preparation.
inline constexpr unsigned long kNullPackMin = 32;

/// Stores values with numbers of 1, 2, 4 or 8 bytes from the front of an array and returns how many, perhaps
/// none.
template <unsigned kNumberBytes>
unsigned long NxPackNulls(const NxNullShape& shape, void* image, const void* values, unsigned long count);

/// Loads them. Padding becomes 0.
template <unsigned kNumberBytes>
unsigned long NxUnpackNulls(const NxNullShape& shape, void* values, const void* image, unsigned long count);

#endif
