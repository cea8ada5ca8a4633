// The clock in milliseconds, as an NxInt64 holds them.

// Seconds since 1970 in 64 bits, so that the clock does not end in 2038.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64

#include "nxostime.h"

#include <sys/time.h>

#include "nxint64.h"

int GetSystemTimeInMSSinceTheEpoch(NxInt64& ms) {
  ms = NxInt64();
  timeval now = {};
  if (gettimeofday(&now, nullptr) != 0) return kClockUnreadable;
  ms = NxInt64::FromWide(now.tv_sec * 1000LL + now.tv_usec / 1000);
  return 0;
}
