/// A store in a cluster of etcd nodes, under a prefix of its own. Its keys are the prefix, a
/// byte 0 and then
///
///   m/root            what the last commit said
///   m/unfinished      there while entries of no root may be
///   m/writer          the one writer's; it has a lease, which ends soon after its process
///   m/writer/SLOT     how many batches of the writer's went through, for each one under way
///   t, TABLE, KEY     an entry; the table as 32 bits, the high ones first
///
/// A reader holds to the revision at which it read the root. Every write is a transaction
/// that fails unless the writer's key is still its own, so that a writer that was given up,
/// and a request that comes late, change nothing.
#ifndef NXTM_ETCD_H
#define NXTM_ETCD_H

#include "store/keyvalue.h"

namespace nxtm {

/// Whether a store's name is one of a cluster.
bool IsEtcdName(const std::string& name);
/// As KeyValue::Open, for etcd://HOST:PORT[,HOST:PORT...]/PREFIX.
std::unique_ptr<KeyValue> OpenEtcd(const std::string& name, KeyValue::Mode mode, Wait wait);

}  // namespace nxtm

#endif
