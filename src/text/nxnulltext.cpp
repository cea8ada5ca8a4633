// The texts that stand for null values, built when the library is loaded.
#include "nxnulltext.h"

#include <cstring>

#include "nxstring.h"
#include "text/nxtextio.h"

NxString __NullPrintString("{NULL}");
NxString SourceZeroString("0");

bool NxBeginsWithNullText(const NxString& in) {
  const unsigned long width = NxCharWidth(in._nCodeSet);
  if (width == 1 && NxCharWidth(__NullPrintString._nCodeSet) == 1) {
    const char* nullText = __NullPrintString.StrGet();
    return std::strncmp(in.StrGet(), nullText, std::strlen(nullText)) == 0;
  }
  const NxShortageWatch shortage;
  NxString wanted(in._nCodeSet, in._nLanguage);
  wanted += __NullPrintString;
  if (shortage.Happened()) return false;
  const unsigned long length = wanted.Len();
  return in.Len() >= length && std::memcmp(in.StrGet(), wanted.StrGet(), length * width) == 0;
}
