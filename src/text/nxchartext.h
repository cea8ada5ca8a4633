// What characters, iterators and the UTF-8 conversions share: the replacements of the
// numbers that stand for a default, and the reading of one character of a text.
#ifndef NXCHARTEXT_H
#define NXCHARTEXT_H

#include <cstring>

#include "nxbase.h"
#include "nxlang.h"

inline unsigned char StatedCodeSet(unsigned char codeSet) {
  return codeSet != kCodeSetNone ? codeSet : NxLanguageContext::GetNativeCodeSet();
}

inline unsigned char StatedLanguage(unsigned char language) {
  return language != kLanguageDefault ? language : NxLanguageContext::GetDefaultLanguage();
}

inline unsigned char Stated8CodeSet(unsigned char codeSet) {
  return codeSet != kCodeSetDefault ? codeSet : NxLanguageContext::GetDefault8CodeSet();
}

inline unsigned char Stated16CodeSet(unsigned char codeSet) {
  return codeSet != kCodeSetDefault ? codeSet : NxLanguageContext::GetDefault16CodeSet();
}

inline constexpr unsigned char kByteOrderDefault = 255;  // in parameters only

inline unsigned char StatedByteOrder(unsigned char byteOrder) {
  return byteOrder != kByteOrderDefault ? byteOrder : kFormatNative;
}

inline unsigned short ReadUnit(const char* where, unsigned char byteOrder) {
  unsigned short unit;
  if (byteOrder == kFormatNative || byteOrder == kFormatMemory)
    std::memcpy(&unit, where, sizeof unit);
  else
    ShortStore(&unit, where, byteOrder, 1);
  return unit;
}

/// The value of the character of a code set at `where`.
inline unsigned short ReadCharacter(const char* where, unsigned char codeSet, unsigned char byteOrder) {
  if (NxCharWidth(codeSet) == 1) return static_cast<unsigned char>(*where);
  return ReadUnit(where, byteOrder);
}

#endif
