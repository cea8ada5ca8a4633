// The slots of NxBlob.
#include "nxblobx.h"

#include <cstring>

#include "nxtypes.h"

/// A blob is a pointer to its data; making one null has to release them, which needs
/// the class.
int NxBlobIsNull(void* value) {
  void* data;
  std::memcpy(&data, value, sizeof data);
  return data == nullptr;
}
int NxBlobSetNull(void*) { return kNotPossible; }
