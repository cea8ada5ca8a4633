/// Comma-separated values with the places they came from, read as a stream.
#ifndef NXTM_CSVFILE_H
#define NXTM_CSVFILE_H

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "data/failure.h"

namespace nxtm {

/// Puts the next bytes of a source at `room`, at most `size` of them; 0 at its end.
using ByteSource = std::function<unsigned long(char* room, unsigned long size)>;

/// What an empty line is.
enum class EmptyLine {
  kNoRow,   // nothing
  kNullRow  // a row of one field that is null
};

struct CsvForm {
  char delimiter = ',';  // not a quote, CR or LF
  EmptyLine emptyLine = EmptyLine::kNoRow;
};

struct CsvField {
  std::string_view text;
  bool isNull = false;          // empty and not quoted
  const char* start = nullptr;  // its place in the row as it stands
};

/// A row that is not right; the reader is behind it and can go on.
struct BadRow : Failure {
  using Failure::Failure;
};

/// Reads rows of fields. A field may be quoted; in it a quote is doubled. A line ends with CR,
/// LF or both. A byte order mark at the start is skipped. Memory holds a piece of the source,
/// or a row where that is longer.
class CsvReader {
 public:
  static constexpr unsigned long kPiece = 256UL << 10;
  /// The largest blob in hexadecimal digits, and more.
  static constexpr unsigned long kLongestRow = 272UL << 20;

  /// `file` names the source in messages. A piece has at least four bytes.
  CsvReader(ByteSource source, std::string file, CsvForm form, unsigned long piece = kPiece);

  /// Goes to the next row; false at the end. Throws a BadRow for one that is not CSV, which is
  /// then all up to the end of the line where that shows; a Failure when the source cannot be
  /// read on.
  bool Next();

  /// The fields of the row, which hold until Next.
  const std::vector<CsvField>& Fields() const { return fields_; }
  /// The row as it stands, with the end of its line.
  std::string_view Raw() const { return raw_; }
  /// What is wrong with a field, or behind the last one for the number of them, with file,
  /// line and column in bytes.
  BadRow FailureOf(unsigned long field, const std::string& reason) const;
  /// Bytes of the source up to the end of the row.
  unsigned long long BytesDone() const { return dropped_ + at_; }

 private:
  enum class Scan { kRow, kNoRow, kNeedsMore, kStrayQuote, kOpenQuote };
  enum Class : unsigned char { kOrdinary, kDelimiter, kQuote, kLineEnd };

  Scan ScanRow();
  Scan ScanField();
  Scan ScanQuotedField();
  Scan ScanLineEnd();
  Scan ScanEmptyLine();
  std::string_view WithoutDoubling(std::string_view text);
  void TakeRow();
  BadRow FailureAtByte(const char* byte, const std::string& reason) const;
  bool Fill();

  bool IsAt(Class wanted) const { return p_ != End() && classes_[static_cast<unsigned char>(*p_)] == wanted; }
  const char* Start() const { return buffer_.data() + at_; }
  const char* End() const { return buffer_.data() + end_; }

  ByteSource source_;
  std::string file_;
  EmptyLine emptyLine_;
  std::array<Class, 256> classes_{};
  std::string buffer_;
  unsigned long at_ = 0, end_ = 0;  // of it, what is not taken yet
  const char* p_ = nullptr;         // how far a row is scanned
  unsigned long long dropped_ = 0;  // bytes that lay before the buffer's
  bool sourceEnded_ = false;
  std::vector<CsvField> fields_;
  std::string unquoted_;  // the texts of fields with doubled quotes
  std::string_view raw_;
  unsigned long line_ = 1, nextLine_ = 1;  // where the row begins, and the next one
};

/// The bytes of a file by its descriptor; of a terminal or pipe, too. Reading throws a Failure
/// with the reason of the system.
ByteSource SourceOf(int descriptor, const std::string& file);

/// A field as the reader reads it back, quoted only where it must be.
std::string CsvText(const std::string& text, bool isNull);

}  // namespace nxtm

#endif
