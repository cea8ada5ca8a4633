/// Printing and scanning of values under format strings.
///
/// A print slot writes the text of one value and returns its output string; a scan
/// slot reads one value and returns the value's address. Only char reads n: its
/// values are printed and scanned as one text. Dates, times, 64-bit integers, seals
/// and blobs are appended to the output, the others replace it. Null values replace it by
/// `NxTypeMgr::GetNullPrintString`, and input that begins with that text, byte for byte,
/// scans as null.
///
/// Formats are those of the C library for the scalars and strings ("%s"). They are
/// checked first: at most one conversion, of the value's kind, no wider than the value
/// when scanning, without "*", "%n" and positions. A format that is none of these prints
/// as it is and scans nothing; null leaves the output or the value as it is. Printed
/// numbers are cut at 511 characters. For strings "%1M" to "%4M" count as "%s"; a string
/// of order values (code set 254) prints without accents, as under "%s", as descriptions
/// and as ASCII pairs under them. For NxInt64: %S %d %i decimal, %o octal (prefix 0),
/// %x %X hexadecimal (prefix 0x), null counting as "%S"; for NxBlob: %L the length, any
/// other character behind "%" that character; for NxBoolean and NxSeal: not read.
///
/// Directives of dates and times; docs/text.md says what they read, with examples:
///
///   %A %a  weekday, its first 3 letters     %H     hour, 00 to 23
///   %B %b  month, its first 3 letters       %I     hour of a clock, 12 at midnight only
///   %d %e  day                                       beside %p or %P
///   %m     month                            %M %S  minute, second
///   %Y %y  year, year of the century        %p %P  am or pm, AM or PM
///
/// Threads may call these at once, with values and buffers that no other thread changes.
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
