// Scalars of every width, format, alignment and count: storing gives the bytes that
// a byte-wise copy gives, loading undoes it, and nothing beside the arrays is touched.

#include <iterator>

#include "input.h"
#include "nxbase.h"

namespace {

using Converter = int (*)(void*, const void*, unsigned char, unsigned long);

constexpr Converter kConverters[] = {CharStore,   ShortStore, LongStore,   FloatStore,
                                     DoubleStore, IntStore,   UnsignedLoad};
constexpr unsigned long kWidths[] = {1, 2, 4, 4, 8, 4, 4};

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

  const Block values(data + 2, bytes), image(shift + bytes), back(bytes), truth(bytes);
  unsigned char* const unaligned = image.Data() + shift;
  Require(kConverters[type](unaligned, values.Data(), format, n) == static_cast<int>(bytes));
  Require(kConverters[type](back.Data(), unaligned, format, n) == static_cast<int>(bytes));
  SwapPlainly(truth.Data(), values.Data(), (format & kFormatCodeMask) == kFormatBigEndian ? width : 1, bytes);
  Require(bytes == 0 || std::memcmp(unaligned, truth.Data(), bytes) == 0);
  Require(back == values);
  return 0;
}
