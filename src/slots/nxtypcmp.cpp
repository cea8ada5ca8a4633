// Comparison of the fixed-size types: for every type how two of its values compare.

#include "nxtypcmp.h"

#include <cstdint>

#include "base/nxnullorder.h"
#include "nxbool.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxseal.h"
#include "slots/nxelement.h"
#include "slots/nxstoreddate.h"

namespace {

template <class V>
long OrderInPlace(const void* a, const void* b) {
  return NxOrder(NxReadValue<V>(a), NxReadValue<V>(b));
}

/// Compares one array of numbers with another.
template <class V, NxSlot::Load* kLoad>
long CompareNumbers(const NxOperands& arrays, unsigned char format, unsigned long count, int& error) {
  if (NxReadsInPlace(format)) return NxCompareArrays(arrays, count, error, OrderInPlace<V>);
  return NxCompareArrays(arrays, count, error, [format](const void* a, const void* b) {
    return NxOrder(NxReadElement<V, kLoad>(a, format), NxReadElement<V, kLoad>(b, format));
  });
}

}  // namespace

int IncrementPointer(void*& p, void* end, unsigned long size) {
  const auto begin = reinterpret_cast<std::uintptr_t>(p);
  const auto limit = reinterpret_cast<std::uintptr_t>(end);
  if (limit <= begin || size >= limit - begin) return kPastBuffer;
  p = static_cast<char*>(p) + size;
  return 0;
}

// ---------------------------------------------------------------------------
// Numbers

#define NX_COMPARE_NUMBERS(Name, Value, load, size)                                                          \
  long Name(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,        \
            unsigned short /*options*/, unsigned long count, int& error) {                                   \
    const unsigned long bytes = size;                                                                        \
    return CompareNumbers<Value, load>({{value1, len1, count, bytes}, {value2, len2, count, bytes}}, format, \
                                       count, error);                                                        \
  }

NX_COMPARE_NUMBERS(CharCompare, signed char, CharStore, 1)
NX_COMPARE_NUMBERS(ByteCompare, unsigned char, CharStore, 1)
NX_COMPARE_NUMBERS(ShortCompare, short, ShortStore, 2)
NX_COMPARE_NUMBERS(WordCompare, unsigned short, ShortStore, 2)
NX_COMPARE_NUMBERS(IntCompare, int, IntLoad, NxIntBytes(format))
NX_COMPARE_NUMBERS(UnsignedCompare, unsigned int, IntLoad, NxIntBytes(format))
NX_COMPARE_NUMBERS(LongCompare, long, LongStore, 4)
NX_COMPARE_NUMBERS(DwordCompare, unsigned long, LongStore, 4)
NX_COMPARE_NUMBERS(FloatCompare, float, FloatStore, 4)
NX_COMPARE_NUMBERS(DoubleCompare, double, DoubleStore, 8)
NX_COMPARE_NUMBERS(Int64Compare, NxInt64, Int64Load, 8)

#undef NX_COMPARE_NUMBERS

// ---------------------------------------------------------------------------
// Booleans and seals

namespace {

long OrderBooleans(const NxBoolean& a, const NxBoolean& b) {
  return NxOrderNullable(a, b, NxOrder<NxBoolean>);
}

/// The images of seals order as their bytes do.
long OrderSealImages(const void* a, const void* b) {
  auto* p = static_cast<const unsigned char*>(a);
  auto* q = static_cast<const unsigned char*>(b);
  for (unsigned i = 0; i < sizeof(NxSeal); ++i)
    if (p[i] != q[i]) return p[i] - q[i];
  return 0;
}

long OrderSeals(const void* a, const void* b) { return NxReadValue<NxSeal>(a) != NxReadValue<NxSeal>(b); }

}  // namespace

long BooleanCompare(unsigned char /*format*/, unsigned long len1, void* value1, unsigned long len2,
                    void* value2, unsigned short /*options*/, unsigned long count, int& error) {
  // A boolean is one byte, the same in every form.
  const NxOperands arrays = {{value1, len1, count, 1}, {value2, len2, count, 1}};
  return NxCompareArrays(arrays, count, error, [](const void* a, const void* b) {
    return OrderBooleans(NxReadValue<NxBoolean>(a), NxReadValue<NxBoolean>(b));
  });
}

long SealCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                 unsigned short /*options*/, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, sizeof(NxSeal)}, {value2, len2, count, sizeof(NxSeal)}};
  return NxCompareArrays(arrays, count, error, format == kFormatMemory ? OrderSeals : OrderSealImages);
}

// ---------------------------------------------------------------------------
// Dates and times

namespace {

long OrderDates(const void* a, const void* b) { return NxReadValue<NxDate>(a) != NxReadValue<NxDate>(b); }

/// Stored or not, a time is its three bytes.
long OrderTimes(const void* a, const void* b) { return NxReadValue<NxTime>(a) != NxReadValue<NxTime>(b); }

}  // namespace

long DateCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                 unsigned short options, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, sizeof(NxDate)}, {value2, len2, count, sizeof(NxDate)}};
  if (NxInMemory(format)) return NxCompareArrays(arrays, count, error, OrderDates);
  return NxCompareArrays(arrays, count, error, NxStoredDateOrder<short>(format, options));
}

long TimeCompare(unsigned char /*format*/, unsigned long len1, void* value1, unsigned long len2, void* value2,
                 unsigned short /*options*/, unsigned long count, int& error) {
  const NxOperands arrays = {{value1, len1, count, sizeof(NxTime)}, {value2, len2, count, sizeof(NxTime)}};
  return NxCompareArrays(arrays, count, error, OrderTimes);
}
