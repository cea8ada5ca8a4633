// Reports of failed conditions and failed allocations, and the version check.

#include <cstdio>
#include <cstdlib>

#include "nxbase.h"
#include "nxversion.h"

namespace {

NxAssertHandler assertHandler = nullptr;
NxMemoryHandler memoryHandler = nullptr;

}  // namespace

void NEXO_assert(const char* expression, const char* path, int line) {
  if (assertHandler) {
    assertHandler(expression, path, line);
  } else {
    std::fprintf(stderr, "%s, %s, %d\n", expression, path, line);
  }
}

NxAssertHandler NxSetAssertHandler(NxAssertHandler handler) {
  const NxAssertHandler before = assertHandler;
  assertHandler = handler;
  return before;
}

void NxCallMemoryHandler(unsigned long size) {
  if (memoryHandler) {
    memoryHandler(size);
    return;
  }
  std::fprintf(stderr, "out of memory: %lu bytes cannot be had\n", size);
  std::abort();
}

NxMemoryHandler NxSetMemoryHandler(NxMemoryHandler handler) {
  const NxMemoryHandler before = memoryHandler;
  memoryHandler = handler;
  return before;
}

int CheckNxVersionNumber(int major, int minor, int /*build*/, int /*patch*/, int /*extra*/, int /*flags*/) {
  return major == NX_VERSION_MAJOR && minor == NX_VERSION_MINOR ? 0 : -1;
}
