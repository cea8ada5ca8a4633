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

/// A text as a message quotes it: on one line, and no longer than a line.
inline std::string Shown(const std::string& text) {
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
