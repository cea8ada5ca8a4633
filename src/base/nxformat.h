// Checks formats that callers hand in before they reach the C library's formatted
// print and scan: a format whose conversions do not fit the values it would be given
// could read or write any memory.
#ifndef NXFORMAT_H
#define NXFORMAT_H

#include <initializer_list>

#include "base/nxdigits.h"

/// A value that a conversion prints, or scans into.
enum class NxFormatArg : unsigned char {
  kByte,    // integers of 1, 2 and 4 bytes; printed as the last
  kShort,   //
  kWord,    //
  kFloat,   // scanned only; printed as kDouble
  kDouble,  //
  kText,    // a text; scanned into an area for the whole input and the largest width
};

/// Largest width and precision of a conversion that fits: as many bytes as an NxString
/// holds.
inline constexpr unsigned long kMaxFormatWidth = 65533;

/// True when the conversions of a print format fit args in their order; there may be
/// fewer of them. Widths and precisions stand in the format. False for null.
bool NxPrintFormatFits(const char* format, std::initializer_list<NxFormatArg> args);

/// The same of a scan format. An integer conversion fits that is no wider than its
/// value, a suppressed one ("%*d") takes none.
bool NxScanFormatFits(const char* format, std::initializer_list<NxFormatArg> args);

/// A format of one integer without flags, width and precision: "%ld", "#%lu", "%hd;".
struct NxPlainInteger {
  const char* before;          // the text before the conversion
  unsigned long beforeLength;  //
  bool isShort;                // "%hd" and "%hu"
  bool isSigned;               //
  const char* after;           // the text behind it
  unsigned long afterLength;   //
  bool IsAlone() const { return beforeLength == 0 && afterLength == 0; }
};

/// False for null and for all other formats.
bool NxReadPlainInteger(const char* format, NxPlainInteger& plain);

/// The digits and the sign that printf makes of a value under such a format.
NxIntegerText NxTextOfPlainInteger(const NxPlainInteger& plain, int value);

/// Writes what printf makes of such a format, without a terminator. Returns its length, 0
/// when `size` bytes might not do.
unsigned long NxPrintPlainInteger(const NxPlainInteger& plain, int value, char* area, unsigned long size);

/// What scanf reads under such a format. `found` tells whether there is a number; false
/// for a text that is better left to scanf.
bool NxScanPlainInteger(const NxPlainInteger& plain, const char* text, bool& found, int& value);

#endif
