// Sort keys: the order of their bytes is that of Cmp, and bounds hold what a term selects.
#include "nxsortkey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "collation/nxtextkey.h"
#include "nx_utf_8.h"
#include "nxlang.h"
#include "nxoption.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "strwild.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/terms.h"

namespace {

// ---------------------------------------------------------------------------
// Texts

struct Case {
  NxString text;
  std::string key;
};

class Texts : public testing::Test {
 protected:
  Case Make(const std::string& bytes, unsigned char codeSet, unsigned char language) {
    Case made = {NxString(codeSet, language), ""};
    made.text.MakeString((bytes + std::string(2, '\0')).c_str(), codeSet, -1, 1);
    made.text._nLanguage = language;
    made.key = KeyOf(kStringTypeId, &made.text, 8);
    return made;
  }
  std::string Pick(const std::string& alphabet, unsigned most) {
    std::string s;
    for (unsigned n = random() % (most + 1); n > 0; --n) s += alphabet[random() % alphabet.size()];
    return s;
  }
  void Check(const Case& a, const Case& b) {
    const int expected = Sign(a.text.Compare(b.text, -1, kWildcardsOff));
    ASSERT_EQ(Sign(a.key.compare(b.key)), expected) << a.text.StrGet() << " | " << b.text.StrGet();
    ASSERT_FALSE(IsPrefix(a.key, b.key) || IsPrefix(b.key, a.key));
  }

  // Letters that contract in Spanish and Danish, expand, have accents; spaces and symbols.
  const std::string hostile = "aAcChHlL-. 1*?\xdf\xe6\xe4\xc5\xbd\xb2\xf1\x01";
  std::mt19937 random{11};
};

TEST_F(Texts, OrderAsTheComparisonWhenShort) {
  for (unsigned char language : {1, 4, 6}) {
    std::vector<Case> all = {Make("", 1, language)};
    for (char a : hostile) {
      all.push_back(Make({a}, 1, language));
      for (char b : hostile) all.push_back(Make({a, b}, 1, language));
    }
    for (const Case& a : all)
      for (const Case& b : all) Check(a, b);
  }
}

TEST_F(Texts, OrderAsTheComparisonInOrderValues) {
  const std::u16string values = u"\u4061\u4060\u8000\u8001\u9abc\ufffe";
  std::vector<Case> all;
  for (const char16_t a : values)
    for (const char16_t b : values) {
      const char16_t units[] = {a, b};
      all.push_back(Make({reinterpret_cast<const char*>(units), sizeof units}, 254, 1));
    }
  for (const Case& a : all)
    for (const Case& b : all) Check(a, b);
}

TEST_F(Texts, LongRunsKeepTheirDistances) {
  for (int round = 0; round < 20000; ++round) {
    std::string a, b;
    for (unsigned n = random() % 4; n > 0; --n)
      a += std::string(random() % 3 ? random() % 3 : random() % 700, hostile[random() % hostile.size()]);
    b = a;
    if (!b.empty()) b[random() % b.size()] = hostile[random() % hostile.size()];
    Check(Make(a, 1, 4), Make(b, 1, 4));
  }
}

TEST_F(Texts, PlainWordsHaveTheKeyThatTheLevelsGive) {
  // Most are read eight letters at once, with what lies before a short one.
  const std::string letters = "aeglnrstAZ09\xe4\xc5\xf1";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (unsigned n = random() % 80; n > 0; --n)
      text += random() % 400 == 0 ? hostile[random() % hostile.size()] : letters[random() % letters.size()];
    const unsigned char language = random() % 2 ? 2 : 4;
    const Block image = Exactly(StringImage(text, 1, language));
    std::string levels(6 * text.size() + 8, '\0');
    NxKeyWriter writer(levels.data(), levels.size());
    ASSERT_TRUE(NxWriteTextKeyByLevels({1, language, text.c_str(), 1}, writer));
    levels.resize(writer.Length());
    Block key(random() % (levels.size() * 3));
    ASSERT_EQ(NxSortKey(kStringTypeId, image.Data(), 1, image.Size(), 0, key.Data(), key.Size()),
              levels.size());
    ASSERT_EQ(Str(key, levels.size()), levels.substr(0, key.Size())) << text;
  }
}

TEST_F(Texts, NullComesFirstAndDescendingTurnsTheOrder) {
  NxString null;
  null.SetNullValue();
  const std::string nullKey = KeyOf(kStringTypeId, &null, 8);
  Case last = Make("", 1, 1);
  EXPECT_LT(nullKey, last.key);
  EXPECT_LT(nullKey, Make("", 0, 1).key);
  for (int round = 0; round < 1000; ++round)  // byte by byte, the lowest ones escaped
    Check(Make(Pick("\x01\x02\x03y", 4), 0, 1), Make(Pick("\x01\x02\x03y", 4), 0, 1));
  for (int round = 0; round < 1000; ++round) {
    const Case a = Make(Pick(hostile, 4), 1, 1);
    const int order = Sign(a.text.Compare(last.text, -1, kWildcardsOff));
    const auto down = [](const Case& c) { return KeyOf(kStringTypeId, &c.text, 8, 0, kSortKeyDescending); };
    ASSERT_EQ(Sign(down(last).compare(down(a))), order);
    last = a;
  }
}

// ---------------------------------------------------------------------------
// Bounds

TEST_F(Texts, BoundsCloseWhatTheyCan) {
  for (const char* text : {"ab", "ab*", "a?b", "*"}) {
    const NxString term(text);
    NxSortKeyRange range;
    ASSERT_EQ(NxSortKeyBounds(kStringTypeId, &term, 8, 0, kRelationEqual, range), 1);
    EXPECT_EQ(range.lower && range.upper, *text == 'a') << text;
    std::free(range.lower);
    std::free(range.upper);
  }
}

/// The words of a list that are Latin-1 (a file in UTF-8), with their keys, in order of these.
std::vector<std::pair<std::string, std::string>> WordsByKey(const char* path) {
  std::vector<std::pair<std::string, std::string>> words;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    NxString s(kCodeSetUnicode, kLanguageGerman);
    NxMBS2NxString(line.c_str(), s, static_cast<long>(line.size()));
    s.SetCodeSet(kCodeSetLatin1);
    words.emplace_back(KeyOf(kStringTypeId, &s, 8), s.StrGet());
  }
  std::sort(words.begin(), words.end());
  return words;
}

/// Parts of a word with wildcards, a symbol or another case in them.
std::string MakePattern(const std::string& word, std::mt19937& random) {
  std::string made = word;
  for (unsigned n = random() % 4; n > 0; --n) {
    const unsigned at = random() % (made.size() + 1), length = random() % 5;
    const char* const pieces[] = {"*", "*", "?", "-", " ", "*\xE4"};
    made.replace(at, length, pieces[random() % 6]);
  }
  if (random() % 4 == 0 && !made.empty()) made[0] ^= 0x20;
  return made;
}

// Every pattern under every combination of the options, with each 211th word, beginning with
// another one each time. NX_BOUNDS_STEP=1 takes all words (many minutes).
TEST_F(Texts, BoundsHoldWhatAWordListHas) {
  const auto words = WordsByKey("/usr/share/dict/ngerman");
  if (words.empty()) GTEST_SKIP() << "no word list: install wngerman";
#ifdef __SANITIZE_ADDRESS__
  constexpr unsigned kPatterns = 50;
#else
  constexpr unsigned kPatterns = 500;
#endif
  constexpr unsigned kCombinations = 64;
  const unsigned short bits[] = {kIgnoreCase,  kIgnoreAccents, kSkipSpaces,
                                 kSkipSymbols, kWildcardsOff,  kOrderValuesOnly};
  const char* const stated = std::getenv("NX_BOUNDS_STEP");
  const std::size_t step = stated ? std::strtoul(stated, nullptr, 10) : 211;
  const auto placeOf = [&words](void* bound, unsigned long length, bool last) {
    const std::string key(static_cast<char*>(bound), length);
    std::free(bound);
    if (!bound) return last ? words.size() : 0;
    return static_cast<std::size_t>(
        std::lower_bound(words.begin(), words.end(), std::make_pair(key, std::string())) - words.begin());
  };
  unsigned narrow = 0, selected = 0;
  for (unsigned round = 0; round < kPatterns * kCombinations; ++round) {
    static std::string pattern;
    if (round % kCombinations == 0) pattern = MakePattern(words[random() % words.size()].second, random);
    unsigned short op = 0;
    for (unsigned i = 0; i < 6; ++i) op |= round >> i & 1 ? bits[i] : 0;
    const NxString term = Narrow(pattern);
    std::size_t begin[7], end[7];
    for (unsigned short relation = 1; relation <= 6; ++relation) {
      NxSortKeyRange range;
      ASSERT_EQ(NxSortKeyBounds(kStringTypeId, &term, 8, 0, relation | op, range), 1);
      begin[relation] = placeOf(range.lower, range.lowerLength, false);
      end[relation] = placeOf(range.upper, range.upperLength, true);
    }
    narrow += end[kRelationEqual] - begin[kRelationEqual] < words.size() / 2;
    for (std::size_t i = round % step; i < words.size(); i += step) {
      const int order = NxStrCmp(1, 2, words[i].second.c_str(), 1, 2, pattern.c_str(), op, -1, 1, nullptr);
      for (unsigned short relation = 1; relation <= 6; ++relation) {
        const bool inside = i >= begin[relation] && i < end[relation];
        ASSERT_TRUE(inside || !Selects(order, relation))
            << words[i].second << " | " << pattern << " " << (relation | op);
        selected += order == 0 && relation == kRelationEqual;
      }
    }
  }
  EXPECT_GT(selected, kPatterns / 10);
  EXPECT_GT(narrow, kPatterns * kCombinations / 4);
}

TEST(SortKeys, TypesWithoutOrderHaveNone) {
  long value = 1;
  EXPECT_EQ(NxSortKey(18, &value, 1, 0, 0, nullptr, 0), 0UL) << "blobs have no order";
  EXPECT_EQ(NxSortKey(kIllegalTypeId, &value, 1, 0, 0, nullptr, 0), 0UL);
}

}  // namespace
