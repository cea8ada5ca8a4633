// Comparison and hashing of strings as type operations: images of both kinds, arrays,
// buffers that end early, keys that stop short, and images that no one wrote.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtyphash.h"
#include "strwild.h"
#include "support/strings.h"

namespace {

/// A current image under format code 1 or 2.
std::string Image(const std::string& text, unsigned char codeSet = 1, unsigned char language = 2,
                  unsigned char format = 1) {
  std::string content{static_cast<char>(codeSet), static_cast<char>(language)};
  for (char c : text) {
    if (NxCharWidth(codeSet) == 2 && format == 2) content += '\0';
    content += c;
    if (NxCharWidth(codeSet) == 2 && format != 2) content += '\0';
  }
  content += std::string("\0\xFF", 2);
  const unsigned short n = static_cast<unsigned short>(content.size());
  std::string image(2, '\0');
  ShortStore(&image[0], &n, format, 1);
  return image + content;
}

/// An early image of several texts.
std::string EarlyImage(const std::vector<std::string>& texts) {
  std::string content;
  for (const auto& text : texts) content += text + '\0';
  return std::string{static_cast<char>(content.size()), static_cast<char>(content.size() >> 8)} + content;
}

struct Answer {
  long result;
  int error;
  bool operator==(const Answer& o) const { return result == o.result && error == o.error; }
  friend std::ostream& operator<<(std::ostream& out, const Answer& a) {
    return out << "{" << a.result << ", " << a.error << "}";
  }
};

/// Compares images that stand in buffers of their own size, of which all is given, or
/// cut to `kept` bytes.
Answer Compare(const std::string& a, const std::string& b, unsigned short options = 0,
               unsigned long count = 1, unsigned char format = 1, unsigned short oldForm = 0) {
  const std::vector<char> x(a.begin(), a.end());
  const std::vector<char> y(b.begin(), b.end());
  Answer answer = {0, 77};
  answer.result = StringCompareCommon(format, x.size(), const_cast<char*>(x.data()), y.size(),
                                      const_cast<char*>(y.data()), options, count, answer.error, oldForm);
  return answer;
}
Answer Signed(Answer a) { return {(a.result > 0) - (a.result < 0), a.error}; }

unsigned long Hash(const std::string& image, unsigned long count, int& error, unsigned char format = 1,
                   unsigned short oldForm = 0) {
  const std::vector<char> x(image.begin(), image.end());
  return StringHashCommon(format, x.size(), const_cast<char*>(x.data()), count, error, oldForm);
}

std::string Without(const std::string& image, std::size_t bytes) {
  return image.substr(0, image.size() - bytes);
}

TEST(StringCompare, FormsAgree) {
  const std::string texts[] = {"",
                               "a",
                               "ab",
                               "aB",
                               "a-b",
                               "a*",
                               "b?",
                               "stra\xDF"
                               "e"};
  for (const auto& a : texts)
    for (const auto& b : texts)
      for (unsigned short op : {0, kWildcardsOff + 0, kIgnoreCase | kSkipSymbols, kOrderValuesOnly + 0}) {
        const long expected = NxStrCmp(1, 2, a.c_str(), 1, 2, b.c_str(), op, -1, 1, nullptr);
        EXPECT_EQ(Compare(Image(a), Image(b), op), (Answer{expected, 0}));
        EXPECT_EQ(Compare(Image(a, 253), Image(b, 1), op), (Answer{expected, 0}));
        EXPECT_EQ(Compare(Image(a, 253, 2, 2), Image(b, 253, 2, 2), op, 1, 2), (Answer{expected, 0}));
        NxString x = Narrow(a), y = Narrow(b);
        int error = 77;
        EXPECT_EQ(StringCompare(8, 0, &x, 0, &y, op, 1, error), expected);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(StringCompare(1, 0, Image(a).data(), 0, Image(b).data(), op, 1, error), expected);
      }
  const std::string text(40000, 'x');
  EXPECT_EQ(Compare(Image(text), Image(text)), (Answer{0, 0}));
  EXPECT_EQ(Signed(Compare(Image(text, 225), Image(text + "y"))), (Answer{-1, 0}));
  EXPECT_EQ(Compare("", "", 0, 0), (Answer{0, 0}));
}

TEST(StringCompare, ArraysStopAtTheFirstDifference) {
  const std::string abc = Image("a") + Image("b") + Image("c");
  const std::string abd = Image("a") + Image("b") + Image("d");
  const std::string axc = Image("a") + Image("x") + Image("c");
  EXPECT_EQ(Compare(abc, abc, 0, 3), (Answer{0, 0}));
  EXPECT_EQ(Signed(Compare(abc, abd, 0, 3)), (Answer{-1, 0}));
  EXPECT_EQ(Signed(Compare(axc, abd, 0, 3)), (Answer{1, 0}));
  EXPECT_EQ(Compare(abc, abd, 0, 2), (Answer{0, 0}));
  // The buffer ends before the last element, on either side.
  EXPECT_EQ(Compare(abc, Without(abc, 7), 0, 3), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Compare(Image("a"), abc, 0, 2), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Signed(Compare(Image("a"), axc.substr(7), 0, 2)), (Answer{-1, kPastBuffer}));
  // Of four bytes no image can be read.
  EXPECT_EQ(Compare(Image("a") + abc.substr(0, 4), abc, 0, 2), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Signed(Compare(Image("a") + abc.substr(0, 5), abc.substr(0, 7) + abc, 0, 2)).error, kPastBuffer);
  NxString x[2] = {Narrow("a"), Narrow("b")};
  NxString y[2] = {Narrow("a"), Narrow("c")};
  int error;
  EXPECT_LT(StringCompare(8, 0, x, 0, y, 0, 2, error), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(StringCompare(8, 8, x, 16, y, 0, 2, error), 0);
  EXPECT_EQ(error, kPastBuffer);
}

TEST(StringCompare, CutTexts) {
  const struct {
    const char *a, *b;
    int cutA, cutB;  // bytes missing at the end: 2 leave the whole text
    unsigned short op;
    Answer answer;
  } cases[] = {
      {"abc", "abc", 1, 1, 0, {0, 0}},  // only the last byte is missing
      {"abc", "abd", 1, 0, 0, {-1, 0}},
      {"abc", "abc", 2, 0, 0, {0, kPastBuffer}},
      {"abcd", "abc", 3, 0, 0, {0, kPastBuffer}},
      {"abcd", "abcx", 3, 0, 0, {0, kPastBuffer}},
      {"abcd", "xyz", 3, 0, 0, {-1, kPastBuffer}},
      // The whole text is shorter than what is left of the cut one: exact.
      {"abcd", "ab", 3, 0, 0, {1, 0}},
      {"ab", "abcd", 0, 3, 0, {-1, 0}},
      {"ab", "abcd", 0, 4, 0, {0, kPastBuffer}},
      {"abcd", "ab", 3, 0, kSkipSpaces, {1, kPastBuffer}},
      {"abcd", "abcd", 3, 4, 0, {0, kPastBuffer}},
      {"abcd", "abxd", 3, 4, 0, {0, kPastBuffer}},
      // Wildcards: exact only for a cut text that reaches the last one.
      {"abcd", "ab*", 4, 0, 0, {0, 0}},
      {"abcd", "ab*", 3, 0, 0, {0, 0}},
      {"abcd", "abc*", 4, 0, 0, {0, kPastBuffer}},
      {"abcd", "ab*d", 4, 0, 0, {0, kPastBuffer}},
      {"abcd", "xb*", 4, 0, 0, {-1, 0}},
      {"abcd", "*", 5, 0, 0, {0, 0}},
      {"abcd", "ab*", 4, 0, kSkipSpaces, {0, kPastBuffer}},
      {"abcd", "ab*", 4, 0, kWildcardsOff, {0, kPastBuffer}},
      {"ab", "abc*d", 0, 3, 0, {-1, kPastBuffer}},
      {"abcd", "ab*d", 0, 3, 0, {0, kPastBuffer}},
      {"ab", "ab*d", 0, 3, 0, {-1, kPastBuffer}},
      // With skip spaces the report of the base letters stands for the result.
      {"abcd", "aBcd", 3, 0, kSkipSpaces, {0, kPastBuffer}},
      {"aBcd", "aecd", 3, 0, kSkipSpaces, {-1, kPastBuffer}},
  };
  for (const auto& c : cases)
    for (unsigned char format : {1, 2}) {
      const Answer answer = Compare(Without(Image(c.a, 1, 2, format), c.cutA),
                                    Without(Image(c.b, 1, 2, format), c.cutB), c.op, 1, format);
      EXPECT_EQ(Signed(answer), c.answer)
          << c.a << " " << c.cutA << " : " << c.b << " " << c.cutB << " op " << c.op;
    }
  // In 16 bits the half of a character does not count.
  EXPECT_EQ(Compare(Without(Image("abcd", 253), 3), Image("abcx")), (Answer{0, kPastBuffer}));
  // 254 bytes of a cut text are too many, unless none is missing.
  const std::string text(254, 'a');
  EXPECT_EQ(Compare(Without(Image(text + "b"), 3), Image(text)), (Answer{-1, kNotPossible}));
  EXPECT_EQ(Compare(Image(text), Without(Image(text + "b"), 3)), (Answer{-1, kNotPossible}));
  EXPECT_EQ(Compare(Without(Image(text), 3), Image(text)), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Compare(Without(Image(text + text), 2), Image(text + text)), (Answer{0, kPastBuffer}));
}

TEST(StringCompare, KeysAndEarlyImages) {
  // A key of order values that stops short: exact as far as it goes.
  const std::string key = Image("ab", 254, 0x81);
  EXPECT_EQ(Compare(key, Image("ab", 254, 1), 0, 1, 0x81), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Compare(Image("abc", 254, 1), key, 0, 1, 0x81), (Answer{0, kPastBuffer}));
  EXPECT_EQ(Signed(Compare(Image("abc", 254, 1), key, kWildcardsOff, 1, 0x81)), (Answer{1, kPastBuffer}));
  // In key form an image may end in 0.
  std::string zero = Image("ab");
  zero.back() = 0;
  EXPECT_EQ(Compare(zero, Image("ab"), 0, 1, 0x81), (Answer{0, 0}));
  EXPECT_NE(Compare(zero, Image("ab")).result, 0);

  const std::string early = EarlyImage({"ab", "", "*c"});
  EXPECT_EQ(Compare(EarlyImage({"ab"}), early), (Answer{0, 0}));
  EXPECT_EQ(Compare(EarlyImage({"ab"}), Image("ab", 0, 0)), (Answer{0, 0}));
  EXPECT_EQ(Signed(Compare(EarlyImage({"a"}), Image("B"))), (Answer{-1, 0}));  // native code set
  EXPECT_EQ(Signed(Compare(EarlyImage({"a"}), EarlyImage({"B"}))), (Answer{1, 0}));
  int error;
  const auto compare = [&](std::string a, std::string b, unsigned long count) {
    const long result = StringOldCompare(1, 0, &a[0], 0, &b[0], 0, count, error);
    return Signed({result, error});
  };
  EXPECT_EQ(compare(EarlyImage({"ab", "", "xxc"}), early, 3), (Answer{0, 0}));
  EXPECT_EQ(compare(EarlyImage({"ab", "", "xxd"}), early, 3), (Answer{-1, 0}));
  EXPECT_EQ(compare(EarlyImage({"ab", "a", "xxc"}), early, 3), (Answer{1, 0}));
  EXPECT_EQ(compare(early, early, 4).error, kPastBuffer);
  EXPECT_EQ(compare(EarlyImage({"ab", ""}), Image("ab", 0, 0) + Image("", 0, 0), 2), (Answer{0, 0}));
  EXPECT_EQ(Compare(early + "......", EarlyImage({"ab", "", "y....."}), 0, 2), (Answer{0, 0}));
  EXPECT_EQ(Compare(EarlyImage({"ab", "c"}), EarlyImage({"ab", "c"}), 0, 2), (Answer{0, kPastBuffer}));
  // Cut early images: the type decides.
  EXPECT_EQ(Compare(Without(EarlyImage({"abcd"}), 2), EarlyImage({"abcx"}), 0, 1, 1, 1),
            (Answer{0, kPastBuffer}));
  EXPECT_EQ(Compare(Without(EarlyImage({"abcd"}), 1), EarlyImage({"abc"}), 0, 1, 1, 1), (Answer{'d', 0}));
  EXPECT_NE(Compare(Without(EarlyImage({"abcd"}), 1), EarlyImage({"abcd"}), 0, 1, 1, 0).result, 0);
}

TEST(StringHash, ReadsWhatCompareReads) {
  const unsigned kMultiplier = 1103515245;
  const unsigned kNullHash = 0xFEFE7575;
  const auto word = [](const char* text, unsigned char cs = 1) { return HashString(cs, 2, text, -1, 1); };
  const auto hash = [&](const char* text) { return word(text) * kMultiplier; };
  int error = 77;
  EXPECT_EQ(Hash(Image("abc"), 1, error), hash("abc"));
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Hash(Image("abc", 253, 2, 2), 1, error, 2), hash("abc"));
  EXPECT_EQ(Hash(Image("abc") + Image("x"), 2, error), (word("abc") ^ word("x")) * kMultiplier);
  EXPECT_EQ(Hash(Image("x") + Image("x"), 2, error), 0u);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Hash(Image("abc"), 2, error), hash("abc"));
  EXPECT_EQ(error, kPastBuffer);
  EXPECT_EQ(Hash(Without(Image("abc"), 1), 1, error), hash("abc"));
  EXPECT_EQ(Hash(Without(Image("abc"), 3), 1, error), hash("ab"));
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Hash(Without(Image(std::string(300, 'a')), 9), 1, error), 0u);
  EXPECT_EQ(error, kNotPossible);
  EXPECT_EQ(Hash(Image("ab", 254, 0x81), 1, error), Hash(Image("ab", 254, 1), 1, error));
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Hash(EarlyImage({"ab"}), 1, error), word("ab", 0) * kMultiplier);
  EXPECT_EQ(Hash("", 0, error), 0u);
  std::string early = EarlyImage({"ab", "c"});
  EXPECT_EQ(StringOldHash(1, 0, &early[0], 2, error), (word("ab", 0) ^ word("c", 0)) * kMultiplier);
  EXPECT_EQ(error, 0);
  NxString values[2] = {Narrow("abc"), NxString()};
  values[1].SetNullValue();
  EXPECT_EQ(StringHash(8, 0, values, 2, error), (word("abc") ^ kNullHash) * kMultiplier);
}

TEST(StringCompare, StaysInsideItsBuffers) {
  std::mt19937 random(5);
  const auto image = [&] {
    const unsigned char codeSets[] = {0, 1, 4, 99, 225, 253, 254, 255};
    std::string text;
    for (unsigned n = random() % 12; n > 0; --n) text += "ach*? -\xDF\0\xFF"[random() % 10];
    std::string bytes = random() % 3 ? Image(text, codeSets[random() % 8],
                                             random() % 2 ? random() % 8 : random(), 1 + random() % 2)
                                     : EarlyImage({text, "b", text});
    if (random() % 2) bytes += bytes;
    if (random() % 4 == 0) bytes[random() % bytes.size()] = static_cast<char>(random());
    if (random() % 2) bytes.resize(random() % (bytes.size() + 1));
    return bytes.empty() ? std::string(1, '\1') : bytes;  // a length of 0 means no limit
  };
  for (int i = 0; i < 100000; ++i) {
    const std::string a = image();
    const std::string b = image();
    const unsigned char format = (random() % 3) | (random() % 4 ? 0 : 0x80);
    const unsigned long count = random() % 4;
    const Answer answer = Compare(a, b, static_cast<unsigned short>(random()), count, format, random() % 2);
    EXPECT_TRUE(answer.error == 0 || answer.error == kPastBuffer || answer.error == kNotPossible);
    int error = 77;
    Hash(a, count, error, format, random() % 2);
    EXPECT_TRUE(error == 0 || error == kPastBuffer || error == kNotPossible);
  }
}

}  // namespace
