// The command that turns the rows of a file into records of a store.

#include <cstdio>

#include "commands/commands.h"
#include "commands/stopwatch.h"
#include "data/csvfile.h"
#include "data/failure.h"
#include "data/file.h"
#include "data/progress.h"
#include "store/index.h"
#include "store/store.h"

namespace nxtm {

namespace {

/// Whether a field without text is a value of the column.
bool HasEmptyValue(const Column& column) {
  const Kind kind = FormOf(column.type).kind;
  return IsText(kind) || kind == Kind::kBlob;
}

/// Turns the rows of a file into records of a store.
class Importer {
 public:
  Importer(Store& store, const std::string& file)
      : store_(store),
        schema_(store.GetSchema()),
        file_(file),
        converters_(ConvertersOf(schema_, FolderOf(file))),
        reader_(schema_) {}

  /// The first row names the columns, in the order of the schema.
  void TakeHeader(const CsvRow& row) {
    CheckWidth(row);
    for (unsigned long i = 0; i < row.fields.size(); ++i) {
      const std::string& wanted = schema_.Columns()[i].name;
      const std::string& found = row.fields[i].text;
      if (found != wanted) Fail(row, i, "column '" + wanted + "' is missing here, found '" + found + "'");
    }
  }

  void TakeRow(const CsvRow& row) {
    CheckWidth(row);
    record_.clear();
    for (unsigned long i = 0; i < row.fields.size(); ++i) TakeField(row, i);
    try {
      const unsigned int number = store_.Append(record_);
      if (store_.Indexes().empty()) return;
      reader_.Begin(record_);
      AddToIndexes(store_, number, reader_.All());
    } catch (const Failure& failure) {
      Fail(row, 0, "a record of " + std::to_string(record_.size()) + " bytes: " + failure.what());
    }
  }

 private:
  [[noreturn]] void Fail(const CsvRow& row, unsigned long field, const std::string& reason) const {
    Place place = PlaceOfField(row, field);
    throw FailureAt(file_, place.line, place.column, reason);
  }

  void CheckWidth(const CsvRow& row) const {
    unsigned long wanted = schema_.Columns().size(), found = row.fields.size();
    if (found < wanted) Fail(row, found, "column '" + schema_.Columns()[found].name + "' is missing");
    if (found > wanted)
      Fail(row, wanted,
           "the row has " + std::to_string(found) + " fields, the schema " + std::to_string(wanted));
  }

  /// Adds a field to the record.
  void TakeField(const CsvRow& row, unsigned long i) {
    const CsvField& field = row.fields[i];
    const Column& column = schema_.Columns()[i];
    try {
      if (!field.isNull || (!column.nullable && HasEmptyValue(column)))
        Record::Append(record_, column, converters_[i].ToImage(field.text));
      else if (column.nullable)
        Record::AppendNull(record_, column);
      else
        throw Failure("the field is empty and the column not nullable");
    } catch (const Failure& failure) {
      Fail(row, i, "column '" + column.name + "': " + failure.what());
    }
  }

  Store& store_;
  const Schema& schema_;
  const std::string& file_;
  std::vector<Converter> converters_;
  std::string record_;
  RecordReader reader_;
};

std::unique_ptr<Store> OpenForImport(const std::string& schemaFile, const std::string& storeFile, Wait wait) {
  Schema schema = Schema::Read(schemaFile);
  auto store = Store::OpenOrCreate(storeFile, schema, wait);
  if (store->IsNew()) return store;
  if (store->GetSchema().Text() != schema.Text())
    throw Failure(storeFile + ": has another schema than " + schemaFile + ":\n" + store->GetSchema().Text());
  store->Engine().Check();
  return store;
}

/// A record of one null is exported as an empty line, and comes back from it.
EmptyLine EmptyLineOf(const Schema& schema) {
  bool oneNullable = schema.Columns().size() == 1 && schema.Columns()[0].nullable;
  return oneNullable ? EmptyLine::kNullRow : EmptyLine::kNoRow;
}

}  // namespace

void Import(const std::string& schemaFile, const std::string& dataFile, const std::string& storeFile,
            const ImportOptions& options) {
  Stopwatch watch;
  auto store = OpenForImport(schemaFile, storeFile, options.wait);
  std::string data = ReadFile(dataFile);
  unsigned long before = store->Count();
  Importer importer(*store, dataFile);
  Progress progress("importing", data.size());
  bool headerNext = options.header;
  ReadCsv(data, dataFile, EmptyLineOf(store->GetSchema()), [&](const CsvRow& row) {
    if (headerNext)
      importer.TakeHeader(row);
    else
      importer.TakeRow(row);
    headerNext = false;
    progress.At(data.size() - row.rest.size());
  });
  if (headerNext) throw FailureAt(dataFile, 1, 1, "the row with the names of the columns is missing");
  store->Commit();
  unsigned long added = store->Count() - before;
  double seconds = watch.Seconds();
  std::printf("%lu records imported in %.2f s (%.0f a second), %.2f MB in, store %.2f MB\n", added, seconds,
              static_cast<double>(added) / seconds, static_cast<double>(data.size()) / 1e6,
              static_cast<double>(store->Engine().Size()) / 1e6);
}

}  // namespace nxtm
