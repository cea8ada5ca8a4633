// What transcripts cannot say of the workbench: indexes of other collation data are
// refused, and indexes find what a full scan finds.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "data/utf8.h"
#include "nxlang.h"
#include "query/query.h"
#include "store/store.h"

namespace {

using nxtm::Condition;
using nxtm::Store;

#ifdef __SANITIZE_ADDRESS__
constexpr int kRounds = 50;  // it checks accesses, for which these do
#else
constexpr int kRounds = 200;
#endif

struct Outcome {
  int status;          // of the exit, or minus the signal
  std::string output;  // both streams
};

/// A scratch directory with the workbench run in it.
class Workbench : public testing::Test {
 protected:
  Workbench() {
    dir_ = std::filesystem::temp_directory_path() / "nxtm_test_XXXXXX";
    mkdtemp(dir_.data());
  }
  ~Workbench() override { std::system(("rm -rf " + dir_).c_str()); }

  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }

  /// Runs nxtm with arguments as a shell reads them.
  Outcome Run(const std::string& arguments) const {
    std::string command = "cd " + dir_ + " && " NXTM " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    int status = pclose(pipe);
    // A shell reports a signal of its child as 128 and the signal.
    int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return {code > 128 ? 128 - code : code, output};
  }

  void ExpectFailure(const std::string& arguments, const std::string& message) const {
    Outcome outcome = Run(arguments);
    EXPECT_EQ(2, outcome.status) << arguments << "\n" << outcome.output;
    EXPECT_NE(std::string::npos, outcome.output.find(message)) << arguments << "\n" << outcome.output;
  }

  std::string dir_;
};

}  // namespace

TEST_F(Workbench, AnIndexOfOtherCollationDataIsRefused) {
  Write("s", "word NxString\nn long\n");
  Write("d", "a,1\nb,2\n");
  ASSERT_EQ(0, Run("import s d store").status);
  {
    auto store = Store::Open(Path("store"), Store::Mode::kWrite);
    for (unsigned long attribute : {0, 1}) {
      nxtm::BuildIndex(*store, attribute, false);
      store->Describe(attribute, false).collation = NxCollationVersion() + 1;
    }
    store->Commit();
  }
  ExpectFailure("query store 'word = a'", "nxtm reindex");
  ExpectFailure("check store", "nxtm reindex");
  EXPECT_EQ("b,2\n", Run("query store 'n = 2'").output) << "numbers need no collation";
  ASSERT_EQ(0, Run("reindex store").status);
  EXPECT_EQ("a,1\n", Run("query store 'word = a'").output);
  EXPECT_EQ(0, Run("check store").status);
}

/// Values that indexes and planners stumble over, and terms made of their likes.
class Oddities {
 public:
  explicit Oddities(unsigned seed) : random_(seed) {}

  unsigned Below(unsigned n) { return static_cast<unsigned>(random_()) % n; }
  std::string OneOf(const std::vector<std::string>& list) {
    return list[Below(static_cast<unsigned>(list.size()))];
  }

  /// The columns but for the first one, which holds texts: what may stand in each.
  struct Column {
    std::string name, type;
    std::vector<std::string> values;
    std::string index = "";  // an option of the index
  };
  static const std::vector<Column>& Columns() {
    static const std::vector<std::string> kDates = {"2000-01-10", "2001-02-11", "2001-03-12", "0001-01-01",
                                                    "9999-12-31", "2003-02-28", "1582-10-04", "1582-10-15"};
    static const std::vector<std::string> kFarDates = {"-9000-02-01", "32767-02-11", "2003-02-28",
                                                       "0001-12-31"};
    static const std::vector<std::string> kPoints = {
        "2000-01-10T00:00:00", "2000-01-10T00:00:59", "2000-01-10T00:01:00", "0001-01-01T23:59:59",
        "9999-12-31T23:59:59", "2003-02-28T12:00:00", "2003-02-28T12:00:01"};
    static const std::vector<Column> kColumns = {
        {"number", "long nullable", {"-10", "-2", "-1", "0", "1", "2", "7", "2147483647", "-2147483648"}},
        {"byte", "NxByte nullable", {"0", "1", "127", "128", "255"}},
        {"big", "NxInt64 nullable", {"0", "-1", "4294967296", "9223372036854775807", "-9223372036854775808"}},
        {"real", "double", {"0", "-0", "0.5", "-1e300", "1e300", "2", "-2.25"}},
        {"span", "d_Interval nullable", {"0", "-0", "0.5", "-1e30", "93784.5"}},
        {"day", "NxDate nullable", kDates},
        {"far", "NxDate", kFarDates},
        {"sday", "d_Date nullable", kDates},
        {"hour", "NxTime nullable", {"00:00:00", "00:00:01", "12:30:00", "23:59:59"}},
        {"zoned", "d_Time", {"00:00:00", "00:00:00.50", "10:00:00+02:00", "10:00:00-02:00", "23:59:59.99"}},
        {"at", "NxDateTime nullable", kPoints},
        {"stamp", "d_Timestamp", kPoints},
        {"object",
         "NxObjId nullable",
         {"(0-1#1)", "(0-1#2)", "(1-0#0)", "(65535-4294967295#0)", "(0-256#0)"}},
        {"class", "NxClassId", {"(0v0)", "(1v0)", "(0v1)", "(256v0)", "(65535v0)"}},
        {"ref", "NxRef", {"(0:0-1#1, 1)", "(1:0-1#1, 2)", "(0:1-0#1, 1)", "(0:0-2#9, 3)", "(256:0-1#0, 0)"}},
        {"bytes", "NxBlob nullable", {"", "00", "0001", "01", "FF"}, "--hash"},
    };
    return kColumns;
  }

  struct TextColumn {
    std::string name, type;
    bool latin = false;  // takes no characters beyond Latin-1
    std::string index = "";
  };
  static const std::vector<TextColumn>& TextColumns() {
    static const std::vector<TextColumn> kColumns = {
        {"name", "NxString nullable language=german"}, {"spanish", "NxString language=spanish"},
        {"danish", "NxString language=danish"},        {"plain", "NxIString", true},
        {"hashed", "NxIString", true, "--hash"},       {"folded", "NxCaseIString", true}};
    return kColumns;
  }

  /// Symbols and spaces in a row, also within contractions and out of expansions; letters that
  /// differ in one level, characters of other collations and of none, and texts longer than
  /// any key.
  std::string Text(bool latin) {
    static const std::vector<std::string> kParts = {
        "a", "A",   "ä", "á", "b", "ß",  "ss", "-", " ", "--", "1",        "æ", "ae", "z", "!",
        "o", "l-l", "l", "a", "é", "aa", "Å",  "c", "h", "ch", "\xC3\x8E", "Я", "東", "ŉ", "\xEF\xBF\xBF"};
    constexpr unsigned kBeyondLatin = 4;
    const auto count = static_cast<unsigned>(kParts.size()) - (latin ? kBeyondLatin : 0);
    std::string text;
    for (unsigned n = Below(5); n > 0; --n) text += kParts[Below(count)];
    if (Below(12) == 0) text = std::string(110 + Below(500), Below(2) ? 'x' : ' ') + text;
    if (Below(30) == 0) text = "á" + std::string(123, 'x') + text;
    return text;
  }
  std::string Row() {
    std::string row;
    for (const TextColumn& column : TextColumns()) {
      if (&column != &TextColumns()[0]) row += ',';
      if (Below(20) != 0) row += '"' + Text(column.latin) + '"';
    }
    for (const Column& column : Columns()) {
      const bool nullable = column.type.find("nullable") != std::string::npos;
      row += nullable && Below(20) == 0 ? "," : ",\"" + OneOf(column.values) + '"';
    }
    return row + "\n";
  }

  std::string Term() {
    const std::string relation = OneOf({" = ", " = ", " != ", " < ", " <= ", " > ", " >= "});
    const TextColumn& text = TextColumns()[Below(static_cast<unsigned>(TextColumns().size()))];
    const std::string negation = OneOf({"", "", "", "not "});
    if (Below(12) == 0)
      return negation + text.name + " between \"" + Text(text.latin) + "\" and \"" + Text(text.latin) + '"';
    if (Below(12) == 0)
      return negation + text.name + " in (\"" + Text(text.latin) + "\", \"" + Pattern(Text(text.latin)) +
             "\")";
    if (Below(2) == 0)
      return negation + text.name + relation + '"' + Pattern(Text(text.latin)) + '"' +
             OneOf({"", "", " literally", " ignoring case", " ignoring accents",
                    " ignoring case, accents, symbols, spaces", " ignoring spaces",
                    " ignoring symbols, accents"});
    const Column& column = Columns()[Below(static_cast<unsigned>(Columns().size()))];
    if (Below(10) == 0) return column.name + " is " + OneOf({"", "not "}) + "null";
    std::string value = OneOf(column.values);
    if (column.type.find("Date") != std::string::npos && column.type.find("Time") == std::string::npos) {
      if (Below(3) == 0) value.replace(0, value.find('-', 1), "*");
      if (Below(3) == 0) value.replace(value.size() - 2, 2, "*");
      if (Below(4) == 0) value.replace(value.find('-', 1) + 1, 2, "*");
    }
    return column.name + relation + '"' + value + '"';
  }

 private:
  std::string Pattern(std::string text) {
    if (Below(2) && !text.empty()) {
      NxString s = nxtm::StringOfUtf8(text);
      auto at = static_cast<unsigned short>(Below(s.Len()));
      s.Cut(at, static_cast<short>(1 + Below(3))).Insert(NxString(Below(2) ? "*" : "?"), at);
      text = nxtm::Utf8OfString(s);
    }
    return text;
  }

  std::mt19937 random_;
};

TEST_F(Workbench, AnIndexFindsWhatAScanFindsAmongOddities) {
  Oddities odd(31);
  std::string schema, rows;
  for (const auto& column : Oddities::TextColumns()) schema += column.name + " " + column.type + "\n";
  for (const auto& column : Oddities::Columns()) schema += column.name + " " + column.type + "\n";
  for (int i = 0; i < 600; ++i) rows += odd.Row();
  Write("s", schema);
  Write("d", rows);
  const Outcome import = Run("import s d store");
  ASSERT_EQ(0, import.status) << import.output;
  for (const auto& column : Oddities::TextColumns())
    ASSERT_EQ(0, Run("index store " + column.name + " " + column.index).status) << column.name;
  for (const auto& column : Oddities::Columns())
    ASSERT_EQ(0, Run("index store " + column.name + " " + column.index).status) << column.name;
  ASSERT_EQ(0, Run("import s d store").status) << "indexes grow with the store";
  const Outcome check = Run("check store");
  EXPECT_EQ(0, check.status) << check.output;

  const auto find = [](Store& store, const Condition& condition, bool scan) {
    std::vector<unsigned int> found;
    nxtm::RunQuery(store, condition, scan, [&](unsigned int number, const std::vector<nxtm::Field>&) {
      return found.push_back(number), true;
    });
    return found;
  };
  const auto compare = [&](int rounds) {
    auto store = Store::Open(Path("store"), Store::Mode::kRead);
    for (int round = 0; round < rounds; ++round) {
      std::string query = odd.Term();
      if (odd.Below(2)) query += odd.OneOf({" and ", " or "}) + odd.Term();
      Condition condition = Condition::Parse(query, store->GetSchema());
      ASSERT_EQ(find(*store, condition, true), find(*store, condition, false)) << query;
    }
  };
  compare(5 * kRounds);
  for (const auto& column : Oddities::Columns())
    ASSERT_EQ(0, Run("index store --hash " + column.name).status) << column.name;
  ASSERT_EQ(0, Run("index store name --hash").status);
  compare(3 * kRounds);
}
