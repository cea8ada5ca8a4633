// What only the images of strings have: sizes of keys and in files, lengths at their
// limits, and odd bytes. The rest is in types/strings_test.cpp.
#include <gtest/gtest.h>

#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtyphash.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

Block Stored(const NxString* strings, unsigned long n, unsigned char format) {
  Block image(static_cast<unsigned long>(StringSizeGet(strings, 8, format, n)));
  StringStore(image.Data(), strings, format, n);
  return image;
}
TEST(StringImage, LoadKeepsABufferOnlyOfTheRightSize) {
  const NxString strings[] = {Narrow("abc"), Wide(u"a")};
  const Block image = Stored(strings, 2, 2);
  for (const char* before : {"", "ab", "xyz", "longer"}) {
    NxString loaded[] = {NxString(before), NxString(before)};
    StringLoad(loaded, image.Data(), 2, 2);
    EXPECT_EQ(Buffer(loaded[0]), std::string("abc\0", 4));
    EXPECT_EQ(Buffer(loaded[1]), std::string("a\0\0\0", 4));
  }
}

TEST(StringImage, OfOddBuffersIsDefinedToTheLastByte) {
  NxString s("123456"), loaded;
  s.CopyMapped(NxString("ab"), 253, 2);  // seven bytes of buffer hold 16-bit units
  ASSERT_EQ(s._nSize, 7);
  EXPECT_EQ(Str(Stored(&s, 1, 1)), std::string("\x09\0\xFD\x01\x61\0\x62\0\0\0\xFF", 11));
  EXPECT_EQ(Str(Stored(&s, 1, 2)), std::string("\0\x09\xFD\x01\0\x61\0\x62\0\0\xFF", 11));
  StringLoad(&loaded, Stored(&s, 1, 2).Data(), 2, 1);
  EXPECT_EQ(Text16(loaded), u"ab");
  const NxString zero("a\0b", 3);  // the whole buffer is stored
  EXPECT_EQ(Str(Stored(&zero, 1, 1)), StringImage(std::string("a\0b", 3)));
  // An odd byte of a wide text is the low half of a character.
  const std::string even = StringImage(Units(551, u'a'), 253);
  std::string odd = even;
  odd.erase(odd.size() - 3, 1);
  --odd[0];
  Block keys[2] = {Block(3000), Block(3000)};
  for (int i : {0, 1}) {
    const Block source = Exactly(i ? odd : even);
    EXPECT_EQ(NxStringTranslate(keys[i].Data(), 0x81, 3000, source.Data(), 1, source.Size(), 1),
              4 + 1102 + 2);
  }
  EXPECT_TRUE(keys[0] == keys[1]);
}

TEST(StringImage, TheLongestTexts) {
  for (const unsigned long length : {65530UL, 65531UL, 65532UL}) {
    const NxString s(std::string(length, 'x').c_str());
    const unsigned long kept = std::min(length, 65531UL);  // what the length field can say
    Block image(kept + 6);
    EXPECT_EQ(StringSizeGet(&s, 8, 1, 1), static_cast<int>(kept + 6));
    EXPECT_EQ(StringStore(image.Data(), &s, 1, 1), static_cast<int>(kept + 6 - 65536));
    NxString loaded;
    EXPECT_EQ(StringLoad(&loaded, image.Data(), 1, 1), static_cast<int>(kept + 6 - 65536));
    EXPECT_EQ(loaded.Len(), kept);
  }
  std::vector<NxString> three(3, NxString(std::string(30000, 'x').c_str()));
  constexpr unsigned long kBytes = 3 * 30006;
  Block image(kBytes);
  EXPECT_EQ(StringSizeGet(three.data(), 8, 1, 3), static_cast<int>(kBytes));
  EXPECT_EQ(StringStore(image.Data(), three.data(), 1, 3), static_cast<int>(kBytes - 65536));  // totals wrap
  for (unsigned long length : {kBytes - 1, kBytes}) {
    Block dst(length);
    NxStringTranslate(dst.Data(), 1, length, three.data(), 8, 0, 3);
    EXPECT_EQ('x', dst.Data()[kBytes - 3]) << length;
  }
}

TEST(StringImage, DamagedLengthsLoadAsEmpty) {
  for (int n = 0; n <= 4; ++n) {
    std::string bytes = {static_cast<char>(n), 0, 1, 2, 3, '\xFF'};
    bytes.resize(static_cast<unsigned>(n) + 2);
    if (n > 0) bytes.back() = '\xFF';
    const Block image = Exactly(bytes);
    NxString s("old");
    EXPECT_EQ(StringLoad(&s, image.Data(), 1, 1), n + 2);
    EXPECT_EQ(s.Len(), 0);
    EXPECT_GT(StringSizeGet(image.Data(), 0, 0x81, 1), 0);
  }
}

TEST(StringImage, SizesOfKeys) {
  const struct {
    NxString s;
    unsigned char format;
    int inMemory, stored;
  } cases[] = {
      {Narrow("abc"), 0x81, 5 * 4 + 4, 7 * 4 + 2},
      {Wide(u"abc"), 0x81, 8 * 2 + 4, 10 * 2 + 2},
      {Narrow("abc", 0), 0x81, 9, 9},
      {Narrow("abc", 0), 0xC1, 5 * 4 + 4, 7 * 4 + 2},
      {Narrow("abc"), 0xA1, 9, 9},
      {Narrow("abc"), 0x21, 9, 9},
      {Narrow(std::string(20000, 'x')), 0x81, 20002 * 4 % 65536 + 4, 20004 * 4 % 65536 + 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(StringSizeGet(&c.s, 8, c.format, 1), c.inMemory);
    EXPECT_EQ(StringSizeGet(Stored(&c.s, 1, 1).Data(), 0, c.format, 1), c.stored);
  }
}

TEST(StringImage, SizesFromAFile) {
  const NxString strings[] = {NxString("abc"), NxString(), Wide(u"ab")};
  const Block image = Stored(strings, 3, 1);  // 9, 6 and 10 bytes
  MemFile whole(image.Data(), image.Size());
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 0x81, 1), 7 * 4 + 2);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 0x81, 3), 30 + 18 + 18);
  whole.Seek(9, 0, nullptr, 0);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 1, 2), 16);
  for (unsigned long cut = 0; cut < 15; ++cut) {  // what cannot be read counts as the largest
    const Block bytes(image.Data(), cut);
    MemFile file(bytes.Data(), cut);
    EXPECT_EQ(StringSizeGetFromMemFile(&file, 1, 3), cut == 0 ? 0 : cut < 9 ? 3 * 65535 : 2 * 65535) << cut;
    EXPECT_EQ(StringSizeGetFromMemFile(&file, 1, 1), cut == 0 ? 0 : cut == 1 ? 65535 : 9) << cut;
    EXPECT_EQ(StringOldSizeGetFromMemFile(&file, 1, 3), cut < 2 ? 0 : 9) << cut;
  }
}

TEST(EarlyImage, StoresWhatCodeSet1Has) {
  const NxString strings[] = {NxString("ab"), NxString(), Wide(u"\u00E9\u4E00")};
  Block image(static_cast<unsigned long>(StringOldSizeGet(strings, 8, 1, 3)));
  EXPECT_EQ(StringOldStore(image.Data(), strings, 1, 3), 9);
  EXPECT_EQ(Str(image), EarlyImage({"ab", "", "\xE9\x7F"}));
  // It loads without knowing what type it is of; what the block does not have is empty.
  const Block early = Exactly(EarlyImage({"ab", "c"}, 2));
  NxString loaded[] = {Wide(u"x"), NxString("y"), NxString("z")};
  EXPECT_EQ(StringLoad(loaded, early.Data(), 2, 3), 7);
  EXPECT_EQ(Text(loaded[0]) + Text(loaded[1]) + Text(loaded[2]), "abc");
  EXPECT_TRUE(loaded[0]._nCodeSet == 1 && loaded[0]._nLanguage == 1);
  EXPECT_EQ(StringSizeGet(early.Data(), 0, 2, 3), 7);
}

TEST(StringKeys, OfSeveralStringsFollowOneAnother) {
  NxString strings[] = {Narrow("ab"), String(u"c", 253, 4)}, loaded[3];
  Block key(100);
  const int size = NxStringTranslate(key.Data(), 0x81, key.Size(), strings, 8, 0, 2);
  EXPECT_EQ(NxStringTranslate(loaded, 8, 0, key.Data(), 0x81, static_cast<unsigned long>(size), 3), size + 6);
  EXPECT_EQ(loaded[1]._nCodeSet, 254);
  EXPECT_EQ(loaded[0].Len() * 10 + loaded[1].Len(), 21);
  EXPECT_EQ(loaded[2]._nSize, 0);
  EXPECT_EQ(loaded[2]._nLanguage, 4) << "a string without image takes what was read last";
  for (unsigned long length = 0; length < static_cast<unsigned long>(size); ++length) {
    const Block cut(key.Data(), length);  // nothing is read behind it
    NxStringTranslate(loaded, 8, 0, cut.Data(), 0x81, length, 3);
    EXPECT_LE(loaded[0].Len() * 10 + loaded[1].Len(), 21);
  }
}

TEST(StringCompare, CutTextsThatNeedMoreThanTheWorkArea) {
  const auto compare = [](const std::string& a, const std::string& b) {
    const Block x = Exactly(a), y = Exactly(b);
    int error = 77;
    const long order = StringCompare(1, x.Size(), x.Data(), y.Size(), y.Data(), 0, 1, error);
    return std::pair<int, int>(Sign(order), error);
  };
  const std::string text(254, 'a'), most = StringImage(text), more = StringImage(text + "b");
  const std::string cut = more.substr(0, more.size() - 3);
  EXPECT_EQ(compare(cut, most), std::make_pair(-1, kNotPossible));
  EXPECT_EQ(compare(most, cut), std::make_pair(-1, kNotPossible));
  EXPECT_EQ(compare(most.substr(0, most.size() - 3), most), std::make_pair(0, kPastBuffer));
  EXPECT_EQ(compare(more.substr(0, more.size() - 2), more), std::make_pair(0, kPastBuffer));
  const std::string longText(40000, 'x');
  EXPECT_EQ(compare(StringImage(longText), StringImage(longText + "y")), std::make_pair(-1, 0));
  int error = 77;
  const std::string longCut = StringImage(std::string(300, 'a')).substr(0, 297);
  EXPECT_EQ(StringHash(1, longCut.size(), Exactly(longCut).Data(), 1, error), 0U);
  EXPECT_EQ(error, kNotPossible);
}

}  // namespace
