// The string-array conversions of values that are just their bytes: what is one text a
// value is said once here.
#ifndef NXCONVKIT_H
#define NXCONVKIT_H

#include <cstdio>
#include <cstring>
#include <optional>

#include "base/nxalloc.h"
#include "nxconv.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "text/nxtextio.h"

/// A record of n strings that were just made; null, with them released, when memory has
/// run out on the way: a text that is missing would read as another value.
inline NxTypeConvertData* NxStringArray(NxString* strings, unsigned long n, const NxShortageWatch& shortage) {
  NxTypeConvertData* record =
      shortage.Happened() ? nullptr : NxTypeConvertData::Make(kStringTypeId, n, strings, nullptr);
  if (!record) NxStringDelete(strings, n);
  return record;
}

/// The same for values that were made from texts.
template <class T>
void* NxWholeOrNone(T* values, unsigned long n, NxSlot::Delete* release, const NxShortageWatch& shortage) {
  if (!shortage.Happened()) return values;
  if (values) release(values, n);
  return nullptr;
}

/// The texts of n values: text(value, string) fills an empty string.
template <class T, class TextOf>
NxTypeConvertData* NxTextsOf(void* values, unsigned long n, TextOf text) {
  const NxShortageWatch shortage;
  auto* strings = static_cast<NxString*>(NxStringCreate(n));
  if (!strings) return nullptr;
  auto* p = static_cast<const unsigned char*>(values);
  for (unsigned long i = 0; i < n; ++i, p += sizeof(T)) {
    alignas(T) unsigned char value[sizeof(T)];  // the values need not be aligned
    std::memcpy(value, p, sizeof(T));
    text(*reinterpret_cast<const T*>(value), strings[i]);
  }
  return NxStringArray(strings, n, shortage);
}

/// n values from texts, in storage that create makes: value(string) makes one of a
/// text; `none` is what a missing or null string becomes. Null when memory has run out.
template <class T, class ValueOf>
void* NxValuesOf(NxTypeConvertData* strings, unsigned long n, NxSlot::Create* create, NxSlot::Delete* release,
                 const T& none, ValueOf value) {
  const NxShortageWatch shortage;
  auto* values = static_cast<T*>(create(n));
  if (!values) return nullptr;
  for (unsigned long i = 0; i < n; ++i) {
    NxString* s = strings ? strings->GetString(static_cast<int>(i)) : nullptr;
    values[i] = s && !s->IsNullValue() ? value(*s) : none;
  }
  return NxWholeOrNone(values, n, release, shortage);
}

/// A null value of a class that has one.
template <class T>
T NxNullOf() {
  T value(0L);
  value.SetNullValue();
  return value;
}

/// Appends "DAYS:SECONDS", the text of a point in time.
inline void NxPutDaysAndSeconds(NxString& out, long days, long seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%ld", days, seconds);
  out += NxString(text);
}

/// What a text "DAYS", "DAYS:SECONDS" or ":SECONDS" says.
struct NxDaysAndSeconds {
  std::optional<long> days;     // missing only before a ":"
  std::optional<long> seconds;  // missing where nothing follows a ":"

  explicit NxDaysAndSeconds(const NxString& in) {
    const NxScanText text(in);
    const char* colon = std::strchr(text.Chars(), ':');
    if (colon != text.Chars()) days = static_cast<long>(text.String());
    if (colon && colon[1]) seconds = static_cast<long>(NxString(colon + 1));
  }
};

#endif
