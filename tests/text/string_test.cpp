// Strings: making, assigning, building, converting, the limit of their size; editing,
// trimming, case, splitting and comparing.
#include "nxstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "nxchar.h"
#include "nxstritr.h"
#include "nxtmdata.h"
#include "nxtypcmp.h"
#include "support/strings.h"

namespace {

TEST(NxString, Construction) {
  const unsigned short wide[] = {0x263A, 'b', 0};
  const struct {
    NxString s;
    unsigned char codeSet;
    std::string buffer;
  } cases[] = {
      {NxString(), 1, ""},
      {NxString('\0'), 1, ""},
      {NxString(static_cast<unsigned short>(0)), 253, ""},
      {NxString('a'), 1, {"a\0", 2}},
      {NxString(static_cast<unsigned short>(0x263A)), 253, {"\x3A\x26\0\0", 4}},
      {NxString("abc"), 1, {"abc\0", 4}},
      {NxString(static_cast<const char*>(nullptr)), 1, ""},
      {NxString(static_cast<const unsigned short*>(nullptr)), 253, ""},
      {NxString("abc", 65535), 1, {"abc\0", 4}},
      {NxString("abcdef", 3), 1, {"abc\0", 4}},
      {NxString("a\0c", 3), 1, {"a\0c\0", 4}},
      {NxString("abc", 0), 1, ""},
      {NxString(wide), 253, {"\x3A\x26\x62\0\0\0", 6}},
      {NxString(wide, 1), 253, {"\x3A\x26\0\0", 4}},
      {NxString(static_cast<short>(-32768)), 1, {"-32768\0", 7}},
      {NxString(4294967295U), 1, {"-1\0", 3}},
      {NxString(4294967295UL), 1, {"4294967295\0", 11}},
      {NxString(0.1), 1, {"0.1\0", 4}},
      {NxString(-1.5e300), 1, {"-1.5e+300\0", 10}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(Buffer(c.s), c.buffer);
    EXPECT_EQ(c.s._nCodeSet, c.codeSet);
    EXPECT_EQ(c.s._nLanguage, 1);
  }
}

TEST(NxString, AssignmentCopiesTextCodeSetAndLanguage) {
  NxString s = Wide(u"ab");
  s = *&s;
  EXPECT_EQ(Text16(s), u"ab");
  NxString copy("old");
  copy = s;
  EXPECT_EQ(Buffer(copy), Buffer(s));
  EXPECT_NE(copy._pBuffer, s._pBuffer);
  EXPECT_EQ(copy._nLanguage, 2);
  copy = NxString("a\0b", 3);  // what follows the first zero is no text
  EXPECT_EQ(Buffer(copy), std::string("a\0", 2));
  copy = "0123456789";  // a source in its own buffer
  copy = copy.StrGet() + 4;
  EXPECT_EQ(Text(copy), "456789");
  copy = static_cast<const char*>(nullptr);
  EXPECT_EQ(copy.StrGet(), zeroString);
  s.Destruct(s);
  copy.Destruct(s);
  EXPECT_EQ(Text16(copy), u"ab");
  EXPECT_EQ(s._nSize, 0);
  EXPECT_EQ(s._nCodeSet, 253);
}

TEST(NxString, NullState) {
  NxString s("abc");
  EXPECT_EQ(s.IsNullValue(), 0);
  EXPECT_EQ(s.SetNullValue(), 0);
  EXPECT_EQ(s.IsNullValue(), 1);
  EXPECT_EQ(s.Len(), 0);
  EXPECT_EQ(s.StrGet(), zeroString);
  s += NxString("x");  // editing leaves the language, and so the null state
  EXPECT_EQ(s.IsNullValue(), 1);
  EXPECT_EQ(NxString(s).IsNullValue(), 1);
  s = "x";
  EXPECT_EQ(s.IsNullValue(), 0);
  EXPECT_EQ(NxString(254, 0).IsNullValue(), 1);
  EXPECT_EQ(NxString(254, 1).IsNullValue(), 0);
}

TEST(NxString, CodeSets) {
  NxString s = Narrow("\xA4z", 3);  // the euro sign of ISO 8859-15
  EXPECT_EQ(s.SetCodeSetCode(253), kInvalidCodeSet);
  EXPECT_EQ(s.MapToCodeSet(0), kInvalidCodeSet);
  EXPECT_EQ(s._nCodeSet, 3);
  EXPECT_EQ(s.MapToCodeSet(253), 0);
  EXPECT_EQ(Text16(s), u"\u20ACz");
  EXPECT_EQ(s._nSize, 6);
  EXPECT_EQ(s.MapToCodeSet(1), 0);  // not in Latin-1
  EXPECT_EQ(Buffer(s), std::string("\x7Fz\0", 3));
  EXPECT_EQ(s.SetCodeSet(4), 0);  // same width: the bytes stay
  EXPECT_EQ(Buffer(s), std::string("\x7Fz\0", 3));
  NxString wide = Wide(u"\u00E9x");
  EXPECT_EQ(wide.SetCodeSet(0), 0);
  EXPECT_EQ(Buffer(wide), std::string("\xE9x\0", 3));
  EXPECT_EQ(wide._nCodeSet, 0);
  EXPECT_EQ(wide.SetCodeSet(253), 0);
  EXPECT_EQ(Text16(wide), u"\u00E9x");
}

TEST(NxString, CopyMappedReusesALargerBuffer) {
  NxString s("a long enough text here");
  const char* buffer = s._pBuffer;
  const unsigned short size = s._nSize;
  EXPECT_EQ(s.CopyMapped(s, 253, -1), kInvalidCodeSet);
  EXPECT_EQ(s.CopyMapped(Narrow("\xE9zz"), 253, 2), 2);
  EXPECT_EQ(s._pBuffer, buffer);
  EXPECT_EQ(s._nSize, size);
  EXPECT_EQ(Text16(s), u"\u00E9z");
  EXPECT_EQ(Buffer(s).find_first_not_of('\0', 4), std::string::npos);  // nothing of the old text
  EXPECT_EQ(s._nLanguage, 2);
  s += s.RightTrim();  // the end of the text is not that of the buffer
  EXPECT_EQ(Text16(s), u"\u00E9z\u00E9z");
  EXPECT_EQ(s.CopyMapped(NxString(), 1, -1), 0);
  EXPECT_EQ(s.Len(), 0);
  char* mapped = nullptr;
  unsigned short room = 0;
  EXPECT_EQ(AllocMappedN(1, 240, const_cast<char*>("abc"), 5, mapped, room), 3);
  EXPECT_EQ(room, 12);
  EXPECT_EQ(std::string(mapped, 12), std::string("a\0b\0c\0\0\0\0\0\0\0", 12));
  const char* const reused = mapped;
  EXPECT_EQ(AllocMappedN(1, 2, const_cast<char*>("xy"), -1, mapped, room), 2);
  EXPECT_EQ(mapped, reused);
  EXPECT_EQ(room, 12);
  EXPECT_EQ(std::string(mapped, 12), std::string("xy\0\0c\0\0\0\0\0\0\0", 12));  // only text and zero
  delete[] mapped;
}

TEST(NxString, Wildcards) {
  const unsigned short asterisk = NxString::GetAsterisk(), question = NxString::GetQuestion();
  EXPECT_EQ(asterisk, NxChar('*').GetOrder());
  EXPECT_EQ(question, NxChar('?').GetOrder());
  EXPECT_EQ(NxString::GetEscape(), NxChar('\\').GetOrder());
  unsigned short order = 0;
  EXPECT_EQ(NxString::SetAQE(NxChar('%'), order), 0);
  EXPECT_EQ(order, NxChar('%').GetOrder());
  EXPECT_EQ(NxString::SetAQE(NxChar(static_cast<unsigned short>(0xE9)), order), 0);
  EXPECT_EQ(order, NxChar('\xE9').GetOrder());
  const char swapped[] = {0, '%'};
  EXPECT_EQ(NxString::SetAsterisk(NxChar(swapped, 253, 1, 2)), 0);
  EXPECT_EQ(NxString::GetAsterisk(), NxChar('%').GetOrder());
  NxString::SetAsterisk(NxChar('*'));
  EXPECT_EQ(NxString::GetAsterisk(), asterisk);
  EXPECT_EQ(NxString::GetQuestion(), question);
}

TEST(BuildString, StaysWithinItsTextsWhateverIsAsked) {
  NxString s("abc");
  s.BuildString("XY", 1, 4, 0, 2, 1, 2, 1);  // behind the terminator
  s.BuildString("XY", 1, 2, 0, 2, 1, 1, 1);  // over the terminator
  s.BuildString("XY", 1, 0, 0, 2, 1, 9, 1);
  EXPECT_EQ(Buffer(s), std::string("abc\0", 4));
  s.BuildString(s._pBuffer, 1, 1, 2, 20, 1, 3, 1);  // past the own buffer: zeros
  EXPECT_EQ(Buffer(s), "ac" + std::string(20, '\0'));
  s.BuildString("xy", 1, 30, 0, 1, 1, 3, 1);
  EXPECT_EQ(Buffer(s).substr(22), std::string(8, '\0') + std::string("x\0", 2));
  s = "abc";
  s.BuildString("x", 1, 0, 0, 0, 9, 3, 1);  // copies without room for them
  EXPECT_EQ(Buffer(s), std::string(1, '\0'));
  NxString wide(253, 1);
  const char unterminated[] = {'a', 'b', 'c'};
  wide.MakeString(unterminated, 1, 3, 1);
  EXPECT_EQ(Text16(wide), u"abc");
  wide.MakeString("ab", 1, 5, 1);
  EXPECT_EQ(wide._nSize, 12);
}

// ---------------------------------------------------------------------------
// The limit

TEST(Overflow, OneByteMoreThanTheLimitIsReportedAndChangesNothing) {
  const std::string most(65532, 'x');
  NxString s(most.c_str());
  Reports reports;
  EXPECT_EQ(s._nSize, 65533);
  const std::vector<std::function<void()>> edits = {
      [&] { s += NxString('x'); },
      [&] { s << s; },
      [&] { s << 1; },
      [&] { s.Insert(NxString('x'), 5); },
      [&] { s = (most + "x").c_str(); },
      [&] { s = std::string(65536 + 3, 'y').c_str(); },  // 3 in 16 bits
      [&] { s << std::string(131072, 'y').c_str(); },
      [&] { s.Fill(65533, 'y'); },
      [&] { s.Expand(65535, 'y'); },
      [&] { s.MakeString((most + "xyz").c_str(), 1, -2, 1); },
      [&] { s.BuildString("ab", 1, 65535, 0, 65535, 65535, 3, 1); },
      [&] { s.ReplaceAll(NxString('x'), NxString("ab")); },
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(&edit - &edits[0]);
    edit();
    EXPECT_EQ(reports.Take(), kBuildOverflow);
    ASSERT_EQ(s._nSize, 65533);
    EXPECT_EQ(Text(s), most);
  }
  EXPECT_EQ(NxString(std::string(65536 + 3, 'y').c_str())._pBuffer, nullptr);
  EXPECT_EQ(reports.Take(), kBuildOverflow);
  NxString wide(253, 1);
  wide.Fill(32765, 'y');
  EXPECT_TRUE(reports.Take().empty());
  EXPECT_EQ(wide.Len(), 32765);
  wide.Fill(32766, 'y');
  EXPECT_EQ(reports.Take(), kBuildOverflow);
}

TEST(Overflow, OfConversions) {
  Reports reports;
  NxString s(std::string(32766, 'x').c_str()), target("t");
  EXPECT_EQ(s.MapToCodeSet(253), kInvalidCodeSet);
  EXPECT_EQ(s.SetCodeSet(253), kInvalidCodeSet);
  EXPECT_EQ(s._nSize, 32767);
  EXPECT_EQ(s._nCodeSet, 1);
  EXPECT_EQ(reports.Take().size(), 2U);
  EXPECT_EQ(target.CopyMapped(s, 253, -1), 0);
  EXPECT_EQ(reports.Take(), kMapOverflow);
  EXPECT_EQ(target._nCodeSet, 1);
  EXPECT_EQ(target.CopyMapped(s, 253, 32764), 32764);
  EXPECT_EQ(target._nSize, 65530);
  NxString wide(253, 1);
  wide += s;
  EXPECT_EQ(wide._pBuffer, nullptr);
  EXPECT_EQ(reports.Take(), kBuildOverflow);
  for (const unsigned long length : {32766UL, 32767UL, 65535UL, 70000UL}) {
    char* out = nullptr;
    EXPECT_EQ(AllocMapped(1, 253, std::string(length, 'x').data(), out, 0, 1), 65534);
    EXPECT_EQ(out[65531] | out[65533], 0);
    EXPECT_EQ(out[65530], 'x');
    EXPECT_EQ(reports.Take().empty(), length == 32766);
    delete[] out;
  }
}

TEST(Overflow, TheConfigurationDecidesWhetherItIsReported) {
  Reports reports;
  OneSetting config;
  NxString s;
  s.Fill(65535, 'x');
  EXPECT_EQ(config.asked, "debug.stringOverflow");
  EXPECT_TRUE(reports.Take().empty());
  config.Set("", 1);
  s.Fill(65535, 'x');
  EXPECT_EQ(reports.Take(), kBuildOverflow);
}

// ---------------------------------------------------------------------------
// Editing

TEST(Editing, NumbersAndCharactersOfSixteenBits) {
  NxString narrow("x"), wide = Wide(u"x");
  narrow << static_cast<unsigned short>(65);
  wide << static_cast<unsigned short>(65);
  EXPECT_EQ(Text(narrow), "x65");
  EXPECT_EQ(Text16(wide), u"xA");
  EXPECT_EQ(Text16(Wide(u"a") + NxString("\xE9")), u"a\u00E9");
  const unsigned short units[] = {0xE9, 'z', 0};
  EXPECT_EQ(Text16(wide << units), u"xA\u00E9z");
  EXPECT_EQ(Text(NxString("x") << units), "x\xE9z");
  wide.Cut(2);
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

TEST(Case, ExpandsByTheIterator) {
  NxString s("abc"), none;
  Tripled op;
  EXPECT_EQ(Text(s.Transform(op)), "a++b++c++");
  EXPECT_EQ(none.ToUpper()._pBuffer, nullptr);
  EXPECT_EQ(none.Trim()._pBuffer, nullptr);
  EXPECT_EQ(Text16(String(u"i\u0131", 253, kLanguageTurkish).ToUpper()), u"\u0130I");
}

TEST(Comparison, OperatorsFollowTheLanguageOrNot) {
  EXPECT_TRUE(OperatorsAgree(NxString("abc"), Wide(u"abd"), -1));
  EXPECT_TRUE(OperatorsAgree(NxString("abc"), NxString("a*"), 0));
  EXPECT_TRUE(OperatorsAgree(Narrow("b", 0, 0), Narrow("a", 0, 0), 1));  // by bytes, one apart
  EXPECT_EQ(NxString("abc").Compare(NxString("abd"), 2, 0), 0);
  EXPECT_NE(NxString("abc").Compare(NxString("a*"), -1, kWildcardsOff), 0);
  EXPECT_TRUE(
      Narrow("chico", 1, kLanguageSpanish).EqualsIgnoreLanguage(Narrow("chico", 1, kLanguageEnglish)));
  EXPECT_FALSE(NxString("abc").EqualsIgnoreLanguage(NxString("a*")));
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

TEST(ReplaceAll, LeavesAlonePastAZeroCharacter) {
  NxString s = Narrow(std::string("ab\0cd", 5));
  EXPECT_EQ(Buffer(s.ReplaceAll('c', 'x')), std::string("ab\0cd\0", 6));
  EXPECT_EQ(Buffer(s.ReplaceAll('b', 'c')), std::string("ac\0", 3));
}

}  // namespace
