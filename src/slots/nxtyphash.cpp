// Hashing of the fixed-size types: one walk over an array, and for every type the
// word that one of its values puts into the hash.

#include "nxtyphash.h"

#include "nxcomp.h"
#include "nxint64.h"
#include "nxseal.h"
#include "nxtypcmp.h"
#include "slots/nxelement.h"

namespace {

/// Combines the words of the elements that the buffer holds. Hashes are 32 bits wide.
template <class WordOf>
unsigned long HashArray(NxElements array, unsigned long count, int& error, WordOf word) {
  error = 0;
  unsigned long h = 0;
  for (unsigned long i = 0; i < count && error == 0; ++i) {
    if (!array.Holds()) {
      error = kPastBuffer;
      break;
    }
    h ^= word(array.Place());
    if (i + 1 < count && !array.Advance()) error = kPastBuffer;
  }
  return h * kHashMultiplier;
}

/// Integers hash as themselves, extended to 32 bits by their sign or with zeros.
template <class V, NxSlot::Load* kLoad>
unsigned long HashNumbers(const NxElements& array, unsigned char format, unsigned long count, int& error) {
  return HashArray(array, count, error, [format](const void* p) {
    return static_cast<unsigned long>(static_cast<long>(NxReadElement<V, kLoad>(p, format)));
  });
}

/// Three fields in one word, as a sum: the sign of a field reaches into those above.
unsigned long JoinFields(long high, long middle, long low) {
  return (static_cast<unsigned long>(high) << 16) + (static_cast<unsigned long>(middle) << 8) +
         static_cast<unsigned long>(low);
}

}  // namespace

#define NX_HASH_NUMBERS(Name, Value, load, size)                                                \
  unsigned long Name(unsigned char format, unsigned long len, void* value, unsigned long count, \
                     int& error) {                                                              \
    return HashNumbers<Value, load>({value, len, count, size}, format, count, error);           \
  }

NX_HASH_NUMBERS(CharHash, signed char, CharStore, 1)
NX_HASH_NUMBERS(ByteHash, unsigned char, CharStore, 1)
NX_HASH_NUMBERS(ShortHash, short, ShortStore, 2)
NX_HASH_NUMBERS(WordHash, unsigned short, ShortStore, 2)
NX_HASH_NUMBERS(IntHash, int, IntLoad, NxIntBytes(format))
NX_HASH_NUMBERS(UnsignedHash, int, IntLoad, NxIntBytes(format))
NX_HASH_NUMBERS(LongHash, long, LongStore, 4)
NX_HASH_NUMBERS(DwordHash, long, LongStore, 4)
NX_HASH_NUMBERS(FloatHash, long, LongStore, 4)  // by its bits
NX_HASH_NUMBERS(BooleanHash, signed char, BooleanLoad, 1)

#undef NX_HASH_NUMBERS

unsigned long DoubleHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  return HashArray({value, len, count, sizeof(double)}, count, error, [format](const void* p) {
    // Each half is converted by itself.
    auto* half = static_cast<const unsigned char*>(p);
    return NxReadElement<unsigned long, LongStore>(half, format) ^
           NxReadElement<unsigned long, LongStore>(half + 4, format);
  });
}

unsigned long Int64Hash(unsigned char format, unsigned long len, void* value, unsigned long count,
                        int& error) {
  return HashArray({value, len, count, sizeof(NxInt64)}, count, error, [format](const void* p) {
    const NxInt64 v = NxReadElement<NxInt64, Int64Load>(p, format);
    return v.low ^ static_cast<unsigned long>(v.high);
  });
}

unsigned long DateHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                       int& error) {
  return HashArray({value, len, count, sizeof(NxDate)}, count, error, [format](const void* p) {
    auto* fields = static_cast<const signed char*>(p) + 2;
    return JoinFields(NxReadElement<short, ShortStore>(p, format), fields[0], fields[1]);
  });
}

unsigned long TimeHash(unsigned char /*format*/, unsigned long len, void* value, unsigned long count,
                       int& error) {
  return HashArray({value, len, count, sizeof(NxTime)}, count, error, [](const void* p) {
    auto* fields = static_cast<const signed char*>(p);
    return JoinFields(fields[0], fields[1], fields[2]);
  });
}

unsigned long SealHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                       int& error) {
  return HashArray({value, len, count, sizeof(NxSeal)}, count, error, [format](const void* p) {
    const NxSeal v = NxReadElement<NxSeal, SealLoad>(p, format);
    return static_cast<unsigned long>(v.w0 ^ v.w1 ^ v.w2);
  });
}
