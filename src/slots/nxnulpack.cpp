// A lane of sixteen bytes holds one to eight values. One shuffle brings their bytes to
// their places, another brings to each byte the flag that decides whether it counts.
// Lanes overlap in memory where what they make is shorter than they are. A vector has two.
#include "slots/nxnulpack.h"

#include <immintrin.h>

#include <algorithm>

namespace {

using Byte = unsigned char;

constexpr unsigned kLaneBytes = 16;
constexpr Byte kNone = 0x80;  // in a shuffle: the byte becomes 0
constexpr Byte kNull = 1;     // the flag of a null, as it is written

#define NX_AVX2 __attribute__((target("avx2")))

/// One byte for each of a lane.
struct Pattern {
  explicit Pattern(Byte byte) { std::fill(bytes, bytes + kLaneBytes, byte); }
  Byte& operator[](unsigned i) { return bytes[i]; }
  /// The same in both lanes.
  NX_AVX2 __m256i Vector() const {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
  }

  Byte bytes[kLaneBytes];
};

/// The lanes at `from` and `distance` bytes behind it.
NX_AVX2 inline __m256i Read(const Byte* from, unsigned distance) {
  const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + distance));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1);
}
NX_AVX2 inline void Write(Byte* to, unsigned distance, __m256i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to + distance), _mm256_extracti128_si256(v, 1));
}

/// Sizes of values whose number has so many bytes.
template <unsigned kNumberBytes>
struct Sizes {
  static constexpr unsigned kNumber = kNumberBytes;
  static constexpr unsigned kValue = kNumberBytes < 4 ? 2 * kNumberBytes : kNumberBytes + 4;
  static constexpr unsigned kImage = kNumberBytes + 1;
  static constexpr unsigned kStep = kLaneBytes / kValue;  // values in a lane
  static constexpr unsigned kLanes = 4;                   // at a time
  static constexpr unsigned kValueLane = kStep * kValue;  // bytes that a lane moves
  static constexpr unsigned kImageLane = kStep * kImage;
  /// Values that must be left: behind those that the last lane moves, it reads or
  /// writes no more than there is.
  static constexpr unsigned kEnough = (kLanes - 1) * kStep + (kLaneBytes + kImage - 1) / kImage;
};

template <class Size>
NX_AVX2 unsigned long Pack(const NxNullShape& shape, Byte* image, const Byte* values, unsigned long count) {
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
  const __m256i places = place.Vector(), flagsOf = flagOf.Vector(), limits = most.Vector();
  unsigned long left = count;
  for (; left >= Size::kEnough; left -= Size::kLanes * Size::kStep) {
    for (unsigned i = 0; i < Size::kLanes; i += 2) {
      // Flags become 0 or 1. Then the bytes of numbers whose flag is 1 become 0.
      const __m256i v = _mm256_min_epu8(Read(values, Size::kValueLane), limits);
      const __m256i keep = _mm256_cmpeq_epi8(_mm256_shuffle_epi8(v, flagsOf), _mm256_setzero_si256());
      Write(image, Size::kImageLane, _mm256_and_si256(_mm256_shuffle_epi8(v, places), keep));
      values += 2 * Size::kValueLane;
      image += 2 * Size::kImageLane;
    }
  }
  return count - left;
}

template <class Size>
NX_AVX2 unsigned long Unpack(const NxNullShape& shape, Byte* values, const Byte* image, unsigned long count) {
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
  const __m256i places = place.Vector(), flagsOf = flagOf.Vector(), numbers = number.Vector();
  unsigned long left = count;
  for (; left >= Size::kEnough; left -= Size::kLanes * Size::kStep) {
    for (unsigned i = 0; i < Size::kLanes; i += 2) {
      // Of a null its flag is kept, of any other value the number.
      const __m256i v = Read(image, Size::kImageLane);
      const __m256i null = _mm256_cmpeq_epi8(_mm256_shuffle_epi8(v, flagsOf), _mm256_set1_epi8(kNull));
      Write(values, Size::kValueLane,
            _mm256_and_si256(_mm256_shuffle_epi8(v, places), _mm256_xor_si256(null, numbers)));
      image += 2 * Size::kImageLane;
      values += 2 * Size::kValueLane;
    }
  }
  return count - left;
}

bool CanShuffle() { return __builtin_cpu_supports("avx2"); }

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
