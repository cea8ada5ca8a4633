/// Records as lines of CSV.
#ifndef NXTM_CSVWRITER_H
#define NXTM_CSVWRITER_H

#include <string>
#include <vector>

#include "data/schema.h"

namespace nxtm {

/// The places of all columns.
std::vector<unsigned long> AllColumns(const Schema& schema);
/// The names of columns, with a comma between them and the end of the line.
std::string CsvHeader(const Schema& schema, const std::vector<unsigned long>& columns);

/// Writes records as lines of CSV.
class CsvWriter {
 public:
  /// Blobs go to files of a folder where one is given, else into the lines.
  CsvWriter(const Schema& schema, std::vector<unsigned long> columns, const std::string& blobFolder = "")
      : schema_(schema),
        columns_(std::move(columns)),
        converters_(ConvertersOf(schema)),
        blobFolder_(blobFolder) {}

  const std::string& LineOf(const std::vector<Field>& fields);

 private:
  void AddField(unsigned long i, const Field& field, bool alone);

  const Schema& schema_;
  std::vector<unsigned long> columns_;
  std::vector<Converter> converters_;
  std::string blobFolder_;
  unsigned long lines_ = 0;
  std::string line_;
};

}  // namespace nxtm

#endif
