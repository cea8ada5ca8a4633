// CSV by libcsv, which knows no positions: it gets the text byte by byte, so that the
// place of every field is known when it is reported.

#include "csvfile.h"

#include <csv.h>

#include <memory>

#include "failure.h"

namespace nxtm {

namespace {

int NoSpace(unsigned char) { return 0; }

/// What the callbacks of the parser share.
struct Reader {
  const std::function<void(CsvRow&)>& onRow;
  CsvRow row = {};
  unsigned long line = 1, column = 1;            // of the byte that the parser is at
  unsigned long fieldLine = 1, fieldColumn = 1;  // where the current field began
  std::exception_ptr failure = nullptr;          // may not pass through the parser

  void NextPlace(char byte) {
    ++column;
    if (byte != '\n') return;
    ++line;
    column = 1;
  }
};

void OnField(void* text, size_t size, void* data) {
  auto& reader = *static_cast<Reader*>(data);
  CsvField field;
  field.isNull = text == nullptr;
  if (text) field.text.assign(static_cast<char*>(text), size);
  field.line = reader.fieldLine;
  field.column = reader.fieldColumn;
  reader.row.push_back(std::move(field));
  reader.fieldLine = reader.line;
  reader.fieldColumn = reader.column + 1;
}

void OnRow(int, void* data) {
  auto& reader = *static_cast<Reader*>(data);
  try {
    if (!reader.failure) reader.onRow(reader.row);
  } catch (...) {
    reader.failure = std::current_exception();
  }
  reader.row.clear();
}

}  // namespace

void ReadCsv(std::string_view text, const std::string& file, const std::function<void(CsvRow&)>& onRow) {
  csv_parser parser;
  csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL);
  std::unique_ptr<csv_parser, void (*)(csv_parser*)> release(&parser, csv_free);
  csv_set_space_func(&parser, NoSpace);  // blanks belong to the fields
  Reader reader{onRow};
  for (char byte : text) {
    if (csv_parse(&parser, &byte, 1, OnField, OnRow, &reader) != 1)
      throw FailureAt(file, reader.line, reader.column, std::string(csv_strerror(csv_error(&parser))));
    if (reader.failure) std::rethrow_exception(reader.failure);
    reader.NextPlace(byte);
    if (byte == '\n' && reader.row.empty() && parser.pstate == 0) {  // between rows
      reader.fieldLine = reader.line;
      reader.fieldColumn = 1;
    }
  }
  if (csv_fini(&parser, OnField, OnRow, &reader) != 0)
    throw FailureAt(file, reader.fieldLine, reader.fieldColumn, "the quoted field does not end");
  if (reader.failure) std::rethrow_exception(reader.failure);
}

std::string CsvText(const std::string& text, bool isNull) {
  if (isNull) return "";
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted(2 * text.size() + 2, '\0');
  quoted.resize(csv_write(quoted.data(), quoted.size(), text.data(), text.size()));
  return quoted;
}

}  // namespace nxtm
