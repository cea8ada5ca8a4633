// NxStrCmp and the byte matchers against matchers by brute force, limits, and searching. The
// levels are cases of golden/collation.txt; that all roads of a comparison answer alike, and that
// a search compares at every position, is a fuzz target (reference_fuzz).
#include <gtest/gtest.h>

#include <random>

#include "collation/nxordertable.h"
#include "collation/nxstrcmp.h"
#include "nxchar.h"
#include "nxstritr.h"
#include "nxtypcmp.h"
#include "nxtyphash.h"
#include "strwild.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

int Compare(const std::string& a, const std::string& b, unsigned short op = 0, short len = -1,
            unsigned char language = 1) {
  return NxStrCmp(1, language, a.c_str(), 1, language, b.c_str(), op, len, 1, nullptr);
}

TEST(NxStrCmp, LimitsAndReport) {
  EXPECT_EQ(Compare("abcx", "abcy", 0, 3), 0);
  EXPECT_NE(Compare("abcx", "abcy", 0, 4), 0);
  EXPECT_EQ(Compare("a-bx", "a-by", 0, 3), 0);
  EXPECT_EQ(Compare("abcd", "abc*", 0, 2), 0);
  EXPECT_NE(Compare("abcd", "ab?e", 0, 4), 0);
  const auto report = [](const char* a, const char* b, unsigned short op, short len) {
    int out = 77;
    NxStrCmp(1, 1, a, 1, 1, b, op, len, 1, &out);
    return out;
  };
  EXPECT_EQ(report("ab", "ac", kSkipSpaces, -1), 77);
  EXPECT_EQ(report("ab", "ac", 0, 2), 77);
  EXPECT_EQ(report("ab", "ac", kSkipSpaces, 2), Compare("ab", "ac"));
  EXPECT_EQ(report("a b", "abc", kSkipSpaces, 2), 0);  // the second round reads three characters
  EXPECT_EQ(report("aB", "ab", kSkipSpaces, 2), 0);
}

TEST(NxStrCmp, ReadsNothingBehindTheLimit) {
  const unsigned short options[] = {0, kWildcardsOff, kOrderValuesOnly, kSkipSpaces | kSkipSymbols};
  const std::pair<const char*, const char*> texts[] = {
      {"aaaaa", "aaaaa"}, {"aaaaa", "aa?aa"}, {"aaaa-", "aaaa-"}, {"aaa--", "aaa--"}};
  for (const auto& [first, second] : texts)
    for (const unsigned short op : options) {
      const Block a(first, 5), b(second, 5);
      const auto text = [](const Block& block) { return reinterpret_cast<const char*>(block.Data()); };
      const int order = NxStrCmp(1, 1, text(a), 1, 1, text(b), op, 5, 1, nullptr);
      EXPECT_EQ(order == 0, !(op & (kWildcardsOff | kOrderValuesOnly)) || !std::strchr(second, '?'))
          << first << " : " << second << " " << op;
    }
}

TEST(NxStrCmp, WildcardsOfOnesOwn) {
  const struct { char asterisk, question; } sets[] = {{'%', '_'}, {'x', 'y'}};
  for (const auto& set : sets) {
    NxString::SetAsterisk(NxChar(set.asterisk, 1, 1));
    NxString::SetQuestion(NxChar(set.question, 1, 1));
    EXPECT_EQ(Compare("abcd", std::string("a") + set.asterisk), 0);
    EXPECT_EQ(Compare("abcd", std::string("ab") + set.question + "d"), 0);
    EXPECT_NE(Compare("abcd", "a*"), 0);
    const std::string text = std::string("a*b?") + set.question + set.asterisk;
    EXPECT_EQ(NxStrWild(1, 1, text.c_str(), 0, -1, nullptr, 1), 4);
    EXPECT_EQ(NxStrWild(1, 1, text.c_str(), 1, -1, nullptr, 1), 5);
  }
  NxString::SetAsterisk(NxChar('*', 1, 1));
  NxString::SetQuestion(NxChar('?', 1, 1));
}

/// A character as the options let it count: a letter without case or accent.
char Folded(char c, unsigned short op) {
  if (c == '\xE1') return op & kIgnoreAccents ? 'a' : c;
  return c == 'A' && (op & kIgnoreCase) ? 'a' : c;
}

TEST(NxStrCmp, MatchesAsBruteForceDoes) {
  const auto check = [](const std::string& text, const std::string& pattern, unsigned short op) {
    const bool matches = Matches(
        text.c_str(), pattern.c_str(), [op](char a, char b) { return Folded(a, op) == Folded(b, op); },
        op & kSkipSymbols ? '-' : '\0');
    ASSERT_EQ(Compare(text, pattern, op) == 0, matches) << text << " : " << pattern << " op " << op;
  };
  const unsigned short options[] = {0, kIgnoreCase, kIgnoreAccents, kIgnoreCase | kIgnoreAccents};
  const auto texts = TextsUpTo("aA\xE1", 5);
  const auto patterns = TextsUpTo("a\xE1*?", 5);
  for (const auto& text : texts)
    for (const auto& pattern : patterns)
      check(text, pattern, options[(text.size() * 7 + pattern.size()) % 4]);
  for (const auto& text : TextsUpTo("aA-", 4))
    for (const auto& pattern : TextsUpTo("a-*?", 4))
      for (unsigned short op : options) check(text, pattern, op | kSkipSymbols);
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string text, pattern;
    for (unsigned n = random() % 16; n > 0; --n) text += "aAb"[random() % 3];
    for (unsigned n = random() % 10; n > 0; --n) pattern += "aab*?"[random() % 5];
    check(text, pattern, options[random() % 4]);
  }
}

TEST(PlainWalk, LeavesWideCharactersAndByteOrdersToTheLevels) {
  const Units texts[] = {u"a\u4E00", u"a\u4E01", u"\u0141a", u"la", u"a*", u"\u4E00?", u"aa",
                         // U+0258 changes the collation selector, "a" changes it back, U+FFF5 keeps it.
                         u"\u0258a\uFFF5", u"\u0258ab"};
  for (const Units& a : texts)
    for (const Units& b : texts)
      for (unsigned char order : {1, 2, 8}) {
        Units x = a, y = b;
        if (order == 2)
          for (Units* text : {&x, &y})
            for (char16_t& unit : *text) unit = static_cast<char16_t>(unit << 8 | unit >> 8);
        const char* p = reinterpret_cast<const char*>(x.c_str());
        const char* q = reinterpret_cast<const char*>(y.c_str());
        const int level = NxStrCmpGeneral(253, 2, p, 253, 2, q, 0, -1, order, nullptr);
        EXPECT_EQ(NxStrCmp(253, 2, p, 253, 2, q, 0, -1, order, nullptr), level);
        EXPECT_EQ(NxStrCmp(253, 2, reinterpret_cast<const char*>(a.c_str()), 253, 2,
                           reinterpret_cast<const char*>(b.c_str()), 0, -1, 1, nullptr),
                  level);
      }
}

/// A stored text's hash from the reader of order values, which a length given takes.
unsigned long HashByTheReader(const std::string& text, unsigned char codeSet, unsigned char language) {
  short values = 0;
  for (NxStringIterator it(text.c_str(), codeSet, language, 1); it.GetNextOrder(0) != 0;) ++values;
  return HashString(codeSet, language, text.c_str(), values, 1) * 1103515245UL;
}

TEST(StringHash, OfAnyBytesIsTheReaders) {
  std::mt19937 random(3);
  for (const unsigned char codeSet : {1, 2, 3, 4})
    for (const unsigned char language : {1, 2, 4, 8}) {
      ASSERT_TRUE(NxOrderTable::Find(codeSet, language));
      for (unsigned size = 0; size < 40; ++size)
        for (int i = 0; i < 60; ++i) {
          std::string text;
          while (text.size() < size)
            text += static_cast<char>(random() % 8 ? "abcdelnz"[random() % 8] : random() % 256);
          const Block image = Exactly(StringImage(text, codeSet, language));
          int error = 1;
          EXPECT_EQ(StringHash(1, image.Size(), image.Data(), 1, error),
                    HashByTheReader(text, codeSet, language))
              << testing::PrintToString(text);
          EXPECT_EQ(error, 0);
        }
    }
}

// ---------------------------------------------------------------------------
// Bytes, and searching

/// By trying everything. In a glob "\\" makes the next byte literal.
bool GlobMatches(const char* p, const char* t, bool glob) {
  if (*p == 0) return *t == 0;
  if (*p == '*') return GlobMatches(p + 1, t, glob) || (*t && GlobMatches(p, t + 1, glob));
  const bool any = *p == '?';
  if (glob && *p == '\\' && *++p == 0) return false;
  return *t && (any || *p == *t) && GlobMatches(p + 1, t + 1, glob);
}

TEST(ByteWildcards, MatchAsBruteForceDoes) {
  const auto texts = TextsUpTo("ab*", 6);
  for (const std::string& pattern : TextsUpTo("ab*?\\", 5)) {
    for (const std::string& text : texts) {
      const char* p = pattern.c_str();
      const char* t = text.c_str();
      const bool matches = GlobMatches(p, t, true);
      if ((nxstrwild(p, t, 0) == 0) != GlobMatches(p, t, false) || strwild(p, t) != matches ||
          istrwild(p, t, 0, 0) != matches || caseistrwild(p, t, 0, 0) != matches)
        FAIL() << pattern << " : " << text;
    }
  }
}

TEST(ByteWildcards, TakeTimeInProportionToPatternAndText) {
  const std::string text(20'000, 'a');
  const std::string pattern = "*a*a*a*a*a*a*a*a" + std::string(1'000, 'a') + "b";
  EXPECT_NE(nxstrwild(pattern.c_str(), text.c_str(), 0), 0);
  EXPECT_EQ(strwild(pattern.c_str(), text.c_str()), 0);
}

TEST(Find, CountsBytesAndWantsABuffer) {
  for (const unsigned short op : {0x0000, 0x0010, 0xFFFF})
    EXPECT_EQ(NxString("a").Find(NxString(), 0, op), -1);
  EXPECT_EQ(NxString("xab").Find(static_cast<unsigned short>('a')), 1);
  // By byte sizes: a 16-bit pattern of two characters counts as four bytes.
  EXPECT_EQ(NxString("xxab").Find(Wide(u"ab")), -1);
  EXPECT_EQ(NxString("xabcd").Find(Wide(u"ab")), 1);
  EXPECT_EQ(NxString("xab").SubStringPos("ab"), 1);
}

}  // namespace
