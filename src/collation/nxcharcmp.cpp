// NxChar: comparison, as that of texts of one character.
#include "nxbase.h"
#include "nxchar.h"
#include "nxlang.h"
#include "nxoption.h"
#include "strwild.h"

int NxChar::Compare(const NxChar& c, unsigned short op) const {
  if (op == kDefaultOptions) op = NxLanguageContext::GetDefaultCmpOp();
  return NxStrCmp(_nCodeSet, _nLanguage, Address(), c._nCodeSet, c._nLanguage, c.Address(), op, 1,
                  kFormatNative, nullptr);
}

int NxChar::operator==(const NxChar& c) const { return Compare(c, kDefaultOptions) == 0; }
int NxChar::operator!=(const NxChar& c) const { return Compare(c, kDefaultOptions) != 0; }
int NxChar::operator<(const NxChar& c) const { return Compare(c, kDefaultOptions) < 0; }
int NxChar::operator>(const NxChar& c) const { return Compare(c, kDefaultOptions) > 0; }
int NxChar::operator<=(const NxChar& c) const { return Compare(c, kDefaultOptions) <= 0; }
int NxChar::operator>=(const NxChar& c) const { return Compare(c, kDefaultOptions) >= 0; }

int NxChar::operator==(char c) const { return *this == NxChar(c); }
int NxChar::operator!=(char c) const { return *this != NxChar(c); }
int NxChar::operator<(char c) const { return *this < NxChar(c); }
int NxChar::operator>(char c) const { return *this > NxChar(c); }
int NxChar::operator<=(char c) const { return *this <= NxChar(c); }
int NxChar::operator>=(char c) const { return *this >= NxChar(c); }

int NxChar::operator==(unsigned short c) const { return *this == NxChar(c); }
int NxChar::operator!=(unsigned short c) const { return *this != NxChar(c); }
int NxChar::operator<(unsigned short c) const { return *this < NxChar(c); }
int NxChar::operator>(unsigned short c) const { return *this > NxChar(c); }
int NxChar::operator<=(unsigned short c) const { return *this <= NxChar(c); }
int NxChar::operator>=(unsigned short c) const { return *this >= NxChar(c); }
