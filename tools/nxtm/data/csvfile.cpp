// A row is read where it lies in the buffer. One that the buffer does not hold to its end is
// read again from its start when more has come; the buffer doubles, so that costs little.

#include "data/csvfile.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace nxtm {

namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

/// A place in a text; both count from 1, the column in bytes.
struct Place {
  unsigned long line, column;
};

/// Where a text that begins in some line has a byte. A line ends with CR, LF or both.
Place PlaceOf(std::string_view text, unsigned long offset, unsigned long line) {
  Place place{line, offset + 1};
  for (unsigned long i = 0; i < offset; ++i) {
    const bool firstOfPair = text[i] == '\r' && text.substr(i + 1, 1) == "\n";
    if ((text[i] == '\n' || text[i] == '\r') && !firstOfPair) place = {place.line + 1, offset - i};
  }
  return place;
}

}  // namespace

CsvReader::CsvReader(ByteSource source, std::string file, CsvForm form, unsigned long piece)
    : source_(std::move(source)), file_(std::move(file)), emptyLine_(form.emptyLine), buffer_(piece, '\0') {
  classes_['"'] = kQuote;
  classes_['\r'] = classes_['\n'] = kLineEnd;
  classes_[static_cast<unsigned char>(form.delimiter)] = kDelimiter;
  Fill();
  if (std::string_view(buffer_.data(), end_).substr(0, 3) == kByteOrderMark) at_ = 3;
}

bool CsvReader::Next() {
  for (;;) {
    line_ = nextLine_;
    raw_ = {};
    if (at_ == end_ && !Fill()) return false;
    switch (ScanRow()) {
      case Scan::kRow:
        TakeRow();
        return true;
      case Scan::kNoRow:
        TakeRow();
        break;
      case Scan::kNeedsMore:
        Fill();
        break;
      case Scan::kStrayQuote: {
        const char* const quote = p_;
        while (p_ != End() && !IsAt(kLineEnd)) ++p_;
        if (ScanLineEnd() == Scan::kNeedsMore) {
          Fill();
          break;
        }
        TakeRow();
        throw FailureAtByte(quote, "a quote is neither around the field nor doubled inside");
      }
      case Scan::kOpenQuote:
        p_ = End();
        TakeRow();
        throw FailureAtByte(fields_.back().start, "the quoted field does not end");
    }
  }
}

/// Scans from the start of the buffer's rest behind the end of a row.
CsvReader::Scan CsvReader::ScanRow() {
  fields_.clear();
  unquoted_.clear();
  p_ = Start();
  if (IsAt(kLineEnd)) return ScanEmptyLine();
  for (;; ++p_) {
    const Scan field = p_ != End() && *p_ == '"' ? ScanQuotedField() : ScanField();
    if (field != Scan::kRow) return field;
    if (!IsAt(kDelimiter)) return ScanLineEnd();
  }
}

CsvReader::Scan CsvReader::ScanEmptyLine() {
  if (emptyLine_ == EmptyLine::kNullRow) fields_.push_back({{}, true, p_});
  const Scan end = ScanLineEnd();
  return end == Scan::kRow && fields_.empty() ? Scan::kNoRow : end;
}

CsvReader::Scan CsvReader::ScanField() {
  const char* const start = p_;
  const char *p = p_, *const end = End();
  while (p != end && classes_[static_cast<unsigned char>(*p)] == kOrdinary) ++p;
  p_ = p;
  if (p_ == End() && !sourceEnded_) return Scan::kNeedsMore;
  if (IsAt(kQuote)) return Scan::kStrayQuote;
  fields_.push_back({{start, static_cast<unsigned long>(p_ - start)}, p_ == start, start});
  return Scan::kRow;
}

CsvReader::Scan CsvReader::ScanQuotedField() {
  const char* const start = p_++;
  bool doubled = false;
  for (;; ++p_) {
    p_ = static_cast<const char*>(std::memchr(p_, '"', static_cast<unsigned long>(End() - p_)));
    if (p_ == nullptr || (++p_ == End() && !sourceEnded_)) {
      fields_.push_back({{}, false, start});
      return sourceEnded_ ? Scan::kOpenQuote : Scan::kNeedsMore;
    }
    if (!IsAt(kQuote)) break;
    doubled = true;
  }
  if (IsAt(kOrdinary)) return Scan::kStrayQuote;
  const std::string_view text(start + 1, static_cast<unsigned long>(p_ - start) - 2);
  fields_.push_back({doubled ? WithoutDoubling(text) : text, false, start});
  return Scan::kRow;
}

/// The end of the line, or of the source.
CsvReader::Scan CsvReader::ScanLineEnd() {
  if (p_ == End()) return sourceEnded_ ? Scan::kRow : Scan::kNeedsMore;
  if (*p_++ == '\n') return Scan::kRow;
  if (p_ == End() && !sourceEnded_) return Scan::kNeedsMore;
  if (p_ != End() && *p_ == '\n') ++p_;
  return Scan::kRow;
}

std::string_view CsvReader::WithoutDoubling(std::string_view text) {
  // Fields of the row have views of it: it gets all room at once.
  if (unquoted_.capacity() < buffer_.size()) unquoted_.reserve(buffer_.size());
  const unsigned long start = unquoted_.size();
  for (unsigned long i = 0; i < text.size(); ++i) {
    unquoted_ += text[i];
    if (text[i] == '"') ++i;
  }
  return std::string_view(unquoted_).substr(start);
}

/// Takes what was scanned out of the buffer.
void CsvReader::TakeRow() {
  raw_ = {Start(), static_cast<unsigned long>(p_ - Start())};
  at_ += raw_.size();
  nextLine_ = std::memchr(raw_.data(), '"', raw_.size()) ? PlaceOf(raw_, raw_.size(), line_).line : line_ + 1;
}

BadRow CsvReader::FailureAtByte(const char* byte, const std::string& reason) const {
  const Place place = PlaceOf(raw_, static_cast<unsigned long>(byte - raw_.data()), line_);
  return BadRow(FailureAt(file_, place.line, place.column, reason).what());
}

BadRow CsvReader::FailureOf(unsigned long field, const std::string& reason) const {
  if (field < fields_.size()) return FailureAtByte(fields_[field].start, reason);
  unsigned long end = raw_.size();
  while (end > 0 && (raw_[end - 1] == '\n' || raw_[end - 1] == '\r')) --end;
  return FailureAtByte(raw_.data() + end, reason);
}

/// Fills the buffer behind what is not taken yet; false when nothing comes any more.
bool CsvReader::Fill() {
  std::memmove(buffer_.data(), Start(), end_ - at_);
  dropped_ += at_;
  end_ -= at_;
  at_ = 0;
  if (end_ == buffer_.size()) {
    if (end_ >= kLongestRow)
      throw FailureAt(file_, line_, 1, "the row is longer than " + std::to_string(kLongestRow) + " bytes");
    buffer_.resize(std::min(2 * end_, kLongestRow));
  }
  const unsigned long before = end_;
  while (end_ < buffer_.size() && !sourceEnded_) {
    const unsigned long n = source_(buffer_.data() + end_, buffer_.size() - end_);
    end_ += n;
    sourceEnded_ = n == 0;
  }
  return end_ != before;
}

ByteSource SourceOf(int descriptor, const std::string& file) {
  return [=](char* room, unsigned long size) {
    for (;;) {
      const long n = read(descriptor, room, size);
      if (n >= 0) return static_cast<unsigned long>(n);
      if (errno != EINTR) throw Failure(file + ": " + std::strerror(errno));
    }
  };
}

std::string CsvText(const std::string& text, bool isNull) {
  if (isNull) return "";
  // What begins a file with a byte order mark would lose it.
  const bool begins = text.compare(0, 3, kByteOrderMark) == 0;
  if (!text.empty() && !begins && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted += '"';
}

}  // namespace nxtm
