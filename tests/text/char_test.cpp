// Characters, 16-bit texts and order values.
#include "nxchar.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "nxstritr.h"
#include "nxwchar.h"
#include "ord2str.h"
#include "support/strings.h"

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

TEST(NxCharCompare, ByCollationUnderTheDefaultOptions) {
  const Defaults restored;
  const char letters[] = {'a', 'A', '\xE9', 'z'};
  for (const char& a : letters)
    for (const char& b : letters) {
      const int sign = (&a > &b) - (&a < &b);
      const auto unit = static_cast<unsigned short>(static_cast<unsigned char>(b));
      EXPECT_TRUE(OperatorsAgree(NxChar(a), NxChar(b), sign)) << a << b;
      EXPECT_TRUE(OperatorsAgree(NxChar(a), b, sign)) << a << b;
      EXPECT_TRUE(OperatorsAgree(NxChar(a), unit, sign)) << a << b << " across code sets";
    }
  EXPECT_TRUE(NxChar('a') == '*');  // a wildcard
  NxLanguageContext::SetDefaultCmpOp(kWildcardsOff);
  EXPECT_FALSE(NxChar('a') == '*');
  EXPECT_EQ(NxChar('a').Compare(NxChar('A'), kIgnoreCase), 0);
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

// ---------------------------------------------------------------------------
// Order values

constexpr unsigned short Letter(char upper, unsigned caseBits, unsigned accent, unsigned extension = 0) {
  return static_cast<unsigned short>(0x4000 | caseBits << 12 | accent << 7 | (upper - 'A' + 3) << 2 |
                                     extension);
}

unsigned char CharOf(unsigned order, int withAccent = 0, const char** repr = nullptr,
                     unsigned char language = 1) {
  unsigned char ch = 0x55;
  EXPECT_EQ(NxConvertOrderToChar(static_cast<unsigned short>(order), language, ch, withAccent, repr), 0);
  return ch;
}

// Every accented byte is found by its own order value, and by the first byte of it when
// several order alike; its spelling ends in its base letter.
TEST(OrderName, AccentedLettersOfLatin1) {
  int found = 0;
  for (int byte = 0x80; byte <= 0xFF; ++byte) {
    const unsigned short order = NxChar(static_cast<char>(byte), 1, 1).GetOrder();
    unsigned short caseBits, accent, letter, extension;
    if (order < 0x4000 || order >= 0x8000) continue;
    NxExtractLetterComponentsFromOrdering(order, caseBits, accent, letter, extension);
    if (accent == 0) continue;
    const char* repr = "none";
    EXPECT_LE(CharOf(order, 0, &repr), 0x7F);
    EXPECT_STREQ(repr, "none");
    const unsigned char ch = CharOf(order, 1, &repr);
    EXPECT_LE(ch, byte);
    EXPECT_EQ(NxChar(static_cast<char>(ch), 1, 1).GetOrder(), order);
    EXPECT_STRNE(repr, "none");
    ++found;
  }
  EXPECT_GT(found, 40);

  const char* repr = nullptr;
  EXPECT_EQ(CharOf(NxChar('\xE9', 1, 1).GetOrder(), 1, &repr), 0xE9);
  EXPECT_STREQ(repr, "\\'e");
  EXPECT_EQ(CharOf(NxChar('\xD1', 1, 1).GetOrder(), 1, &repr), 0xD1);
  EXPECT_STREQ(repr, "\\~N");
  EXPECT_EQ(CharOf(NxChar('\xE5', 1, 1).GetOrder(), 1, &repr), 0xE5);
  EXPECT_STREQ(repr, "\\aa");
  repr = "untouched";
  EXPECT_EQ(CharOf(Letter('B', 1, 13), 1, &repr), 'b');  // no byte orders so
  EXPECT_STREQ(repr, "untouched");
}

TEST(OrderParts, OfTheirClassOnly) {
  unsigned short a = 9, b = 9, c = 9, d = 9;
  EXPECT_EQ(NxExtractLetterComponentsFromOrdering(Letter('Z', 3, 31, 2), a, b, c, d), 0);
  EXPECT_EQ(a, 3);
  EXPECT_EQ(b, 31);
  EXPECT_EQ(c, 28);
  EXPECT_EQ(d, 2);
  EXPECT_EQ(NxExtractLetterComponentsFromOrdering(0x0003, a, b, c, d), 0);  // the letter bit is not checked
  EXPECT_EQ(d, 3);
  EXPECT_EQ(NxExtractLetterComponentsFromOrdering(0x8000, a, b, c, d), -2002);

  EXPECT_EQ(NxExtractSymbolFromOrder(79, a), -2002);
  EXPECT_EQ(NxExtractSymbolFromOrder(80, a), 0);
  EXPECT_EQ(a, 0);
  EXPECT_EQ(NxExtractSymbolFromOrder(0x3EFF, a), 0);
  EXPECT_EQ(a, 16047);
  EXPECT_EQ(NxExtractSymbolFromOrder(0x3F00, a), -2002);

  EXPECT_EQ(NxExtractDigitFromOrder(0x3EFF, a, b), -2002);
  EXPECT_EQ(NxExtractDigitFromOrder(0x4000, a, b), -2002);
  EXPECT_EQ(NxExtractDigitFromOrder(0x3F00 + 31, a, b), 0);
  EXPECT_EQ(a, 3);
  EXPECT_EQ(b, 1);
}

TEST(CompareKey, OrdersLettersByBaseThenCaseThenAccent) {
  EXPECT_EQ(GetCompareFromOrder(Letter('A', 1, 2, 1), 3), 0x03400D00U | 1 << 5 | 2);
  EXPECT_EQ(GetCompareFromOrder(Letter('A', 1, 2, 1), 20), 20U << 24 | Letter('A', 1, 2, 1) << 8);
  EXPECT_EQ(GetCompareFromOrder(0x3F46, 5), 0x053F4600U);
  EXPECT_EQ(GetCompareFromOrder(0xFFFF, 255), 0xFFFFFF00U);
  const unsigned short ascending[] = {Letter('A', 0, 0),  Letter('A', 0, 3),  Letter('A', 1, 0),
                                      Letter('A', 1, 14), Letter('A', 3, 31), Letter('A', 0, 0, 1),
                                      Letter('B', 0, 0)};
  for (unsigned i = 0; i + 1 < sizeof ascending / sizeof ascending[0]; ++i)
    EXPECT_LT(GetCompareFromOrder(ascending[i], 1), GetCompareFromOrder(ascending[i + 1], 1)) << i;
  for (int selector = 0; selector < 256; ++selector) {
    EXPECT_EQ(GetCompareFromOrder(0, static_cast<unsigned char>(selector)), 0U);
    EXPECT_EQ(GetCompareFromOrder(0x4000, static_cast<unsigned char>(selector)) >> 24, unsigned(selector));
  }
}

TEST(CharCase, MapsWithinTheCodeSet) {
  const NxChar c('q', 0, 1), wide(static_cast<unsigned short>(0xFF), 253, 1), narrow('\xFF', 1, 1);
  EXPECT_EQ(Value(c.ToUpper(nullptr)), 'Q');
  EXPECT_EQ(c.ToUpper(nullptr)._nCodeSet, 0);
  EXPECT_EQ(Value(wide.ToUpper(nullptr)), 0x178);
  EXPECT_EQ(Value(narrow.ToUpper(nullptr)), 0xFF) << "its capital is not in the code set";
  EXPECT_EQ(Value(NxChar('\xC9', 1, 1).ToLower(nullptr)), 0xE9);
  EXPECT_EQ(Value(NxChar('\xA1', kCodeSetLatin2, 1).ToLower(nullptr)), 0xB1);  // A with ogonek
}

}  // namespace
