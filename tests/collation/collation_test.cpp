// NxStrCmp against a matcher by brute force, the roads of a comparison against the level
// comparison, the byte matchers, and searching at every position. The levels themselves
// are cases of golden/collation.txt.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <random>

#include "collation/nxstrcmp.h"
#include "nxchar.h"
#include "nxstritr.h"
#include "nxtypcmp.h"
#include "ord2str.h"
#include "strwild.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

int Compare(const std::string& a, const std::string& b, unsigned short op = 0, short len = -1,
            unsigned char language = 1) {
  return NxStrCmp(1, language, a.c_str(), 1, language, b.c_str(), op, len, 1, nullptr);
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

// ---------------------------------------------------------------------------
// The roads against the level comparison

/// A text of bytes in a code set of either width.
struct EncodedText {
  EncodedText(const std::string& bytes, unsigned char codeSet)
      : codeSet(codeSet), text(Encoded(Widened(bytes), codeSet) + std::string(2, '\0')) {}
  unsigned char codeSet;
  std::string text;
};

void ExpectSame(const EncodedText& a, unsigned char langA, const EncodedText& b, unsigned char langB,
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
    ExpectSame(EncodedText(a, codeSetA), langA, EncodedText(b, codeSetB), langB, op, len);
    if (HasFatalFailure()) return;
  }
}

/// A page behind which nothing can be read.
class LastPage {
 public:
  LastPage()
      : at_(static_cast<char*>(
            mmap(nullptr, 2 * kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    EXPECT_EQ(mprotect(at_ + kSize, kSize, PROT_NONE), 0);
  }
  ~LastPage() { munmap(at_, 2 * kSize); }
  /// A copy of the text with its zero, so many bytes before the end, among other letters.
  const char* Put(const std::string& text, unsigned before) const {
    char* const place = at_ + kSize - before - text.size() - 1;
    std::memset(at_, 'x', kSize);
    std::memcpy(place, text.c_str(), text.size() + 1);
    return place;
  }

 private:
  static constexpr std::size_t kSize = 4096;
  char* at_;
};

TEST(PlainBytes, AgreeWhereverTextsLieAndEnd) {
  const LastPage first, second;
  const std::string letters = "abAB\xE1\xE4";
  const std::string others = "cClLhaA\xDF\xBD-. *?1";
  std::mt19937 random(4);
  for (int i = 0; i < 300000; ++i) {
    std::string a;
    for (unsigned n = random() % 40; n > 0; --n) a += letters[random() % letters.size()];
    for (unsigned n = random() % 3; n > 0; --n)
      a.insert(random() % (a.size() + 1), 1, others[random() % others.size()]);
    std::string b = a;
    for (unsigned n = random() % 3; n > 0 && !b.empty(); --n)
      b[random() % b.size()] = (random() % 2 ? letters : others)[random() % 6];
    if (random() % 8 == 0) b.resize(random() % (b.size() + 1));
    const char* const p = first.Put(a, random() % 18);
    const char* const q = second.Put(b, random() % 18);
    const auto language = static_cast<unsigned char>("\2\2\4\6"[random() % 4]);
    const unsigned short op = Options(random() % 2 ? random() % 2 : random() % 32);
    const int order = NxStrCmp(1, language, p, 1, language, q, op, -1, 1, nullptr);
    ASSERT_EQ(order, NxStrCmpGeneral(1, language, p, 1, language, q, op, -1, 1, nullptr))
        << a << " : " << b << " op " << op << " language " << +language;
    int error;
    std::string imageA = StringImage(a, 1, language), imageB = StringImage(b, 1, language);
    ASSERT_EQ(StringCompare(1, imageA.size(), &imageA[0], imageB.size(), &imageB[0], op, 1, error), order);
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

TEST(Find, ComparesAtEveryPosition) {
  std::mt19937 random(3);
  const char characters[] =
      "aAb\xE1\xDF"
      "c -*?";
  const auto make = [&](unsigned most) {
    std::string text;
    for (unsigned n = random() % (most + 1); n > 0; --n) text += characters[random() % 10];
    NxString s = random() % 3 ? NxString(text.c_str()) : Wide(Widened(text));
    s._nLanguage = random() % 5;
    return s;
  };
  for (int round = 0; round < 30000; ++round) {
    const NxString s = make(9), pattern = make(3);
    constexpr unsigned short kOptions[] = {0, 0x10, 0x20, 0x60, 0x80, 0x280, 0x290, 0x100, 0x110, 0xFFFF};
    const unsigned short op = kOptions[random() % 10];
    const bool open = !(op & kWildcardsOff);
    const NxString used = open ? pattern + NxString('*') : pattern;
    const int bytes = pattern.Len() * pattern.NullLen();
    int found = -1;
    for (int at = s.Len(); pattern._nSize && s._nSize && at >= 0; --at) {
      const char* text = s._pBuffer + at * s.NullLen();
      if ((s.Len() - at) * s.NullLen() >= bytes &&
          NxStrCmp(s._nCodeSet, s._nLanguage, text, used._nCodeSet, used._nLanguage, used.StrGet(),
                   op == 0xFFFF ? 0 : op, open ? -1 : static_cast<short>(pattern.Len()), 1, nullptr) == 0)
        found = at;
    }
    // In a buffer behind which nothing may be read.
    const Block exact(s._pBuffer, s._nSize);
    NxString within(s._nCodeSet, s._nLanguage);
    within._pBuffer = reinterpret_cast<char*>(exact.Data());
    within._nSize = s._nSize;
    const short position = within.Find(pattern, 0, op);
    within._pBuffer = nullptr;
    ASSERT_EQ(position, found) << Text(s) << " / " << Text(pattern) << " under " << op;
  }
}

}  // namespace
