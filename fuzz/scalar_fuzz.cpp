// Scalars of every width, format, alignment and count: storing gives the bytes that
// a byte-wise copy gives, loading undoes it, and nothing beside the arrays is touched.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>

#include "nxbase.h"

namespace {

using Converter = int (*)(void*, const void*, unsigned char, unsigned long);

constexpr Converter kConverters[] = {CharStore,   ShortStore, LongStore,   FloatStore,
                                     DoubleStore, IntStore,   UnsignedLoad};
constexpr unsigned long kWidths[] = {1, 2, 4, 4, 8, 4, 4};

void Require(bool condition) {
  if (!condition) __builtin_trap();
}

void SwapPlainly(unsigned char* dst, const unsigned char* src, unsigned long width, unsigned long bytes) {
  for (unsigned long i = 0; i < bytes; ++i) dst[i] = src[i - i % width + (width - 1 - i % width)];
}

}  // namespace

// Two bytes choose the conversion, the format and the alignment; the rest is the array.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t type = data[0] % std::size(kConverters);
  const unsigned long shift = data[0] / std::size(kConverters) % 16;
  const unsigned char format = data[1];
  const unsigned long width = kWidths[type];
  const unsigned long n = (size - 2) / width;
  const unsigned long bytes = n * width;

  // Allocations of exactly the bytes in use, so that a step beside them is seen.
  const std::unique_ptr<unsigned char[]> image(new unsigned char[shift + bytes]);
  const std::unique_ptr<unsigned char[]> back(new unsigned char[bytes]);
  const std::unique_ptr<unsigned char[]> truth(new unsigned char[bytes]);
  const std::uint8_t* values = data + 2;
  Require(kConverters[type](image.get() + shift, values, format, n) == static_cast<int>(bytes));
  Require(kConverters[type](back.get(), image.get() + shift, format, n) == static_cast<int>(bytes));
  SwapPlainly(truth.get(), values, (format & kFormatCodeMask) == kFormatBigEndian ? width : 1, bytes);
  Require(std::memcmp(image.get() + shift, truth.get(), bytes) == 0);
  Require(std::memcmp(back.get(), values, bytes) == 0);
  return 0;
}
