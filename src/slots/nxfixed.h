// Slots of types whose image has as many bytes for every value: sizes and translation.
#ifndef NXFIXED_H
#define NXFIXED_H

#include <algorithm>
#include <cstring>

#include "nxtypes.h"

constexpr int NxStoredSize(unsigned long bytesPerValue, unsigned long n) {
  return static_cast<int>(bytesPerValue * n);
}

/// NullSizeGet, SizeGet and SizeGetFromMemFile of a type with `bytes` stored bytes a value.
#define NX_FIXED_SIZE(Type, bytes)                                                \
  int Type##NullSizeGet(unsigned long n) { return NxStoredSize(bytes, n); }       \
  int Type##SizeGet(const void*, unsigned char, unsigned char, unsigned long n) { \
    return NxStoredSize(bytes, n);                                                \
  }                                                                               \
  int Type##SizeGetFromMemFile(MemFile*, unsigned char, unsigned long n) { return NxStoredSize(bytes, n); }

/// Cuts an image or fills up behind it with zeros; returns the bytes of it that fit.
inline int NxResizeImage(void* dst, unsigned long dstLength, const void* src, unsigned long srcLength) {
  const unsigned long k = std::min(srcLength, dstLength);
  if (k != 0) std::memmove(dst, src, k);
  if (k < dstLength) std::memset(static_cast<unsigned char*>(dst) + k, 0, dstLength - k);
  return static_cast<int>(k);
}

/// Loads, stores, copies or resizes by what is in memory on each side.
template <unsigned long kMemoryBytes, NxSlot::Load* kLoad, NxSlot::Store* kStore>
int NxTranslateFixed(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                     unsigned char srcForm, unsigned long srcLength, unsigned long n) {
  const bool toMemory = dstForm & kFormatMemory;
  const bool fromMemory = srcForm & kFormatMemory;
  if (toMemory && fromMemory) return CharStore(dst, src, kFormatNative, kMemoryBytes * n);
  if (toMemory) return kLoad(dst, src, srcForm, n);
  if (fromMemory) return kStore(dst, src, dstForm & kFormatCodeMask, n);
  return NxResizeImage(dst, dstLength, src, srcLength);
}

/// A Translate slot of a type with `bytes` bytes a value in memory.
#define NX_FIXED_TRANSLATE(Name, bytes, load, store)                                                    \
  int Name(void* dst, unsigned char dstForm, unsigned long dstLength, void* src, unsigned char srcForm, \
           unsigned long srcLength, unsigned long n) {                                                  \
    return NxTranslateFixed<bytes, load, store>(dst, dstForm, dstLength, src, srcForm, srcLength, n);   \
  }

#endif
