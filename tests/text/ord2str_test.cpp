#include "ord2str.h"

#include <gtest/gtest.h>

#include <string>

#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"

namespace {

constexpr unsigned short Letter(char upper, unsigned caseBits, unsigned accent, unsigned extension = 0) {
  return static_cast<unsigned short>(0x4000 | caseBits << 12 | accent << 7 | (upper - 'A' + 3) << 2 |
                                     extension);
}

std::string NameOf(unsigned order, unsigned char language = 1) {
  NxString text;
  EXPECT_EQ(NxConvertOrderToString(static_cast<unsigned short>(order), language, text), 0);
  return text.StrGet();
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

}  // namespace
