// Indexes: their keys, building and checking.

#include "index.h"

#include <algorithm>
#include <cstring>

#include "failure.h"
#include "nxlang.h"
#include "progress.h"

namespace nxtm {

namespace {

std::string Describe(const Store& store, const IndexInfo& index) {
  return store.Path() + ": " + (index.hash ? "hash" : "ordered") + " index of '" +
         store.GetSchema().Columns()[index.attribute].name + "'";
}

void Put(Store& store, MDB_dbi table, std::string_view key, unsigned int number) {
  MDB_val k = Val(key), data = ValOf(number);
  CheckMdb(mdb_put(store.Txn(), table, &k, &data, 0), store.Path());
}

/// The key of an image as the index's table holds it.
Image TableKey(const IndexInfo& index, char type, const Image& image) {
  if (!index.hash) return OrderedKey(type, image);
  unsigned int hash = HashKey(type, image);
  return Image(reinterpret_cast<const char*>(&hash), sizeof hash);
}

/// Whether the index's table has the entry.
bool Has(Store& store, MDB_dbi table, const Image& key, unsigned int number) {
  Cursor cursor(store.Txn(), table);
  MDB_val k = Val(key), data = ValOf(number);
  return cursor.Get(k, data, MDB_GET_BOTH);
}

unsigned int NumberOf(const MDB_val& data, unsigned long count, const std::string& where) {
  unsigned int number = 0;
  if (data.mv_size == sizeof number) std::memcpy(&number, data.mv_data, sizeof number);
  if (data.mv_size != sizeof number || number >= count)
    throw Failure(where + " names a record that is not there");
  return number;
}

}  // namespace

bool IsText(char type) {
  const char* name = Manager().NameGet(type, nullptr);
  return std::strstr(name, "String") != nullptr;
}

Image OrderedKey(char type, const Image& image) {
  if (!IsText(type)) return image;
  Image key(NxINDEX_MAX_KEYLEN, '\0');
  int size = Manager().Translate(type, key.data(), kFormatKey | kFormatNative, key.size(),
                                 const_cast<char*>(image.data()), kFormatNative, image.size(), 1);
  key.resize(static_cast<unsigned>(size));
  return key;
}

unsigned int HashKey(char type, const Image& image) {
  int error = 0;
  return static_cast<unsigned int>(
      Manager().Hash(type, image.size(), const_cast<char*>(image.data()), 1, kFormatNative, error));
}

Field FieldOf(const Schema& schema, std::string_view record, unsigned long attribute) {
  for (unsigned long i = 0;; ++i) {
    const Column& column = schema.Columns()[i];
    bool isNull = false;
    if (column.HasNullByte() && !record.empty()) {
      isNull = record[0] == 1;
      record.remove_prefix(1);
    }
    unsigned long size = isNull ? 0 : ImageSize(column.type, record);
    if (!isNull && size == 0) throw Failure("attribute '" + column.name + "' is damaged");
    if (i == attribute) {
      Field field{Image(record.substr(0, size)), isNull};
      if (column.nullable && !column.HasNullByte()) field.isNull = field.image == NullImage(column.type);
      return field;
    }
    record.remove_prefix(size);
  }
}

void RequireCurrent(const Store& store, const IndexInfo& index) {
  if (!IsText(store.GetSchema().Columns()[index.attribute].type) || index.collation == NxCollationVersion())
    return;
  throw Failure(Describe(store, index) + " was made with version " + std::to_string(index.collation) +
                " of the collation data, this is version " + std::to_string(NxCollationVersion()) +
                "; rebuild it with: nxtm reindex " + store.Path());
}

void BuildIndex(Store& store, const IndexInfo& index) {
  char type = store.GetSchema().Columns()[index.attribute].type;
  MDB_dbi table = store.IndexTable(index, true);
  Progress progress("indexing", store.Count());
  store.ForEach([&](unsigned int number, std::string_view record) {
    Field field = FieldOf(store.GetSchema(), record, index.attribute);
    if (!field.isNull) Put(store, table, TableKey(index, type, field.image), number);
    progress.At(number);
  });
  store.AddIndex({index.attribute, index.hash, NxCollationVersion()});
}

void AddToIndexes(Store& store, unsigned int number, const std::vector<Field>& fields) {
  for (const IndexInfo& index : store.Indexes()) {
    const Field& field = fields[index.attribute];
    if (field.isNull) continue;
    char type = store.GetSchema().Columns()[index.attribute].type;
    Put(store, store.IndexTable(index, false), TableKey(index, type, field.image), number);
  }
}

unsigned long CheckIndex(Store& store, const IndexInfo& index) {
  RequireCurrent(store, index);
  char type = store.GetSchema().Columns()[index.attribute].type;
  const std::string where = Describe(store, index);
  MDB_dbi table = store.IndexTable(index, false);

  // From the records to the entries.
  unsigned long expected = 0;
  store.ForEach([&](unsigned int number, std::string_view record) {
    Field field = FieldOf(store.GetSchema(), record, index.attribute);
    if (field.isNull) return;
    ++expected;
    if (!Has(store, table, TableKey(index, type, field.image), number))
      throw Failure(where + " has no entry for record " + std::to_string(number));
  });

  // From the entries to the records, in ascending order.
  Cursor cursor(store.Txn(), table);
  MDB_val key, data;
  unsigned long entries = 0;
  Image before;
  for (; cursor.Get(key, data, MDB_NEXT); ++entries) {
    unsigned int number = NumberOf(data, store.Count(), where);
    Field field = FieldOf(store.GetSchema(), store.Get(number), index.attribute);
    Image made = field.isNull ? Image() : TableKey(index, type, field.image);
    MDB_val madeKey = Val(made), beforeKey = Val(before);
    if (field.isNull || mdb_cmp(store.Txn(), table, &madeKey, &key) != 0)
      throw Failure(where + ": the entry of record " + std::to_string(number) + " is not its key");
    if (entries > 0 && mdb_cmp(store.Txn(), table, &beforeKey, &key) > 0)
      throw Failure(where + " is out of order at the entry of record " + std::to_string(number));
    before = Image(View(key));
  }
  if (entries != expected)
    throw Failure(where + " has " + std::to_string(entries) + " entries for " + std::to_string(expected) +
                  " records");
  return entries;
}

}  // namespace nxtm
