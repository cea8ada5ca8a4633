/// Comma-separated values with the places they came from.
#ifndef NXTM_CSVFILE_H
#define NXTM_CSVFILE_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nxtm {

struct CsvField {
  std::string text;
  bool isNull = false;  // empty and not quoted
};

struct CsvRow {
  std::vector<CsvField> fields;
  std::string_view rest;   // the file's text from the row on
  unsigned long line = 0;  // where the row begins, from 1
};

/// A place in a text; the column is in bytes. Both count from 1.
struct Place {
  unsigned long line;
  unsigned long column;
};

/// Where a field of a row begins; for the number of its fields, where the row ends.
Place PlaceOfField(const CsvRow& row, unsigned long field);

/// What an empty line is.
enum class EmptyLine {
  kNoRow,   // nothing
  kNullRow  // a row of one field that is null
};

/// Hands every row of a text to onRow. A byte order mark at its start is skipped.
/// Throws a Failure with file, line and column for a text that is not CSV.
void ReadCsv(std::string_view text, const std::string& file, EmptyLine emptyLine,
             const std::function<void(const CsvRow&)>& onRow);

/// A field as ReadCsv reads it back, quoted only where it must be.
std::string CsvText(const std::string& text, bool isNull);

}  // namespace nxtm

#endif
