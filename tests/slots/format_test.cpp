// Printing and scanning: the stated texts, both directions, code sets, and formats that
// would read or write memory if they reached the C library.
#include "nxtypfmt.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/nxformat.h"
#include "nxbool.h"
#include "nxcistr.h"
#include "nxint64.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxtypmgr.h"

namespace {

/// The text that a slot prints, into a string that held something before.
template <class T>
std::string Print(NxSlot::Print* slot, T value, const char* fmt, unsigned long n = 1) {
  NxString out("old");
  EXPECT_EQ(&slot(out, &value, fmt, n), &out);
  return out.StrGet();
}

/// What a slot scans into a value that was `before`, from 8-bit and from 16-bit input.
template <class T>
T Scan(NxSlot::Scan* slot, T before, const char* text, const char* fmt) {
  NxString in(text), wide(text);
  wide.MapToCodeSet(kCodeSetUnicode);
  T value = before, fromWide = before;
  EXPECT_EQ(slot(&value, in, fmt, 1), &value);
  slot(&fromWide, wide, fmt, 1);
  EXPECT_EQ(value, fromWide) << text;
  EXPECT_EQ(slot(nullptr, in, fmt, 1), nullptr);
  return value;
}

// Of every length, into strings whose buffers have room and that have not, 8 and 16 bits wide.
TEST(Numbers, PrintAsTheCLibraryHasThem) {
  NxString narrow, wide(kCodeSetUnicode, kLanguageDefault), out;
  for (int shift = 0; shift < 64; ++shift) {
    for (const long long from : {LLONG_MIN, LLONG_MAX, 0x79ABCDEF01234567LL, 1'000'000'000'000'000'000LL}) {
      NxInt64 wideNumber = NxInt64::FromWide(from >> shift);
      const std::string number = std::to_string(from >> shift);
      narrow = "#";
      wide.CopyMapped(narrow, kCodeSetUnicode);
      EXPECT_EQ(Int64PrintToNxString(narrow, &wideNumber, "%S", 1).StrGet(), "#" + number);
      EXPECT_EQ(narrow._nSize, number.size() + 2);
      EXPECT_TRUE(Int64PrintToNxString(wide, &wideNumber, nullptr, 1) == narrow) << number;
      long word = static_cast<long>(from >> shift);
      EXPECT_EQ(LongPrintToNxString(out, &word, "%ld", 1).StrGet(), std::to_string(word));
      EXPECT_EQ(out._nSize, std::to_string(word).size() + 1);
    }
  }
}

// What formats make of numbers are golden cases.
TEST(Numbers, StayInsideTheWorkAreaAndWantAFormat) {
  EXPECT_EQ(Print(IntPrintToNxString, 7, "%600d"), std::string(511, ' '));
  EXPECT_EQ(Print(IntPrintToNxString, 7, (std::string(511, 'x') + "%d").c_str()), std::string(511, 'x'));
  EXPECT_EQ(Print(IntPrintToNxString, 7, static_cast<const char*>(nullptr)), "old");
}

TEST(Numbers, MantissaAndExponentKeepDoublesExact) {
  const char* fmt = "ldexp(%.17g, %d)";
  std::mt19937_64 random(7);
  for (int i = 0; i < 2000; ++i) {
    const double value =
        std::ldexp(static_cast<double>(random()) - 9e18, static_cast<int>(random() % 2000) - 1060);
    const std::string text = Print(DoublePrintToNxString, value, fmt);
    ASSERT_EQ(Scan(DoubleScanFromNxString, 9.0, text.c_str(), "ldexp(%lf, %d)"), value) << text;
  }
}

TEST(Chars, AreOneText) {
  char text[] = {'A', '\n', 'z'};
  NxString out("old");
  EXPECT_STREQ(CharPrintToNxString(out, text, "%c", 3).StrGet(), "A0x0az");
  EXPECT_STREQ(CharPrintToNxString(out, text, "%c", 0).StrGet(), "");
  EXPECT_STREQ(CharPrintToNxString(out, text, "<%d>", 3).StrGet(), "<65>0x0a<122>");
  EXPECT_STREQ(CharPrintToNxString(out, text, "%s", 3).StrGet(), "%s");
  std::vector<char> many(30000, '\xFF');
  EXPECT_EQ(CharPrintToNxString(out, many.data(), "%c", 9000).Len(), 4 * 9000);

  char chars[6] = "-----";
  NxString in("ab0x41");
  EXPECT_EQ(CharScanFromNxString(chars, in, "%c", 5), chars);
  EXPECT_STREQ(chars, "abAx4");  // an 0x number gives its byte, and one character is passed
  NxString shorter("z");
  CharScanFromNxString(chars, shorter, "%c", 5);
  EXPECT_STREQ(chars, "zbAx4");
  CharScanFromNxString(chars, in, "%5c", 5);  // would write five
  EXPECT_STREQ(chars, "zbAx4");
}

TEST(Strings, PrintInTheirCodeSet) {
  NxString value("Z\xFCrich"), out("old");
  value.SetCodeSet(kCodeSetWindows1252);
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "<%8s>", 1).StrGet(), "<  Z\xFCrich>");
  EXPECT_EQ(out._nCodeSet, kCodeSetWindows1252);

  value.MapToCodeSet(kCodeSetUnicode);
  NxString latin("old");
  EXPECT_STREQ(NxStringPrintToNxString(latin, &value, "%s", 1).StrGet(), "Z\xFCrich");
  EXPECT_EQ(latin._nCodeSet, kCodeSetLatin1);

  NxStringPrintToNxString(out, &value, "%d", 1);
  EXPECT_STREQ(out.StrGet(), "%d");
  NxString self("abc");
  EXPECT_STREQ(NxStringPrintToNxString(self, &self, "%s%%", 1).StrGet(), "abc%");

  // A width beyond the text is cut at the work area.
  NxString a("a");
  EXPECT_EQ(NxStringPrintToNxString(out, &a, "%60000s", 1).Len(), 7 + 1 + 511);

  NxString empty(kCodeSetWindows1252, 2);
  EXPECT_TRUE(NxStringPrintToNxString(out, &empty, "<%s>", 1).IsEmpty());
  EXPECT_EQ(out._nCodeSet, kCodeSetWindows1252);
  empty.SetNullValue();
  EXPECT_STREQ(NxStringPrintToNxString(out, &empty, "<%s>", 1).StrGet(), "{NULL}");
}

TEST(Strings, ScanIsACopyOrNull) {
  NxString value("old"), in("{NULL} and more"), text("{NUL");
  EXPECT_EQ(NxStringScanFromNxString(&value, in, "%s", 1), &value);
  EXPECT_TRUE(value.IsNullValue());
  NxStringScanFromNxString(&value, text, "%d", 1);
  EXPECT_FALSE(value.IsNullValue());
  EXPECT_STREQ(value.StrGet(), "{NUL");

  NxString out;
  NxIString alpha("\xE4pfel");
  EXPECT_STREQ(NxIStringPrintToNxString(out, &alpha, "<%s>", 1).StrGet(), "<\xE4pfel>");
  NxIStringScanFromNxString(&alpha, in, "%s", 1);
  EXPECT_STREQ(alpha._pStr, "{NULL} and more");
  NxCaseIString none;
  EXPECT_TRUE(NxCaseIStringPrintToNxString(out, &none, "<%s>", 1).IsEmpty());
  NxString wide("wide");
  wide.MapToCodeSet(kCodeSetUnicode);
  NxCaseIStringScanFromNxString(&none, wide, "%s", 1);
  EXPECT_STREQ(none._pStr, "wide");
}

/// Order values as an NxString of code set 254.
NxString Orders(const std::vector<unsigned short>& orders, unsigned char language) {
  std::vector<unsigned short> units(orders);
  units.push_back(0);
  NxString s(kCodeSetOrderValues, language);
  s.MakeString(reinterpret_cast<const char*>(units.data()), kCodeSetOrderValues, -1, 255);
  return s;
}

TEST(Strings, OrderValuesPrintInFourWays) {
  const unsigned short a = 0x4000 | 1 << 12 | 3 << 2, acute = 2 << 7, seven = 0x3F00 + 70;
  NxString value = Orders({a, static_cast<unsigned short>(a | acute), seven, 32}, 1);
  NxString out("old");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "<%s>", 1).StrGet(),
               "<a\xE1"
               "7 >");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "<%1M>", 1).StrGet(), "<aa7 >");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "<%2M>", 1).StrGet(),
               "<a\xE1"
               "7 >");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "%3M;", 1).StrGet(),
               "lower letter a;lower letter a with accent acute;digit 7;space;");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "%4M.", 1).StrGet(), "a.\\'a.7. .");
  EXPECT_STREQ(NxStringPrintToNxString(out, &value, "%3M%s", 1).StrGet(), "%3M%s");
  // In an 8-bit code set other than Latin-1 the text is relabelled by mapping.
  NxString latin2(kCodeSetLatin2, 1);
  EXPECT_STREQ(NxStringPrintToNxString(latin2, &value, "%2M", 1).StrGet(),
               "a\xE1"
               "7 ");
  EXPECT_EQ(latin2._nCodeSet, kCodeSetLatin2);
  NxString mixed = Orders({a}, 0x81);
  EXPECT_STREQ(NxStringPrintToNxString(out, &mixed, "%3M;", 1).StrGet(), "lower letter a;[MIX];");
  // Long texts stay inside their areas.
  NxString longText = Orders(std::vector<unsigned short>(20000, a | acute), 1);
  EXPECT_EQ(NxStringPrintToNxString(out, &longText, "%2M", 1).Len(), 20000);
  EXPECT_EQ(NxStringPrintToNxString(out, &longText, "%4M", 1).Len(), 60000);
}

TEST(MySscanf, ReadsEveryKindOfValue) {
  double d = 0;
  float f = 0;
  unsigned long ul = 0;
  unsigned u = 0;
  unsigned short us = 0;
  unsigned char uc = 0;
  EXPECT_EQ(MySscanf("2.5", 0, "%lf", 1, &d), 0);
  MySscanf("2.5", 0, "%f", 1, &f);
  MySscanf("4294967295", 0, "%lu", 1, &ul);
  MySscanf("ff", 0, "%x", 1, &u);
  MySscanf("65535", 0, "%hu", 1, &us);
  MySscanf("0x1ff", 0, "%c", 1, &uc);
  EXPECT_TRUE(d == 2.5 && f == 2.5f && ul == 4294967295UL && u == 255 && us == 65535 && uc == 255);

  NxString text("old");
  MySscanf("one two", 0, "%s", 100, &text);
  EXPECT_STREQ(text.StrGet(), "one");
  MySscanf("one two", 0, "%[a-z ]", 5, &text);  // four characters and the terminator
  EXPECT_STREQ(text.StrGet(), "one ");
  MySscanf("one two", 0, "%3c", 100, &text);
  EXPECT_STREQ(text.StrGet(), "one");
  MySscanf("x", 0, "%500c", 100, &text);
  EXPECT_STREQ(text.StrGet(), "x");
  MySscanf("one", 0, "%d", 100, &text);
  EXPECT_STREQ(text.StrGet(), "x");
  MySscanf("one", 0, "%s", 0, &text);
  EXPECT_TRUE(text.IsEmpty());
}

}  // namespace
