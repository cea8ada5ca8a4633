/// `NxSeal`: a 48-bit unsigned number of three 16-bit words. It has no null state.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXSEAL_H
#define NXSEAL_H

#include <cstddef>

#include "nxapi.h"

class NxInt64;
class NxObjId;
class NxString;

class NX_API NxSeal {
 public:
  int operator==(const NxSeal& s) const { return w0 == s.w0 && w1 == s.w1 && w2 == s.w2; }
  /// Difference of the first words (from w0 on) that differ; 0 when equal.
  int operator!=(const NxSeal& s) const;

  /// out becomes the seal's number.
  void ConvertTo(NxInt64& out) const;
  /// Becomes the low 48 bits of v.
  void ConvertFrom(const NxInt64& v);
  /// Becomes the object number.
  void ConvertFrom(const NxObjId& id);

  /// Appends the number in decimal to out. Returns out.
  NxString& PrintToNxString(NxString& out) const;
  /// Becomes the number that text holds; 0 for an empty text.
  void ScanFromNxString(const NxString& text);

  unsigned short w0 = 0;  // bits 32 to 47
  unsigned short w1 = 0;  // bits 16 to 31
  unsigned short w2 = 0;  // bits 0 to 15
};
static_assert(sizeof(NxSeal) == 6 && offsetof(NxSeal, w1) == 2 && offsetof(NxSeal, w2) == 4);

#endif
