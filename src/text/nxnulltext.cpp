// The texts that stand for null values, built when the library is loaded.
#include "nxnulltext.h"

#include "nxstring.h"

NxString __NullPrintString("{NULL}");
NxString SourceZeroString("0");
