/// Indexes of a store: keys, building, checking.
///
/// The key of an ordered index is the attribute's image; of a text its key form, at
/// most 254 bytes. The key of a hash index is the hash of the image. Null attributes
/// have no entry.
#ifndef NXTM_INDEX_H
#define NXTM_INDEX_H

#include <string>
#include <string_view>

#include "store.h"

namespace nxtm {

/// Whether values of the type are texts, which order by collation data.
bool IsText(char type);

/// The key of an attribute's image in an ordered index.
Image OrderedKey(char type, const Image& image);
/// The key of an attribute's image in a hash index.
unsigned int HashKey(char type, const Image& image);

/// One attribute of a record, without taking the others further apart than needed.
Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute);

/// Refuses an index whose texts were ordered under other collation data, naming the
/// command that rebuilds it.
void RequireCurrent(const Store& store, const IndexInfo& index);

/// Fills an index anew from the records.
void BuildIndex(Store& store, const IndexInfo& index);
/// Adds a record that was appended to every index of the store.
void AddToIndexes(Store& store, unsigned int number, const std::vector<Field>& fields);
/// Compares an index with the records, both ways. Throws a Failure at the first
/// difference; returns the number of its entries.
unsigned long CheckIndex(Store& store, const IndexInfo& index);

}  // namespace nxtm

#endif
