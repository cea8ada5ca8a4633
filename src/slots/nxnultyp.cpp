// The slots of the nullable scalars.
#include "nxnultyp.h"

#include <cstring>

#include "nxtypes.h"

namespace {

/// A nullable scalar is its value, then its null flag.
template <unsigned kValueBytes>
int NullFlag(const void* value) {
  return static_cast<const signed char*>(value)[kValueBytes];
}

template <unsigned kValueBytes>
int SetNullFlag(void* value) {
  std::memset(value, 0, kValueBytes);
  static_cast<signed char*>(value)[kValueBytes] = 1;
  return 0;
}

}  // namespace

int NxNull_charIsNull(void* value) { return NullFlag<1>(value); }
int NxNull_charSetNull(void* value) { return SetNullFlag<1>(value); }
int NxNull_ucharIsNull(void* value) { return NullFlag<1>(value); }
int NxNull_ucharSetNull(void* value) { return SetNullFlag<1>(value); }
int NxNull_shortIsNull(void* value) { return NullFlag<2>(value); }
int NxNull_shortSetNull(void* value) { return SetNullFlag<2>(value); }
int NxNull_ushortIsNull(void* value) { return NullFlag<2>(value); }
int NxNull_ushortSetNull(void* value) { return SetNullFlag<2>(value); }
int NxNull_intIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_intSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_unsignedIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_unsignedSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_longIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_longSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_ulongIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_ulongSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_floatIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_floatSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_doubleIsNull(void* value) { return NullFlag<8>(value); }
int NxNull_doubleSetNull(void* value) { return SetNullFlag<8>(value); }
int NxNull_NxInt64IsNull(void* value) { return NullFlag<8>(value); }
int NxNull_NxInt64SetNull(void* value) { return SetNullFlag<8>(value); }
