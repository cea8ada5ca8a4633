/// The generated tables, looked up and turned into the flat arrays of the 8-bit
/// code sets at compile time: nothing is built when the library is loaded. For
/// nxcodeset.cpp alone.
#ifndef NXLANGDATA_H
#define NXLANGDATA_H

#include <array>
#include <iterator>

#include "nxlang.h"

namespace nxdata {

inline constexpr unsigned short kNoCharacter = 0x7F;  // what a character without counterpart maps to
inline constexpr unsigned char kNone = NxCharInfo::kNoCollation;

/// A character of an 8-bit code set whose byte is not its number in Unicode.
struct CharPair {
  unsigned short unicode;
  unsigned char byte;
};

#include "nxlangdata.inc"

/// The record of a Unicode character, or null.
constexpr const NxCharInfo* RecordOf(unsigned short value) {
  const unsigned short number = kRecordIndex[kRecordPage[value >> 8]][value & 0xFF];
  return number == 0 ? nullptr : &kRecords[number - 1];
}

/// The case mappings of a Unicode character under no language's rules, or null.
constexpr const NxUnicodeProps* CaseOf(unsigned short value) {
  const unsigned short number = kCaseIndex[kCasePage[value >> 8]][value & 0xFF];
  return number == 0 ? nullptr : &kCases[number];
}

/// Of code set 1, where every byte is its number in Unicode.
inline constexpr std::array<CharPair, 0> kLatin1Apart{};

/// One 8-bit code set: its characters by byte, and those of them that lie apart
/// from their Unicode number.
template <const auto& kToUnicode, const auto& kApart>
struct ByteTables {
  static constexpr unsigned char FromUnicode(unsigned short value) {
    if (value < 256 && kToUnicode[value] == value) return static_cast<unsigned char>(value);
    std::size_t low = 0;
    std::size_t high = std::size(kApart);
    while (low != high) {
      const std::size_t middle = (low + high) / 2;
      if (kApart[middle].unicode == value) return kApart[middle].byte;
      if (kApart[middle].unicode < value)
        low = middle + 1;
      else
        high = middle;
    }
    return kNoCharacter;
  }

  /// Whether a case mapping, 0 for none included, stays in the code set.
  static constexpr bool Has(unsigned short value) {
    return value == kNoCharacter || FromUnicode(value) != kNoCharacter;
  }

  static constexpr const NxCharInfo* RecordAt(unsigned char byte) {
    const unsigned short unicode = kToUnicode[byte];
    if (const NxCharInfo* record = RecordOf(unicode)) return record;
    std::size_t i = 0;
    while (kSymbols[i] != unicode) ++i;
    return &kSymbolRecords[i];
  }

  /// Case mappings without those that lead out of the code set.
  static constexpr NxUnicodeProps PropsAt(unsigned char byte) {
    const NxUnicodeProps* found = CaseOf(kToUnicode[byte]);
    if (found == nullptr) return {0, 0, nullptr};
    bool hasUpper = Has(found->upper);
    for (short i = 0; found->furtherUpper != nullptr && i < found->furtherUpper->Count(); ++i)
      hasUpper = hasUpper && Has(found->furtherUpper->At(i));
    const unsigned short lower = Has(found->lower) ? found->lower : 0;
    return hasUpper ? NxUnicodeProps{found->upper, lower, found->furtherUpper}
                    : NxUnicodeProps{0, lower, nullptr};
  }

  template <typename T, T (*At)(unsigned char)>
  static constexpr std::array<T, 256> Flat() {
    std::array<T, 256> flat{};
    for (unsigned b = 0; b < 256; ++b) flat[b] = At(static_cast<unsigned char>(b));
    return flat;
  }

  static constexpr std::array<const NxCharInfo*, 256> kRecordsByByte = Flat<const NxCharInfo*, RecordAt>();
  static constexpr std::array<NxUnicodeProps, 256> kPropsByByte = Flat<NxUnicodeProps, PropsAt>();
};

/// The records of order values below 512, each its own.
constexpr std::array<NxCharInfo, 512> MakeOrderValueRecords() {
  std::array<NxCharInfo, 512> records{};
  for (unsigned short order = 0; order < 512; ++order)
    records[order] = {order, kNone, nullptr, nullptr, nullptr};
  return records;
}
inline constexpr std::array<NxCharInfo, 512> kOrderValueRecords = MakeOrderValueRecords();

}  // namespace nxdata

#endif
