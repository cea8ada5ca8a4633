/// Collation order values taken apart and turned back into text.
///
///   0x0000          end of text
///   0x0001..0x004F  space: blank and controls (13: undefined ordering)
///   0x0050..0x3EFF  symbol 0 to 16047
///   0x3F00..0x3FFF  digit: 0x3F00 + 10 * digit, bit 0: with expansion
///   0x4000..0x7FFF  letter, in fields:
///                     bits 12-13  case: 0 upper, 1 to 3 lower
///                     bits 7-11   accent: 0 none, 1 cedilla, 2 acute ... 14 double acute
///                     bits 2-6    letter: 3 = A ... 28 = Z
///                     bits 0-1    extension: variants of the letter
///   0x8000..0xFFFF  HAN character: the value itself
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef ORD2STR_H
#define ORD2STR_H

#include "nxapi.h"
#include "nxchar.h"
#include "nxlang.h"

class NxString;

// Fields of a letter's order value.
inline constexpr unsigned short kOrderCaseMask = 0x3000;
inline constexpr unsigned short kOrderAccentMask = 0x0F80;
inline constexpr unsigned short kOrderLetterMask = 0x007C;
inline constexpr unsigned short kOrderExtensionMask = 0x0003;

/// The compare key of an order value under a collation selector: 0 at the end of the
/// text, else
///   bits 24-31  selector, so that keys of different selectors never are equal
///   bits 8-23   order value, a letter's without case and accent
///   bits 5-6    case of a letter, except under selector 20 (plain order)
///   bits 0-4    accent of a letter, except under selector 20
NX_API unsigned int GetCompareFromOrder(unsigned short order, unsigned char selector);

/// GetCompareFromOrder in place, for loops over texts.
constexpr unsigned int NxCompareKey(unsigned short order, unsigned char selector) {
  const unsigned int value = order;
  if (value == 0) return 0;
  const unsigned int high = static_cast<unsigned int>(selector) << 24;
  if (selector == kPlainOrderSelector || value < kFirstLetterOrder || value >= kFirstHanOrder)
    return high | value << 8;
  return high | (value & ~(kOrderCaseMask | kOrderAccentMask)) << 8 | (value & kOrderCaseMask) >> 7 |
         (value & kOrderAccentMask) >> 7;
}

// Taking apart. -2002 for an order value of another class, with the results untouched.

/// Fields of an order value up to 0x7FFF; that it is a letter is not checked.
NX_API int NxExtractLetterComponentsFromOrdering(unsigned short order, unsigned short& caseBits,
                                                 unsigned short& accent, unsigned short& letter,
                                                 unsigned short& extension);
/// The symbol's index, 0 to 16047.
NX_API int NxExtractSymbolFromOrder(unsigned short order, unsigned short& symbol);
/// The digit and whether it has an expansion.
NX_API int NxExtractDigitFromOrder(unsigned short order, unsigned short& digit, unsigned short& expand);

// Back to text. language is the language byte of the text that the order value is of;
// from 20 on (low seven bits) it means plain order, where every value is its own name.

/// text becomes the name of an order value, in the default 8-bit code set: "upper letter
/// A with ring above", "digit 7". Returns 0.
NX_API int NxConvertOrderToString(unsigned short order, unsigned char language, NxString& text);

/// A character that stands for an order value: ch becomes the plain letter, digit or
/// symbol, 0x07 for a symbol without one, 0x7F for a HAN character. With withAccent, an
/// accented letter becomes the byte of code set 1 that orders so, when there is one, and
/// *repr (when repr is given) its ASCII spelling, such as \'e; *repr is left as it was
/// in every other case. Returns 0.
NX_API int NxConvertOrderToChar(unsigned short order, unsigned char language, unsigned char& ch,
                                int withAccent, const char** repr);

#endif
