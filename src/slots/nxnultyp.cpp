// The slots of the nullable scalars: life cycle, images, string arrays and text. One
// template a slot, of which each type's function is an instance.
#include "nxnultyp.h"

#include <cstring>
#include <type_traits>

#include "nxconv.h"
#include "nxnulltext.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "nxtypfmt.h"
#include "slots/nxconvkit.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"
#include "slots/nxnulimage.h"
#include "text/nxtextio.h"

namespace {

// ---------------------------------------------------------------------------
// Life cycle

template <class T>
void* NxNullTypeCreate(unsigned long count, T* = nullptr) {
  return NxObjectForm<T>::Create(count);
}

template <class T>
int NxNullTypeDelete(void* values, unsigned long count, T* = nullptr) {
  return NxObjectForm<T>::Delete(values, count);
}

template <class T>
void NxNullTypeConstructor(void* values, unsigned long count, T* = nullptr) {
  NxPlainValues<T>::Construct(values, count);
}

template <class T>
void NxNullTypeDestructor(void* values, unsigned long count, T* = nullptr) {
  NxPlainValues<T>::Destroy(values, count);
}

template <class T>
void NxNullTypeAssignment(void* dst, void* src, unsigned long count, int broadcast, T* = nullptr) {
  NxPlainValues<T>::Assign(dst, src, count, broadcast);
}

template <class T>
void NxNullTypeCopy(void* dst, void* src, unsigned long count, int broadcast, T* = nullptr) {
  NxPlainValues<T>::Copy(dst, src, count, broadcast);
}

template <class T>
int NullFlag(const void* value) {
  return static_cast<const signed char*>(value)[offsetof(T, nullFlag)];
}

/// What stands behind the flag stays as it is.
template <class T>
int MakeNull(void* value) {
  const T null;
  std::memcpy(value, &null, offsetof(T, nullFlag) + sizeof null.nullFlag);
  return 0;
}

/// Load and Store with the arguments of the slots.
template <class T, class V, class H>
struct Image {
  static int Load(void* values, const void* image, unsigned char format, unsigned long count) {
    return NxNullTypeLoad<T, V, H>(values, image, format, count);
  }
  static int Store(void* image, const void* values, unsigned char format, unsigned long count) {
    return NxNullTypeStore<T, V, H>(image, values, format, count);
  }
};

template <class T, class V, class H>
int NxNullTypeTranslate(void* dst, unsigned char dstFormat, unsigned long dstLen, void* src,
                        unsigned char srcFormat, unsigned long srcLen, unsigned long count, T* = nullptr,
                        V* = nullptr, H* = nullptr) {
  return NxTranslateFixed<sizeof(T), Image<T, V, H>::Load, Image<T, V, H>::Store>(dst, dstFormat, dstLen, src,
                                                                                  srcFormat, srcLen, count);
}

// ---------------------------------------------------------------------------
// String arrays

/// A char and an unsigned short as the character, other numbers in decimal.
template <class V>
NxString StringOf(const V& number) {
  return NxString(number);
}
NxString StringOf(const NxInt64& number) {
  NxString s;
  return number.PrintToNxString(s, nullptr);
}

template <class V>
V NumberOf(const NxString& s) {
  if constexpr (std::is_same_v<V, NxInt64>) {
    NxInt64 number;
    number.ScanFromNxString(s, nullptr);
    return number;
  } else if constexpr (std::is_floating_point_v<V>) {
    return static_cast<V>(static_cast<double>(s));
  } else {
    return static_cast<V>(static_cast<long>(s));
  }
}

template <class T>
NxTypeConvertData* NxNullTypeConvertToNxString(void* values, unsigned long count, T* = nullptr) {
  return NxTextsOf<T>(values, count, [](const T& value, NxString& s) {
    if (value.IsNullValue())
      s.SetNullValue();
    else
      s = StringOf(value.value);
  });
}

template <class T, class V>
void* NxNullTypeConvertFromNxString(NxTypeConvertData* strings, unsigned long count, T* = nullptr,
                                    V* = nullptr) {
  return NxValuesOf<T>(strings, count, NxObjectForm<T>::Create, NxObjectForm<T>::Delete, T(),
                       [](const NxString& s) { return T(NumberOf<V>(s)); });
}

// ---------------------------------------------------------------------------
// Text

/// Integers print as ints: conversions take no more of one than its own bits.
template <class V>
NxString& PrintNumber(NxString& text, V number, const char* format) {
  if constexpr (std::is_same_v<V, float>) return FloatPrintToNxString(text, &number, format, 1);
  if constexpr (std::is_same_v<V, double>) return DoublePrintToNxString(text, &number, format, 1);
  auto word = static_cast<int>(number);
  return IntPrintToNxString(text, &word, format, 1);
}

template <class T, class V>
NxString& NxNullTypePrintToNxString(NxString& text, void* value, const char* format, unsigned long /*n*/,
                                    T* = nullptr, V* = nullptr) {
  const T element = NxReadValue<T>(value);
  if (element.IsNullValue()) return text = __NullPrintString;
  return PrintNumber<V>(text, element.value, format);
}

/// Makes a value null, or lets read(number) change its number.
template <class T, class Read>
void* Scan(void* value, bool isNull, Read read) {
  T element = NxReadValue<T>(value);
  if (isNull) {
    element.SetNullValue();
  } else {
    read(element.value);
    element.nullFlag = 0;
  }
  std::memcpy(value, &element, sizeof element);
  return value;
}

template <class T, class V>
void* NxNullTypeScanFromNxString(void* value, NxString& text, const char* format, unsigned long /*n*/,
                                 T* = nullptr, V* = nullptr) {
  if (!value) return nullptr;
  const NxScanText input(text);
  if (input.IsMissing()) return value;
  const long length = input.String().Len();
  return Scan<T>(value, length == 0 || NxBeginsWithNullText(input.String()),
                 [&](V& number) { MySscanf(input.Chars(), length, format, 1, &number); });
}

}  // namespace

NxString& NxNull_NxInt64PrintToNxString(NxString& text, void* value, const char* format, unsigned long n) {
  auto element = NxReadValue<NxNull_NxInt64>(value);
  if (element.IsNullValue()) return text = __NullPrintString;
  return Int64PrintToNxString(text, &element.value, format, n);
}

void* NxNull_NxInt64ScanFromNxString(void* value, NxString& text, const char* format, unsigned long n) {
  if (!value) return nullptr;
  const NxScanText input(text);
  if (input.IsMissing()) return value;
  return Scan<NxNull_NxInt64>(value, !*input.Chars() || NxBeginsWithNullText(input.String()),
                              [&](NxInt64& number) { Int64ScanFromNxString(&number, text, format, n); });
}

// ---------------------------------------------------------------------------
// Instances

#define NX_NULL_SLOTS(Type, Value, Scalar, Format)                                                      \
  void* Type##Create(unsigned long count) { return NxNullTypeCreate<Type>(count); }                     \
  int Type##Delete(void* values, unsigned long count) { return NxNullTypeDelete<Type>(values, count); } \
  int Type##Store(void* dst, const void* src, unsigned char format, unsigned long count) {              \
    return NxNullTypeStore<Type, Value, Scalar##LSHelper>(dst, src, format, count);                     \
  }                                                                                                     \
  int Type##Load(void* dst, const void* src, unsigned char format, unsigned long count) {               \
    return NxNullTypeLoad<Type, Value, Scalar##LSHelper>(dst, src, format, count);                      \
  }                                                                                                     \
  int Type##NullSizeGet(unsigned long count) { return NxNullTypeSizeGet<Type>(count); }                 \
  int Type##SizeGet(const void*, unsigned char, unsigned char, unsigned long count) {                   \
    return NxNullTypeSizeGet<Type>(count);                                                              \
  }                                                                                                     \
  int Type##SizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count) {              \
    return NxNullTypeSizeGetFromMemFile<Type>(file, format, count);                                     \
  }                                                                                                     \
  NxTypeConvertData* Type##ConvertToNxString(void* values, unsigned long count) {                       \
    return NxNullTypeConvertToNxString<Type>(values, count);                                            \
  }                                                                                                     \
  void* Type##ConvertFromNxString(NxTypeConvertData* strings, unsigned long count) {                    \
    return NxNullTypeConvertFromNxString<Type, Value>(strings, count);                                  \
  }                                                                                                     \
  void Type##Constructor(void* values, unsigned long count, unsigned long) {                            \
    NxNullTypeConstructor<Type>(values, count);                                                         \
  }                                                                                                     \
  void Type##Destructor(void* values, unsigned long count, unsigned long) {                             \
    NxNullTypeDestructor<Type>(values, count);                                                          \
  }                                                                                                     \
  void Type##Assignment(void* dst, void* src, unsigned long count, int broadcast) {                     \
    NxNullTypeAssignment<Type>(dst, src, count, broadcast);                                             \
  }                                                                                                     \
  void Type##Copy(void* dst, void* src, unsigned long count, int broadcast) {                           \
    NxNullTypeCopy<Type>(dst, src, count, broadcast);                                                   \
  }                                                                                                     \
  int Type##Translate(void* dst, unsigned char dstFormat, unsigned long dstLen, void* src,              \
                      unsigned char srcFormat, unsigned long srcLen, unsigned long count) {             \
    return NxNullTypeTranslate<Type, Value, Scalar##LSHelper>(dst, dstFormat, dstLen, src, srcFormat,   \
                                                              srcLen, count);                           \
  }                                                                                                     \
  int Type##IsNull(void* value) { return NullFlag<Type>(value); }                                       \
  int Type##SetNull(void* value) { return MakeNull<Type>(value); }                                      \
  void* Type##DefaultValue(unsigned long count, int) { return Type##Create(count); }

NX_NULLABLE_TYPES(NX_NULL_SLOTS)

#define NX_NULL_TEXT(Type, Value, Scalar, Format)                                                     \
  NxString& Type##PrintToNxString(NxString& text, void* value, const char* format, unsigned long n) { \
    return NxNullTypePrintToNxString<Type, Value>(text, value, format, n);                            \
  }                                                                                                   \
  void* Type##ScanFromNxString(void* value, NxString& text, const char* format, unsigned long n) {    \
    return NxNullTypeScanFromNxString<Type, Value>(value, text, format, n);                           \
  }

NX_NULLABLE_NUMBERS(NX_NULL_TEXT)
