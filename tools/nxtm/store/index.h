/// Indexes of a store: the keys of their entries, building, checking.
///
/// An entry's key is, of an ordered index, the sort key of the attribute, cut where it is longer
/// than kLongestSortKey, and of a hash index the hash of the image; then the number of the
/// record. Its value is the copy of the record that the store makes, or nothing. Null
/// attributes have no entry.
#ifndef NXTM_INDEX_H
#define NXTM_INDEX_H

#include <string>
#include <string_view>
#include <vector>

#include "store/store.h"

namespace nxtm {

constexpr unsigned long kLongestSortKey = KeyValue::kLongestKey - sizeof(unsigned int);

/// The sort key of an attribute's image, cut. A Failure for an image without one.
std::string SortKeyOf(char type, std::string_view image);
/// The library's key form of an image, in which it estimates what a range holds.
Image KeyImageOf(char type, std::string_view image, unsigned char format = kFormatNative);
/// The hash of an attribute's image as it stands in keys.
std::string HashKeyOf(char type, std::string_view image);

/// One attribute of a record, without taking the others further apart than needed.
Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute);

/// Refuses an index whose texts were ordered under other collation data, naming the
/// command that rebuilds it.
void RequireCurrent(const Store& store, const IndexInfo& index);

/// An entry that was read: the number of its record, and the checksum of its key.
struct Entry {
  unsigned int number;
  unsigned int sum;
};
/// Appends the entries of an index with keys from `from` on, below `to` (empty: to the last).
/// Returns how many there were.
unsigned long ReadEntries(Store& store, const IndexInfo& index, std::string_view from, std::string_view to,
                          std::vector<Entry>& entries);
/// Throws a StoreFailure when an entry that was read is not the one of the record that it names.
void RequireEntry(const Store& store, const IndexInfo& index, const Entry& entry, std::string_view record);

/// Makes the entries of an index from records: collects their keys and writes them in order, or
/// writes entries with copies at once, for which the order does not matter.
class IndexBuilder {
 public:
  IndexBuilder(const Store& store, const IndexInfo& index);
  /// Takes a record for Write.
  void Add(Store& store, unsigned int number, std::string_view record);
  /// Writes what was added to the index's empty table, and describes it.
  void Write(Store& store);
  /// Takes a record for Compare.
  void Take(unsigned int number, std::string_view record);
  /// Compares what was taken with what is there. Throws a StoreFailure at the first difference.
  void Compare(Store& store);

 private:
  struct Key {
    unsigned long long part;  // of the key, which is compared
    unsigned long at;         // of the key among the keys
    unsigned short size;
  };
  using Keys = std::vector<Key>;
  std::string_view KeyOf(const Key& key) const { return std::string_view(keys_).substr(key.at, key.size); }
  std::string TakeKey(unsigned int number, std::string_view record);
  void FetchAhead(Keys::iterator entry, Keys::iterator last) const;
  void Sort(Keys::iterator first, Keys::iterator last, unsigned long from);

  const Schema& schema_;
  IndexInfo index_;
  char type_;
  std::string keys_;
  Keys entries_;
};

/// Makes an index anew from the records.
void BuildIndex(Store& store, unsigned long attribute, bool hash);
/// Empties every index, and makes it anew.
void RebuildIndexes(Store& store);
/// Adds a record that was appended to every index of the store; its fields are given, too.
void AddToIndexes(Store& store, unsigned int number, std::string_view record,
                  const std::vector<Field>& fields);
/// Takes records away, whose numbers ascend; those behind them get lower numbers.
void RemoveRecords(Store& store, const std::vector<unsigned int>& numbers);
/// Compares an index with the records. Throws a StoreFailure at the first difference.
void CheckIndex(Store& store, const IndexInfo& index);

}  // namespace nxtm

#endif
