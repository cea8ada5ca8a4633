// The byte matchers: exact answers, brute force, escapes, and the keys of the
// alphabetic strings.

#include "strwild.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

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

bool Matches(const char* p, const char* t) {
  if (*p == 0) return *t == 0;
  if (*p == '*') return Matches(p + 1, t) || (*t && Matches(p, t + 1));
  return *t && (*p == '?' || *p == *t) && Matches(p + 1, t + 1);
}

/// strwild takes every part behind a star where it occurs first, and the last one, too,
/// has to end with the text there.
bool MatchesFirst(std::string pattern, std::string text) {
  bool behindStar = false;
  for (;;) {
    const std::size_t star = pattern.find('*');
    const std::string part = pattern.substr(0, star);
    if (behindStar && part.empty() && star == std::string::npos) return true;
    while (behindStar && !text.empty() && !Matches((part + "*").c_str(), text.c_str())) text.erase(0, 1);
    if (star == std::string::npos) return Matches(part.c_str(), text.c_str());
    if (!Matches((part + "*").c_str(), text.c_str())) return false;
    text.erase(0, part.size());
    pattern.erase(0, star + 1);
    behindStar = true;
  }
}

TEST(ByteWildcards, MatchAsBruteForceDoes) {
  std::mt19937 random(3);
  for (int i = 0; i < 100000; ++i) {
    std::string pattern, text;
    for (unsigned n = random() % 8; n > 0; --n) pattern += "aab*?"[random() % 5];
    for (unsigned n = random() % 12; n > 0; --n) text += "aab"[random() % 3];
    const char* p = pattern.c_str();
    const char* t = text.c_str();
    ASSERT_EQ(nxstrwild(p, t, 0) == 0, Matches(p, t)) << pattern << " : " << text;
    ASSERT_EQ(strwild(p, t) == 1, MatchesFirst(p, t)) << pattern << " : " << text;
  }
}

TEST(Glob, EscapesAndEnds) {
  const struct {
    const char *pattern, *text;
    int result;
  } cases[] = {
      {"", "", 1},         {"", "a", 0},        {"a", "", 0},
      {"a\\*b", "a*b", 1}, {"a\\*b", "axb", 0}, {"a\\", "a", 0},
      {"a\\", "a\\", 0},   {"\\\\", "\\", 1},   {"a\\n\\r\\t", "a\n\r\t", 1},
      {"a\\n", "an", 0},   {"\\?", "?", 1},     {"\\?", "x", 0},
      {"*b", "abb", 0},    {"*b", "aab", 1},    {"a*", "a", 1},
      {"*\\*", "ab*", 1},  {"*", "", 1},        {"?", "", 0},
      {"?*", "a", 1},
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
  EXPECT_EQ(mappedwild("*b", Keys("aab").c_str(), kDisk, kKeys), 1);
}

}  // namespace
