// NxStrCmp: the levels and what each option takes from them, wildcards against a
// brute-force matcher, and the plain walk against the level comparison alone.

#include "collation/nxstrcmp.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "nxstring.h"
#include "ord2str.h"
#include "strwild.h"
#include "support/strings.h"

namespace {

const std::string kAlphabet =
    "aA\xE1"
    "b1- *?";

int Compare(const std::string& a, const std::string& b, unsigned short op = 0, short len = -1,
            unsigned char language = 1) {
  return NxStrCmp(1, language, a.c_str(), 1, language, b.c_str(), op, len, 1, nullptr);
}

int Sign(int v) { return (v > 0) - (v < 0); }

/// Every text over an alphabet up to a length.
std::vector<std::string> TextsUpTo(const std::string& alphabet, unsigned length) {
  std::vector<std::string> texts{""};
  for (std::size_t begin = 0; length-- > 0;) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin)
      for (char c : alphabet) texts.push_back(texts[begin] + c);
  }
  return texts;
}

TEST(NxStrCmp, AnswersTheDecidingDifference) {
  const unsigned a = NxCompareKey(NxChar('a', 1, 1).GetOrder(), 1);
  const unsigned b = NxCompareKey(NxChar('b', 1, 1).GetOrder(), 1);
  const unsigned capital = NxCompareKey(NxChar('A', 1, 1).GetOrder(), 1);
  const unsigned acute = NxCompareKey(NxChar('\xE1', 1, 1).GetOrder(), 1);
  const int hyphen = NxChar('-', 1, 1).GetOrder();
  EXPECT_EQ(Compare("xA", "xb"), static_cast<int>((a & ~127u) - (b & ~127u)));
  EXPECT_EQ(Compare("xa", "xA"), static_cast<int>((capital & ~31u) - (a & ~31u)));
  EXPECT_EQ(Compare("\xE1", "a"), static_cast<int>((acute & ~96u) - (a & ~96u)));
  EXPECT_EQ(Compare("ab-", "ab"), hyphen);
  EXPECT_EQ(Compare("ab", "-ab"), -hyphen);
  EXPECT_EQ(Compare("a", "b", kOrderValuesOnly), static_cast<int>(a - b));
  EXPECT_EQ(Compare("a", "a*b"), -static_cast<int>(b & ~127u));
  EXPECT_EQ(Compare("a", "a*?"), -1);
}

TEST(NxStrCmp, WidthsLanguagesAndOrderValueTexts) {
  const Units wide = u"Stra\u00DFe";
  const char* units = reinterpret_cast<const char*>(wide.c_str());
  EXPECT_EQ(NxStrCmp(253, 2, units, 1, 2,
                     "Stra\xDF"
                     "e",
                     0, -1, 1, nullptr),
            0);
  EXPECT_EQ(NxStrCmp(1, 2, "STRASSE", 253, 2, units, kIgnoreCase | kIgnoreAccents, -1, 1, nullptr), 0);
  EXPECT_GT(Compare("stra\xDF"
                    "e",
                    "strasse"),
            0);
  // ch is a letter after cz in Spanish only; languages of one order compare equal.
  EXPECT_GT(Compare("chico", "czar", 0, -1, 4), 0);
  EXPECT_LT(Compare("chico", "czar", 0, -1, 2), 0);
  EXPECT_EQ(NxStrCmp(1, 2, "chico", 1, 3, "chico", 0, -1, 1, nullptr), 0);
  EXPECT_NE(NxStrCmp(1, 2, "chico", 1, 4, "chico", 0, -1, 1, nullptr), 0);
  // A key holds the order values of its text.
  unsigned short key[8] = {};
  NxStringIterator it("Stra\xDF", 1, 2, 1);
  for (unsigned short& order : key)
    if ((order = it.GetNextOrder(1)) == 0) break;
  const char* keyText = reinterpret_cast<const char*>(key);
  EXPECT_EQ(NxStrCmp(1, 2, "Stra\xDF", 254, 1, keyText, 0, -1, 1, nullptr), 0);
  EXPECT_LT(NxStrCmp(254, 1, keyText, 1, 2,
                     "Stra\xDF"
                     "e",
                     0, -1, 1, nullptr),
            0);
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
  std::vector<char> a(5, 'a');
  std::vector<char> b(5, 'a');
  for (unsigned short op : {0, kWildcardsOff + 0, kOrderValuesOnly + 0, kSkipSpaces | kSkipSymbols})
    EXPECT_EQ(NxStrCmp(1, 1, a.data(), 1, 1, b.data(), op, 5, 1, nullptr), 0);
  b[2] = '?';
  EXPECT_EQ(NxStrCmp(1, 1, a.data(), 1, 1, b.data(), 0, 5, 1, nullptr), 0);
  a[4] = b[4] = '-';
  EXPECT_EQ(NxStrCmp(1, 1, a.data(), 1, 1, b.data(), 0, 5, 1, nullptr), 0);
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

// ---------------------------------------------------------------------------
// Against brute force

/// A character as the options let it count: a letter without case or accent.
char Folded(char c, unsigned short op) {
  const bool acute = c == '\xE1';
  if (acute && (op & kIgnoreAccents)) return 'a';
  if (c == 'A' && (op & kIgnoreCase)) return 'a';
  return c;
}

bool Matches(const char* text, const char* pattern, unsigned short op) {
  if (op & kSkipSymbols)
    while (*text == '-') ++text;
  if (op & kSkipSymbols)
    while (*pattern == '-') ++pattern;
  if (*pattern == 0) return *text == 0;
  if (*pattern == '*') return Matches(text, pattern + 1, op) || (*text && Matches(text + 1, pattern, op));
  if (*text == 0) return false;
  return (*pattern == '?' || Folded(*text, op) == Folded(*pattern, op)) && Matches(text + 1, pattern + 1, op);
}

TEST(NxStrCmp, MatchesAsBruteForceDoes) {
  const auto check = [](const std::string& text, const std::string& pattern, unsigned short op) {
    const bool matches = Matches(text.c_str(), pattern.c_str(), op);
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

// ---------------------------------------------------------------------------
// The plain walk against the level comparison

/// A text of bytes in a code set of either width.
struct Encoded {
  Encoded(const std::string& bytes, unsigned char codeSet) : codeSet(codeSet) {
    for (unsigned char c : bytes) {
      text += static_cast<char>(c);
      if (NxCharWidth(codeSet) == 2) text += '\0';
    }
    text.append(2, '\0');
  }
  unsigned char codeSet;
  std::string text;
};

void ExpectSame(const Encoded& a, unsigned char langA, const Encoded& b, unsigned char langB,
                unsigned short op, short len) {
  int walkOut = 77;
  int levelOut = 77;
  const int walk =
      NxStrCmp(a.codeSet, langA, a.text.c_str(), b.codeSet, langB, b.text.c_str(), op, len, 1, &walkOut);
  const int level = NxStrCmpGeneral(a.codeSet, langA, a.text.c_str(), b.codeSet, langB, b.text.c_str(), op,
                                    len, 1, &levelOut);
  ASSERT_TRUE(walk == level && walkOut == levelOut)
      << a.text << " : " << b.text << " op " << op << " len " << len << " code sets " << +a.codeSet << ", "
      << +b.codeSet << " languages " << +langA << ", " << +langB << ": " << walk << ", " << walkOut << " for "
      << level << ", " << levelOut;
}

/// The five option bits of the levels in every combination.
unsigned short Options(unsigned i) {
  return (i & 1 ? kWildcardsOff : 0) | (i & 2 ? kIgnoreCase : 0) | (i & 4 ? kIgnoreAccents : 0) |
         (i & 8 ? kSkipSpaces : 0) | (i & 16 ? kSkipSymbols : 0);
}

void CompareAllPairs(unsigned length, unsigned stride) {
  for (unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
    std::vector<Encoded> texts;
    for (const auto& text : TextsUpTo(kAlphabet, length)) texts.emplace_back(text, codeSet);
    const unsigned long long n = texts.size();
    for (unsigned long long i = codeSet % stride; i < n * n * 32; i += stride) {
      const Encoded& a = texts[i / 32 / n];
      const Encoded& b = texts[i / 32 % n];
      ExpectSame(a, 1, b, 1, Options(i % 32), -1);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(PlainWalk, AgreesOnRandomTexts) {
  // What needs more than the table is in here: expansions, contractions, languages
  // with orders of their own.
  const std::string pieces[] = {"a", "A", "\xE1", "b",    "c",    "h",    "ch", "ll", "aa",
                                "n", "s", "\xDF", "\xE6", "\xE4", "\xF8", "1",  "-",  " ",
                                "'", ".", "*",    "?",    "\xA4", "\xBD", "i",  "I"};
  const unsigned char codeSets[] = {1, 1, 1, 253, 253, 2, 3, 4, 77};
  const unsigned char languages[] = {1, 2, 3, 4, 5, 6, 7, 0, 33, 255};
  std::mt19937 random(2);
  const auto pick = [&](const auto& list) { return list[random() % std::size(list)]; };
  for (int i = 0; i < 200000; ++i) {
    std::string a, b;
    for (unsigned n = random() % 12; n > 0; --n) {
      a += pick(pieces);
      b += random() % 4 ? a.substr(a.size() - 1) : pick(pieces);
    }
    const unsigned char codeSetA = pick(codeSets);
    const unsigned char codeSetB = random() % 3 ? codeSetA : pick(codeSets);
    const unsigned char langA = pick(languages);
    const unsigned char langB = random() % 3 ? langA : pick(languages);
    const short len = random() % 3 ? -1 : static_cast<short>(random() % 10);
    const unsigned short op = Options(random() % 32) | (random() % 16 ? 0 : kOrderValuesOnly);
    ExpectSame(Encoded(a, codeSetA), langA, Encoded(b, codeSetB), langB, op, len);
    if (HasFatalFailure()) return;
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

// ---------------------------------------------------------------------------
// Wildcard search, hashes, estimate

}  // namespace
