/// The disk code set: the bytes in which case-insensitive strings are stored.
///
/// Bytes below 0x80 stand for themselves. The two maps are not inverse to each other
/// everywhere: 0xAC and 0xEC are stored as 0x98 and 0x9A and come back as 0x90 and
/// 0x91. Stored images depend on both; they never change.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXCODSET_H
#define NXCODSET_H

#include "nxapi.h"

/// The stored byte of a byte in memory.
NX_API unsigned char _NxConvertToDiskFormat(unsigned char c);
/// The byte in memory of a stored byte.
NX_API unsigned char _NxConvertFromDiskFormat(unsigned char c);

#endif
