/// A store: one LMDB file with a schema, its records by number, and its indexes.
///
///   meta      schema, versions, the record count and every index's description
///   records   record number (32 bits) -> the images of its attributes
///   sums      number of a block of records -> checksum of their bytes
///   o:NAME    ordered index: key image -> record numbers
///   a:NAME    numbers of the records that the ordered index lists apart
///   h:NAME    hash index: hash (32 bits) -> record numbers
///
/// Every value of meta ends with its own checksum.
#ifndef NXTM_STORE_H
#define NXTM_STORE_H

#include <lmdb.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/schema.h"

namespace nxtm {

/// Throws a Failure with the text of an LMDB error; 0 is none.
void CheckMdb(int code, const std::string& what);

inline std::string_view View(const MDB_val& v) { return {static_cast<const char*>(v.mv_data), v.mv_size}; }
inline MDB_val Val(std::string_view bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }
template <class T>
MDB_val ValOf(T& number) {
  return {sizeof number, &number};
}

/// An index as the store describes it.
struct IndexInfo {
  unsigned long attribute = 0;  // its place in the schema
  bool hash = false;
  unsigned long collation = 0;  // the version of the collation data that it was made with
};

/// A store in one transaction, which ends with Commit or, without it, as if nothing
/// had been written. Damage that LMDB cannot survive ends the process with a message
/// and exit status 2; all other damage is a Failure.
class Store {
 public:
  enum class Mode { kRead, kWrite };

  /// Creates a store that is not there yet. It is at its path from Commit on.
  static std::unique_ptr<Store> Create(const std::string& path, const Schema& schema);
  /// Opens a store; a Failure when it is none, is truncated, or has another format.
  static std::unique_ptr<Store> Open(const std::string& path, Mode mode);
  static bool Exists(const std::string& path);
  ~Store();

  const Schema& GetSchema() const { return schema_; }
  unsigned long Count() const { return count_; }
  /// Bytes of the store's file.
  unsigned long long FileSize() const;
  const std::string& Path() const { return path_; }

  /// Adds a record behind the last one and returns its number.
  unsigned int Append(const std::string& record);
  /// The bytes of a record, valid until the transaction ends; a Failure when it is
  /// missing.
  std::string_view Get(unsigned int number);
  /// Every record in order of number. Throws a Failure when a number is missing or
  /// a block's checksum is wrong.
  void ForEach(const std::function<void(unsigned int, std::string_view)>& onRecord);

  const std::vector<IndexInfo>& Indexes() const { return indexes_; }
  /// The index of an attribute, or null.
  const IndexInfo* FindIndex(unsigned long attribute, bool hash) const;
  void AddIndex(const IndexInfo& index);
  /// The table of an index, its comparison set; emptied when `fresh`.
  MDB_dbi IndexTable(const IndexInfo& index, bool fresh);
  /// The table of the records that an ordered index lists apart.
  MDB_dbi ApartTable(const IndexInfo& index, bool fresh);

  /// Throws a Failure for more bytes than the store can have.
  void RequireFits(const MDB_val& value) const;
  MDB_txn* Txn() const { return txn_; }
  void Commit();

 private:
  Store(const std::string& path, const std::string& file, Mode mode);
  MDB_dbi Table(const std::string& name, unsigned int flags);
  std::string Meta(const std::string& key);
  void SetMeta(const std::string& key, const std::string& value);
  void ReadMeta();
  void RequireWholeFile();
  void FinishBlock();
  std::string IndexName(const IndexInfo& index) const;

  std::string path_;  // what the user calls the store
  std::string file_;  // where it is; a store that is being created has another name
  Mode mode_;
  MDB_env* env_ = nullptr;
  MDB_txn* txn_ = nullptr;
  unsigned long long largest_ = 0;  // that a value can be
  MDB_dbi meta_ = 0, records_ = 0, sums_ = 0;
  Schema schema_;
  unsigned long count_ = 0;
  unsigned long long blockSum_ = 0;
  std::vector<IndexInfo> indexes_;
};

/// A cursor that closes itself.
class Cursor {
 public:
  Cursor(const Store& store, MDB_dbi table) : store_(store) {
    CheckMdb(mdb_cursor_open(store.Txn(), table, &cursor_), store.Path());
  }
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  ~Cursor() { mdb_cursor_close(cursor_); }

  /// False at the end.
  bool Get(MDB_val& key, MDB_val& data, MDB_cursor_op op);
  void Put(MDB_val key, MDB_val data, unsigned int flags) {
    CheckMdb(mdb_cursor_put(cursor_, &key, &data, flags), store_.Path());
  }

 private:
  const Store& store_;
  MDB_cursor* cursor_ = nullptr;
};

}  // namespace nxtm

#endif
