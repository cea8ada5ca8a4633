// What the tests of sort keys share: keys of values, the terms of queries and their ranges.
#ifndef TERMS_H
#define TERMS_H

#include <cstdlib>
#include <string>

#include "nxoption.h"
#include "nxsortkey.h"

inline std::string KeyOf(char id, const void* value, unsigned char format, unsigned long length = 0,
                         unsigned short options = 0) {
  const unsigned long size = NxSortKey(id, value, format, length, options, nullptr, 0);
  std::string key(size, '\0');
  if (NxSortKey(id, value, format, length, options, key.data(), size) != size) std::abort();
  return key;
}

inline bool IsPrefix(const std::string& a, const std::string& b) {
  return a.size() < b.size() && b.compare(0, a.size(), a) == 0;
}

/// Whether a relation selects values that order so against the term.
inline bool Selects(long order, unsigned short relation) {
  return (relation & (order == 0 ? kRelationEqual : order < 0 ? kRelationLess : kRelationGreater)) != 0;
}

inline bool LiesWithin(const NxSortKeyRange& range, const std::string& key) {
  const std::string lower(static_cast<char*>(range.lower), range.lowerLength);
  const std::string upper(static_cast<char*>(range.upper), range.upperLength);
  return (!range.lower || lower <= key) && (!range.upper || key < upper);
}

#endif
