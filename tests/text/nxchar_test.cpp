#include "nxchar.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxwchar.h"

namespace {

unsigned short Value(const NxChar& c) { return c; }

/// Puts the context's defaults back.
struct Defaults {
  Defaults() { ___NxI18NContext(1); }
  ~Defaults() { ___NxI18NContext(1); }
};

TEST(NxCharValue, TakesBytesUnsignedAndUnitsWhole) {
  EXPECT_EQ(Value(NxChar('\xE9')), 0xE9);
  EXPECT_EQ(Value(NxChar('\xE9', 253)), 0xE9);
  EXPECT_EQ(Value(NxChar(static_cast<unsigned short>(0x20AC))), 0x20AC);
  EXPECT_EQ(Value(NxChar(static_cast<unsigned short>(0x20AC), 224)), 0xAC);
  EXPECT_EQ(Value(NxChar(static_cast<unsigned short>(0x20AC), 225)), 0x20AC);
}

TEST(NxCharValue, DefaultsAreAskedOfTheContext) {
  const Defaults restored;
  NxLanguageContext::SetDefaultLanguage(kLanguageDanish);
  const NxChar byte('x'), unit(static_cast<unsigned short>('x')), bound("x", 255, 255, 255);
  EXPECT_EQ(byte._nCodeSet, NxLanguageContext::GetDefault8CodeSet());
  EXPECT_EQ(unit._nCodeSet, NxLanguageContext::GetDefault16CodeSet());
  EXPECT_EQ(bound._nCodeSet, NxLanguageContext::GetDefault8CodeSet());
  EXPECT_EQ(bound._nByteOrder, 1);
  for (const NxChar* c : {&byte, &unit, &bound}) EXPECT_EQ(c->_nLanguage, kLanguageDanish);
}

TEST(NxCharValue, IsReadInItsByteOrder) {
  const char bytes[] = "\x20\xAC";
  EXPECT_EQ(Value(NxChar(bytes, 253, 1, 1)), 0xAC20);
  EXPECT_EQ(Value(NxChar(bytes, 253, 1, 8)), 0xAC20);
  EXPECT_EQ(Value(NxChar(bytes, 253, 1, 2)), 0x20AC);
  EXPECT_EQ(Value(NxChar(bytes, 1, 1, 2)), 0x20);
}

TEST(NxCharAssign, BoundMapsIntoItsTextAndKeepsItsCodeSet) {
  char text[] = "\x55\x55\x55\x55";
  NxChar unit(text, 253, 2, 1);
  unit = NxChar('\xA4', kCodeSetLatin9, 3);  // the euro sign
  EXPECT_EQ(Value(unit), 0x20AC);
  EXPECT_EQ(std::string(text), "\xAC\x20\x55\x55");
  EXPECT_EQ(unit._nCodeSet, 253);
  EXPECT_EQ(unit._nLanguage, 2);

  NxChar byte(text + 2, kCodeSetWindows1252, 2, 1);
  byte = unit;
  EXPECT_EQ(std::string(text), "\xAC\x20\x80\x55");
  byte = NxChar(static_cast<unsigned short>(0x4E00));  // no such character
  EXPECT_EQ(Value(byte), 0x7F);
  byte = NxChar('\xE9', 0, 1);  // code set 0 is read as the native one
  EXPECT_EQ(Value(byte), 0xE9);
  NxChar unstated(text + 2, 0, 2, 1);
  unstated = unit;  // and takes values as they are
  EXPECT_EQ(std::string(text), "\xAC\x20\xAC\x55");
}

TEST(NxCharAssign, UnitsAreWrittenPlainInMode1AndBigEndianInOthers) {
  for (unsigned char mode : {1, 2, 8, 3}) {
    char text[] = "\x55\x55\x55";
    NxChar c(text, 253, 1, mode);
    c = NxChar(static_cast<unsigned short>(0x2041));
    EXPECT_EQ(std::string(text), mode == 1 ? "\x41\x20\x55" : "\x20\x41\x55") << +mode;
  }
}

TEST(NxCharAssign, RawValuesStayWithinTheCharacter) {
  char text[] = "\x55\x55\x55";
  NxChar byte(text, 1, 1, 1);
  byte = static_cast<unsigned short>(0x2041);
  EXPECT_EQ(std::string(text), "\x41\x55\x55");
  NxChar unit(text, 253, 1, 2);
  unit = static_cast<unsigned short>(0x2041);
  EXPECT_EQ(std::string(text), "\x20\x41\x55");
  unit = 'z';
  EXPECT_EQ(std::string(text), "zA\x55");

  NxString empty;
  NxChar nowhere(empty, 0);
  nowhere = 'x';
  nowhere = static_cast<unsigned short>(0x2041);
  nowhere = NxChar('x');
  EXPECT_EQ(correctZeroLengthStringEvenForUnicode, 0U);
  EXPECT_EQ(Value(nowhere), 0);
}

TEST(NxCharAssign, DetachedBecomesTheOther) {
  NxChar c(static_cast<unsigned short>(0x2041), 253, 2);
  c = NxChar("\xE9", kCodeSetLatin2, 5, 8);
  EXPECT_EQ(Value(c), 0xE9);
  EXPECT_EQ(c._nCodeSet, kCodeSetLatin2);
  EXPECT_EQ(c._nLanguage, 5);
  EXPECT_EQ(c._nByteOrder, 8);
  EXPECT_EQ(c._pChar, nullptr);
  c = c;
  EXPECT_EQ(Value(c), 0xE9);

  char text[] = "ab";
  const NxChar bound(text, 1, 1, 1);
  const NxChar copy(bound);
  text[0] = 'x';
  EXPECT_EQ(Value(bound), 'x');
  EXPECT_EQ(Value(copy), 'a');
}

TEST(NxCharMap, GoesToUnicodeAndBack) {
  for (unsigned char codeSet : {1, 2, 3, 4})
    for (int byte = 1; byte < 256; ++byte) {
      const NxChar c(static_cast<char>(byte), codeSet, 7);
      const NxChar mapped = c.MapTo(kCodeSetUnicode);
      ASSERT_EQ(Value(mapped.MapTo(codeSet)), byte) << +codeSet;
      ASSERT_EQ(mapped._nLanguage, 7);
      ASSERT_EQ(mapped.GetOrder(), c.GetOrder()) << +codeSet << " " << byte;
    }
  const NxChar c('x', 2, 1);
  EXPECT_EQ(c.MapTo(0)._nCodeSet, 2);
  EXPECT_EQ(c.MapTo(2)._nCodeSet, 2);
}

TEST(NxCharClass, FollowsTheOrderValue) {
  const struct {
    unsigned short value;
    int space, symbol, digit, alpha, han;
  } cases[] = {{0, 1, 0, 0, 0, 0},    {' ', 1, 0, 0, 0, 0},   {9, 1, 0, 0, 0, 0},     {'*', 0, 1, 0, 0, 0},
               {'0', 0, 0, 1, 0, 0},  {'9', 0, 0, 1, 0, 0},   {'a', 0, 0, 0, 1, 0},   {'Z', 0, 0, 0, 1, 0},
               {0xE9, 0, 0, 0, 1, 0}, {0x153, 0, 0, 0, 1, 0}, {0x9FA5, 0, 0, 0, 0, 1}};
  for (const auto& test : cases) {
    const NxChar c(test.value, 253, 1);
    EXPECT_EQ(c.IsSpace(), test.space) << test.value;
    EXPECT_EQ(c.IsSymbol(), test.symbol) << test.value;
    EXPECT_EQ(c.IsDigit(), test.digit) << test.value;
    EXPECT_EQ(c.IsAlpha(), test.alpha) << test.value;
    EXPECT_EQ(c.IsHan(), test.han) << test.value;
  }
}

TEST(NxCharCase, MapsWithinTheCodeSet) {
  const struct {
    unsigned short value;
    unsigned char codeSet, language;
    unsigned short upper, lower;
  } cases[] = {{'a', 1, 1, 'A', 'a'},        {0xE9, 1, 1, 0xC9, 0xE9},  {0xC9, 0, 1, 0xC9, 0xC9},
               {'q', 0, 1, 'Q', 'q'},        {'1', 1, 1, '1', '1'},     {0xFF, 1, 1, 0xFF, 0xFF},
               {0xFF, 253, 1, 0x178, 0xFF},  {0xFF, 2, 1, 0x9F, 0xFF},  {0xB1, 4, 1, 0xA1, 0xB1},
               {'i', 253, 7, 0x130, 'i'},    {'I', 253, 7, 'I', 0x131}, {'i', 1, 7, 'i', 'i'},
               {0x436, 253, 1, 0x416, 0x436}};
  for (const auto& test : cases) {
    const NxChar c(test.value, test.codeSet, test.language);
    const NxChar upper = c.ToUpper(nullptr), lower = c.ToLower(nullptr);
    EXPECT_EQ(Value(upper), test.upper) << test.value << " in " << +test.codeSet;
    EXPECT_EQ(Value(lower), test.lower) << test.value << " in " << +test.codeSet;
    EXPECT_EQ(upper._nCodeSet, test.codeSet);
    EXPECT_EQ(lower._nLanguage, test.language);
  }
}

TEST(NxCharCompare, ByCollationUnderTheDefaultOptions) {
  const Defaults restored;
  EXPECT_TRUE(NxChar('a') == NxChar('a'));
  EXPECT_TRUE(NxChar('\xE9') == static_cast<unsigned short>(0xE9));  // across code sets
  EXPECT_TRUE(NxChar('a') != 'A');
  EXPECT_TRUE(NxChar('a') < 'A');
  EXPECT_TRUE(NxChar('b') > 'A');
  EXPECT_TRUE(NxChar('a') <= 'a');
  EXPECT_TRUE(NxChar('b') >= static_cast<unsigned short>('a'));
  EXPECT_TRUE(NxChar('a') == '*');  // a wildcard
  NxLanguageContext::SetDefaultCmpOp(0x0010);
  EXPECT_FALSE(NxChar('a') == '*');
  EXPECT_EQ(NxChar('a').Compare(NxChar('A'), 0x0020), 0);
  EXPECT_NE(NxChar('a').Compare(NxChar('A'), 65535), 0);
  NxString text("abc");
  EXPECT_TRUE(NxChar(text, 1) == 'b');  // the rest of its text does not count
}

TEST(WideText, CopiesAndCompares) {
  const unsigned short abc[] = {'a', 'b', 'c', 0}, abd[] = {'a', 'b', 0xFFFF, 0}, none[] = {0};
  unsigned short dst[6];
  const auto clear = [&] { NxWMemSet(dst, 9, 6); };
  clear();
  EXPECT_EQ(NxWStrCpy(dst, abc), dst + 4);
  EXPECT_EQ(NxWStrLen(dst), 3U);
  EXPECT_EQ(dst[4], 9);
  clear();
  EXPECT_EQ(NxWStrNCpy(dst, abc, 1), dst + 2);
  EXPECT_EQ(dst[1], 'b');
  EXPECT_EQ(dst[2], 9);
  clear();
  EXPECT_EQ(NxWStrNCpy(dst, abc, 0xFFFFFFFF), dst + 4);
  EXPECT_EQ(dst[4], 9);

  EXPECT_EQ(NxWStrCmp(abc, abc), 0);
  EXPECT_EQ(NxWStrCmp(abc, abd), 'c' - 0xFFFF);
  EXPECT_EQ(NxWStrCmp(abd, abc), 0xFFFF - 'c');
  EXPECT_EQ(NxWStrCmp(none, abc), -'a');
  EXPECT_EQ(NxWStrCmp(nullptr, none), -1);
  EXPECT_EQ(NxWStrCmp(none, nullptr), 1);
  EXPECT_EQ(NxWStrCmp(nullptr, nullptr), 0);
  EXPECT_EQ(NxWStrNCmp(abc, abd, 2), 0);
  EXPECT_EQ(NxWStrNCmp(abc, abd, 3), 'c' - 0xFFFF);
  EXPECT_NE(NxWStrNCmp(abc, abd, 0), 0);
  EXPECT_EQ(NxWStrInc(abc), abc + 1);
}

TEST(WideText, Numbers) {
  const struct {
    const char* text;
    int i;
    double d;
  } cases[] = {
      {"", 0, 0.0},     {"12", 12, 12.0},   {"12.25", 11825, 12.25},  // to an integer, "." is the digit -2
      {".5", -15, 0.5}, {"-1", -29, -29.0}, {"4294967297", 1, 4294967297.0}};
  for (const auto& test : cases) {
    unsigned short wide[16];
    unsigned n = 0;
    do wide[n] = static_cast<unsigned char>(test.text[n]);
    while (test.text[n++] != 0);
    EXPECT_EQ(NxWStrToI(wide), test.i) << test.text;
    EXPECT_EQ(NxWStrToL(wide), test.i) << test.text;
    EXPECT_EQ(NxWStrToD(wide), test.d) << test.text;
  }
}

}  // namespace
