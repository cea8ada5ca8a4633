// String arrays: the record that carries them, and the conversions of the fixed-size
// types. A type says how one value becomes text and a text becomes a value.

#include "nxconv.h"

#include <cstring>

#include "nxbool.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxlang.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "nxtypmgr.h"
#include "slots/nxlife.h"

// ---------------------------------------------------------------------------
// The record

NxTypeConvertData::NxTypeConvertData() : NxTypeConvertData(kIllegalTypeId, 0, nullptr, nullptr) {}

NxTypeConvertData::NxTypeConvertData(char typeId, unsigned long count, void* data, NxTypeMgr* mgr)
    : mgr(mgr), data(data), count(count), typeId(typeId) {}

namespace {

/// Callers that destroy a record in storage of their own read its fields afterwards.
/// Volatile, for a compiler may drop plain stores to an object that ends.
template <class T>
void PutLast(T& field, T value) {
  *const_cast<volatile T*>(&field) = value;
}

}  // namespace

NxTypeConvertData::~NxTypeConvertData() {
  if (mgr && data) {
    mgr->Delete(typeId, data, count);
    PutLast<void*>(data, nullptr);
  }
  PutLast(count, 0UL);
  PutLast(typeId, kIllegalTypeId);
}

NxTypeConvertData* NxTypeConvertData::Make(char typeId, unsigned long count, void* data, NxTypeMgr* mgr) {
  auto* record = new (std::nothrow) NxTypeConvertData(typeId, count, data, mgr);
  if (!record) NxCallMemoryHandler(sizeof(NxTypeConvertData));
  return record;
}

NxString* NxTypeConvertData::GetString(int i) {
  if (i < 0 || static_cast<unsigned long>(i) >= count || typeId != kStringTypeId || !data) return nullptr;
  return static_cast<NxString*>(data) + i;
}

// ---------------------------------------------------------------------------
// The conversions

namespace {

/// The texts of n values: text(value, string) fills an empty string.
template <class T, class TextOf>
NxTypeConvertData* TextsOf(void* values, unsigned long n, TextOf text) {
  auto* strings = static_cast<NxString*>(NxStringCreate(n));
  if (!strings) return nullptr;
  auto* p = static_cast<const unsigned char*>(values);
  for (unsigned long i = 0; i < n; ++i, p += sizeof(T)) {
    alignas(T) unsigned char value[sizeof(T)];  // the values need not be aligned
    std::memcpy(value, p, sizeof(T));
    text(*reinterpret_cast<const T*>(value), strings[i]);
  }
  return NxTypeConvertData::Make(kStringTypeId, n, strings, nullptr);
}

/// n values from texts, in storage that create made: value(string) makes one of a
/// text; `none` is what a missing or null string becomes.
template <class T, class ValueOf>
void* ValuesOf(NxTypeConvertData* strings, unsigned long n, NxSlot::Create* create, const T& none,
               ValueOf value) {
  auto* values = static_cast<T*>(create(n));
  if (!values) return nullptr;
  for (unsigned long i = 0; i < n; ++i) {
    NxString* s = strings ? strings->GetString(static_cast<int>(i)) : nullptr;
    values[i] = s && !s->IsNullValue() ? value(*s) : none;
  }
  return values;
}

/// A null value of a class that has one.
template <class T>
T NullOf() {
  T value(0L);
  value.SetNullValue();
  return value;
}

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
#define NX_CONVERT_SCALAR(Type, Value, Wide)                                                             \
  NxTypeConvertData* Type##ConvertToNxString(void* values, unsigned long n) {                            \
    return TextsOf<Value>(values, n, [](Value v, NxString& s) { s += NxString(static_cast<Wide>(v)); }); \
  }                                                                                                      \
  void* Type##ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {                         \
    return ValuesOf<Value>(strings, n, Type##Create, 0,                                                  \
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
#define NX_CONVERT_DATE(Type)                                                            \
  NxTypeConvertData* Type##ConvertToNxString(void* values, unsigned long n) {            \
    return TextsOf<Type>(values, n, [](const Type& v, NxString& s) {                     \
      if (v.IsNullValue())                                                               \
        s.SetNullValue();                                                                \
      else                                                                               \
        s += NxString(static_cast<long>(v));                                             \
    });                                                                                  \
  }                                                                                      \
  void* Type##ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {         \
    return ValuesOf<Type>(strings, n, Type##Create, NullOf<Type>(),                      \
                          [](const NxString& s) { return Type(static_cast<long>(s)); }); \
  }

NX_CONVERT_DATE(NxDate)
NX_CONVERT_DATE(NxTime)

#undef NX_CONVERT_DATE

NxTypeConvertData* Int64ConvertToNxString(void* values, unsigned long n) {
  return TextsOf<NxInt64>(values, n, [](const NxInt64& v, NxString& s) { v.PrintToNxString(s, nullptr); });
}
void* Int64ConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return ValuesOf<NxInt64>(strings, n, NxInt64Create, NxInt64(), [](const NxString& s) {
    NxInt64 v;
    v.ScanFromNxString(s, nullptr);
    return v;
  });
}

NxTypeConvertData* BooleanConvertToNxString(void* values, unsigned long n) {
  return TextsOf<NxBoolean>(values, n, [](const NxBoolean& v, NxString& s) {
    if (v.IsNullValue())
      s.SetNullValue();
    else
      s += NxString(v.value == 1 ? "1" : "0");
  });
}
void* BooleanConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return ValuesOf<NxBoolean>(strings, n, NxBooleanCreate, NullOf<NxBoolean>(), [](const NxString& s) {
    return NxBoolean(static_cast<long>(BeginsWithOne(s)));
  });
}

NxTypeConvertData* SealConvertToNxString(void* values, unsigned long n) {
  return TextsOf<NxSeal>(values, n, [](const NxSeal& v, NxString& s) { v.PrintToNxString(s); });
}
void* SealConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return ValuesOf<NxSeal>(strings, n, NxSealCreate, NxSeal(), [](const NxString& s) {
    NxSeal v;
    v.ScanFromNxString(s);
    return v;
  });
}
