// Byte-order conversion and stored sizes of scalars. The stored width of every
// scalar is its width in memory, and a stored value differs from the one in
// memory only in byte order, so that one template per width serves all types.

#include <cstring>

#include "nxbase.h"
#include "swapbytes.h"

namespace {

template <unsigned Width>
bool SwapsBytes(unsigned char format) {
  return Width > 1 && (format & kFormatCodeMask) == kFormatBigEndian;
}

template <unsigned Width>
__attribute__((noinline)) int ConvertArray(void* dst, const void* src, unsigned char format,
                                           unsigned long n) {
  const unsigned long bytes = n * Width;
  if (SwapsBytes<Width>(format)) {
    if constexpr (Width > 1) SwapArray<Width>(dst, src, n);
  } else if (bytes != 0 && dst != src) {
    std::memcpy(dst, src, bytes);
  }
  return static_cast<int>(bytes);
}

/// Converts n values of `Width` bytes; both directions are the same operation.
/// Single fields are the commonest call, and kept free of the array's costs.
template <unsigned Width>
inline int Convert(void* dst, const void* src, unsigned char format, unsigned long n) {
  if (n != 1) return ConvertArray<Width>(dst, src, format, n);
  using Value = typename UintOf<Width>::Type;
  const Value value = ReadValue<Value>(src);
  WriteValue(dst, SwapsBytes<Width>(format) ? Swapped(value) : value);
  return Width;
}

template <class T>
constexpr int StoredSize(unsigned long n) {
  return static_cast<int>(n * sizeof(T));
}

}  // namespace

int CharStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<1>(dst, src, format, n);
}
int ShortStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(short)>(dst, src, format, n);
}
int LongStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(long)>(dst, src, format, n);
}
int FloatStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(float)>(dst, src, format, n);
}
int DoubleStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(double)>(dst, src, format, n);
}
int IntStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(int)>(dst, src, format, n);
}
int IntLoad(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(int)>(dst, src, format, n);
}
int UnsignedStore(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(unsigned)>(dst, src, format, n);
}
int UnsignedLoad(void* dst, const void* src, unsigned char format, unsigned long n) {
  return Convert<sizeof(unsigned)>(dst, src, format, n);
}

int CharSizeGet(const void*, unsigned char, unsigned char, unsigned long n) { return StoredSize<char>(n); }
int ShortSizeGet(const void*, unsigned char, unsigned char, unsigned long n) { return StoredSize<short>(n); }
int LongSizeGet(const void*, unsigned char, unsigned char, unsigned long n) { return StoredSize<long>(n); }
int IntSizeGet(const void*, unsigned char, unsigned char, unsigned long n) { return StoredSize<int>(n); }
int FloatSizeGet(const void*, unsigned char, unsigned char, unsigned long n) { return StoredSize<float>(n); }
int DoubleSizeGet(const void*, unsigned char, unsigned char, unsigned long n) {
  return StoredSize<double>(n);
}

int CharNullSizeGet(unsigned long n) { return StoredSize<char>(n); }
int ShortNullSizeGet(unsigned long n) { return StoredSize<short>(n); }
int LongNullSizeGet(unsigned long n) { return StoredSize<long>(n); }
int IntNullSizeGet(unsigned long n) { return StoredSize<int>(n); }
int FloatNullSizeGet(unsigned long n) { return StoredSize<float>(n); }
int DoubleNullSizeGet(unsigned long n) { return StoredSize<double>(n); }
