// The store over LMDB.

#include "store/store.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "data/failure.h"
#include "nxlang.h"

namespace nxtm {

namespace {

// A store is mapped whole. The address space of a process gives about 2 GiB in one piece,
// or less where much of it is taken.
constexpr unsigned long kMapSizes[] = {2047UL << 20, 1536UL << 20, 1024UL << 20, 512UL << 20};
constexpr unsigned long kBlock = 256;  // records under one checksum
constexpr unsigned int kMaxTables = 4096;
constexpr unsigned long kMaxIndexes = 2000;  // of two tables each at most
const char kKind[] = "nxtm store 3";

// ---------------------------------------------------------------------------
// Damage
//
// LMDB trusts its pages. Where one is damaged it may follow a wild pointer or stop
// the process; both end here, with the message that the user needs.

char damageMessage[512];

void OnDamage(int) {
  ssize_t ignored = write(STDERR_FILENO, damageMessage, std::strlen(damageMessage));
  static_cast<void>(ignored);
  _exit(2);
}

void ExpectDamage(const std::string& path) {
  std::snprintf(damageMessage, sizeof damageMessage, "nxtm: %s: the store is damaged\n", path.c_str());
  for (int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE}) {
    struct sigaction action {};
    action.sa_handler = OnDamage;
    sigaction(signal, &action, nullptr);
  }
}

// ---------------------------------------------------------------------------
// Order of index keys

template <int kType>
long Compare(const MDB_val* a, const MDB_val* b, int& error) {
  constexpr unsigned char kFormat = kType == kStringTypeId ? kFormatKey | kFormatNative : kFormatNative;
  return Manager().Cmp(kType, a->mv_size, a->mv_data, b->mv_size, b->mv_data, kWildcardsOff, 1, kFormat,
                       error);
}

template <int kType>
int CompareKeys(const MDB_val* a, const MDB_val* b) {
  int error;
  long order = Compare<kType>(a, b, error);
  // Keys of alphabetic strings compare as far as the first one reaches.
  if (order == 0 && error == kPastBuffer) order = -Compare<kType>(b, a, error);
  return order < 0 ? -1 : order > 0;
}

template <std::size_t... kTypes>
constexpr auto ComparisonTable(std::index_sequence<kTypes...>) {
  return std::array<MDB_cmp_func*, sizeof...(kTypes)>{CompareKeys<static_cast<int>(kTypes)>...};
}
constexpr auto kComparisons = ComparisonTable(std::make_index_sequence<kTypeCount>());

const char kLockSuffix[] = "-lock";  // of the file beside a store that LMDB keeps its locks in

/// Refuses a path at which there is no store, with the reason.
void RequireStoreFile(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0)
    throw Failure(path + ": " + (errno == ENOENT ? "there is no such store" : std::strerror(errno)));
  if (stat(path.c_str(), &status) != 0)
    throw Failure(path + ": a link that cannot be followed: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode) || status.st_size == 0) throw Failure(path + ": not a store");
}

unsigned long ToNumber(const std::string& text) { return std::strtoul(text.c_str(), nullptr, 10); }

}  // namespace

unsigned long long AddToSum(unsigned long long sum, std::string_view bytes) {  // FNV-1a
  for (unsigned char byte : bytes) sum = (sum ^ byte) * 1099511628211ULL;
  return (sum ^ bytes.size()) * 1099511628211ULL;
}

void CheckMdb(int code, const std::string& what) {
  if (code == MDB_MAP_FULL)
    throw Failure(what + ": the store would grow beyond what this process can map (about 2 GiB)");
  if (code == EIO) throw Failure(what + ": cannot be read or written; is there space left on the device?");
  if (code != 0) throw Failure(what + ": " + mdb_strerror(code));
}

bool Cursor::Get(MDB_val& key, MDB_val& data, MDB_cursor_op op) {
  int code = mdb_cursor_get(cursor_, &key, &data, op);
  if (code == MDB_NOTFOUND) return false;
  CheckMdb(code, store_.Path());
  store_.RequireFits(key);
  store_.RequireFits(data);
  return true;
}

void Store::OpenEnvironment(unsigned int flags) {
  int code = ENOMEM;
  for (unsigned long size : kMapSizes) {
    mdb_env_close(env_);
    env_ = nullptr;
    CheckMdb(mdb_env_create(&env_), path_);
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
}

void Store::Begin() {
  CheckMdb(mdb_txn_begin(env_, nullptr, mode_ == Mode::kRead ? MDB_RDONLY : 0, &txn_), path_);
}

Store::~Store() {
  if (txn_) mdb_txn_abort(txn_);
  mdb_env_close(env_);
  // A lock file whose store was never made is of no use to others.
  if (IsNew()) unlink((path_ + kLockSuffix).c_str());
}

void Store::LockForWriting(Wait wait) {
  writing_ = std::make_unique<FileLock>(path_ + kLockSuffix, FileLock::Kind::kExclusive, wait, path_, true);
}

std::unique_ptr<Store> Store::Open(const std::string& path, Mode mode, Wait wait) {
  RequireStoreFile(path);
  std::unique_ptr<Store> store(new Store(path, mode));
  if (mode != Mode::kRead) store->LockForWriting(wait);
  store->OpenExisting(wait);
  return store;
}

std::unique_ptr<Store> Store::OpenOrCreate(const std::string& path, const Schema& schema, Wait wait) {
  std::unique_ptr<Store> store(new Store(path, Mode::kWrite));
  store->LockForWriting(wait);
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 && errno == ENOENT) {
    store->MakeNew(schema);
  } else {
    RequireStoreFile(path);
    store->OpenExisting(wait);
  }
  return store;
}

void Store::OpenExisting(Wait wait) {
  const FileLock::Kind kind = mode_ == Mode::kAlone ? FileLock::Kind::kExclusive : FileLock::Kind::kShared;
  using_ = std::make_unique<FileLock>(path_, kind, wait, path_);
  ExpectDamage(path_);
  OpenEnvironment(mode_ == Mode::kRead ? MDB_RDONLY : 0);
  int dead;
  mdb_reader_check(env_, &dead);  // pages that a killed process was reading can be used again
  RequireWholeFile();
  BeginFromSnapshot();
  ReadMeta();
}

/// Begins a transaction and finds the state of the file that it sees, which later ones of
/// other processes may hide.
void Store::BeginFromSnapshot() {
  int file;
  CheckMdb(mdb_env_get_fd(env_, &file), path_);
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    Begin();
    const auto seen = static_cast<std::uint32_t>(mdb_txn_id(txn_)) - (mode_ == Mode::kRead ? 0 : 1);
    const std::optional<Snapshot> found = FindSnapshot(file, seen);
    if (found) {
      snapshot_ = *found;
      return;
    }
    mdb_txn_abort(std::exchange(txn_, nullptr));
  }
  throw Failure(path_ + ": the store is damaged");
}

void Store::CheckFile() const {
  int file;
  CheckMdb(mdb_env_get_fd(env_, &file), path_);
  CheckPages(file, snapshot_, path_);
}

void Store::MakeNew(const Schema& schema) {
  unfinished_ = std::make_unique<NewFile>(path_);
  file_ = unfinished_->Name();
  OpenEnvironment(MDB_NOLOCK);  // nobody else knows of it
  Begin();
  schema_ = schema;
  meta_ = Table("meta", MDB_CREATE);
  records_ = Table("records", MDB_CREATE | MDB_INTEGERKEY);
  sums_ = Table("sums", MDB_CREATE | MDB_INTEGERKEY);
  blockSum_ = kEmptySum;
  SetMeta("kind", kKind);
  SetMeta("collation", std::to_string(NxCollationVersion()));
  SetMeta("schema", schema.Text());
}

/// LMDB maps the file without asking whether all of its pages are there.
void Store::RequireWholeFile() {
  MDB_envinfo info;
  MDB_stat pages;
  CheckMdb(mdb_env_info(env_, &info), path_);
  CheckMdb(mdb_env_stat(env_, &pages), path_);
  if (FileSize() / pages.ms_psize < info.me_last_pgno + 1) throw Failure(path_ + ": the store is truncated");
  if (mode_ == Mode::kRead) largest_ = FileSize();
}

void Store::RequireFits(const MDB_val& value) const {
  if (value.mv_size > largest_) throw Failure(path_ + ": the store is damaged");
}

void Store::ReadMeta() {
  MDB_dbi table;
  if (mdb_dbi_open(txn_, "meta", 0, &table) != 0) throw Failure(path_ + ": not a store");
  meta_ = table;
  if (Meta("kind") != kKind) throw Failure(path_ + ": not a store of this format");
  // A meta page whose transaction was changed would bring back an older state.
  if (Meta("transaction") != std::to_string(snapshot_.transaction))
    throw Failure(path_ + ": the store is damaged: a meta page has another transaction's number");
  OpenTables();
  schema_ = Schema::Parse(Meta("schema"), path_ + " (schema)");
  count_ = ToNumber(Meta("count"));
  for (unsigned long i = 0; i < schema_.Columns().size(); ++i) {
    for (bool hash : {false, true}) {
      IndexInfo index{i, hash};
      std::string made = Meta(IndexName(index));
      if (made.empty()) continue;
      char* rest = nullptr;
      index.collation = std::strtoul(made.c_str(), &rest, 10);
      index.sum = std::strtoull(rest, nullptr, 10);
      indexes_.push_back(index);
    }
  }
  blockSum_ = kEmptySum;
  if (count_ % kBlock == 0) return;
  auto block = static_cast<unsigned int>(count_ / kBlock);
  MDB_val key = ValOf(block), data;
  CheckMdb(mdb_get(txn_, sums_, &key, &data), path_ + ": checksum");
  RequireFits(data);
  if (data.mv_size == sizeof blockSum_) std::memcpy(&blockSum_, data.mv_data, sizeof blockSum_);
}

void Store::OpenTables() {
  meta_ = Table("meta", 0);
  records_ = Table("records", MDB_INTEGERKEY);
  sums_ = Table("sums", MDB_INTEGERKEY);
}

MDB_dbi Store::Table(const std::string& name, unsigned int flags) {
  MDB_dbi table;
  CheckMdb(mdb_dbi_open(txn_, name.c_str(), flags, &table), path_ + ": table " + name);
  return table;
}

std::string Store::Meta(const std::string& key) {
  MDB_val k = Val(key), data;
  int code = mdb_get(txn_, meta_, &k, &data);
  if (code == MDB_NOTFOUND) return "";
  CheckMdb(code, path_);
  RequireFits(data);
  std::string value(View(data));
  unsigned long long sum = 0;
  if (value.size() >= sizeof sum) {
    value.resize(value.size() - sizeof sum);
    std::memcpy(&sum, View(data).data() + value.size(), sizeof sum);
  }
  if (sum != AddToSum(kEmptySum, value)) throw Failure(path_ + ": the store's " + key + " is damaged");
  return value;
}

void Store::SetMeta(const std::string& key, const std::string& value) {
  unsigned long long sum = AddToSum(kEmptySum, value);
  std::string stored = value + std::string(reinterpret_cast<const char*>(&sum), sizeof sum);
  MDB_val k = Val(key), data = Val(stored);
  CheckMdb(mdb_put(txn_, meta_, &k, &data, 0), path_);
}

unsigned long long Store::FileSize() const {
  struct stat status {};
  return stat(file_.c_str(), &status) == 0 ? static_cast<unsigned long long>(status.st_size) : 0;
}

unsigned int Store::Append(const std::string& record) {
  auto number = static_cast<unsigned int>(count_);
  MDB_val key = ValOf(number), data = Val(record);
  CheckMdb(mdb_put(txn_, records_, &key, &data, MDB_APPEND), path_);
  blockSum_ = AddToSum(blockSum_, record);
  if (++count_ % kBlock == 0) {
    NoteBlockSum();
    blockSum_ = kEmptySum;
  }
  return number;
}

/// Notes the sum of the block that the last record is in, as far as it goes.
void Store::NoteBlockSum() {
  auto block = static_cast<unsigned int>((count_ - 1) / kBlock);
  MDB_val key = ValOf(block), data = ValOf(blockSum_);
  CheckMdb(mdb_put(txn_, sums_, &key, &data, 0), path_);
}

void Store::WriteTransaction() {
  if (count_ % kBlock != 0) NoteBlockSum();
  SetMeta("count", std::to_string(count_));
  for (const IndexInfo& index : indexes_) DescribeIndex(index);
  SetMeta("transaction", std::to_string(mdb_txn_id(txn_)));
  MDB_txn* txn = std::exchange(txn_, nullptr);
  CheckMdb(mdb_txn_commit(txn), path_);
}

void Store::Checkpoint() {
  WriteTransaction();
  Begin();
}

void Store::Commit() {
  WriteTransaction();
  if (unfinished_) unfinished_->TakeName(false);
  file_ = path_;
}

void Store::Compact() {
  NewFile copy(path_);
  mdb_txn_abort(std::exchange(txn_, nullptr));
  const int descriptor = open(copy.Name().c_str(), O_WRONLY | O_CLOEXEC);
  const int code = mdb_env_copyfd2(env_, descriptor, MDB_CP_COMPACT);
  const bool kept = fsync(descriptor) == 0;
  close(descriptor);
  CheckMdb(code, path_);
  if (!kept) throw Failure(path_ + ": " + std::strerror(errno));
  // The copy begins to count its transactions anew, and has to say so.
  file_ = copy.Name();
  OpenEnvironment(MDB_NOLOCK);
  Begin();
  OpenTables();
  WriteTransaction();
  mdb_env_close(std::exchange(env_, nullptr));
  copy.TakeName(true);
  file_ = path_;
}

std::string_view Store::ReadRecord(unsigned int number) {
  MDB_val key = ValOf(number), data;
  int code = mdb_get(txn_, records_, &key, &data);
  if (code == MDB_NOTFOUND) throw Failure(path_ + ": record " + std::to_string(number) + " is missing");
  CheckMdb(code, path_);
  RequireFits(data);
  return View(data);
}

std::string_view Store::Get(unsigned int number) {
  RequireBlock(number / kBlock);
  return ReadRecord(number);
}

/// Reads the block of a record once: who relies on one of its records relies on its sum.
void Store::RequireBlock(unsigned int block) {
  soundBlocks_.resize(count_ / kBlock + 1);
  if (soundBlocks_[block]) return;
  const auto first = static_cast<unsigned int>(block * kBlock);
  const auto last = static_cast<unsigned int>(std::min<unsigned long>(first + kBlock, count_) - 1);
  unsigned long long sum = kEmptySum;
  for (unsigned int number = first; number <= last; ++number) sum = AddToSum(sum, ReadRecord(number));
  RequireBlockSum(block, sum, last);
  soundBlocks_[block] = true;
}

void Store::RequireBlockSum(unsigned int block, unsigned long long sum, unsigned int last) {
  MDB_val key = ValOf(block), expected;
  const int code = mdb_get(txn_, sums_, &key, &expected);
  if (code == 0) RequireFits(expected);
  if (code != 0 || expected.mv_size != sizeof sum || std::memcmp(expected.mv_data, &sum, sizeof sum) != 0)
    throw Failure(path_ + ": one of the records " + std::to_string(block * kBlock) + " to " +
                  std::to_string(last) + " is damaged: their checksum differs");
}

void Store::ForEach(const std::function<void(unsigned int, std::string_view)>& onRecord) {
  Cursor cursor(*this, records_);
  MDB_val key, data;
  unsigned int number = 0;
  unsigned long long sum = kEmptySum;
  for (; cursor.Get(key, data, MDB_NEXT); ++number) {
    unsigned int stored = 0;
    if (key.mv_size == sizeof stored) std::memcpy(&stored, key.mv_data, sizeof stored);
    if (key.mv_size != sizeof stored || stored != number)
      throw Failure(path_ + ": record " + std::to_string(number) + " is missing");
    onRecord(number, View(data));
    sum = AddToSum(sum, View(data));
    if ((number + 1) % kBlock != 0 && number + 1 != count_) continue;
    RequireBlockSum(number / kBlock, sum, number);
    sum = kEmptySum;
  }
  if (number != count_)
    throw Failure(path_ + ": " + std::to_string(number) + " of " + std::to_string(count_) +
                  " records are there");
}

std::string Store::IndexName(const IndexInfo& index) const {
  return (index.hash ? "h:" : "o:") + schema_.Columns()[index.attribute].name;
}

const IndexInfo* Store::FindIndex(unsigned long attribute, bool hash) const {
  for (const IndexInfo& index : indexes_)
    if (index.attribute == attribute && index.hash == hash && index.IsMade()) return &index;
  return nullptr;
}

void Store::DescribeIndex(const IndexInfo& index) {
  SetMeta(IndexName(index), std::to_string(index.collation) + " " + std::to_string(index.sum));
}

IndexInfo* Store::FindDescribed(const IndexInfo& index) {
  for (IndexInfo& known : indexes_)
    if (known.attribute == index.attribute && known.hash == index.hash) return &known;
  return nullptr;
}

void Store::AddIndex(const IndexInfo& index) {
  if (IndexInfo* known = FindDescribed(index)) {
    *known = index;
    return;
  }
  if (indexes_.size() == kMaxIndexes)
    throw Failure(path_ + ": a store has at most " + std::to_string(kMaxIndexes) + " indexes");
  indexes_.push_back(index);
}

void Store::AddToIndexSum(const IndexInfo& index, unsigned long long entry) {
  FindDescribed(index)->sum += entry;
}

bool Store::DropIndex(const IndexInfo& index) {
  const IndexInfo* known = FindDescribed(index);
  if (!known) return false;
  indexes_.erase(indexes_.begin() + (known - indexes_.data()));
  CheckMdb(mdb_drop(txn_, IndexTable(index, false), 1), path_);
  const std::string apart = "a:" + schema_.Columns()[index.attribute].name;
  MDB_dbi table;
  if (!index.hash && mdb_dbi_open(txn_, apart.c_str(), MDB_INTEGERKEY, &table) == 0)
    CheckMdb(mdb_drop(txn_, table, 1), path_);
  const std::string name = IndexName(index);
  MDB_val key = Val(name);
  CheckMdb(mdb_del(txn_, meta_, &key, nullptr), path_);
  return true;
}

MDB_dbi Store::IndexTable(const IndexInfo& index, bool fresh) {
  unsigned int flags = MDB_DUPSORT | MDB_DUPFIXED | MDB_INTEGERDUP;
  if (index.hash) flags |= MDB_INTEGERKEY;
  MDB_dbi table = Table(IndexName(index), flags | (fresh ? MDB_CREATE : 0));
  if (!index.hash) {
    auto type = static_cast<unsigned char>(schema_.Columns()[index.attribute].type);
    CheckMdb(mdb_set_compare(txn_, table, kComparisons[type]), path_);
  }
  if (fresh) CheckMdb(mdb_drop(txn_, table, 0), path_);
  return table;
}

MDB_dbi Store::ApartTable(const IndexInfo& index, bool fresh) {
  const std::string& name = schema_.Columns()[index.attribute].name;
  MDB_dbi table = Table("a:" + name, MDB_INTEGERKEY | (fresh ? MDB_CREATE : 0));
  if (fresh) CheckMdb(mdb_drop(txn_, table, 0), path_);
  return table;
}

}  // namespace nxtm
