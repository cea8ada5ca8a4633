/// Comparison of texts by collation, wildcard matching, and the hashes of texts.
///
///   NxStrCmp(1, 2, "Mueller", 1, 2, "M*er", 0, -1, 1, nullptr)        // 0: matches
///   NxStrCmp(1, 2, "ab", 1, 2, "aB", 0x0020, -1, 1, nullptr)          // 0: ignoring case
///   strwild("a\\*b", "a*b")                                           // 1: matches
///
/// Texts end with a zero character. Every `byteOrder` is a format code (nxbase.h),
/// in which the units of 16-bit texts are read. The option word and its bits are
/// those of nxtypcmp.h.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef STRWILD_H
#define STRWILD_H

#include "nxapi.h"

class NxString;
class NxStringIterator;

// ---------------------------------------------------------------------------
// By collation

/// Compares at most `len` (-1: all) characters of two texts of any code sets and
/// languages by base letters, then accents, then case, then the characters that
/// count least (spaces and symbols). Answers negative when s1 sorts first, 0 when the
/// texts are equal, positive when s2 sorts first. Unless `op` turns wildcards off, s2
/// is a pattern ("*" any run, "?" one character) and 0 means that s1 matches it.
///
/// Null texts read as empty; a null value (language 254, or code set 254 with language
/// 0) sorts before every other. With code set 0 on both sides the bytes decide.
/// `outPos` (may be null) receives the running result of the base letters when the
/// skip-spaces bit is set and `len` is not negative.
NX_API int NxStrCmp(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                    unsigned char lang2, const char* s2, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos);

/// Position in characters of the first wildcard among the first `len` (-1: all)
/// characters, or -1. `asteriskOnly` not 0 leaves "?" out. `bytePos` (may be null)
/// receives the position in bytes, or -1.
NX_API int NxStrWild(unsigned char cs, unsigned char lang, const char* text, unsigned short asteriskOnly,
                     short len, short* bytePos, unsigned char byteOrder);

/// Hash of the compare keys of a text's first `len` characters; -1 hashes the whole
/// text. Texts that are equal as order values alone hash alike.
NX_API unsigned long HashString(unsigned char cs, unsigned char lang, const char* text, short len,
                                unsigned char byteOrder);

/// Place of a text's start (at most n characters) on a numeric scale: the first three
/// digits or letters, or for code set 0 the first four bytes. Advances the iterator.
NX_API double EvalString(NxStringIterator& it, unsigned short n);

// ---------------------------------------------------------------------------
// By bytes

/// Difference of the first differing bytes among the first n (0: all), as unsigned
/// values; 0 when there is none. A null text sorts before every text but an empty one.
NX_API int nxstrcmp(const char* a, const char* b, int n);

/// Matches a text against a pattern of "*" and "?": 0 on a match, else the difference
/// at the mismatch. n above 0 ends with a match after so many matched bytes.
NX_API int nxstrwild(const char* pattern, const char* text, int n);

/// Matches a text against a pattern of "*", "?" and "\", which makes the next byte
/// literal ("\n", "\r", "\t" are the control characters): 1 or 0. A pattern that ends
/// with a single "\" matches nothing that gets that far.
NX_API int strwild(const char* pattern, const char* text);
/// Position of the first "?", "*" or "\", or -1.
NX_API int strwc(const char* pattern);

// The same for the alphabetic strings (nxistr.h, nxcistr.h). A form flag without 0x40
// is a text as in memory; it is taken in the disk code set.

NX_API int istrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT);
NX_API int istrwc(const char* pattern, unsigned char form);
/// Ignoring case and accents as NxCaseIString does. A form flag with 0x80 is a text of
/// sort keys already; whatever such a text leaves open counts as a match.
NX_API int caseistrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT);
NX_API int caseistrwc(const char* pattern, unsigned char form);
/// caseistrwild over texts that are in the disk code set already.
NX_API int mappedwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT);

/// Hash of a text's units as they are: 16-bit units for code set 253, else bytes, as
/// signed values, up to the first zero.
NX_API unsigned long HashNxString(const NxString& s);
/// The same over the low seven bits of each.
NX_API unsigned long HashNxString7(const NxString& s);

#endif
