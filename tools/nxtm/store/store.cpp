// The store over an engine: its root and its records.

#include "store/store.h"

#ifndef __clang_analyzer__  // reports what a text of no bytes would read
#define XXH_INLINE_ALL      // of short records a call is much of the checksum
#endif
#include <xxhash.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "data/failure.h"
#include "nxlang.h"
#include "store/salvage.h"

namespace nxtm {

namespace {

const char kKind[] = "nxtm store 4";
constexpr unsigned long kMaxIndexes = 2000;
constexpr unsigned long kSumSize = sizeof(unsigned int);

/// What a record's checksum begins with, so that it holds in its own place alone.
unsigned int SeedOf(KeyValue::Table records, unsigned int number) { return records * 2654435761U + number; }

/// Whether a value is that of a record, by its checksum.
bool IsSound(KeyValue::Table records, unsigned int number, std::string_view value) {
  unsigned int sum = 0;
  if (value.size() < kSumSize) return false;
  std::memcpy(&sum, value.data(), kSumSize);
  return sum == SumOf(value.substr(kSumSize), SeedOf(records, number));
}

std::string HexOrNone(std::string_view bytes) { return bytes.empty() ? "-" : Hex(bytes, ""); }
std::string FromHexOrNone(const std::string& text) { return text == "-" ? "" : FromHex(text); }

}  // namespace

std::string NumberKey(unsigned int number) {
  return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
          static_cast<char>(number)};
}

unsigned int NumberAtEnd(std::string_view key) {
  unsigned int number;
  std::memcpy(&number, key.data() + key.size() - sizeof number, sizeof number);
  return __builtin_bswap32(number);
}

unsigned int SumOf(std::string_view bytes, unsigned int seed) {
  return XXH32(bytes.data(), bytes.size(), seed);
}

// ---------------------------------------------------------------------------
// Opening, and the root

Store::Store(const std::string& path, std::unique_ptr<KeyValue> engine)
    : path_(path), engine_(std::move(engine)), collation_(NxCollationVersion()) {}

std::string Store::Kind() { return kKind; }

std::unique_ptr<Store> Store::Open(const std::string& path, Mode mode, Wait wait) {
  std::unique_ptr<Store> store(new Store(path, KeyValue::Open(path, mode, wait)));
  store->ReadRoot();
  if (mode != Mode::kRead) store->SweepUnfinished();
  return store;
}

std::unique_ptr<Store> Store::OpenOrCreate(const std::string& path, const Schema& schema, Wait wait) {
  std::unique_ptr<Store> store(new Store(path, KeyValue::Open(path, Mode::kCreate, wait)));
  if (store->IsNew())
    store->schema_ = schema;
  else
    store->ReadRoot();
  store->SweepUnfinished();
  return store;
}

std::string Store::RootText() const {
  std::ostringstream text;
  text << kKind << "\ncollation " << collation_ << "\nrecords " << records_ << ' ' << count_ << "\ntables "
       << nextTable_ << '\n';
  for (const IndexInfo& index : indexes_) {
    text << "index " << index.attribute << ' ' << index.hash << ' ' << index.collation << ' ' << index.table
         << ' ' << index.entries << ' ' << index.sum;
    for (const IndexEdge* edge : {&index.low, &index.high})
      text << ' ' << HexOrNone(edge->sortKey) << ' ' << HexOrNone(edge->keyImage);
    text << '\n';
  }
  text << "schema\n" << schema_.Text();
  return text.str() + "sum " + std::to_string(SumOf(text.str())) + '\n';
}

namespace {

/// Where the line with the checksum of a root begins; none where it is not the root's.
unsigned long EndOfRoot(const std::string& root) {
  const unsigned long end = std::min(root.rfind("sum "), root.size());
  return root.substr(end) == "sum " + std::to_string(SumOf(root.substr(0, end))) + '\n' ? end : root.npos;
}

}  // namespace

std::unique_ptr<Store> Store::OpenDamaged(const std::string& path) {
  const auto isRoot = [](const std::string& root) { return EndOfRoot(root) != root.npos; };
  std::unique_ptr<Store> store(new Store(path, nxtm::OpenDamaged(path, isRoot)));
  store->ReadRoot();
  return store;
}

unsigned long Store::ForEachSound(const OnRecord& onRecord) {
  unsigned int next = 0;
  unsigned long found = 0;
  engine_->Range(records_, {}, {}, [&](std::string_view key, std::string_view value) {
    const unsigned int number = NumberAtEnd(key);
    if (number < next || number >= count_ || !IsSound(records_, number, value)) return true;
    next = number + 1;
    ++found;
    return onRecord(number, value.substr(kSumSize));
  });
  return found;
}

void Store::ReadRoot() {
  const std::string& root = engine_->Root();
  const unsigned long end = EndOfRoot(root);
  if (end == root.npos) throw StoreFailure(path_ + ": the store's root is damaged");
  if (root.rfind(kKind, 0) != 0)
    throw Failure(path_ + ": a store of another version; make it anew with nxtm import");
  std::istringstream text(root.substr(0, end));
  std::string line, word;
  std::getline(text, line);
  while (text >> word && word != "schema") {
    if (word == "records") {
      text >> records_ >> count_;
    } else if (word == "tables") {
      text >> nextTable_;
    } else if (word == "collation") {
      text >> collation_;
    } else if (word == "index") {
      IndexInfo index;
      text >> index.attribute >> index.hash >> index.collation >> index.table >> index.entries >> index.sum;
      for (IndexEdge* edge : {&index.low, &index.high}) {
        std::string sortKey, keyImage;
        text >> sortKey >> keyImage;
        *edge = {FromHexOrNone(sortKey), FromHexOrNone(keyImage)};
      }
      indexes_.push_back(std::move(index));
    } else {
      text >> word;
    }
  }
  std::getline(text, line);
  const auto at = static_cast<unsigned long>(text.tellg());
  schema_ = Schema::Parse(root.substr(at, end - at), path_ + " (schema)");
}

/// Takes away what a writer that was ended left behind: records and entries of numbers that
/// do not count, and tables of which the root says nothing.
void Store::SweepUnfinished() {
  if (!engine_->LeftUnfinished()) return;
  const auto removeNewIn = [this](KeyValue::Table table, std::string_view from) {
    std::vector<std::string> keys;
    engine_->Range(table, from, {}, [&](std::string_view key, std::string_view) {
      if (key.size() >= sizeof(unsigned int) && NumberAtEnd(key) >= count_) keys.emplace_back(key);
      return true;
    });
    for (const std::string& key : keys) engine_->Remove(table, key);
  };
  removeNewIn(records_, NumberKey(static_cast<unsigned int>(count_)));
  std::vector<KeyValue::Table> used{records_};
  for (const IndexInfo& index : indexes_) {
    removeNewIn(index.table, {});
    used.push_back(index.table);
  }
  // The writer may have begun as many tables as it takes to make all anew.
  nextTable_ += static_cast<KeyValue::Table>(indexes_.size()) + 2;
  for (KeyValue::Table table = 0; table < nextTable_; ++table)
    if (std::find(used.begin(), used.end(), table) == used.end()) engine_->Drop(table);
  if (!IsNew()) Commit();
}

// ---------------------------------------------------------------------------
// Records

void Store::TakeValue(unsigned int number, std::string_view record) {
  const unsigned int sum = SumOf(record, SeedOf(records_, number));
  value_.assign(reinterpret_cast<const char*>(&sum), kSumSize);
  value_ += record;
}

unsigned int Store::Append(std::string_view record) {
  const auto number = static_cast<unsigned int>(count_);
  TakeValue(number, record);
  engine_->Put(records_, NumberKey(number), value_);
  ++count_;
  return number;
}

/// The bytes of a record, out of its value.
std::string_view Store::CheckedRecord(KeyValue::Table records, unsigned int number,
                                      std::string_view value) const {
  if (IsSound(records, number, value)) return value.substr(kSumSize);
  throw StoreFailure(path_ + ": record " + std::to_string(number) + " is damaged: its checksum differs");
}

void Store::ForEach(const OnRecord& onRecord) { ForEachOf(records_, count_, onRecord); }

void Store::ForEachOf(KeyValue::Table records, unsigned long count, const OnRecord& onRecord) {
  unsigned int number = 0;
  bool ended = false;
  const auto onEntry = [&](std::string_view key, std::string_view value) {
    if (key.size() != sizeof number || NumberAtEnd(key) != number)
      throw StoreFailure(path_ + ": record " + std::to_string(number) + " is missing");
    ended = !onRecord(number, CheckedRecord(records, number, value));
    ++number;
    return !ended;
  };
  engine_->Range(records, {}, NumberKey(static_cast<unsigned int>(count)), onEntry);
  if (!ended && number != count)
    throw StoreFailure(path_ + ": " + std::to_string(number) + " of " + std::to_string(count) +
                       " records are there");
}

std::string_view Store::CopyOf(unsigned int number, std::string_view record) {
  constexpr unsigned long kLongestCopied = 256;
  if (!engine_->IsFar() || record.size() > kLongestCopied) return {};
  TakeValue(number, record);
  return value_;
}

bool Store::IsCopy(unsigned int number, std::string_view value) const {
  return IsSound(records_, number, value);
}

bool Store::KeepCopy(unsigned int number, std::string_view value) {
  constexpr unsigned long kMostBytes = 32UL << 20;
  constexpr unsigned long kBeside = 64;  // bytes that the map takes for an element
  if (copiedBytes_ + value.size() + kBeside > kMostBytes) return false;
  if (copies_.emplace(number, value).second) copiedBytes_ += value.size() + kBeside;
  return true;
}

void Store::GetMany(const std::vector<unsigned int>& numbers, const OnRecord& onRecord) {
  std::vector<std::string> keys;  // of the records that are not there as copies
  std::vector<unsigned long> places;
  for (unsigned long i = 0; i < numbers.size(); ++i) {
    if (copies_.count(numbers[i]) != 0) continue;
    keys.push_back(NumberKey(numbers[i]));
    places.push_back(i);
  }
  unsigned long next = 0;
  const auto pass = [&](std::string_view value) {
    const unsigned int number = numbers[next++];
    return onRecord(number, CheckedRecord(records_, number, value));
  };
  const auto passCopies = [&](unsigned long end) {
    while (next < end)
      if (!pass(copies_.at(numbers[next]))) return false;
    return true;
  };
  bool goesOn = true;
  if (!keys.empty())
    engine_->GetMany(records_, keys, [&](unsigned long key, const std::string_view* value) {
      goesOn = passCopies(places[key]);
      if (!goesOn) return false;
      if (!value) throw StoreFailure(path_ + ": record " + std::to_string(numbers[next]) + " is missing");
      return goesOn = pass(*value);
    });
  if (goesOn) passCopies(numbers.size());
  copies_.clear();
  copiedBytes_ = 0;
}

KeyValue::Table Store::BeginRecordsAnew() {
  const KeyValue::Table before = records_;
  records_ = nextTable_++;
  count_ = 0;
  for (IndexInfo& index : indexes_) EmptyIndex(index);
  return before;
}

// ---------------------------------------------------------------------------
// Descriptions of indexes

const IndexInfo* Store::FindIndex(unsigned long attribute, bool hash) const {
  for (const IndexInfo& index : indexes_)
    if (index.attribute == attribute && index.hash == hash && index.IsMade()) return &index;
  return nullptr;
}

IndexInfo* Store::FindDescribed(unsigned long attribute, bool hash) {
  for (IndexInfo& known : indexes_)
    if (known.attribute == attribute && known.hash == hash) return &known;
  return nullptr;
}

IndexInfo& Store::Describe(unsigned long attribute, bool hash) {
  if (IndexInfo* const known = FindDescribed(attribute, hash)) return *known;
  if (indexes_.size() == kMaxIndexes)
    throw Failure(path_ + ": a store has at most " + std::to_string(kMaxIndexes) + " indexes");
  IndexInfo index;
  index.attribute = attribute;
  index.hash = hash;
  const auto behind = std::find_if(indexes_.begin(), indexes_.end(), [&](const IndexInfo& known) {
    return std::make_pair(known.attribute, known.hash) > std::make_pair(attribute, hash);
  });
  return *indexes_.insert(behind, index);
}

void Store::EmptyIndex(IndexInfo& index) {
  if (index.table != 0) engine_->Drop(index.table);
  IndexInfo empty;
  empty.attribute = index.attribute;
  empty.hash = index.hash;
  empty.table = nextTable_++;
  index = empty;
}

bool Store::DropIndex(unsigned long attribute, bool hash) {
  const IndexInfo* const known = FindDescribed(attribute, hash);
  if (!known) return false;
  if (known->table != 0) engine_->Drop(known->table);
  indexes_.erase(indexes_.begin() + (known - indexes_.data()));
  return true;
}

}  // namespace nxtm
