// How texts read as collation order values: tables of the characters that have one order
// value each, and a reader that asks the iterator for the others.
#ifndef NXORDERTABLE_H
#define NXORDERTABLE_H

#include <atomic>

#include "base/nxbytes.h"
#include "base/nxstored.h"
#include "base/nxthreads.h"
#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"

/// How each of the first 256 characters of a code set orders in one language. Tables
/// are built when first asked for and never change; any number of threads may use them.
class NxOrderTable {
 public:
  // Marks in bits that no compare key of these characters uses.
  static constexpr unsigned kNotPlain = 0x80;           // no digit or letter with one order value
  static constexpr unsigned kNeedsIterator = 0x800000;  // several characters or order values are involved
  static constexpr unsigned kMarks = kNotPlain | kNeedsIterator;

  struct Entry {
    unsigned key;  // compare key and marks; 0 for the end of a text alone
    unsigned short order;
    unsigned char selector;
    /// Whether the character, read on both sides of a comparison at once, makes no
    /// difference at any level, whatever follows it on either side.
    bool equalsItself;
  };

  /// The table of a code set and language, or null when none is kept for them.
  static const NxOrderTable* Find(unsigned char codeSet, unsigned char language);
  /// The same, if it has been built; null for code sets from kCodeSets on.
  static const NxOrderTable* FindBuilt(unsigned char codeSet, unsigned char language) {
    return codeSet < kCodeSets ? built_[language][codeSet].Get() : nullptr;
  }
  /// Whether neither wildcard is a digit or letter, so that plain characters are none.
  static bool WildcardsAreSymbols() {
    return NxLoadRelaxed(NxString::_nAsterisk) < kFirstDigitOrder &&
           NxLoadRelaxed(NxString::_nQuestion) < kFirstDigitOrder;
  }

  /// Whether the wildcards are the bytes "*" and "?" and no others.
  bool WildcardsAreUsual() const {
    return NxLoadRelaxed(NxString::_nAsterisk) == EntryOf('*').order &&
           NxLoadRelaxed(NxString::_nQuestion) == EntryOf('?').order;
  }

  const Entry& EntryOf(char c) const { return entries[static_cast<unsigned char>(c)]; }
  /// Whether a character may make one with what follows it.
  bool Contracts(char c) const {
    const NxCharInfo* const record = records[static_cast<unsigned char>(c)];
    return (EntryOf(c).key & kNeedsIterator) && !(record && !record->followers);
  }

  /// Whether any character may, or one of ASCII needs the iterator.
  bool contracts;
  unsigned char codeSet, language;
  Entry entries[256];
  /// The records of the characters that are marked kNeedsIterator and whose key without
  /// marks is that of their first order value; else null.
  const NxCharInfo* records[256];

  /// What a hash takes in of a character; kNeedsIterator where the table cannot tell, and for 0.
  unsigned hashKeys[256];

  /// What sort keys have of a character; see nxplainkey.h.
  unsigned short sortBytes[256];

  static constexpr unsigned kCodeSets = 8;  // 8-bit code sets that tables are kept for, a power of two

 private:
  static constexpr unsigned kRows = kCodeSets + 1;  // the last is Unicode
  static constexpr unsigned kLanguages = 16;        // that tables are kept for

  void Build(unsigned char ofCodeSet, unsigned char ofLanguage);

  static NxOrderTable tables_[kLanguages][kRows];
  static std::atomic<bool> taken_[kLanguages][kRows];  // being built, or built
  static NxPublished<NxOrderTable> built_[256][kCodeSets];
  static NxPublished<NxOrderTable> builtUnicode_[kLanguages];
};

/// The table of a whole image of an 8-bit text in the usual format, with the bytes of the text; null
/// for another value, or while there is no table.
inline const NxOrderTable* NxTableOfStored(const void* image, unsigned long length, unsigned& size) {
  if (!NxStoredString::IsWhole(image, length, kFormatNative)) return nullptr;
  size = NxStoredString::LengthOf(image, kFormatNative) - NxStoredString::kEmptyLength;
  return NxOrderTable::FindBuilt(NxStoredString::CodeSetOf(image), NxStoredString::LanguageOf(image));
}

/// The entry of the character at p of a text of Units (bytes or 16-bit units); a marked
/// one for characters that the table does not hold.
template <class Unit>
const NxOrderTable::Entry& NxEntryAt(const NxOrderTable& table, const char* p) {
  static constexpr NxOrderTable::Entry kOutside = {NxOrderTable::kMarks, 0, 0, false};
  const unsigned value = NxUnitAt<Unit>(p);
  return sizeof(Unit) == 1 || value < 256 ? table.entries[value] : kOutside;
}

/// The record of a character that needs the iterator, unless what follows it makes a
/// contraction; else null.
template <class Unit>
const NxCharInfo* NxRecordAlone(const NxOrderTable& table, const char* p) {
  const unsigned value = NxUnitAt<Unit>(p);
  const NxCharInfo* const record = sizeof(Unit) == 1 || value < 256 ? table.records[value] : nullptr;
  if (!record || !record->followers) return record;
  return record->followers->Find(NxUnitAt<Unit>(p + sizeof(Unit))) ? nullptr : record;
}

/// Whether the character at p makes a pair by itself (nxlevels.h), or ends the text.
template <class Unit>
bool NxIsPlainAt(const NxOrderTable& table, const char* p) {
  const NxOrderTable::Entry& entry = NxEntryAt<Unit>(table, p);
  if (!(entry.key & NxOrderTable::kNotPlain)) return true;
  const NxCharInfo* const record = NxRecordAlone<Unit>(table, p);
  return record && !record->expansion && record->order >= kFirstDigitOrder &&
         entry.selector < kPlainOrderSelector;
}

/// Reads a text as collation order values with their compare keys. A table spares the
/// iterator most characters; it must be that of the text's code set and language, and
/// collation selectors must be updated while reading.
class NxOrderReader {
 public:
  NxOrderReader() = default;
  NxOrderReader(const char* text, unsigned char codeSet, unsigned char language, unsigned char byteOrder,
                const NxOrderTable* table)
      : it(text, codeSet, language, byteOrder), table_(table) {}

  /// Reads the next order value; 0 at the end, where the reader stays.
  void Next(unsigned short updateCollation) {
    if (!table_ || !TakeFromTable()) TakeFromIterator(updateCollation);
  }
  void TakeEnd() { order = 0, key = 0; }

  NxStringIterator it;
  unsigned short order = 0;  // what was read last
  unsigned key = 0;          //

 private:
  bool TakeFromTable();
  void TakeFromIterator(unsigned short updateCollation);

  const NxOrderTable* table_ = nullptr;
};

#endif
