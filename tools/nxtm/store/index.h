/// Indexes of a store: keys, building, checking.
///
/// The key of an ordered index is the attribute's image; of a text its key form, at
/// most 254 bytes. Texts that have no key of their own are listed apart. The key of a
/// hash index is the hash of the image. Null attributes have no entry.
#ifndef NXTM_INDEX_H
#define NXTM_INDEX_H

#include <string>
#include <string_view>

#include "store/store.h"

namespace nxtm {

/// The key of an attribute's image in an ordered index.
Image OrderedKey(char type, std::string_view image, unsigned char format = kFormatNative);
/// Whether a text's key is cut short because it would be too long.
bool IsCut(const Image& key);
/// Whether a key stands for the whole of its text. One that does not (it is cut, or the
/// text changes to another collation) says nothing of the rest, and two of such sort as
/// their texts do only where a base letter differs. Their records are listed apart.
bool IsWhole(char type, const Image& key);
/// The key of an attribute's image in a hash index.
unsigned int HashKey(char type, std::string_view image);

/// One attribute of a record, without taking the others further apart than needed.
Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute);

/// Refuses an index whose texts were ordered under other collation data, naming the
/// command that rebuilds it.
void RequireCurrent(const Store& store, const IndexInfo& index);

/// Walks the entries of an index as they lie. Throws a Failure where they are not those that
/// were written, or are not found where they are.
void WalkIndex(Store& store, const IndexInfo& index);

/// Holds entries that are read one behind the other to what they should be: keys of the
/// records that they name, in order. Throws a Failure for others.
class EntryCheck {
 public:
  EntryCheck(Store& store, const IndexInfo& index);

  /// The number of the record of the next entry.
  unsigned int Take(MDB_val key, MDB_val data);
  /// The same of the list apart.
  unsigned int TakeApart(MDB_val key);

 private:
  Store& store_;
  const IndexInfo& index_;
  MDB_dbi table_;
  bool any_ = false;
  Image key_;
  unsigned int number_ = 0;
};

/// Fills an index anew from the records.
void BuildIndex(Store& store, const IndexInfo& index);
/// Drops every index, and makes it anew.
void RebuildIndexes(Store& store);
/// Adds a record that was appended to every index of the store.
void AddToIndexes(Store& store, unsigned int number, const std::vector<Field>& fields);
/// Compares an index with the records, both ways. Throws a Failure at the first
/// difference; returns the number of its entries, those apart included.
unsigned long CheckIndex(Store& store, const IndexInfo& index);

/// Refuses a store that is damaged, which would only be damaged further.
void RequireSound(Store& store);

}  // namespace nxtm

#endif
