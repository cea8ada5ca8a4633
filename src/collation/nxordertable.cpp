// The building of order tables, and the reading of texts by them.

#include "collation/nxordertable.h"

#include "collation/nxkeybytes.h"
#include "collation/nxplainkey.h"
#include "ord2str.h"
#include "text/nxchartext.h"

// ---------------------------------------------------------------------------
// Tables

namespace {

const NxCharInfo* RecordOf(unsigned short value, unsigned char codeSet, unsigned char language) {
  const NxCharTable* records = NxLanguageContext::QueryCodeSet(codeSet)->CharTable();
  const NxCharInfo* const info = records ? records->Find(value) : nullptr;
  return info ? NxInLanguage(info, language) : nullptr;
}

/// Whether a character with an expansion is all digits and letters.
bool OnlyLetters(unsigned short order, const NxWCharList* expansion) {
  if (order < kFirstDigitOrder || !expansion) return false;
  for (short i = 0; i < expansion->Count(); ++i)
    if (expansion->At(i) < kFirstDigitOrder) return false;
  return true;
}

constexpr unsigned short kUnsuited = kSortUnsuited << 8;

/// The sort bytes of an order value.
unsigned short SortBytesOf(unsigned short order, unsigned char selector) {
  using namespace NxKeyBytes;
  if (selector != kHomeSelector || order < kFirstDigitOrder || order >= kFirstHanOrder) return kUnsuited;
  if (order < kFirstLetterOrder) {
    const unsigned digit = order - kFirstDigitOrder;
    return static_cast<unsigned short>(digit % 10 == 0 ? kFirstDigit + digit / 5 : kUnsuited);
  }
  const unsigned letterCase = order >> 12 & 3;
  if (letterCase > kSmallCase) return kUnsuited;
  const unsigned accent = order >> 7 & kSortAccent;
  const unsigned marks = accent | (accent ? kSortAccented : 0) | (letterCase == 0 ? kSortCapital : 0);
  return static_cast<unsigned short>(marks << 8 | (kFirstBase + (order & 0x7F)));
}

}  // namespace

NxOrderTable NxOrderTable::tables_[kLanguages][kRows];
std::atomic<bool> NxOrderTable::taken_[kLanguages][kRows];
NxPublished<NxOrderTable> NxOrderTable::built_[256][kCodeSets];
NxPublished<NxOrderTable> NxOrderTable::builtUnicode_[kLanguages];

const NxOrderTable* NxOrderTable::Find(unsigned char codeSet, unsigned char language) {
  if (language == kLanguageDefault) language = NxLanguageContext::GetDefaultLanguage();
  const bool wide = codeSet == kCodeSetUnicode;
  if (!wide && (codeSet == kCodeSetNone || codeSet >= kCodeSets)) return nullptr;
  if (language >= kLanguages) return nullptr;
  NxPublished<NxOrderTable>& built = wide ? builtUnicode_[language] : built_[language][codeSet];
  if (const NxOrderTable* table = built.Get()) return table;
  // Comparing takes no lock: of several threads one builds, the others do without.
  const unsigned row = wide ? kCodeSets : codeSet;
  if (taken_[language][row].exchange(true)) return nullptr;
  NxOrderTable& table = tables_[language][row];
  table.Build(codeSet, language);
  built.Publish(table);
  return &table;
}

void NxOrderTable::Build(unsigned char ofCodeSet, unsigned char ofLanguage) {
  codeSet = ofCodeSet;
  language = ofLanguage;
  NxString::GetAsterisk();  // from now on they are known
  NxString::GetQuestion();
  entries[0] = {0, 0, 0, false};
  contracts = false;
  sortBytes[0] = kUnsuited;
  hashKeys[0] = kNeedsIterator;
  for (unsigned value = 1; value < 256; ++value) {
    const unsigned short text[2] = {static_cast<unsigned short>(value), 0};
    NxStringIterator it(reinterpret_cast<const char*>(text), codeSet, language, kFormatNative);
    const unsigned short order = it.GetNextOrder(1);
    const unsigned char selector = it._nCollation;
    const NxCharInfo* record = RecordOf(static_cast<unsigned short>(value), codeSet, language);
    Entry& entry = entries[value];
    entry = {NxCompareKey(order, selector), order, selector, false};
    records[value] = nullptr;
    if (!record || record->followers || record->expansion || (entry.key & kMarks) != 0) {
      if ((entry.key & kMarks) == 0) records[value] = record;
      contracts = contracts || value < 128 || (record && record->followers);
      entry.key |= kMarks;
      entry.order = 0;
      entry.equalsItself = record && !record->followers && OnlyLetters(order, record->expansion);
    } else if (order >= kFirstDigitOrder && selector < kPlainOrderSelector) {
      entry.equalsItself = true;
    } else {
      entry.key |= kNotPlain;
    }
    hashKeys[value] = entry.key & kNeedsIterator ? kNeedsIterator : entry.key & ~kNotPlain;
    sortBytes[value] = entry.key & kMarks ? kUnsuited : SortBytesOf(order, selector);
  }
}

// ---------------------------------------------------------------------------
// Reader

bool NxOrderReader::TakeFromTable() {
  const bool wide = NxCharWidth(it._nCodeSet) == 2;
  if (it._pOverflow || (wide && (it._nByteOrder & kFormatCodeMask) == kFormatBigEndian)) return false;
  const unsigned value = wide ? NxUnitAt<unsigned short>(it._pPos) : NxUnitAt<unsigned char>(it._pPos);
  if (value > 255) return false;
  const NxOrderTable::Entry& entry = table_->entries[value];
  if (entry.key & NxOrderTable::kNeedsIterator) return false;
  order = entry.order;
  key = entry.key & ~NxOrderTable::kMarks;
  if (value == 0) return true;
  it._nCollation = entry.selector;
  it._pPos += wide ? 2 : 1;
  return true;
}

void NxOrderReader::TakeFromIterator(unsigned short updateCollation) {
  order = it.GetNextOrder(updateCollation);
  key = GetCompareFromOrder(order, it._nCollation);
}
