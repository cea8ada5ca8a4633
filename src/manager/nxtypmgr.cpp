// The type manager: finds the record of a type identifier and calls its slots; and
// the few operations that are more than one call (printing arrays, making values
// null, one text for many values).

#include "nxtypmgr.h"

#include <algorithm>
#include <cstring>

#include "nxconv.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypfmt.h"
#include "slots/nxconvkit.h"
#include "strwild.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kLastEarlyFactory = 3;
constexpr unsigned long kLastFactory = 10;

/// The place in the table that an identifier names. May lie outside every table.
int TableIndex(char id) {
  const int number{static_cast<NxTypeId>(id)};
  return number < kIllegalTypeId ? number : std::min(number - 60, kIllegalTypeIndex);
}

NxTypeTab* FindIn(NxTypeTab** table, char id) {
  const int index = TableIndex(id);
  const int count = static_cast<int>(table == NxOldtypetab ? kOldTypeCount : kTypeCount);
  return index >= 0 && index < count ? table[index] : nullptr;
}

/// Out of line, so that most calls need no look at the tables' addresses.
[[gnu::noinline]] NxTypeTab& RareRecord(NxTypeTab** table, char id) {
  NxTypeTab* record = FindIn(table, id);
  return record ? *record : NxIllegalTab;
}

}  // namespace

NxTypeMgr::NxTypeMgr(unsigned long factory) { SetFactory(factory); }

void NxTypeMgr::SetFactory(unsigned long number) {
  if (number == kLastFactory + 1)
    number = kLastEarlyFactory;
  else if (number > kLastFactory)
    number = kLastEarlyFactory + 1;
  factory = static_cast<unsigned short>(number);
  table = number <= kLastEarlyFactory ? NxOldtypetab : NxNewtypetab;
}

NxTypeTab* NxTypeMgr::Find(char id) const { return FindIn(table, id); }

NxTypeTab& NxTypeMgr::Record(char id) const {
  const auto index = static_cast<unsigned char>(id);
  if (index < kOldTypeCount) return *table[index];  // in both tables
  return RareRecord(table, id);
}

// ---------------------------------------------------------------------------
// Identification and sizes

int NxTypeMgr::IsValidType(char id) {
  const int index = TableIndex(id);
  return index >= 0 && index < static_cast<int>(kTypeCount);
}

char* NxTypeMgr::NameGet(char id, char* buffer) {
  const char* name = Record(id).name;
  return buffer ? std::strcpy(buffer, name) : const_cast<char*>(name);
}

int NxTypeMgr::Name2NxTypeId(const char* name, char& id) {
  for (id = 0; const NxTypeTab* record = Find(id); ++id)
    if (std::strcmp(record->name, name) == 0) return 0;
  return 1;
}

unsigned short NxTypeMgr::IsFixed(char id) { return static_cast<unsigned short>(Record(id).flags >> 16); }

unsigned short NxTypeMgr::MemLenGet(char id, unsigned long n) {
  return static_cast<unsigned short>((Record(id).flags & 0xFFFF) * n);
}

int NxTypeMgr::SupportsNullValue(char id) { return Record(id).SetNull != nullptr; }

void* NxTypeMgr::GetArrayElement(char id, void* base, unsigned long i, unsigned long n) {
  const NxTypeTab* record = Find(id);
  if (!record || (n != 0 && i >= n)) return nullptr;
  return static_cast<char*>(base) + i * (record->flags & 0xFFFF);
}

// ---------------------------------------------------------------------------
// Forwarding

void* NxTypeMgr::Create(char id, unsigned long n) { return Record(id).Create(n); }

int NxTypeMgr::Delete(char id, void* values, unsigned long n) { return Record(id).Delete(values, n); }

void* NxTypeMgr::DefaultValue(char id, unsigned long n, int asNull) {
  return Record(id).DefaultValue(n, asNull);
}

int NxTypeMgr::Store(char id, void* image, void* values, unsigned char format, unsigned long n) {
  return Record(id).Store(image, values, format, n);
}

int NxTypeMgr::Load(char id, void* values, void* image, unsigned char format, unsigned long n) {
  return Record(id).Load(values, image, format, n);
}

int NxTypeMgr::DiskLenGet(char id, void* p, unsigned char format, unsigned long n, unsigned char form) {
  return Record(id).SizeGet(p, form, format, n);
}

int NxTypeMgr::DiskLenGetFromMemFile(char id, MemFile* file, unsigned char format, unsigned long n) {
  return Record(id).SizeGetFromMemFile(file, format, n);
}

int NxTypeMgr::Translate(char id, void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                         unsigned char srcForm, unsigned long srcLength, unsigned long n) {
  return Record(id).Translate(dst, dstForm, dstLength, src, srcForm, srcLength, n);
}

long NxTypeMgr::Cmp(char id, void* value1, void* value2, unsigned short options, unsigned long count,
                    unsigned char format) {
  int error = 0;
  return Record(id).Compare(format, 0, value1, 0, value2, options, count, error);
}

long NxTypeMgr::Cmp(char id, unsigned long len1, void* value1, unsigned long len2, void* value2,
                    unsigned short options, unsigned long count, unsigned char format, int& error) {
  return Record(id).Compare(format, len1, value1, len2, value2, options, count, error);
}

float NxTypeMgr::EvalAndBound(char id, NxIdxBounds* indexRange, unsigned short& relation, void* key,
                              unsigned char format, unsigned long count, NxIdxBounds* bounds, NxEvalData*) {
  return Record(id).EvalAndBound(indexRange, relation, key, format, count, bounds);
}

unsigned long NxTypeMgr::Hash(char id, unsigned long len, void* value, unsigned long count,
                              unsigned char format, int& error) {
  return Record(id).Hash(format, len, value, count, error);
}

int NxTypeMgr::IsNullValue(char id, void* value) { return Record(id).IsNull(value); }

int NxTypeMgr::DiskIsNullValue(char, void*) { return kNotPossible; }

void* NxTypeMgr::ScanFromNxString(char id, void* values, NxString& text, const char* format,
                                  unsigned long n) {
  const NxTypeTab& record = Record(id);
  if (!record.ScanFromNxString) return values;
  return record.ScanFromNxString(values, text, format ? format : record.format, n);
}

NxTypeConvertData* NxTypeMgr::ConvertTo(char id, void* values, unsigned long n) {
  const NxTypeTab& record = Record(id);
  if (!record.ConvertToNxString) return nullptr;
  NxTypeConvertData* strings = record.ConvertToNxString(values, n);
  if (strings) strings->mgr = this;
  return strings;
}

void* NxTypeMgr::ConvertFrom(char id, NxTypeConvertData* strings, unsigned long n) {
  if (strings) strings->mgr = this;
  const NxTypeTab& record = Record(id);
  return record.ConvertFromNxString ? record.ConvertFromNxString(strings, n) : nullptr;
}

// ---------------------------------------------------------------------------
// Text and null values

NxString& NxTypeMgr::GetNullPrintString() { return __NullPrintString; }

NxString& NxTypeMgr::SetNullPrintString(const NxString& text) { return __NullPrintString = text; }

NxString& NxTypeMgr::PrintToNxString(char id, NxString& out, void* values, const char* format,
                                     unsigned long n) {
  const NxTypeTab& record = Record(id);
  const PrintFunc print = record.PrintToNxString;
  if (!print) return out;
  if (!format) format = record.format;
  // The chars of an array are one text.
  if (n < 2 || print == CharPrintToNxString) return print(out, values, format, n);
  const NxShortageWatch shortage;
  const NxString separator(",");
  NxString text(out);  // out may hold the format or be one of the values, and stays for want of memory
  for (unsigned long i = 0; i < n; ++i) {
    NxString element;
    if (i != 0) text += separator;
    text += print(element, GetArrayElement(id, values, i, n), format, 1);
  }
  if (!shortage.Happened()) out.Destruct(text);
  return out;
}

int NxTypeMgr::SetNullValue(char id, void* value) {
  const NxTypeTab& record = Record(id);
  if (record.SetNull) {
    const int result = record.SetNull(value);
    if (result != kNotPossible) return result;
  }
  if (record.Assignment) {
    AssignEmptyText(id, value);
  } else if (record.ScanFromNxString) {
    record.ScanFromNxString(value, SourceZeroString, record.format, 1);
  }
  return 0;
}

void NxTypeMgr::AssignEmptyText(char id, void* value) {
  const NxTypeTab& record = Record(id);
  NxString text;
  NxTypeConvertData empty(kStringTypeId, 1, &text, nullptr);
  void* converted = ConvertFrom(id, &empty, 1);
  empty.mgr = nullptr;  // the text is not the record's
  if (!converted) return;
  record.Assignment(value, converted, 1, 1);
  record.Delete(converted, 1);
}

// ---------------------------------------------------------------------------
// One text for many values

namespace {

constexpr unsigned short kNoSeparator = 65535;

/// The places of a separator in a text. It is looked for as NxString::Find does, which may
/// find a character that begins like the separator, as a quarter does like a raised one: those
/// are none. What was found of a character holds wherever it stands.
class SeparatorPlaces {
 public:
  SeparatorPlaces(const NxString& text, const NxString& separator)
      : text_(text), separator_(separator), width_(NxCharWidth(text._nCodeSet)) {
    // The sizes in bytes decide where a search ends, whatever the widths.
    const long last = text._nSize - width_ - (separator._nSize - separator.NullLen());
    if (text._pBuffer && separator._pBuffer && last >= 0)
      end_ = std::min<unsigned long>(text.Len(), static_cast<unsigned long>(last / width_ + 1));
  }

  /// The first place from pos on; kNoSeparator for none.
  unsigned short From(unsigned long pos) {
    while (pos < end_ && !IsAt(text_._pBuffer + pos * static_cast<unsigned long>(width_))) ++pos;
    return pos < end_ ? static_cast<unsigned short>(pos) : kNoSeparator;
  }

 private:
  static constexpr unsigned kRemembered = 256;
  enum : unsigned char { kUnknown, kOther, kEqual };

  bool IsAt(const char* place) {
    const unsigned character = NxCharAt(place, static_cast<unsigned>(width_));
    unsigned char any = kUnknown, &known = character < kRemembered ? known_[character] : any;
    if (known == kUnknown) known = Equals(place) ? kEqual : kOther;
    return known == kEqual &&
           NxStrCmp(text_._nCodeSet, text_._nLanguage, place, separator_._nCodeSet, separator_._nLanguage,
                    separator_._pBuffer, kWildcardsOff, 1, kFormatNative, nullptr) == 0;
  }
  bool Equals(const char* place) const {
    NxString character(text_._nCodeSet, text_._nLanguage);
    NxComposeText(character, place, text_._nCodeSet, 1);
    return character.EqualsIgnoreLanguage(separator_) != 0;
  }

  const NxString& text_;
  const NxString& separator_;
  long width_;
  unsigned long end_ = 0;
  unsigned char known_[kRemembered] = {};
};

bool AnyContains(NxTypeConvertData& strings, const NxString& separator) {
  int i = 0;
  while (const NxString* s = strings.GetString(i++))
    if (SeparatorPlaces(*s, separator).From(0) != kNoSeparator) return true;
  return false;
}

/// The first character that occurs in no string; "," when all occur.
NxString UnusedSeparator(NxTypeConvertData& strings) {
  for (int code = 1; code < 255; ++code) {
    const NxString separator(static_cast<char>(code));
    if (!AnyContains(strings, separator)) return separator;
  }
  return NxString(",");
}

/// Removes the first n characters: a single cut takes its count as a signed number.
void CutFront(NxString& text, unsigned long n) {
  constexpr unsigned long kMost = 32767;
  for (; n > kMost; n -= kMost) text.Cut(0, kMost);
  text.Cut(0, static_cast<short>(n));
}

/// The parts of text between separators, as an array of `count` strings, and where the last
/// separator ends. The part behind it stays empty.
NxString* SplitParts(const NxString& text, const NxString& separator, unsigned long& count,
                     unsigned short& pos) {
  SeparatorPlaces places(text, separator);
  pos = 0;
  count = 1;
  for (unsigned short at; (at = places.From(pos)) != kNoSeparator; ++count) pos = at + 1;

  auto* parts = static_cast<NxString*>(NxStringCreate(count));
  if (!parts) return nullptr;
  pos = 0;
  for (unsigned long i = 0; i + 1 < count; ++i) {
    const unsigned short at = places.From(pos);
    NxString part(text._nCodeSet, text._nLanguage);
    NxComposeText(part, text._pBuffer + pos * NxCharWidth(text._nCodeSet), text._nCodeSet, at - pos);
    parts[i] = part;
    pos = at + 1;
  }
  return parts;
}

}  // namespace

NxString* NxTypeMgr::ConvertToNxStringOld(void* values, char id, unsigned long n) {
  const NxShortageWatch shortage;
  NxTypeConvertData* strings = ConvertTo(id, values, n);
  if (!strings) return nullptr;
  const NxString separator = UnusedSeparator(*strings);
  auto* text = static_cast<NxString*>(NxStringCreate(1));
  for (unsigned long i = 0; text && i < n; ++i) {
    if (const NxString* s = strings->GetString(static_cast<int>(i))) *text += *s;
    *text += separator;
  }
  delete strings;
  return static_cast<NxString*>(NxWholeOrNone(text, 1, NxStringDelete, shortage));
}

void* NxTypeMgr::ConvertFromNxStringOld(NxString* text, char id, unsigned long n) {
  const NxShortageWatch shortage;
  const NxString separator = text->IsEmpty() ? NxString(",") : text->Right(1);
  unsigned long count;
  unsigned short consumed;
  NxString* parts = SplitParts(*text, separator, count, consumed);
  if (!parts) return nullptr;
  NxTypeConvertData record(kStringTypeId, count, parts, this);
  if (shortage.Happened()) return nullptr;
  void* values = ConvertFrom(id, &record, n);
  if (!shortage.Happened()) CutFront(*text, consumed);
  return NxWholeOrNone(values, n, Record(id).Delete, shortage);
}

// ---------------------------------------------------------------------------
// Slots

namespace {

/// Answers what the slot held, and puts value there unless it is null.
template <class T>
T Exchange(T& slot, T value) {
  T before = slot;
  if (value) slot = value;
  return before;
}

}  // namespace

NxTypeMgr::StoreFunc NxTypeMgr::StorePtrGet(char id) { return Record(id).Store; }
NxTypeMgr::LoadFunc NxTypeMgr::LoadPtrGet(char id) { return Record(id).Load; }
NxTypeMgr::CompareFunc NxTypeMgr::CmpFuncPtrGet(char id) { return Record(id).Compare; }
NxTypeMgr::PlaceFunc NxTypeMgr::ConstructorPtrGet(char id) { return Record(id).Constructor; }
NxTypeMgr::PlaceFunc NxTypeMgr::DestructorPtrGet(char id) { return Record(id).Destructor; }
NxTypeMgr::CopyFunc NxTypeMgr::AssignmentPtrGet(char id) { return Record(id).Assignment; }
NxTypeMgr::CopyFunc NxTypeMgr::CopyPtrGet(char id) { return Record(id).Copy; }
NxTypeMgr::NullFunc NxTypeMgr::IsNullPtrGet(char id) { return Record(id).IsNull; }
NxTypeMgr::NullFunc NxTypeMgr::SetNullPtrGet(char id) { return Record(id).SetNull; }
NxTypeMgr::CompareFunc NxTypeMgr::ComparePtrGet(char) { return nullptr; }

const char* NxTypeMgr::ExchangeFormat(char id, const char* format) {
  return Exchange(Record(id).format, format);
}

NxTypeMgr::CompareFunc NxTypeMgr::ExchangeNxTypeCmpFunc(char id, CompareFunc function) {
  return Exchange(Record(id).Compare, function);
}

NxTypeMgr::PrintFunc NxTypeMgr::ExchangePrintToNxStringFunc(char id, PrintFunc function) {
  return Exchange(Record(id).PrintToNxString, function);
}

NxTypeMgr::ScanFunc NxTypeMgr::ExchangeScanFromNxStringFunc(char id, ScanFunc function) {
  return Exchange(Record(id).ScanFromNxString, function);
}
