// The byte matchers: exact answers, brute force, escapes, and the keys of the
// alphabetic strings.

#include "strwild.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nxcistr.h"

namespace {

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

/// The sort keys of a text of the disk code set.
std::string Keys(const char* text) {
  unsigned char keys[64];
  const int size = _NxCaseIMapString(keys, reinterpret_cast<const unsigned char*>(text), 0);
  return std::string(reinterpret_cast<char*>(keys), size - 1);
}

}  // namespace
