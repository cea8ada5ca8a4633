// The types of texts: strings, their early form, and the two alphabetic ones. What is
// stored, cut, compared, hashed or bounded in any form says the same of the text.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>

#include "alpha/nxalpha.h"
#include "collation/nxstrcmp.h"
#include "collation/nxstrcmpkeys.h"
#include "nxcistr.h"
#include "nxconv.h"
#include "nxistr.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"
#include "strwild.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/terms.h"

namespace {

struct Kind {
  const char* name;
  unsigned long factory;
  char id;
  const char* letters;  // where case, accents and second keys meet
};
const Kind kKinds[] = {{"NxString", 5, 11,
                        "aAb\xE1\xC4"
                        "c1h- *?"},
                       {"EarlyNxString", 3, 11, "aAb1- *?"},
                       {"NxIString", 5, 20, "aAbs\xDF\x8C\xC0\xC9\\- *?"},
                       {"NxCaseIString", 5, 21, "aAbs\xDF\x8C\xC0\xC9\\- *?"}};

class Strings : public testing::TestWithParam<Kind> {
 protected:
  bool IsEarly() const { return kind.factory == 3; }
  bool IsAlpha() const { return id != 11; }
  unsigned Below(unsigned n) { return static_cast<unsigned>(random()) % n; }
  /// A short word over the letters; without wildcards when it is no pattern.
  std::string Word(bool pattern = false) {
    const std::string letters(kind.letters);
    std::string word(Below(6), ' ');
    for (char& c : word) c = letters[Below(static_cast<unsigned>(letters.size()) - (pattern ? 0 : 2))];
    return word;
  }

  /// Values in memory.
  class Values {
   public:
    Values(Strings& test, unsigned long n) : test_(test), n_(n), data_(test.mgr.Create(test.id, n)) {}
    Values(Strings& test, const std::vector<std::string>& texts, unsigned char codeSet = 1,
           unsigned char language = 1)
        : Values(test, texts.size()) {
      for (unsigned long i = 0; i < n_; ++i)
        if (test.id == 11)
          At<NxString>(i) =
              texts[i].empty() ? NxString(codeSet, language) : String(Widened(texts[i]), codeSet, language);
        else if (test.id == 20)
          At<NxIString>(i) = texts[i].c_str();
        else
          At<NxCaseIString>(i) = texts[i].c_str();
    }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
    ~Values() { test_.mgr.Delete(test_.id, data_, n_); }
    void* Data() const { return data_; }
    template <class T>
    T& At(unsigned long i) const {
      return static_cast<T*>(data_)[i];
    }
    /// The texts, of strings as bytes of code set 1.
    std::vector<std::string> Texts() const {
      std::vector<std::string> texts;
      for (unsigned long i = 0; i < n_; ++i) {
        NxString s = test_.id == 11 ? At<NxString>(i) : NxString(At<NxIString>(i)._pStr);
        if (test_.id == 11 && NxCharWidth(s._nCodeSet) == 2) s.MapToCodeSet(1);
        texts.push_back(Text(s));
      }
      return texts;
    }

   private:
    Strings& test_;
    unsigned long n_;
    void* data_;
  };

  /// The image of texts under a format, from its definition.
  std::string Image(const std::vector<std::string>& texts, unsigned char format, unsigned char codeSet = 1,
                    unsigned char language = 1) const {
    if (IsEarly()) return EarlyImage(texts, format & 15);
    if (IsAlpha()) return AlphaImage(0x40, OnDisk(texts), format);
    std::string image;
    for (const std::string& text : texts) image += StringImage(text, codeSet, language, format);
    return image;
  }
  std::vector<std::string> OnDisk(std::vector<std::string> texts) const {
    for (std::string& text : texts)
      for (char& c : text) c = static_cast<char>(_NxConvertToDiskFormat(static_cast<unsigned char>(c)));
    return texts;
  }

  /// What Translate makes of a source: `filled` in a destination of `length` bytes.
  std::string Translated(void* src, unsigned char srcForm, unsigned long srcLength, unsigned char dstForm,
                         unsigned long length, unsigned long n, std::string* filled = nullptr) {
    Block dst(length);
    const int produced = mgr.Translate(id, dst.Data(), dstForm, length, src, srcForm, srcLength, n);
    if (filled) *filled = Str(dst);
    return Str(dst, std::min<unsigned long>(static_cast<unsigned long>(produced), length));
  }
  std::string Key(const std::string& image, unsigned char format, unsigned long room = 254) {
    const Block source = Exactly(image);
    std::string key = Translated(source.Data(), format & 15, source.Size(), format | kFormatKey, room, 1);
    // The keys of alphabetic types say how long they are.
    return IsAlpha() && key.size() > 3 ? key.substr(0, 3 + LengthOf(key.substr(1), format)) : key;
  }
  static unsigned LengthOf(const std::string& field, unsigned char format) {
    unsigned short n;
    ShortStore(&n, field.data(), format & 15, 1);
    return n;
  }

  struct Answer {
    int sign, error;
    bool operator==(const Answer& a) const { return sign == a.sign && error == a.error; }
    friend std::ostream& operator<<(std::ostream& out, const Answer& a) {
      return out << a.sign << "/" << a.error;
    }
  };
  Answer Compare(const std::string& a, const std::string& b, unsigned short options, unsigned char format = 1,
                 unsigned long n = 1) {
    const Block x = Exactly(a), y = Exactly(b);
    // Early arrays are compared without limits only: their first length is that of all texts.
    const bool limited = n == 1 || !IsEarly();
    int error = 77;
    const long order = mgr.Cmp(id, limited ? x.Size() : 0, x.Data(), limited ? y.Size() : 0, y.Data(),
                               options, n, format, error);
    return {Sign(order), error};
  }

  const Kind kind = GetParam();
  const char id = kind.id;
  NxTypeMgr mgr{kind.factory};
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

TEST_P(Strings, KeyIsOneFromEveryForm) {
  if (IsEarly()) return;
  for (int round = 0; round < 3000; ++round) {
    std::string text = Word();
    if (id == 11) text += std::string("chLl\xF1\xDF\xE5\xE6").substr(Below(8), Below(4));
    const auto language = static_cast<unsigned char>(1 + Below(7));
    for (unsigned char format : {1, 2}) {
      const std::string key = Key(Image({text}, format, 1, language), format);
      if (id == 11) {
        EXPECT_EQ(Key(Image({text}, format, 253, language), format), key) << text;
      }
      for (unsigned char codeSet : {1, 253}) {
        const Values value(*this, {text}, codeSet, language);
        const std::string made = Translated(value.Data(), 8, 0, format | kFormatKey, 254, 1);
        EXPECT_EQ(made.substr(0, key.size()), key) << text;
      }
    }
  }
}

TEST_P(Strings, EveryFormComparesAsTheTextsDo) {
  for (int round = 0; round < 20000; ++round) {
    const unsigned short kOptions[] = {0,
                                       kWildcardsOff,
                                       kIgnoreCase,
                                       kSkipSymbols | kIgnoreAccents,
                                       kWildcardsOff | kSkipSpaces,
                                       kOrderValuesOnly};
    const unsigned short options = IsAlpha() ? Below(2) * kWildcardsOff : kOptions[Below(6)];
    const std::string a = Word(), b = Below(4) ? Word(true) : a;
    const auto language = static_cast<unsigned char>(1 + Below(7));
    const unsigned char codeSets[] = {1, static_cast<unsigned char>(Below(2) ? 1 : 253)};
    int expected;
    if (IsAlpha()) {
      const std::string x = OnDisk({a})[0], y = OnDisk({b})[0];
      if (options == 0 && y.find_first_of("*?") != std::string::npos) {
        const Answer answer = Compare(Image({a}, 1), Image({b}, 1), 0);
        const auto matches = id == 20 ? istrwild : caseistrwild;
        ASSERT_EQ(answer.sign == 0, matches(y.c_str(), x.c_str(), 0x40, 0x40) == 1) << a << " " << b;
        expected = answer.sign;
      } else if (options == 0) {
        expected = Compare(Image({a}, 1), Image({b}, 1), 0).sign;
      } else {
        expected = Sign((id == 20 ? nxistrcmp : nxcaseistrcmp)(x.c_str(), y.c_str(), 0, 0x40, 0x40));
      }
    } else if (IsEarly()) {
      expected = Sign(NxStrCmpGeneral(0, 0, a.c_str(), 0, 0, b.c_str(), options, -1, 1, nullptr));
    } else {
      const std::string x = Encoded(Widened(a), codeSets[0]) + std::string(2, '\0');
      const std::string y = Encoded(Widened(b), codeSets[1]) + std::string(2, '\0');
      expected = Sign(NxStrCmpGeneral(codeSets[0], language, x.c_str(), codeSets[1], language, y.c_str(),
                                      options, -1, 1, nullptr));
    }
    for (unsigned char format : {1, 2}) {
      const std::string x = Image({a}, format, codeSets[0], language),
                        y = Image({b}, format, codeSets[1], language);
      ASSERT_EQ(Compare(x, y, options, format), (Answer{expected, 0})) << a << " : " << b << " " << options;
      ASSERT_EQ(Sign(mgr.Cmp(id, Exactly(x).Data(), Exactly(y).Data(), options, 1, format)), expected);
      if (id == 11 && !IsEarly() && (options & kWildcardsOff)) {
        ASSERT_EQ(Compare(Key(x, format), Key(y, format), options, format | kFormatKey),
                  (Answer{expected, 0}))
            << a << " : " << b;
      }
    }
    if (IsEarly()) continue;  // its objects have code sets, and it has no sort keys
    const Values x(*this, {a}, codeSets[0], language), y(*this, {b}, codeSets[1], language);
    ASSERT_EQ(Sign(mgr.Cmp(id, x.Data(), y.Data(), options, 1, 8)), expected) << a << " : " << b;
    const std::string image = Image({a}, 2, codeSets[0], language), key = KeyOf(id, x.Data(), 8);
    ASSERT_EQ(KeyOf(id, image.data(), 2, image.size()), key) << a;
    if (options == kWildcardsOff) {
      ASSERT_EQ(Sign(key.compare(KeyOf(id, y.Data(), 8))), expected) << a << " : " << b;
    }
    NxSortKeyRange range;
    const auto relation = static_cast<unsigned short>(1 + Below(6));
    ASSERT_EQ(NxSortKeyBounds(id, y.Data(), 8, 0, relation | options, range), 1);
    ASSERT_TRUE(!Selects(expected, relation) || LiesWithin(range, key)) << a << " : " << b << " " << relation;
    std::free(range.lower);
    std::free(range.upper);
  }
}

TEST_P(Strings, NoErrorMeansTheSignOfTheWholeTexts) {
  for (int round = 0; round < 20000; ++round) {
    const auto options = static_cast<unsigned short>(IsAlpha() ? kWildcardsOff : Below(8) * kWildcardsOff);
    std::string words[] = {Word(), Word(true)};
    const std::string symbols = options & kWildcardsOff ? "- *?" : "- ";
    for (std::string& word : words)  // which count less than what may follow them
      for (std::size_t at; (at = word.find_first_of(symbols)) != std::string::npos;) word.erase(at, 1);
    const std::string a = Image({words[0]}, 1), b = Image({words[1]}, 1);
    const std::string cutA = a.substr(0, 1 + Below(static_cast<unsigned>(a.size())));
    const std::string cutB = IsAlpha() ? b : b.substr(0, 1 + Below(static_cast<unsigned>(b.size())));
    if (IsEarly() && (cutA.size() + 1 == a.size() || cutB.size() + 1 == b.size())) continue;
    const Answer whole = Compare(a, b, options), answer = Compare(cutA, cutB, options);
    if (!IsEarly() && cutA != a) {
      ASSERT_EQ(Compare(cutA, b + b, options, 1, 2).error, kPastBuffer) << "there is no second text";
    }
    ASSERT_TRUE(answer.error == kPastBuffer || answer == whole)
        << words[0] << " (" << cutA.size() << ") : " << words[1] << " (" << cutB.size() << ") " << options;
  }
}

TEST_P(Strings, ArraysStopAtTheFirstDifference) {
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::string> a(1 + Below(3)), b;
    for (std::string& text : a) text = std::string(1, "ab"[Below(2)]);
    for (const std::string& text : a) b.push_back(Below(4) ? text : "c");
    int expected = 0;
    unsigned long first = 0;
    while (first < a.size() && expected == 0) expected = Sign(a[first].compare(b[first])), ++first;
    const std::string x = Image(a, 1), y = Image(b, 1);
    ASSERT_EQ(Compare(x, y, kWildcardsOff, 1, a.size()), (Answer{expected, 0}));
    const Values valuesA(*this, a), valuesB(*this, b);
    int error = 77;
    ASSERT_EQ(Sign(mgr.Cmp(id, a.size() * 8, valuesA.Data(), b.size() * 8, valuesB.Data(), kWildcardsOff,
                           a.size(), 8, error)),
              expected);
    ASSERT_EQ(error, 0);
    // More are asked for than there are.
    const Answer past = Compare(x, y, kWildcardsOff, 1, a.size() + 1);
    ASSERT_EQ(past, (Answer{expected, expected != 0 && first < a.size() ? 0 : kPastBuffer}));
    mgr.Cmp(id, a.size() * 8, valuesA.Data(), b.size() * 8, valuesB.Data(), kWildcardsOff, a.size() + 1, 8,
            error);
    ASSERT_EQ(error, expected != 0 && first < a.size() ? 0 : kPastBuffer);
  }
}

TEST_P(Strings, EqualTextsHashAlikeInEveryForm) {
  int error = 77;
  const auto hash = [&](const std::string& image, unsigned char format, unsigned long n = 1) {
    const Block block = Exactly(image);
    return mgr.Hash(id, n == 1 || !IsEarly() ? block.Size() : 0, block.Data(), n, format, error);
  };
  constexpr unsigned long kMultiplier = 1103515245, kInverse = 0xEEB9EB65;
  for (int round = 0; round < 2000; ++round) {
    const std::string a = Word(), b = Word();
    const unsigned long word = hash(Image({a}, 1), 1);
    if (IsAlpha()) {
      ASSERT_EQ(word, 0U);
      ASSERT_EQ(error, 77) << "left alone";
      continue;
    }
    ASSERT_EQ(hash(Image({a}, 2, IsEarly() ? 1 : 253), 2), word);
    ASSERT_EQ(hash(Image({a, b}, 1), 1, 2),
              (word * kInverse ^ hash(Image({b}, 1), 1) * kInverse) * kMultiplier);
    ASSERT_EQ(error, 0);
    hash(Image({a, b}, 1), 1, 3);
    ASSERT_EQ(error, kPastBuffer);
    if (IsEarly()) continue;
    const Values values(*this, {a, b}, 253);
    ASSERT_EQ(mgr.Hash(id, 16, values.Data(), 2, 8, error), hash(Image({a, b}, 1), 1, 2));
  }
}

// ---------------------------------------------------------------------------
// Bounds

struct Bounds : NxIdxBounds {
  Bounds() : NxIdxBounds{} {}
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;
  ~Bounds() {
    std::free(lower);
    std::free(upper);
  }
  std::string Lower() const { return std::string(static_cast<char*>(lower), lowerLen); }
  std::string Upper() const { return std::string(static_cast<char*>(upper), upperLen); }
};

TEST_P(Strings, SelectedTextsLieWithinTheBounds) {
  int selected = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto format = static_cast<unsigned char>(1 + Below(2));
    const auto relation = static_cast<unsigned short>(IsAlpha() && Below(2) ? 1 : 1 + Below(6));
    // Accents give the ligatures of alphabetic keys another place while wildcards are on.
    unsigned short options = IsAlpha() && relation != 1 ? kWildcardsOff : 0;
    if (!IsAlpha())
      options = static_cast<unsigned short>(Below(8) << 4 | (Below(4) ? 0 : kSkipSpaces) |
                                            (Below(4) ? 0 : kSkipSymbols));
    // A key with characters that are skipped holds for indexes that skip them as well.
    std::string term = Word(!(options & kWildcardsOff));
    if (options & (kSkipSpaces | kSkipSymbols))
      term.erase(std::remove_if(term.begin(), term.end(), [](char c) { return c == '-' || c == ' '; }),
                 term.end());
    const auto language = static_cast<unsigned char>(1 + Below(7));
    const std::string key = Image({term}, format, Below(2) ? 1 : 253, language);
    const Block keyBlock = Exactly(key);
    Bounds bounds;
    auto word = static_cast<unsigned short>(relation | options);
    mgr.EvalAndBound(id, nullptr, word, keyBlock.Data(), format, 1, &bounds, nullptr);
    ASSERT_EQ(Str(keyBlock), key);
    for (int i = 0; i < 10; ++i) {
      const std::string image = Image({Word()}, format, Below(2) ? 1 : 253, language);
      const int sign = Compare(image, key, options, format).sign;
      if (!(relation & (sign == 0 ? kRelationEqual : sign < 0 ? kRelationLess : kRelationGreater))) continue;
      ++selected;
      const std::string entry = IsEarly() ? image : Key(image, format);
      ASSERT_TRUE(!bounds.lower || Compare(entry, bounds.Lower(), kWildcardsOff, format).sign >= 0) << term;
      ASSERT_TRUE(!bounds.upper || Compare(entry, bounds.Upper(), kWildcardsOff, format).sign <= 0) << term;
    }
  }
  EXPECT_GT(selected, 20000);
}

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
