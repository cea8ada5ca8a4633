/// How the values of each type are written: what the workbench has to know beyond what
/// the type manager tells.
#ifndef NXTM_TEXTFORM_H
#define NXTM_TEXTFORM_H

#include <string>
#include <string_view>

namespace nxtm {

/// How the values of a column are written and kept.
struct TextStyle {
  unsigned char codeSet = 0;  // of a text; 0: Latin-1 where its characters allow it, else Unicode
  unsigned char language = 1;
  std::string format;  // of the type's print and scan functions; empty: the form of the table
  std::string folder;  // in which the files that blobs name are looked for
};

/// What the text of a value may hold besides values.
enum class Pattern {
  kNone,   // a value
  kFields  // dates may have "*" in place of a field: any year, month or day
};

/// What counts where types are told apart.
enum class Kind {
  kPlain,       // a number, time or identifier
  kReal,        // a floating number: -0 equals 0 and hashes differently
  kDate,        // takes "*" in place of a field
  kText,        // orders by collation data, with levels and wildcards
  kAlphabetic,  // orders by letters alone
  kBlob
};

struct TextForm {
  const char* type;
  const char* nullable;  // the type that has the same values and null; null: none
  Kind kind;
  /// The directives that a format of the type may have; null: its format is one of C's,
  /// and empty: it has none.
  const char* directives;
  /// The format under which the library reads and prints it; null: the functions below do.
  const char* format;
  /// Reads a value strictly; a Failure says what is wrong with the text.
  void (*parse)(void* value, std::string_view text, const TextStyle& style, Pattern pattern);
  /// The text that parse reads back as the value.
  std::string (*print)(const void* value);
};

/// The form of a type, which a nullable type shares with the type of its values.
const TextForm& FormOf(char type);
/// Whether values of the type can be stored and written as text here.
bool IsUsable(char type);

inline bool IsText(Kind kind) { return kind == Kind::kText || kind == Kind::kAlphabetic; }

}  // namespace nxtm

#endif
