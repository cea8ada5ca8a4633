// Searching in 32 bits: NxString::Find answers a signed 16-bit position, which is
// negative for the second half of a long text.
#ifndef NXSTRFIND_H
#define NXSTRFIND_H

#include "nxoption.h"
#include "nxstring.h"

inline constexpr long kNoMatch = -1;

/// Position of the first match of pattern at or after start, or kNoMatch.
long NxFindText(const NxString& s, const NxString& pattern, unsigned long start, unsigned short op);

#endif
