// The engine that keeps a store in one file.
//
// Every table is a named database of LMDB. The root stands in one of its own, with the
// number of the transaction that wrote it behind it. A file beside the store, PATH-lock,
// holds LMDB's locks and the lock that one writer has at a time.

#include "store/lmdb.h"

#include <fcntl.h>
#include <lmdb.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

#include "data/failure.h"
#include "store/keyorder.h"
#include "store/pages.h"

namespace nxtm {

namespace {

// A store is mapped whole. The address space of a process gives about 2 GiB in one piece,
// or less where much of it is taken.
constexpr unsigned long kMapSizes[] = {2047UL << 20, 1536UL << 20, 1024UL << 20, 512UL << 20};
constexpr unsigned int kMaxTables = 4096;
const char kLockSuffix[] = "-lock";

// ---------------------------------------------------------------------------
// Damage
//
// LMDB trusts its pages. Where one is damaged it may follow a wild pointer or stop
// the process; both end here, with the message that the user needs.

char damageMessage[512];

void OnDamage(int) {
  ssize_t ignored = write(STDERR_FILENO, damageMessage, std::strlen(damageMessage));
  static_cast<void>(ignored);
  _exit(kStoreStatus);
}

void ExpectDamage(const std::string& path) {
  std::snprintf(damageMessage, sizeof damageMessage, "nxtm: %s: the store is damaged\n", path.c_str());
  for (int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE}) {
    struct sigaction action {};
    action.sa_handler = OnDamage;
    sigaction(signal, &action, nullptr);
  }
}

std::string_view View(const MDB_val& v) { return {static_cast<const char*>(v.mv_data), v.mv_size}; }
MDB_val Val(std::string_view bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }

bool Precedes(std::string_view a, std::string_view b) {
  const MDB_val first = Val(a), second = Val(b);
  return CompareKeys(&first, &second) < 0;
}

/// Throws a StoreFailure with the text of an LMDB error; 0 is none.
void CheckMdb(int code, const std::string& what) {
  if (code == 0) return;
  if (code == MDB_MAP_FULL)
    throw StoreFailure(what + ": the store would grow beyond what this process can map (about 2 GiB)");
  if (code == EIO) throw StoreFailure(what + ": cannot be read or written");
  throw StoreFailure(what + ": " + mdb_strerror(code));
}

/// Refuses a path at which there is no store, with the reason.
void RequireStoreFile(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0)
    throw Failure(path + ": " + (errno == ENOENT ? "there is no such store" : std::strerror(errno)));
  if (stat(path.c_str(), &status) != 0)
    throw Failure(path + ": a link that cannot be followed: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode) || status.st_size == 0) throw Failure(path + ": not a store");
  const auto size = static_cast<unsigned long long>(status.st_size);
  if (size > kMapSizes[0])
    throw StoreFailure(path + ": has " + std::to_string(size) +
                       " bytes, more than this process can map (about 2 GiB)");
}

class LmdbKeyValue : public KeyValue {
 public:
  LmdbKeyValue(const std::string& path, Mode mode) : path_(path), file_(path), mode_(mode) {}
  LmdbKeyValue(const LmdbKeyValue&) = delete;
  LmdbKeyValue& operator=(const LmdbKeyValue&) = delete;
  ~LmdbKeyValue() override;

  /// Opens the file, or begins a new one; the object can be used behind it.
  void OpenFile(Wait wait);

  const std::string& Root() const override { return root_; }
  void Range(Table table, std::string_view from, std::string_view to, const OnEntry& onEntry) override;
  void RequireWhole(Table table, std::string_view from, std::string_view to) override {
    if (!isChanged_) CheckRange(FileOf(), snapshot_, std::to_string(table), from, to, path_);
  }
  void GetMany(Table table, const std::vector<std::string>& keys, const OnValue& onValue) override;
  void Put(Table table, std::string_view key, std::string_view value) override;
  void Remove(Table table, std::string_view key) override;
  void Drop(Table table) override;
  void Commit(const std::string& root) override;
  bool LeftUnfinished() const override { return false; }  // what was not committed is not there
  void Check() override;
  void Compact() override;
  unsigned long long Size() const override;

 private:
  class Cursor;
  struct OpenTable {
    MDB_dbi handle;
    std::string last;        // the last key that was put, while keys ascend
    bool isChanged = false;  // since the last commit: it has pages that are not in the file
  };

  void OpenExisting(Wait wait);
  void OpenEnvironment(unsigned int flags);
  void Begin();
  void BeginFromSnapshot();
  void RequireWholeFile();
  void ReadRoot();
  void WriteRoot();
  MDB_dbi RootTable(unsigned int flags);
  OpenTable* Find(Table table, unsigned int flags);
  int FileOf() const;
  void RequireFits(const MDB_val& value) const;
  void RequirePlace(MDB_dbi handle, std::string_view key);
  [[noreturn]] void FailDamaged() const { throw StoreFailure(path_ + ": the store is damaged"); }

  std::string path_;  // what the user calls the store
  std::string file_;  // where it is; a store that is being created has another name
  Mode mode_;
  std::unique_ptr<FileLock> writing_;  // released after the environment is closed
  std::unique_ptr<FileLock> using_;
  std::unique_ptr<NewFile> unfinished_;
  MDB_env* env_ = nullptr;
  MDB_txn* txn_ = nullptr;
  unsigned long long largest_ = 0;  // that a value can be
  std::uint32_t pageSize_ = 0;
  std::map<Table, OpenTable> tables_;
  std::string root_;
  Snapshot snapshot_;       // of an existing store, as it was opened
  bool isChanged_ = false;  // since then
};

/// A cursor that closes itself.
class LmdbKeyValue::Cursor {
 public:
  Cursor(const LmdbKeyValue& store, MDB_dbi table) : store_(store) {
    CheckMdb(mdb_cursor_open(store.txn_, table, &cursor_), store.path_);
  }
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  ~Cursor() { mdb_cursor_close(cursor_); }

  /// False at the end.
  bool Get(MDB_val& key, MDB_val& data, MDB_cursor_op op) {
    const int code = mdb_cursor_get(cursor_, &key, &data, op);
    if (code == MDB_NOTFOUND) return false;
    CheckMdb(code, store_.path_);
    store_.RequireFits(key);
    store_.RequireFits(data);
    return true;
  }

 private:
  const LmdbKeyValue& store_;
  MDB_cursor* cursor_ = nullptr;
};

// ---------------------------------------------------------------------------
// Opening

void LmdbKeyValue::OpenFile(Wait wait) {
  if (mode_ != Mode::kCreate) RequireStoreFile(path_);
  if (mode_ != Mode::kRead)
    writing_ = std::make_unique<FileLock>(path_ + kLockSuffix, FileLock::Kind::kExclusive, wait, path_, true);
  struct stat status {};
  if (mode_ != Mode::kCreate || lstat(path_.c_str(), &status) == 0 || errno != ENOENT) {
    RequireStoreFile(path_);
    OpenExisting(wait);
    return;
  }
  unfinished_ = std::make_unique<NewFile>(path_);
  file_ = unfinished_->Name();
  isChanged_ = true;
  OpenEnvironment(MDB_NOLOCK);  // nobody else knows of it
  Begin();
}

LmdbKeyValue::~LmdbKeyValue() {
  if (txn_) mdb_txn_abort(txn_);
  mdb_env_close(env_);
  // A lock file whose store was never made is of no use to others.
  if (file_ != path_) unlink((path_ + kLockSuffix).c_str());
}

void LmdbKeyValue::OpenExisting(Wait wait) {
  const FileLock::Kind kind = mode_ == Mode::kAlone ? FileLock::Kind::kExclusive : FileLock::Kind::kShared;
  using_ = std::make_unique<FileLock>(path_, kind, wait, path_);
  ExpectDamage(path_);
  OpenEnvironment(mode_ == Mode::kRead ? MDB_RDONLY : 0);
  int dead;
  mdb_reader_check(env_, &dead);  // pages that a killed process was reading can be used again
  RequireWholeFile();
  BeginFromSnapshot();
  ReadRoot();
}

void LmdbKeyValue::OpenEnvironment(unsigned int flags) {
  int code = ENOMEM;
  for (unsigned long size : kMapSizes) {
    mdb_env_close(env_);
    env_ = nullptr;
    CheckMdb(mdb_env_create(&env_), path_);
    CheckMdb(mdb_env_set_assert(env_, [](MDB_env*, const char*) { OnDamage(SIGABRT); }), path_);
    CheckMdb(mdb_env_set_mapsize(env_, size), path_);
    CheckMdb(mdb_env_set_maxdbs(env_, kMaxTables), path_);
    code = mdb_env_open(env_, file_.c_str(), MDB_NOSUBDIR | flags, 0666);
    largest_ = size;
    if (code != ENOMEM) break;
  }
  // Who may not write here reads without being known to those who write.
  if (code == EACCES && mode_ == Mode::kRead && !(flags & MDB_NOLOCK))
    return OpenEnvironment(flags | MDB_NOLOCK);
  if (code == MDB_INVALID || code == MDB_VERSION_MISMATCH) throw Failure(path_ + ": not a store");
  CheckMdb(code, path_);
  MDB_stat pages;
  CheckMdb(mdb_env_stat(env_, &pages), path_);
  pageSize_ = pages.ms_psize;
}

void LmdbKeyValue::Begin() {
  CheckMdb(mdb_txn_begin(env_, nullptr, mode_ == Mode::kRead ? MDB_RDONLY : 0, &txn_), path_);
}

/// Begins a transaction and finds the state of the file that it sees, which later ones of
/// other processes may hide.
void LmdbKeyValue::BeginFromSnapshot() {
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    Begin();
    const auto seen = static_cast<std::uint32_t>(mdb_txn_id(txn_)) - (mode_ == Mode::kRead ? 0 : 1);
    const std::optional<Snapshot> found = FindSnapshot(FileOf(), seen);
    if (found) {
      snapshot_ = *found;
      return;
    }
    mdb_txn_abort(std::exchange(txn_, nullptr));
  }
  FailDamaged();
}

int LmdbKeyValue::FileOf() const {
  int file;
  CheckMdb(mdb_env_get_fd(env_, &file), path_);
  return file;
}

/// LMDB maps the file without asking whether all of its pages are there.
void LmdbKeyValue::RequireWholeFile() {
  MDB_envinfo info;
  CheckMdb(mdb_env_info(env_, &info), path_);
  if (Size() / pageSize_ < info.me_last_pgno + 1) throw StoreFailure(path_ + ": the store is truncated");
  if (mode_ == Mode::kRead) largest_ = Size();
}

unsigned long long LmdbKeyValue::Size() const {
  struct stat status {};
  return stat(file_.c_str(), &status) == 0 ? static_cast<unsigned long long>(status.st_size) : 0;
}

void LmdbKeyValue::RequireFits(const MDB_val& value) const {
  if (value.mv_size > largest_) FailDamaged();
}

// ---------------------------------------------------------------------------
// The root

const char kRootName[] = "root";

MDB_dbi LmdbKeyValue::RootTable(unsigned int flags) {
  MDB_dbi table;
  const int code = mdb_dbi_open(txn_, kRootName, flags, &table);
  if (code == MDB_NOTFOUND) {
    if (mdb_dbi_open(txn_, "records", 0, &table) == 0)
      throw Failure(path_ + ": a store of an earlier version; make it anew with nxtm import");
    throw Failure(path_ + ": not a store");
  }
  CheckMdb(code, path_);
  return table;
}

void LmdbKeyValue::ReadRoot() {
  MDB_val key = Val(kRootName), data;
  const int code = mdb_get(txn_, RootTable(0), &key, &data);
  if (code == MDB_NOTFOUND) FailDamaged();
  CheckMdb(code, path_);
  RequireFits(data);
  const std::string_view stored = View(data);
  const unsigned long end = stored.rfind(' ');
  // A meta page whose transaction was changed would bring back an older state.
  if (end == stored.npos || stored.substr(end + 1) != std::to_string(snapshot_.transaction))
    throw StoreFailure(path_ + ": the store is damaged: a meta page has another transaction's number");
  root_ = stored.substr(0, end);
}

void LmdbKeyValue::WriteRoot() {
  const std::string stored = root_ + ' ' + std::to_string(mdb_txn_id(txn_));
  MDB_val key = Val(kRootName), data = Val(stored);
  CheckMdb(mdb_put(txn_, RootTable(MDB_CREATE), &key, &data, 0), path_);
}

void LmdbKeyValue::Commit(const std::string& root) {
  isChanged_ = true;
  root_ = root;
  WriteRoot();
  CheckMdb(mdb_txn_commit(std::exchange(txn_, nullptr)), path_);
  if (unfinished_) {
    unfinished_->TakeName(false);
    unfinished_.reset();
  }
  file_ = path_;
  for (auto& [number, table] : tables_) table.isChanged = false;
  Begin();
}

// ---------------------------------------------------------------------------
// Tables

/// Null when the table is not there and flags do not make it.
LmdbKeyValue::OpenTable* LmdbKeyValue::Find(Table table, unsigned int flags) {
  const auto known = tables_.find(table);
  if (known != tables_.end()) return &known->second;
  MDB_dbi handle;
  const int code = mdb_dbi_open(txn_, std::to_string(table).c_str(), flags, &handle);
  if (code == MDB_NOTFOUND) return nullptr;
  CheckMdb(code, path_);
  CheckMdb(mdb_set_compare(txn_, handle, CompareKeys), path_);
  return &tables_.emplace(table, OpenTable{handle, "", false}).first->second;
}

void LmdbKeyValue::Range(Table table, std::string_view from, std::string_view to, const OnEntry& onEntry) {
  const OpenTable* const open = Find(table, 0);
  if (!open) return;
  std::string_view last;
  const auto take = [&](std::string_view key, std::string_view value) {
    if (!last.empty() && !Precedes(last, key)) FailDamaged();
    last = key;
    return (to.empty() || Precedes(key, to)) && onEntry(key, value);
  };
  Cursor cursor(*this, open->handle);
  MDB_val key = Val(from), data;
  bool found = cursor.Get(key, data, from.empty() ? MDB_FIRST : MDB_SET_RANGE);
  for (; found; found = cursor.Get(key, data, MDB_NEXT)) {
    if (!take(View(key), View(data))) return;
    if (open->isChanged) continue;
    // The others of the page are read where they lie; the cursor then goes on behind them.
    const MappedLeaf page(key.mv_data, pageSize_);
    const unsigned long place = page.PlaceOf(key.mv_data);
    unsigned long next = place + 1;
    for (std::string_view k, v; page.Read(next, k, v); ++next)
      if (!take(k, v)) return;
    if (next == place + 1) continue;
    key = Val(last);
    if (!cursor.Get(key, data, MDB_SET_KEY)) FailDamaged();
  }
}

void LmdbKeyValue::GetMany(Table table, const std::vector<std::string>& keys, const OnValue& onValue) {
  const OpenTable* const open = Find(table, 0);
  for (unsigned long i = 0; i < keys.size(); ++i) {
    MDB_val key = Val(keys[i]), data;
    const int code = open ? mdb_get(txn_, open->handle, &key, &data) : MDB_NOTFOUND;
    if (code != MDB_NOTFOUND) {
      CheckMdb(code, path_);
      RequireFits(data);
    }
    const std::string_view value = code == 0 ? View(data) : std::string_view();
    if (!onValue(i, code == 0 ? &value : nullptr)) return;
  }
}

void LmdbKeyValue::Put(Table table, std::string_view key, std::string_view value) {
  OpenTable& open = *Find(table, MDB_CREATE);
  open.isChanged = isChanged_ = true;
  MDB_val k = Val(key), data = Val(value);
  if (Precedes(open.last, key)) {
    // Keys that ascend are appended, which fills every page, as long as nothing is behind them.
    const int code = mdb_put(txn_, open.handle, &k, &data, MDB_APPEND);
    if (code != MDB_KEYEXIST) {
      CheckMdb(code, path_);
      open.last = key;
      return;
    }
    open.last.assign(kLongestKey, '\xFF');  // nothing is behind it: no more attempts
  }
  CheckMdb(mdb_put(txn_, open.handle, &k, &data, 0), path_);
  RequirePlace(open.handle, key);
}

/// Refuses to go on in a table where a new entry does not stand between its neighbours.
void LmdbKeyValue::RequirePlace(MDB_dbi handle, std::string_view key) {
  for (const MDB_cursor_op step : {MDB_PREV, MDB_NEXT}) {
    Cursor cursor(*this, handle);
    MDB_val found = Val(key), data;
    if (!cursor.Get(found, data, MDB_SET_KEY)) FailDamaged();
    if (!cursor.Get(found, data, step)) continue;
    if (step == MDB_PREV ? View(found) >= key : View(found) <= key) FailDamaged();
  }
}

void LmdbKeyValue::Remove(Table table, std::string_view key) {
  OpenTable* const open = Find(table, 0);
  if (!open) return;
  open->isChanged = isChanged_ = true;
  MDB_val k = Val(key);
  const int code = mdb_del(txn_, open->handle, &k, nullptr);
  if (code != MDB_NOTFOUND) CheckMdb(code, path_);
}

void LmdbKeyValue::Drop(Table table) {
  const OpenTable* const open = Find(table, 0);
  if (!open) return;
  isChanged_ = true;
  CheckMdb(mdb_drop(txn_, open->handle, 1), path_);
  tables_.erase(table);
}

// ---------------------------------------------------------------------------
// The whole file

void LmdbKeyValue::Check() {
  if (!isChanged_) CheckPages(FileOf(), snapshot_, path_);
}

void LmdbKeyValue::Compact() {
  NewFile copy(path_);
  mdb_txn_abort(std::exchange(txn_, nullptr));
  tables_.clear();
  const int descriptor = open(copy.Name().c_str(), O_WRONLY | O_CLOEXEC);
  const int code = mdb_env_copyfd2(env_, descriptor, MDB_CP_COMPACT);
  const bool kept = fsync(descriptor) == 0;
  close(descriptor);
  CheckMdb(code, path_);
  if (!kept) throw StoreFailure(path_ + ": " + std::strerror(errno));
  // The copy begins to count its transactions anew, and has to say so.
  file_ = copy.Name();
  OpenEnvironment(MDB_NOLOCK);
  Begin();
  WriteRoot();
  CheckMdb(mdb_txn_commit(std::exchange(txn_, nullptr)), path_);
  mdb_env_close(std::exchange(env_, nullptr));
  copy.TakeName(true);
  file_ = path_;
}

}  // namespace

std::unique_ptr<KeyValue> OpenLmdb(const std::string& path, KeyValue::Mode mode, Wait wait) {
  auto store = std::make_unique<LmdbKeyValue>(path, mode);
  store->OpenFile(wait);
  return store;
}

}  // namespace nxtm
