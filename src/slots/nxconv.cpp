// String arrays: the conversions of the fixed-size types.

#include "nxconv.h"

#include <cstring>

#include "nxbool.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxlang.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "slots/nxconvkit.h"
#include "slots/nxlife.h"

namespace {

/// Whether the first character is the digit 1, at either width.
bool BeginsWithOne(const NxString& s) {
  const char* text = s.StrGet();
  if (NxCharWidth(s._nCodeSet) == 1) return *text == '1';
  unsigned short first;
  std::memcpy(&first, text, sizeof first);
  return first == '1';
}

}  // namespace

// Scalars. Wide is the type whose text stands for the value, and to which a text
// converts.
#define NX_CONVERT_SCALAR(Type, Value, Wide)                                                               \
  NxTypeConvertData* Type##ConvertToNxString(void* values, unsigned long n) {                              \
    return NxTextsOf<Value>(values, n, [](Value v, NxString& s) { s += NxString(static_cast<Wide>(v)); }); \
  }                                                                                                        \
  void* Type##ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {                           \
    return NxValuesOf<Value>(strings, n, Type##Create, Type##Delete, 0,                                    \
                             [](const NxString& s) { return static_cast<Value>(static_cast<Wide>(s)); });  \
  }

NX_CONVERT_SCALAR(Char, signed char, short)
NX_CONVERT_SCALAR(Short, short, short)
NX_CONVERT_SCALAR(Int, int, int)
NX_CONVERT_SCALAR(Long, long, long)
NX_CONVERT_SCALAR(Float, float, double)
NX_CONVERT_SCALAR(Double, double, double)

#undef NX_CONVERT_SCALAR

// Dates and times travel as the number that they convert to: day number, seconds.
#define NX_CONVERT_DATE(Type)                                                              \
  NxTypeConvertData* Type##ConvertToNxString(void* values, unsigned long n) {              \
    return NxTextsOf<Type>(values, n, [](const Type& v, NxString& s) {                     \
      if (v.IsNullValue())                                                                 \
        s.SetNullValue();                                                                  \
      else                                                                                 \
        s += NxString(static_cast<long>(v));                                               \
    });                                                                                    \
  }                                                                                        \
  void* Type##ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {           \
    return NxValuesOf<Type>(strings, n, Type##Create, Type##Delete, NxNullOf<Type>(),      \
                            [](const NxString& s) { return Type(static_cast<long>(s)); }); \
  }

NX_CONVERT_DATE(NxDate)
NX_CONVERT_DATE(NxTime)

#undef NX_CONVERT_DATE

NxTypeConvertData* Int64ConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<NxInt64>(values, n, [](const NxInt64& v, NxString& s) { v.PrintToNxString(s, nullptr); });
}
void* Int64ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<NxInt64>(strings, n, NxInt64Create, NxInt64Delete, NxInt64(), [](const NxString& s) {
    NxInt64 v;
    if (!s.IsEmpty()) v.ScanFromNxString(s, nullptr);  // an empty text is 0 here, not -1
    return v;
  });
}

NxTypeConvertData* BooleanConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<NxBoolean>(values, n, [](const NxBoolean& v, NxString& s) {
    if (v.IsNullValue())
      s.SetNullValue();
    else
      s += NxString(v.value == 1 ? "1" : "0");
  });
}
void* BooleanConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<NxBoolean>(
      strings, n, NxBooleanCreate, NxBooleanDelete, NxNullOf<NxBoolean>(),
      [](const NxString& s) { return NxBoolean(static_cast<long>(BeginsWithOne(s))); });
}

NxTypeConvertData* SealConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<NxSeal>(values, n, [](const NxSeal& v, NxString& s) { v.PrintToNxString(s); });
}
void* SealConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<NxSeal>(strings, n, NxSealCreate, NxSealDelete, NxSeal(), [](const NxString& s) {
    NxSeal v;
    v.ScanFromNxString(s);
    return v;
  });
}
