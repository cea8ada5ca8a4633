// Dates, times and other values as text: the examples of docs/text.md, round trips, null
// texts, local times.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nx21rtms.h"
#include "nxlang.h"
#include "nxnulltext.h"
#include "nxtypmgr.h"

namespace {

std::string Print(NxSlot::Print* slot, void* value, const std::string& format) {
  NxString out;
  EXPECT_EQ(&slot(out, value, format.c_str(), 1), &out);
  return out.StrGet();
}

/// Scans `from` under one format and prints what it gives under another one.
template <class T, NxSlot::Print* kPrint, NxSlot::Scan* kScan>
std::string Through(const std::string& from, const std::string& scanFormat, const std::string& printFormat) {
  T value{};
  NxString in(from.c_str());
  EXPECT_EQ(kScan(&value, in, scanFormat.c_str(), 1), &value);
  return Print(kPrint, &value, printFormat);
}

struct Type {
  std::string (*through)(const std::string&, const std::string&, const std::string&);
  std::string format;  // of the values in the document
};

#define NX_TEXT(T, Prefix) Through<T, Prefix##PrintToNxString, Prefix##ScanFromNxString>

const std::map<std::string, Type> kTypes = {
    {"NxDate", {NX_TEXT(NxDate, Date), "%Y-%m-%d"}},
    {"NxTime", {NX_TEXT(NxTime, Time), "%H:%M:%S"}},
    {"NxDateTime", {NX_TEXT(NxDateTime, DaTime), "%Y-%m-%dT%H:%M:%S"}},
    {"d_Date", {NX_TEXT(d_Date, d_Date), "%Y-%m-%d"}},
    {"d_Time", {NX_TEXT(d_Time, d_Time), "%H:%M:%S"}},
    {"d_Timestamp", {NX_TEXT(d_Timestamp, d_Timestamp), "%Y-%m-%dT%H:%M:%S"}},
    {"d_Interval", {NX_TEXT(d_Interval, d_Interval), "%e %H:%M:%S"}},
    {"char", {NX_TEXT(char, Char), "%c"}},
    {"short", {NX_TEXT(short, Short), "%hd"}},
    {"int", {NX_TEXT(int, Int), "%d"}},
    {"long", {NX_TEXT(long, Long), "%ld"}},
    {"double", {NX_TEXT(double, Double), "%lf"}},
    {"NxInt64", {NX_TEXT(NxInt64, Int64), "%S"}},
    {"NxString", {NX_TEXT(NxString, NxString), "%s"}},
    {"NxIString", {NX_TEXT(NxIString, NxIString), "%s"}},
    {"NxBoolean", {NX_TEXT(NxBoolean, Boolean), "noop"}},
    {"NxSeal", {NX_TEXT(NxSeal, Seal), "noop"}},
};

/// The cells of a table's row, without spaces around and backquotes; none for other lines.
std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t at = line.find('|'), next; (next = line.find('|', at + 1)) != std::string::npos;
       at = next) {
    std::string cell = line.substr(at + 2, next - at - 3);
    if (cell.size() > 1 && cell.front() == '`') cell = cell.substr(1, cell.size() - 2);
    cells.push_back(cell);
  }
  return cells;
}

TEST(Document, ExamplesHold) {
  std::ifstream file(NX_SOURCE_DIR "/docs/text.md");
  std::vector<std::string> head;
  int examples = 0;
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> row = Cells(line);
    if (row.empty()) head.clear();
    if (head.empty() || row[0][0] == '-') {
      if (head.empty()) head = row;
      continue;
    }
    SCOPED_TRACE(line);
    ++examples;
    if (head[0] == "type") {
      const Type& type = kTypes.at(row[0]);
      const bool prints = head[1] == "value";
      EXPECT_EQ(type.through(row[1], prints ? type.format : row[2], prints ? row[2] : type.format), row[3]);
    } else if (head.size() == 4) {
      EXPECT_EQ(kTypes.at("NxDateTime").through("2004-03-15T13:45:07", "%Y-%m-%dT%H:%M:%S", row[0]), row[2]);
    }
  }
  EXPECT_GE(examples, 50);
}

// What a format says in full comes back.
TEST(DateText, RoundTrips) {
  std::mt19937 random(4);
  const char* formats[] = {"%Y-%m-%dT%H:%M:%S", "%a %e.%b %Y %I:%M:%S %p", "%A, %B %d %Y %P %I.%M.%S"};
  for (int i = 0; i < 3000; ++i) {
    const NxDateTime t(NxDate(static_cast<long>(1721060 + random() % 3652425)),  // to the year 9999
                       NxTime(static_cast<long>(random() % 86400)));
    for (const char* format : formats) {
      NxString text;
      NxDateTime back;
      t.PrintToNxString(text, format);
      back.ScanFromNxString(text, format);
      ASSERT_EQ(back != t, 0) << text.StrGet();
    }
  }
}

TEST(DateText, NullTextAndOutput) {
  NxDate none(0L);
  none.SetNullValue();
  NxString out("before "), wide(kCodeSetUnicode, 1);
  EXPECT_STREQ(none.PrintToNxString(out, nullptr).StrGet(), "{NULL}");
  NxDate d(2453080L);
  EXPECT_STREQ(d.PrintToNxString(out, nullptr).StrGet(), "{NULL}2004-03-15");
  EXPECT_STREQ(NxTime(3661L).PrintToNxString(out, " %H").StrGet(), "{NULL}2004-03-15 01");
  EXPECT_STREQ(DatePrintToNxString(out, &d, "", 1).StrGet(), "{NULL}2004-03-15 01");
  d_Date plain(d);
  EXPECT_STREQ(d_DatePrintToNxString(out, &plain, nullptr, 1).StrGet(), "{NULL}2004-03-15 01");

  // 16-bit output and input; an asterisk is no wildcard.
  EXPECT_EQ(d.PrintToNxString(wide, "%d.%m.%Y").Len(), 10);
  d = none;
  d.ScanFromNxString(wide, "%d.%m.%Y");
  EXPECT_EQ(static_cast<long>(d), 2453080);
  const NxString before(__NullPrintString);
  NxTypeMgr::SetNullPrintString(NxString("*"));
  NxString anything("2004-03-15"), star("*");
  d.ScanFromNxString(anything, nullptr);
  EXPECT_FALSE(d.IsNullValue());
  NxString text;
  NxStringScanFromNxString(&text, star.MapToCodeSet(kCodeSetUnicode) ? anything : star, "%s", 1);
  EXPECT_TRUE(text.IsNullValue());
  NxTypeMgr::SetNullPrintString(before);
  EXPECT_EQ(DateScanFromNxString(nullptr, anything, "%Y", 1), nullptr);
  EXPECT_EQ(d_IntervalScanFromNxString(nullptr, anything, "%S", 1), nullptr);
  EXPECT_EQ(d_TimeScanFromNxString(nullptr, anything, "%S", 1), nullptr);
}

TEST(DateText, StandardTypesAreLocal) {
  d_Time::set_default_Time_Zone(d_Time::UtcPlus2);
  d_Time t(10, 30, 15.25);
  EXPECT_EQ(Print(d_TimePrintToNxString, &t, "%H:%M:%S %Y-%m-%d"), "10:30:15 0000-01-01");
  NxString in("23:59:58");
  d_TimeScanFromNxString(&t, in, "%H:%M:%S", 1);
  EXPECT_TRUE(t.hour == 25 && t.tz_hour == 2 && t.second == 58 && t.hundredths == 0);
  d_Time::set_default_Time_Zone(d_Time::Utc);
}

TEST(IntegerText, AsTheCLibrary) {
  const char* texts[] = {"2147483648", "-99999999999", "1234567890", " \t+7x", "-", "#12", "", "-5", "0012"};
  const char* formats[] = {"%ld", "%d", "%u", "#%ld", " %ld", "%3ld", "%hd", "%i"};
  for (const char* text : texts)
    for (const char* format : formats) {
      long expected = 77, found = 77;
      std::sscanf(text, format, &expected);
      MySscanf(text, 0, format, 1, &found);
      EXPECT_EQ(found, expected) << text << ' ' << format;
    }
  for (long value : {0L, -1L, 9L, 10L, 99L, 100L, 65535L, -2147483647L - 1, 2147483647L})
    for (const char* format : {"%ld", "<%d>", "%u;", "%hd", "%hu", "%05ld", "%lu%%", "%x"}) {
      char expected[64];
      std::snprintf(expected, sizeof expected, format, value);
      EXPECT_EQ(Print(LongPrintToNxString, &value, format), expected) << format;
    }
  long one = 1;
  const std::string longText(600, 'x');
  EXPECT_EQ(Print(LongPrintToNxString, &one, longText + "%ld"), longText.substr(0, 511));
}

TEST(StringText, UnicodeIntoUnicode) {
  NxString value("Z\xFCrich"), out(kCodeSetUnicode, 1);
  value.MapToCodeSet(kCodeSetUnicode);
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "<%1M>", 1).StrGet(), "<Z\xFCrich>");
}

}  // namespace
