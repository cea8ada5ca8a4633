// Identity of the library: what it is called, its version, and when and by what it
// was compiled.

#include "nxtmvers.h"

#include <cstdio>

#include "nxbase.h"

namespace {

struct Version {
  int major, minor, build, patch, extra;
};
constexpr Version kVersion = {9, 5, 23, 262, 0};
constexpr char kVersionText[] = "9.5.23.262.0 ";
constexpr char kBuildDateTime[] = __DATE__ " " __TIME__;
constexpr int kCheckFlags = 3;  // always added to the caller's

char DLL_version_info[256];

}  // namespace

const char* DLLtitle = "Quorvantics Typemanager";
const char* DLLname = "nx21Rtms";
const char* DLLdate = __DATE__;
#if defined(__clang__)
const char* DLLcompilerName = "Clang " __clang_version__ ", 32-bit Linux";
#else
const char* DLLcompilerName = "GCC " __VERSION__ ", 32-bit Linux";
#endif
int DLLcompilerNum = 320;

int NxCheckDll(int flags) {
  return CheckNxVersionNumber(kVersion.major, kVersion.minor, kVersion.build, kVersion.patch, kVersion.extra,
                              flags | kCheckFlags);
}

const char* NxDescribeDll(int* major, int* minor, int* build, int* patch, int* extra, const char** shortName,
                          const char** buildDateTime, const char** placeholder, int* compilerNumber,
                          const char** compilerName, const char** empty) {
  *major = kVersion.major;
  *minor = kVersion.minor;
  *build = kVersion.build;
  *patch = kVersion.patch;
  *extra = kVersion.extra;
  *shortName = DLLname;
  *buildDateTime = kBuildDateTime;
  *placeholder = "unknown";
  *compilerNumber = DLLcompilerNum;
  *compilerName = DLLcompilerName;
  *empty = "";
  return DLLtitle;
}

void GetNxTypeMgrInfo(const char** compilerName, int* compilerNumber, const char** versionInfo,
                      const char** buildDate, const char** shortName) {
  if (compilerName) *compilerName = DLLcompilerName;
  if (compilerNumber) *compilerNumber = DLLcompilerNum;
  if (versionInfo) {
    std::snprintf(DLL_version_info, sizeof DLL_version_info, "%s %s", DLLtitle, kVersionText);
    *versionInfo = DLL_version_info;
  }
  if (buildDate) *buildDate = DLLdate;
  if (shortName) *shortName = DLLname;
}
