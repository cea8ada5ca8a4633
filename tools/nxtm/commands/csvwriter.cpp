// Records as lines of CSV.

#include "commands/csvwriter.h"

#include <numeric>
#include <utility>

#include "data/csvfile.h"
#include "data/file.h"

namespace nxtm {

std::vector<unsigned long> AllColumns(const Schema& schema) {
  std::vector<unsigned long> all(schema.Columns().size());
  std::iota(all.begin(), all.end(), 0UL);
  return all;
}

std::string CsvHeader(const Schema& schema, const std::vector<unsigned long>& columns) {
  std::string line;
  for (unsigned long i : columns) line += (line.empty() ? "" : ",") + schema.Columns()[i].name;
  return line + '\n';
}

const std::string& CsvWriter::LineOf(const std::vector<Field>& fields) {
  line_.clear();
  ++lines_;
  bool first = true;
  for (unsigned long i : columns_) {
    if (!std::exchange(first, false)) line_ += ',';
    if (!fields[i].isNull) AddField(i, fields[i], columns_.size() == 1);
  }
  return line_ += '\n';
}

void CsvWriter::AddField(unsigned long i, const Field& field, bool alone) {
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

}  // namespace nxtm
