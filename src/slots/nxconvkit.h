// The string-array conversions of values that are just their bytes: what is one text a
// value is said once here.
#ifndef NXCONVKIT_H
#define NXCONVKIT_H

#include <cstring>

#include "nxconv.h"
#include "nxstring.h"
#include "nxtypes.h"

/// The texts of n values: text(value, string) fills an empty string.
template <class T, class TextOf>
NxTypeConvertData* NxTextsOf(void* values, unsigned long n, TextOf text) {
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
void* NxValuesOf(NxTypeConvertData* strings, unsigned long n, NxSlot::Create* create, const T& none,
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
T NxNullOf() {
  T value(0L);
  value.SetNullValue();
  return value;
}

#endif
