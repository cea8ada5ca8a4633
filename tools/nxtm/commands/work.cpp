// The commands that keep stores: export, check, indexes, space.

#include <cstdio>
#include <filesystem>

#include "commands/commands.h"
#include "commands/csvwriter.h"
#include "commands/output.h"
#include "commands/stopwatch.h"
#include "data/failure.h"
#include "data/progress.h"
#include "nxlang.h"
#include "query/query.h"
#include "store/index.h"
#include "store/store.h"

namespace nxtm {

void Export(const std::string& storeFile, bool header, const std::string& blobFolder) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  if (!blobFolder.empty()) std::filesystem::create_directories(blobFolder);
  if (header) std::fputs(CsvHeader(store->GetSchema(), AllColumns(store->GetSchema())).c_str(), stdout);
  RecordReader reader(store->GetSchema());
  CsvWriter writer(store->GetSchema(), AllColumns(store->GetSchema()), blobFolder);
  const auto lineOf = [&](unsigned int number, std::string_view record) -> const std::string& {
    try {
      reader.Begin(record);
      return writer.LineOf(reader.All());
    } catch (const Failure& failure) {
      throw StoreFailure(storeFile + ": record " + std::to_string(number) + ": " + failure.what());
    }
  };
  store->ForEach([&](unsigned int number, std::string_view record) {
    Write(lineOf(number, record));
    return true;
  });
}

void Salvage(const std::string& storeFile, bool header) {
  const auto store = Store::OpenDamaged(storeFile);
  const Schema& schema = store->GetSchema();
  const std::vector<unsigned long> columns = AllColumns(schema);
  if (header) std::fputs(CsvHeader(schema, columns).c_str(), stdout);
  RecordReader reader(schema);
  CsvWriter writer(schema, columns);
  const unsigned long found = store->ForEachSound([&](unsigned int, std::string_view record) {
    reader.Begin(record);
    Write(writer.LineOf(reader.All()));
    return true;
  });
  const std::string told =
      std::to_string(found) + " of " + std::to_string(store->Count()) + " records were found";
  if (found != store->Count()) throw StoreFailure(storeFile + ": " + told);
  std::fprintf(stderr, "nxtm: %s\n", told.c_str());
}

void Check(const std::string& storeFile) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  if (store->Engine().LeftUnfinished()) {
    store.reset();
    Store::Open(storeFile, Store::Mode::kWrite);  // which sweeps
    store = Store::Open(storeFile, Store::Mode::kRead);
  }
  store->Engine().Check();
  Progress progress("checking", store->Count());
  RecordReader reader(store->GetSchema());
  std::vector<Converter> converters = ConvertersOf(store->GetSchema());
  store->ForEach([&](unsigned int number, std::string_view record) {
    try {
      reader.Begin(record);
      const std::vector<Field>& fields = reader.All();
      for (unsigned long i = 0; i < fields.size(); ++i)
        if (!fields[i].isNull) converters[i].ToText(fields[i].image);
    } catch (const Failure& failure) {
      throw StoreFailure(storeFile + ": record " + std::to_string(number) + ": " + failure.what());
    }
    progress.At(number);
    return true;
  });
  std::printf("%lu records: sound\n", store->Count());
  for (const IndexInfo& index : store->Indexes()) {
    const char* const kind = index.hash ? "hash" : "ordered";
    const char* const name = store->GetSchema().Columns()[index.attribute].name.c_str();
    if (index.IsMade()) {
      CheckIndex(*store, index);
      std::printf("%s index of %s, %lu entries: sound\n", kind, name, index.entries);
    } else {
      std::printf("%s index of %s: emptied, to be made anew by nxtm reindex\n", kind, name);
    }
  }
}

void Info(const std::string& storeFile) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  std::printf("%s\nrecords    %lu\nbytes      %llu\ncollation  %lu, this is %lu\n\n%s", store->Kind().c_str(),
              store->Count(), store->Engine().Size(), store->Collation(), NxCollationVersion(),
              store->GetSchema().Text().c_str());
  for (const IndexInfo& index : store->Indexes()) {
    const std::string state = !index.IsMade() ? "emptied, to be made anew by nxtm reindex"
                              : index.collation == store->Collation()
                                  ? std::to_string(index.entries) + " entries"
                                  : "made with collation " + std::to_string(index.collation);
    std::printf("\n%s index of %s: %s", index.hash ? "hash" : "ordered",
                store->GetSchema().Columns()[index.attribute].name.c_str(), state.c_str());
  }
  if (!store->Indexes().empty()) std::printf("\n");
}

void MakeIndex(const std::string& storeFile, const std::string& attribute, bool hash, Wait wait) {
  Stopwatch watch;
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->Engine().Check();
  const unsigned long place = store->GetSchema().Find(attribute);
  if (!hash && FormOf(store->GetSchema().Columns()[place].type).kind == Kind::kBlob)
    throw Failure("blobs have no ordered index; --hash makes one for exact matches");
  BuildIndex(*store, place, hash);
  store->Commit();
  std::printf("%s index of %s made in %.2f s, store %.2f MB\n", hash ? "hash" : "ordered", attribute.c_str(),
              watch.Seconds(), static_cast<double>(store->Engine().Size()) / 1e6);
}

void Reindex(const std::string& storeFile, Wait wait) {
  Stopwatch watch;
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->Engine().Check();
  RebuildIndexes(*store);
  const unsigned long made = store->Indexes().size();
  store->Commit();
  std::printf("%lu indexes rebuilt in %.2f s\n", made, watch.Seconds());
}

void DropIndex(const std::string& storeFile, const std::string& attribute, bool hash, Wait wait) {
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->Engine().Check();
  const unsigned long place = store->GetSchema().Find(attribute);
  if (!store->DropIndex(place, hash))
    throw Failure(storeFile + ": there is no " + (hash ? "hash" : "ordered") + " index of " + attribute);
  store->Commit();
  std::printf("%s index of %s dropped\n", hash ? "hash" : "ordered", attribute.c_str());
}

void Delete(const std::string& storeFile, const std::string& condition, Wait wait) {
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->Engine().Check();
  const Condition parsed = Condition::Parse(condition, store->GetSchema());
  std::vector<unsigned int> numbers;
  RunQuery(*store, parsed, false, [&](unsigned int number, const std::vector<Field>&) {
    numbers.push_back(number);
    return true;
  });
  if (!numbers.empty()) {
    RemoveRecords(*store, numbers);
    store->Commit();
  }
  std::printf("%lu records deleted, %lu left\n", static_cast<unsigned long>(numbers.size()), store->Count());
}

void Compact(const std::string& storeFile, Wait wait) {
  auto store = Store::Open(storeFile, Store::Mode::kAlone, wait);
  const unsigned long long before = store->Engine().Size();
  store->Engine().Check();
  store->Engine().Compact();
  std::printf("%.2f MB, %.2f MB before\n", static_cast<double>(store->Engine().Size()) / 1e6,
              static_cast<double>(before) / 1e6);
}

}  // namespace nxtm
