// UTF-8: single sequences against their definition, and what is special of texts. That texts are
// converted as their characters are one after another is a fuzz target (reference_fuzz).
#include "nx_utf_8.h"

#include <gtest/gtest.h>

#include <string>

#include "nxchar.h"
#include "nxstritr.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/utf8.h"

namespace {

void ExpectDecodes(const unsigned char* s, unsigned n) {
  unsigned value = 0;
  unsigned short unit = 0x5A5A;
  const int expected = DecodeUtf8(s, n, value);
  ASSERT_EQ(nx_mbtowc(&unit, reinterpret_cast<const char*>(s), n), expected)
      << std::hex << +s[0] << " " << +s[1];
  ASSERT_EQ(unit, expected < 0 ? 0x5A5A : (value & 0xFFFF));
}

TEST(Utf8Char, DecodesEverySequenceOfOneAndTwoBytesAndManyLonger) {
  unsigned char s[6] = {};
  for (unsigned i = 0; i < 0x10000; ++i) {
    s[0] = static_cast<unsigned char>(i >> 8), s[1] = static_cast<unsigned char>(i);
    ExpectDecodes(s, 1);
    ExpectDecodes(s, 2);
  }
  const unsigned char tails[] = {0x00, 0x41, 0x7F, 0x80, 0x81, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
  for (unsigned lead = 0xC0; lead < 0x100; ++lead)
    for (unsigned second = 0x7F; second < 0xC1; ++second)
      for (unsigned char third : tails)
        for (unsigned char fourth : tails)
          for (unsigned n = 3; n <= 6; ++n) {
            const unsigned char text[] = {static_cast<unsigned char>(lead),
                                          static_cast<unsigned char>(second),
                                          third,
                                          fourth,
                                          0x80,
                                          0xBF};
            ExpectDecodes(text, n);
          }
}

TEST(Utf8Char, EncodesEveryUnitAndComesBack) {
  for (unsigned wc = 0; wc < 0x10000; ++wc) {
    char s[4] = {0x55, 0x55, 0x55, 0x55};
    const int length = nx_wctomb(s, static_cast<unsigned short>(wc));
    ASSERT_EQ(length, wc < 0x80 ? 1 : wc < 0x800 ? 2 : 3);
    ASSERT_EQ(nx_len4wc(static_cast<unsigned short>(wc)), length);
    ASSERT_EQ(s[length], 0x55);
    unsigned value;
    ASSERT_EQ(DecodeUtf8(reinterpret_cast<unsigned char*>(s), 3, value), length);
    ASSERT_EQ(value, wc);
  }
  char s[4] = {};
  EXPECT_EQ(NxWChar2MultiByte(s, 0x20AC), 3);
  EXPECT_STREQ(s, "\xE2\x82\xAC");
  unsigned short unit = 0;
  EXPECT_EQ(NxMultiByte2WChar(&unit, s, 3), 3);
  EXPECT_EQ(unit, 0x20AC);
  EXPECT_EQ(nx_mbtowc(&unit, nullptr, 5), 0);
  EXPECT_EQ(nx_mbtowc(&unit, s, 0), -1);
  EXPECT_EQ(nx_wctomb(nullptr, 5), 0);
}

TEST(Utf8Text, DecodesItsOwnTextAndToTheTerminator) {
  const Reports quiet;
  NxString s("caf\xC3\xA9");
  EXPECT_EQ(NxMultiByteString2NxString(s, s), 5);
  EXPECT_EQ(s.Len(), 4);
  EXPECT_EQ(static_cast<unsigned short>(s[3]), 0xE9);

  NxString out;
  EXPECT_EQ(NxMultiByteString2NxString("\xC3\xA9t\xC3\xA9", out, -1), 5);
  EXPECT_EQ(out.Len(), 3);
  EXPECT_EQ(NxMBS2NxString(std::string(32767, 'x').append(u8"é").c_str(), out, -1), -2);

  out.SetNullValue();
  EXPECT_EQ(NxMBS2NxString("x", out, 0), 0);
  EXPECT_TRUE(out.IsNullValue());
  EXPECT_EQ(out._pBuffer, nullptr);
  EXPECT_EQ(NxMBS2NxString("\0", out, 1), 0);
  EXPECT_EQ(NxMBS2NxString(nullptr, out, 7), 0);
  EXPECT_TRUE(out.IsEmpty());
}

TEST(Utf8Text, HandsOutTheWholeTextOrNone) {
  const auto repeated = [](const std::string& sequence, unsigned n) {
    std::string all;
    while (n-- > 0) all += sequence;
    return all;
  };
  const std::pair<NxString, std::string> cases[] = {
      {NxString(), ""},
      {NxString("short"), "short"},
      {NxString(std::string(2047, 'x').c_str()), std::string(2047, 'x')},
      {NxString(std::string(2048, 'x').c_str()), std::string(2048, 'x')},
      {NxString(std::string(65000, '\xE9').c_str()), repeated("\xC3\xA9", 65000)},
      {Wide(Units(32765, u'\uFFFF')), repeated("\xEF\xBF\xBF", 32765)}};
  for (const auto& [s, all] : cases) {
    const long total = static_cast<long>(all.size());
    char* out = nullptr;
    long size = 77;
    ASSERT_EQ(NxString2MultiByteString(s, out, size), total);
    ASSERT_EQ(size, total + 1);
    ASSERT_EQ(std::string(out, size), all + '\0');
    delete[] out;
    for (long room : {total - 1, total, total + 1, total + 20}) {
      if (room < 1) continue;
      std::string buffer(room, 0x55);
      out = buffer.data();
      size = room;
      ASSERT_EQ(NxString2MultiByteString(s, out, size), room < total ? -1 : total);
      ASSERT_EQ(out, buffer.data());
      ASSERT_EQ(size, room < total ? total : room);
      if (room > total) {
        ASSERT_EQ(buffer.c_str(), all);
      }
    }
  }
}

}  // namespace
