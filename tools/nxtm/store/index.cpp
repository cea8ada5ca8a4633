// Indexes: their keys, building and checking.

#include "store/index.h"

#include <algorithm>

#include "data/failure.h"
#include "data/progress.h"
#include "nxlang.h"

namespace nxtm {

namespace {

std::string Describe(const Store& store, const IndexInfo& index) {
  return store.Path() + ": " + (index.hash ? "hash" : "ordered") + " index of '" +
         store.GetSchema().Columns()[index.attribute].name + "'";
}

[[noreturn]] void FailDamaged(const Store& store, const IndexInfo& index) {
  throw StoreFailure(Describe(store, index) + " is damaged; make it anew with: nxtm reindex " + store.Path());
}

char TypeOf(const Store& store, const IndexInfo& index) {
  return store.GetSchema().Columns()[index.attribute].type;
}

/// What an index orders by: the key of an entry without its number.
std::string OrderKey(const IndexInfo& index, char type, std::string_view image) {
  return index.hash ? HashKeyOf(type, image) : SortKeyOf(type, image);
}

/// Widens the edges of an index by an attribute that it has an entry of.
void WidenEdges(IndexInfo& index, char type, std::string_view sortKey, std::string_view image) {
  constexpr unsigned long kLongestEdge = 64;  // enough for an estimate
  if (index.hash) return;
  sortKey = sortKey.substr(0, kLongestEdge);
  const bool isLow = index.entries == 0 || sortKey < index.low.sortKey;
  const bool isHigh = index.entries == 0 || sortKey > index.high.sortKey;
  if (!isLow && !isHigh) return;
  const IndexEdge edge{std::string(sortKey), KeyImageOf(type, image)};
  if (isLow) index.low = edge;
  if (isHigh) index.high = edge;
}

}  // namespace

// ---------------------------------------------------------------------------
// Keys

std::string SortKeyOf(char type, std::string_view image) {
  std::string key(kLongestSortKey, '\0');
  const unsigned long size =
      NxSortKey(type, image.data(), kFormatNative, image.size(), 0, key.data(), key.size());
  if (size == 0) throw StoreFailure("a value without a sort key");
  key.resize(std::min(size, kLongestSortKey));
  return key;
}

Image KeyImageOf(char type, std::string_view image, unsigned char format) {
  if (!IsText(type)) return Image(image);
  Image key(NxINDEX_MAX_KEYLEN, '\0');
  const int size = Manager().Translate(type, key.data(), format | kFormatKey, key.size(),
                                       const_cast<char*>(image.data()), format, image.size(), 1);
  key.resize(static_cast<unsigned>(size));
  return key;
}

std::string HashKeyOf(char type, std::string_view image) {
  int error = 0;
  return NumberKey(static_cast<unsigned int>(
      Manager().Hash(type, image.size(), const_cast<char*>(image.data()), 1, kFormatNative, error)));
}

Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute) {
  for (unsigned long i = 0; i < attribute; ++i) Record::Take(schema.Columns()[i], record);
  return Record::Take(schema.Columns()[attribute], record);
}

void RequireCurrent(const Store& store, const IndexInfo& index) {
  if (!IsText(TypeOf(store, index)) || index.collation == NxCollationVersion()) return;
  throw Failure(Describe(store, index) + " was made with version " + std::to_string(index.collation) +
                " of the collation data, this is version " + std::to_string(NxCollationVersion()) +
                "; rebuild it with: nxtm reindex " + store.Path());
}

// ---------------------------------------------------------------------------
// Entries

unsigned long ReadEntries(Store& store, const IndexInfo& index, std::string_view from, std::string_view to,
                          std::vector<Entry>& entries) {
  unsigned long read = 0;
  if (index.entries != 0) store.Engine().RequireWhole(index.table, from, to);
  store.Engine().Range(index.table, from, to, [&](std::string_view key, std::string_view value) {
    ++read;
    const unsigned int number = key.size() > sizeof number ? NumberAtEnd(key) : ~0U;
    if (number >= store.Count()) {
      if (!store.Engine().LeftUnfinished()) FailDamaged(store, index);
      return true;
    }
    entries.push_back({number, SumOf(key)});
    if (value.empty()) return true;
    if (!store.IsCopy(number, value)) FailDamaged(store, index);
    store.KeepCopy(number, value);
    return true;
  });
  return read;
}

void RequireEntry(const Store& store, const IndexInfo& index, const Entry& entry, std::string_view record) {
  const Field field = FieldOf(store.GetSchema(), record, index.attribute);
  if (field.isNull ||
      SumOf(OrderKey(index, TypeOf(store, index), field.image) + NumberKey(entry.number)) != entry.sum)
    FailDamaged(store, index);
}

// ---------------------------------------------------------------------------
// Building

IndexBuilder::IndexBuilder(const Store& store, const IndexInfo& index)
    : schema_(store.GetSchema()), index_(index), type_(TypeOf(store, index)) {
  index_.entries = 0;
  index_.sum = 0;
}

/// The key of a record's entry, which the description then has, too; empty for a null attribute.
std::string IndexBuilder::TakeKey(unsigned int number, std::string_view record) {
  const Field field = FieldOf(schema_, record, index_.attribute);
  if (field.isNull) return "";
  std::string key = OrderKey(index_, type_, field.image);
  WidenEdges(index_, type_, key, field.image);
  key += NumberKey(number);
  ++index_.entries;
  index_.sum += SumOf(key);
  return key;
}

void IndexBuilder::Take(unsigned int number, std::string_view record) {
  const std::string key = TakeKey(number, record);
  if (key.empty()) return;
  entries_.push_back({0, keys_.size(), static_cast<unsigned short>(key.size())});
  keys_ += key;
}

void IndexBuilder::Add(Store& store, unsigned int number, std::string_view record) {
  if (!store.Engine().IsFar()) return Take(number, record);
  const std::string key = TakeKey(number, record);
  if (!key.empty()) store.Engine().Put(index_.table, key, store.CopyOf(number, record));
}

/// Has the memory fetch a key that is soon read: in their order keys lie anywhere.
void IndexBuilder::FetchAhead(Keys::iterator entry, Keys::iterator last) const {
  constexpr long kAhead = 8;
  if (last - entry > kAhead) __builtin_prefetch(keys_.data() + entry[kAhead].at);
}

/// Sorts entries whose keys have the same bytes before `from`: by the next eight bytes, which
/// compare as one number, and those that share them by what follows.
void IndexBuilder::Sort(Keys::iterator first, Keys::iterator last, unsigned long from) {
  for (auto entry = first; entry != last; ++entry) {
    FetchAhead(entry, last);
    const std::string_view next = KeyOf(*entry).substr(std::min<unsigned long>(from, entry->size));
    entry->part = 0;
    for (unsigned long i = 0; i < sizeof entry->part; ++i)
      entry->part = entry->part << 8 | (i < next.size() ? static_cast<unsigned char>(next[i]) : 0U);
  }
  std::sort(first, last, [](const Key& a, const Key& b) { return a.part < b.part; });
  while (first != last) {
    const auto end = std::find_if(first, last, [&](const Key& other) { return other.part != first->part; });
    if (end - first > 1) Sort(first, end, from + sizeof first->part);
    first = end;
  }
}

void IndexBuilder::Write(Store& store) {
  Sort(entries_.begin(), entries_.end(), 0);
  for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
    FetchAhead(entry, entries_.end());
    store.Engine().Put(index_.table, KeyOf(*entry), {});
  }
  index_.collation = NxCollationVersion();
  store.Describe(index_.attribute, index_.hash) = index_;
}

void IndexBuilder::Compare(Store& store) {
  const std::string where = Describe(store, index_);
  const IndexInfo& described = store.Describe(index_.attribute, index_.hash);
  if (described.entries != index_.entries || described.sum != index_.sum)
    throw StoreFailure(where + " is described wrong");
  Sort(entries_.begin(), entries_.end(), 0);
  auto expected = entries_.begin();
  store.Engine().Range(index_.table, {}, {}, [&](std::string_view key, std::string_view value) {
    if (expected == entries_.end()) throw StoreFailure(where + " has an entry too many");
    if (KeyOf(*expected) != key)
      throw StoreFailure(where + " has another entry in place of that of record " +
                         std::to_string(NumberAtEnd(KeyOf(*expected))));
    if (!value.empty() && !store.IsCopy(NumberAtEnd(key), value))
      throw StoreFailure(where + " has another copy of record " + std::to_string(NumberAtEnd(key)));
    ++expected;
    return true;
  });
  if (expected != entries_.end())
    throw StoreFailure(where + " ends before the entry of record " +
                       std::to_string(NumberAtEnd(KeyOf(*expected))));
}

namespace {

template <class Take>
void ForAll(Store& store, Take take) {
  Progress progress("indexing", store.Count());
  store.ForEach([&](unsigned int number, std::string_view record) {
    take(number, record);
    progress.At(number);
    return true;
  });
}

void WriteIndex(Store& store, const IndexInfo& index) {
  IndexBuilder builder(store, index);
  ForAll(store, [&](unsigned int number, std::string_view record) { builder.Add(store, number, record); });
  builder.Write(store);
}

}  // namespace

void BuildIndex(Store& store, unsigned long attribute, bool hash) {
  IndexInfo& index = store.Describe(attribute, hash);
  store.EmptyIndex(index);
  WriteIndex(store, index);
}

void RebuildIndexes(Store& store) {
  for (IndexInfo& index : store.Indexes()) store.EmptyIndex(index);
  store.Commit();  // the pages of the old ones serve the new ones
  for (const IndexInfo& index : store.Indexes()) WriteIndex(store, index);
}

void AddToIndexes(Store& store, unsigned int number, std::string_view record,
                  const std::vector<Field>& fields) {
  const std::string_view copy = store.CopyOf(number, record);
  for (IndexInfo& index : store.Indexes()) {
    const Field& field = fields[index.attribute];
    if (field.isNull || !index.IsMade()) continue;
    const char type = TypeOf(store, index);
    std::string key = OrderKey(index, type, field.image);
    WidenEdges(index, type, key, field.image);
    key += NumberKey(number);
    store.Engine().Put(index.table, key, copy);
    ++index.entries;
    index.sum += SumOf(key);
  }
}

void RemoveRecords(Store& store, const std::vector<unsigned int>& numbers) {
  const unsigned long count = store.Count();
  std::vector<bool> made;
  for (const IndexInfo& index : store.Indexes()) made.push_back(index.IsMade());
  const KeyValue::Table records = store.BeginRecordsAnew();
  std::vector<IndexBuilder> builders;
  for (unsigned long i = 0; i < made.size(); ++i)
    if (made[i]) builders.emplace_back(store, store.Indexes()[i]);
  auto next = numbers.begin();
  store.ForEachOf(records, count, [&](unsigned int number, std::string_view record) {
    if (next != numbers.end() && *next == number) return ++next, true;
    const unsigned int now = store.Append(record);
    for (IndexBuilder& builder : builders) builder.Add(store, now, record);
    return true;
  });
  for (IndexBuilder& builder : builders) builder.Write(store);
  store.Engine().Drop(records);
}

// ---------------------------------------------------------------------------
// Checking

void CheckIndex(Store& store, const IndexInfo& index) {
  RequireCurrent(store, index);
  IndexBuilder expected(store, index);
  ForAll(store, [&](unsigned int number, std::string_view record) { expected.Take(number, record); });
  expected.Compare(store);
}

}  // namespace nxtm
