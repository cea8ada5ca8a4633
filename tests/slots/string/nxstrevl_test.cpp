// Index bounds and estimates of string terms.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"

namespace {

using Bytes = std::vector<unsigned char>;

NxString Text(const std::string& text, unsigned char codeSet, unsigned char language) {
  NxString s(text.c_str());
  s._nLanguage = language;
  if (codeSet == 0 || codeSet == 254)
    s._nCodeSet = codeSet;
  else if (codeSet != 1)
    s.MapToCodeSet(codeSet);
  return s;
}

Bytes Image(const NxString& s, unsigned char format) {
  Bytes image(s._nSize + 8);
  image.resize(StringStore(image.data(), &s, format, 1));
  return image;
}

/// The key that an index holds for a stored text.
Bytes IndexKey(Bytes image, unsigned char format) {
  Bytes key(NxINDEX_MAX_KEYLEN);
  key.resize(
      NxStringTranslate(key.data(), format | kFormatKey, key.size(), image.data(), format, image.size(), 1));
  return key;
}

long Compare(Bytes a, Bytes b, unsigned short options, unsigned char format) {
  int error;
  return StringCompare(format, a.size(), a.data(), b.size(), b.data(), options, 1, error);
}

struct Bounds {
  Bytes lower, upper;
  bool hasLower = false, hasUpper = false;
  unsigned short relation;
  float estimate;
};

Bounds Evaluate(Bytes key, unsigned short relation, unsigned char format, NxIdxBounds* range = nullptr,
                bool oldForm = false) {
  NxIdxBounds bounds{};
  Bytes before = key;
  Bounds result;
  result.relation = relation;
  result.estimate = (oldForm ? StringOldEvalAndBound : StringEvalAndBound)(range, result.relation, key.data(),
                                                                           format, 1, &bounds);
  EXPECT_EQ(before, key) << "the key is as it was";
  auto take = [](void* image, unsigned char length, Bytes& bytes, bool& has) {
    has = image != nullptr;
    if (has) bytes.assign(static_cast<unsigned char*>(image), static_cast<unsigned char*>(image) + length);
    std::free(image);
  };
  take(bounds.lower, bounds.lowerLen, result.lower, result.hasLower);
  take(bounds.upper, bounds.upperLen, result.upper, result.hasUpper);
  return result;
}

/// Whether a comparison result is one that the relation accepts.
bool Accepts(unsigned short relation, long result) {
  return result == 0  ? relation & kRelationEqual
         : result < 0 ? relation & kRelationLess
                      : relation & kRelationGreater;
}

}  // namespace

TEST(StringBounds, OfThreeLettersAndAWildcard) {
  for (unsigned char codeSet : {1, 253}) {
    for (unsigned char any : {1, 2, 10, 15}) {  // a key is stored, with bit 3 or without it
      const unsigned char format = any == 2 ? 2 : 1;
      Bounds b = Evaluate(Image(Text("abc*", codeSet, 1), format), kRelationEqual, any);
      EXPECT_EQ(kRelationEqual | kWildcardFound, b.relation);
      EXPECT_EQ(IndexKey(Image(Text("abc", codeSet, 1), format), format), b.lower);
      Bytes upper = IndexKey(Image(Text("abc*", codeSet, 1), format), format);
      upper[upper.size() - 4] = format == 2 ? 0xFF : 0xFE;
      upper[upper.size() - 3] = format == 2 ? 0xFE : 0xFF;
      EXPECT_EQ(upper, b.upper);
    }
  }
}

TEST(StringBounds, FollowTheRelation) {
  Bytes key = Image(Text("abc", 1, 1), 1);
  Bytes image = IndexKey(key, 1);
  for (unsigned short relation = 0; relation < 8; ++relation) {
    Bounds b = Evaluate(key, relation, 1);
    EXPECT_EQ(!(relation & kRelationLess), b.hasLower) << relation;
    EXPECT_EQ(!(relation & kRelationGreater), b.hasUpper) << relation;
    EXPECT_EQ(b.hasLower ? image : Bytes(), b.lower);
    EXPECT_EQ(b.hasUpper ? image : Bytes(), b.upper);
  }
}

TEST(StringBounds, KeepWhatIsThere) {
  Bytes key = Image(Text("m", 1, 1), 1);
  Bytes mine = IndexKey(Image(Text("c", 1, 1), 1), 1);
  unsigned short relation = kRelationEqual;
  NxIdxBounds bounds{mine.data(), nullptr, static_cast<unsigned char>(mine.size()), 0};
  StringEvalAndBound(nullptr, relation, key.data(), 1, 1, &bounds);
  EXPECT_EQ(mine.data(), bounds.lower);
  ASSERT_NE(nullptr, bounds.upper);
  std::free(bounds.upper);
  EXPECT_EQ(0.0F, StringEvalAndBound(nullptr, relation, key.data(), 1, 1, nullptr));
}

TEST(StringBounds, OfALeadingWildcardAreOpen) {
  Bytes low = IndexKey(Image(Text("aa", 1, 1), 1), 1), high = IndexKey(Image(Text("zz", 1, 1), 1), 1);
  NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                    static_cast<unsigned char>(high.size())};
  for (const char* pattern : {"*", "?", "*abc", "?bc"}) {
    Bounds b = Evaluate(Image(Text(pattern, 1, 1), 1), kRelationEqual, 1, &range);
    EXPECT_FALSE(b.hasLower || b.hasUpper);
    EXPECT_EQ(1.0F, b.estimate) << pattern;
  }
}

TEST(StringBounds, LongKeysAreCapped) {
  for (unsigned char codeSet : {0, 1, 253}) {
    for (std::size_t n : {123u, 124u, 125u, 126u, 200u, 246u, 247u, 248u, 249u, 250u, 300u, 5000u}) {
      Bounds b = Evaluate(Image(Text(std::string(n, 'x'), codeSet, 1), 1), kRelationEqual, 1);
      std::size_t whole = codeSet ? 4 + 2 * n + 2 : 4 + n + 2;
      std::size_t size = std::min<std::size_t>(whole, NxINDEX_MAX_KEYLEN);
      ASSERT_EQ(size, b.lower.size()) << n;
      ASSERT_EQ(size, b.upper.size()) << n;
      std::size_t length = b.lower[0] + 256 * b.lower[1];
      EXPECT_EQ(whole <= NxINDEX_MAX_KEYLEN, length + 2 == size) << "a cut key reads as longer";
      EXPECT_EQ(whole <= NxINDEX_MAX_KEYLEN, b.lower.back() == 0xFF);
    }
  }
}

TEST(StringBounds, EncloseLongKeysWhoseCollationChanges) {
  for (std::size_t n : {1u, 122u, 123u, 124u, 125u, 126u}) {
    NxString text = Text(std::string(n, 'x'), kCodeSetUnicode, 1);
    text += NxString(static_cast<unsigned short>(0x4E00));
    Bytes image = Image(text, 1);
    Bounds b = Evaluate(image, kRelationEqual, 1);
    ASSERT_LE(b.upper.size(), NxINDEX_MAX_KEYLEN) << n;
    EXPECT_LE(Compare(b.lower, IndexKey(image, 1), kWildcardsOff, kFormatKey | 1), 0) << n;
    EXPECT_LE(Compare(IndexKey(image, 1), b.upper, kWildcardsOff, kFormatKey | 1), 0) << n;
  }
}

TEST(StringBounds, OfAWideTextWithAnOddByte) {
  Bytes even = Image(Text(std::string(400, 'x'), kCodeSetUnicode, 1), 1);
  Bytes odd = even;
  odd.erase(odd.end() - 3);
  --odd[0];
  EXPECT_EQ(Evaluate(even, kRelationEqual, 1).upper, Evaluate(odd, kRelationEqual, 1).upper);
}

TEST(StringBounds, PlainTextIsClosedByTheLargestByte) {
  Bounds b = Evaluate(Image(Text("ab*", 0, 0), 1), kRelationEqual, 1);
  EXPECT_EQ((Bytes{6, 0, 0, 0, 'a', 'b', 0, 0xFF}), b.lower);
  EXPECT_EQ((Bytes{7, 0, 0, 0, 'a', 'b', 0xFF, 0, 0xFF}), b.upper);
  b = Evaluate(Image(Text("", 0, 0), 1), kRelationEqual | kSkipSymbols, 1);
  EXPECT_EQ((Bytes{5, 0, 0, 0, 0xFF, 0, 0xFF}), b.upper);
  b = Evaluate({4, 0, 'a', 'b', 'c', 0}, kRelationEqual, 1, nullptr, true);
  EXPECT_EQ((Bytes{4, 0, 'a', 'b', 'c', 0}), b.lower) << "the early form has no code set";
  b = Evaluate({1, 0, 0}, kRelationEqual | kSkipSymbols, 1, nullptr, true);
  EXPECT_EQ((Bytes{2, 0, 0xFF, 0}), b.upper) << "longer than the key, and says so";
}

TEST(StringBounds, EnclosePartsThatTheOptionsIgnore) {
  Bounds b = Evaluate(Image(Text("a1", 1, 1), 1), kRelationEqual | kIgnoreCase | kIgnoreAccents, 1);
  auto unit = [](const Bytes& image, int i) { return image[4 + 2 * i] + 256 * image[5 + 2 * i]; };
  int letter = 0x4000 | 3 << 2;
  EXPECT_EQ(letter | 0x3000, unit(b.lower, 0)) << "lower case sorts first, no accent";
  EXPECT_EQ(letter | 0x0F80, unit(b.upper, 0)) << "upper case sorts last, the greatest accent";
  EXPECT_EQ(unit(b.lower, 1), unit(b.upper, 1)) << "a digit has neither";
}

TEST(StringBounds, SelectedWordsLieBetweenThem) {
  // The alphabet has every kind of character that order and options distinguish; the
  // wildcards come up in patterns only.
  const std::string letters =
      "aAb\xe1\xc4"
      "c1h";
  std::mt19937 random(3);
  auto word = [&](const std::string& alphabet) {
    std::string text;
    for (int n = random() % 5; n > 0; --n) text += alphabet[random() % alphabet.size()];
    return text;
  };
  long selected = 0;
  for (int round = 0; round < 4000; ++round) {
    unsigned char format = 1 + random() % 2;
    unsigned char language = 1 + random() % 7;
    unsigned char codeSets[] = {1, 253};
    unsigned short options =
        (random() % 8) << 4 | (random() % 4 == 0 ? kSkipSpaces : 0) | (random() % 4 == 0 ? kSkipSymbols : 0);
    unsigned short relations[] = {1, 2, 3, 4, 5, 6};
    unsigned short relation = relations[random() % 6];
    // A key with characters that are skipped holds for indexes that skip them as well.
    bool skips = options & (kSkipSpaces | kSkipSymbols);
    std::string pattern =
        word(letters + (skips ? "" : "- ") + (skips && (options & kWildcardsOff) ? "" : "*?"));
    Bytes key = Image(Text(pattern, codeSets[random() % 2], language), format);
    Bounds b = Evaluate(key, relation | options, format);
    for (int i = 0; i < 40; ++i) {
      std::string text = word(letters + "- ");
      Bytes image = Image(Text(text, codeSets[random() % 2], language), format);
      if (!Accepts(relation, Compare(image, key, options, format))) continue;
      ++selected;
      Bytes entry = IndexKey(image, format);
      EXPECT_TRUE(!b.hasLower || Compare(entry, b.lower, kWildcardsOff, format) >= 0)
          << text << " against " << pattern << " under " << std::hex << (relation | options);
      EXPECT_TRUE(!b.hasUpper || Compare(entry, b.upper, kWildcardsOff, format) <= 0)
          << text << " against " << pattern << " under " << std::hex << (relation | options);
    }
  }
  EXPECT_GT(selected, 10000);
}

TEST(StringBounds, EstimatesGrowWithTheKey) {
  Bytes low = IndexKey(Image(Text("a", 1, 1), 1), 1), high = IndexKey(Image(Text("zz", 1, 1), 1), 1);
  NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                    static_cast<unsigned char>(high.size())};
  float before = -1.0F;
  for (char c = 'b'; c <= 'z'; ++c) {
    float estimate = Evaluate(Image(Text(std::string(1, c), 1, 1), 1), kRelationLess, 1, &range).estimate;
    EXPECT_GT(estimate, before) << c;
    EXPECT_LE(estimate, 1.0F);
    before = estimate;
  }
  EXPECT_LT(Evaluate(Image(Text("mmm", 1, 1), 1), kRelationEqual, 1, &range).estimate, 0.001F);
}

TEST(StringBounds, EstimatesGrowFromAnEmptyEarlyImage) {
  Bytes low = {1, 0, 0}, high = {4, 0, 'z', 'z', 'z', 0};
  NxIdxBounds range{low.data(), high.data(), 3, 6};
  float before = 0.0F;
  for (unsigned char c = 'a'; c <= 'z'; ++c) {
    float estimate = Evaluate({2, 0, c, 0}, kRelationLess, 1, &range, true).estimate;
    EXPECT_GT(estimate, before) << c;
    before = estimate;
  }
  EXPECT_LT(before, 1.0F);
}

TEST(StringBounds, AnyBytesGiveBoundsOfAtMost254) {
  std::mt19937 random(5);
  NxAssertHandler before = NxSetAssertHandler([](const char*, const char*, int) {});
  for (int round = 0; round < 20000; ++round) {
    Bytes key(2 + random() % 300);
    for (auto& byte : key) byte = random() % 2 ? random() : random() % 4;
    unsigned char format = 1 + random() % 2;
    auto length = static_cast<unsigned short>(key.size() - 2);
    ShortStore(key.data(), &length, format, 1);
    Bytes low(random() % 20), high(random() % 20);
    for (auto* image : {&low, &high})
      for (auto& byte : *image) byte = random();
    NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                      static_cast<unsigned char>(high.size())};
    Bounds b = Evaluate(key, random(), format, random() % 2 ? &range : nullptr, random() % 4 == 0);
    EXPECT_LE(b.lower.size(), 254u);
    EXPECT_LE(b.upper.size(), 254u);
  }
  NxSetAssertHandler(before);
}
