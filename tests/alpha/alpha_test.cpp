// The alphabetic strings: byte maps, order, and the edges of editing.
#include "nxistr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <set>
#include <string>
#include <vector>

#include "nxcistr.h"
#include "nxcodset.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

using Uchar = unsigned char;

const Uchar* U(const std::string& s) { return reinterpret_cast<const Uchar*>(s.c_str()); }

/// The keys of a text, without terminator.
std::string Keys(const std::string& text, bool foldsCase) {
  std::vector<Uchar> keys(2 * text.size() + 1);
  int n = (foldsCase ? _NxCaseIMapString : _NxIMapString)(keys.data(), U(text), 0);
  EXPECT_EQ(keys[n - 1], 0);
  return std::string(keys.begin(), keys.begin() + n - 1);
}

TEST(AlphaMap, EncodingCountsBytesOrStopsAtTheTerminator) {
  const Uchar text[] = {0xCC, 0, 0x41, 0};  // 0xCC is stored as 0xE4
  Uchar out[4] = {9, 9, 9, 9};
  EXPECT_EQ(_NxEncodeString(out, text, 3), 3);
  EXPECT_EQ(std::vector<Uchar>(out, out + 4), (std::vector<Uchar>{0xE4, 0, 0x41, 9}));
  EXPECT_EQ(_NxEncodeString(out, text, 0), 2);
  EXPECT_EQ(_NxDecodeString(out, out), 2);
  EXPECT_EQ(out[0], 0xCC);
}

// ---------------------------------------------------------------------------
// Order

/// The difference of the first differing bytes within n.
int CompareKeys(const std::string& a, const std::string& b, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    int x = i < a.size() ? static_cast<Uchar>(a[i]) : 0;
    int y = i < b.size() ? static_cast<Uchar>(b[i]) : 0;
    if (x != y || x == 0) return x - y;
  }
  return 0;
}

template <class Compare>
void TextsCompareAsTheirKeys(Compare compare, bool foldsCase) {
  // Letters with and without a second key.
  std::vector<std::string> texts = TextsUpTo("aASs\xDF\x8C\x9C\xC0", 3), keys;
  for (const std::string& text : texts) keys.push_back(Keys(text, foldsCase));
  int wrong = 0;
  for (size_t i = 0; i < texts.size(); ++i)
    for (size_t j = 0; j < texts.size(); ++j) {
      const std::string &a = texts[i], &b = texts[j], &keysA = keys[i], &keysB = keys[j];
      const int expected = CompareKeys(keysA, keysB, SIZE_MAX);
      const int limited = CompareKeys(keysA, keysB, 2);
      const bool empty = a.empty() || b.empty();  // then the first bytes themselves are compared
      const int results[] = {compare(a.c_str(), b.c_str(), 0, kAlphaDisk, kAlphaDisk),
                             compare(keysA.c_str(), b.c_str(), 0, kAlphaKeys, kAlphaDisk),
                             compare(a.c_str(), keysB.c_str(), 0, kAlphaDisk, kAlphaKeys),
                             compare(keysA.c_str(), keysB.c_str(), 0, kAlphaKeys, kAlphaKeys)};
      for (int r : results) wrong += empty ? Sign(r) != Sign(expected) : r != expected;
      wrong += !empty && compare(a.c_str(), b.c_str(), 2, kAlphaDisk, kAlphaDisk) != limited;
    }
  EXPECT_EQ(wrong, 0);
}

TEST(AlphaOrder, TextsCompareAsTheirKeys) { TextsCompareAsTheirKeys(nxistrcmp, false); }
TEST(AlphaOrder, CaseTextsCompareAsTheirKeys) { TextsCompareAsTheirKeys(nxcaseistrcmp, true); }

TEST(AlphaOrder, Operators) {
  const NxIString b("b"), ascending[] = {NxIString(), NxIString("a"), NxIString("A"), b};
  for (const NxIString& x : ascending)
    for (const NxIString& y : ascending) EXPECT_TRUE(OperatorsAgree(x, y, (&x > &y) - (&x < &y)));
  EXPECT_TRUE(NxCaseIString("a") == NxCaseIString("A"));
  NxIString keys("\x5A");  // the key of "b"
  keys._nForm = kAlphaKeys;
  EXPECT_TRUE(keys == b && keys == "b" && "b" == keys);
  NxIString assigned, copied(keys);
  assigned = keys;
  EXPECT_EQ(assigned._nForm, kAlphaKeys);
  EXPECT_EQ(copied._nForm, 0);
  EXPECT_TRUE(assigned == b && copied != b);
}

// ---------------------------------------------------------------------------
// Values

template <class Text>
class AlphaText : public testing::Test {
 protected:
  static std::string Str(const Text& t) { return t._pStr ? t._pStr : ""; }
};
using Types = testing::Types<NxIString, NxCaseIString>;
TYPED_TEST_SUITE(AlphaText, Types);

TYPED_TEST(AlphaText, Construction) {
  using Text = TypeParam;
  const auto str = TestFixture::Str;
  EXPECT_EQ(Text()._pStr, nullptr);
  EXPECT_EQ(Text("")._pStr, nullptr);
  EXPECT_EQ(Text(static_cast<const char*>(nullptr))._pStr, nullptr);
  EXPECT_EQ(Text('\0')._pStr, nullptr);
  EXPECT_EQ(Text("abc", 0)._pStr, nullptr);
  EXPECT_EQ(str(Text('\xE4')), "\xE4");
  EXPECT_EQ(str(Text("abc", 2)), "ab");
  Text padded("ab", 5);
  EXPECT_EQ(std::string(padded._pStr, 6), std::string("ab\0\0\0\0", 6));
  Text blank("", 3);  // a buffer without text
  EXPECT_FALSE(!blank);
  EXPECT_EQ(Text(blank)._pStr, nullptr);
  EXPECT_EQ(str(Text(-12)), "-12");
  EXPECT_EQ(str(Text(short{-12})), "-12");
  EXPECT_EQ(str(Text(LONG_MIN)), "-2147483648");
  EXPECT_EQ(str(Text(ULONG_MAX)), "4294967295");
  EXPECT_EQ(str(Text(-1.5)), "-1.500000");
  EXPECT_EQ(str(Text(1e308)).size(), 309U + 7U);
  EXPECT_EQ(static_cast<short>(Text(" 65537x")), 1);
  EXPECT_EQ(static_cast<long>(Text("0x10")), 0);
  EXPECT_EQ(static_cast<double>(Text("2.5e1")), 25.0);
}

TYPED_TEST(AlphaText, OwnTextAsArgument) {
  using Text = TypeParam;
  const auto str = TestFixture::Str;
  Text s("abc");
  s = static_cast<const Text&>(s);
  s += s;
  EXPECT_EQ(str(s), "abcabc");
  EXPECT_EQ(str(s.Insert(s, 2)), "ababcabccabc");
  s = s._pStr + 9;
  EXPECT_EQ(str(s.Replace(s, 1)), "aab");
  EXPECT_EQ(s.SubStringPos(s), 0);
  EXPECT_EQ(str(s + s), "aabaab");
}

TYPED_TEST(AlphaText, LengthsWrapAt16BitsButNoTextIsLost) {
  using Text = TypeParam;
  const std::string model = "0123" + std::string(65536, 'x');
  Text text(model.c_str());
  EXPECT_EQ(text.Len(), 4);
  text.Insert(Text("!"), 10);
  EXPECT_EQ(TestFixture::Str(text), std::string(model).insert(4, "!"));
  text.Cut(4, 100);
  text += Text("?");
  EXPECT_EQ(TestFixture::Str(text), model + "?");
  EXPECT_EQ(text.Copy(2, 65535)._pStr, std::string("23x"));
}

TYPED_TEST(AlphaText, LettersMapInTheDiskCodeSet) {
  using Text = TypeParam;
  const auto str = TestFixture::Str;
  // As stored: "aZ", a and u with diaeresis, the division sign, y with diaeresis, oe.
  const Uchar stored[] = {'a', 'Z', 0xE4, 0xDC, 0xF7, 0xFF, 0x9C, 0};
  const Uchar upper[] = {'A', 'Z', 0xC4, 0xDC, 0xF7, 0xFF, 0x8C, 0};
  const Uchar lower[] = {'a', 'z', 0xE4, 0xFC, 0xF7, 0x9F, 0x9C, 0};
  auto decoded = [](const Uchar* bytes) {
    Uchar text[8];
    _NxDecodeString(text, bytes);
    return std::string(reinterpret_cast<char*>(text));
  };
  EXPECT_EQ(str(Text(decoded(stored).c_str()).ToUpper()), decoded(upper));
  EXPECT_EQ(str(Text(decoded(stored).c_str()).ToLower()), decoded(lower));
  EXPECT_EQ(str(Text("a 10 ").SpaceToZero()), "a0100");
  EXPECT_EQ(str(Text("a 10 ").ZeroToSpace()), "a 1  ");
  EXPECT_EQ(Text().ToUpper().SpaceToZero()._pStr, nullptr);
}

// ---------------------------------------------------------------------------
// Slots

constexpr char kTypes[] = {20, 21};

TEST(AlphaSlots, SizesOfImages) {
  NxTypeMgr mgr(5);
  for (const char id : kTypes) {
    SCOPED_TRACE(int{id});
    // Two bytes of the disk code set stand for one as in memory, and the other way round.
    const std::string image = AlphaImage(0x40, {"a\xDF", "\xDF", ""}), key = AlphaImage(0xC0, {"abc"});
    const auto size = [&](const std::string& bytes, int form, int format, unsigned long n) {
      const Block block = Exactly(bytes);
      return mgr.DiskLenGet(id, block.Data(), static_cast<unsigned char>(format), n,
                            static_cast<unsigned char>(form));
    };
    EXPECT_EQ(size(image, 1, 1, 3), 3 + 6);
    EXPECT_EQ(size(image, 1, 0x88, 3), 0) << "no keys in memory";
    EXPECT_EQ(size(image, 1, 0x81, 3), 3 + 4 + 3 + 1);
    EXPECT_EQ(size(image, 1, 0x81, 1), 3 + 4);
    EXPECT_EQ(size(image, 1, 0x81, 99), 3 + 4 + 3 + 1) << "fewer texts than asked for";
    EXPECT_EQ(size(key, 1, 0x81, 1), 3 + 4);
    EXPECT_EQ(size(AlphaImage(0x40, {"ab"}, 1, 2), 1, 0x81, 2), 3 + 3) << "T ends before the terminator";
    EXPECT_EQ(size(AlphaImage(0x40, {"ab"}, 2), 2, 1, 1), 3 + 3) << "the form byte orders T";
    const auto fileSize = [&](const std::string& bytes, int format, unsigned long n) {
      const Block block = Exactly(bytes);
      MemFile file(block.Data(), block.Size());
      return mgr.DiskLenGetFromMemFile(id, &file, static_cast<unsigned char>(format), n);
    };
    EXPECT_EQ(fileSize(image, 1, 3), 9);
    EXPECT_EQ(fileSize(image, 0x81, 3), 11);
    EXPECT_EQ(fileSize(image, 0x88, 3), 0);
    EXPECT_EQ(fileSize("", 1, 3), 0);
    EXPECT_EQ(fileSize("\x40\x05", 1, 3), 0) << "a cut head";
    EXPECT_EQ(fileSize(AlphaImage(0x40, {"\xDF"}, 1, 500), 0x81, 9), 3 + 3) << "T runs past the file";
    const std::vector<NxIString> many(3, NxIString(std::string(30000, 'x').c_str()));
    EXPECT_EQ(mgr.DiskLenGet(id, const_cast<NxIString*>(many.data()), 1, 3, 8), 3 + 3 * 30001 % 65536);
  }
}

// The sizes that the two headers tell of a text in memory and of an image.
TEST(AlphaSlots, SizesOfTexts) {
  NxIString text("a\xDE");
  NxCaseIString caseText("a\xDE");
  const std::string image = AlphaImage(0x40, {"a\xDF"});
  EXPECT_EQ(_NxIMapLength(&text, 8, 1) + _NxIMapLength(image.data(), 1, 1), 8);
  EXPECT_EQ(_NxCaseIMapLength(&caseText, 8, 1) + _NxCaseIMapLength(image.data(), 1, 1), 8);
  for (const unsigned char format : {0x01, 0x81}) {
    const int expected = format == 1 ? 3 : 4;  // the sharp s has two keys
    EXPECT_EQ(_NxISizeMem(&text, 8, format, 1), expected);
    EXPECT_EQ(_NxCaseISizeMem(&caseText, 8, format, 1), expected);
    EXPECT_EQ(_NxISizeNoMem(image.data(), 1, format, 1), expected);
    EXPECT_EQ(_NxCaseISizeNoMem(image.data(), 1, format, 1), expected);
  }
}

TEST(AlphaSlots, CaseKeysTurnBackIntoValues) {
  NxTypeMgr mgr(5);
  const struct {
    std::string key;
    const char* text;
    int result;
  } cases[] = {
      {AlphaImage(0xC0, {Keys("a\xDFz 1", true)}), "ASSZ 1", 3 + 7},
      {AlphaImage(0xC0, {Keys("\xE5", true)}), "\xD0", 3 + 2},  // stored as 0xC5
      {AlphaImage(0xC0, {Keys("abc", true)}, 1, 2), "AB", 3 + 2},
      {AlphaImage(0xC0, {Keys("abc", true)}, 1, 700), "ABC", 3 + 700},
      {AlphaImage(0xC0, {}), "", 3},
      {"\xC0\x09", "", 3},
  };
  for (const auto& t : cases) {
    NxCaseIString value("before");
    const Block source = Exactly(t.key);
    EXPECT_EQ(mgr.Translate(21, &value, 8, 0, source.Data(), 0x81, source.Size(), 1), t.result);
    EXPECT_STREQ(value._pStr ? value._pStr : "", t.text);
  }
  NxIString plain;  // this type's keys are loaded as they stand
  std::string source = AlphaImage(0xC0, {Keys("ab", false)});
  EXPECT_EQ(mgr.Translate(20, &plain, 8, 0, &source[0], 0x81, source.size(), 1), 6);
  EXPECT_STREQ(plain._pStr, "NZ");
  EXPECT_EQ(mgr.Translate(20, &plain, 0x88, 0, &plain, 8, 0, 1), 0) << "no keys in memory";
}

TEST(AlphaSlots, KeysInMemoryMeetPatternsUpToTheWildcard) {
  NxCaseIString keys("\x5B\x5E\x61"), pattern("b*x");  // the keys of "bcd"
  keys._nForm = kAlphaKeys;
  int error = 77;
  EXPECT_EQ(NxTypeMgr(5).Cmp(21, 8, &keys, 8, &pattern, 0, 1, 8, error), 0);
  EXPECT_EQ(error, kPastBuffer);
}

TEST(AlphaSlots, NothingIsReadBehindTheValueThatDecides) {
  NxCaseIString values[] = {"a", ""}, others[] = {"b", ""};
  int error = 77;
  values[1]._pStr = reinterpret_cast<char*>(1);
  EXPECT_LT(NxTypeMgr(5).Cmp(21, 16, values, 16, others, 0, 2, 8, error), 0);
  values[1]._pStr = nullptr;
}

TEST(AlphaOrder, TextsThatDifferAtTheirLastKey) {
  std::string a(65535, 'a'), b = a;
  b.back() = 'b';
  EXPECT_LT(nxistrcmp(a.c_str(), b.c_str(), 0, kAlphaDisk, kAlphaDisk), 0);
  EXPECT_LT(nxcaseistrcmp(a.c_str(), b.c_str(), 0, kAlphaDisk, kAlphaDisk), 0);
}

// ---------------------------------------------------------------------------
// The disk code set: single bytes are golden cases

unsigned char To(int c) { return _NxConvertToDiskFormat(static_cast<unsigned char>(c)); }
unsigned char From(int c) { return _NxConvertFromDiskFormat(static_cast<unsigned char>(c)); }

TEST(DiskCodeSet, AsciiStandsForItself) {
  for (int c = 0; c < 0x80; ++c) EXPECT_TRUE(To(c) == c && From(c) == c) << c;
}

TEST(DiskCodeSet, ReadingIsAPermutationAndUndoesAllWritesButTwo) {
  std::set<unsigned char> read, written, lost;
  for (int c = 0x80; c < 0x100; ++c) {
    read.insert(From(c));
    written.insert(To(c));
    if (From(To(c)) != c) lost.insert(static_cast<unsigned char>(c));
  }
  EXPECT_EQ(read.size(), 128U);
  EXPECT_EQ(*read.begin(), 0x80);
  EXPECT_EQ(lost, (std::set<unsigned char>{0xAC, 0xEC}));
  EXPECT_EQ(written.size(), 126U);
  EXPECT_EQ(written.count(0x90) + written.count(0x92), 0U);
}

}  // namespace
