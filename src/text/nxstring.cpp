// NxString: construction, assignment, null state, numbers as texts, the process's
// defaults and wildcards. Building and conversion are in nxstrbuild.cpp, editing in
// nxstrops.cpp, searching and comparison in nxstrfind.cpp.

#include "nxstring.h"

#include <cstdio>
#include <utility>

#include "base/nxthreads.h"
#include "nxbase.h"
#include "nxlang.h"
#include "nxstritr.h"
#include "text/nxstrbuild.h"

// Constant-initialised: static values of other files and libraries may ask for the
// text of an empty string before this library's own are built.
unsigned int correctZeroLengthStringEvenForUnicode = 0;
char* zeroString = reinterpret_cast<char*>(&correctZeroLengthStringEvenForUnicode);
unsigned short NxString::_nAsterisk = 0;
unsigned short NxString::_nQuestion = 0;
unsigned short NxString::_nEscape = 0;

// Built before, and destroyed after, the static values of all other files.
__attribute__((init_priority(101))) NxString __theEmptyString;

namespace {

unsigned char Default8() { return NxLanguageContext::GetDefault8CodeSet(); }
unsigned char Default16() { return NxLanguageContext::GetDefault16CodeSet(); }
unsigned char DefaultLanguage() { return NxLanguageContext::GetDefaultLanguage(); }

const char* AsBytes(const unsigned short* text) { return reinterpret_cast<const char*>(text); }

/// A number as the C library prints it.
struct NumberText {
  template <class T>
  NumberText(const char* format, T v) {
    std::snprintf(text, sizeof text, format, v);
  }
  char text[40];
};

/// Appends a text of the default 8-bit code set.
NxString& AppendText(NxString& s, const char* text) {
  if (!text) text = zeroString;
  NxBuildText(s, {text, Default8(), NxTextLength(text, 1), s.Len()}, NxBuildMode::kCompose);
  return s;
}

/// The order value that code set 1 gives to a character.
unsigned short OrderInLatin1(unsigned char c) {
  return NxLanguageContext::QueryCodeSet(kCodeSetLatin1)->CharTable()->Find(c)->order;
}

/// A wildcard's order value, asked for once. Threads that ask for the first time at once
/// all find the same.
unsigned short Determined(unsigned short& wildcard, unsigned char c) {
  unsigned short order = NxLoadRelaxed(wildcard);
  if (order == 0) NxStoreRelaxed(wildcard, order = OrderInLatin1(c));
  return order;
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction

NxString::NxString() : NxString(NxLanguageContext::GetDefaultCodeSet(), DefaultLanguage()) {}

NxString::NxString(unsigned char codeSet, unsigned char language)
    : _pBuffer(nullptr), _nSize(0), _nCodeSet(codeSet), _nLanguage(language) {}

NxString::NxString(const NxString& s) : NxString(s._nCodeSet, s._nLanguage) { *this = s; }

NxString::NxString(char c) : NxString(&c, c != 0) {}
NxString::NxString(unsigned short c) : NxString(&c, c != 0) {}
NxString::NxString(const char* text) : NxString(text, static_cast<unsigned short>(kWholeText)) {}
NxString::NxString(const unsigned short* text) : NxString(text, static_cast<unsigned short>(kWholeText)) {}

NxString::NxString(const char* text, unsigned short n) : NxString(Default8(), DefaultLanguage()) {
  MakeString(text, _nCodeSet, static_cast<short>(n));
}
NxString::NxString(const unsigned short* text, unsigned short n) : NxString(Default16(), DefaultLanguage()) {
  MakeString(AsBytes(text), _nCodeSet, static_cast<short>(n));
}

NxString::NxString(short v) : NxString(static_cast<int>(v)) {}
NxString::NxString(int v) : NxString(NumberText("%d", v).text) {}
NxString::NxString(unsigned int v) : NxString(static_cast<int>(v)) {}
NxString::NxString(long v) : NxString(NumberText("%ld", v).text) {}
NxString::NxString(unsigned long v) : NxString(NumberText("%lu", v).text) {}
NxString::NxString(double v) : NxString(NumberText("%.15g", v).text) {}

NxString::~NxString() { Destroy(); }

void NxString::Destroy() {
  NxAttach(*this, nullptr, 0);
  _nCodeSet = 0;
  _nLanguage = 0;
}

void NxString::d_deactivate() { Destroy(); }

// ---------------------------------------------------------------------------
// Assignment, access, null state

NxString& NxString::operator=(const NxString& s) {
  if (this == &s) return *this;
  if (s._pBuffer) {
    const unsigned width = NxCharWidth(s._nCodeSet);
    const unsigned long bytes = NxTextLength(s._pBuffer, width) * width;
    char* buffer = NxBufferFor(*this, bytes + width);
    if (!buffer) return *this;
    NxCopyBytes(buffer, s._pBuffer, bytes);
    NxPutTerminator(buffer + bytes, width);
  } else {
    NxAttach(*this, nullptr, 0);
  }
  _nCodeSet = s._nCodeSet;
  _nLanguage = s._nLanguage;
  return *this;
}

NxString& NxString::operator=(const char* text) {
  NxAssignText(*this, text, Default8(), text ? NxTextLength(text, 1) : 0);
  return *this;
}

NxString& NxString::operator=(const unsigned short* text) {
  NxAssignText(*this, AsBytes(text), Default16(), text ? NxTextLength(AsBytes(text), 2) : 0);
  return *this;
}

void NxString::Destruct(NxString& s) {
  if (this == &s) return;
  delete[] _pBuffer;
  _pBuffer = std::exchange(s._pBuffer, nullptr);
  _nSize = std::exchange(s._nSize, static_cast<unsigned short>(0));
  _nCodeSet = s._nCodeSet;
  _nLanguage = s._nLanguage;
}

char* NxString::StrGet() const { return _pBuffer ? _pBuffer : zeroString; }

NxString& NxString::EmptyString() { return __theEmptyString; }

char* NxString::Alloc(short size) {
  _nSize = static_cast<unsigned short>(size);
  return NxNewZeroArray<char>(_nSize);
}

int NxString::SetNullValue() {
  Destroy();
  _nLanguage = kLanguageNull;
  return 0;
}

int NxString::IsNullValue() const { return NxIsNullText(_nCodeSet, _nLanguage); }

// ---------------------------------------------------------------------------
// The process's defaults and wildcards

unsigned char NxString::GetDefaultCodeSet() { return NxLanguageContext::GetDefaultCodeSet(); }
int NxString::SetDefaultCodeSet(unsigned char cs) { return NxLanguageContext::SetDefaultCodeSet(cs); }
unsigned char NxString::GetDefaultLanguage() { return DefaultLanguage(); }
int NxString::SetDefaultLanguage(unsigned char language) {
  return NxLanguageContext::SetDefaultLanguage(language);
}
unsigned char NxString::GetDefault8CodeSet() { return Default8(); }
unsigned char NxString::GetDefault16CodeSet() { return Default16(); }
unsigned short NxString::GetDefaultCmpOp() { return NxLanguageContext::GetDefaultCmpOp(); }
int NxString::SetDefaultCmpOp(unsigned short op) { return NxLanguageContext::SetDefaultCmpOp(op); }

unsigned short NxString::GetAsterisk() { return Determined(_nAsterisk, '*'); }
unsigned short NxString::GetQuestion() { return Determined(_nQuestion, '?'); }
unsigned short NxString::GetEscape() { return Determined(_nEscape, '\\'); }

int NxString::SetAsterisk(const NxChar& c) { return SetAQE(c, _nAsterisk); }
int NxString::SetQuestion(const NxChar& c) { return SetAQE(c, _nQuestion); }
int NxString::SetEscape(const NxChar& c) { return SetAQE(c, _nEscape); }

int NxString::SetAQE(const NxChar& c, unsigned short& order) {
  const unsigned short text[2] = {c, 0};  // least significant byte first: 8-bit characters, too
  order = NxStringIterator(AsBytes(text), c._nCodeSet, c._nLanguage, kDefaultByteOrder).GetNextOrder(0);
  return 0;
}

// ---------------------------------------------------------------------------
// Length and appending

unsigned short NxString::Len() const {
  return _pBuffer ? static_cast<unsigned short>(NxTextLength(_pBuffer, NxCharWidth(_nCodeSet))) : 0;
}

unsigned short NxString::NullLen() const { return NxCharWidth(_nCodeSet); }

int NxString::IsEmpty() const { return !_pBuffer || NxCharAt(_pBuffer, NxCharWidth(_nCodeSet)) == 0; }
int NxString::operator!() const { return IsEmpty(); }

NxString& NxString::operator+=(const NxString& s) {
  NxBuildText(*this, {s.StrGet(), s._nCodeSet, s.Len(), Len()}, NxBuildMode::kCompose);
  return *this;
}

NxString operator+(const NxString& a, const NxString& b) {
  const NxShortageWatch shortage;
  NxString sum(a._nCodeSet, a._nLanguage);
  sum += a;
  sum += b;
  if (shortage.Happened()) NxAttach(sum, nullptr, 0);  // the whole text or none
  return sum;
}

NxString& NxString::operator<<(const NxString& s) { return *this += s; }
NxString& NxString::operator<<(char c) { return *this += NxString(c); }
NxString& NxString::operator<<(unsigned short c) {
  return NxCharWidth(_nCodeSet) == 1 ? *this << static_cast<int>(c) : *this += NxString(c);
}
NxString& NxString::operator<<(const char* text) { return AppendText(*this, text); }
NxString& NxString::operator<<(const unsigned short* text) {
  const char* bytes = text ? AsBytes(text) : zeroString;
  NxBuildText(*this, {bytes, Default16(), NxTextLength(bytes, 2), Len()}, NxBuildMode::kCompose);
  return *this;
}
NxString& NxString::operator<<(short v) { return *this << static_cast<int>(v); }
NxString& NxString::operator<<(int v) { return AppendText(*this, NumberText("%d", v).text); }
NxString& NxString::operator<<(unsigned int v) { return *this << static_cast<int>(v); }
NxString& NxString::operator<<(long v) { return AppendText(*this, NumberText("%ld", v).text); }
NxString& NxString::operator<<(unsigned long v) { return AppendText(*this, NumberText("%lu", v).text); }
NxString& NxString::operator<<(float v) { return *this << static_cast<double>(v); }
NxString& NxString::operator<<(double v) { return AppendText(*this, NumberText("%.15g", v).text); }
