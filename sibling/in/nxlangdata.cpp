/// The generated tables and what is derived from them at compile time: the flat
/// arrays of the 8-bit code sets. Nothing is built when the library is loaded.
#include "nxlangdata.h"

#include <array>

namespace {

constexpr unsigned char kNone = NxCharInfo::kNoCollation;

/// A character of an 8-bit code set whose byte is not its number in Unicode.
struct CharPair {
  unsigned short unicode;
  unsigned char byte;
};

#include "nxlangdata.inc"

constexpr const NxCharInfo* RecordOf(unsigned short value) {
  const unsigned short number = kRecordIndex[kRecordPage[value >> 8]][value & 0xFF];
  return number == 0 ? nullptr : &kRecords[number - 1];
}

constexpr const NxUnicodeProps* CaseOf(unsigned short value) {
  const unsigned short number = kCaseIndex[kCasePage[value >> 8]][value & 0xFF];
  return number == 0 ? nullptr : &kCases[number];
}

/// The record of a character of an 8-bit code set.
constexpr const NxCharInfo* ByteRecordOf(unsigned short unicode) {
  if (const NxCharInfo* record = RecordOf(unicode)) return record;
  unsigned short i = 0;
  while (kSymbols[i] != unicode) ++i;
  return &kSymbolRecords[i];
}

struct NoPairs {
  constexpr const CharPair* begin() const { return nullptr; }
  constexpr const CharPair* end() const { return nullptr; }
};

/// One 8-bit code set: its characters, and those of them that lie apart from
/// their Unicode number.
template <const auto& kToUnicode, const auto& kApart>
struct ByteCodeSet {
  static constexpr unsigned char FromUnicode(unsigned short value) {
    if (value < 256 && kToUnicode[value] == value) return static_cast<unsigned char>(value);
    const CharPair* low = std::begin(kApart);
    const CharPair* high = std::end(kApart);
    while (low != high) {
      const CharPair* middle = low + (high - low) / 2;
      if (middle->unicode == value) return middle->byte;
      if (middle->unicode < value)
        low = middle + 1;
      else
        high = middle;
    }
    return kNoCharacter;
  }

  static constexpr bool Has(unsigned short value) {
    return value == kNoCharacter || FromUnicode(value) != kNoCharacter;
  }

  static constexpr std::array<const NxCharInfo*, 256> MakeRecords() {
    std::array<const NxCharInfo*, 256> records{};
    for (unsigned short b = 0; b < 256; ++b) records[b] = ByteRecordOf(kToUnicode[b]);
    return records;
  }

  /// Case mappings, without those that lead out of the code set.
  static constexpr std::array<NxUnicodeProps, 256> MakeProps() {
    std::array<NxUnicodeProps, 256> all{};
    for (unsigned short b = 0; b < 256; ++b) {
      const NxUnicodeProps* found = CaseOf(kToUnicode[b]);
      if (found == nullptr) continue;
      NxUnicodeProps props = *found;
      bool hasUpper = Has(props.upper);
      for (short i = 0; props.furtherUpper != nullptr && i < props.furtherUpper->Count(); ++i)
        hasUpper = hasUpper && Has(props.furtherUpper->At(i));
      if (!hasUpper) props.upper = 0, props.furtherUpper = nullptr;
      if (!Has(props.lower)) props.lower = 0;
      all[b] = props;
    }
    return all;
  }

  static constexpr std::array<const NxCharInfo*, 256> kRecordsByByte = MakeRecords();
  static constexpr std::array<NxUnicodeProps, 256> kProps = MakeProps();
  static constexpr NxByteTables kTables = {kToUnicode, kRecordsByByte.data(), kProps.data(), FromUnicode};
};

constexpr NoPairs kLatin1Apart;
constexpr NxByteTables kByteTables[] = {
    ByteCodeSet<kLatin1ToUnicode, kLatin1Apart>::kTables,
    ByteCodeSet<kWindows1252ToUnicode, kWindows1252Apart>::kTables,
    ByteCodeSet<kLatin9ToUnicode, kLatin9Apart>::kTables,
    ByteCodeSet<kLatin2ToUnicode, kLatin2Apart>::kTables,
};

}  // namespace

const NxByteTables& NxByteTablesOf(unsigned char codeSet) { return kByteTables[codeSet - kCodeSetLatin1]; }

const NxCharInfo* NxUnicodeLowRecords() { return kRecords; }

const NxCharInfo* NxUnicodeRecord(unsigned short value) { return RecordOf(value); }

const NxUnicodeProps* NxUnicodeCase(unsigned short value) { return CaseOf(value); }
