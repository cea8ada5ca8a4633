/// The order of keys in a file of LMDB.
#ifndef NXTM_KEYORDER_H
#define NXTM_KEYORDER_H

#include <lmdb.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nxtm {

/// The order of keys as bytes, a word at a time. It is the order of LMDB itself, which calls
/// memcmp: that costs more than most keys take.
inline int CompareKeys(const MDB_val* a, const MDB_val* b) {
  using Word = std::uint32_t;
  const auto* const first = static_cast<const unsigned char*>(a->mv_data);
  const auto* const second = static_cast<const unsigned char*>(b->mv_data);
  const unsigned long n = std::min(a->mv_size, b->mv_size);
  unsigned long i = 0;
  for (; i + sizeof(Word) <= n; i += sizeof(Word)) {
    Word x, y;
    std::memcpy(&x, first + i, sizeof x);
    std::memcpy(&y, second + i, sizeof y);
    if (x != y) return __builtin_bswap32(x) < __builtin_bswap32(y) ? -1 : 1;
  }
  for (; i < n; ++i)
    if (first[i] != second[i]) return first[i] < second[i] ? -1 : 1;
  return a->mv_size < b->mv_size ? -1 : a->mv_size > b->mv_size;
}

}  // namespace nxtm

#endif
