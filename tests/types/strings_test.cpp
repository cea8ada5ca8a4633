// The types of texts: strings, their early form, and the two alphabetic ones. What is
// stored, cut, compared, hashed or bounded in any form says the same of the text.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "nxconv.h"
#include "support/textsubject.h"

namespace {

class Strings : public TextSubject, public testing::TestWithParam<Kind> {
 protected:
  Strings() : TextSubject(GetParam()) {}
  unsigned Below(unsigned n) override { return static_cast<unsigned>(random()) % n; }
  std::mt19937 random{7};
};

TEST_P(Strings, ImagesSizesAndLoads) {
  for (unsigned byte = 0; byte < 256; ++byte)
    for (unsigned long n : {0UL, 1UL, 3UL}) {
      const auto format = static_cast<unsigned char>(byte);
      if (IsAlpha() && (format & 0x88) == 0x88) {  // no keys in memory
        ASSERT_EQ(mgr.Store(id, nullptr, Values(*this, n).Data(), format, n), 0);
        continue;
      }
      SCOPED_TRACE(testing::Message() << "format " << byte << " of " << n);
      std::vector<std::string> texts(n);
      for (std::string& text : texts) text = Word(true);
      const Values values(*this, texts), back(*this, n);
      const unsigned char plain = format & (IsAlpha() ? 0x9F : 0x0F);  // sizes of keys are estimates
      Block image(static_cast<unsigned long>(mgr.DiskLenGet(id, values.Data(), plain, n, 8)));
      ASSERT_EQ(mgr.Store(id, image.Data(), values.Data(), format, n), image.Size());
      const bool asInMemory = IsAlpha() && (id == 21 ? format > 15 : format >= 0x80);
      if (asInMemory) {
        ASSERT_EQ(Str(image), AlphaImage(0x01, texts, format));
        continue;
      }
      ASSERT_EQ(Str(image), Image(texts, format));
      if (n == 0 && IsEarly()) continue;  // a length of its own, which is not read
      ASSERT_EQ(mgr.Load(id, back.Data(), image.Data(), format, n), image.Size());
      ASSERT_EQ(back.Texts(), texts);
      MemFile file(image.Data(), image.Size());
      const unsigned char form = (format & 15) == 2 ? 2 : 1;
      ASSERT_EQ(mgr.DiskLenGet(id, image.Data(), plain, n, form), image.Size());
      ASSERT_EQ(mgr.DiskLenGetFromMemFile(id, &file, plain, n), image.Size());
      // A key fits where its size says so, and the room of a stored image is enough.
      if (id == 11 && !IsEarly() && !(format & kFormatMemory)) {
        const unsigned char key = format | kFormatKey;
        const auto room = static_cast<unsigned long>(mgr.DiskLenGet(id, values.Data(), key, n, 8));
        ASSERT_GE(mgr.DiskLenGet(id, image.Data(), key, n, form), room - 2 * n);
        ASSERT_LE(Translated(values.Data(), 8, 0, key, 2 * room, n).size(), room);
      }
    }
  EXPECT_EQ(mgr.table[static_cast<int>(id)]->NullSizeGet(3), IsAlpha() ? 6 : 18);
}

TEST_P(Strings, LifeAndNull) {
  for (unsigned long n : {0UL, 1UL, 3UL}) {
    for (int asNull : {0, 1}) {
      void* made = mgr.DefaultValue(id, n, asNull);
      for (unsigned long i = 0; i < n; ++i)
        EXPECT_EQ(mgr.IsNullValue(id, static_cast<NxString*>(made) + i), asNull && id == 11 && !IsEarly());
      EXPECT_EQ(mgr.Delete(id, made, n), 0);
    }
    const std::vector<std::string> texts(n, "text");
    const Values source(*this, texts), other(*this, std::vector<std::string>(n, "x"));
    Block raw(n * 8);
    mgr.ConstructorPtrGet(id)(raw.Data(), n, 0);
    mgr.AssignmentPtrGet(id)(raw.Data(), source.Data(), n, 0);
    mgr.AssignmentPtrGet(id)(raw.Data(), raw.Data(), n, 1);
    EXPECT_EQ(mgr.Cmp(id, raw.Data(), source.Data(), kWildcardsOff, n, 8), 0);
    mgr.DestructorPtrGet(id)(raw.Data(), n, 0);
    mgr.CopyPtrGet(id)(raw.Data(), other.Data(), n, 1);
    EXPECT_EQ(mgr.Cmp(id, raw.Data(), other.Data(), kWildcardsOff, n, 8), 0);
    mgr.DestructorPtrGet(id)(raw.Data(), n, 0);
  }
  EXPECT_EQ(mgr.Delete(id, nullptr, 0) + mgr.Delete(id, nullptr, 5), 0);
}

TEST_P(Strings, StringArraysComeBackAndMissingOnesAreNull) {
  const Values values(*this, {"Stra\xDF"
                              "e",
                              "", "b"});
  const std::unique_ptr<NxTypeConvertData> texts(mgr.ConvertTo(id, values.Data(), 3));
  EXPECT_EQ(texts->count, 3U);
  texts->GetString(2)->SetNullValue();
  void* back = mgr.ConvertFrom(id, texts.get(), 4);
  EXPECT_EQ(mgr.Cmp(id, back, values.Data(), kWildcardsOff, 2, 8), 0);
  for (unsigned long i : {2UL, 3UL}) {
    void* none = mgr.GetArrayElement(id, back, i, 4);
    EXPECT_TRUE(IsAlpha() ? !static_cast<NxIString*>(none)->_pStr
                          : static_cast<NxString*>(none)->IsNullValue());
  }
  mgr.Delete(id, back, 4);
}

TEST_P(Strings, TranslationToEveryLengthCutsOrFillsWithZeros) {
  for (unsigned char format : {1, 2}) {
    const std::vector<std::string> texts = {"ab", "c"};
    const Values values(*this, texts);
    const std::string whole = Image(texts, format);
    for (unsigned long length = 0; length < whole.size() + 3; ++length) {
      std::string expected = whole.substr(0, length), filled;
      EXPECT_EQ(Translated(values.Data(), 8, 0, format, length, 2, &filled), expected);
      expected.resize(length);
      EXPECT_EQ(filled, expected);
      const Block source = Exactly(whole), cut = Exactly(whole.substr(0, length));
      if (length > 1 || !IsEarly()) {
        EXPECT_EQ(Translated(source.Data(), format, source.Size(), format, length, 2, &filled),
                  whole.substr(0, length));
        EXPECT_EQ(filled, expected);
      }
      // What is not there is not loaded.
      const Values loaded(*this, 2);
      mgr.Translate(id, loaded.Data(), 8, 0, cut.Data(), format, cut.Size(), 2);
      if (cut.Size() == whole.size()) {
        EXPECT_EQ(loaded.Texts(), texts);
      } else {
        EXPECT_EQ(std::string("ab").rfind(loaded.Texts()[0], 0), 0U);
      }
    }
  }
}

TEST_P(Strings, CutKeysAreStartsOfTheWhole) {
  if (IsEarly()) return;  // it has no keys
  for (unsigned char format : {1, 2})
    for (const char* text : {"", "a", "abcdef"}) {
      const std::string image = Image({text}, format), whole = Key(image, format);
      for (unsigned long room = 0; room < whole.size() + 3; ++room) {
        const Block source = Exactly(image);
        std::string filled;
        const std::string key =
            Translated(source.Data(), format, source.Size(), format | kFormatKey, room, 1, &filled);
        const unsigned long size = std::min<unsigned long>(room, whole.size());
        if (IsAlpha()) {  // the last byte of the room is a terminator
          std::string expected = whole.substr(0, size);
          if (size > 3) expected.back() = 0;
          EXPECT_EQ(filled.substr(0, size), expected);
          continue;
        }
        ASSERT_EQ(key.size(), room < 4 ? 0 : room >= whole.size() ? size : size / 2 * 2);
        if (key.empty() || room >= whole.size()) continue;
        // It reads as longer than its buffer: the terminator that is missing is counted.
        EXPECT_EQ(LengthOf(key, format), key.size());
        EXPECT_EQ(key.substr(2), whole.substr(2, key.size() - 2));
        const Block cut = Exactly(key);
        const Values loaded(*this, 1);
        mgr.Translate(id, loaded.Data(), 8, 0, cut.Data(), format | kFormatKey, cut.Size(), 1);
        EXPECT_EQ(loaded.At<NxString>(0).Len(), (key.size() - 4) / 2);
      }
    }
}

// ---------------------------------------------------------------------------
// Bounds

TEST_P(Strings, BoundsOfLongTextsEndAt254Bytes) {
  for (unsigned char codeSet : {0, 1, 253})
    for (unsigned long length = 115; length < 260; ++length)
      for (const char* end : {"", "*"}) {
        const std::string text(length, 'a');
        const std::string key = Image({text + end}, 1, codeSet), entry = Image({text}, 1, codeSet);
        Bounds bounds;
        unsigned short relation = kRelationEqual;
        mgr.EvalAndBound(id, nullptr, relation, Exactly(key).Data(), 1, 1, &bounds, nullptr);
        ASSERT_LE(std::max(bounds.lowerLen, bounds.upperLen), NxINDEX_MAX_KEYLEN);
        if (IsEarly()) continue;
        const std::string stored = Key(entry, 1, IsAlpha() ? 600 : 254);
        ASSERT_LE(Compare(bounds.Lower(), stored, kWildcardsOff, 0x81).sign, 0) << length;
        ASSERT_GE(Compare(bounds.Upper(), stored, kWildcardsOff, 0x81).sign, 0) << length << end;
        if (id == 11 && *end == 0) {
          const unsigned long whole = codeSet ? 6 + 2 * length : 6 + length;
          ASSERT_EQ(bounds.Lower().size(), std::min(whole, NxINDEX_MAX_KEYLEN));
          ASSERT_TRUE(codeSet == 0 || bounds.Lower() == stored);
          ASSERT_EQ(LengthOf(bounds.Lower(), 1) + 2 == bounds.lowerLen, whole <= NxINDEX_MAX_KEYLEN);
        }
      }
}

TEST_P(Strings, BoundsThatAreThereStay) {
  Bounds bounds;
  bounds.lower = std::calloc(1, 7);
  bounds.lowerLen = 7;
  unsigned short relation = kRelationEqual;
  mgr.EvalAndBound(id, nullptr, relation, Exactly(Image({"m"}, 1)).Data(), 1, 1, &bounds, nullptr);
  EXPECT_EQ(bounds.Lower(), std::string(7, '\0'));
  EXPECT_NE(bounds.upper, nullptr);
}

TEST_P(Strings, EstimatesGrowWithTheKeyAndAddUp) {
  const std::string low = IsEarly() ? Image({"aaaa"}, 1) : Key(Image({"aaaa"}, 1), 1);
  const std::string high = IsEarly() ? Image({"zzzz"}, 1) : Key(Image({"zzzz"}, 1), 1);
  float before = -1;
  for (char c = 'b'; c < 'z'; ++c) {
    const Block lowest = Exactly(low), highest = Exactly(high), key = Exactly(Image({std::string(4, c)}, 1));
    NxIdxBounds range{lowest.Data(), highest.Data(), static_cast<unsigned char>(low.size()),
                      static_cast<unsigned char>(high.size())};
    float share[7];
    for (unsigned short relation = 1; relation < 7; ++relation) {
      unsigned short word = relation;
      Bounds bounds;
      share[relation] = mgr.EvalAndBound(id, &range, word, key.Data(), 1, 1, &bounds, nullptr);
    }
    EXPECT_GT(share[2], before) << c;
    EXPECT_NEAR(share[1] + share[2] + share[4], 1, 0.05) << c;
    EXPECT_NEAR(share[3], share[1] + share[2], 0.05) << c;
    EXPECT_NEAR(share[5], share[1] + share[4], 0.05) << c;
    before = share[2];
  }
}

INSTANTIATE_TEST_SUITE_P(All, Strings, testing::ValuesIn(kKinds),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
