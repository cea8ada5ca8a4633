/// The clock of the operating system.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXOSTIME_H
#define NXOSTIME_H

#include "nxapi.h"

class NxInt64;

/// Result codes of GetSystemTimeInMSSinceTheEpoch.
inline constexpr int kClockUnreadable = -2172;
inline constexpr int kNoWorkingStorage = -2030;  // not met: the call needs none

/// Sets ms to the milliseconds since 1970-01-01 00:00:00 universal time. 0, or -2172
/// with ms 0 when the clock cannot be read.
NX_API int GetSystemTimeInMSSinceTheEpoch(NxInt64& ms);

#endif
