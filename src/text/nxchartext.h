// What characters, iterators and the UTF-8 conversions share: the replacements of the
// numbers that stand for a default, the null test of a text, the class of letters, the
// record of a character in a language, and the reading of one character of a text.
#ifndef NXCHARTEXT_H
#define NXCHARTEXT_H

#include "base/nxbytes.h"
#include "nxchar.h"
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

inline constexpr unsigned char kDefaultByteOrder = 255;  // in parameters only

inline unsigned char StatedByteOrder(unsigned char byteOrder) {
  return byteOrder != kDefaultByteOrder ? byteOrder : kFormatNative;
}

/// Whether code set and language are those of a null value.
constexpr bool NxIsNullText(unsigned char codeSet, unsigned char language) {
  return language == kLanguageNull || (codeSet == kCodeSetOrderValues && language == kLanguageNone);
}

/// Whether an order value is a letter's, which has the fields of ord2str.h.
constexpr bool NxIsLetterOrder(unsigned order) {
  return order >= kFirstLetterOrder && order < kFirstHanOrder;
}

/// The record of a character in a language: its own one where it has records of single
/// languages and the language is one of these.
inline const NxCharInfo* NxInLanguage(const NxCharInfo* info, unsigned char number) {
  if (!info->variants) return info;
  const NxLanguage* const language = NxLanguageContext::QueryLanguage(number);
  if (!language || !language->hasVariants) return info;
  const NxCharInfo* const variant = info->variants->Find(language->number);
  return variant ? variant : info;
}

/// The value of the character of a code set at `where`.
inline unsigned short ReadCharacter(const char* where, unsigned char codeSet, unsigned char byteOrder) {
  if (NxCharWidth(codeSet) == 1) return static_cast<unsigned char>(*where);
  return NxReadShort(where, byteOrder);
}

#endif
