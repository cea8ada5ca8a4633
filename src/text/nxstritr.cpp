// NxStringIterator: stepping through texts, delivering characters that stand in no
// text, and turning characters into collation order values. The order values come by
// the steps of OrderReader; single characters whose record is all there is to say take
// a short way before it.

#include "nxstritr.h"

#include <cstring>

#include "base/nxalloc.h"
#include "nxlang.h"
#include "nxstring.h"
#include "text/nxchartext.h"

namespace {

const NxCodeSet* CodeSetOf(const NxStringIterator& it) {
  if (it._pCodeSet && it._nOpenCodeSet == it._nCodeSet) return it._pCodeSet;
  return NxLanguageContext::QueryCodeSet(StatedCodeSet(it._nCodeSet));
}

bool IsPending(const NxStringIterator& it) {
  return it._pOverflow && it._nOverflowIndex < it._pOverflow->Count();
}

/// Whether a character follows the one that was read last: an entry of the list, or one
/// behind a place that is not the text's end.
bool HasNext(const NxStringIterator& it) {
  return IsPending(it) || (it._pPos && ReadCharacter(it._pPos, it._nCodeSet, kFormatNative) != 0);
}

/// The record of a character by the code set's own table, or null.
const NxCharInfo* RecordOf(const NxCodeSet* codeSet, unsigned short value) {
  if (const NxCharInfo* const* records = codeSet->FlatRecords()) return records[value];
  const NxCharTable* table = codeSet->CharTable();
  return table ? table->Find(value) : nullptr;
}

/// Goes on with the selector that the record names, or else with the language's.
void SelectCollation(NxStringIterator& it, const NxCharInfo* info) {
  if (info->collation != NxCharInfo::kNoCollation)
    it._nCollation = info->collation;
  else if (it._pCodeSet && it._nOpenCodeSet == it._nCodeSet && it._nOpenLanguage == it._nLanguage)
    it._nCollation = it._nOpenCollation;
  else
    it._nCollation = CodeSetOf(it)->GetCollation(it._nLanguage);
}

/// Takes one order value from an iterator.
class OrderReader {
 public:
  OrderReader(NxStringIterator& it, bool updateCollation) : it_(it), updateCollation_(updateCollation) {}

  unsigned short Next();

 private:
  unsigned short NextOfOrderValues();
  void ChooseTable(unsigned char codeSet);
  unsigned short ValueOf(const NxChar& c) const {
    if (mapped_) return c.MapTo(kCodeSetUnicode);
    return c;  // a copy of c would have another byte order
  }
  unsigned short TakeUnlisted(unsigned short value);
  const NxCharInfo* Contract(const NxCharInfo* info);

  NxStringIterator& it_;
  const bool updateCollation_;
  const NxCharTable* table_ = nullptr;
  bool mapped_ = false;  // the code set has no table: its characters are looked up in Unicode
};

unsigned short OrderReader::Next() {
  if (it_._nCodeSet == kCodeSetOrderValues) return NextOfOrderValues();
  const bool pending = IsPending(it_);
  const NxChar c(&it_);
  if (pending && c._nCodeSet == kCodeSetOrderValues) {
    ++it_;
    return c;
  }
  ChooseTable(c._nCodeSet);
  const unsigned short value = ValueOf(c);
  if (value == 0) return 0;
  const NxCharInfo* info = table_->Find(value);
  if (!info) return TakeUnlisted(value);
  info = Contract(NxInLanguage(info, c._nLanguage));
  if (updateCollation_) SelectCollation(it_, info);
  if (info->expansion) it_.SetOverflow(info->expansion, kCodeSetOrderValues);
  ++it_;  // stays as long as the expansion lasts
  return info->order;
}

/// Units of such a text are order values, low byte first; only the text of a stored
/// image with the most significant byte first has them that way round too.
unsigned short OrderReader::NextOfOrderValues() {
  const unsigned char byteOrder = it_._nByteOrder == kFormatBigEndian ? kFormatBigEndian : kFormatNative;
  const unsigned short order = it_._pPos ? NxReadShort(it_._pPos, byteOrder) : 0;
  if (order != 0)
    ++it_;
  else if (!IsPending(it_))
    it_._pOverflow = nullptr;  // a finished list is dropped at the end too
  return order;
}

void OrderReader::ChooseTable(unsigned char codeSet) {
  table_ = NxLanguageContext::QueryCodeSet(StatedCodeSet(codeSet))->CharTable();
  mapped_ = !table_;
  if (mapped_) table_ = NxLanguageContext::QueryCodeSet(kCodeSetUnicode)->CharTable();
}

/// A character without record orders as itself, and the text with it in plain order;
/// wildcards and the last values excepted.
unsigned short OrderReader::TakeUnlisted(unsigned short value) {
  constexpr unsigned short kLastPlainValue = 65519;
  ++it_;
  if (updateCollation_ && value != NxString::GetAsterisk() && value != NxString::GetQuestion() &&
      value <= kLastPlainValue)
    it_._nCollation = kPlainOrderSelector;
  return value;
}

/// Looks ahead as long as characters go together with what was read, and leaves the
/// iterator on the last that does.
const NxCharInfo* OrderReader::Contract(const NxCharInfo* info) {
  while (info->followers && HasNext(it_)) {
    char* const position = it_._pPos;
    const NxWCharList* const list = it_._pOverflow;
    const short index = it_._nOverflowIndex;
    ++it_;
    const NxCharInfo* whole = info->followers->Find(ValueOf(NxChar(&it_)));
    if (!whole) {
      it_._pPos = position;
      it_._pOverflow = list;
      it_._nOverflowIndex = index;
      break;
    }
    info = whole;
  }
  return info;
}

/// Apart from the short way, which would otherwise save registers for it.
__attribute__((noinline)) unsigned short NextBySteps(NxStringIterator& it, bool updateCollation) {
  return OrderReader(it, updateCollation).Next();
}

}  // namespace

NxChar NxCharToUpper::operator()(const NxChar& c, NxStringIterator* it) { return c.ToUpper(it); }

NxChar NxCharToLower::operator()(const NxChar& c, NxStringIterator* it) { return c.ToLower(it); }

NxStringIterator::NxStringIterator()
    : _pPos(nullptr),
      _nCodeSet(0),
      _nLanguage(0),
      _nCollation(0),
      _pOverflow(nullptr),
      _nOverflowIndex(0),
      _nOverflowCodeSet(0),
      _nByteOrder(kFormatNative),
      _bOwnsBuffer(0),
      _nOpenCodeSet(0),
      _nOpenLanguage(0),
      _nOpenCollation(0),
      _pOwnedText(nullptr),
      _pCodeSet(nullptr) {}

NxStringIterator::NxStringIterator(const char* t, unsigned char cs, unsigned char lang,
                                   unsigned char byteOrder)
    : NxStringIterator() {
  _pPos = const_cast<char*>(t);
  _nCodeSet = Stated8CodeSet(cs);
  _nLanguage = StatedLanguage(lang);
  _pCodeSet = CodeSetOf(*this);
  _nOpenCodeSet = _nCodeSet;
  _nOpenLanguage = _nLanguage;
  _nOpenCollation = _nCollation = _pCodeSet->GetCollation(_nLanguage);
  _nByteOrder = StatedByteOrder(byteOrder);
}

NxStringIterator::NxStringIterator(const unsigned short* t, unsigned char cs, unsigned char lang,
                                   unsigned char byteOrder)
    : NxStringIterator(reinterpret_cast<const char*>(t), Stated16CodeSet(cs), lang, byteOrder) {}

NxStringIterator::NxStringIterator(const NxString& s)
    : NxStringIterator(s.StrGet(), s._nCodeSet, s._nLanguage, kFormatMemory) {}

NxStringIterator::NxStringIterator(const NxChar& c)
    : NxStringIterator(static_cast<const char*>(nullptr), c._nCodeSet, c._nLanguage, kFormatNative) {
  const unsigned short width = NxCharWidth(_nCodeSet);
  _pOwnedText = NxNewZeroArray<char>(2 * width);
  if (!_pOwnedText) return;
  const unsigned short value = c;
  std::memcpy(_pOwnedText, &value, width);  // the low byte is the first
  _pPos = _pOwnedText;
  _bOwnsBuffer = 1;
}

NxStringIterator::NxStringIterator(const NxStringIterator& it) : NxStringIterator() { *this = it; }

NxStringIterator::NxStringIterator(NxStringIterator* it) : NxStringIterator(*it) {}

NxStringIterator::~NxStringIterator() { delete[] _pOwnedText; }

NxStringIterator& NxStringIterator::operator=(const NxStringIterator& it) {
  if (this == &it) return *this;
  const unsigned short textBytes = 2 * NxCharWidth(_nCodeSet);
  const bool staysInText = _pOwnedText && it._pPos >= _pOwnedText && it._pPos <= _pOwnedText + textBytes;
  if (!staysInText) {
    delete[] _pOwnedText;
    _pOwnedText = nullptr;
    _bOwnsBuffer = 0;
  }
  _pPos = it._pPos;
  _nCodeSet = it._nCodeSet;
  _nLanguage = it._nLanguage;
  _nCollation = it._nCollation;
  _pOverflow = it._pOverflow;
  _nOverflowIndex = it._nOverflowIndex;
  _nOverflowCodeSet = it._nOverflowCodeSet;
  _nByteOrder = it._nByteOrder;
  _nOpenCodeSet = it._nOpenCodeSet;
  _nOpenLanguage = it._nOpenLanguage;
  _nOpenCollation = it._nOpenCollation;
  _pCodeSet = it._pCodeSet;
  return *this;
}

int NxStringIterator::operator==(const NxStringIterator& it) const { return _pPos == it._pPos; }

NxChar NxStringIterator::operator*() { return NxChar(this); }

NxStringIterator& NxStringIterator::operator++() {
  if (IsPending(*this)) return *this;
  _pOverflow = nullptr;
  if (_pPos) _pPos += NxCharWidth(_nCodeSet);
  return *this;
}

NxStringIterator NxStringIterator::operator++(int) {
  NxStringIterator before(*this);
  ++*this;
  return before;
}

NxStringIterator& NxStringIterator::operator--() {
  if (_pPos) _pPos -= NxCharWidth(_nCodeSet);
  return *this;
}

NxStringIterator NxStringIterator::operator--(int) {
  NxStringIterator before(*this);
  --*this;
  return before;
}

NxStringIterator& NxStringIterator::Step(unsigned short forward) { return forward ? ++*this : --*this; }

int NxStringIterator::IsEOS() const {
  if (_pOverflow) return 0;
  return !_pPos || ReadCharacter(_pPos, _nCodeSet, kFormatNative) == 0;
}

void NxStringIterator::SetOverflow(const NxWCharList* list, unsigned char cs) {
  _pOverflow = list;
  _nOverflowIndex = 0;
  _nOverflowCodeSet = cs != kCodeSetDefault ? cs : _nCodeSet;
}

void NxStringIterator::Transform(NxStringIterator& dst, NxCharOperation& op) {
  const auto put = [&dst](const NxChar& c) {
    NxChar target(dst._pPos, dst._nCodeSet, dst._nLanguage, dst._nByteOrder);
    target = c;
  };
  for (; !IsEOS(); ++dst, ++*this) put(op(**this, this));
  put(**this);
  ++dst;
  ++*this;
}

// The short way is for a character with no list attached whose record needs no look at
// its neighbours and has one value only.
unsigned short NxStringIterator::GetNextOrder(unsigned short updateCollation) {
  if (_pOverflow || !_pPos || _nCodeSet == kCodeSetOrderValues) return NextBySteps(*this, updateCollation);
  const unsigned short value = ReadCharacter(_pPos, _nCodeSet, _nByteOrder);
  if (value == 0) return 0;
  const NxCharInfo* info = RecordOf(CodeSetOf(*this), value);
  if (!info) return NextBySteps(*this, updateCollation);
  info = NxInLanguage(info, _nLanguage);
  if (info->followers || info->expansion) return NextBySteps(*this, updateCollation);
  _pPos += NxCharWidth(_nCodeSet);
  if (updateCollation) SelectCollation(*this, info);
  return info->order;
}

unsigned short GetNextOrderValue(NxStringIterator& it, unsigned short mask) {
  if (it._nCodeSet == kCodeSetNone) {
    const unsigned char byte = it._pPos ? static_cast<unsigned char>(*it._pPos) : 0;
    if (byte != 0) ++it;
    return byte;
  }
  if (it.IsEOS()) return 0;
  const unsigned short order = it.GetNextOrder(1);
  return NxIsLetterOrder(order) ? order & ~mask : order;
}
