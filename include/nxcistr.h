/// `NxCaseIString`: the alphabetic string (nxistr.h) that ignores case.
///
/// Both cases of a letter have one key; accents are ignored unless a comparison asks
/// for them (`kAlphaAccents`). A key can be turned back into a text of upper-case
/// letters without accents.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXCISTR_H
#define NXCISTR_H

#include "nxapi.h"
#include "nxistr.h"

class NX_API NxCaseIString : public NxAlphaText<NxCaseIString> {
 public:
  using NxAlphaText::NxAlphaText;
  NxCaseIString() = default;
  NxCaseIString(const NxCaseIString&) = default;
  NxCaseIString& operator=(const NxCaseIString&) = default;
  NxCaseIString& operator=(const char* s) {
    Assign(s);
    return *this;
  }
};
static_assert(sizeof(NxCaseIString) == 8 && offsetof(NxCaseIString, _nForm) == 4,
              "values are walked in 8-byte steps");

extern template class NxAlphaText<NxCaseIString>;

/// As _NxIMapByte.
NX_API unsigned char _NxCaseIMapByte(unsigned char c, unsigned char& extra);
/// As _NxIMapString.
NX_API int _NxCaseIMapString(unsigned char* dst, const unsigned char* src, unsigned short limit);
/// The byte of the disk code set for the key k. consumed is 1 when `next`, the key
/// behind k, went into it, else 0.
NX_API unsigned char _NxCaseIDeMapByte(unsigned char k, unsigned char next, int& consumed);
/// Turns up to `limit` bytes of zero-terminated keys back into a text. Returns the
/// bytes of src consumed; the terminator is written and counted where the limit
/// leaves room. A limit of 0 writes nothing and answers 1; a null pointer gives 0.
NX_API int _NxCaseIDeMapString(unsigned char* dst, const unsigned char* src, unsigned short limit);

/// As nxistrcmp. With kAlphaAccents in formA every accent weight counts, in both texts.
NX_API int nxcaseistrcmp(const char* a, const char* b, unsigned short len, unsigned char formA,
                         unsigned char formB);

/// As _NxIMapLength, _NxISizeNoMem and _NxISizeMem.
NX_API int _NxCaseIMapLength(const void* data, unsigned char mode, unsigned long n);
NX_API int _NxCaseISizeNoMem(const void* image, unsigned char mode, unsigned char mapped, unsigned long n);
NX_API int _NxCaseISizeMem(const void* array, unsigned char mode, unsigned char mapped, unsigned long n);

#endif
