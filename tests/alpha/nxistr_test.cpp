// The alphabetic strings: byte maps, order, and editing against a plain model.
#include "nxistr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <string>
#include <vector>

#include "nxcistr.h"

namespace {

using Uchar = unsigned char;

struct Mapped {
  int key, extra;
  bool operator==(const Mapped& m) const { return key == m.key && extra == m.extra; }
};
std::ostream& operator<<(std::ostream& out, const Mapped& m) {
  return out << std::hex << m.key << "/" << m.extra;
}

Mapped Map(int c) {
  Uchar extra = 0xEE;
  int key = _NxIMapByte(static_cast<Uchar>(c), extra);
  return {key, extra};
}
Mapped CaseMap(int c) {
  Uchar extra = 0xEE;
  int key = _NxCaseIMapByte(static_cast<Uchar>(c), extra);
  return {key, extra};
}

const Uchar* U(const std::string& s) { return reinterpret_cast<const Uchar*>(s.c_str()); }

/// The keys of a text, without terminator.
std::string Keys(const std::string& text, bool foldsCase) {
  std::vector<Uchar> keys(2 * text.size() + 1);
  int n = (foldsCase ? _NxCaseIMapString : _NxIMapString)(keys.data(), U(text), 0);
  EXPECT_EQ(keys[n - 1], 0);
  return std::string(keys.begin(), keys.begin() + n - 1);
}

/// The upper-case partner of a byte of the disk code set, or the byte itself.
int Upper(int c) {
  if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) return c - 0x20;
  return c == 0x9C ? 0x8C : c == 0xFF ? 0x9F : c;
}

TEST(AlphaMap, CaseMapGivesLowerCaseTheKeyOfItsUpperCasePartner) {
  for (int c = 0; c < 256; ++c) {
    if (c == 0xDF) continue;  // sharp s has no partner
    EXPECT_EQ(CaseMap(c).key, Map(Upper(c)).key) << std::hex << c;
    EXPECT_EQ(CaseMap(c).extra, Map(Upper(c)).extra) << std::hex << c;
  }
  EXPECT_EQ(Map(0xDF), (Mapped{0x9C, 0x9C}));
  EXPECT_EQ(CaseMap(0xDF), (Mapped{0x9D, 0x9D}));
}

TEST(AlphaMap, LettersAscendLowerCaseFirstAndAccentsShareTheirKey) {
  int last = 0;
  for (int c = 'A'; c <= 'Z'; ++c) {
    EXPECT_LT(last, Map(c + 0x20).key) << char(c);
    EXPECT_LT(Map(c + 0x20).key, Map(c).key) << char(c);
    last = Map(c).key;
  }
  const std::vector<std::pair<char, std::vector<int>>> accented = {
      {'A', {0xC4, 0xC1, 0xC0, 0xC2, 0xC3}}, {'C', {0xC7}},
      {'E', {0xCB, 0xC9, 0xC8, 0xCA}},       {'I', {0xCF, 0xCD, 0xCC, 0xCE}},
      {'O', {0xD6, 0xD3, 0xD2, 0xD4, 0xD5}}, {'U', {0xDC, 0xDA, 0xD9, 0xDB}},
  };
  for (const auto& [letter, bytes] : accented) {
    int weight = 0;
    for (int c : bytes) {
      EXPECT_EQ(Map(c), (Mapped{Map(letter).key, ++weight})) << std::hex << c;
      EXPECT_EQ(Map(c + 0x20), (Mapped{Map(letter + 0x20).key, weight})) << std::hex << c;
    }
  }
}

TEST(AlphaMap, BytesOutsideTheTables) {
  const struct {
    int c;
    Mapped mapped, caseMapped;
  } cases[] = {
      {0x00, {0x00, 0}, {0x00, 0}},       {0x3F, {0x3F, 0}, {0x3F, 0}},
      {0x40, {0x40, 0}, {0x40, 0}},       {0x7F, {0x4B, 0}, {0x4B, 0}},
      {0x80, {0xE0, 0}, {0xE0, 0}},       {0x9E, {0xFE, 0}, {0xFE, 0}},
      {0xA0, {0xB0, 0}, {0xB0, 0}},       {0xBF, {0xCF, 0}, {0xCF, 0}},
      {0x8C, {0x90, 0x69}, {0x90, 0x69}}, {0x9C, {0x8A, 0x64}, {0x90, 0x69}},
      {0x9F, {0xB3, 0x01}, {0xB3, 0x01}},
  };
  for (const auto& t : cases) {
    EXPECT_EQ(Map(t.c), t.mapped) << std::hex << t.c;
    EXPECT_EQ(CaseMap(t.c), t.caseMapped) << std::hex << t.c;
  }
}

TEST(AlphaMap, LimitStopsAnywhereAndTheTerminatorIsCounted) {
  const struct {
    const char* text;
    int limit;
    const char* written;
    int result;
  } cases[] = {
      {"ABC", 2, "\x54\x5B", 2},
      {"ABC", 3, "\x54\x5B\x5E", 3},
      {"ABC", 4, "\x54\x5B\x5E", 4},
      {"ABC", 0, "\x54\x5B\x5E", 4},
      {"A\xDF", 2, "\x54\x9D", 2},  // inside an expansion
      {"A\xDF", 3, "\x54\x9D\x9D", 3},
      {"", 0, "", 1},
      {"", 1, "", 1},
  };
  for (const auto& t : cases) {
    Uchar out[8];
    std::fill_n(out, 8, 0xEE);
    EXPECT_EQ(_NxCaseIMapString(out, U(t.text), static_cast<unsigned short>(t.limit)), t.result) << t.text;
    std::string expected = t.written;
    if (t.result > static_cast<int>(expected.size())) expected += '\0';
    expected.resize(8, '\xEE');
    EXPECT_EQ(std::string(out, out + 8), expected) << t.text << " limit " << t.limit;
  }
  Uchar out[1];
  EXPECT_EQ(_NxIMapString(nullptr, out, 0), 0);
  EXPECT_EQ(_NxIMapString(out, nullptr, 0), 0);
}

TEST(AlphaMap, KeysTurnBackIntoUnaccentedCapitals) {
  const struct {
    const char* text;
    const char* back;
    int limit, result;
  } cases[] = {
      {"hello, World 7", "HELLO, WORLD 7", 100, 15},
      {"abc", "ABC", 3, 3},  // no room for the terminator
      {"\xE0\xC9", "AE", 100, 3},
      {"\x9C!", "OE!", 100, 4},  // a ligature
      {"\xDF", "SS", 100, 3},
      {"\xE5", "\xC5", 100, 3},  // takes the terminator for its accent
      {"\xE5", "\xC5", 2, 2},
      {"\xE5"
       "b",
       "\xAD"
       "B",
       100, 3},  // before a letter its key is not told apart
      {"\x80\xA1\x7E", "\x80\xA1~", 100, 4},
      {"", "", 5, 1},
  };
  for (const auto& t : cases) {
    std::string keys = Keys(t.text, true);
    std::vector<Uchar> out(keys.size() + 2, 0);
    EXPECT_EQ(_NxCaseIDeMapString(out.data(), U(keys), static_cast<unsigned short>(t.limit)), t.result)
        << t.text;
    EXPECT_STREQ(reinterpret_cast<char*>(out.data()), t.back) << t.text;
  }
  Uchar out[] = {0xEE};
  EXPECT_EQ(_NxCaseIDeMapString(out, U("A"), 0), 1);
  EXPECT_EQ(out[0], 0xEE);
  EXPECT_EQ(_NxCaseIDeMapString(nullptr, out, 1), 0);
}

TEST(AlphaMap, DeMapOrderOfTests) {
  const struct {
    int key, next, result, consumed;
  } cases[] = {
      {0x54, 0x03, 0xC0, 1}, {0x54, 0x02, 0x41, 0},  // only the first of the accented ones is found
      {0x9D, 0x9D, 0x53, 0},                         // a second key equal to the first is a letter
      {0xB3, 0x02, 0xDD, 1}, {0xB3, 0x01, 0x59, 0},  // the letter comes before the diaeresis
      {0x90, 0x69, 0x4F, 0},                         // as before the ligature
      {0xE0, 0x41, 0x80, 0}, {0xCF, 0x41, 0xBF, 0}, {0xD5, 0x41, 0xD5, 0},
  };
  for (const auto& t : cases) {
    int consumed = 7;
    EXPECT_EQ(_NxCaseIDeMapByte(static_cast<Uchar>(t.key), static_cast<Uchar>(t.next), consumed), t.result)
        << std::hex << t.key << " " << t.next;
    EXPECT_EQ(consumed, t.consumed) << std::hex << t.key << " " << t.next;
  }
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

/// All texts up to three bytes over letters with and without a second key.
std::vector<std::string> AllTexts() {
  const std::string alphabet = "aASs\xDF\x8C\x9C\xC0";
  std::vector<std::string> texts = {""};
  for (size_t begin = 0, n = 0; n < 3; ++n) {
    size_t end = texts.size();
    for (; begin < end; ++begin)
      for (char c : alphabet) texts.push_back(texts[begin] + c);
  }
  return texts;
}

int Sign(int n) { return (n > 0) - (n < 0); }

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
  std::vector<std::string> texts = AllTexts(), keys;
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

TEST(AlphaOrder, AccentsCountWhereTheFirstOperandAsks) {
  const Uchar plain = kAlphaDisk, accents = kAlphaDisk | kAlphaAccents;
  const struct {
    const char *a, *b;
    Uchar formA, formB;
    int result;
  } cases[] = {
      {"\xC0", "A", plain, plain, 0},
      {"\xC0", "A", accents, plain, 3},
      {"A", "\xC0", accents, plain, -3},
      {"A", "\xC0", plain, accents, 0},  // the second one's flag is not read
      {"\xDF", "S", accents, plain, -1},
      {"\xDF!", "S!", accents, plain, -1},
      {"\xDF", "\xDF", accents, plain, 0},
  };
  for (const auto& t : cases) {
    EXPECT_EQ(nxcaseistrcmp(t.a, t.b, 0, t.formA, t.formB), t.result) << t.a << " " << t.b;
  }
  EXPECT_EQ(nxistrcmp("\xC0", "A", 0, accents, plain), 0);  // not this comparison
}

TEST(AlphaOrder, AbsentAndEmptyTexts) {
  EXPECT_EQ(nxistrcmp(nullptr, nullptr, 0, 0, 0), 0);
  EXPECT_EQ(nxistrcmp(nullptr, "", 0, 0, 0), -1);
  EXPECT_EQ(nxistrcmp("", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(nxistrcmp("", "\xFF", 0, 0, 0), -255);
  EXPECT_EQ(nxistrcmp("b", "", 0, 0, 0), 'b');
  // Not in the disk code set: 0xCC is an "a" with diaeresis there.
  EXPECT_EQ(nxistrcmp("\xCC", "a", 0, 0, 0), 0);
  EXPECT_NE(nxistrcmp("\xCC", "a", 0, kAlphaDisk, 0), 0);
}

TEST(AlphaOrder, Operators) {
  NxIString a("a"), upper("A"), b("b"), none;
  EXPECT_TRUE(a < upper && upper < b && a < b && a != upper && b >= upper && a <= a && b > a);
  EXPECT_TRUE(none < a && none == NxIString());
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

/// Edits against the same edits on std::string.
TYPED_TEST(AlphaText, EditsAsTheModelDoes) {
  using Text = TypeParam;
  std::mt19937 random(20);
  auto pick = [&](unsigned n) { return static_cast<unsigned short>(random() % n); };
  for (int round = 0; round < 20000; ++round) {
    std::string model(pick(6), 'x'), other(pick(4), 'x');
    for (char& c : model) c = static_cast<char>('a' + pick(2));
    for (char& c : other) c = static_cast<char>('a' + pick(2));
    Text text(model.c_str());
    const Text argument(other.c_str());
    const size_t length = model.size();
    unsigned short pos = pick(9), n = pick(9);
    if (pick(8) == 0) pos = 65535;
    if (pick(8) == 0) n = 65535;
    const int edit = pick(7);
    switch (edit) {
      case 0:
        text.Insert(argument, pos);
        model.insert(std::min<size_t>(pos, length), other);
        break;
      case 1:
        text.Replace(argument, pos);
        if (pos <= length) {
          size_t k = std::min(other.size(), length - pos);
          model.replace(pos, k, other, 0, k);
        }
        break;
      case 2:
        text.Cut(pos, n);
        if (pos <= length) model.erase(pos, n);
        break;
      case 3:
        text.Fill(n, 'z');
        model = n > length ? std::string(n, 'z') : std::string(n, 'z') + model.substr(n);
        break;
      case 4:
        text.Expand(n, 'z');
        if (n > length) model.resize(n, 'z');
        break;
      case 5:
        text = text.Copy(pos, n);
        model = pos <= length ? model.substr(pos, n) : "";
        break;
      default:
        if (other.empty()) break;  // an empty text is found where both end
        size_t found = model.find(other);
        ASSERT_EQ(text.SubStringPos(argument), found == std::string::npos ? -1 : static_cast<int>(found));
    }
    ASSERT_EQ(TestFixture::Str(text), model) << "edit " << edit << " pos " << pos << " n " << n;
    ASSERT_EQ(text._pStr == nullptr, model.empty()) << "edit " << edit;
  }
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

}  // namespace
