// CSV by libcsv, which knows no positions: it gets the text line by line, and where a
// field stands is looked up in its row when somebody asks.

#include "data/csvfile.h"

#include <csv.h>

#include <algorithm>
#include <exception>
#include <memory>

#include "data/failure.h"

namespace nxtm {

namespace {

int NoSpace(unsigned char) { return 0; }

/// The first line of a text with its end: CR, LF or both, of which this takes one.
std::string_view TakeLine(std::string_view text) {
  std::string_view line = text.substr(0, text.find('\n'));
  line = line.substr(0, line.find('\r'));
  return text.substr(0, std::min(line.size() + 1, text.size()));
}

/// Reads a text row by row.
class Reader {
 public:
  Reader(const std::string& file, const std::function<void(const CsvRow&)>& onRow)
      : file_(file), onRow_(onRow) {
    csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL);
    csv_set_space_func(&parser_, NoSpace);  // blanks belong to the fields
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { csv_free(&parser_); }

  void Read(std::string_view text, EmptyLine emptyLine) {
    unsigned long line = 1;
    for (char before = '\n'; !text.empty();) {
      std::string_view piece = TakeLine(text);
      if (!insideRow_) {
        row_.rest = text;
        row_.line = line;
      }
      if (insideRow_ || (piece != "\n" && piece != "\r")) {
        Parse(piece, line);
      } else if (emptyLine == EmptyLine::kNullRow && !(before == '\r' && piece == "\n")) {
        TakeNullRow();
      }
      before = piece.back();
      text.remove_prefix(piece.size());
      // A line ends with CR, LF or CR LF, inside of quotes too.
      if (before == '\n' || (before == '\r' && (text.empty() || text[0] != '\n'))) ++line;
    }
    if (csv_fini(&parser_, OnField, OnRow, this) != 0) {
      Place place = PlaceOfField(row_, fields_.size());
      throw FailureAt(file_, place.line, place.column, "the quoted field does not end");
    }
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  void Parse(std::string_view piece, unsigned long line) {
    insideRow_ = true;
    unsigned long done = csv_parse(&parser_, piece.data(), piece.size(), OnField, OnRow, this);
    if (failure_) std::rethrow_exception(failure_);
    if (done != piece.size())
      throw FailureAt(file_, line, done + 1, "a quote is neither around the field nor doubled inside");
  }

  void TakeNullRow() {
    fields_.push_back({"", true});
    FinishRow();
  }

  void FinishRow() {
    row_.fields.swap(fields_);
    fields_.clear();
    insideRow_ = false;
    onRow_(row_);
  }

  // An exception may not pass through the parser.
  template <class Action>
  void Guarded(Action action) {
    if (failure_) return;
    try {
      action();
    } catch (...) {
      failure_ = std::current_exception();
    }
  }
  static void OnField(void* text, size_t size, void* data) {
    auto& reader = *static_cast<Reader*>(data);
    reader.Guarded([&] {
      reader.fields_.push_back({std::string(static_cast<char*>(text), text ? size : 0), text == nullptr});
    });
  }
  static void OnRow(int, void* data) {
    auto& reader = *static_cast<Reader*>(data);
    reader.Guarded([&] { reader.FinishRow(); });
  }

  const std::string& file_;
  const std::function<void(const CsvRow&)>& onRow_;
  csv_parser parser_;
  CsvRow row_;
  std::vector<CsvField> fields_;  // of the row that is being read
  bool insideRow_ = false;
  std::exception_ptr failure_;
};

}  // namespace

Place PlaceOfField(const CsvRow& row, unsigned long field) {
  Place place{row.line, 1};
  bool quoted = false;
  for (unsigned long i = 0; i < row.rest.size() && field > 0; ++i, ++place.column) {
    char byte = row.rest[i];
    bool lineEnds = byte == '\n' || byte == '\r';
    if (lineEnds && !quoted) break;
    if (byte == '"') quoted = !quoted;
    if (byte == ',' && !quoted) --field;
    bool firstOfPair = byte == '\r' && row.rest.substr(i + 1, 1) == "\n";
    if (lineEnds && !firstOfPair) place = {place.line + 1, 0};
  }
  return place;
}

void ReadCsv(std::string_view text, const std::string& file, EmptyLine emptyLine,
             const std::function<void(const CsvRow&)>& onRow) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  Reader(file, onRow).Read(text, emptyLine);
}

std::string CsvText(const std::string& text, bool isNull) {
  if (isNull) return "";
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted(2 * text.size() + 2, '\0');
  quoted.resize(csv_write(quoted.data(), quoted.size(), text.data(), text.size()));
  return quoted;
}

}  // namespace nxtm
