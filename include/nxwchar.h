/// 16-bit texts: units are `unsigned short`, a text ends with a zero unit. No
/// argument may be null unless said otherwise.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXWCHAR_H
#define NXWCHAR_H

#include "nxapi.h"

/// Copies src with its zero. Returns the address just past the copied zero.
NX_API unsigned short* NxWStrCpy(unsigned short* dst, const unsigned short* src);

/// Units before the zero.
NX_API unsigned int NxWStrLen(const unsigned short* s);

/// The difference of the first pair of units that differ, 0 when both texts end
/// together. Null sorts before every text and equals null.
NX_API int NxWStrCmp(const unsigned short* a, const unsigned short* b);

/// Copies until a zero or n + 1 units have been copied, without padding. Returns the
/// address just past the last unit written.
NX_API unsigned short* NxWStrNCpy(unsigned short* dst, const unsigned short* src, unsigned int n);

/// As NxWStrCmp over the first n units; n 0 compares to the end.
NX_API int NxWStrNCmp(const unsigned short* a, const unsigned short* b, unsigned int n);

// Numbers: every unit counts as a digit, its value less that of "0", whatever it is;
// there is no sign. An empty text gives 0.

/// In 32 bits, wrapping around.
NX_API int NxWStrToI(const unsigned short* s);
NX_API long NxWStrToL(const unsigned short* s);
/// With a fraction after the first ".".
NX_API double NxWStrToD(const unsigned short* s);

/// The next unit.
NX_API unsigned short* NxWStrInc(const unsigned short* p);

/// Fills n units with c and returns dst.
NX_API unsigned short* NxWMemSet(unsigned short* dst, unsigned short c, unsigned int n);

#endif
