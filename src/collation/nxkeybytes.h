// The bytes of which the sort key of a text is made; docs/formats.md shows how. Do not change:
// indexes keep them.
#ifndef NXKEYBYTES_H
#define NXKEYBYTES_H

namespace NxKeyBytes {

inline constexpr unsigned kNullKey = 0x00;  // the whole key of a null value

// Behind the base letters, and behind the accents: what comes next.
inline constexpr unsigned kLowCase = 0x01;     // case, first a letter lower than small
inline constexpr unsigned kEnd = 0x02;         // nothing: the end of the key
inline constexpr unsigned kIgnorables = 0x03;  // spaces and symbols
inline constexpr unsigned kHighCase = 0x04;    // case, first a capital
inline constexpr unsigned kAccents = 0x05;     // accents; behind the base letters only

// Base letters. Each is of the selector that was named last, 1 in the beginning.
inline constexpr unsigned kSelectorBelow = 0x06;  // and the selector
inline constexpr unsigned kPlainBytes = 0x07;     // first byte of the key of a text without code set
inline constexpr unsigned kFirstDigit = 0x08;     // two bytes for each value: plain, and with an expansion
inline constexpr unsigned kFirstBase = 0x3C;      // letter and extension
inline constexpr unsigned kOtherBase = 0xBC;      // and 16 bits
inline constexpr unsigned kSelectorAbove = 0xBD;  // and the selector
// In plain order (selectors from 20 on) a base letter is any 16 bits.
inline constexpr unsigned kFirstPlain = 0x08;  // and the high byte; then the low byte
inline constexpr unsigned kPlainInTwo = 0xB000;
inline constexpr unsigned kHighPlain = 0xB8;  // and 16 bits

// Distances between the entries of a level that is read from the right: the farther away the
// next one, the lower the byte.
inline constexpr unsigned kFarther = 0x06;
inline constexpr unsigned long kDistances = 0xFF - kFarther;

// Entries of case: the distance of a low one counts up, that of a high one down; between them
// lies what follows the last entry.
inline constexpr unsigned kFirstLow = 0x02;
inline constexpr unsigned kLowFarther = 0x7F;
inline constexpr unsigned kCaseEnd = 0x80;
inline constexpr unsigned kCaseIgnorables = 0x81;
inline constexpr unsigned kHighFarther = 0x82;
inline constexpr unsigned long kCaseDistances = kLowFarther - kFirstLow;

// Where spaces and symbols stand in a row: how often they end in the same one, and to which
// side the one before those differs.
inline constexpr unsigned kNoneBefore = 0x80;
inline constexpr unsigned long kShortRow = 0x7D;

inline constexpr unsigned char kHomeSelector = 1;
inline constexpr unsigned kSmallCase = 1;  // of an order value; 0 is a capital, 2 and 3 are lower still

}  // namespace NxKeyBytes

#endif
