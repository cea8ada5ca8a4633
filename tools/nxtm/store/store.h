/// A store: a schema, its records by number, and its indexes, over an engine that keeps bytes.
///
///   root            schema, versions, the record count and every index's description
///   records         number -> checksum, images of the attributes
///   ordered index   sort key of an attribute, number -> copy
///   hash index      hash of an attribute's image, number -> copy
///
/// A copy is the value of a short record where the engine is far away, else nothing.
/// Numbers and hashes are of 32 bits, the most significant byte first. The root tells which
/// table of the engine holds what. It ends with its own checksum.
#ifndef NXTM_STORE_H
#define NXTM_STORE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "data/schema.h"
#include "store/keyvalue.h"

namespace nxtm {

/// In place of a collation version: the index was emptied to be made anew.
constexpr unsigned long kEmptied = 0;

/// The first or last entry of an ordered index, as far as an estimate needs it.
struct IndexEdge {
  std::string sortKey;
  Image keyImage;  // the library's key form
};

/// An index as the store describes it.
struct IndexInfo {
  unsigned long attribute = 0;  // its place in the schema
  bool hash = false;
  unsigned long collation = 0;  // the version of the collation data that it was made with
  KeyValue::Table table = 0;
  unsigned long entries = 0;
  unsigned long long sum = 0;  // of the checksums of all entries, in any order
  IndexEdge low, high;         // widest that ever were there

  /// False while it is being made anew, and after that was broken off.
  bool IsMade() const { return collation != kEmptied; }
};

/// A store as it was when it was opened. What is written counts from Commit on; without it
/// nothing does.
///
/// Several processes may use a store at once. A reader sees the store to its end as it was
/// when it began; of those that write one does, and the others wait.
class Store {
 public:
  using Mode = KeyValue::Mode;
  /// Gets a record, whose bytes are valid during the call; false ends the reading.
  using OnRecord = std::function<bool(unsigned int number, std::string_view record)>;

  /// Opens a store; a Failure when it is none, is damaged, or has another format.
  static std::unique_ptr<Store> Open(const std::string& path, Mode mode, Wait wait = Wait::kForever);
  /// The same to write, or a new store of a schema where there is none. A new one is at its
  /// path from Commit on.
  static std::unique_ptr<Store> OpenOrCreate(const std::string& path, const Schema& schema, Wait wait);

  /// What is left of a damaged store in a file; a StoreFailure when nothing tells what it was.
  /// Only ForEachSound may be asked of it.
  static std::unique_ptr<Store> OpenDamaged(const std::string& path);
  /// The records whose checksums hold, in order of number. Returns how many there were.
  unsigned long ForEachSound(const OnRecord& onRecord);

  /// Whether this process is making it.
  bool IsNew() const { return engine_->Root().empty(); }

  const Schema& GetSchema() const { return schema_; }
  unsigned long Count() const { return count_; }
  const std::string& Path() const { return path_; }
  /// The kind and version of its format, and the collation data that it was made with.
  static std::string Kind();
  unsigned long Collation() const { return collation_; }
  /// The engine, for its own checks and figures, and for the tables of indexes.
  KeyValue& Engine() const { return *engine_; }

  /// Adds a record behind the last one and returns its number.
  unsigned int Append(std::string_view record);
  /// Every record in order of number. Throws a StoreFailure when a number is missing or a
  /// record is not what its checksum says.
  void ForEach(const OnRecord& onRecord);
  /// The value of a record that an entry of an index has as a copy, if it has one. Valid until
  /// the next call.
  std::string_view CopyOf(unsigned int number, std::string_view record);
  /// Whether a value is a copy of a record, by its checksum.
  bool IsCopy(unsigned int number, std::string_view value) const;
  /// Has GetMany take a record from a copy, as long as there is room for it; returns whether.
  bool KeepCopy(unsigned int number, std::string_view value);
  /// How many records are kept so.
  unsigned long Copies() const { return copies_.size(); }
  /// The records of numbers, which ascend. Throws as ForEach does.
  void GetMany(const std::vector<unsigned int>& numbers, const OnRecord& onRecord);
  /// Empties the records, to append those that stay; the indexes are emptied, too. Returns
  /// the table of the records before, which ForEachOf reads until Commit.
  KeyValue::Table BeginRecordsAnew();
  void ForEachOf(KeyValue::Table records, unsigned long count, const OnRecord& onRecord);

  const std::vector<IndexInfo>& Indexes() const { return indexes_; }
  std::vector<IndexInfo>& Indexes() { return indexes_; }
  /// The index of an attribute, or null when none is made.
  const IndexInfo* FindIndex(unsigned long attribute, bool hash) const;
  /// The description of an index, which is added where there is none; a Failure when there
  /// are too many. It holds until another index is added or dropped.
  IndexInfo& Describe(unsigned long attribute, bool hash);
  /// Gives an index an empty table.
  void EmptyIndex(IndexInfo& index);
  /// Removes an index; false when there is none.
  bool DropIndex(unsigned long attribute, bool hash);

  /// Keeps what was written so far. Writing may go on.
  void Commit() { engine_->Commit(RootText()); }

 private:
  Store(const std::string& path, std::unique_ptr<KeyValue> engine);
  void ReadRoot();
  std::string RootText() const;
  IndexInfo* FindDescribed(unsigned long attribute, bool hash);
  std::string_view CheckedRecord(KeyValue::Table records, unsigned int number, std::string_view value) const;
  void TakeValue(unsigned int number, std::string_view record);
  void SweepUnfinished();

  std::string path_;
  std::unique_ptr<KeyValue> engine_;
  Schema schema_;
  unsigned long collation_;
  unsigned long count_ = 0;
  KeyValue::Table records_ = 0;
  KeyValue::Table nextTable_ = 1;
  std::vector<IndexInfo> indexes_;
  std::string value_;  // of the record that is appended, or copied
  std::unordered_map<unsigned int, std::string> copies_;
  unsigned long copiedBytes_ = 0;
};

/// A number as it stands in keys.
std::string NumberKey(unsigned int number);
/// The number that ends a key of at least four bytes.
unsigned int NumberAtEnd(std::string_view key);
/// A checksum of bytes.
unsigned int SumOf(std::string_view bytes, unsigned int seed = 0);

}  // namespace nxtm

#endif
