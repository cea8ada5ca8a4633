// Translation of strings: resizing, early to current, narrowing, index keys.

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtypes.h"

namespace {

using Bytes = std::vector<unsigned char>;

std::string lastReport;
void Keep(const char* expression, const char* path, int line) {
  lastReport = std::string(expression) + ", " + path + ", " + std::to_string(line);
}

Bytes Image(const NxString& s, unsigned char format) {
  Bytes image(s._nSize + 8);
  image.resize(StringStore(image.data(), &s, format, 1));
  return image;
}

/// Translates between stored images in buffers of exactly the stated sizes.
Bytes Stored(NxSlot::Translate* translate, const Bytes& source, unsigned char srcForm, unsigned char dstForm,
             unsigned long dstLength, int* result = nullptr, unsigned long n = 1) {
  Bytes src = source;
  Bytes dst(dstLength, 0xEE);
  int k = translate(dst.data(), dstForm, dstLength, src.data(), srcForm, src.size(), n);
  EXPECT_EQ(source, src) << "the source image is as it was";
  if (result) *result = k;
  return dst;
}

NxString Text(const char* text, unsigned char codeSet, unsigned char language) {
  NxString s(text);
  s._nLanguage = language;
  if (codeSet != 1) s.MapToCodeSet(codeSet);
  return s;
}

/// The key of a string, from memory, with the bytes that were written only.
Bytes Key(const NxString& s, unsigned char format, unsigned long room = 600) {
  NxString copy(s);
  Bytes key(room, 0xEE);
  key.resize(NxStringTranslate(key.data(), format | kFormatKey, room, &copy, kFormatMemory, 0, 1));
  return key;
}

}  // namespace

TEST(StringTranslate, ResizesToEveryLengthByCuttingOrZeroing) {
  Bytes image = Image(Text("abcdef", 1, 2), 1);
  for (unsigned long length = 1; length < image.size() + 6; ++length) {
    int result;
    Bytes dst = Stored(NxStringTranslate, image, 1, 1, length, &result);
    Bytes expected = image;
    expected.resize(length, 0);
    EXPECT_EQ(expected, dst) << length;
    EXPECT_EQ(std::min<unsigned long>(length, image.size()), static_cast<unsigned long>(result));
  }
}

TEST(StringTranslate, RefusesTwoStoredFormatsWithoutKeyForm) {
  NxAssertHandler before = NxSetAssertHandler(Keep);
  int result;
  Stored(NxStringTranslate, Image(Text("ab", 1, 1), 1), 1, 2, 20, &result);
  NxSetAssertHandler(before);
  EXPECT_EQ(0, result);
  EXPECT_EQ("\"format combination not supported\" && 0, src/nxtypes, 1509", lastReport);
}

TEST(StringTranslate, SubstitutesCodeSets) {
  Bytes image = Image(Text("abc", 1, 2), 1);
  EXPECT_EQ(0, Stored(NxStringTranslate, image, 0x21, 0x21, image.size())[2]) << "bit 5 drops it";
  image[2] = 0;
  EXPECT_EQ(1, Stored(NxStringTranslate, image, 0x41, 0x41, image.size())[2]) << "bit 6 names the native one";
  int result;
  Bytes key = Stored(NxStringTranslate, image, 1, 0x81, 9, &result);
  EXPECT_EQ(image, key) << "a text without code set has no key form";
}

TEST(StringTranslate, TurnsEarlyImagesIntoCurrentOnes) {
  const Bytes early = {4, 0, 'a', 'b', 'c', 0};
  const Bytes current = {7, 0, 0, 0, 'a', 'b', 'c', 0, 0xFF};
  for (unsigned long length = 1; length < 13; ++length) {
    int result;
    Bytes expected = current;
    expected.resize(length, 0);
    EXPECT_EQ(expected, Stored(NxStringTranslate, early, 1, 1, length, &result)) << length;
    EXPECT_EQ(std::min(length, 9UL), static_cast<unsigned long>(result));
  }
}

TEST(StringTranslate, OldStringsTurnCurrentImagesIntoEarlyOnes) {
  int result;
  Bytes dst = Stored(NxStringOldTranslate, {7, 0, 1, 2, 'a', 'b', 'c', 0, 0xFF}, 1, 1, 10, &result);
  EXPECT_EQ((Bytes{4, 0, 'a', 'b', 'c', 0, 0, 0, 0, 0}), dst);
  EXPECT_EQ(6, result);
  dst = Stored(NxStringOldTranslate, {0, 4, 'a', 'b', 'c', 0}, 2, 2, 4, &result);
  EXPECT_EQ((Bytes{0, 4, 'a', 'b'}), dst) << "an early image is resized as it is";
  EXPECT_EQ(4, result);
}

TEST(StringTranslate, NarrowsUnicodeTextsUnlessConfigured) {
  NxString s = Text("ab", 253, 2);
  unsigned short euro[] = {0x20AC, 'c', 0};
  s += NxString(euro);
  Bytes expected = {8, 0, 253, 2, 'a', 'b', 0x7F, 'c', 0, 0xFF};
  int result;
  Bytes dst = Stored(NxStringTranslate, Image(s, 1), 1, 1, 12, &result);
  EXPECT_EQ(10, result);
  dst.resize(10);
  EXPECT_EQ(expected, dst);
  dst = Stored(NxStringTranslate, Image(s, 2), 0x22, 0x22, 7, &result);
  EXPECT_EQ((Bytes{0, 8, 0, 2, 'a', 'b', 0x7F}), dst) << "units are read in the format's order, then cut";
  Bytes cut = Image(s, 1);
  cut.resize(8);
  dst = Stored(NxStringTranslate, cut, 1, 1, 7, &result);
  EXPECT_EQ((Bytes{8, 0, 253, 2, 'a', 'b', 0}), dst) << "a cut image stays one";
  EXPECT_EQ(6, result);
}

TEST(StringTranslate, CopiesUnderKeyFormReadInTheSourcesByteOrder) {
  Bytes dst = Stored(NxStringTranslate, {0, 4, 'a', 'b', 'c', 0}, 2, 0x81, 9);
  EXPECT_EQ((Bytes{7, 0, 0, 0, 'a', 'b', 'c', 0, 0xFF}), dst) << "early";
  dst = Stored(NxStringTranslate, Image(Text("ab", 253, 2), 1), 1, 0xA2, 8);
  EXPECT_EQ((Bytes{0, 6, 0, 2, 'a', 'b', 0, 0xFF}), dst) << "narrowed";
}

TEST(StringTranslate, KeyHoldsTheOrderValues) {
  NxString s = Text(
      "Stra\xdf"
      "e",
      1, 2);
  NxStringIterator it(s);
  Bytes expected;
  while (unsigned short order = it.GetNextOrder(1)) {
    expected.push_back(order & 0xFF);
    expected.push_back(order >> 8);
  }
  expected.insert(expected.end(), {0x00, 0xFF});
  expected.insert(expected.begin(), {static_cast<unsigned char>(expected.size() + 2), 0, 254, 1});
  EXPECT_EQ(expected, Key(s, 1));

  Bytes swapped = Key(s, 2);
  ASSERT_EQ(expected.size(), swapped.size());
  EXPECT_EQ(expected[0], swapped[1]);
  for (std::size_t i = 4; i + 2 < expected.size(); i += 2)
    EXPECT_TRUE(expected[i] == swapped[i + 1] && expected[i + 1] == swapped[i]) << i;
  EXPECT_EQ(0xFF, swapped.back());
}

TEST(StringTranslate, KeyIsTheSameFromEveryForm) {
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (int n = random() % 12; n > 0; --n) text += "abcChHlLn\xf1 -9\xe4\xdf\xe5\xc5 \xe6"[random() % 20];
    NxString s = Text(text.c_str(), 1, 1 + random() % 7);
    NxString wide(s);
    wide.MapToCodeSet(253);
    for (unsigned char format : {1, 2}) {
      Bytes key = Key(s, format);
      EXPECT_EQ(key, Key(wide, format)) << text;
      for (const NxString* source : {&s, &wide}) {
        int result;
        Bytes stored = Stored(NxStringTranslate, Image(*source, format), format, format | 0x80, 600, &result);
        stored.resize(result);
        EXPECT_EQ(key, stored) << text;
      }
    }
  }
}

TEST(StringTranslate, CutKeyReadsAsLongerThanItsBuffer) {
  NxString s = Text("abcdef", 1, 1);
  Bytes whole = Key(s, 1);
  for (unsigned long room = 0; room < whole.size() + 4; ++room) {
    Bytes key = Key(s, 1, room);
    if (room < 4) {
      EXPECT_EQ(0u, key.size());
    } else if (room >= whole.size()) {
      EXPECT_EQ(whole, key);
    } else {
      std::size_t size = room / 2 * 2;
      ASSERT_EQ(size, key.size());
      EXPECT_EQ(size, static_cast<std::size_t>(key[0])) << "counts the terminator that is missing";
      EXPECT_EQ(Bytes(whole.begin() + 2, whole.begin() + size), Bytes(key.begin() + 2, key.end()));
    }
  }
}

TEST(StringTranslate, KeyOfATruncatedImageIsCutThere) {
  Bytes image = Image(Text("abcdef", 1, 1), 1);
  Bytes whole = Key(Text("abcdef", 1, 1), 1);
  for (unsigned long length = 4; length < image.size(); ++length) {
    Bytes source(image.begin(), image.begin() + length);
    int result;
    Bytes key = Stored(NxStringTranslate, source, 1, 0x81, 100, &result);
    key.resize(result);
    if (length + 1 == image.size()) {
      EXPECT_EQ(whole, key) << "only the last byte of the trailer is missing";
      continue;
    }
    unsigned long units = std::min(length - 4, 6UL);
    ASSERT_EQ(4 + 2 * units, key.size()) << length;
    EXPECT_EQ(4 + 2 * units, static_cast<unsigned long>(key[0]));
  }
}

TEST(StringTranslate, MarksAKeyWhoseCollationChanges) {
  unsigned short text[] = {'a', 0x4E00, 'b', 0};
  Bytes key = Key(NxString(text), 1);
  ASSERT_EQ(8u, key.size());
  EXPECT_EQ(0x81, key[3]);
  EXPECT_EQ((Bytes{0x00, 0xFF}), Bytes(key.end() - 2, key.end()));
  unsigned short han[] = {0x4E00, 0};
  EXPECT_EQ(20, Key(NxString(han), 1)[3]) << "the first character chooses the collation";
}

TEST(StringTranslate, KeyOfNullIsTheNullMarker) {
  NxString null = Text("", 1, 254);
  EXPECT_EQ((Bytes{4, 0, 254, 0, 0x00, 0xFF}), Key(null, 1));
  EXPECT_EQ((Bytes{4, 0, 254, 1, 0x00, 0xFF}), Key(Text("", 1, 1), 1));
}

TEST(StringTranslate, SeveralStringsFollowOneAnother) {
  NxString strings[2] = {Text("ab", 1, 1), Text("c", 253, 4)};
  Bytes key(100);
  key.resize(NxStringTranslate(key.data(), 0x81, key.size(), strings, 8, 0, 2));
  Bytes expected = Key(strings[0], 1);
  Bytes second = Key(strings[1], 1);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(expected, key);

  NxString loaded[3];
  EXPECT_EQ(static_cast<int>(key.size()) + 6,
            NxStringTranslate(loaded, 8, 0, key.data(), 0x81, key.size(), 3));
  EXPECT_EQ(254, loaded[1]._nCodeSet);
  EXPECT_EQ(2, loaded[0].Len());
  EXPECT_EQ(1, loaded[1].Len());
  EXPECT_EQ(0, loaded[2]._nSize);
  EXPECT_EQ(4, loaded[2]._nLanguage) << "a string without image takes what was read last";
}

TEST(StringTranslate, LoadsACutKeyAsFarAsItGoes) {
  Bytes whole = Key(Text("abcd", 1, 1), 1);
  for (unsigned long length = 6; length <= whole.size(); length += 2) {
    Bytes key = Key(Text("abcd", 1, 1), 1, length);
    NxString loaded;
    NxStringTranslate(&loaded, 8, 0, key.data(), 0x81, key.size(), 1);
    EXPECT_EQ(std::min((length - 4) / 2, 4UL), loaded.Len()) << length;
  }
}

TEST(StringTranslate, StoringIntoASmallBufferCuts) {
  NxString s = Text("abcdef", 1, 1);
  Bytes image = Image(s, 1);
  for (unsigned long length = 0; length < image.size() + 3; ++length) {
    Bytes dst(length, 0xEE);
    int k = NxStringTranslate(dst.data(), 1, length, &s, 8, 0, 1);
    Bytes expected = image;
    expected.resize(length, 0);
    EXPECT_EQ(expected, dst);
    EXPECT_EQ(static_cast<int>(std::min<unsigned long>(length, image.size())), k);
  }
}

TEST(StringTranslate, StoringAnArrayOfMoreThan65535BytesFillsTheBuffer) {
  NxString strings[3];
  for (auto& s : strings) s = Text(std::string(30000, 'x').c_str(), 1, 1);
  constexpr unsigned long kBytes = 3 * 30006;
  for (unsigned long length : {kBytes - 1, kBytes}) {
    Bytes dst(length, 0xEE);
    NxStringTranslate(dst.data(), 1, length, strings, 8, 0, 3);
    EXPECT_EQ('x', dst[kBytes - 3]) << length;
  }
}

TEST(StringTranslate, AnOddByteOfAWideTextIsTheLowHalfOfACharacter) {
  Bytes even = Image(Text(std::string(551, 'a').c_str(), kCodeSetUnicode, 1), 1);
  Bytes odd = even;
  odd.erase(odd.end() - 3);
  --odd[0];
  int size = 0;
  EXPECT_EQ(Stored(NxStringTranslate, even, 1, 0x81, 3000, &size),
            Stored(NxStringTranslate, odd, 1, 0x81, 3000));
  EXPECT_EQ(4 + 1102 + 2, size);
}

TEST(StringTranslate, ReadsNothingBehindAnyImage) {
  std::mt19937 random(11);
  for (int round = 0; round < 20000; ++round) {
    Bytes source(random() % 24);
    for (auto& byte : source) byte = random() % 3 ? random() % 8 : random();
    if (source.size() > 2 && random() % 2) source[2] = random() % 2 ? 1 : 253;
    unsigned char form = (random() % 2 ? 1 : 2) | (random() % 2 ? 0x80 : 0);
    unsigned long n = 1 + random() % 3;
    Stored(NxStringTranslate, source, form, form, random() % 40, nullptr, n);
    Stored(NxStringTranslate, source, form & 15, form | 0xC0, random() % 40, nullptr, n);
    NxString loaded[3];
    NxStringTranslate(loaded, 8, 0, source.data(), form, source.size(), n);
  }
}
