// The byte matchers: exact answers, brute force, escapes, and the keys of the
// alphabetic strings.

#include "strwild.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nxcistr.h"

namespace {

TEST(ByteComparison, UnsignedBytesUpToALimit) {
  const struct {
    const char *a, *b;
    int n, result;
  } cases[] = {
      {nullptr, nullptr, 0, 0}, {nullptr, "", 0, 0},    {nullptr, "a", 0, -1}, {"", nullptr, 0, 0},
      {"a", nullptr, 0, 1},     {"abc", "abd", 2, 0},   {"abc", "abd", 0, -1}, {"abc", "abd", 3, -1},
      {"\xE1", "z", 0, 0x67},   {"ab", "abc", 0, -'c'}, {"ab", "abc", 2, 0},   {"", "", 5, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(nxstrcmp(c.a, c.b, c.n), c.result) << c.a << " " << c.b << " " << c.n;
}

TEST(ByteWildcards, AnswerTheMismatch) {
  const struct {
    const char *pattern, *text;
    int n, result;
  } cases[] = {
      {nullptr, nullptr, 0, 0},
      {nullptr, "", 0, 0},
      {nullptr, "a", 0, 1},
      {"", nullptr, 0, 0},
      {"a", nullptr, 0, -1},
      {"*", "", 0, 0},
      {"*", "abc", 0, 0},
      {"?", "", 0, -1},
      {"a?", "a", 0, -1},
      {"a?c", "abc", 0, 0},
      {"a*f", "abcdef", 0, 0},
      {"a*g", "abcdef", 0, -'g'},
      {"*b", "abb", 0, 0},
      {"*ab", "xaab", 0, 0},
      {"*?", "a", 0, 0},
      {"*?", "", 0, -1},
      {"a", "ab", 0, 'b'},
      {"ab", "a", 0, -'b'},
      {"\xE1", "a", 0, 'a' - 0xE1},
      {"ab*", "ac", 0, 'c' - 'b'},
      {"abc", "abd", 2, 0},
      {"abc", "abd", 3, 'd' - 'c'},
      {"a*", "abc", 1, 0},
      {"***a***", "bab", 0, 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(nxstrwild(c.pattern, c.text, c.n), c.result) << c.pattern << " : " << c.text << " " << c.n;
}

/// By trying everything. In a glob "\\" makes the next byte literal.
bool Matches(const char* p, const char* t, bool glob) {
  if (*p == 0) return *t == 0;
  if (*p == '*') return Matches(p + 1, t, glob) || (*t && Matches(p, t + 1, glob));
  const bool any = *p == '?';
  if (glob && *p == '\\' && *++p == 0) return false;
  return *t && (any || *p == *t) && Matches(p + 1, t + 1, glob);
}

/// All texts of the given characters up to a length.
std::vector<std::string> AllTexts(const char* characters, std::size_t longest) {
  std::vector<std::string> texts = {""};
  for (std::size_t i = 0; i < texts.size() && texts[i].size() < longest; ++i)
    for (const char* c = characters; *c; ++c) texts.push_back(texts[i] + *c);
  return texts;
}

TEST(ByteWildcards, MatchAsBruteForceDoes) {
  const auto texts = AllTexts("ab*", 6);
  for (const std::string& pattern : AllTexts("ab*?\\", 5)) {
    for (const std::string& text : texts) {
      const char* p = pattern.c_str();
      const char* t = text.c_str();
      const bool matches = Matches(p, t, true);
      if ((nxstrwild(p, t, 0) == 0) != Matches(p, t, false) || strwild(p, t) != matches ||
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

TEST(Glob, EscapesAndPositions) {
  const struct {
    const char *pattern, *text;
    int result;
  } cases[] = {
      {nullptr, nullptr, 1},        {"a\\", "a\\", 0}, {"\\\\", "\\", 1},
      {"a\\n\\r\\t", "a\n\r\t", 1}, {"a\\n", "an", 0}, {"*b", "abb", 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(strwild(c.pattern, c.text), c.result) << c.pattern << " : " << c.text;
    EXPECT_EQ(istrwild(c.pattern, c.text, 0, 0), c.result) << c.pattern << " : " << c.text;
    EXPECT_EQ(caseistrwild(c.pattern, c.text, 0, 0), c.result) << c.pattern << " : " << c.text;
  }
  const struct {
    const char* pattern;
    int position;
  } firsts[] = {{nullptr, -1}, {"", -1}, {"abc", -1}, {"a\\*b", 1}, {"ab*", 2}, {"?", 0}, {"\xE1*", 1}};
  for (const auto& c : firsts)
    for (unsigned char form : {0x00, 0x40}) {
      EXPECT_EQ(strwc(c.pattern), c.position);
      EXPECT_EQ(istrwc(c.pattern, form), c.position);
      EXPECT_EQ(caseistrwc(c.pattern, form), c.position);
    }
}

TEST(Glob, AlphabeticStringsInEitherForm) {
  // 0xE1 in memory is 0xC3 in the disk code set, an a with an accent.
  EXPECT_EQ(istrwild("\xE1*", "\xE1x", 0, 0), 1);
  EXPECT_EQ(istrwild("\xE1*", "\xC3x", 0, 0x40), 1);
  EXPECT_EQ(istrwild("\xC3*", "\xE1x", 0x40, 0), 1);
  EXPECT_EQ(istrwild("\xE1*", "\xE1x", 0x40, 0), 0);
  EXPECT_EQ(istrwild("a", "A", 0, 0), 0);
  EXPECT_EQ(caseistrwild("a*Z", "AbcZ", 0, 0), 1);
  EXPECT_EQ(caseistrwild("a", "\xC3", 0, 0x40), 0);  // accents count between plain texts
  EXPECT_EQ(caseistrwild("\xE1", "\xC3", 0, 0x40), 1);
}

/// The sort keys of a text of the disk code set.
std::string Keys(const char* text) {
  unsigned char keys[64];
  const int size = _NxCaseIMapString(keys, reinterpret_cast<const unsigned char*>(text), 0);
  return std::string(reinterpret_cast<char*>(keys), size - 1);
}

TEST(Glob, TextsOfKeysMatchWhereTheyLeaveItOpen) {
  const unsigned char kDisk = 0x40, kKeys = 0xC0;
  EXPECT_EQ(mappedwild("ab", Keys("AB").c_str(), kDisk, kKeys), 1);
  EXPECT_EQ(mappedwild("ab", Keys("AC").c_str(), kDisk, kKeys), 0);
  EXPECT_EQ(mappedwild("a?c", Keys("AXX").c_str(), kDisk, kKeys), 1);  // "?" may be two keys
  EXPECT_EQ(mappedwild("a?c", "aXX", kDisk, kDisk), 0);
  EXPECT_EQ(mappedwild("\xC3z", Keys("az").c_str(), kDisk, kKeys), 1);  // the accent is lost
  EXPECT_EQ(mappedwild("\xC3z", Keys("ay").c_str(), kDisk, kKeys), 0);
  EXPECT_EQ(mappedwild("\xDF...", Keys("ss").c_str(), kDisk, kKeys), Keys("\xDF")[0] == Keys("s")[0]);
  EXPECT_EQ(mappedwild(Keys("AB").c_str(), "ab", kKeys, kDisk), 1);
  EXPECT_EQ(mappedwild(Keys("A").c_str(), "\xC3", kKeys, kDisk), 0);
  EXPECT_EQ(mappedwild("*b", Keys("abb").c_str(), kDisk, kKeys), 1);
}

}  // namespace
