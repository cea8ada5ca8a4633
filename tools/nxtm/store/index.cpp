// Indexes: their keys, building and checking.

#include "store/index.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "data/failure.h"
#include "data/progress.h"
#include "nxlang.h"

namespace nxtm {

namespace {

std::string Describe(const Store& store, const IndexInfo& index) {
  return store.Path() + ": " + (index.hash ? "hash" : "ordered") + " index of '" +
         store.GetSchema().Columns()[index.attribute].name + "'";
}

bool HasApart(const Store& store, const IndexInfo& index) {
  return !index.hash && IsText(store.GetSchema().Columns()[index.attribute].type);
}

/// The key of an image as the index's table holds it.
Image TableKey(const IndexInfo& index, char type, std::string_view image) {
  if (!index.hash) return OrderedKey(type, image);
  unsigned int hash = HashKey(type, image);
  return Image(reinterpret_cast<const char*>(&hash), sizeof hash);
}

/// The entries that an index should have, in its order.
class Entries {
 public:
  Entries(Store& store, const IndexInfo& index, MDB_dbi table) : store_(store), index_(index), table_(table) {
    Progress progress("indexing", store.Count());
    store.ForEach([&](unsigned int number, std::string_view record) {
      Take(record, number);
      progress.At(number);
    });
    std::sort(entries_.begin(), entries_.end(), [this](const Entry& a, const Entry& b) {
      int order = Compare(KeyOf(a), KeyOf(b));
      return order < 0 || (order == 0 && a.number < b.number);
    });
  }

  struct Entry {
    unsigned long at;  // of the key among the keys
    unsigned char size;
    unsigned int number;
  };

  const std::vector<Entry>& Sorted() const { return entries_; }
  const std::vector<unsigned int>& Apart() const { return apart_; }
  MDB_val KeyOf(const Entry& entry) const { return Val({keys_.data() + entry.at, entry.size}); }
  int Compare(MDB_val a, MDB_val b) const { return mdb_cmp(store_.Txn(), table_, &a, &b); }

 private:
  void Take(std::string_view record, unsigned int number) {
    const Field field = FieldOf(store_.GetSchema(), record, index_.attribute);
    if (field.isNull) return;
    char type = store_.GetSchema().Columns()[index_.attribute].type;
    Image key = TableKey(index_, type, field.image);
    if (index_.hash || IsWhole(type, key)) {
      entries_.push_back({keys_.size(), static_cast<unsigned char>(key.size()), number});
      keys_ += key;
    } else {
      apart_.push_back(number);
    }
  }

  Store& store_;
  const IndexInfo& index_;
  MDB_dbi table_;
  std::string keys_;
  std::vector<Entry> entries_;
  std::vector<unsigned int> apart_;
};

/// What an entry adds to the sum of its index: that it is there. Its key is held to the record.
unsigned long long EntrySum(unsigned int number) {
  return AddToSum(kEmptySum, {reinterpret_cast<const char*>(&number), sizeof number});
}

unsigned int NumberOf(const MDB_val& data) {
  unsigned int number = 0;
  if (data.mv_size == sizeof number) std::memcpy(&number, data.mv_data, sizeof number);
  return number;
}

/// Compares what is listed apart with what should be.
void CheckApart(Store& store, const IndexInfo& index, const std::vector<unsigned int>& expected) {
  Cursor cursor(store, store.ApartTable(index, false));
  MDB_val key, data;
  bool equal = true;
  for (unsigned int number : expected)
    equal = equal && cursor.Get(key, data, MDB_NEXT) && NumberOf(key) == number;
  if (!equal || cursor.Get(key, data, MDB_NEXT))
    throw Failure(Describe(store, index) + ": the list of the records apart is damaged");
}

}  // namespace

Image OrderedKey(char type, std::string_view image, unsigned char format) {
  if (!IsText(type)) return Image(image);
  Image key(NxINDEX_MAX_KEYLEN, '\0');
  const int size = Manager().Translate(type, key.data(), format | kFormatKey, key.size(),
                                       const_cast<char*>(image.data()), format, image.size(), 1);
  key.resize(static_cast<unsigned>(size));
  return key;
}

bool IsCut(const Image& key) { return key.size() >= NxINDEX_MAX_KEYLEN; }

bool IsWhole(char type, const Image& key) {
  if (!IsText(type)) return true;
  constexpr unsigned char kStopsEarly = 0x80;  // in the language byte of a string's key
  return !IsCut(key) && (type != kStringTypeId || !(static_cast<unsigned char>(key[3]) & kStopsEarly));
}

unsigned int HashKey(char type, std::string_view image) {
  int error = 0;
  return static_cast<unsigned int>(
      Manager().Hash(type, image.size(), const_cast<char*>(image.data()), 1, kFormatNative, error));
}

Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute) {
  for (unsigned long i = 0; i < attribute; ++i) Record::Take(schema.Columns()[i], record);
  return Record::Take(schema.Columns()[attribute], record);
}

void RequireCurrent(const Store& store, const IndexInfo& index) {
  if (!IsText(store.GetSchema().Columns()[index.attribute].type) || index.collation == NxCollationVersion())
    return;
  throw Failure(Describe(store, index) + " was made with version " + std::to_string(index.collation) +
                " of the collation data, this is version " + std::to_string(NxCollationVersion()) +
                "; rebuild it with: nxtm reindex " + store.Path());
}

namespace {

[[noreturn]] void FailDamaged(const Store& store, const IndexInfo& index) {
  throw Failure(Describe(store, index) + " is damaged; make it anew with: nxtm reindex " + store.Path());
}

/// Finds entries again from the root of their tree, at the borders of its pages: between
/// them every look-up ends on the page where the entry is.
class BorderCheck {
 public:
  BorderCheck(Store& store, MDB_dbi table) : cursor_(store, table) {}

  /// False when an entry is not found where it is. Entries come in order.
  bool Take(MDB_val key, MDB_val data) {
    const bool border = !before_ || PageOf(key) != PageOf(key_) || PageOf(data) != PageOf(data_);
    const bool found = !border || (Finds(key, data) && (!before_ || Finds(key_, data_)));
    before_ = true;
    key_ = key;
    data_ = data;
    return found;
  }

 private:
  static std::uintptr_t PageOf(const MDB_val& value) {
    constexpr std::uintptr_t kPage = 4096;
    return reinterpret_cast<std::uintptr_t>(value.mv_data) / kPage;
  }
  bool Finds(MDB_val key, MDB_val data) {
    const void* const place = data.mv_data;
    return cursor_.Get(key, data, MDB_GET_BOTH) && data.mv_data == place;
  }

  Cursor cursor_;
  bool before_ = false;
  MDB_val key_{}, data_{};
};

}  // namespace

void WalkIndex(Store& store, const IndexInfo& index) {
  const MDB_dbi table = store.IndexTable(index, false);
  Cursor cursor(store, table);
  BorderCheck borders(store, table);
  EntryCheck check(store, index);
  MDB_val key, data;
  unsigned long long sum = 0;
  unsigned long entries = 0;
  for (; cursor.Get(key, data, MDB_NEXT); ++entries) {
    if (entries == store.Count()) FailDamaged(store, index);
    sum += EntrySum(check.Take(key, data));
    if (!borders.Take(key, data)) FailDamaged(store, index);
  }
  if (HasApart(store, index)) {
    Cursor apart(store, store.ApartTable(index, false));
    for (; apart.Get(key, data, MDB_NEXT); ++entries) {
      if (entries == store.Count()) FailDamaged(store, index);
      sum += EntrySum(check.TakeApart(key));
    }
  }
  if (sum != index.sum) FailDamaged(store, index);
}

EntryCheck::EntryCheck(Store& store, const IndexInfo& index)
    : store_(store), index_(index), table_(store.IndexTable(index, false)) {}

unsigned int EntryCheck::Take(MDB_val key, MDB_val data) {
  const unsigned int number = NumberOf(data);
  if (data.mv_size != sizeof number || number >= store_.Count()) FailDamaged(store_, index_);
  const Field field = FieldOf(store_.GetSchema(), store_.Get(number), index_.attribute);
  const char type = store_.GetSchema().Columns()[index_.attribute].type;
  if (field.isNull) FailDamaged(store_, index_);
  const Image own = TableKey(index_, type, field.image);  // may differ in what does not count
  const MDB_val expected = Val(own);
  if (mdb_cmp(store_.Txn(), table_, &expected, &key) != 0) FailDamaged(store_, index_);
  const MDB_val before = Val(key_);
  const int order = any_ ? mdb_cmp(store_.Txn(), table_, &before, &key) : -1;
  if (order > 0 || (order == 0 && number <= number_)) FailDamaged(store_, index_);
  any_ = true;
  key_.assign(View(key));
  number_ = number;
  return number;
}

unsigned int EntryCheck::TakeApart(MDB_val key) {
  const unsigned int number = NumberOf(key);
  if (key.mv_size != sizeof number || number >= store_.Count()) FailDamaged(store_, index_);
  return number;
}

void BuildIndex(Store& store, const IndexInfo& index) {
  MDB_dbi table = store.IndexTable(index, true);
  Entries entries(store, index, table);
  Cursor cursor(store, table);
  unsigned long long sum = 0;
  const Entries::Entry* before = nullptr;
  for (const Entries::Entry& entry : entries.Sorted()) {
    // Entries in order are appended, which fills every page.
    bool again = before && entries.Compare(entries.KeyOf(*before), entries.KeyOf(entry)) == 0;
    unsigned int number = entry.number;
    cursor.Put(entries.KeyOf(entry), ValOf(number), again ? MDB_APPENDDUP : MDB_APPEND);
    sum += EntrySum(number);
    before = &entry;
  }
  if (HasApart(store, index)) {
    Cursor apart(store, store.ApartTable(index, true));
    for (unsigned int number : entries.Apart()) {
      apart.Put(ValOf(number), {}, MDB_APPEND);
      sum += EntrySum(number);
    }
  }
  store.AddIndex({index.attribute, index.hash, NxCollationVersion(), sum});
}

void RebuildIndexes(Store& store) {
  const std::vector<IndexInfo> indexes = store.Indexes();
  for (IndexInfo index : indexes) {
    store.IndexTable(index, true);
    if (HasApart(store, index)) store.ApartTable(index, true);
    index.collation = kEmptied;
    store.AddIndex(index);
  }
  store.Checkpoint();  // the pages of the old ones serve the new ones
  for (const IndexInfo& index : indexes) BuildIndex(store, index);
}

void AddToIndexes(Store& store, unsigned int number, const std::vector<Field>& fields) {
  for (const IndexInfo& index : store.Indexes()) {
    const Field& field = fields[index.attribute];
    if (field.isNull || !index.IsMade()) continue;
    char type = store.GetSchema().Columns()[index.attribute].type;
    Image key = TableKey(index, type, field.image);
    const bool apart = !index.hash && !IsWhole(type, key);
    Cursor cursor(store, apart ? store.ApartTable(index, false) : store.IndexTable(index, false));
    if (apart) {
      cursor.Put(ValOf(number), {}, MDB_APPEND);
    } else {
      cursor.Put(Val(key), ValOf(number), 0);
    }
    store.AddToIndexSum(index, EntrySum(number));
  }
}

unsigned long CheckIndex(Store& store, const IndexInfo& index) {
  RequireCurrent(store, index);
  WalkIndex(store, index);
  const std::string where = Describe(store, index);
  MDB_dbi table = store.IndexTable(index, false);
  Entries expected(store, index, table);
  if (HasApart(store, index)) CheckApart(store, index, expected.Apart());

  Cursor cursor(store, table);
  MDB_val key, data;
  for (const Entries::Entry& entry : expected.Sorted()) {
    const std::string of = " of record " + std::to_string(entry.number);
    if (!cursor.Get(key, data, MDB_NEXT)) throw Failure(where + " ends before the entry" + of);
    if (data.mv_size != sizeof entry.number || NumberOf(data) != entry.number)
      throw Failure(where + " has another entry in place of that" + of);
    if (expected.Compare(expected.KeyOf(entry), key) != 0)
      throw Failure(where + ": the entry" + of + " is not its key");
  }
  if (cursor.Get(key, data, MDB_NEXT)) throw Failure(where + " has an entry too many");
  return expected.Sorted().size() + expected.Apart().size();
}

void RequireSound(Store& store) {
  store.CheckFile();
  store.ForEach([](unsigned int, std::string_view) {});
  for (const IndexInfo& index : store.Indexes()) {
    if (!index.IsMade()) continue;
    RequireCurrent(store, index);
    WalkIndex(store, index);
  }
}

}  // namespace nxtm
