/// Errors of the workbench.
#ifndef NXTM_FAILURE_H
#define NXTM_FAILURE_H

#include <stdexcept>
#include <string>

namespace nxtm {

/// Input, a store or a command that is not right. The text says what, and where:
/// it is printed behind "nxtm: " and the exit status is 2.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A Failure at a place of a file: "file:line:column: reason".
inline Failure FailureAt(const std::string& file, unsigned long line, unsigned long column,
                         const std::string& reason) {
  return Failure(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason);
}

}  // namespace nxtm

#endif
