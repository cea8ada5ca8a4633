/// The process's language settings, the known languages, and the version of the
/// collation data.
#include "nxlang.h"

namespace {

struct Defaults {
  unsigned char codeSet = kCodeSetLatin1;
  unsigned char codeSet8 = kCodeSetLatin1;
  unsigned char codeSet16 = kCodeSetUnicode;
  unsigned char nativeCodeSet = kCodeSetLatin1;
  unsigned char language = kLanguageEnglish;
  unsigned short compareOptions = 0;
};

Defaults defaults;

constexpr int kIllegalNumber = -2002;

constexpr NxLanguage kLanguages[] = {
    {kLanguageNone, false, "none"},      {kLanguageEnglish, false, "English"},
    {kLanguageGerman, false, "German"},  {kLanguageFrench, false, "French"},
    {kLanguageSpanish, true, "Spanish"}, {kLanguageSwedish, true, "Swedish"},
    {kLanguageDanish, true, "Danish"},   {kLanguageTurkish, false, "Turkish"},
};
constexpr unsigned char kLanguageCount = sizeof(kLanguages) / sizeof(kLanguages[0]);

// To be raised by hand whenever new data moves any two texts against each other:
// whoever keeps indexes on texts learns from it that they must be built anew.
constexpr unsigned long kCollationVersion = 1;

}  // namespace

unsigned char NxLanguageContext::GetDefaultCodeSet() { return defaults.codeSet; }
unsigned char NxLanguageContext::GetDefault8CodeSet() { return defaults.codeSet8; }
unsigned char NxLanguageContext::GetDefault16CodeSet() { return defaults.codeSet16; }
unsigned char NxLanguageContext::GetNativeCodeSet() { return defaults.nativeCodeSet; }
unsigned char NxLanguageContext::GetDefaultLanguage() { return defaults.language; }
unsigned short NxLanguageContext::GetDefaultCmpOp() { return defaults.compareOptions; }

int NxLanguageContext::SetDefaultCodeSet(unsigned char codeSet) {
  if (codeSet == kCodeSetNone || codeSet >= kCodeSetOrderValues) return kIllegalNumber;
  defaults.codeSet = codeSet;
  return 0;
}

int NxLanguageContext::SetDefaultLanguage(unsigned char language) {
  if (language >= kLanguageNull) return kIllegalNumber;
  defaults.language = language;
  return 0;
}

int NxLanguageContext::SetDefaultCmpOp(unsigned short options) {
  defaults.compareOptions = options;
  return 0;
}

const NxLanguage* NxLanguageContext::QueryLanguage(unsigned char language) {
  return &kLanguages[language < kLanguageCount ? language : kLanguageEnglish];
}

void ___NxI18NContext(int start) {
  if (start != 0) defaults = Defaults();
}

unsigned long NxCollationVersion() { return kCollationVersion; }
