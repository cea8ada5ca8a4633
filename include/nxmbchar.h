/// Multibyte texts. No code set of this library has characters of more than one byte
/// in 8-bit texts, so each of these does nothing and returns 0, 0.0 or null. They
/// keep the interface whole: the code set, then what the C string function of the same
/// stem takes.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXMBCHAR_H
#define NXMBCHAR_H

#include "nxapi.h"

NX_API char* NxMBStrCpy(unsigned char cs, char* dst, const char* src);
NX_API unsigned int NxMBStrLen(unsigned char cs, const char* s);
NX_API int NxMBStrCmp(unsigned char cs, const char* a, const char* b);
NX_API char* NxMBStrNCpy(unsigned char cs, char* dst, const char* src, unsigned int n);
NX_API int NxMBStrNCmp(unsigned char cs, const char* a, const char* b, unsigned int n);

NX_API int NxMBStrToI(unsigned char cs, const char* s);
NX_API long NxMBStrToL(unsigned char cs, const char* s, char** end = nullptr, int base = 10);
NX_API double NxMBStrToD(unsigned char cs, const char* s, char** end = nullptr);

/// The character after or before the one at p.
NX_API char* NxMBStrInc(unsigned char cs, const char* p);
NX_API char* NxMBStrDec(unsigned char cs, const char* start, const char* p = nullptr);
/// Character `index` of s.
NX_API unsigned short NxMBStrIdx(unsigned char cs, const char* s, int index);
/// The character at *s, and *s moved past it or to the one before.
NX_API unsigned short NxMBStrNext(unsigned char cs, const char** s);
NX_API unsigned short NxMBStrPrev(unsigned char cs, const char** s);

#endif
