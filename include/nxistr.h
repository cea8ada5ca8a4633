/// Alphabetic strings: light 8-bit texts that order by letters, not by byte values.
///
///   NxIString a("a"), upper("A"), b("b");       // a < upper, upper < b
///   NxCaseIString("a") == NxCaseIString("A")    // nxcistr.h
///
/// The order comes from a map that turns every byte of the disk code set
/// (nxcodset.h) into a sort key and some (ligatures, sharp s) into two; comparing
/// the keys of two texts byte by byte gives their order. `NxIString` puts lower case
/// just before upper case and ignores accents.
///
/// Texts are zero-terminated. Lengths, positions and counts are in bytes and
/// 16 bits wide.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXISTR_H
#define NXISTR_H

#include <cstddef>

#include "nxapi.h"

// Form of a text, one bit set for each operand of a comparison. The first two also
// stand in the header byte of stored images; do not change.
inline constexpr unsigned char kAlphaKeys = 0x80;     // sort keys: compared as they stand
inline constexpr unsigned char kAlphaDisk = 0x40;     // in the disk code set already
inline constexpr unsigned char kAlphaAccents = 0x20;  // first operand: accents count (nxcaseistrcmp only)

/// What the two classes share; `Text` is the class itself. Every editing member
/// returns the value itself.
template <class Text>
class NX_API NxAlphaText {
 public:
  NxAlphaText() : _pStr(nullptr), _nForm(0) {}
  /// Copies the text only.
  NxAlphaText(const NxAlphaText& s);
  /// One character, or empty for 0.
  NxAlphaText(char c);
  /// A copy; null is empty.
  NxAlphaText(const char* s);
  /// A buffer of n + 1 bytes with at most n characters of s, zeros behind them;
  /// empty for n 0.
  NxAlphaText(const char* s, unsigned short n);
  /// The number in decimal; a double with six digits behind the point.
  NxAlphaText(int v);
  NxAlphaText(short v);
  NxAlphaText(long v);
  NxAlphaText(unsigned long v);
  NxAlphaText(double v);
  ~NxAlphaText();

  /// Copies text and form.
  NxAlphaText& operator=(const NxAlphaText& s);
  Text& operator+=(const Text& s);
  friend Text operator+(const Text& a, const Text& b) {
    Text sum;
    sum += a;
    sum += b;
    return sum;
  }

  friend int operator==(const Text& a, const Text& b) { return Order(a, b) == 0; }
  friend int operator!=(const Text& a, const Text& b) { return Order(a, b) != 0; }
  friend int operator<(const Text& a, const Text& b) { return Order(a, b) < 0; }
  friend int operator>(const Text& a, const Text& b) { return Order(a, b) > 0; }
  friend int operator<=(const Text& a, const Text& b) { return Order(a, b) <= 0; }
  friend int operator>=(const Text& a, const Text& b) { return Order(a, b) >= 0; }

  /// 1 when there is no text.
  int operator!() const { return !_pStr; }
  /// Byte i of the text, which must have one.
  char& operator[](int i) { return _pStr[i]; }
  const char& operator[](int i) const { return _pStr[i]; }
  /// Bytes of the text, modulo 65536.
  unsigned short Len() const;

  /// Puts s at pos, at the end when pos is beyond it. A value without text becomes
  /// a copy of s.
  Text& Insert(const Text& s, unsigned short pos);
  /// Overwrites from pos on; the length never changes.
  Text& Replace(const Text& s, unsigned short pos);
  /// Sets the first n characters to c; a shorter text is replaced altogether.
  Text& Fill(unsigned short n, char c);
  /// Appends c up to length n.
  Text& Expand(unsigned short n, char c);
  /// Removes count characters from pos on.
  Text& Cut(unsigned short pos, unsigned short count);
  Text Copy(unsigned short pos, unsigned short count) const;
  /// Position of the first place where s stands, byte for byte, or -1.
  int SubStringPos(const Text& s) const;

  // Letters by the disk code set.
  Text& ToUpper();
  Text& ToLower();
  /// Blanks become "0", and the reverse.
  Text& SpaceToZero();
  Text& ZeroToSpace();

  /// The number that the text begins with, in base 10; 0 without one.
  operator int() const;
  operator short() const;
  operator long() const;
  operator double() const;

  char* _pStr;           // zero-terminated, allocated with new[]; null: no text
  unsigned char _nForm;  // form handed to comparisons

 protected:
  /// Becomes a copy of s (null: no text) with form 0. s may be part of the own text.
  void Assign(const char* s);

 private:
  static int Order(const NxAlphaText& a, const NxAlphaText& b);
  /// Releases the text and takes `text`.
  void Adopt(char* text);
  Text& Self() { return static_cast<Text&>(*this); }
};

/// Orders alphabetically, lower case just before upper case, accents ignored.
class NX_API NxIString : public NxAlphaText<NxIString> {
 public:
  using NxAlphaText::NxAlphaText;
  NxIString() = default;
  NxIString(const NxIString&) = default;
  NxIString& operator=(const NxIString&) = default;
  NxIString& operator=(const char* s) {
    Assign(s);
    return *this;
  }
};
static_assert(sizeof(NxIString) == 8 && offsetof(NxIString, _nForm) == 4,
              "values are walked in 8-byte steps");

extern template class NxAlphaText<NxIString>;

// ---------------------------------------------------------------------------
// Byte map
//
// `limit` is in bytes, 0 meaning none.

/// The sort key of a byte of the disk code set. extra: 0, an accent weight (1 to 8)
/// or a second key (9 and above).
NX_API unsigned char _NxIMapByte(unsigned char c, unsigned char& extra);
/// Writes the keys of a zero-terminated text, second keys included, accent weights
/// not. Returns the bytes written with the terminator, or `limit`, where writing
/// stops (without a terminator). 0 when a pointer is null.
NX_API int _NxIMapString(unsigned char* dst, const unsigned char* src, unsigned short limit);

/// Memory to disk code set: with n 0 a zero-terminated text, else n bytes as they
/// come. Returns the bytes written. dst may be src.
NX_API int _NxEncodeString(unsigned char* dst, const unsigned char* src, unsigned short n);
/// Disk code set to memory, a zero-terminated text. Returns the bytes written.
NX_API int _NxDecodeString(unsigned char* dst, const unsigned char* src);

/// Orders two texts by their keys: negative, 0 or positive. len is the number of
/// keys to compare, 0 meaning all. null sorts before every text.
NX_API int nxistrcmp(const char* a, const char* b, unsigned short len, unsigned char formA,
                     unsigned char formB);

// ---------------------------------------------------------------------------
// Lengths of images (layout in nxtypes.h), without their 3-byte head. Bit 3 of
// `mode` says that data are values in memory; a negative `mapped` (as a signed byte)
// asks for the length of the keys.

/// Bytes of the keys of n texts with their terminators.
NX_API int _NxIMapLength(const void* data, unsigned char mode, unsigned long n);
/// Bytes of n texts of an image.
NX_API int _NxISizeNoMem(const void* image, unsigned char mode, unsigned char mapped, unsigned long n);
/// Bytes of n values in memory.
NX_API int _NxISizeMem(const void* array, unsigned char mode, unsigned char mapped, unsigned long n);

#endif
