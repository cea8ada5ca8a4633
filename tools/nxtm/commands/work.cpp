// The commands that work on stores.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "commands/commands.h"
#include "data/csvfile.h"
#include "data/failure.h"
#include "data/file.h"
#include "data/progress.h"
#include "data/utf8.h"
#include "query/query.h"
#include "store/index.h"
#include "store/store.h"

namespace nxtm {

namespace {

class Stopwatch {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// A converter for every column.
std::vector<Converter> ConvertersOf(const Schema& schema, const std::string& folder = "") {
  std::vector<Converter> converters;
  for (const Column& column : schema.Columns()) {
    TextStyle style = column.style;
    style.folder = folder;
    converters.emplace_back(column.type, std::move(style));
  }
  return converters;
}

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
        converters_(ConvertersOf(schema_, FolderOf(file))) {}

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
      Record::Split(schema_, record_, fields_);
      AddToIndexes(store_, number, fields_);
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
  std::vector<Field> fields_;
};

/// A damaged store would only be damaged further.
void RequireSound(Store& store) {
  store.CheckFile();
  store.ForEach([](unsigned int, std::string_view) {});
  for (const IndexInfo& index : store.Indexes()) {
    if (!index.IsMade()) continue;
    RequireCurrent(store, index);
    WalkIndex(store, index);
  }
}

std::unique_ptr<Store> OpenForImport(const std::string& schemaFile, const std::string& storeFile, Wait wait) {
  Schema schema = Schema::Read(schemaFile);
  auto store = Store::OpenOrCreate(storeFile, schema, wait);
  if (store->IsNew()) return store;
  if (store->GetSchema().Text() != schema.Text())
    throw Failure(storeFile + ": has another schema than " + schemaFile + ":\n" + store->GetSchema().Text());
  RequireSound(*store);
  return store;
}

/// A record of one null is exported as an empty line, and comes back from it.
EmptyLine EmptyLineOf(const Schema& schema) {
  bool oneNullable = schema.Columns().size() == 1 && schema.Columns()[0].nullable;
  return oneNullable ? EmptyLine::kNullRow : EmptyLine::kNoRow;
}

/// Writes records as lines of CSV.
class CsvWriter {
 public:
  /// Blobs go to files of a folder where one is given, else into the lines.
  explicit CsvWriter(const Schema& schema, const std::string& blobFolder = "")
      : schema_(schema), converters_(ConvertersOf(schema)), blobFolder_(blobFolder) {}

  const std::string& LineOf(const std::vector<Field>& fields) {
    line_.clear();
    ++lines_;
    for (unsigned long i = 0; i < fields.size(); ++i) {
      if (i) line_ += ',';
      if (!fields[i].isNull) AddField(i, fields[i], fields.size() == 1);
    }
    return line_ += '\n';
  }

 private:
  void AddField(unsigned long i, const Field& field, bool alone) {
    const Column& column = schema_.Columns()[i];
    if (!blobFolder_.empty() && FormOf(column.type).kind == Kind::kBlob) {
      const std::string path = blobFolder_ + "/" + column.name + "." + std::to_string(lines_);
      WriteNewFile(path, BytesOfBlob(field.image));
      line_ += CsvText("@" + path, false);
      return;
    }
    const TextOfValue value = converters_[i].ToText(field.image);
    // The null state of a type is written like a null of the column.
    line_ += CsvText(value.text, value.isNull || (value.text.empty() && !column.nullable && !alone));
  }

  const Schema& schema_;
  std::vector<Converter> converters_;
  std::string blobFolder_;
  unsigned long lines_ = 0;
  std::string line_;
};

void PrintHeader(const Schema& schema) {
  std::string line;
  for (const Column& column : schema.Columns()) line += (line.empty() ? "" : ",") + column.name;
  std::printf("%s\n", line.c_str());
}

void PrintBound(const char* name, const Image& bound, const Column& column) {
  const char type = column.type;
  if (bound.empty()) {
    std::printf("--   %s open\n", name);
    return;
  }
  std::string text;
  if (type == kStringTypeId) {
    NxString key;
    Manager().Translate(type, &key, kFormatMemory, 0, const_cast<char*>(bound.data()),
                        kFormatKey | kFormatNative, bound.size(), 1);
    for (NxStringIterator it(key); unsigned short order = it.GetNextOrder(1);) {
      unsigned char ch = 0;
      NxConvertOrderToChar(order, it._nCollation, ch, 1, nullptr);
      text += order >= kFirstHanOrder ? "\xE2\x80\xA6" : Utf8OfString(NxString(static_cast<char>(ch)));
    }
  } else if (!IsText(type)) {
    text = Converter(type, column.style).ToText(bound).text;
  }
  std::printf("--   %s %s  %s\n", name, text.c_str(), Hex(bound).c_str());
}

void Explain(const Store& store, const QueryReport& report, double seconds) {
  for (const Access& access : report.considered) {
    const Column& column = store.GetSchema().Columns()[access.index.attribute];
    auto used = std::find_if(report.used.begin(), report.used.end(),
                             [&](const Access& other) { return other.term == access.term; });
    std::printf("-- %s: %s index of %s, estimated fraction %.6f (%.0f records)%s\n",
                access.term->text.c_str(), access.index.hash ? "hash" : "ordered", column.name.c_str(),
                access.fraction, access.fraction * static_cast<double>(store.Count()),
                used == report.used.end() ? ", not used" : "");
    if (!access.index.hash) {
      PrintBound("from", access.lower, column);
      PrintBound("to  ", access.upper, column);
      if (access.plainToo) std::printf("--   and all texts in plain order\n");
    }
    if (used != report.used.end()) std::printf("--   %lu entries read\n", used->entriesRead);
  }
  if (report.used.empty()) std::printf("-- no index helps: all records are read\n");
  std::printf("-- %lu of %lu records read, %lu found, %.3f ms\n", report.recordsRead, store.Count(),
              report.found, seconds * 1000);
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
              static_cast<double>(store->FileSize()) / 1e6);
}

void Export(const std::string& storeFile, bool header, const std::string& blobFolder) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  if (!blobFolder.empty()) std::filesystem::create_directories(blobFolder);
  if (header) PrintHeader(store->GetSchema());
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

void Query(const std::string& storeFile, const std::string& condition, const QueryOptions& options) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  Condition parsed = Condition::Parse(condition, store->GetSchema());
  Stopwatch watch;
  CsvWriter writer(store->GetSchema());
  std::string output;
  unsigned long printed = 0;
  QueryReport report =
      RunQuery(*store, parsed, options.scan, [&](unsigned int, const std::vector<Field>& fields) {
        if (options.count || (options.limit && printed >= options.limit)) return;
        ++printed;
        output += writer.LineOf(fields);
      });
  double seconds = watch.Seconds();
  if (options.explain) Explain(*store, report, seconds);
  std::fwrite(output.data(), 1, output.size(), stdout);
  if (options.count) std::printf("%lu\n", report.found);
}

}  // namespace nxtm
