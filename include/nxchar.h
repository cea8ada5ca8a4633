/// `NxChar`: one character with its code set and language, on its own or bound to
/// its place in a text.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXCHAR_H
#define NXCHAR_H

#include "nxapi.h"

class NxString;
class NxStringIterator;

/// Lower ends of the classes of collation order values.
inline constexpr unsigned short kFirstSymbolOrder = 80;  // below: space, and 0 the end
inline constexpr unsigned short kFirstDigitOrder = 0x3F00;
inline constexpr unsigned short kFirstLetterOrder = 0x4000;
inline constexpr unsigned short kFirstHanOrder = 0x8000;

class NX_API NxChar {
 public:
  // A code set or language of 255 means the default one; byte order 255 means 1.

  /// A detached copy of the bytes, from now on in byte order 1.
  NxChar(const NxChar& c);
  NxChar(unsigned short v, unsigned char cs = 255, unsigned char lang = 255);
  NxChar(char v, unsigned char cs = 255, unsigned char lang = 255);
  /// Bound to p, which must outlive it.
  NxChar(const char* p, unsigned char cs, unsigned char lang, unsigned char byteOrder);
  /// Bound to the text of s, byteOffset bytes in.
  NxChar(NxString& s, int byteOffset);
  /// The iterator's current character, detached; takes a pending overflow entry.
  NxChar(NxStringIterator* it);
  ~NxChar();

  /// A bound character writes c, mapped to its own code set, into its text; a
  /// detached one becomes c.
  NxChar& operator=(const NxChar& c);
  /// Store the value without mapping, in the own byte order; into an 8-bit text one byte.
  NxChar& operator=(char c);
  NxChar& operator=(unsigned short c);

  /// The value: the byte, or the unit read in the own byte order.
  operator unsigned short() const;
  /// Detached, mapped to cs; a copy for code set 0 and the own one.
  NxChar MapTo(unsigned char cs) const;

  /// Collation order value, and the classes by its ranges.
  unsigned short GetOrder() const;
  int IsSpace() const;
  int IsSymbol() const;
  int IsDigit() const;
  int IsAlpha() const;
  int IsHan() const;

  /// Case mapping, detached. Further upper-case characters become pending on it
  /// when it is not null.
  NxChar ToUpper(NxStringIterator* it) const;
  NxChar ToLower(NxStringIterator* it) const;

  /// Negative, 0 or positive by collation, `c` being the pattern when wildcards are on.
  /// op kDefaultOptions means the default options, which the operators use.
  int Compare(const NxChar& c, unsigned short op) const;
  int operator==(const NxChar& c) const;
  int operator!=(const NxChar& c) const;
  int operator<(const NxChar& c) const;
  int operator>(const NxChar& c) const;
  int operator<=(const NxChar& c) const;
  int operator>=(const NxChar& c) const;
  int operator==(char c) const;
  int operator!=(char c) const;
  int operator<(char c) const;
  int operator>(char c) const;
  int operator<=(char c) const;
  int operator>=(char c) const;
  int operator==(unsigned short c) const;
  int operator!=(unsigned short c) const;
  int operator<(unsigned short c) const;
  int operator>(unsigned short c) const;
  int operator<=(unsigned short c) const;
  int operator>=(unsigned short c) const;

  /// Where the character's bytes are: in its text, or in the object.
  char* Address() const;

  char* _pChar;               // place in a text, or null when detached
  unsigned short _nChar;      // the detached character; one byte in its first byte for 8 bits
  unsigned char _nCodeSet;    //
  unsigned char _nLanguage;   //
  unsigned char _nByteOrder;  // format code of the character's bytes
};

#endif
