/// `NxBoolean`: a truth value with a null state, in one byte.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXBOOL_H
#define NXBOOL_H

#include "nxapi.h"

class NX_API NxBoolean {
 public:
  /// False.
  NxBoolean() : value(0) {}
  NxBoolean(long v) : value(v != 0) {}
  NxBoolean(const NxBoolean& b) = default;
  NxBoolean& operator=(const NxBoolean& b) = default;
  NxBoolean& operator=(long v) { return *this = NxBoolean(v); }

  int IsNullValue() const { return value == kNull; }
  /// Makes the value null and returns 0.
  int SetNullValue();

  // Comparison: 1 or 0. Two values are equal when both are null, both false or both
  // true. Null comes before every other value; others order by their signed bytes. A
  // number stands for true when it is not 0, else for false.

  int operator==(const NxBoolean& b) const;
  int operator==(long v) const { return *this == NxBoolean(v); }
  int operator<(const NxBoolean& b) const;
  int operator<(long v) const { return *this < NxBoolean(v); }
  int operator>(const NxBoolean& b) const;
  int operator>(long v) const { return *this > NxBoolean(v); }

  static constexpr unsigned char kNull = 255;

  unsigned char value;  // 0 false, 1 true, 255 null; any other byte counts as true
};
static_assert(sizeof(NxBoolean) == 1);

#endif
