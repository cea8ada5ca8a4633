/// UTF-8 texts to and from 16-bit characters and strings.
///
/// A wide character is one 16-bit unit, of itself: surrogates are ordinary values.
/// Characters up to 0xFFFF are read and written; longer sequences (up to six bytes) are
/// read, and their value cut to its low 16 bits. Overlong sequences are errors.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NX_UTF_8_H
#define NX_UTF_8_H

#include "nxapi.h"

class NxString;

/// Result: the bytes are not UTF-8.
inline constexpr int kUtf8Error = -1;
/// Result of NxMBS2NxString: more bytes than it takes.
inline constexpr int kUtf8TooLong = -2;
/// Bytes that NxMBS2NxString takes.
inline constexpr long kMaxUtf8Input = 32767;

// Single characters.

/// Decodes the character at s, of which n bytes may be read. Returns the bytes consumed,
/// or -1; 0 for a null s.
NX_API int nx_mbtowc(unsigned short* wc, const char* s, unsigned int n);
/// Encodes wc at s, which has room for three bytes. Returns the bytes written, or 0 for
/// a null s.
NX_API int nx_wctomb(char* s, unsigned short wc);
/// Bytes that wc takes: 1 to 3.
NX_API int nx_len4wc(unsigned short wc);
/// The same as nx_mbtowc.
NX_API int NxMultiByte2WChar(unsigned short* wc, const char* s, unsigned int n);
/// The same as nx_wctomb, of the low 16 bits of wc.
NX_API int NxWChar2MultiByte(char* s, wchar_t wc);

// Texts to units and strings.

/// Decodes srcLen bytes, zeros among them. The first dstLen characters go to dst, the
/// others are dropped. Returns the number of all characters, or -1.
NX_API int NxMultiByteStr2WCharStr(unsigned short* dst, int dstLen, const char* src, int srcLen);

/// Decodes len bytes (negative: up to the zero byte) into out, in code set 253; out
/// keeps its language, and s may be its own text. Returns
///   len  when all of it was decoded,
///   the bytes before the first character 0, where decoding ends,
///   -1   at a sequence that is not UTF-8,
///   -2   when more than 32767 bytes were consumed,
///   0    with out as it was, for want of memory.
/// What was decoded before stays in out. It is appended in pieces of 256 characters,
/// so that a text of more than 32765 ends, with the overflow report, at 32512.
NX_API long NxMBS2NxString(const char* s, NxString& out, long len);
/// The same of the text of s.
NX_API long NxMultiByteString2NxString(const NxString& s, NxString& out);
NX_API long NxMultiByteString2NxString(const char* s, NxString& out, long len);

// Strings to texts.

/// Encodes s into out, which has size bytes, with a zero byte when there is room.
/// Returns the bytes written, zero not counted; or minus the bytes written so far
/// when the next character does not fit. An ASCII text in code sets 0 to 5 returns size
/// when it fills out or is longer, and leaves the rest of out zero when it is shorter.
NX_API long NxString2NxMBS(const NxString& s, char* out, long size);

/// The whole of s with a zero byte. With size > 0 and out not null, into the caller's
/// out; a text that fills it to the last byte has no zero. Otherwise into a new
/// array, released by the caller with delete[], and size becomes its size. Returns
/// the bytes, zero not counted; -1 when the caller's out is too small, size then being
/// the bytes of the text and out holding what fits.
NX_API long NxString2MultiByteString(const NxString& s, char*& out, long& size);

/// UTF-8 bytes of the first n characters of s.
NX_API long NxMBSLength(const NxString& s, unsigned short n);

#endif
