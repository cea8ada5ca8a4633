/// The constant tables behind the code sets, as nxcodeset.cpp sees them.
#ifndef NXLANGDATA_H
#define NXLANGDATA_H

#include "nxlang.h"

inline constexpr unsigned short kNoCharacter = 0x7F;  // what a character without counterpart maps to

/// The tables of one 8-bit code set: flat arrays of 256.
struct NxByteTables {
  const unsigned short* toUnicode;
  const NxCharInfo* const* records;
  const NxUnicodeProps* props;
  /// The byte of a Unicode character, or kNoCharacter.
  unsigned char (*fromUnicode)(unsigned short value);
};

/// The tables of code sets 1 to 4.
const NxByteTables& NxByteTablesOf(unsigned char codeSet);

/// The records of the Unicode characters 0 to 511, one after another.
const NxCharInfo* NxUnicodeLowRecords();
/// The record of a Unicode character, or null.
const NxCharInfo* NxUnicodeRecord(unsigned short value);
/// The case mappings of a Unicode character by its number alone, or null.
const NxUnicodeProps* NxUnicodeCase(unsigned short value);

#endif
