// The slots of NxDateTime.
#include "nxdatimx.h"

#include "nxtypes.h"

namespace {

// A date-time is a date and, behind it, a time.
constexpr unsigned kTimeOffset = 4;

}  // namespace

int NxDateTimeIsNull(void* value) {
  return NxDateIsNull(value) && NxTimeIsNull(static_cast<char*>(value) + kTimeOffset);
}
int NxDateTimeSetNull(void* value) {
  NxDateSetNull(value);
  return NxTimeSetNull(static_cast<char*>(value) + kTimeOffset);
}
