/// Identity of the library: version, names, compiler, build date.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXTMVERS_H
#define NXTMVERS_H

#include "nxapi.h"

extern "C" {

/// Checks this library's version with the base services under `flags` and its
/// bits 0 and 1; 0 when it fits.
NX_API int NxCheckDll(int flags);

/// Fills eleven outputs, none of which may be null: five version numbers, the
/// short name, build date and time, a placeholder, the compiler's number and name,
/// an empty text. Returns the title. The texts are static.
NX_API const char* NxDescribeDll(int* major, int* minor, int* build, int* patch, int* extra,
                                 const char** shortName, const char** buildDateTime, const char** placeholder,
                                 int* compilerNumber, const char** compilerName, const char** empty);

/// Fills those of the five outputs that are not null; versionInfo receives the
/// title and the version text. The texts are static.
NX_API void GetNxTypeMgrInfo(const char** compilerName, int* compilerNumber, const char** versionInfo,
                             const char** buildDate, const char** shortName);

/// What the functions tell: title, short name, build date, compiler.
extern NX_API const char* DLLtitle;
extern NX_API const char* DLLname;
extern NX_API const char* DLLdate;
extern NX_API const char* DLLcompilerName;
extern NX_API int DLLcompilerNum;
}

#endif
