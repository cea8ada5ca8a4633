/// What can be read of a damaged store.
#ifndef NXTM_SALVAGE_H
#define NXTM_SALVAGE_H

#include "store/keyvalue.h"

namespace nxtm {

/// Opens the file of a store to read its records, page by page and without trusting any tree:
/// Range, whatever the table, gives every value under a number that is found, in order of
/// the numbers; of values that were replaced the older ones, too. `isRoot` tells sound roots;
/// the newest one counts. A StoreFailure when there is none.
std::unique_ptr<KeyValue> OpenDamaged(const std::string& path,
                                      const std::function<bool(const std::string&)>& isRoot);

}  // namespace nxtm

#endif
