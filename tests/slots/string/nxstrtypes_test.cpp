// The NxString type: its stored images byte for byte, their sizes, damaged images,
// life cycle and string arrays.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "nxconv.h"
#include "nxlang.h"
#include "nxtypes.h"
#include "support/strings.h"

namespace {

/// A copy of the bytes in an allocation of just their size, in which the sanitizer
/// sees every read past them.
struct Exact {
  explicit Exact(const Bytes& from) : bytes(new unsigned char[from.size()]), size(from.size()) {
    std::copy(from.begin(), from.end(), bytes.get());
  }
  std::unique_ptr<unsigned char[]> bytes;
  unsigned long size;
};

Bytes Stored(const NxString* strings, unsigned long n, unsigned char format,
             NxSlot::Store* store = StringStore, NxSlot::SizeGet* sizeGet = StringSizeGet) {
  Exact image(Bytes(sizeGet(strings, 8, format, n)));
  EXPECT_EQ(store(image.bytes.get(), strings, format, n), static_cast<int>(image.size));
  EXPECT_EQ(sizeGet(image.bytes.get(), 0, format, n), static_cast<int>(image.size));
  return Bytes(image.bytes.get(), image.bytes.get() + image.size);
}
Bytes Stored(const NxString& s, unsigned char format) { return Stored(&s, 1, format); }

TEST(StringImage, Bytes) {
  const NxString empty(3, 7), text = Narrow("abc", 4, 5), terminator = Narrow("");
  const NxString wide = Wide(u"AB");
  const struct {
    std::vector<NxString> strings;
    unsigned char format;
    Bytes image;
  } cases[] = {
      {{empty}, 1, {4, 0, 3, 7, 0, 0xFF}},
      {{empty}, 2, {0, 4, 3, 7, 0, 0xFF}},
      {{terminator}, 1, {4, 0, 1, 2, 0, 0xFF}},
      {{text}, 1, {7, 0, 4, 5, 'a', 'b', 'c', 0, 0xFF}},
      {{text}, 0x32, {0, 7, 4, 5, 'a', 'b', 'c', 0, 0xFF}},
      {{wide}, 2, {0, 8, 253, 2, 0, 'A', 0, 'B', 0, 0xFF}},
      {{wide}, 8, {8, 0, 253, 2, 'A', 0, 'B', 0, 0, 0xFF}},
      {{text, empty, wide}, 1, {7, 0,    4, 5, 'a', 'b', 'c', 0, 0xFF, 4, 0, 3,   7,
                                0, 0xFF, 8, 0, 253, 2,   'A', 0, 'B',  0, 0, 0xFF}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto n = c.strings.size();
    EXPECT_EQ(Stored(c.strings.data(), n, c.format), c.image);
    const Exact image(c.image);
    std::vector<NxString> loaded(n, NxString("old"));
    EXPECT_EQ(StringLoad(loaded.data(), image.bytes.get(), c.format, n), static_cast<int>(c.image.size()));
    for (size_t i = 0; i < n; ++i) {
      const bool isEmpty = c.strings[i].IsEmpty();
      EXPECT_EQ(Buffer(loaded[i]), isEmpty ? "" : Buffer(c.strings[i]));
      EXPECT_EQ(loaded[i]._nCodeSet, c.strings[i]._nCodeSet);
      EXPECT_EQ(loaded[i]._nLanguage, c.strings[i]._nLanguage);
    }
  }
  const NxString zero("a\0b", 3);  // the whole buffer is stored
  NxString null, loaded;
  EXPECT_EQ(Stored(zero, 1), (Bytes{7, 0, 1, 1, 'a', 0, 'b', 0, 0xFF}));
  StringLoad(&loaded, Stored(zero, 1).data(), 1, 1);
  EXPECT_EQ(Buffer(loaded), Buffer(zero));
  null.SetNullValue();
  EXPECT_EQ(Stored(null, 1), (Bytes{4, 0, 0, 254, 0, 0xFF}));
  EXPECT_EQ(StringNullSizeGet(3), 18);
}

TEST(StringImage, LoadKeepsABufferOnlyOfTheRightSize) {
  const NxString strings[] = {Narrow("abc"), Wide(u"a")};
  const Bytes image = Stored(strings, 2, 2);
  for (const char* before : {"", "ab", "xyz", "longer"}) {
    NxString loaded[] = {NxString(before), NxString(before)};
    StringLoad(loaded, image.data(), 2, 2);
    EXPECT_EQ(Buffer(loaded[0]), std::string("abc\0", 4));
    EXPECT_EQ(Buffer(loaded[1]), std::string("a\0\0\0", 4));
  }
}

TEST(StringImage, OfOddBuffersIsDefinedToTheLastByte) {
  NxString s("123456");
  s.CopyMapped(NxString("ab"), 253, 2);  // seven bytes of buffer hold 16-bit units
  ASSERT_EQ(s._nSize, 7);
  EXPECT_EQ(Stored(s, 1), (Bytes{9, 0, 253, 1, 'a', 0, 'b', 0, 0, 0, 0xFF}));
  EXPECT_EQ(Stored(s, 2), (Bytes{0, 9, 253, 1, 0, 'a', 0, 'b', 0, 0, 0xFF}));
  NxString loaded;
  StringLoad(&loaded, Stored(s, 2).data(), 2, 1);
  EXPECT_EQ(Text16(loaded), u"ab");
}

TEST(StringImage, TheLongestTexts) {
  for (const unsigned long length : {65530UL, 65531UL, 65532UL}) {
    const NxString s(std::string(length, 'x').c_str());
    const unsigned long kept = std::min(length, 65531UL);  // what the length field can say
    Exact image(Bytes(kept + 6));
    EXPECT_EQ(StringSizeGet(&s, 8, 1, 1), static_cast<int>(kept + 6));
    EXPECT_EQ(StringStore(image.bytes.get(), &s, 1, 1), static_cast<int>(kept + 6 - 65536));
    NxString loaded;
    EXPECT_EQ(StringLoad(&loaded, image.bytes.get(), 1, 1), static_cast<int>(kept + 6 - 65536));
    EXPECT_EQ(loaded.Len(), kept);
  }
  const std::vector<NxString> three(3, NxString(std::string(30000, 'x').c_str()));
  Bytes image(3 * 30006);
  EXPECT_EQ(StringSizeGet(three.data(), 8, 1, 3), 90018);
  EXPECT_EQ(StringStore(image.data(), three.data(), 1, 3), 90018 - 65536);  // totals wrap, sizes do not
}

TEST(StringImage, DamagedLengths) {
  for (int n = 0; n <= 4; ++n) {
    Bytes bytes = {static_cast<unsigned char>(n), 0, 1, 2, 3, 0xFF};
    bytes.resize(n + 2);
    if (n > 0) bytes.back() = 0xFF;
    const Exact image(bytes);
    NxString s("old");
    EXPECT_EQ(StringLoad(&s, image.bytes.get(), 1, 1), n + 2);
    EXPECT_EQ(s.Len(), 0);
    EXPECT_EQ(StringSizeGet(image.bytes.get(), 0, 0x81, 1) > 0, true);
  }
  const Exact odd({9, 0, 253, 1, 'a', 0, 'b', 0, 'c', 0, 0xFF});
  NxString s;
  EXPECT_EQ(StringLoad(&s, odd.bytes.get(), 1, 1), 11);
  EXPECT_EQ(Text16(s), u"ab");
}

TEST(StringImage, RandomImagesWithinTheirLength) {
  std::mt19937 random(3);
  for (int round = 0; round < 20000; ++round) {
    const unsigned long n = random() % 40;
    Bytes bytes(n + 2);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random() % 4 ? random() : 0);
    bytes[0] = static_cast<unsigned char>(n);
    bytes[1] = 0;
    const Exact image(bytes);
    NxString s[3];
    StringLoad(s, image.bytes.get(), 1, bytes.back() == 0 ? 3 : 1);
    ASSERT_LE(s[0].Len(), n);
    MemFile file(image.bytes.get(), image.size);
    StringSizeGetFromMemFile(&file, static_cast<unsigned char>(random()), 3);
    StringOldSizeGetFromMemFile(&file, 1, 3);
  }
}

TEST(StringImage, SizesOfKeys) {
  const NxString none = Narrow("abc", 0), text = Narrow("abc"), wide = Wide(u"abc"), key = Wide(u"a");
  const struct {
    NxString s;
    unsigned char format;
    int inMemory, stored;
  } cases[] = {
      {text, 0x81, 5 * 4 + 4, 7 * 4 + 2},
      {wide, 0x81, 8 * 2 + 4, 10 * 2 + 2},
      {none, 0x81, 9, 9},
      {none, 0xC1, 5 * 4 + 4, 7 * 4 + 2},
      {text, 0xA1, 9, 9},
      {text, 0x21, 9, 9},
      {Narrow(std::string(20000, 'x')), 0x81, 20002 * 4 % 65536 + 4, 20004 * 4 % 65536 + 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(StringSizeGet(&c.s, 8, c.format, 1), c.inMemory);
    Bytes image(StringSizeGet(&c.s, 8, 1, 1));
    StringStore(image.data(), &c.s, 1, 1);
    EXPECT_EQ(StringSizeGet(image.data(), 0, c.format, 1), c.stored);
  }
}

TEST(StringImage, SizesFromAFile) {
  const NxString strings[] = {NxString("abc"), NxString(), Wide(u"ab")};
  Bytes image = Stored(strings, 3, 1);  // 9, 6 and 10 bytes
  MemFile whole(image.data(), image.size());
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 1, 1), 9);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 1, 3), 25);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 0x81, 1), 7 * 4 + 2);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 0x81, 3), 30 + 18 + 18);
  whole.Seek(9, 0, nullptr, 0);
  EXPECT_EQ(StringSizeGetFromMemFile(&whole, 1, 2), 16);
  for (const unsigned long cut : {2UL, 5UL, 8UL}) {  // of the first image
    MemFile file(image.data(), cut);
    EXPECT_EQ(StringSizeGetFromMemFile(&file, 1, 1), 9);
    EXPECT_EQ(StringSizeGetFromMemFile(&file, 1, 3), 3 * 65535);
  }
  MemFile second(image.data(), 13);
  EXPECT_EQ(StringSizeGetFromMemFile(&second, 1, 3), 2 * 65535);
  MemFile none(image.data(), 0), one(image.data(), 1);
  EXPECT_EQ(StringSizeGetFromMemFile(&none, 1, 2), 0);
  EXPECT_EQ(StringSizeGetFromMemFile(&one, 1, 2), 2 * 65535);
  EXPECT_EQ(StringOldSizeGetFromMemFile(&none, 1, 2), 0);
  EXPECT_EQ(StringOldSizeGetFromMemFile(&one, 1, 2), 0);
  unsigned char early[] = {0, 5, 'a', 'b', 0, 'c', 0};
  MemFile old(early, sizeof early);
  EXPECT_EQ(StringSizeGetFromMemFile(&old, 2, 2), 7);
  EXPECT_EQ(StringOldSizeGetFromMemFile(&old, 2, 2), 7);
}

TEST(EarlyImage, StoresAndLoads) {
  const NxString strings[] = {NxString("ab"), NxString(), Wide(u"\u00E9\u4E00")};
  EXPECT_EQ(Stored(strings, 3, 1, StringOldStore, StringOldSizeGet),
            (Bytes{7, 0, 'a', 'b', 0, 0, 0xE9, 0x7F, 0}));
  EXPECT_EQ(Stored(strings, 1, 2, StringOldStore, StringOldSizeGet), (Bytes{0, 3, 'a', 'b', 0}));
  const Exact image({0, 5, 'a', 'b', 0, 'c', 0});
  NxString loaded[] = {Wide(u"x"), NxString("y"), NxString("z")};
  EXPECT_EQ(StringLoad(loaded, image.bytes.get(), 2, 3), 7);
  EXPECT_EQ(Text(loaded[0]), "ab");
  EXPECT_EQ(loaded[0]._nCodeSet, 1);
  EXPECT_EQ(loaded[0]._nLanguage, 1);
  EXPECT_EQ(Text(loaded[1]), "c");
  EXPECT_EQ(Text(loaded[2]), "");  // the block has no third text
  EXPECT_EQ(StringSizeGet(image.bytes.get(), 0, 2, 3), 7);
}

TEST(StringLife, ArraysOfStrings) {
  for (const unsigned long n : {0UL, 1UL, 3UL}) {
    auto* strings = static_cast<NxString*>(NxStringCreate(n));
    EXPECT_EQ(strings[0]._pBuffer, nullptr);
    strings[0] = "text";
    EXPECT_EQ(NxStringDelete(strings, n), 0);
    auto* nulls = static_cast<NxString*>(NxStringDefaultValue(n, 1));
    EXPECT_EQ(nulls[0].IsNullValue(), n > 0);
    NxStringDelete(nulls, n);
    auto* empties = static_cast<NxString*>(NxStringDefaultValue(n, 0));
    EXPECT_EQ(empties[0].IsNullValue(), 0);
    NxStringDelete(empties, n);
  }
  EXPECT_EQ(NxStringDelete(nullptr, 0) + NxStringDelete(nullptr, 5), 0);

  NxString src[] = {NxString("a"), NxString("b")};
  alignas(NxString) unsigned char place[2 * sizeof(NxString)];
  auto* raw = reinterpret_cast<NxString*>(place);
  NxStringCopy(raw, src, 2, 0);
  EXPECT_EQ(Text(raw[0]) + Text(raw[1]), "ab");
  NxStringAssignment(raw, src + 1, 2, 1);
  EXPECT_EQ(Text(raw[0]) + Text(raw[1]), "bb");
  NxStringAssignment(raw, raw, 2, 1);
  EXPECT_EQ(Text(raw[0]) + Text(raw[1]), "bb");
  NxStringDestructor(raw, 2, 0);
  NxStringConstructor(raw, 2, 0);
  EXPECT_EQ(raw[1]._pBuffer, nullptr);
  NxStringDestructor(raw, 2, 0);
}

TEST(StringLife, ConversionCopies) {
  NxString values[] = {Wide(u"a"), NxString("b")};
  values[1].SetNullValue();
  NxTypeConvertData* record = NxStringConvertToNxString(values, 2);
  EXPECT_EQ(record->count, 2U);
  EXPECT_EQ(Text16(*record->GetString(0)), u"a");
  auto* back = static_cast<NxString*>(NxStringConvertFromNxString(record, 3));
  EXPECT_EQ(Text16(back[0]), u"a");
  EXPECT_EQ(back[1].IsNullValue(), 1);
  EXPECT_EQ(back[2].IsNullValue(), 1);  // none there
  NxStringDelete(back, 3);
  NxStringDelete(record->data, 2);
  delete record;
}

}  // namespace
