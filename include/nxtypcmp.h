/// Value comparison: the compare option word, the error words and the Compare slots.
///
/// A Compare slot walks count elements of two arrays and answers at the first
/// difference: negative when the first operand sorts before the second, 0 when
/// equal (strings: matching the pattern), positive when after. Buffer lengths are in
/// bytes, 0 meaning no limit; an element that its buffer holds only in part is not read
/// (0 with 2101). `error` is 0, 2101 or -2999 on return.
#ifndef NXTYPCMP_H
#define NXTYPCMP_H

#include "nxapi.h"
#include "nxtypes.h"

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
// Error words, beside kNotPossible: a truncated string too long for the work buffer.

/// An operand ran past its buffer or is a cut or key-form text: the result holds
/// only as far as the operands reach.
inline constexpr int kPastBuffer = 2101;
/// Bytes of text that the work buffer of a truncated stored string takes.
inline constexpr unsigned long kTruncatedTextMax = 254;

// ---------------------------------------------------------------------------
// Null states

/// How two values order that may be null; null sorts first.
enum NxNullCompareResult {
  kBothNull = 0,    //
  kFirstNull = 1,   // only the first value is null
  kSecondNull = 2,  // only the second value is null
  kNoneNull = 3     // the values themselves decide
};

/// Orders the null states of two values of a class with `IsNullValue`.
template <class T>
NxNullCompareResult NxNullValueCompare(const T& a, const T& b) {
  if (a.IsNullValue()) return b.IsNullValue() ? kBothNull : kFirstNull;
  return b.IsNullValue() ? kSecondNull : kNoneNull;
}

// ---------------------------------------------------------------------------
// Slots

/// Moves p on by size bytes and answers 0; leaves it and answers 2101 when the new
/// place would not lie before end.
NX_API int IncrementPointer(void*& p, void* end, unsigned long size);

/// Scalars answer -1, 0 or 1 and ignore the options; an unordered pair of floats
/// answers 0. Null booleans sort first. Dates take wildcards (-1) in their fields.
NX_API NxSlot::Compare CharCompare, ByteCompare, ShortCompare, WordCompare, IntCompare, UnsignedCompare,
    LongCompare, DwordCompare, FloatCompare, DoubleCompare, Int64Compare, BooleanCompare, DateCompare,
    TimeCompare, SealCompare, NxIllegalCompare;
/// The second operand is the pattern where wildcards are active.
NX_API NxSlot::Compare StringCompare, StringOldCompare, NxIStringCompare, NxCaseIStringCompare;
/// The body of StringCompare (oldForm 0) and StringOldCompare (oldForm 1).
NX_API long StringCompareCommon(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                                void* value2, unsigned short options, unsigned long count, int& error,
                                unsigned short oldForm);

#endif
