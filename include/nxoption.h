/// The compare option word, the error words of comparison, and the options word of the
/// library: what every floor shares.
#ifndef NXOPTION_H
#define NXOPTION_H

#include "nxapi.h"

// ---------------------------------------------------------------------------
// Compare option word: the relation of a query term and the options of string
// comparison in one.

inline constexpr unsigned short kRelationEqual = 0x0001;    // the term accepts values equal to the key
inline constexpr unsigned short kRelationLess = 0x0002;     // ... below the key
inline constexpr unsigned short kRelationGreater = 0x0004;  // ... above the key
inline constexpr unsigned short kWildcardFound = 0x0008;    // out: the key holds a wildcard
inline constexpr unsigned short kWildcardsOff = 0x0010;     // wildcards are ordinary characters
inline constexpr unsigned short kIgnoreCase = 0x0020;       // letter case does not count
inline constexpr unsigned short kIgnoreAccents = 0x0040;    // accents do not count
inline constexpr unsigned short kSkipSpaces = 0x0080;       // spaces are skipped
inline constexpr unsigned short kOrderValuesOnly = 0x0100;  // order values alone: no wildcards, no levels
inline constexpr unsigned short kSkipSymbols = 0x0200;      // symbols are skipped
inline constexpr unsigned short kRelationHigh = 0x8000;     // passed through with the relation, not read

inline constexpr unsigned short kRelationMask = 0x800F;
inline constexpr unsigned short kOptionMask = 0x7FF0;
/// Asks for the language context's default options.
inline constexpr unsigned short kDefaultOptions = 0xFFFF;

// ---------------------------------------------------------------------------
// Error words, beside kNotPossible (nxslot.h): a truncated string too long for the work buffer.

/// An operand ran past its buffer or is a cut or key-form text: the result holds
/// only as far as the operands reach.
inline constexpr int kPastBuffer = 2101;
/// Bytes of text that the work buffer of a truncated stored string takes.
inline constexpr unsigned long kTruncatedTextMax = 254;

// ---------------------------------------------------------------------------
// Options word of the library

/// Bit of the options word: strings convert to int, short and long in base 10
/// only; otherwise the C prefixes 0x and 0 count.
inline constexpr unsigned long kOptionDecimalOnly = 1;

/// The options word, initially 0. It is changed before threads start.
NX_API unsigned long* ___NxTypeMgrOptions();

#endif
