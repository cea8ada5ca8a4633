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
  bool isNull = false;       // empty and not quoted
  unsigned long line = 0;    // where the field begins, from 1
  unsigned long column = 0;  // in bytes, from 1
};

using CsvRow = std::vector<CsvField>;

/// Hands every row of a text to onRow; empty lines are no rows. Throws a Failure
/// with file, line and column for a text that is not CSV.
void ReadCsv(std::string_view text, const std::string& file, const std::function<void(CsvRow&)>& onRow);

/// A field as ReadCsv reads it back, quoted only where it must be.
std::string CsvText(const std::string& text, bool isNull);

}  // namespace nxtm

#endif
