// Identity of the library: what it is called, its version, and when and by what it
// was compiled.

#include "nxtmvers.h"

#include "nxbase.h"
#include "nxversion.h"

namespace {

#define NX_TITLE "Quorvantics Typemanager"
constexpr char kTitleAndVersion[] = NX_TITLE " " NX_VERSION_TEXT " ";
constexpr char kBuildDateTime[] = __DATE__ " " __TIME__;
constexpr int kCheckFlags = 3;  // always added to the caller's

}  // namespace

const char* DLLtitle = NX_TITLE;
const char* DLLname = "nx21Rtms";
const char* DLLdate = __DATE__;
#if defined(__clang__)
const char* DLLcompilerName = "Clang " __clang_version__ ", 32-bit Linux";
#else
const char* DLLcompilerName = "GCC " __VERSION__ ", 32-bit Linux";
#endif
int DLLcompilerNum = 320;

int NxCheckDll(int flags) {
  return CheckNxVersionNumber(NX_VERSION_MAJOR, NX_VERSION_MINOR, NX_VERSION_BUILD, NX_VERSION_PATCH,
                              NX_VERSION_EXTRA, flags | kCheckFlags);
}

const char* NxDescribeDll(int* major, int* minor, int* build, int* patch, int* extra, const char** shortName,
                          const char** buildDateTime, const char** placeholder, int* compilerNumber,
                          const char** compilerName, const char** empty) {
  *major = NX_VERSION_MAJOR;
  *minor = NX_VERSION_MINOR;
  *build = NX_VERSION_BUILD;
  *patch = NX_VERSION_PATCH;
  *extra = NX_VERSION_EXTRA;
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
  if (versionInfo) *versionInfo = kTitleAndVersion;
  if (buildDate) *buildDate = DLLdate;
  if (shortName) *shortName = DLLname;
}
