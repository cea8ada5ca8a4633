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
#include "store/lock.h"
#include "store/pages.h"

namespace nxtm {

/// The sum of bytes, going on from another one.
unsigned long long AddToSum(unsigned long long sum, std::string_view bytes);
constexpr unsigned long long kEmptySum = 14695981039346656037ULL;

/// Throws a Failure with the text of an LMDB error; 0 is none.
void CheckMdb(int code, const std::string& what);

inline std::string_view View(const MDB_val& v) { return {static_cast<const char*>(v.mv_data), v.mv_size}; }
inline MDB_val Val(std::string_view bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }
template <class T>
MDB_val ValOf(T& number) {
  return {sizeof number, &number};
}

/// In place of a collation version: the index was emptied to be made anew.
constexpr unsigned long kEmptied = 0;

/// An index as the store describes it.
struct IndexInfo {
  unsigned long attribute = 0;  // its place in the schema
  bool hash = false;
  unsigned long collation = 0;  // the version of the collation data that it was made with
  unsigned long long sum = 0;   // of the numbers in all entries, in any order

  /// False while it is being made anew, and after that was broken off.
  bool IsMade() const { return collation != kEmptied; }
};

/// A store in one transaction, which ends with Commit or, without it, as if nothing
/// had been written. Damage that LMDB cannot survive ends the process with a message
/// and exit status 2; all other damage is a Failure.
///
/// Several processes may use a store at once. A reader sees the store to its end as it was
/// when it began; of those that write one does, and the others wait.
class Store {
 public:
  enum class Mode {
    kRead,
    kWrite,
    kAlone  // to write with nobody reading
  };

  /// Opens a store; a Failure when it is none, is truncated, or has another format.
  static std::unique_ptr<Store> Open(const std::string& path, Mode mode, Wait wait = Wait::kForever);
  /// The same to write, or a new store of a schema where there is none. A new one is at its
  /// path from Commit on.
  static std::unique_ptr<Store> OpenOrCreate(const std::string& path, const Schema& schema, Wait wait);
  ~Store();

  /// Whether this process is making it.
  bool IsNew() const { return file_ != path_; }

  const Schema& GetSchema() const { return schema_; }
  unsigned long Count() const { return count_; }
  /// Bytes of the store's file.
  unsigned long long FileSize() const;
  const std::string& Path() const { return path_; }

  /// Adds a record behind the last one and returns its number.
  unsigned int Append(const std::string& record);
  /// The bytes of a record, valid until the transaction ends; a Failure when it is
  /// missing, or its block's checksum is wrong.
  std::string_view Get(unsigned int number);
  /// Every record in order of number. Throws a Failure when a number is missing or
  /// a block's checksum is wrong.
  void ForEach(const std::function<void(unsigned int, std::string_view)>& onRecord);

  const std::vector<IndexInfo>& Indexes() const { return indexes_; }
  /// The index of an attribute, or null when none is made.
  const IndexInfo* FindIndex(unsigned long attribute, bool hash) const;
  /// Counts an entry into the sum of an index.
  void AddToIndexSum(const IndexInfo& index, unsigned long long entry);
  /// Notes that an index is there, as described; a Failure when there are too many.
  void AddIndex(const IndexInfo& index);
  /// Removes an index with its tables; false when there is none.
  bool DropIndex(const IndexInfo& index);
  /// The table of an index, its comparison set; emptied when `fresh`.
  MDB_dbi IndexTable(const IndexInfo& index, bool fresh);
  /// The table of the records that an ordered index lists apart.
  MDB_dbi ApartTable(const IndexInfo& index, bool fresh);

  /// Walks the pages of the file. Throws a Failure when they do not add up.
  void CheckFile() const;
  /// Throws a Failure for more bytes than the store can have.
  void RequireFits(const MDB_val& value) const;
  MDB_txn* Txn() const { return txn_; }
  /// Keeps what was written so far, and goes on in a new transaction.
  void Checkpoint();
  void Commit();
  /// Puts a copy without free pages in the store's place, which must be open alone with
  /// nothing written; nothing but its end may follow.
  void Compact();

 private:
  Store(const std::string& path, Mode mode) : path_(path), file_(path), mode_(mode) {}
  /// Takes the lock that one writer has at a time.
  void LockForWriting(Wait wait);
  void OpenExisting(Wait wait);
  void MakeNew(const Schema& schema);
  void OpenEnvironment(unsigned int flags);
  void Begin();
  void BeginFromSnapshot();
  MDB_dbi Table(const std::string& name, unsigned int flags);
  std::string Meta(const std::string& key);
  void SetMeta(const std::string& key, const std::string& value);
  void OpenTables();
  void ReadMeta();
  void RequireWholeFile();
  void NoteBlockSum();
  void WriteTransaction();
  std::string IndexName(const IndexInfo& index) const;
  void DescribeIndex(const IndexInfo& index);
  IndexInfo* FindDescribed(const IndexInfo& index);
  std::string_view ReadRecord(unsigned int number);
  void RequireBlock(unsigned int block);
  void RequireBlockSum(unsigned int block, unsigned long long sum, unsigned int last);

  std::string path_;  // what the user calls the store
  std::string file_;  // where it is; a store that is being created has another name
  Mode mode_;
  std::unique_ptr<FileLock> writing_;  // released after the environment is closed
  std::unique_ptr<FileLock> using_;
  std::unique_ptr<NewFile> unfinished_;
  MDB_env* env_ = nullptr;
  MDB_txn* txn_ = nullptr;
  unsigned long long largest_ = 0;  // that a value can be
  MDB_dbi meta_ = 0, records_ = 0, sums_ = 0;
  Schema schema_;
  unsigned long count_ = 0;
  unsigned long long blockSum_ = 0;
  std::vector<IndexInfo> indexes_;
  std::vector<bool> soundBlocks_;  // whose checksums were found right
  Snapshot snapshot_;              // of an existing store, as it was opened
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
