// Conditions of any bytes: they are refused with a reason or select records, `not` selects
// the others of those without nulls and none that they select themselves, and what is said
// twice over with `not` is what was said.

#include <string>
#include <vector>

#include "data/failure.h"
#include "data/schema.h"
#include "input.h"
#include "query/query.h"

namespace {

using nxtm::Condition;
using nxtm::Schema;

/// No blobs: a condition on them may name any file of this machine.
const char kSchema[] =
    "w NxString nullable language=german\n"
    "i NxIString nullable\n"
    "c NxCaseIString\n"
    "n long nullable\n"
    "b NxInt64\n"
    "x double nullable\n"
    "d NxDate nullable\n"
    "f NxDate format=%d.%m.%Y\n"
    "s d_Timestamp\n"
    "t NxTime nullable\n"
    "o NxObjId\n"
    "y NxBoolean nullable\n";

/// The values of a record, a column each; nullptr is null.
using Row = std::vector<const char*>;
const std::vector<Row> kRows = {
    {"Straße", "ab", "AB", "-1", "9223372036854775807", "0.5", "2004-02-29", "29.02.2004",
     "2004-03-15T13:45:07.25+02:00", "13:45:07", "(0-42#7)", "true"},
    {"", "", "", "0", "0", "-0", "1582-10-15", "01.01.0001", "0001-01-01T00:00:00", "00:00:00", "(0-1#1)",
     "false"},
    {"*?\xE6\x9D\xB1- -", "a", "\xC3\xA9", "2147483647", "-1", "1e300", "9999-12-31", "31.12.9999",
     "9999-12-31T23:59:59", "23:59:59", "(65535-1#0)", "true"},
    {nullptr, nullptr, "c", nullptr, "1", nullptr, nullptr, "28.02.1900", "2000-01-01T00:00:00", nullptr,
     "(1-1#2)", nullptr},
};

struct Table {
  Schema schema = Schema::Parse(kSchema, "schema");
  std::vector<std::string> records;

  Table() {
    std::vector<nxtm::Converter> converters = nxtm::ConvertersOf(schema);
    for (const Row& row : kRows) {
      std::string& record = records.emplace_back();
      for (unsigned long i = 0; i < row.size(); ++i) {
        const nxtm::Column& column = schema.Columns()[i];
        if (!row[i]) {
          nxtm::Record::AppendNull(record, column);
          continue;
        }
        nxtm::Record::AppendHead(record, column);
        converters[i].AppendImage(record, row[i]);
      }
    }
  }

  /// Which records a condition selects, or that it is refused.
  struct Answer {
    std::vector<bool> selected;
    std::string failure;
  };
  Answer Ask(const std::string& text) const {
    Answer answer;
    try {
      const Condition condition = Condition::Parse(text, schema);
      nxtm::RecordReader reader(schema);
      for (const std::string& record : records) {
        reader.Begin(record);
        answer.selected.push_back(condition.Matches(schema, reader));
      }
    } catch (const nxtm::Failure& failure) {
      answer.failure = failure.what();
    }
    return answer;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Table table;
  const std::string text(data, data + size);
  const Table::Answer answer = table.Ask(text);
  if (!answer.failure.empty()) {
    Require(answer.failure.compare(0, 28, "the condition, at character ") == 0);
    return 0;
  }
  const Table::Answer others = table.Ask("not (" + text + ")"), again = table.Ask("not not (" + text + ")");
  if (!again.failure.empty()) {  // it stands as deep as it may
    Require(again.failure.find("at most 100 conditions") != std::string::npos);
    return 0;
  }
  Require(again.selected == answer.selected);
  for (unsigned long i = 0; i < kRows.size(); ++i) {
    Require(!answer.selected[i] || !others.selected[i]);
    const bool hasNull = i + 1 == kRows.size();
    Require(hasNull || answer.selected[i] || others.selected[i]);
  }
  return 0;
}
