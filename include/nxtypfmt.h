/// Printing and scanning of values under format strings.
///
/// A print slot writes the text of one value and returns its output string; a scan
/// slot reads one value and returns the value's address. Only char reads n: its
/// values are printed and scanned as one text. 64-bit, seal and blob prints append to
/// the output, the others replace it. Null values print as
/// `NxTypeMgr::GetNullPrintString`, and input that begins with that text scans as null.
///
/// Formats are those of the C library for the scalars and strings ("%s"). They are
/// checked first: at most one conversion, of the value's kind, no wider than the value
/// when scanning, without "*", "%n" and positions. A format that is none of these, or
/// null, leaves the output or the value as it is. Printed numbers are cut at 511
/// characters. A string of order values (code set 254) also takes "%1M" (without
/// accents), "%2M" (as "%s"), "%3M" (descriptions) and "%4M" (ASCII pairs). For
/// NxInt64: %S %d %i decimal, %o octal (prefix 0), %x %X hexadecimal (prefix 0x), null
/// counting as "%S"; for NxBlob: %L the length, any other character behind "%" that
/// character; for NxBoolean and NxSeal: not read.
#ifndef NXTYPFMT_H
#define NXTYPFMT_H

#include "nxapi.h"
#include "nxtypes.h"

class NxString;

/// A double format that begins like this one prints mantissa and exponent, which
/// keeps the value exact: "ldexp(%.17g, %d)".
extern NX_API const char* pSpecialDoubleFmt;

NX_API NxSlot::Print CharPrintToNxString, ShortPrintToNxString, IntPrintToNxString, LongPrintToNxString,
    FloatPrintToNxString, DoublePrintToNxString, NxStringPrintToNxString, NxIStringPrintToNxString,
    NxCaseIStringPrintToNxString, Int64PrintToNxString, BooleanPrintToNxString, SealPrintToNxString,
    DatePrintToNxString, TimePrintToNxString, DaTimePrintToNxString, BlobPrintToNxString,
    NxIllegalPrintToNxString;
/// What the text does not supply stays as it was; Int64ScanFromNxString gives -1 for
/// a text that does not fit the format. Of a blob the text says only that it is null.
NX_API NxSlot::Scan CharScanFromNxString, ShortScanFromNxString, IntScanFromNxString, LongScanFromNxString,
    FloatScanFromNxString, DoubleScanFromNxString, NxStringScanFromNxString, NxIStringScanFromNxString,
    NxCaseIStringScanFromNxString, Int64ScanFromNxString, BooleanScanFromNxString, SealScanFromNxString,
    DateScanFromNxString, TimeScanFromNxString, DaTimeScanFromNxString, BlobScanFromNxString,
    NxIllegalScanFromNxString;

/// Each reads one value from text under the C scan format fmt and returns 0; len is
/// not read. n matters to NxString only: the bytes of the scan buffer. Characters
/// first try a "0x" number.
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, NxString* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, double* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, float* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, long* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, unsigned long* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, int* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, unsigned int* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, short* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, unsigned short* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, char* out);
NX_API int MySscanf(const char* text, long len, const char* fmt, long n, unsigned char* out);

#endif
