// The options word of the library.
#include "nxoption.h"

namespace {

unsigned long typeMgrOptions = 0;

}  // namespace

unsigned long* ___NxTypeMgrOptions() { return &typeMgrOptions; }
