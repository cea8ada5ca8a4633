/// `NxInt64`: a signed 64-bit integer of two 32-bit halves.
///
///   NxInt64 a(0xFFFFFFFFUL);
///   a += 1;                     // high 1, low 0
///   NxInt64 q = a / NxInt64(-7);
///
/// Arithmetic wraps modulo 2^64; division truncates towards zero. Nothing is reported
/// but a division by zero.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXINT64_H
#define NXINT64_H

#include <cstddef>

#include "nxapi.h"

class NxString;

class NX_API NxInt64 {
 public:
  /// 0.
  NxInt64() : low(0), high(0) {}
  NxInt64(const NxInt64& v) = default;
  NxInt64(long v) : low(static_cast<unsigned long>(v)), high(v < 0 ? -1 : 0) {}
  NxInt64(int v) : NxInt64(static_cast<long>(v)) {}
  NxInt64(unsigned long v) : low(v), high(0) {}
  NxInt64(unsigned long lowHalf, long highHalf) : low(lowHalf), high(highHalf) {}
  /// d rounded to seven significant digits, then without its fraction; beyond the
  /// range plus or minus 2^63 - 1; 0 for what is not a number.
  NxInt64(double d);

  NxInt64& operator=(const NxInt64& v) = default;
  NxInt64& operator=(long v) { return *this = NxInt64(v); }
  NxInt64& operator=(int v) { return *this = NxInt64(v); }
  NxInt64& operator=(unsigned long v) { return *this = NxInt64(v); }

  /// The same number as one integer, and back.
  long long Wide() const { return static_cast<long long>(Bits()); }
  static NxInt64 FromWide(long long v) { return FromBits(static_cast<unsigned long long>(v)); }

  // Comparison: 1 or 0.

  int operator==(const NxInt64& v) const { return Bits() == v.Bits(); }
  int operator!=(const NxInt64& v) const { return Bits() != v.Bits(); }
  int operator<(const NxInt64& v) const { return Wide() < v.Wide(); }
  int operator<=(const NxInt64& v) const { return Wide() <= v.Wide(); }
  int operator>(const NxInt64& v) const { return Wide() > v.Wide(); }
  int operator>=(const NxInt64& v) const { return Wide() >= v.Wide(); }

  // Arithmetic and bits.

  NxInt64 operator+(const NxInt64& v) const { return FromBits(Bits() + v.Bits()); }
  NxInt64 operator-(const NxInt64& v) const { return FromBits(Bits() - v.Bits()); }
  NxInt64 operator*(const NxInt64& v) const { return FromBits(Bits() * v.Bits()); }
  /// Division by zero is reported and gives 0.
  NxInt64 operator/(const NxInt64& v) const {
    return v.IsPlainDivisor() ? FromWide(Wide() / v.Wide()) : Division(v, 0);
  }
  /// The remainder has the sign of this value. By zero: reported, 0 (the lowest
  /// value gives -1).
  NxInt64 operator%(const NxInt64& v) const {
    return v.IsPlainDivisor() ? FromWide(Wide() % v.Wide()) : Division(v, 1);
  }
  NxInt64 operator|(const NxInt64& v) const { return FromBits(Bits() | v.Bits()); }
  NxInt64 operator&(const NxInt64& v) const { return FromBits(Bits() & v.Bits()); }
  NxInt64 operator-() const { return FromBits(0 - Bits()); }
  NxInt64 operator~() const { return FromBits(~Bits()); }
  /// Any count is good: from 64 on all bits have left.
  NxInt64 operator<<(unsigned int count) const { return FromBits(count < 64 ? Bits() << count : 0); }
  /// Arithmetic: the sign fills up.
  NxInt64 operator>>(unsigned int count) const { return FromWide(Wide() >> (count < 64 ? count : 63)); }
  /// The lowest value is its own magnitude.
  NxInt64 Abs() const { return Wide() > 0 ? *this : -*this; }

  // In place. Each returns the new value as a copy.

  NxInt64 operator+=(const NxInt64& v) { return *this = *this + v; }
  NxInt64 operator-=(const NxInt64& v) { return *this = *this - v; }
  NxInt64 operator*=(const NxInt64& v) { return *this = *this * v; }
  NxInt64 operator/=(const NxInt64& v) { return *this = *this / v; }
  NxInt64 operator%=(const NxInt64& v) { return *this = *this % v; }
  NxInt64 operator<<=(unsigned int count) { return *this = *this << count; }
  NxInt64 operator>>=(unsigned int count) { return *this = *this >> count; }
  NxInt64 operator++() { return *this = *this + NxInt64(1); }
  NxInt64 operator--() { return *this = *this - NxInt64(1); }

  /// The quotient, or the remainder when wantRemainder is not 0.
  NxInt64 Division(const NxInt64& b, int wantRemainder) const;

  // Text. A null format means "%S", the decimal number.

  /// Appends the text to out (see Int64PrintToNxString). Returns out.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  /// Reads the value from text (see Int64ScanFromNxString): -1 when it does not fit
  /// the format.
  void ScanFromNxString(const NxString& text, const char* format);

  unsigned long low;
  long high;

 private:
  unsigned long long Bits() const {
    return static_cast<unsigned long long>(static_cast<unsigned long>(high)) << 32 | low;
  }
  /// True for all but 0 and -1, by which the lowest value cannot be divided as it is.
  bool IsPlainDivisor() const { return Bits() + 1 > 1; }
  static NxInt64 FromBits(unsigned long long bits) {
    return NxInt64(static_cast<unsigned long>(bits), static_cast<long>(bits >> 32));
  }
};
static_assert(sizeof(NxInt64) == 8 && offsetof(NxInt64, high) == 4);

#endif
