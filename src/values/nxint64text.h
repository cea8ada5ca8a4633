// NxInt64 and text under the directives of 64-bit integers: %S %d %i decimal, %o octal,
// %x %X hexadecimal. A null format counts as "%S".
#ifndef NXINT64TEXT_H
#define NXINT64TEXT_H

class NxInt64;
class NxString;

/// Appends the value's text under a format to out.
void NxPrintInt64(NxString& out, const NxInt64& value, const char* format);

/// Reads a value from 8-bit text; -1 for a text that does not fit the format.
void NxScanInt64(NxInt64& value, const char* text, const char* format);

#endif
