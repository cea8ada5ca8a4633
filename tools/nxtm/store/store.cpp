// The store over LMDB.

#include "store/store.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include "data/failure.h"
#include "nxlang.h"

namespace nxtm {

namespace {

constexpr unsigned long kMapSize = 512UL << 20;  // what a 32-bit process maps with ease
constexpr unsigned long kBlock = 256;            // records under one checksum
constexpr unsigned int kMaxTables = 1024;
const char kKind[] = "nxtm store 2";

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

unsigned long long AddToSum(unsigned long long sum, std::string_view bytes) {  // FNV-1a
  for (unsigned char byte : bytes) sum = (sum ^ byte) * 1099511628211ULL;
  return (sum ^ bytes.size()) * 1099511628211ULL;
}
constexpr unsigned long long kEmptySum = 14695981039346656037ULL;

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

unsigned long ToNumber(const std::string& text) { return std::strtoul(text.c_str(), nullptr, 10); }

}  // namespace

void CheckMdb(int code, const std::string& what) {
  if (code == MDB_MAP_FULL) throw Failure(what + ": the store would grow beyond its 512 MiB");
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

bool Store::Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

Store::Store(const std::string& path, const std::string& file, Mode mode)
    : path_(path), file_(file), mode_(mode) {
  try {
    CheckMdb(mdb_env_create(&env_), path);
    CheckMdb(mdb_env_set_mapsize(env_, kMapSize), path);
    CheckMdb(mdb_env_set_maxdbs(env_, kMaxTables), path);
    unsigned int flags = MDB_NOSUBDIR | MDB_NOLOCK | (mode == Mode::kRead ? MDB_RDONLY : 0);
    int code = mdb_env_open(env_, file.c_str(), flags, 0644);
    if (code == MDB_INVALID || code == MDB_VERSION_MISMATCH) throw Failure(path + ": not a store");
    CheckMdb(code, path);
    RequireWholeFile();
    CheckMdb(mdb_txn_begin(env_, nullptr, mode == Mode::kRead ? MDB_RDONLY : 0, &txn_), path);
  } catch (...) {
    mdb_env_close(env_);
    throw;
  }
}

Store::~Store() {
  if (txn_) mdb_txn_abort(txn_);
  mdb_env_close(env_);
  if (file_ != path_) unlink(file_.c_str());
}

std::unique_ptr<Store> Store::Create(const std::string& path, const Schema& schema) {
  const std::string file = path + ".new";
  unlink(file.c_str());  // of an import that was killed
  std::unique_ptr<Store> store(new Store(path, file, Mode::kWrite));
  store->schema_ = schema;
  store->meta_ = store->Table("meta", MDB_CREATE);
  store->records_ = store->Table("records", MDB_CREATE | MDB_INTEGERKEY);
  store->sums_ = store->Table("sums", MDB_CREATE | MDB_INTEGERKEY);
  store->blockSum_ = kEmptySum;
  store->SetMeta("kind", kKind);
  store->SetMeta("collation", std::to_string(NxCollationVersion()));
  store->SetMeta("schema", schema.Text());
  return store;
}

std::unique_ptr<Store> Store::Open(const std::string& path, Mode mode) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) throw Failure(path + ": there is no such store");
  if (!S_ISREG(status.st_mode) || status.st_size == 0) throw Failure(path + ": not a store");
  ExpectDamage(path);
  std::unique_ptr<Store> store(new Store(path, path, mode));
  store->ReadMeta();
  return store;
}

/// LMDB maps the file without asking whether all of its pages are there.
void Store::RequireWholeFile() {
  MDB_envinfo info;
  MDB_stat pages;
  CheckMdb(mdb_env_info(env_, &info), path_);
  CheckMdb(mdb_env_stat(env_, &pages), path_);
  if (FileSize() / pages.ms_psize < info.me_last_pgno + 1) throw Failure(path_ + ": the store is truncated");
  largest_ = mode_ == Mode::kRead ? FileSize() : kMapSize;
}

void Store::RequireFits(const MDB_val& value) const {
  if (value.mv_size > largest_) throw Failure(path_ + ": the store is damaged");
}

void Store::ReadMeta() {
  MDB_dbi table;
  if (mdb_dbi_open(txn_, "meta", 0, &table) != 0) throw Failure(path_ + ": not a store");
  meta_ = table;
  if (Meta("kind") != kKind) throw Failure(path_ + ": not a store of this format");
  records_ = Table("records", MDB_INTEGERKEY);
  sums_ = Table("sums", MDB_INTEGERKEY);
  schema_ = Schema::Parse(Meta("schema"), path_ + " (schema)");
  count_ = ToNumber(Meta("count"));
  for (unsigned long i = 0; i < schema_.Columns().size(); ++i) {
    for (bool hash : {false, true}) {
      IndexInfo index{i, hash, 0};
      std::string made = Meta(IndexName(index));
      if (made.empty()) continue;
      index.collation = ToNumber(made);
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
  if (++count_ % kBlock == 0) FinishBlock();
  return number;
}

void Store::FinishBlock() {
  auto block = static_cast<unsigned int>((count_ - 1) / kBlock);
  MDB_val key = ValOf(block), data = ValOf(blockSum_);
  CheckMdb(mdb_put(txn_, sums_, &key, &data, 0), path_);
  blockSum_ = kEmptySum;
}

void Store::Commit() {
  if (count_ % kBlock != 0) FinishBlock();
  SetMeta("count", std::to_string(count_));
  MDB_txn* txn = std::exchange(txn_, nullptr);
  CheckMdb(mdb_txn_commit(txn), path_);
  if (file_ != path_ && std::rename(file_.c_str(), path_.c_str()) != 0)
    throw Failure(path_ + ": cannot be written");
  file_ = path_;
}

std::string_view Store::Get(unsigned int number) {
  MDB_val key = ValOf(number), data;
  int code = mdb_get(txn_, records_, &key, &data);
  if (code == MDB_NOTFOUND) throw Failure(path_ + ": record " + std::to_string(number) + " is missing");
  CheckMdb(code, path_);
  RequireFits(data);
  return View(data);
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
    unsigned int block = number / kBlock;
    MDB_val blockKey = ValOf(block), expected;
    int code = mdb_get(txn_, sums_, &blockKey, &expected);
    if (code == 0) RequireFits(expected);
    if (code != 0 || expected.mv_size != sizeof sum || std::memcmp(expected.mv_data, &sum, sizeof sum) != 0)
      throw Failure(path_ + ": one of the records " + std::to_string(block * kBlock) + " to " +
                    std::to_string(number) + " is damaged: their checksum differs");
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
    if (index.attribute == attribute && index.hash == hash) return &index;
  return nullptr;
}

void Store::AddIndex(const IndexInfo& index) {
  SetMeta(IndexName(index), std::to_string(index.collation));
  for (IndexInfo& known : indexes_) {
    if (known.attribute != index.attribute || known.hash != index.hash) continue;
    known = index;
    return;
  }
  indexes_.push_back(index);
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
