/// Errors of the workbench.
#ifndef NXTM_FAILURE_H
#define NXTM_FAILURE_H

#include <stdexcept>
#include <string>

namespace nxtm {

/// Exit statuses of the workbench; 0 is success.
enum Status { kUsageStatus = 1, kInputStatus = 2, kStoreStatus = 3, kUnreachableStatus = 4 };

/// Input or a command that is not right. The text says what, and where: it is printed
/// behind "nxtm: ", and the process ends with the status.
struct Failure : std::runtime_error {
  explicit Failure(const std::string& text, Status itsStatus = kInputStatus)
      : std::runtime_error(text), status(itsStatus) {}
  Status status;
};

/// A store that is damaged, or a file that cannot be read or written.
struct StoreFailure : Failure {
  explicit StoreFailure(const std::string& text) : Failure(text, kStoreStatus) {}
};

/// Too few machines of a store answered in time.
struct Unreachable : Failure {
  explicit Unreachable(const std::string& text) : Failure(text, kUnreachableStatus) {}
};

/// A Failure at a place of a file: "file:line:column: reason".
inline Failure FailureAt(const std::string& file, unsigned long line, unsigned long column,
                         const std::string& reason) {
  return Failure(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason);
}

/// A text as a message quotes it: on one line, and no longer than a line.
inline std::string Shown(std::string_view text) {
  constexpr unsigned long kLongest = 60;
  static const char kDigits[] = "0123456789ABCDEF";
  std::string shown = "'";
  for (unsigned long i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool beginsCharacter = (byte & 0xC0) != 0x80;
    if (i >= kLongest && beginsCharacter) return shown + "...'";
    if (byte < ' ')
      shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    else
      shown += text[i];
  }
  return shown + "'";
}

}  // namespace nxtm

#endif
