// Byte-order conversion and stored sizes of scalars. The stored width of every
// scalar is its width in memory, and a stored value differs from the one in
// memory only in byte order, so that one template per width serves all types.

#include <cstring>

#include "nxbase.h"
#include "swapbytes.h"

namespace {

/// Converts n values of `Width` bytes; both directions are the same operation.
template <unsigned Width>
inline int Convert(void* dst, const void* src, unsigned char format, unsigned long n) {
  const unsigned long bytes = n * Width;
  if (Width > 1 && (format & kFormatCodeMask) == kFormatBigEndian) {
    if (n == 1) {
      SwapOne<Width>(dst, src);
    } else {
      SwapArray<Width>(dst, src, n);
    }
  } else if (n == 1) {
    CopyOne<Width>(dst, src);
  } else if (n != 0) {
    std::memmove(dst, src, bytes);  // dst may equal src
  }
  return static_cast<int>(bytes);
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
