// NxChar: reading and writing a character where it stands, mapping it between code
// sets, its class and case. What the values mean is the code sets' data.

#include "nxchar.h"

#include <cctype>
#include <cstddef>
#include <cstring>

#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "text/nxchartext.h"

static_assert(offsetof(NxChar, _nChar) == 4 && offsetof(NxChar, _nCodeSet) == 6 &&
              offsetof(NxChar, _nLanguage) == 7 && offsetof(NxChar, _nByteOrder) == 8);

namespace {

/// Whether `place` is in the one text that all strings without buffer share, which is
/// never written to.
bool InSharedEmptyText(const char* place) {
  return place >= zeroString && place < zeroString + sizeof correctZeroLengthStringEvenForUnicode;
}

/// A detached character's cell: one byte in its first byte, or the unit.
unsigned short Cell(unsigned short value, unsigned char codeSet) {
  if (NxCharWidth(codeSet) == 2) return value;
  unsigned short cell = 0;
  const char byte = static_cast<char>(value);
  std::memcpy(&cell, &byte, 1);
  return cell;
}

}  // namespace

NxChar::NxChar(const NxChar& c)
    : _pChar(nullptr),
      _nChar(0),
      _nCodeSet(c._nCodeSet),
      _nLanguage(c._nLanguage),
      _nByteOrder(kFormatNative) {
  std::memcpy(&_nChar, c.Address(), NxCharWidth(c._nCodeSet));
}

NxChar::NxChar(unsigned short v, unsigned char cs, unsigned char lang)
    : _pChar(nullptr),
      _nCodeSet(Stated16CodeSet(cs)),
      _nLanguage(StatedLanguage(lang)),
      _nByteOrder(kFormatNative) {
  _nChar = Cell(v, _nCodeSet);
}

NxChar::NxChar(char v, unsigned char cs, unsigned char lang)
    : _pChar(nullptr),
      _nCodeSet(Stated8CodeSet(cs)),
      _nLanguage(StatedLanguage(lang)),
      _nByteOrder(kFormatNative) {
  _nChar = Cell(static_cast<unsigned char>(v), _nCodeSet);
}

NxChar::NxChar(const char* p, unsigned char cs, unsigned char lang, unsigned char byteOrder)
    : _pChar(const_cast<char*>(p)),
      _nChar(0),
      _nCodeSet(Stated8CodeSet(cs)),
      _nLanguage(StatedLanguage(lang)),
      _nByteOrder(StatedByteOrder(byteOrder)) {}

NxChar::NxChar(NxString& s, int byteOffset)
    : _pChar(s.StrGet() + byteOffset),
      _nChar(0),
      _nCodeSet(s._nCodeSet),
      _nLanguage(s._nLanguage),
      _nByteOrder(kFormatNative) {}

NxChar::NxChar(NxStringIterator* it)
    : _pChar(nullptr),
      _nChar(0),
      _nCodeSet(it->_nCodeSet),
      _nLanguage(it->_nLanguage),
      _nByteOrder(it->_nByteOrder) {
  if (it->_pOverflow && it->_nOverflowIndex < it->_pOverflow->Count()) {
    _nCodeSet = it->_nOverflowCodeSet;
    _nByteOrder = kFormatNative;  // entries are values, not bytes of the text
    _nChar = Cell(it->_pOverflow->At(it->_nOverflowIndex++), _nCodeSet);
  } else if (it->_pPos) {
    std::memcpy(&_nChar, it->_pPos, NxCharWidth(_nCodeSet));
  }
}

NxChar::~NxChar() { _pChar = nullptr; }

NxChar& NxChar::operator=(const NxChar& c) {
  if (!_pChar) {
    if (this == &c) return *this;
    _nChar = 0;
    std::memcpy(&_nChar, c.Address(), NxCharWidth(c._nCodeSet));
    _nCodeSet = c._nCodeSet;
    _nLanguage = c._nLanguage;
    _nByteOrder = c._nByteOrder;
    return *this;
  }
  if (InSharedEmptyText(_pChar)) return *this;
  unsigned short value = c;
  if (_nCodeSet != c._nCodeSet && _nCodeSet != kCodeSetNone)
    value = NxLanguageContext::QueryCodeSet(_nCodeSet)->MapFrom(value, StatedCodeSet(c._nCodeSet));
  if (NxCharWidth(_nCodeSet) == 1)
    *_pChar = static_cast<char>(value);
  else if (_nByteOrder == kFormatNative)
    std::memcpy(_pChar, &value, sizeof value);
  else
    ShortStore(_pChar, &value, kFormatBigEndian, 1);
  return *this;
}

NxChar& NxChar::operator=(char c) {
  if (!InSharedEmptyText(_pChar)) CharStore(Address(), &c, _nByteOrder, 1);
  return *this;
}

NxChar& NxChar::operator=(unsigned short c) {
  // A second byte would hit the next character of an 8-bit text.
  if (_pChar && NxCharWidth(_nCodeSet) == 1) return *this = static_cast<char>(c);
  if (!InSharedEmptyText(_pChar)) ShortStore(Address(), &c, _nByteOrder, 1);
  return *this;
}

NxChar::operator unsigned short() const { return ReadCharacter(Address(), _nCodeSet, _nByteOrder); }

NxChar NxChar::MapTo(unsigned char cs) const {
  if (cs == _nCodeSet || cs == kCodeSetNone) return *this;
  const NxCodeSet* target = NxLanguageContext::QueryCodeSet(cs);
  return NxChar(target->MapFrom(*this, StatedCodeSet(_nCodeSet)), cs, _nLanguage);
}

unsigned short NxChar::GetOrder() const {
  const NxCharTable* table = NxLanguageContext::QueryCodeSet(StatedCodeSet(_nCodeSet))->CharTable();
  unsigned short value = *this;
  if (!table) {
    table = NxLanguageContext::QueryCodeSet(kCodeSetUnicode)->CharTable();
    value = MapTo(kCodeSetUnicode);
  }
  const NxCharInfo* info = table->Find(value);
  return info ? info->order : value;
}

int NxChar::IsSpace() const { return GetOrder() < kFirstSymbolOrder; }

int NxChar::IsSymbol() const {
  const unsigned short order = GetOrder();
  return order >= kFirstSymbolOrder && order < kFirstDigitOrder;
}

int NxChar::IsDigit() const {
  const unsigned short order = GetOrder();
  return order >= kFirstDigitOrder && order < kFirstLetterOrder;
}

int NxChar::IsAlpha() const { return NxIsLetterOrder(GetOrder()); }

int NxChar::IsHan() const { return GetOrder() >= kFirstHanOrder; }

NxChar NxChar::ToUpper(NxStringIterator* it) const {
  const unsigned short value = *this;
  if (_nCodeSet == kCodeSetNone) return NxChar(static_cast<char>(std::toupper(value)), _nCodeSet, _nLanguage);
  const NxUnicodeProps* props =
      NxLanguageContext::QueryCodeSet(_nCodeSet)->GetUnicodeProps(value, _nLanguage);
  if (!props || props->upper == 0) return *this;
  if (it && props->furtherUpper && props->furtherUpper->Count() > 0)
    it->SetOverflow(props->furtherUpper, kCodeSetDefault);
  return NxChar(props->upper, kCodeSetUnicode, _nLanguage).MapTo(_nCodeSet);
}

NxChar NxChar::ToLower(NxStringIterator* /*it*/) const {  // lower case never is more than one character
  const unsigned short value = *this;
  if (_nCodeSet == kCodeSetNone) return NxChar(static_cast<char>(std::tolower(value)), _nCodeSet, _nLanguage);
  const NxUnicodeProps* props =
      NxLanguageContext::QueryCodeSet(_nCodeSet)->GetUnicodeProps(value, _nLanguage);
  if (!props || props->lower == 0) return *this;
  return NxChar(props->lower, kCodeSetUnicode, _nLanguage).MapTo(_nCodeSet);
}

char* NxChar::Address() const {
  return _pChar ? _pChar : const_cast<char*>(reinterpret_cast<const char*>(&_nChar));
}
