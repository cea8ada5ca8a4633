// Nullable scalars in queries: comparison, hashing, bounds and estimates. Null sorts
// before every number, hashes to a word of its own and has weights of its own in estimates.

#include "base/nxnullorder.h"
#include "nxnultyp.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "slots/nxnulimage.h"
#include "slots/nxterm.h"

namespace {

/// Bytes from one element of an array to the next.
template <class T, class V>
unsigned long ElementSize(unsigned char format) {
  return NxInMemory(format) ? sizeof(T) : NxNullImage<V>::kBytes;
}

/// One value of any form.
template <class T, class V, class H>
T ReadElement(const void* place, unsigned char format) {
  return NxInMemory(format) ? NxReadNullable<T>(place) : NxLoadNullable<T, V, H>(place, format);
}

/// -1, 0 or 1.
template <class T>
long Order(const T& a, const T& b) {
  return NxOrderNullable(a, b, [](const T& x, const T& y) { return NxOrder(x.value, y.value); });
}

template <class T, class V, class H>
long NxNullTypeCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                       void* value2, unsigned short /*options*/, unsigned long count, int& error,
                       T* = nullptr, V* = nullptr, H* = nullptr) {
  const unsigned long size = ElementSize<T, V>(format);
  const NxOperands arrays = {{value1, len1, count, size}, {value2, len2, count, size}};
  const auto compareBy = [&](auto read) {
    return NxCompareArrays(arrays, count, error,
                           [read](const void* a, const void* b) { return Order(read(a), read(b)); });
  };
  // With the code known as it is compiled, reading is a few instructions.
  switch (format & kFormatCodeMask) {
    case kFormatMemory:
      return compareBy([](const void* p) { return NxReadNullable<T>(p); });
    case kFormatNative:
      return compareBy([](const void* p) { return NxLoadNullable<T, V, H>(p, kFormatNative); });
    case kFormatBigEndian:
      return compareBy([](const void* p) { return NxLoadNullable<T, V, H>(p, kFormatBigEndian); });
    default:
      return compareBy([format](const void* p) { return NxLoadNullable<T, V, H>(p, format); });
  }
}

/// The word of a null. Embedded in hash indexes, never to change.
constexpr unsigned long kNullWord = 0xFEFE7575;

/// The words of the numbers are whole hashes, so that nothing is left to multiply.
template <class T, class V, class H>
unsigned long NxNullTypeHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                             int& error, T* = nullptr, V* = nullptr, H* = nullptr) {
  const NxElements array(value, len, count, ElementSize<T, V>(format));
  return NxCombineWords(array, count, error, [format, &error](const void* place) {
    T element = ReadElement<T, V, H>(place, format);
    if (element.IsNullValue()) return kNullWord;
    return H::kHash(kFormatMemory, sizeof(V), &element.value, 1, error);
  });
}

// ---------------------------------------------------------------------------
// Estimates

// What terms weigh, in keys, where the index's lowest key is null or the term is.
constexpr double kOpenHalf = 0.5;
constexpr double kEqualBesideNulls = 0.1;
constexpr double kEqualToNull = 0.001;

/// a - b as the numbers' type has it: 32-bit integers wrap.
template <class V>
double Difference(V a, V b) {
  if constexpr (std::is_integral_v<V>) {
    using Result = decltype(a - b);
    using Wrapping = std::make_unsigned_t<Result>;
    return static_cast<Result>(static_cast<Wrapping>(a) - static_cast<Wrapping>(b));
  } else {
    return a - b;
  }
}

template <class T>
double RangeAbove(const T& key, const T& lo, const T& hi, double step) {
  if (hi.IsNullValue()) return 0;
  if (key.IsNullValue() || lo.IsNullValue()) return kOpenHalf;
  return lo.value > key.value ? hi.value - (lo.value - step) : Difference(hi.value, key.value);
}

template <class T>
double RangeBelow(const T& key, const T& lo, const T& hi, double step) {
  if (key.IsNullValue() || hi.IsNullValue()) return 0;
  if (lo.IsNullValue()) return kOpenHalf;
  return key.value > hi.value ? hi.value + step - lo.value : Difference(key.value, lo.value);
}

template <class T>
double RangeAt(const T& key, const T& lo, const T& hi, double step) {
  if (key.IsNullValue()) return lo.IsNullValue() ? kEqualToNull : 0;
  if (hi.IsNullValue()) return 0;
  if (lo.IsNullValue()) return kEqualBesideNulls;
  return std::min(key.value, hi.value) + step - std::max(key.value, lo.value);
}

/// How much of the index's keys from lo to hi the relation to the key selects, each key
/// being `step` wide.
template <class T, class V>
double CalcRange(unsigned short relation, const T& key, const T& lo, const T& hi, double step) {
  double range = 0;
  const auto add = [&range](double piece) {
    if (piece > 0) range += piece;
  };
  if (relation & kRelationGreater) add(RangeAbove(key, lo, hi, step));
  if (relation & kRelationLess) add(RangeBelow(key, lo, hi, step));
  if (relation & kRelationEqual) add(RangeAt(key, lo, hi, step));
  return range;
}

double Widen(const NxInt64& v) { return v.low + v.high * 4294967296.0; }

NxNull_double Widen(const NxNull_NxInt64& v) {
  return v.IsNullValue() ? NxNull_double() : NxNull_double(Widen(v.value));
}

double CalcRange(unsigned short relation, const NxNull_NxInt64& key, const NxNull_NxInt64& lo,
                 const NxNull_NxInt64& hi, double step) {
  return CalcRange<NxNull_double, double>(relation, Widen(key), Widen(lo), Widen(hi), step);
}

/// The key of a term and the ends of the index's range, which are null without one.
template <class T, class V, class H>
NxTerm<T> ReadTerm(const NxIdxBounds* indexRange, const void* key, unsigned char format) {
  return NxTerm<T>(indexRange, key, ElementSize<T, V>(format),
                   [format](const void* image) { return ReadElement<T, V, H>(image, format); });
}

template <class T, class V, class H>
float NxNullTypeEvalAndBound(NxIdxBounds* indexRange, unsigned short relation, void* key,
                             unsigned char format, unsigned long count, NxIdxBounds* bounds, T* = nullptr,
                             V* = nullptr, H* = nullptr) {
  const NxTerm<T> term = ReadTerm<T, V, H>(indexRange, key, format);
  const double range = term.hasRange ? CalcRange<T, V>(relation, term.key, term.low, term.high, 1.0) : 0;
  SetBoundaries(bounds, key, relation, static_cast<unsigned long>(NxNullTypeSizeGet<T>(count)));
  const double keys = static_cast<double>(term.high.value) - static_cast<double>(term.low.value) + 1.0;
  return static_cast<float>(range / keys);
}

/// What a term selects of 64-bit keys, some of which doubles cannot tell from their
/// neighbours: a term that meets the index's range then still selects one.
double SelectedWide(unsigned short relation, const NxTerm<NxNull_NxInt64>& term) {
  const NxNull_NxInt64 &key = term.key, &lo = term.low, &hi = term.high;
  const double range = CalcRange(relation, key, lo, hi, 1.0);
  if (range == 0) {
    const bool notBelow =
        (relation & kRelationGreater) || lo.value <= key.value || (lo.IsNullValue() && !key.IsNullValue());
    const bool notAbove = (relation & kRelationLess) || key.value <= hi.value;
    if (notBelow && notAbove) return 1.0;
  }
  return key.IsNullValue() && !hi.IsNullValue() ? 1.0 : range;
}

}  // namespace

#define NX_NULL_COMPARE_AND_HASH(Type, Value, Scalar, Format)                                            \
  long Type##Compare(unsigned char format, unsigned long len1, void* value1, unsigned long len2,         \
                     void* value2, unsigned short options, unsigned long count, int& error) {            \
    return NxNullTypeCompare<Type, Value, Scalar##LSHelper>(format, len1, value1, len2, value2, options, \
                                                            count, error);                               \
  }                                                                                                      \
  unsigned long Type##Hash(unsigned char format, unsigned long len, void* value, unsigned long count,    \
                           int& error) {                                                                 \
    return NxNullTypeHash<Type, Value, Scalar##LSHelper>(format, len, value, count, error);              \
  }

NX_NULLABLE_TYPES(NX_NULL_COMPARE_AND_HASH)

#define NX_NULL_EVAL(Type, Value, Scalar, Format)                                                          \
  float Type##EvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,                   \
                           unsigned char format, unsigned long count, NxIdxBounds* bounds) {               \
    return NxNullTypeEvalAndBound<Type, Value, Scalar##LSHelper>(indexRange, relation, key, format, count, \
                                                                 bounds);                                  \
  }

NX_NULLABLE_NUMBERS(NX_NULL_EVAL)

float NxNull_NxInt64EvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                                 unsigned char format, unsigned long count, NxIdxBounds* bounds) {
  const auto term = ReadTerm<NxNull_NxInt64, NxInt64, Int64LSHelper>(indexRange, key, format);
  const double range = term.hasRange ? SelectedWide(relation, term) : 0;
  SetBoundaries(bounds, key, relation, count * NxNullImage<NxInt64>::kBytes);
  return static_cast<float>(range / (Widen(term.high.value) - Widen(term.low.value) + 1.0));
}
