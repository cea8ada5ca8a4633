// A vector of sixteen bytes holds one to eight values. One shuffle brings their bytes to
// their places, another brings to each byte the flag that decides whether it counts.
// Vectors overlap where what they make is shorter than they are.
#include "slots/nxnulpack.h"

#include <tmmintrin.h>

#include <algorithm>

namespace {

using Byte = unsigned char;

constexpr unsigned kVectorBytes = 16;
constexpr Byte kNone = 0x80;  // in a shuffle: the byte becomes 0
constexpr Byte kNull = 1;     // the flag of a null, as it is written

/// One byte for each of a vector.
struct Pattern {
  explicit Pattern(Byte byte) { std::fill(bytes, bytes + kVectorBytes, byte); }
  Byte& operator[](unsigned i) { return bytes[i]; }
  __m128i Vector() const { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

  Byte bytes[kVectorBytes];
};

__m128i Read(const Byte* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
void Write(Byte* to, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v); }

/// Sizes of values whose number has so many bytes.
template <unsigned kNumberBytes>
struct Sizes {
  static constexpr unsigned kNumber = kNumberBytes;
  static constexpr unsigned kValue = kNumberBytes < 4 ? 2 * kNumberBytes : kNumberBytes + 4;
  static constexpr unsigned kImage = kNumberBytes + 1;
  static constexpr unsigned kStep = kVectorBytes / kValue;  // values in a vector
  static constexpr unsigned kSteps = 4;                     // vectors at a time
  /// Values that must be left: behind those that the last vector moves, it reads or
  /// writes no more than there is.
  static constexpr unsigned kEnough = (kSteps - 1) * kStep + (kVectorBytes + kImage - 1) / kImage;
};

template <class Size>
__attribute__((target("ssse3"))) unsigned long Pack(const NxNullShape& shape, Byte* image, const Byte* values,
                                                    unsigned long count) {
  Pattern place(kNone), flagOf(kNone), most(0xFF);
  for (unsigned v = 0; v < Size::kStep; ++v) {
    const unsigned from = v * Size::kValue, flag = from + Size::kNumber, to = v * Size::kImage;
    for (unsigned i = 0; i < Size::kNumber; ++i) {
      place[to + shape.numberAt + i] = static_cast<Byte>(from + shape.order[i]);
      flagOf[to + shape.numberAt + i] = static_cast<Byte>(flag);
    }
    place[to + shape.flagAt] = static_cast<Byte>(flag);
    most[flag] = kNull;
  }
  const __m128i places = place.Vector(), flagsOf = flagOf.Vector(), limits = most.Vector();
  unsigned long left = count;
  for (; left >= Size::kEnough; left -= Size::kSteps * Size::kStep) {
    for (unsigned i = 0; i < Size::kSteps; ++i) {
      // Flags become 0 or 1. Then the bytes of numbers whose flag is 1 become 0.
      const __m128i v = _mm_min_epu8(Read(values), limits);
      const __m128i keep = _mm_cmpeq_epi8(_mm_shuffle_epi8(v, flagsOf), _mm_setzero_si128());
      Write(image, _mm_and_si128(_mm_shuffle_epi8(v, places), keep));
      values += Size::kStep * Size::kValue;
      image += Size::kStep * Size::kImage;
    }
  }
  return count - left;
}

template <class Size>
__attribute__((target("ssse3"))) unsigned long Unpack(const NxNullShape& shape, Byte* values,
                                                      const Byte* image, unsigned long count) {
  Pattern place(kNone), flagOf(kNone), number(0);
  for (unsigned v = 0; v < Size::kStep; ++v) {
    const unsigned from = v * Size::kImage, flag = from + shape.flagAt, to = v * Size::kValue;
    for (unsigned i = 0; i < Size::kNumber; ++i) {
      place[to + i] = static_cast<Byte>(from + shape.numberAt + shape.order[i]);
      flagOf[to + i] = static_cast<Byte>(flag);
      number[to + i] = 0xFF;
    }
    place[to + Size::kNumber] = flagOf[to + Size::kNumber] = static_cast<Byte>(flag);
  }
  const __m128i places = place.Vector(), flagsOf = flagOf.Vector(), numbers = number.Vector();
  unsigned long left = count;
  for (; left >= Size::kEnough; left -= Size::kSteps * Size::kStep) {
    for (unsigned i = 0; i < Size::kSteps; ++i) {
      // Of a null its flag is kept, of any other value the number.
      const __m128i v = Read(image);
      const __m128i null = _mm_cmpeq_epi8(_mm_shuffle_epi8(v, flagsOf), _mm_set1_epi8(kNull));
      Write(values, _mm_and_si128(_mm_shuffle_epi8(v, places), _mm_xor_si128(null, numbers)));
      image += Size::kStep * Size::kImage;
      values += Size::kStep * Size::kValue;
    }
  }
  return count - left;
}

bool CanShuffle() { return __builtin_cpu_supports("ssse3"); }

}  // namespace

template <unsigned kNumberBytes>
unsigned long NxPackNulls(const NxNullShape& shape, void* image, const void* values, unsigned long count) {
  if (!CanShuffle()) return 0;
  return Pack<Sizes<kNumberBytes>>(shape, static_cast<Byte*>(image), static_cast<const Byte*>(values), count);
}

template <unsigned kNumberBytes>
unsigned long NxUnpackNulls(const NxNullShape& shape, void* values, const void* image, unsigned long count) {
  if (!CanShuffle()) return 0;
  return Unpack<Sizes<kNumberBytes>>(shape, static_cast<Byte*>(values), static_cast<const Byte*>(image),
                                     count);
}

#define NX_PACK(bytes)                                                                              \
  template unsigned long NxPackNulls<bytes>(const NxNullShape&, void*, const void*, unsigned long); \
  template unsigned long NxUnpackNulls<bytes>(const NxNullShape&, void*, const void*, unsigned long);

NX_PACK(1)
NX_PACK(2)
NX_PACK(4)
NX_PACK(8)
