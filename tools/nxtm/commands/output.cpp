// The forms of rows.

#include "commands/output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "commands/csvwriter.h"
#include "data/failure.h"

namespace nxtm {

void Write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size()) return;
  throw StoreFailure(std::string("the output cannot be written: ") + std::strerror(errno));
}

namespace {

class CsvPrinter : public RowPrinter {
 public:
  CsvPrinter(const Schema& schema, const std::vector<unsigned long>& columns, bool header)
      : writer_(schema, columns) {
    if (header) Write(CsvHeader(schema, columns));
  }
  void Print(const std::vector<Field>& fields) override { Write(writer_.LineOf(fields)); }

 private:
  CsvWriter writer_;
};

/// The columns that are printed, and the texts of their values.
class Cells {
 public:
  Cells(const Schema& schema, const std::vector<unsigned long>& columns)
      : schema_(schema), columns_(columns), converters_(ConvertersOf(schema)) {}

  unsigned long Size() const { return columns_.size(); }
  const Column& At(unsigned long i) const { return schema_.Columns()[columns_[i]]; }
  TextOfValue Text(unsigned long i, const std::vector<Field>& fields) {
    const Field& field = fields[columns_[i]];
    return field.isNull ? TextOfValue{"", true} : converters_[columns_[i]].ToText(field.image);
  }
  /// Whether a text stands for itself in JSON: truth values, and numbers that every reader
  /// of JSON takes as they are. Those under a format of the column may not be decimal.
  bool IsJsonValue(unsigned long i, const std::string& text) const {
    constexpr long long kExact = 1LL << 53;
    const Kind kind = FormOf(At(i).type).kind;
    if ((kind != Kind::kPlain && kind != Kind::kReal) || !At(i).style.format.empty()) return false;
    const auto value = nlohmann::json::parse(text, nullptr, false);
    if (!value.is_number_integer()) return !value.is_discarded();
    return value >= -kExact && value <= kExact;
  }

 private:
  const Schema& schema_;
  const std::vector<unsigned long> columns_;
  std::vector<Converter> converters_;
};

class JsonPrinter : public RowPrinter {
 public:
  JsonPrinter(const Schema& schema, const std::vector<unsigned long>& columns) : cells_(schema, columns) {
    Write("[");
  }
  void Print(const std::vector<Field>& fields) override {
    line_ = std::exchange(any_, true) ? ",\n  {" : "\n  {";
    for (unsigned long i = 0; i < cells_.Size(); ++i) {
      const TextOfValue value = cells_.Text(i, fields);
      line_ += (i ? ", " : "") + Quoted(cells_.At(i).name) + ": ";
      line_ += value.isNull ? "null" : cells_.IsJsonValue(i, value.text) ? value.text : Quoted(value.text);
    }
    Write(line_ += '}');
  }
  void End() override { Write(any_ ? "\n]\n" : "]\n"); }

 private:
  static std::string Quoted(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  }

  Cells cells_;
  bool any_ = false;
  std::string line_;
};

/// Columns get the width of the first rows; longer cells later move what is behind them.
class TablePrinter : public RowPrinter {
 public:
  TablePrinter(const Schema& schema, const std::vector<unsigned long>& columns) : cells_(schema, columns) {
    rows_.emplace_back();
    for (unsigned long i = 0; i < cells_.Size(); ++i) rows_.back().push_back(cells_.At(i).name);
  }
  void Print(const std::vector<Field>& fields) override {
    constexpr unsigned long kMeasured = 1000;
    std::vector<std::string> row;
    for (unsigned long i = 0; i < cells_.Size(); ++i) row.push_back(OneLine(cells_.Text(i, fields).text));
    if (widths_.empty())
      rows_.push_back(std::move(row));
    else
      PrintRow(row);
    if (rows_.size() > kMeasured) Flush();
  }
  void End() override {
    if (widths_.empty()) Flush();
  }

 private:
  static bool BeginsCharacter(char c) { return (c & 0xC0) != 0x80; }
  static unsigned long Width(const std::string& text) {
    return static_cast<unsigned long>(std::count_if(text.begin(), text.end(), BeginsCharacter));
  }
  static std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, ' ');
    return text;
  }
  /// The columns of the terminal; 0 where standard output is none.
  static unsigned long TerminalWidth() {
    winsize size{};
    return isatty(STDOUT_FILENO) && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
  }

  void Flush() {
    widths_.assign(cells_.Size(), 1);
    for (const auto& row : rows_)
      for (unsigned long i = 0; i < row.size(); ++i) widths_[i] = std::max(widths_[i], Width(row[i]));
    FitTerminal();
    for (const auto& row : rows_) PrintRow(row);
    rows_.clear();
  }

  /// Takes from the widest column what a line is too long.
  void FitTerminal() {
    const unsigned long room = TerminalWidth();
    cut_ = room > 0;
    const auto line = [this] {
      unsigned long sum = kBetween * (widths_.size() - 1);
      for (unsigned long width : widths_) sum += width;
      return sum;
    };
    while (cut_ && line() > room) {
      unsigned long& widest = *std::max_element(widths_.begin(), widths_.end());
      if (widest <= 1) return;
      --widest;
    }
  }

  void PrintRow(const std::vector<std::string>& row) {
    std::string line;
    for (unsigned long i = 0; i < row.size(); ++i) {
      const std::string cell = cut_ ? Cut(row[i], widths_[i]) : row[i];
      line += cell;
      const unsigned long width = Width(cell);
      if (i + 1 < row.size()) line.append(kBetween + std::max(widths_[i], width) - width, ' ');
    }
    Write(line.erase(line.find_last_not_of(' ') + 1) += '\n');
  }

  static std::string Cut(const std::string& text, unsigned long width) {
    if (Width(text) <= width) return text;
    unsigned long at = 0;
    for (unsigned long left = width - 1; at < text.size() && (left > 0 || !BeginsCharacter(text[at])); ++at)
      if (at + 1 < text.size() && BeginsCharacter(text[at + 1])) --left;
    return text.substr(0, width > 1 ? at : 0) + "\xE2\x80\xA6";
  }

  static constexpr unsigned long kBetween = 2;
  Cells cells_;
  std::vector<std::vector<std::string>> rows_;  // the first ones, until they are measured
  std::vector<unsigned long> widths_;
  bool cut_ = false;
};

}  // namespace

std::unique_ptr<RowPrinter> RowPrinter::Make(RowForm form, const Schema& schema,
                                             const std::vector<unsigned long>& columns, bool header) {
  switch (form) {
    case RowForm::kJson:
      return std::make_unique<JsonPrinter>(schema, columns);
    case RowForm::kTable:
      return std::make_unique<TablePrinter>(schema, columns);
    default:
      return std::make_unique<CsvPrinter>(schema, columns, header);
  }
}

RowForm FindRowForm(const std::string& name) {
  if (name == "csv") return RowForm::kCsv;
  if (name == "json") return RowForm::kJson;
  if (name == "table") return RowForm::kTable;
  throw Failure("'" + name + "' is no form of rows (csv, json, table)", kUsageStatus);
}

}  // namespace nxtm
