// The engines, by the names of their stores.

#include "store/keyvalue.h"

#include "store/etcd.h"
#include "store/lmdb.h"

namespace nxtm {

std::unique_ptr<KeyValue> KeyValue::Open(const std::string& name, Mode mode, Wait wait) {
  if (IsEtcdName(name)) return OpenEtcd(name, mode, wait);
  return OpenLmdb(name, mode, wait);
}

}  // namespace nxtm
