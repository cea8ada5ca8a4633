// The slots of the alphabetic string types, through the type manager: images, keys,
// comparison row by row, bounds, and hostile bytes in buffers of exact length.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nxcistr.h"
#include "nxconv.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;
using std::string;

constexpr char kI = 20, kCaseI = 21;
constexpr unsigned char kKeyForm = kFormatKey | kFormatNative;

NxTypeMgr& Mgr() {
  static NxTypeMgr mgr(5);
  return mgr;
}

/// An image of texts; T counts all of them unless it is given.
Bytes Image(int header, const std::vector<string>& texts, int total = -1, bool bigEndian = false) {
  Bytes image = {static_cast<unsigned char>(header), 0, 0};
  for (const string& text : texts) image.insert(image.end(), text.c_str(), text.c_str() + text.size() + 1);
  const size_t t = total < 0 ? image.size() - 3 : static_cast<size_t>(total);
  image[bigEndian ? 2 : 1] = static_cast<unsigned char>(t);
  image[bigEndian ? 1 : 2] = static_cast<unsigned char>(t >> 8);
  return image;
}

string Keys(char id, const string& text) {
  Bytes keys(2 * text.size() + 1);
  auto* source = reinterpret_cast<const unsigned char*>(text.c_str());
  int n = (id == kI ? _NxIMapString : _NxCaseIMapString)(keys.data(), source, 0);
  return string(keys.begin(), keys.begin() + n - 1);
}
Bytes KeyImage(char id, const string& text) { return Image(0xC0, {Keys(id, text)}); }

// ---------------------------------------------------------------------------
// Images

template <class Text>
struct TypeIdOf;
template <>
struct TypeIdOf<NxIString> {
  static constexpr char value = kI;
};
template <>
struct TypeIdOf<NxCaseIString> {
  static constexpr char value = kCaseI;
};

template <class Text>
class AlphaTypes : public testing::Test {
 protected:
  static constexpr char kId = TypeIdOf<Text>::value;
  static string Str(const Text& t) { return t._pStr ? t._pStr : ""; }
  static Bytes Stored(std::vector<Text> values, unsigned char format) {
    Bytes image(static_cast<size_t>(Mgr().DiskLenGet(kId, values.data(), format & 0x7F, values.size(), 8)));
    EXPECT_EQ(Mgr().Store(kId, image.data(), values.data(), format, values.size()),
              static_cast<int>(image.size()));
    return image;
  }
};
using Types = testing::Types<NxIString, NxCaseIString>;
TYPED_TEST_SUITE(AlphaTypes, Types);

TYPED_TEST(AlphaTypes, ImagesByFormat) {
  const char id = TestFixture::kId;
  const std::vector<TypeParam> values = {"a\xCC", "", "b"};
  const std::vector<string> onDisk = {"a\xE4", "", "b"}, inMemory = {"a\xCC", "", "b"};
  const bool isCase = id == kCaseI;
  EXPECT_EQ(this->Stored(values, 1), Image(0x40, onDisk));
  EXPECT_EQ(this->Stored(values, 2), Image(0x40, onDisk, -1, true));
  EXPECT_EQ(this->Stored(values, 0x81), Image(0x01, inMemory));
  EXPECT_EQ(this->Stored(values, 0x82), Image(0x01, inMemory, -1, true));
  EXPECT_EQ(this->Stored(values, 0x22),
            isCase ? Image(0x01, inMemory, -1, true) : Image(0x40, onDisk, -1, true));

  // Loading decodes what it finds and reads no head.
  Bytes image = Image(0x01, onDisk, 9999);
  TypeParam loaded[3] = {"x", "y", "z"};
  loaded[0]._nForm = kAlphaKeys;
  EXPECT_EQ(Mgr().Load(id, loaded, image.data(), 2, 3), 3 + 3 + 1 + 2);
  EXPECT_EQ(this->Str(loaded[0]), "a\xCC");
  EXPECT_EQ(loaded[0]._nForm, 0);
  EXPECT_EQ(loaded[1]._pStr, nullptr);
  EXPECT_EQ(this->Str(loaded[2]), "b");
}

TYPED_TEST(AlphaTypes, Sizes) {
  const char id = TestFixture::kId;
  TypeParam values[] = {"ab", "", "\xFB"};  // 0xFB is stored as 0xAB; 0xDE as sharp s
  Bytes image = Image(0x40, {"a\xDF", "\xDF", ""});
  Bytes key = Image(0xC0, {"abc"});
  auto size = [&](const void* p, int form, int format, unsigned long n) {
    return Mgr().DiskLenGet(id, const_cast<void*>(p), static_cast<unsigned char>(format), n,
                            static_cast<unsigned char>(form));
  };
  EXPECT_EQ(size(values, 8, 1, 3), 3 + 3 + 1 + 2);
  EXPECT_EQ(size(values, 8, 0x81, 3), 3 + 3 + 1 + 2);
  EXPECT_EQ(size(values, 8, 0x88, 3), 0);
  EXPECT_EQ(size(image.data(), 1, 1, 3), 3 + 6);
  EXPECT_EQ(size(image.data(), 1, 0x81, 3), 3 + 4 + 3 + 1);
  EXPECT_EQ(size(image.data(), 1, 0x81, 1), 3 + 4);
  EXPECT_EQ(size(image.data(), 1, 0x81, 99), 3 + 4 + 3 + 1) << "fewer texts than asked for";
  EXPECT_EQ(size(key.data(), 1, 0x81, 1), 3 + 4);
  Bytes early = Image(0x40, {"ab"}, 2);  // T ends before the terminator
  EXPECT_EQ(size(early.data(), 1, 0x81, 2), 3 + 3);
  EXPECT_EQ(size(Image(0x40, {"ab"}, -1, true).data(), 2, 1, 1), 3 + 3) << "the form byte orders T";
  EXPECT_EQ((id == kI ? NxIStringNullSizeGet : NxCaseIStringNullSizeGet)(2), 5);

  auto fileSize = [&](Bytes bytes, int format, unsigned long n) {
    MemFile file(bytes.data(), static_cast<unsigned long>(bytes.size()));
    return Mgr().DiskLenGetFromMemFile(id, &file, static_cast<unsigned char>(format), n);
  };
  EXPECT_EQ(fileSize(image, 1, 3), 9);
  EXPECT_EQ(fileSize(image, 0x81, 3), 11);
  EXPECT_EQ(fileSize(image, 0x88, 3), 0);
  EXPECT_EQ(fileSize({}, 1, 3), 0);
  EXPECT_EQ(fileSize({0x40, 5}, 1, 3), 0) << "a cut head";
  EXPECT_EQ(fileSize(Image(0x40, {"\xDF"}, 500), 0x81, 9), 3 + 3) << "T runs past the file";

  std::vector<TypeParam> many(3, TypeParam(string(30000, 'x').c_str()));
  EXPECT_EQ(size(many.data(), 8, 1, 3), 3 + 3 * 30001 % 65536) << "totals are kept in 16 bits";
}

TYPED_TEST(AlphaTypes, LifeCycle) {
  const char id = TestFixture::kId;
  for (unsigned long n : {0UL, 1UL, 3UL}) {
    auto* values = static_cast<TypeParam*>(Mgr().DefaultValue(id, n, 1));
    for (unsigned long i = 0; i < n; ++i) EXPECT_EQ(values[i]._pStr, nullptr);
    EXPECT_EQ(Mgr().Delete(id, values, n), 0);
  }
  TypeParam source[] = {"a", "b"};
  source[0]._nForm = kAlphaDisk;
  alignas(TypeParam) unsigned char raw[2 * sizeof(TypeParam)];
  auto* copies = reinterpret_cast<TypeParam*>(raw);
  Mgr().CopyPtrGet(id)(raw, source, 2, 1);
  EXPECT_TRUE(this->Str(copies[1]) == "a" && copies[1]._nForm == 0);
  Mgr().AssignmentPtrGet(id)(raw, source, 2, 0);
  EXPECT_TRUE(this->Str(copies[1]) == "b" && copies[0]._nForm == kAlphaDisk);
  Mgr().DestructorPtrGet(id)(raw, 2, 0);
}

TYPED_TEST(AlphaTypes, StringArrays) {
  const char id = TestFixture::kId;
  TypeParam values[] = {
      "Stra\xDF"
      "e",
      ""};
  std::unique_ptr<NxTypeConvertData> strings(Mgr().ConvertTo(id, values, 2));
  EXPECT_STREQ(strings->GetString(0)->StrGet(),
               "Stra\xDF"
               "e");
  EXPECT_EQ(strings->GetString(0)->_nCodeSet, NxLanguageContext::GetNativeCodeSet());
  EXPECT_TRUE(strings->GetString(1)->IsEmpty());
  strings->GetString(1)->SetNullValue();
  auto* back = static_cast<TypeParam*>(Mgr().ConvertFrom(id, strings.get(), 3));  // one string too few
  EXPECT_EQ(this->Str(back[0]),
            "Stra\xDF"
            "e");
  EXPECT_TRUE(!back[1] && !back[2]);
  Mgr().Delete(id, back, 3);
}

// ---------------------------------------------------------------------------
// Translation

TYPED_TEST(AlphaTypes, TranslationWithoutKeys) {
  const char id = TestFixture::kId;
  TypeParam values[2] = {"ab", "c"}, copies[2];
  EXPECT_EQ(Mgr().Translate(id, copies, 8, 0, values, 8, 0, 2), 16);
  EXPECT_EQ(this->Str(copies[1]), "c");
  const Bytes whole = Image(0x40, {"ab", "c"});
  for (size_t length = 0; length <= whole.size() + 2; ++length) {
    const size_t kept = std::min(length, whole.size());
    Bytes expected(whole.begin(), whole.begin() + static_cast<long>(kept));
    expected.resize(length, 0);
    Bytes stored(length, 0xEE), resized(length, 0xEE), source = whole;
    EXPECT_EQ(Mgr().Translate(id, stored.data(), 1, length, values, 8, 0, 2), static_cast<int>(kept));
    EXPECT_EQ(stored, expected);
    EXPECT_EQ(Mgr().Translate(id, resized.data(), 1, length, source.data(), 1, source.size(), 2),
              static_cast<int>(kept));
    EXPECT_EQ(resized, expected);

    Bytes cut(whole.begin(), whole.begin() + static_cast<long>(kept));  // what is not there loads as empty
    EXPECT_EQ(Mgr().Translate(id, copies, 8, 0, cut.data(), 1, kept, 2), static_cast<int>(kept));
    EXPECT_EQ(this->Str(copies[0]), string("ab").substr(0, kept > 3 ? kept - 3 : 0));
    EXPECT_EQ(this->Str(copies[1]), kept > 6 ? "c" : "");
  }
  EXPECT_EQ(Mgr().Translate(id, copies, 0x88, 0, values, 8, 0, 1), 0) << "no keys in memory";
}

TYPED_TEST(AlphaTypes, KeyImages) {
  const char id = TestFixture::kId;
  const size_t closing = id == kCaseI ? 1 : 0;  // this type counts the closing terminator
  const string keys = Keys(id, "a\xDF\xE4");
  Bytes source = Image(0x40, {"a\xDF\xE4"});
  const Bytes whole = Image(0xC0, {keys});  // T counts the terminator
  for (size_t length = 0; length <= whole.size() + 2; ++length) {
    Bytes key(length, 0xEE), valueKey(length, 0xEE);
    const int result = Mgr().Translate(id, key.data(), 0x81, length, source.data(), 1, source.size(), 1);
    const size_t most = length ? length - 1 + closing : 0;
    EXPECT_EQ(result, static_cast<int>(std::min(whole.size() + closing, most))) << length;
    // Always T of the whole key, a prefix of it, and a terminator at the end of the room.
    Bytes expected(whole.begin(), whole.begin() + static_cast<long>(std::min(length, whole.size())));
    if (length > 3) expected.back() = 0;
    expected.resize(length, length > source.size() ? 0 : 0xEE);
    EXPECT_EQ(key, expected) << length;

    TypeParam value("a\xDE\xCC");  // the same text in memory
    const int valueResult = Mgr().Translate(id, valueKey.data(), 0x81, length, &value, 8, 0, 1);
    EXPECT_EQ(valueResult, static_cast<int>(std::min(length, whole.size()))) << length;
    if (length < 4) continue;
    const size_t fitting = std::min(keys.size(), length - 4);
    Bytes cut = Image(0xC0, {keys.substr(0, fitting)});
    cut.resize(length, 0xEE);
    EXPECT_EQ(valueKey, cut) << length;
  }
}

TYPED_TEST(AlphaTypes, KeyImagesOfOtherSources) {
  const char id = TestFixture::kId;
  auto translate = [&](Bytes source, unsigned char srcForm, unsigned char dstForm, size_t dstLength) {
    Bytes key(dstLength, 0xEE);
    Mgr().Translate(id, key.data(), dstForm, dstLength, source.data(), srcForm, source.size(), 2);
    return key;
  };
  // Under both byte orders, with the bits of the source's header kept, and all texts.
  Bytes key = Image(0xC1, {Keys(id, "b"), Keys(id, "a")}, -1, true);
  key.push_back(0);
  EXPECT_EQ(translate(Image(0x01, {"b", "a"}), 1, 0x82, 8), key);
  // A key is copied as it is, and nothing behind it is touched.
  EXPECT_EQ(translate(Bytes{0xC0, 2, 0, 0x5A, 0}, 1, 0x81, 6), (Bytes{0xC0, 2, 0, 0x5A, 0, 0xEE}));
  EXPECT_EQ(translate(Bytes{0xC0, 2, 0, 0x5A, 0}, 1, 0x81, 2), (Bytes{0xC0, 2}));
  // T past the source, and before its terminator: only bytes that both hold are mapped.
  EXPECT_EQ(translate(Image(0x40, {"1"}, 900), 1, 0x81, 8), (Bytes{0xC0, 2, 0, '1', 0, 0, 0, 0}));
  EXPECT_EQ(translate(Image(0x40, {"12"}, 1), 1, 0x81, 8), (Bytes{0xC0, 1, 0, '1', 0, 0, 0, 0}));
  EXPECT_EQ(translate({}, 1, 0x81, 5), (Bytes{0xC0, 0, 0, 0, 0}));
}

TEST(CaseKeys, TurnBackIntoValues) {
  const struct {
    Bytes key;
    const char* text;
    int result;
  } cases[] = {
      {KeyImage(kCaseI, "a\xDFz 1"), "ASSZ 1", 3 + 7},
      {KeyImage(kCaseI, "\xE5"), "\xD0", 3 + 2},             // stored as 0xC5
      {Image(0xC0, {Keys(kCaseI, "abc")}, 2), "AB", 3 + 2},  // T before the end
      {Image(0xC0, {Keys(kCaseI, "abc")}, 700), "ABC", 3 + 700},
      {Image(0xC0, {}), "", 3},
      {{0xC0, 9}, "", 3},
  };
  for (const auto& t : cases) {
    NxCaseIString value("before");
    Bytes source = t.key;
    EXPECT_EQ(Mgr().Translate(kCaseI, &value, 8, 0, source.data(), kKeyForm, source.size(), 1), t.result);
    EXPECT_STREQ(value._pStr ? value._pStr : "", t.text);
  }
  NxIString plain;  // this type's keys are loaded as they stand
  Bytes source = KeyImage(kI, "ab");
  EXPECT_EQ(Mgr().Translate(kI, &plain, 8, 0, source.data(), kKeyForm, source.size(), 1), 6);
  EXPECT_STREQ(plain._pStr, "NZ");
}

// ---------------------------------------------------------------------------
// Comparison

struct Outcome {
  int sign, error;
  bool operator==(const Outcome& o) const { return sign == o.sign && error == o.error; }
};
std::ostream& operator<<(std::ostream& out, const Outcome& o) { return out << o.sign << "/" << o.error; }

Outcome Compare(char id, Bytes first, unsigned long len1, Bytes second, unsigned long len2, int options,
                unsigned long count = 1, unsigned char format = 1) {
  int error = 77;
  long r = Mgr().Cmp(id, len1, first.data(), len2, second.data(), static_cast<unsigned short>(options), count,
                     format, error);
  return {(r > 0) - (r < 0), error};
}

Bytes Disk(const string& text) { return Image(0x40, {text}); }

TEST(AlphaCompare, RowByRow) {
  auto key = [](const char* text) { return KeyImage(kI, text); };
  auto caseKey = [](const char* text) { return KeyImage(kCaseI, text); };
  const int off = kWildcardsOff, cut = kPastBuffer;
  const struct {
    const char* row;
    char id;
    Bytes first, second;
    int options;
    unsigned long len1;  // 0: all
    Outcome outcome;
  } cases[] = {
      {"pattern matches", kI, Disk("abc"), Disk("a*c"), 0, 0, {0, 0}},
      {"pattern fails after its start", kI, Disk("abd"), Disk("a*c"), 0, 0, {1, 0}},
      {"pattern fails in its start", kI, Disk("aad"), Disk("ab*"), 0, 0, {-1, 0}},
      {"pattern begins with its wildcard", kI, Disk("aaa"), Disk("?"), 0, 0, {1, 0}},
      {"escaped wildcard", kI, Disk("a*"), Disk("a\\*"), 0, 0, {0, 0}},
      {"key against the whole", kI, key("abc"), Disk("*"), 0, 0, {0, 0}},
      {"key against a pattern", kI, key("abc"), Disk("x*"), 0, 0, {0, cut}},
      {"texts", kI, Disk("ab"), Disk("aB"), 0, 0, {-1, 0}},
      {"texts that differ in an accent: their bytes decide", kI, Disk("\xE4"), Disk("a"), 0, 0, {1, 0}},
      {"the same without wildcards: equal", kI, Disk("\xE4"), Disk("a"), off, 0, {0, 0}},
      {"order values only turn wildcards off", kI, Disk("a*"), Disk("a*"), kOrderValuesOnly, 0, {0, 0}},
      {"a star is a star", kI, Disk("ab"), Disk("a*"), off, 0, {1, 0}},
      {"first cut, shorter than the second", kI, Disk("abcd"), Disk("abx1"), 0, 3 + 3, {0, cut}},
      {"first cut in its first character", kI, Disk("abcd"), Disk("xbcd"), 0, 3 + 1, {0, cut}},
      {"first cut to nothing", kI, Disk("abcd"), Disk("xbcd"), 0, 3, {0, cut}},
      {"head cut", kI, Disk("abcd"), Disk("xbcd"), 0, 2, {0, cut}},
      {"first cut, longer than the second", kI, Disk("abcdefg"), Disk("ab"), 0, 3 + 4, {1, 0}},
      {"key against a text: as far as the key reaches", kI, key("ab"), Disk("abc"), 0, 0, {0, cut}},
      {"key against a lesser text", kI, key("ab"), Disk("aac"), 0, 0, {1, cut}},
      {"empty key against a text", kI, key(""), Disk("a"), 0, 0, {-1, cut}},
      {"two keys, the first not longer", kI, key("ab"), key("ad"), 0, 0, {-1, cut}},
      {"two keys, the first a start of the second", kI, key("aa"), key("aac"), 0, 0, {0, cut}},
      {"two keys, the first longer", kI, key("aac"), key("aa"), 0, 0, {1, 0}},
      {"two keys without wildcards", kI, key("aa"), key("aac"), off, 0, {0, cut}},
      {"key against a text without wildcards: bytes", kI, key("aac"), Disk("aa"), off, 0, {-1, 0}},

      {"case does not count", kCaseI, Disk("aB"), Disk("Ab"), 0, 0, {0, 0}},
      {"accents count while wildcards are active", kCaseI, Disk("\xE4"), Disk("a"), 0, 0, {1, 0}},
      {"and not without", kCaseI, Disk("\xE4"), Disk("a"), off, 0, {0, 0}},
      {"pattern fails by an accent", kCaseI, Disk("\xE4x"), Disk("ay*"), 0, 0, {1, 0}},
      {"key against the whole", kCaseI, caseKey("abc"), Disk("*"), 0, 0, {0, 0}},
      {"key matches", kCaseI, caseKey("abc"), Disk("A*"), 0, 0, {0, cut}},
      {"key fails in the pattern's start", kCaseI, caseKey("abc"), Disk("b*"), 0, 0, {-1, cut}},
      {"key fails behind the wildcard", kCaseI, caseKey("abc"), Disk("a*d"), 0, 0, {0, cut}},
      {"wildcard first and not last", kCaseI, caseKey("abc"), Disk("*d"), 0, 0, {0, cut}},
      {"wildcard past the key", kCaseI, caseKey("ab"), Disk("abxy*"), 0, 0, {0, cut}},
      {"wildcard past the cut key", kCaseI, caseKey("abcd"), Disk("abx*"), 0, 3 + 3, {0, cut}},
      {"key against a text", kCaseI, caseKey("ab"), Disk("AC"), 0, 0, {-1, cut}},
      {"two keys", kCaseI, caseKey("aac"), caseKey("AA"), 0, 0, {1, 0}},
  };
  for (const auto& t : cases) {
    Bytes first = t.first;
    if (t.len1) first.resize(t.len1);
    EXPECT_EQ(Compare(t.id, first, t.len1, t.second, 0, t.options), t.outcome) << t.row << ", type " << +t.id;
  }
}

TEST(AlphaCompare, CutSecondOperand) {
  // The last byte that is there gives way to a terminator.
  Bytes second = Disk("abcd");
  second.resize(3 + 3);
  EXPECT_EQ(Compare(kI, Disk("ab"), 0, second, second.size(), 0), (Outcome{0, 0}));
  EXPECT_EQ(Compare(kI, Disk("abc"), 0, second, second.size(), 0), (Outcome{1, 0}));
  const string longText(300, 'x');
  for (unsigned long available : {253UL, 254UL}) {
    Bytes cut = Disk(longText);
    cut.resize(3 + available);
    EXPECT_EQ(Compare(kCaseI, Disk(longText), 0, cut, cut.size(), 0),
              available > 253 ? (Outcome{-1, kNotPossible}) : (Outcome{1, 0}));
  }
  EXPECT_EQ(Compare(kI, Disk("a"), 0, {0x40, 1}, 2, 0), (Outcome{0, kPastBuffer}));
}

TEST(AlphaCompare, Arrays) {
  const Bytes three = Image(0x40, {"a", "b", "c"}), other = Image(0x40, {"a", "b", "d"});
  const auto size = static_cast<unsigned long>(three.size());
  EXPECT_EQ(Compare(kI, three, 0, other, 0, 0, 0), (Outcome{0, 0}));
  EXPECT_EQ(Compare(kI, three, 0, other, 0, 0, 2), (Outcome{0, 0}));
  EXPECT_EQ(Compare(kI, three, size, other, size, 0, 3), (Outcome{-1, 0}));
  EXPECT_EQ(Compare(kI, three, 0, three, 0, 0, 4), (Outcome{0, kPastBuffer})) << "fewer texts than asked for";
  EXPECT_EQ(Compare(kI, Disk("b"), 0, three, 0, 0, 2), (Outcome{1, kPastBuffer}))
      << "the way to the next element is checked though the first differs";
  Bytes bigEndian = Image(0x40, {"b", "b"}, -1, true);
  EXPECT_EQ(Compare(kI, bigEndian, 7, bigEndian, 7, 0, 2, 2), (Outcome{0, 0}));

  NxCaseIString values[] = {"a", "", "C*"}, patterns[] = {"A", "", "c"};
  int error = 77;
  EXPECT_GT(Mgr().Cmp(kCaseI, 0, values, 0, patterns, 0, 3, 8, error), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Mgr().Cmp(kCaseI, 16, values, 24, patterns, 0, 3, 8, error), 0);
  EXPECT_EQ(error, kPastBuffer);
  EXPECT_EQ(Mgr().Cmp(kCaseI, 24, values, 7, patterns, 0, 1, 8, error), 0) << "no whole object";
  EXPECT_EQ(error, kPastBuffer);
  EXPECT_EQ(Mgr().Cmp(kCaseI, patterns + 2, values + 2, 0, 1, 8), 0) << "c matches C*";
  char* const text = values[1]._pStr;
  values[1]._pStr = reinterpret_cast<char*>(1);
  EXPECT_LT(Mgr().Cmp(kCaseI, 24, values, 24, patterns + 2, 0, 2, 8, error), 0)
      << "a decides, the rest is not read";
  values[1]._pStr = text;
  error = 77;
  EXPECT_EQ(Mgr().Hash(kI, 0, values, 3, 8, error), 0UL);
  EXPECT_EQ(error, 77);
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
  static Bytes Of(const void* image, unsigned char length) {
    auto* bytes = static_cast<const unsigned char*>(image);
    return image ? Bytes(bytes, bytes + length) : Bytes();
  }
  Bytes Lower() const { return Of(lower, lowerLen); }
  Bytes Upper() const { return Of(upper, upperLen); }
};

float Eval(char id, Bytes key, int relation, const Bytes* low, const Bytes* high, Bounds* bounds,
           int* relationOut = nullptr) {
  NxIdxBounds range = {};
  if (low)
    range = {const_cast<unsigned char*>(low->data()), const_cast<unsigned char*>(high->data()),
             static_cast<unsigned char>(low->size()), static_cast<unsigned char>(high->size())};
  auto word = static_cast<unsigned short>(relation);
  const float estimate =
      Mgr().EvalAndBound(id, low ? &range : nullptr, word, key.data(), 1, 1, bounds, nullptr);
  if (relationOut) *relationOut = word;
  return estimate;
}

TEST(AlphaBounds, ImagesByRelationAndWildcard) {
  const struct {
    Bytes key;
    int relation;
    Bytes lower, upper;
    int relationOut;
  } cases[] = {
      {Disk("ab"), 0x0001, KeyImage(kI, "ab"), KeyImage(kI, "ab"), 0x0001},
      {Disk("ab"), 0x8033, {}, KeyImage(kI, "ab"), 0x8003},
      {Disk("ab"), 0x0005, KeyImage(kI, "ab"), {}, 0x0005},
      {Disk("ab"), 0x0006, {}, {}, 0x0006},
      {Disk("a\xDF*x"), 0x0001, KeyImage(kI, "a\xDF"), Image(0xC0, {"\x4E\x9C\x9C\xFF"}), 0x0009},
      {Disk("?ab"), 0x0001, {}, {}, 0x0009},
      {Image(0x01, {"\xCC"}), 0x0001, KeyImage(kI, "a"), KeyImage(kI, "a"), 0x0001},
      {Image(0xC0, {"\x54\xFE"}), 0x0001, Image(0xC0, {"\x54\xFE"}), Image(0xC0, {"\x54\xFE"}), 0x0001},
      {Disk(""), 0x0001, Image(0xC0, {""}), Image(0xC0, {""}), 0x0001},
      {Image(0x40, {"abc"}, 0), 0x0001, Image(0xC0, {""}), Image(0xC0, {""}), 0x0001},
  };
  for (const auto& t : cases) {
    Bounds bounds;
    int relation = 0;
    Eval(kI, t.key, t.relation, nullptr, nullptr, &bounds, &relation);
    const string text(t.key.begin() + 3, t.key.end());
    EXPECT_EQ(bounds.Lower(), t.lower) << text;
    EXPECT_EQ(bounds.Upper(), t.upper) << text;
    EXPECT_EQ(relation, t.relationOut) << text;
  }
  Bounds present;
  present.lower = std::calloc(1, 7);
  present.lowerLen = 7;
  Eval(kI, Disk("ab"), 1, nullptr, nullptr, &present);
  EXPECT_EQ(present.Lower(), Bytes(7, 0));
  EXPECT_EQ(present.Upper(), KeyImage(kI, "ab"));
}

TEST(AlphaBounds, ImagesEndAt254Bytes) {
  for (size_t length : {249, 250, 251, 600}) {
    for (bool wildcard : {false, true}) {
      const string text(length, 'A');
      Bounds bounds;
      Eval(kCaseI, Disk(wildcard ? text + "*" : text), 1, nullptr, nullptr, &bounds);
      EXPECT_EQ(bounds.Lower(), KeyImage(kCaseI, text.substr(0, 250))) << length;
      string upper(std::min<size_t>(length, wildcard || length > 250 ? 249 : 250), '\x54');
      if (wildcard || length > 250) upper += '\xFF';
      EXPECT_EQ(bounds.Upper(), Image(0xC0, {upper})) << length << wildcard;
    }
  }
}

TEST(AlphaBounds, Estimates) {
  const Bytes low = Image(0xC0, {"AAAA"}), high = Image(0xC0, {"AAAK"});  // a span of 11 numbers
  const Bytes a = Image(0xC0, {"A"}), c = Image(0xC0, {"C"});
  const struct {
    const char* what;
    Bytes key;
    int relation;
    const Bytes *low, *high;
    double estimate;
  } cases[] = {
      {"equal", Image(0xC0, {"AAAC"}), 1, &low, &high, 1 / 11.0},
      {"less", Image(0xC0, {"AAAC"}), 2, &low, &high, 3 / 11.0},
      {"not greater", Image(0xC0, {"AAAC"}), 3, &low, &high, 4 / 11.0},
      {"greater", Image(0xC0, {"AAAC"}), 4, &low, &high, 8 / 11.0},
      {"below all", Image(0xC0, {"AAA1"}), 2, &low, &high, 0.0},
      {"above all", Image(0xC0, {"AAAZ"}), 2, &low, &high, 12 / 11.0},
      {"a start of three covers the range", Image(0xC0, {"AAA"}), 1, &low, &high, 13 / 11.0},
      {"two letters apart", Image(0xC0, {"B"}), 1, &a, &c, double(0xFF0001) / 0x02000001},
      {"empty key", Image(0xC0, {""}), 1, &a, &c, 1 / double(0x02000001)},
      {"no range", Image(0xC0, {"B"}), 1, nullptr, nullptr, 1.0},
      {"wildcard first", Disk("*"), 1, &a, &c, 1.0},
  };
  for (const auto& t : cases)
    EXPECT_FLOAT_EQ(Eval(kI, t.key, t.relation, t.low, t.high, nullptr), static_cast<float>(t.estimate))
        << t.what;

  // Folding case, what all three begin with is skipped first.
  const Bytes first = Image(0xC0, {"ABCAA"}), last = Image(0xC0, {"ABCKA"}), key = Image(0xC0, {"ABCCZ"});
  EXPECT_FLOAT_EQ(Eval(kCaseI, key, 2, &first, &last, nullptr),
                  float(0x02000000 - 0x410000 + 1) / 0x0A000001);
  EXPECT_FLOAT_EQ(Eval(kI, key, 2, &first, &last, nullptr), 3 / 11.0F);
}

/// What a term selects lies between its bounds. (Ranges by keys: accents, which count
/// only while wildcards are active, give ligatures another place.)
TYPED_TEST(AlphaTypes, BoundsAreSafe) {
  const char id = TestFixture::kId;
  std::mt19937 random(7);
  const string letters = "aAbs\xDF\x8C\xC0";
  auto word = [&](const string& alphabet) {
    string text(random() % 5, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    return text;
  };
  int selected = 0;
  for (int round = 0; round < 20000; ++round) {
    const bool equal = round % 2 == 0;
    const int relation = equal ? kRelationEqual : static_cast<int>(2 + random() % 4);
    const string text = word(letters), term = word(equal ? letters + "*?" : letters);
    const int sign = Compare(id, Disk(text), 0, Disk(term), 0, equal ? 0 : kWildcardsOff).sign;
    if (!(relation & (sign == 0 ? kRelationEqual : sign < 0 ? kRelationLess : kRelationGreater))) continue;
    ++selected;
    Bounds bounds;
    Eval(id, Disk(term), relation, nullptr, nullptr, &bounds);
    const Bytes key = KeyImage(id, text);
    ASSERT_TRUE(!bounds.lower || Compare(id, key, 0, bounds.Lower(), 0, kWildcardsOff).sign >= 0)
        << text << " " << term << relation;
    ASSERT_TRUE(!bounds.upper || Compare(id, key, 0, bounds.Upper(), 0, kWildcardsOff).sign <= 0)
        << text << " " << term << relation;
  }
  EXPECT_GT(selected, 5000);
}

// ---------------------------------------------------------------------------
// Any bytes: nothing is read or written outside the stated lengths (the sanitizers
// watch) and the outcome is one of those that there are.

TYPED_TEST(AlphaTypes, HostileImages) {
  const char id = TestFixture::kId;
  std::mt19937 random(11);
  const unsigned char headers[] = {0x40, 0x01, 0xC0, 0xC1, 0x20, 0xFF};
  auto image = [&](size_t most) {
    Bytes bytes(random() % most);
    const string alphabet("\0aA*?\\\xDF\x9C\xC5\xBD", 10);
    for (unsigned char& b : bytes) b = static_cast<unsigned char>(alphabet[random() % alphabet.size()]);
    if (bytes.size() > 0) bytes[0] = headers[random() % sizeof headers];
    if (bytes.size() > 2) bytes[2] = random() % 4 == 0 ? 1 : 0;
    if (bytes.size() > 1) bytes[1] = static_cast<unsigned char>(random() % (bytes.size() + 3));
    return bytes;
  };
  for (int round = 0; round < 30000; ++round) {
    Bytes a = image(12), b = image(12), out(random() % 12);
    const auto format = static_cast<unsigned char>(random() % 4 == 0 ? 0x82 : 1);
    if (!a.empty() && !b.empty()) {
      const int options[] = {0, kWildcardsOff, kOrderValuesOnly};
      const Outcome o = Compare(id, a, a.size(), b, b.size(), options[random() % 3], random() % 4, format);
      ASSERT_TRUE(o.error == 0 || o.error == kPastBuffer);
    }
    TypeParam values[3];
    const unsigned long n = random() % 4;
    ASSERT_LE(Mgr().Translate(id, out.data(), 0x81, out.size(), a.data(), format, a.size(), n),
              static_cast<int>(out.size()));
    Mgr().Translate(id, out.data(), 1, out.size(), a.data(), format, a.size(), n);
    Mgr().Translate(id, values, 8, 0, b.data(), format, b.size(), n);
    ASSERT_LE(Mgr().Translate(id, out.data(), 0x81, out.size(), values, 8, 0, n),
              static_cast<int>(out.size()));
    MemFile file(b.data(), static_cast<unsigned long>(b.size()));
    ASSERT_GE(Mgr().DiskLenGetFromMemFile(id, &file, format, n), 0);
    b.resize(3 + 65535);  // a key has no length but its own
    Bounds bounds;
    if (!a.empty()) Eval(id, b, static_cast<int>(random() % 8), &a, &a, &bounds);
    ASSERT_TRUE(bounds.lowerLen <= NxINDEX_MAX_KEYLEN && bounds.upperLen <= NxINDEX_MAX_KEYLEN);
  }
}

}  // namespace
