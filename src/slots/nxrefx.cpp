// The slots of identifiers and references.
#include "nxrefx.h"

#include <cstring>

#include "nxtypes.h"

namespace {

template <class T>
T Field(const void* value, unsigned offset) {
  T field;
  std::memcpy(&field, static_cast<const char*>(value) + offset, sizeof field);
  return field;
}

constexpr unsigned short kNoClass = 65535;

// Where the fields of an object identifier stand: block, low and high are the first
// ten bytes; the class identifier is classNumber, version.
constexpr unsigned kLowOffset = 4;
constexpr unsigned kHighOffset = 8;
constexpr unsigned kObjIdBytes = 10;

}  // namespace

int NxObjIdIsNull(void* value) {
  return Field<unsigned int>(value, kLowOffset) == 0 && Field<unsigned short>(value, kHighOffset) == 0;
}
int NxObjIdSetNull(void* value) {
  std::memset(value, 0, kObjIdBytes);
  return 0;
}

int NxRefIsNull(void* value) { return NxObjIdIsNull(value); }
int NxRefSetNull(void* value) { return NxObjIdSetNull(value); }

int NxClassIdIsNull(void* value) {
  return Field<unsigned short>(value, 0) == kNoClass && Field<unsigned short>(value, 2) == kNoClass;
}
int NxClassIdSetNull(void* value) {
  std::memset(value, 0xFF, 4);
  return 0;
}
