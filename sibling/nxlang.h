/// What the type manager calls of the language library `libnx21Rin`: the
/// language context and its defaults, code sets, the collation records of their
/// characters, languages, and the case mappings of Unicode.
#ifndef NXLANG_H
#define NXLANG_H

#include "nxapi.h"

// ---------------------------------------------------------------------------
// Code sets and languages by number

inline constexpr unsigned char kCodeSetNone = 0;         // none stated: the native code set serves
inline constexpr unsigned char kCodeSetLatin1 = 1;       // ISO 8859-1
inline constexpr unsigned char kCodeSetWindows1252 = 2;  // Windows-1252
inline constexpr unsigned char kCodeSetLatin9 = 3;       // ISO 8859-15
inline constexpr unsigned char kCodeSetLatin2 = 4;       // ISO 8859-2
inline constexpr unsigned char kCodeSetFirst16Bit = 225;
inline constexpr unsigned char kCodeSetUnicode = 253;      // UCS-2
inline constexpr unsigned char kCodeSetOrderValues = 254;  // 16-bit order values
inline constexpr unsigned char kCodeSetDefault = 255;      // in parameters only

inline constexpr unsigned char kLanguageNone = 0;
inline constexpr unsigned char kLanguageEnglish = 1;
inline constexpr unsigned char kLanguageGerman = 2;
inline constexpr unsigned char kLanguageFrench = 3;
inline constexpr unsigned char kLanguageSpanish = 4;  // traditional: ch and ll are letters
inline constexpr unsigned char kLanguageSwedish = 5;
inline constexpr unsigned char kLanguageDanish = 6;
inline constexpr unsigned char kLanguageTurkish = 7;
inline constexpr unsigned char kLanguageNull = 254;     // marks a null string
inline constexpr unsigned char kLanguageDefault = 255;  // in parameters only

/// Bytes of one character of a code set: 1 below 225, 2 from there.
constexpr unsigned short NxCharWidth(unsigned char codeSet) { return codeSet < kCodeSetFirst16Bit ? 1 : 2; }

/// The first collation selector that means plain order values; selectors below
/// it mean alphabetic collation.
inline constexpr unsigned char kPlainOrderSelector = 20;

// ---------------------------------------------------------------------------
// Character data
//
// All of it is constant and lives as long as the process; nobody releases it.

/// A list of 16-bit values: characters or order values.
class NxWCharList {
 public:
  constexpr NxWCharList(const unsigned short* values, short count) : values_(values), count_(count) {}
  constexpr short Count() const { return count_; }
  /// The value at `index`, which is in [0, Count()).
  constexpr unsigned short At(short index) const { return values_[index]; }

 private:
  const unsigned short* values_;
  short count_;
};

struct NxCharInfo;

/// The records that a character has in single languages, by language.
struct NxCharVariants {
  struct Entry {
    unsigned char language;
    const NxCharInfo* info;
  };
  const Entry* entries;
  short count;
  /// The record for `language`, or null when none is listed.
  const NxCharInfo* Find(unsigned char language) const {
    for (short i = 0; i < count; ++i)
      if (entries[i].language == language) return entries[i].info;
    return nullptr;
  }
};

/// The characters that continue a contraction, with the record of the whole.
struct NxCharFollowers {
  struct Entry {
    unsigned short value;  // in the code set of the table that holds the record
    const NxCharInfo* info;
  };
  const Entry* entries;
  short count;
  /// The record of the contraction with `value`, or null when there is none.
  const NxCharInfo* Find(unsigned short value) const {
    for (short i = 0; i < count; ++i)
      if (entries[i].value == value) return entries[i].info;
    return nullptr;
  }
};

/// Character-information record: how one character (or contraction) orders.
struct NxCharInfo {
  static constexpr unsigned char kNoCollation = 255;

  unsigned short order;              // collation order value of the first letter
  unsigned char collation;           // selector to go on with, or kNoCollation
  const NxCharVariants* variants;    // records of single languages, or null
  const NxCharFollowers* followers;  // when it can start a contraction, else null
  const NxWCharList* expansion;      // further order values, or null
};

/// The records of a code set's characters.
class NxCharTable {
 public:
  /// The record of a character value, or null for an unlisted value above 511.
  virtual const NxCharInfo* Find(unsigned short value) const = 0;
  /// The same without a call for the values up to 511 of a 16-bit code set.
  const NxCharInfo* Record(unsigned short value) const {
    return low_ != nullptr && value < 512 ? low_ + value : Find(value);
  }

 protected:
  constexpr NxCharTable() = default;
  ~NxCharTable() = default;

  const NxCharInfo* low_ = nullptr;  // records of the values 0 to 511, or null
};

/// Case mappings of one character, as characters of code set 253.
struct NxUnicodeProps {
  unsigned short upper;             // 0 for none
  unsigned short lower;             // 0 for none
  const NxWCharList* furtherUpper;  // what follows `upper` (ß gives S, then S), or null
};

/// A code set: how its characters map, order and change case.
class NX_API NxCodeSet {
 public:
  // Callers reach the first two operations by their place.

  /// Collation selector of a language: below 20 alphabetic, from 20 plain.
  virtual unsigned char GetCollation(unsigned char language) const = 0;
  /// `value` of code set `source` as a character of this code set; 0x7F when it
  /// has none. 0 maps to 0.
  virtual unsigned short MapFrom(unsigned short value, unsigned char source) const = 0;

  /// The records of this code set's characters, or null when it has none of its
  /// own: code set 253's serve then.
  const NxCharTable* CharTable() const { return table_; }
  /// For an 8-bit code set the records of its 256 characters, none null;
  /// otherwise null. The same records that CharTable() finds.
  const NxCharInfo* const* FlatRecords() const { return flatRecords_; }
  /// For an 8-bit code set its 256 characters in code set 253; otherwise null.
  const unsigned short* FlatToUnicode() const { return flatToUnicode_; }

  /// For an 8-bit code set the case mappings of its 256 characters (0 and 0 for
  /// a character without case), which serve every language but Turkish;
  /// otherwise null. The same that GetUnicodeProps() finds.
  const NxUnicodeProps* FlatProps() const { return flatProps_; }

  /// Case mappings of a character of this code set under the rules of
  /// `language`, or null when it has none. A mapping that the code set has no
  /// character for is left out, so that the character stays as it is.
  const NxUnicodeProps* GetUnicodeProps(unsigned short value, unsigned char language) const;

 protected:
  constexpr NxCodeSet() = default;
  ~NxCodeSet() = default;

  const NxCharTable* table_ = nullptr;
  const NxCharInfo* const* flatRecords_ = nullptr;
  const unsigned short* flatToUnicode_ = nullptr;
  const NxUnicodeProps* flatProps_ = nullptr;
  unsigned char number_ = 0;
};

/// A language known to the library.
struct NxLanguage {
  unsigned char number;
  bool hasVariants;  // per-language records apply
  const char* name;  // in English
};

// ---------------------------------------------------------------------------
// Language context

/// The process's language settings. Unguarded: change them while no other
/// thread uses the library.
class NX_API NxLanguageContext {
 public:
  /// Code set of new strings (1).
  static unsigned char GetDefaultCodeSet();
  /// Code set of texts built from 8-bit text and from numbers (1).
  static unsigned char GetDefault8CodeSet();
  /// Code set of texts built from 16-bit text (253).
  static unsigned char GetDefault16CodeSet();
  /// What replaces code set 0 in mapping, ordering and comparison (1).
  static unsigned char GetNativeCodeSet();
  /// The language of what is created with language 255 (1).
  static unsigned char GetDefaultLanguage();
  /// The compare option word used where a caller passes 65535 (0).
  static unsigned short GetDefaultCmpOp();

  // The setters return 0, or -2002 and change nothing for a number that no
  // value can carry (code set 0, 254 or 255; language 254 or 255).

  static int SetDefaultCodeSet(unsigned char codeSet);
  static int SetDefaultLanguage(unsigned char language);
  static int SetDefaultCmpOp(unsigned short options);

  /// The code set of a number, never null: an unknown number below 225 answers
  /// as code set 1, from 225 as 253.
  static const NxCodeSet* QueryCodeSet(unsigned char codeSet);
  /// The language of a number; an unknown number answers as 1.
  static const NxLanguage* QueryLanguage(unsigned char language);
};

/// Sets the language context up (1) or tears it down (0). The setting up gives
/// every default its first value.
NX_API void ___NxI18NContext(int start);

/// Version of the collation data: raised whenever the relative order of any two
/// texts changes. Indexes on texts that were made under another version must be
/// rebuilt.
NX_API unsigned long NxCollationVersion();

#endif
