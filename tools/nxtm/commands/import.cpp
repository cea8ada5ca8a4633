// The command that turns the rows of a file into records of a store.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "commands/commands.h"
#include "commands/stopwatch.h"
#include "data/csvfile.h"
#include "data/failure.h"
#include "data/file.h"
#include "data/progress.h"
#include "data/removal.h"
#include "data/utf8.h"
#include "store/index.h"
#include "store/store.h"

namespace nxtm {

namespace {

/// Whether a field without text is a value of the column.
bool HasEmptyValue(const Column& column) {
  const Kind kind = FormOf(column.type).kind;
  return IsText(kind) || kind == Kind::kBlob;
}

/// A file that is read as a stream; "-" is standard input.
class InputFile {
 public:
  explicit InputFile(const std::string& path)
      : name_(path == "-" ? "standard input" : path),
        descriptor_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0)
      throw Failure(name_ + ": " + std::strerror(errno));
    if (S_ISREG(status.st_mode)) size_ = static_cast<unsigned long long>(status.st_size);
  }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile() {
    if (descriptor_ != STDIN_FILENO) close(descriptor_);
  }

  const std::string& Name() const { return name_; }
  /// Its bytes, or 0 where nobody knows before its end.
  unsigned long long Size() const { return size_; }
  ByteSource Source() const { return SourceOf(descriptor_, name_); }

 private:
  std::string name_;
  int descriptor_;
  unsigned long long size_ = 0;
};

/// A new file for the rows that are set aside, which goes away unless it is kept.
class RowsAside {
 public:
  explicit RowsAside(const std::string& path) : path_(path) {
    file_ = std::fopen(path.c_str(), "wbx");
    if (!file_) Fail();
    removed_.emplace(path);
  }
  RowsAside(const RowsAside&) = delete;
  RowsAside& operator=(const RowsAside&) = delete;
  ~RowsAside() {
    if (file_) std::fclose(file_);
    if (!kept_) unlink(path_.c_str());
  }

  void Add(std::string_view row) {
    if (std::fwrite(row.data(), 1, row.size(), file_) != row.size()) Fail();
  }
  /// Writes what is not written yet.
  void Close() {
    const int failed = std::fclose(file_);
    file_ = nullptr;
    if (failed) Fail();
  }
  void Keep() {
    kept_ = true;
    removed_.reset();
  }

 private:
  [[noreturn]] void Fail() const { throw Failure(path_ + ": " + std::strerror(errno)); }

  std::string path_;
  FILE* file_;
  std::optional<RemovedOnSignal> removed_;
  bool kept_ = false;
};

/// Turns the rows of a file into records of a store.
class Importer {
 public:
  Importer(Store& store, CsvReader& reader, const Decoder& decoder, const std::string& folder,
           const ImportOptions& options)
      : store_(store),
        schema_(store.GetSchema()),
        reader_(reader),
        header_(options.header),
        decoder_(decoder),
        converters_(ConvertersOf(schema_, folder)),
        taken_(schema_) {
    for (unsigned long i = 0; i < schema_.Columns().size(); ++i) fieldOf_.push_back(i);
    if (!options.badRows.empty()) aside_.emplace(options.badRows);
  }

  /// Reads the first row, which names the columns.
  void TakeHeader() {
    if (!reader_.Next()) throw reader_.FailureOf(0, "the row with the names of the columns is missing");
    fieldOf_.assign(schema_.Columns().size(), kNoField);
    for (unsigned long i = 0; i < reader_.Fields().size(); ++i) TakeName(i);
    for (unsigned long i = 0; i < fieldOf_.size(); ++i)
      if (fieldOf_[i] == kNoField && !schema_.Columns()[i].nullable)
        throw reader_.FailureOf(reader_.Fields().size(), "column '" + schema_.Columns()[i].name +
                                                             "', which is not nullable, is missing");
    width_ = reader_.Fields().size();
    if (aside_) aside_->Add(reader_.Raw());
  }

  /// Reads the next row; false at the end.
  bool TakeRow() {
    try {
      if (!reader_.Next()) return false;
      CheckWidth();
      record_.clear();
      for (unsigned long i = 0; i < fieldOf_.size(); ++i) TakeField(i);
    } catch (const BadRow& failure) {
      if (!aside_) throw;
      SetAside(failure);
      return true;
    }
    Add();
    return true;
  }

  /// Keeps the records, and then the rows that were set aside.
  void Commit() {
    if (aside_) aside_->Close();
    store_.Commit();
    if (setAside_ == 0) return;
    aside_->Keep();
    std::fprintf(stderr, "nxtm: %lu rows set aside\n", setAside_);
  }

 private:
  static constexpr unsigned long kNoField = ~0UL;

  void TakeName(unsigned long field) {
    const std::string name(decoder_.ToUtf8(reader_.Fields()[field].text));
    unsigned long column = 0;
    try {
      column = schema_.Find(name);
    } catch (const Failure& failure) {
      throw reader_.FailureOf(field, failure.what());
    }
    if (fieldOf_[column] != kNoField)
      throw reader_.FailureOf(field, "column '" + name + "' is there already");
    fieldOf_[column] = field;
  }

  void CheckWidth() const {
    const unsigned long found = reader_.Fields().size();
    if (found == width_) return;
    if (found > width_)
      throw reader_.FailureOf(width_, "the row has " + std::to_string(found) + " fields, the " +
                                          (header_ ? "header " : "schema ") + std::to_string(width_));
    const auto missing = std::find(fieldOf_.begin(), fieldOf_.end(), found) - fieldOf_.begin();
    throw reader_.FailureOf(
        found, "column '" + schema_.Columns()[static_cast<unsigned long>(missing)].name + "' is missing");
  }

  /// Adds a column's field to the record.
  void TakeField(unsigned long i) {
    const Column& column = schema_.Columns()[i];
    if (fieldOf_[i] == kNoField) return Record::AppendNull(record_, column);
    const CsvField& field = reader_.Fields()[fieldOf_[i]];
    try {
      if (!field.isNull || (!column.nullable && HasEmptyValue(column))) {
        Record::AppendHead(record_, column);
        converters_[i].AppendImage(record_, decoder_.ToUtf8(field.text));
      } else if (column.nullable) {
        Record::AppendNull(record_, column);
      } else {
        throw Failure("the field is empty and the column not nullable");
      }
    } catch (const Failure& failure) {
      throw reader_.FailureOf(fieldOf_[i], "column '" + column.name + "': " + failure.what());
    }
  }

  /// Adds the record to the store. What fails here is no fault of a row alone.
  void Add() {
    try {
      const unsigned int number = store_.Append(record_);
      if (store_.Indexes().empty()) return;
      taken_.Begin(record_);
      AddToIndexes(store_, number, record_, taken_.All());
    } catch (const Failure& failure) {
      throw reader_.FailureOf(0,
                              "a record of " + std::to_string(record_.size()) + " bytes: " + failure.what());
    }
  }

  void SetAside(const BadRow& failure) {
    std::fprintf(stderr, "nxtm: %s\n", failure.what());
    aside_->Add(reader_.Raw());
    ++setAside_;
  }

  Store& store_;
  const Schema& schema_;
  CsvReader& reader_;
  bool header_;
  Decoder decoder_;
  std::vector<Converter> converters_;
  std::vector<unsigned long> fieldOf_;  // each column's place in a row
  unsigned long width_ = schema_.Columns().size();
  std::optional<RowsAside> aside_;
  unsigned long setAside_ = 0;
  std::string record_;
  RecordReader taken_;
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

/// The byte that a user names.
char DelimiterOf(const std::string& name) {
  const std::string byte = name == "tab" || name == "\\t" ? "\t" : name;
  if (byte.size() == 1 && byte.find_first_of("\"\r\n") == std::string::npos) return byte[0];
  throw Failure("the delimiter is one byte, or tab, and not " + Shown(name));
}

CsvForm FormOfRows(const Schema& schema, const ImportOptions& options) {
  // A record of one null is exported as an empty line, and comes back from it.
  const bool oneNullable = schema.Columns().size() == 1 && schema.Columns()[0].nullable;
  return {DelimiterOf(options.delimiter), oneNullable ? EmptyLine::kNullRow : EmptyLine::kNoRow};
}

}  // namespace

void Import(const std::string& schemaFile, const std::string& dataFile, const std::string& storeFile,
            const ImportOptions& options) {
  Stopwatch watch;
  auto store = OpenForImport(schemaFile, storeFile, options.wait);
  const InputFile file(dataFile);
  const unsigned long before = store->Count();
  const Decoder decoder(options.encoding);
  CsvReader reader(decoder.Decoded(file.Source(), file.Name()), file.Name(),
                   FormOfRows(store->GetSchema(), options));
  Importer importer(*store, reader, decoder, FolderOf(dataFile), options);
  Progress progress("importing", file.Size());
  if (options.header) importer.TakeHeader();
  while (importer.TakeRow())
    if (file.Size() != 0) progress.At(reader.BytesDone());
  importer.Commit();
  const unsigned long added = store->Count() - before;
  const double seconds = watch.Seconds();
  std::printf("%lu records imported in %.2f s (%.0f a second), %.2f MB in, store %.2f MB\n", added, seconds,
              static_cast<double>(added) / seconds, static_cast<double>(reader.BytesDone()) / 1e6,
              static_cast<double>(store->Engine().Size()) / 1e6);
}

}  // namespace nxtm
