// The commands that keep stores: export, check, indexes, space.

#include <cstdio>
#include <filesystem>

#include "commands/commands.h"
#include "commands/csvwriter.h"
#include "commands/stopwatch.h"
#include "data/failure.h"
#include "data/progress.h"
#include "store/index.h"
#include "store/store.h"

namespace nxtm {

void Export(const std::string& storeFile, bool header, const std::string& blobFolder) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  if (!blobFolder.empty()) std::filesystem::create_directories(blobFolder);
  if (header) std::fputs(CsvHeader(store->GetSchema()).c_str(), stdout);
  std::vector<Field> fields;
  CsvWriter writer(store->GetSchema(), blobFolder);
  store->ForEach([&](unsigned int number, std::string_view record) {
    try {
      Record::Split(store->GetSchema(), record, fields);
      const std::string& line = writer.LineOf(fields);
      std::fwrite(line.data(), 1, line.size(), stdout);
    } catch (const Failure& failure) {
      throw Failure(storeFile + ": record " + std::to_string(number) + ": " + failure.what());
    }
  });
}

void Check(const std::string& storeFile) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  store->CheckFile();
  Progress progress("checking", store->Count());
  std::vector<Field> fields;
  std::vector<Converter> converters = ConvertersOf(store->GetSchema());
  store->ForEach([&](unsigned int number, std::string_view record) {
    try {
      Record::Split(store->GetSchema(), record, fields);
      for (unsigned long i = 0; i < fields.size(); ++i)
        if (!fields[i].isNull) converters[i].ToText(fields[i].image);
    } catch (const Failure& failure) {
      throw Failure(storeFile + ": record " + std::to_string(number) + ": " + failure.what());
    }
    progress.At(number);
  });
  std::printf("%lu records: sound\n", store->Count());
  for (const IndexInfo& index : store->Indexes()) {
    const std::string found = index.IsMade()
                                  ? ", " + std::to_string(CheckIndex(*store, index)) + " entries: sound"
                                  : ": emptied, to be made anew by nxtm reindex";
    std::printf("%s index of %s%s\n", index.hash ? "hash" : "ordered",
                store->GetSchema().Columns()[index.attribute].name.c_str(), found.c_str());
  }
}

void MakeIndex(const std::string& storeFile, const std::string& attribute, bool hash, Wait wait) {
  Stopwatch watch;
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->CheckFile();
  const unsigned long place = store->GetSchema().Find(attribute);
  if (!hash && FormOf(store->GetSchema().Columns()[place].type).kind == Kind::kBlob)
    throw Failure("blobs have no ordered index; --hash makes one for exact matches");
  BuildIndex(*store, IndexInfo{place, hash, 0});
  store->Commit();
  std::printf("%s index of %s made in %.2f s, store %.2f MB\n", hash ? "hash" : "ordered", attribute.c_str(),
              watch.Seconds(), static_cast<double>(store->FileSize()) / 1e6);
}

void Reindex(const std::string& storeFile, Wait wait) {
  Stopwatch watch;
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->CheckFile();
  RebuildIndexes(*store);
  const unsigned long made = store->Indexes().size();
  store->Commit();
  std::printf("%lu indexes rebuilt in %.2f s\n", made, watch.Seconds());
}

void DropIndex(const std::string& storeFile, const std::string& attribute, bool hash, Wait wait) {
  auto store = Store::Open(storeFile, Store::Mode::kWrite, wait);
  store->CheckFile();
  const unsigned long place = store->GetSchema().Find(attribute);
  if (!store->DropIndex({place, hash, 0}))
    throw Failure(storeFile + ": there is no " + (hash ? "hash" : "ordered") + " index of " + attribute);
  store->Commit();
  std::printf("%s index of %s dropped\n", hash ? "hash" : "ordered", attribute.c_str());
}

void Compact(const std::string& storeFile, Wait wait) {
  auto store = Store::Open(storeFile, Store::Mode::kAlone, wait);
  const unsigned long long before = store->FileSize();
  RequireSound(*store);
  store->Compact();
  std::printf("%.2f MB, %.2f MB before\n", static_cast<double>(store->FileSize()) / 1e6,
              static_cast<double>(before) / 1e6);
}

}  // namespace nxtm
