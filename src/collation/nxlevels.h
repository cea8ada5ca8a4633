// The level rule: how two texts order.
//
// Texts are compared by the collation order values of their characters (ord2str.h). A
// digit, letter or HAN character is significant; a space or symbol is ignorable, unless
// the text is in plain order, where every character is significant. Both texts are read
// up to their next significant characters, and these two are a pair. A pair can differ
// at three levels: in the base letter (a and b), in the accent (a and á), in the case (a
// and A). The first pair that differs in the base letter decides the comparison. When
// both texts end without such a pair, accents decide, by the last pair that differs in
// them; then the case, by the first pair that differs in it; then the ignorable
// characters read on the way, by the last place where they differ. Options leave out
// accents or case, and skip spaces or symbols as if they did not stand there.
//
// All of this is said by NxLevels, for the general comparison (nxlevelcmp.h) and for the
// roads that take less time (nxstrcmp.h lists them).
#ifndef NXLEVELS_H
#define NXLEVELS_H

#include "nxchar.h"
#include "nxlang.h"
#include "nxoption.h"

/// What is known of two texts whose pairs so far have the same base letters: the
/// differences at the lesser levels, each negative when the first text sorts first.
///
/// Pairs come as compare keys (NxCompareKey in ord2str.h), 0 for the end of a text. A key
/// holds the base letter above the case in bits 5 and 6 and the accent in bits 0 to 4.
struct NxLevels {
  static constexpr unsigned kAccentBits = 0x1F;
  static constexpr unsigned kCaseBits = 0x60;

  int accent = 0;      // of the last pair that differs in it
  int letterCase = 0;  // of the first pair that differs in it
  int ignorable = 0;   // of the last ignorable characters that differ

  /// The difference of a pair's base letters; other than 0 it decides.
  static int OfBaseLetters(unsigned key0, unsigned key1) {
    return static_cast<int>((key0 & ~(kAccentBits | kCaseBits)) - (key1 & ~(kAccentBits | kCaseBits)));
  }
  /// Takes in the accents and the case of a pair. Lower case sorts first, though its key
  /// is the greater.
  void TakePair(unsigned key0, unsigned key1) {
    if (letterCase == 0) letterCase = static_cast<int>((key1 & ~kAccentBits) - (key0 & ~kAccentBits));
    const int difference = static_cast<int>((key0 & ~kCaseBits) - (key1 & ~kCaseBits));
    if (difference != 0) accent = difference;
  }
  void TakeIgnorables(int difference) {
    if (difference != 0) ignorable = difference;
  }
  /// Forgets the pairs taken in since `earlier` was a copy of this. What ignorable
  /// characters differ in stays.
  void ReturnTo(const NxLevels& earlier) {
    accent = earlier.accent;
    letterCase = earlier.letterCase;
  }

  /// The result when both texts have ended.
  int Result(unsigned short op) const {
    const int letters = OfLetters(op);
    return letters != 0 ? letters : ignorable;
  }
  /// The same without the ignorable characters.
  int OfLetters(unsigned short op) const {
    if (accent != 0 && !(op & kIgnoreAccents)) return accent;
    return op & kIgnoreCase ? 0 : letterCase;
  }

  /// The bits of a compare key that count under the options, where characters only can
  /// match or not.
  static constexpr unsigned CountingBits(unsigned short op) {
    return ~((op & kIgnoreAccents ? kAccentBits : 0) | (op & kIgnoreCase ? kCaseBits : 0));
  }

  static constexpr bool IsIgnorable(unsigned order, unsigned char selector) {
    return order != 0 && order < kFirstDigitOrder && selector < kPlainOrderSelector;
  }
  /// Whether the options skip an ignorable character.
  static constexpr bool IsSkipped(unsigned order, unsigned short op) {
    return (op & (order < kFirstSymbolOrder ? kSkipSpaces : kSkipSymbols)) != 0;
  }
};

/// What a road tells of two texts, or of a part of them.
enum class NxVerdict {
  kDecided,  // the result is there
  kOpen,     // no difference decides yet: to be gone on with
  kUnsuited  // something comes that this road cannot compare: another one must
};

#endif
