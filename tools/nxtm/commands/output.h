/// Rows of records on standard output.
#ifndef NXTM_OUTPUT_H
#define NXTM_OUTPUT_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/schema.h"

namespace nxtm {

/// Writes to standard output; a StoreFailure where that cannot be, so that nothing is read in vain.
void Write(std::string_view text);

/// What rows look like.
enum class RowForm {
  kCsv,
  kJson,  // an array of objects; numbers and truth values stand as such, null as null
  kTable  // columns under each other; on a terminal cells are cut to its width
};

/// Prints rows as they come, so that memory does not grow with them.
class RowPrinter {
 public:
  /// Prints some columns, by their places in the schema; with `header` their names first
  /// (of JSON and tables the names stand in any case).
  static std::unique_ptr<RowPrinter> Make(RowForm form, const Schema& schema,
                                          const std::vector<unsigned long>& columns, bool header);
  virtual ~RowPrinter() = default;

  virtual void Print(const std::vector<Field>& fields) = 0;
  /// Prints what follows the last row.
  virtual void End() {}
};

/// The form of a name: csv, json or table.
RowForm FindRowForm(const std::string& name);

}  // namespace nxtm

#endif
