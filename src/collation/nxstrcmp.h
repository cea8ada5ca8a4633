// The comparison of two texts level by level, as NxStrCmp needs it: the algorithm
// itself, which is the truth, and the tables and the plain walk that stand before it
// where the characters allow.
#ifndef NXSTRCMP_H
#define NXSTRCMP_H

#include <atomic>
#include <cstring>
#include <limits>
#include <memory>

#include "base/nxbytes.h"
#include "nxlang.h"
#include "nxoption.h"
#include "nxstring.h"
#include "nxstritr.h"

/// How each of the first 256 characters of a code set orders in one language. Tables
/// are built when first asked for and never change.
class NxOrderTable {
 public:
  // Marks in bits that no compare key of these characters uses.
  static constexpr unsigned kNotPlain = 0x80;           // not a digit or letter of its own
  static constexpr unsigned kNeedsIterator = 0x800000;  // several characters or order values are involved
  static constexpr unsigned kMarks = kNotPlain | kNeedsIterator;

  struct Entry {
    unsigned key;  // compare key and marks; 0 for the end of a text alone
    unsigned short order;
    unsigned char selector;
    bool equalPass;  // two of these compare equal whatever follows: nothing but that is to be known
  };

  /// The table of a code set and language, or null when none is kept for them.
  static const NxOrderTable* Find(unsigned char codeSet, unsigned char language);
  /// The same of a code set below kCodeSets, if it has been built.
  static const NxOrderTable* FindBuilt(unsigned char codeSet, unsigned char language) {
    return built_[language][codeSet].load(std::memory_order_acquire);
  }
  /// Whether neither wildcard is a digit or letter, so that plain characters are none.
  static bool WildcardsAreSymbols() {
    return NxString::_nAsterisk < kFirstDigitOrder && NxString::_nQuestion < kFirstDigitOrder;
  }

  const Entry& EntryOf(char c) const { return entries[static_cast<unsigned char>(c)]; }

  Entry entries[256];
  /// The records of the characters that the marks say need the iterator and whose key
  /// without marks is that of their first order value; else null.
  const NxCharInfo* records[256];

  static constexpr unsigned kCodeSets = 8;  // 8-bit code sets that tables are kept for, a power of two

 private:
  static constexpr unsigned kRows = kCodeSets + 1;  // the last is Unicode
  static constexpr unsigned kLanguages = 16;        // that tables are kept for

  void Build(unsigned char codeSet, unsigned char language);

  static NxOrderTable tables_[kLanguages][kRows];
  static std::atomic<bool> taken_[kLanguages][kRows];  // being built, or built
  static std::atomic<const NxOrderTable*> built_[256][kCodeSets];
  static std::atomic<const NxOrderTable*> builtUnicode_[kLanguages];
};

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

/// A text to be compared.
struct NxComparedText {
  unsigned char codeSet;
  unsigned char language;
  const char* text;
};

/// The level comparison with wildcards.
///
/// A digit, letter or HAN character is significant, a space or symbol ignorable; pairs
/// of significant characters decide by base letter at once, and by accent, case and
/// ignorable characters when the texts end without such a difference. While a "*" is
/// pending each character of the text stands for itself, and the pattern's part after
/// the star is matched from every place where it can begin: the earliest of them is
/// the match that goes on, the later ones are nodes of a list.
class ProcessCharInfo {
 public:
  static constexpr unsigned short kFirst = 0;   // sides of ProcessChar: the text
  static constexpr unsigned short kSecond = 1;  // the text compared with, or pattern
  static constexpr unsigned short kNode = 2;    // the node that is being advanced
  static constexpr unsigned kNoLimit = std::numeric_limits<unsigned>::max();

  /// A place in one of the texts.
  struct Side {
    NxOrderReader reader;
    unsigned count = 0;            // characters read
    unsigned short ignorable = 0;  // the ignorable character of this advance
  };

  ProcessCharInfo(const NxOrderReader& first, const NxOrderReader& second, unsigned short op, short len,
                  int* outPos);

  int Run() {
    while (!Round()) {
    }
    return Result();
  }
  /// Compares one pair of characters; true at the end of the comparison.
  bool Round();
  /// What the levels say when the rounds have ended.
  int Result() const;

  /// Reads a side up to the next character to be compared or recorded. 1 when that is
  /// an ignorable one that counts, else 0; `stop` is set at a wildcard.
  unsigned short ProcessChar(unsigned short side, unsigned short updateCollation, unsigned short& stop);

  bool IsStarPending() const { return pending_ != 0; }

  Side first;
  Side second;
  int primary = 0;     // the running result
  int accent = 0;      // difference of the last pair that differs in it
  int letterCase = 0;  // difference of the first pair that differs in it
  int ignorable = 0;   // difference of the last step that has one

 private:
  /// A place of the pattern from which the match can go on.
  struct Restart {
    Side side;
    int accent = 0;
    int letterCase = 0;
  };

  void Advance();
  void AddNode();
  bool PassAsterisks();
  void AdvanceNodes();
  void TakeLevels();
  void MoveMatch();
  void Report() const;
  bool IsIgnored(unsigned short bit) const { return (op_ & bit) != 0; }
  unsigned MaskedKey(const Side& side) const { return side.reader.key & mask_; }

  const unsigned short op_;
  const short len_;
  const unsigned limit_;  // characters read per side
  int* const outPos_;
  const bool wildcards_;
  const unsigned short update_;  // collation selectors follow the text
  const unsigned short asterisk_;
  const unsigned short question_;
  const unsigned mask_;  // what counts of a key after a star

  Side* node_ = nullptr;   // side kNode of ProcessChar
  int stepIgnorable_ = 0;  // difference of the ignorable characters of this advance
  unsigned pending_ = 0;   // masked key of the first character after the star
  bool pendingQuestion_ = false;
  Restart afterStar_;

  std::unique_ptr<Restart[]> nodes_;  // in order of their making
  unsigned nodeHead_ = 0;
  unsigned nodeEnd_ = 0;
  unsigned nodeCapacity_ = 0;
};

/// The three differences of a pair of compare keys.
inline int NxPrimaryDifference(unsigned k0, unsigned k1) {
  return static_cast<int>((k0 & ~127u) - (k1 & ~127u));
}
inline int NxAccentDifference(unsigned k0, unsigned k1) {
  return static_cast<int>((k0 & ~96u) - (k1 & ~96u));
}
/// Lower case sorts first, though its key is the greater.
inline int NxCaseDifference(unsigned k0, unsigned k1) { return static_cast<int>((k1 & ~31u) - (k0 & ~31u)); }
/// What counts of a compare key where a pattern is matched after a star.
constexpr unsigned NxWildcardKeyMask(unsigned short op) {
  return ~((op & kIgnoreAccents ? 31u : 0u) | (op & kIgnoreCase ? 96u : 0u));
}

/// The differences of two texts that have none of base letters so far.
struct NxLesserLevels {
  int accent = 0;
  int letterCase = 0;

  void Note(unsigned k0, unsigned k1) {
    if (letterCase == 0) letterCase = NxCaseDifference(k0, k1);
    if (const int difference = NxAccentDifference(k0, k1)) accent = difference;
  }
  int Result(unsigned short op) const {
    if (accent != 0 && !(op & kIgnoreAccents)) return accent;
    return letterCase != 0 && !(op & kIgnoreCase) ? letterCase : 0;
  }
};

/// How far the plain characters of two texts decide.
enum class NxPlain {
  kDecided,  // the result is there
  kLesser,   // they differ in accent or case
  kSpecial   // another character comes
};

/// How many bytes at the start of two texts are equal and pass as equal. The loop is
/// most of a comparison and wants its registers for itself.
[[gnu::regparm(3)]] unsigned NxEqualBytes(const NxOrderTable& table, const char* a, const char* b);

/// Compares two 8-bit texts of one table up to their first difference or special
/// character; `equal` characters stand before it.
inline NxPlain NxCompareBaseLetters(const NxOrderTable& table, const char* a, const char* b, unsigned& equal,
                                    int& result) {
  const unsigned i = a[0] == b[0] ? NxEqualBytes(table, a, b) : 0;
  equal = i;
  const unsigned k0 = table.EntryOf(a[i]).key;
  const unsigned k1 = table.EntryOf(b[i]).key;
  if ((k0 | k1) & NxOrderTable::kNotPlain) return NxPlain::kSpecial;
  result = NxPrimaryDifference(k0, k1);
  if (__builtin_expect(result != 0, 1) || k0 == 0) return NxPlain::kDecided;
  return NxPlain::kLesser;
}

/// Goes on from there over accents and case, as long as the texts consist of plain
/// characters. False where something else comes.
bool NxComparePlainBytes(const NxOrderTable& table, const char* a, const char* b, unsigned equal,
                         unsigned short op, int& result);
/// NxStrCmp of two such texts, of which `equal` characters are known to be.
int NxWalkBytes(const NxOrderTable& table, unsigned char codeSet, unsigned char language, const char* a,
                const char* b, unsigned equal, unsigned short op, unsigned char byteOrder, int* outPos);

/// NxStrCmp of two 8-bit texts of one code set and language, whose table it is.
inline int NxCompareAlike(const NxOrderTable& table, unsigned char codeSet, unsigned char language,
                          const char* a, const char* b, unsigned short op, unsigned char byteOrder,
                          int* outPos) {
  unsigned equal;
  int result;
  const NxPlain plain = NxCompareBaseLetters(table, a, b, equal, result);
  if (plain == NxPlain::kDecided) return result;
  if (plain == NxPlain::kLesser && NxComparePlainBytes(table, a, b, equal, op, result)) return result;
  return NxWalkBytes(table, codeSet, language, a, b, equal, op, byteOrder, outPos);
}

/// The comparison for texts of one width that have tables, which leaves to the level
/// comparison only what needs it. False, with `result` unset, where it cannot serve.
/// The code sets are not 0 and the texts not null.
bool NxComparePlain(const NxComparedText& a, const NxComparedText& b, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos, int& result);

/// NxStrCmp of any texts, and the same by the level comparison alone, without tables.
int NxStrCmpAny(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                unsigned char lang2, const char* s2, unsigned short op, short len, unsigned char byteOrder,
                int* outPos);
int NxStrCmpGeneral(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                    unsigned char lang2, const char* s2, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos);

#endif
