/// A store in one LMDB file. Damage that LMDB cannot survive ends the process with a message
/// and kStoreStatus; all other damage is a StoreFailure.
#ifndef NXTM_LMDB_H
#define NXTM_LMDB_H

#include "store/keyvalue.h"

namespace nxtm {

/// As KeyValue::Open, for the path of a file.
std::unique_ptr<KeyValue> OpenLmdb(const std::string& path, KeyValue::Mode mode, Wait wait);

}  // namespace nxtm

#endif
