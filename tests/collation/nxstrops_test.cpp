// Editing, trimming, case, searching, splitting, comparison, numbers and characters.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtmdata.h"
#include "nxtypcmp.h"
#include "strwild.h"
#include "support/strings.h"

namespace {

NxString Latin1Of(NxString s) {
  s.MapToCodeSet(1);
  return s;
}
NxString WideOf(const char* text) {
  NxString s(text);
  s.MapToCodeSet(253);
  return s;
}

struct Edit {
  const char* before;
  void (*edit)(NxString&);
  const char* after;
};

/// Runs every edit on an 8-bit and on a 16-bit string.
void Check(const std::vector<Edit>& edits) {
  for (const Edit& e : edits) {
    for (const bool wide : {false, true}) {
      SCOPED_TRACE(std::string(e.before) + " to be " + e.after + (wide ? " (16 bits)" : ""));
      NxString s = wide ? WideOf(e.before) : NxString(e.before);
      e.edit(s);
      const NxString result = Latin1Of(s);
      EXPECT_EQ(Text(result), e.after);
      EXPECT_EQ(s._nSize, (std::string(e.after).size() + 1) * s.NullLen());
      EXPECT_EQ(s._nCodeSet, wide ? 253 : 1);
    }
  }
}

TEST(Editing, InsertReplaceFillExpandCut) {
  Check({
      {"abc", [](NxString& s) { s.Insert("xy", 3); }, "abcxy"},
      {"abc", [](NxString& s) { s.Insert("xy", 4); }, "abc"},
      {"abc", [](NxString& s) { s.Insert("xy", 0).Insert("", 1); }, "xyabc"},
      {"abc", [](NxString& s) { s.Insert(s, 1); }, "aabcbc"},
      {"", [](NxString& s) { s.Insert(NxString("xy"), 0); }, "xy"},
      {"abc", [](NxString& s) { s.Replace("xyz12", 1); }, "axy"},
      {"abc", [](NxString& s) { s.Replace("xyz12", 3).Replace("x", 65535); }, "abc"},
      {"abcd", [](NxString& s) { s.Replace(s, 1).Replace(WideOf("Z"), 0); }, "Zabc"},
      {"abc", [](NxString& s) { s.Fill(3, 'x'); }, "xxx"},
      {"abc", [](NxString& s) { s.Fill(1, 'x').Expand(1, 'y').Expand(2, 'z').Expand(5, 'w'); }, "xzwww"},
      {"abc", [](NxString& s) { s.Fill(0, 'x'); }, ""},
      {"abc", [](NxString& s) { s.Fill(2, static_cast<unsigned short>(0xE9)); }, "\xE9\xE9"},
      {"abcd", [](NxString& s) { s.Cut(1, -1); }, "a"},
      {"abcd", [](NxString& s) { s.Cut(4, 1).Cut(65535, -1).Cut(1, 0).Cut(1, -2); }, "abcd"},
      {"abcd", [](NxString& s) { s.Cut(1, 2); }, "ad"},
      {"abcd", [](NxString& s) { s.Cut(2, 32767); }, "ab"},
      {"ab", [](NxString& s) { s += s; }, "abab"},
      {"ab", [](NxString& s) { s << WideOf("\xE9") << static_cast<const char*>(nullptr) << 'c' << '\0'; },
       "ab\xE9"
       "c"},
      {"n", [](NxString& s) { s << -1 << 4294967295U << 7L << 4294967295UL << 0.5F << 0.1 << short{3}; },
       "n-1-1742949672950.50.13"},
  });
}

TEST(Editing, NumbersAndCharactersOfSixteenBits) {
  NxString narrow("x"), wide = Wide(u"x");
  narrow << static_cast<unsigned short>(65);
  wide << static_cast<unsigned short>(65);
  EXPECT_EQ(Text(narrow), "x65");
  EXPECT_EQ(Text16(wide), u"xA");
  EXPECT_EQ(Text16(Wide(u"a") + NxString("\xE9")), u"a\u00E9");
  narrow << narrow.StrGet();
  EXPECT_EQ(Text(narrow), "x65x65");
  NxString a, b;
  a += b;
  EXPECT_EQ(a._nSize, 1);
  narrow[1] = NxChar(static_cast<unsigned short>(0xE9));
  wide[1] = NxChar('\xE9');
  EXPECT_EQ(Text(narrow),
            "x\xE9"
            "5x65");
  EXPECT_EQ(Text16(wide), u"x\u00E9");
  for (const int i : {-1, 6, 65536}) {
    EXPECT_EQ(static_cast<unsigned short>(narrow[i]), 0);
    EXPECT_EQ(narrow[i]._pChar, nullptr);
  }
}

TEST(Editing, PartsOfATextLongerThanSigned16Bits) {
  std::string text(60000, 'x');
  text[40000] = 'y';
  const NxString s(text.c_str());
  EXPECT_EQ(Text(s.Left(45000)), text.substr(0, 45000));
  EXPECT_EQ(Text(s.Right(45000)), text.substr(15000));
  EXPECT_EQ(Text(s.Copy(10000, static_cast<short>(40000))), text.substr(10000, 40000));
  EXPECT_EQ(static_cast<unsigned short>(s.Find('y', 0, kWildcardsOff)), 40000);
  NxString edited(s), list(s), item;
  edited.ReplaceAll('y', 'z');
  EXPECT_EQ(edited.StrGet()[40000], 'z');
  unsigned short pos = 0;
  EXPECT_EQ(NxSplitList(list, item, NxString('y'), pos), 0);
  EXPECT_EQ(item.Len(), 40000);
  EXPECT_EQ(NxSplitList(list, item, NxString('y'), pos), 0);
  EXPECT_EQ(item.Len(), 19999);
  EXPECT_EQ(NxSplitList(list, item, NxString('y'), pos), kEndOfList);
  // A pattern of more characters than a comparison can be told to stop after.
  EXPECT_EQ(s.Find(s.Copy(1, static_cast<short>(39999)), 0, kWildcardsOff), 0);
  EXPECT_EQ(s.Find(s.Copy(2, static_cast<short>(39999)), 0, kWildcardsOff), 2);
  EXPECT_EQ(Text(s), text);
}

TEST(Editing, Copies) {
  const NxString s = Wide(u"abcd");
  EXPECT_EQ(Text16(s.Copy(2)), u"cd");
  EXPECT_EQ(Text16(s.Copy(1, 2)), u"bc");
  EXPECT_EQ(Text16(s.Right(10)), u"abcd");
  const NxString none = s.Copy(4, 1);
  EXPECT_EQ(none._pBuffer, nullptr);
  EXPECT_EQ(none._nCodeSet, 1);
  EXPECT_EQ(none._nLanguage, 1);
}

TEST(Trimming, TakesBlanksAndControls) {
  Check({
      {" \t\na b\r ", [](NxString& s) { s.Trim(); }, "a b"},
      {"  a ", [](NxString& s) { s.LeftTrim(); }, "a "},
      {"  a ", [](NxString& s) { s.RightTrim(); }, "  a"},
      {"   ", [](NxString& s) { s.Trim(); }, ""},
      {"   ", [](NxString& s) { s.RightTrim(); }, ""},
      {"-", [](NxString& s) { s.Trim(); }, "-"},
  });
  NxString none;
  EXPECT_EQ(none.Trim()._pBuffer, nullptr);
}

/// Every character three times over, the further two by way of the iterator.
class Tripled final : public NxCharOperation {
 public:
  NxChar operator()(const NxChar& c, NxStringIterator* it) override {
    static constexpr unsigned short kMore[] = {'+', '+'};
    static constexpr NxWCharList kList(kMore, 2);
    if (!it->_pOverflow) it->SetOverflow(&kList, 1);
    return c;
  }
};

TEST(Case, MapsAndExpands) {
  Check({
      {"Stra\xDF"
       "e \xE9-1",
       [](NxString& s) { s.ToUpper(); }, "STRASSE \xC9-1"},
      {"\xDF\xDF\xDF", [](NxString& s) { s.ToUpper(); }, "SSSSSS"},
      {"\xC4rger", [](NxString& s) { s.ToLower(); }, "\xE4rger"},
      {"", [](NxString& s) { s.ToUpper(); }, ""},
      {"abc",
       [](NxString& s) {
         Tripled op;
         s.Transform(op);
       },
       "a++b++c++"},
  });
  NxString none;
  EXPECT_EQ(none.ToUpper()._pBuffer, nullptr);
  NxString turkish = Wide(u"i\u0131");
  turkish._nLanguage = kLanguageTurkish;
  EXPECT_EQ(Text16(turkish.ToUpper()), u"\u0130I");
}

TEST(Case, OfLongTexts) {
  Reports reports;
  NxString s(std::string(65532, 'a').c_str());
  EXPECT_EQ(Text(s.ToUpper()), std::string(65532, 'A'));
  NxString half(std::string(32766, '\xDF').c_str());
  EXPECT_EQ(Text(half.ToUpper()), std::string(65532, 'S'));
  EXPECT_TRUE(reports.Take().empty());
  const std::string eszetts(32767, '\xDF');
  NxString more(eszetts.c_str());
  EXPECT_EQ(Text(more.ToUpper()), eszetts);
  EXPECT_EQ(reports.Take(), kBuildOverflow);
}

TEST(Find, UnderItsOptions) {
  const struct {
    const char *text, *pattern;
    unsigned short start, op;
    int position;
  } cases[] = {
      {"xxabc", "abc", 0, kWildcardsOff, 2},
      {"xxabc", "abc", 0, 0, 2},
      {"xxabcxabc", "abc", 3, kDefaultOptions, 6},
      {"xxabc", "abcd", 0, kDefaultOptions, -1},
      {"xxabc", "ABC", 0, kDefaultOptions, -1},
      {"xxabc", "ABC", 0, kIgnoreCase, 2},
      {"xa*c", "a*c", 0, kWildcardsOff, 1},
      {"xabbc", "a*c", 0, kWildcardsOff, -1},
      {"xabbc", "a*c", 0, 0, 1},
      {"xabbc", "b?", 0, 0, 2},
      {"abc", "c", 3, 0, -1},
      {"abc", "c", 4, 0, -1},
      {"abc", "", 2, kWildcardsOff, 2},
      {"abc", "", 4, kWildcardsOff, -1},
      {"", "a", 0, 0, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.pattern) + " in " + c.text);
    EXPECT_EQ(NxString(c.text).Find(NxString(c.pattern), c.start, c.op), c.position);
  }
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
    NxString s = random() % 3 ? NxString(text.c_str()) : WideOf(text.c_str());
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
    ASSERT_EQ(s.Find(pattern, 0, op), found) << Text(s) << " / " << Text(pattern) << " under " << op;
  }
}

TEST(ReplaceAll, AdvancesPastWhatItPutIn) {
  Check({
      {"aXbX", [](NxString& s) { s.ReplaceAll(NxString("X"), NxString("XX")); }, "aXXbXX"},
      {"abab", [](NxString& s) { s.ReplaceAll(NxString("ab"), NxString(), 1); }, "ab"},
      {"abab", [](NxString& s) { s.ReplaceAll('a', 'c'); }, "cbcb"},
      {"aaa", [](NxString& s) { s.ReplaceAll(NxString("a"), NxString("")); }, ""},
      {"abc", [](NxString& s) { s.ReplaceAll(NxString(""), NxString("x")); }, "abc"},
      {"abc", [](NxString& s) { s.ReplaceAll(NxString("*"), NxString("")); }, ""},
      {"ab", [](NxString& s) { s.ReplaceAll(s, NxString("c")); }, "c"},
      {"ab", [](NxString& s) { s.ReplaceAll(NxString("b"), s); }, "aab"},
  });
}

TEST(ReplaceAll, LeavesAlonePastAZeroCharacter) {
  NxString s = Narrow(std::string("ab\0cd", 5));
  EXPECT_EQ(Buffer(s.ReplaceAll('c', 'x')), std::string("ab\0cd\0", 6));
  EXPECT_EQ(Buffer(s.ReplaceAll('b', 'c')), std::string("ac\0", 3));
}

TEST(SplitList, TakesItemAfterItem) {
  const struct {
    const char *list, *separator;
    std::vector<std::string> items;
  } cases[] = {
      {"a, b,,c", ",", {"a", "b", "", "c"}},
      {",a", ",", {"a"}},
      {",,a", ",", {"", "a"}},
      {"a,", ",", {"a"}},
      {"", ",", {}},
      {" ", ",", {""}},
      {"a--b-c", "--", {"a", "-b-c"}},  // the position moves on by one character
      {"ab", "", {"", ""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.list);
    NxString list(c.list), item("untouched");
    unsigned short pos = 0;
    std::vector<std::string> items;
    while (items.size() < 10 && NxSplitList(list, item, NxString(c.separator), pos) == 0)
      items.push_back(Text(item));
    EXPECT_EQ(items, c.items);
    if (items.empty()) {
      EXPECT_EQ(Text(item), "untouched");
    }
  }
}

TEST(Comparison, OperatorsAgree) {
  const struct {
    const char *a, *b;
    int sign;
  } cases[] = {{"abc", "abc", 0}, {"abc", "abd", -1}, {"b", "a", 1},
               {"", "a", -1},     {"abc", "a*", 0},   {"a*", "abc", -1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.a) + " and " + c.b);
    const NxString a(c.a), b = WideOf(c.b);
    EXPECT_EQ(a == b, c.sign == 0);
    EXPECT_EQ(a != b, c.sign != 0);
    EXPECT_EQ(a < b, c.sign < 0);
    EXPECT_EQ(a > b, c.sign > 0);
    EXPECT_EQ(a <= b, c.sign <= 0);
    EXPECT_EQ(a >= b, c.sign >= 0);
    const int result = a.Compare(b);
    EXPECT_EQ((result > 0) - (result < 0), c.sign);
  }
  EXPECT_EQ(NxString("abc").Compare(NxString("abd"), 2, 0), 0);
  EXPECT_NE(NxString("abc").Compare(NxString("a*"), -1, kWildcardsOff), 0);
  EXPECT_TRUE(
      Narrow("chico", 1, kLanguageSpanish).EqualsIgnoreLanguage(Narrow("chico", 1, kLanguageEnglish)));
  EXPECT_FALSE(NxString("abc").EqualsIgnoreLanguage(NxString("a*")));
}

}  // namespace
