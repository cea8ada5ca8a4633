// UTF-8 against decoders and encoders that are written from the encoding's definition,
// one character at a time, and against strings that grow by `+=`.
#include "nx_utf_8.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nxchar.h"
#include "nxstritr.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

/// Length of the sequence at s (n > 0 bytes) and its value, by cases.
int Decode(const unsigned char* s, unsigned n, unsigned& value) {
  const unsigned lead = s[0];
  if (lead < 0x80) return value = lead, 1;
  const int length = lead < 0xC0   ? 0
                     : lead < 0xE0 ? 2
                     : lead < 0xF0 ? 3
                     : lead < 0xF8 ? 4
                     : lead < 0xFC ? 5
                     : lead < 0xFE ? 6
                                   : 0;
  if (length == 0 || n < static_cast<unsigned>(length)) return -1;
  unsigned long long bits = lead & (0x7F >> length);
  for (int i = 1; i < length; ++i) {
    if (s[i] < 0x80 || s[i] > 0xBF) return -1;
    bits = bits * 64 + (s[i] - 0x80);
  }
  const unsigned long long first[] = {0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000};
  value = static_cast<unsigned>(bits);
  return bits < first[length] ? -1 : length;
}

void ExpectDecodes(const unsigned char* s, unsigned n) {
  unsigned value = 0;
  unsigned short unit = 0x5A5A;
  const int expected = Decode(s, n, value);
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
    ASSERT_EQ(Decode(reinterpret_cast<unsigned char*>(s), 3, value), length);
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

/// NxMBS2NxString, piece by piece.
long DecodeByPieces(const std::string& text, NxString& out) {
  const unsigned char language = out._nLanguage;
  out.Destroy();
  out._nLanguage = language;
  out._nCodeSet = kCodeSetUnicode;
  std::vector<unsigned short> piece;
  const auto append = [&] {
    if (!piece.empty()) out += NxString(piece.data(), static_cast<unsigned short>(piece.size()));
    piece.clear();
  };
  unsigned long consumed = 0;
  long result = 0;
  while (consumed < text.size()) {
    unsigned value;
    const int length = Decode(reinterpret_cast<const unsigned char*>(text.data()) + consumed,
                              static_cast<unsigned>(text.size() - consumed), value);
    if (length < 0 || (value & 0xFFFF) == 0) {
      result = length < 0 ? -1 : static_cast<long>(consumed);
      break;
    }
    piece.push_back(static_cast<unsigned short>(value));
    if (piece.size() == 256) append();
    consumed += static_cast<unsigned long>(length);
    result = consumed > 32767 ? -2 : static_cast<long>(consumed);
    if (result < 0) break;
  }
  append();
  return result;
}

/// Decodes a copy of text of exactly its size, so that a read beyond it is seen.
void ExpectSameAsByPieces(const std::string& text) {
  const Block exact(text.data(), text.size());
  Reports reports;
  NxString expected(kCodeSetLatin1, kLanguageFrench), actual(kCodeSetLatin1, kLanguageFrench);
  actual = NxString("old");
  actual._nLanguage = kLanguageFrench;
  const long expectedResult = DecodeByPieces(text, expected);
  const auto expectedReports = reports.Take();
  ASSERT_EQ(NxMBS2NxString(reinterpret_cast<char*>(exact.Data()), actual, static_cast<long>(exact.Size())),
            expectedResult);
  ASSERT_EQ(reports.Take(), expectedReports);
  ASSERT_EQ(actual._nSize, expected._nSize);
  ASSERT_EQ(actual._nCodeSet, kCodeSetUnicode);
  ASSERT_EQ(actual._nLanguage, kLanguageFrench);
  ASSERT_EQ(std::memcmp(actual.StrGet(), expected.StrGet(), expected._nSize), 0);
}

/// Random UTF-8 of at least `bytes` bytes in which one character in `rarity` is not ASCII.
std::string RandomText(std::mt19937& random, unsigned long bytes, unsigned rarity) {
  static const char* const kOthers[] = {
      "\xC3\xA4",     "\xC3\x9F",     "\xE2\x82\xAC",     "\xD0\x96",
      "\xEF\xBF\xBF", "\xED\xA0\x80", "\xF0\x9F\x98\x80", "\xFC\x84\x80\x80\x80\x81"};
  std::string text;
  while (text.size() < bytes) {
    if (random() % rarity == 0)
      text += kOthers[random() % 8];
    else
      text += static_cast<char>(1 + random() % 127);
  }
  return text;
}

TEST(Utf8Text, DecodesLikeTheSingleSteps) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    std::string text = RandomText(random, random() % 90, 1 + random() % 30);
    if (text.size() > 0 && random() % 3 == 0) text[random() % text.size()] = static_cast<char>(random());
    if (random() % 4 == 0) text.resize(random() % (text.size() + 1));
    ExpectSameAsByPieces(text);
  }
  for (unsigned long size : {254, 255, 256, 257, 511, 512, 513, 768, 5000})
    for (unsigned rarity : {1, 7, 1000000}) ExpectSameAsByPieces(RandomText(random, size, rarity));
  for (unsigned long size = 32762; size <= 32772; ++size)
    for (const char* end : {"", "\xC3", "\xE2\x82\xAC",
                            "\xE2\x82\xAC"
                            "tail"}) {
      ExpectSameAsByPieces(std::string(size, 'x') + end);
      ExpectSameAsByPieces(RandomText(random, size, 20) + end);
    }
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

/// A string's characters in Unicode.
std::vector<unsigned short> UnitsOf(const NxString& s) {
  std::vector<unsigned short> units;
  for (NxStringIterator it(s); !it.IsEOS(); ++it) units.push_back((*it).MapTo(kCodeSetUnicode));
  return units;
}

std::string Encode(const std::vector<unsigned short>& units) {
  std::string text;
  for (unsigned short unit : units) {
    char s[3];
    text.append(s, static_cast<unsigned>(nx_wctomb(s, unit)));
  }
  return text;
}

/// What NxString2NxMBS returns and leaves in a buffer that was all 0x55.
long EncodeInto(const NxString& s, std::string& buffer) {
  const std::string bytes(s._nCodeSet < 6 ? s.StrGet() : "\xFF");
  const std::string seen = bytes.substr(0, buffer.size());
  if (s._nCodeSet < 6 && seen.find_first_of("\x80\xC4\xE9\xA4\xB1") == std::string::npos) {
    buffer = seen + std::string(buffer.size() - seen.size(), '\0');
    return static_cast<long>(seen.size());
  }
  std::string written;
  for (unsigned short unit : UnitsOf(s)) {
    const std::string next = Encode({unit});
    if (written.size() + next.size() > buffer.size())
      return buffer.replace(0, written.size(), written), -static_cast<long>(written.size());
    written += next;
  }
  buffer.replace(0, written.size(), written);
  if (written.size() < buffer.size()) buffer[written.size()] = 0;
  return static_cast<long>(written.size());
}

NxString RandomString(std::mt19937& random, unsigned char codeSet, unsigned short length) {
  const unsigned rarity = 1 + random() % 40;
  std::vector<unsigned short> units;
  std::string bytes;
  for (unsigned short i = 0; i < length; ++i) {
    const bool other = random() % rarity == 0;
    units.push_back(static_cast<unsigned short>(other ? 1 + random() % 65535 : 1 + random() % 127));
    bytes += other ? "\x80\xC4\xE9\xA4\xB1"[random() % 5] : static_cast<char>(1 + random() % 127);
  }
  NxString s = NxCharWidth(codeSet) == 2 ? NxString(units.data(), length) : NxString(bytes.c_str(), length);
  s._nCodeSet = codeSet;
  return s;
}

TEST(Utf8Text, EncodesEveryCodeSetIntoAnyBuffer) {
  std::mt19937 random(3);
  for (unsigned char codeSet : {0, 1, 2, 3, 4, 5, 9, 240, 253})
    for (int round = 0; round < 600; ++round) {
      const NxString s = RandomString(random, codeSet, static_cast<unsigned short>(random() % 80));
      const std::string all = Encode(UnitsOf(s));
      ASSERT_EQ(NxMBSLength(s, 65535), static_cast<long>(all.size()));

      std::string expected(random() % (all.size() + 40), 0x55);
      std::vector<char> actual(expected.begin(), expected.end());
      ASSERT_EQ(NxString2NxMBS(s, actual.data(), static_cast<long>(actual.size())), EncodeInto(s, expected))
          << "code set " << +codeSet;
      ASSERT_EQ(std::string(actual.begin(), actual.end()), expected) << "code set " << +codeSet;

      const unsigned short part = static_cast<unsigned short>(random() % 90);
      std::vector<unsigned short> units = UnitsOf(s);
      units.resize(std::min<unsigned long>(units.size(), part));
      ASSERT_EQ(NxMBSLength(s, part), static_cast<long>(Encode(units).size()));
    }
}

TEST(Utf8Text, HandsOutTheWholeTextOrNone) {
  std::mt19937 random(4);
  std::vector<unsigned short> largest(32765, 0xFFFF);
  std::vector<NxString> strings = {NxString(),
                                   NxString("short"),
                                   NxString(std::string(2047, 'x').c_str()),
                                   NxString(std::string(2048, 'x').c_str()),
                                   NxString(std::string(5000, 'x').c_str()),
                                   NxString(std::string(65000, '\xE9').c_str()),
                                   NxString(largest.data(), 32765),
                                   RandomString(random, 253, 3000)};
  for (const NxString& s : strings) {
    const std::string all = Encode(UnitsOf(s));
    const long total = static_cast<long>(all.size());
    char* out = nullptr;
    long size = 77;
    ASSERT_EQ(NxString2MultiByteString(s, out, size), total);
    ASSERT_EQ(size, total + 1);
    ASSERT_EQ(std::string(out, size), all + '\0');
    delete[] out;

    for (long room : {total - 1, total, total + 1, total + 20}) {
      if (room < 1) continue;
      std::vector<char> buffer(room, 0x55);
      out = buffer.data();
      size = room;
      const long result = NxString2MultiByteString(s, out, size);
      ASSERT_EQ(out, buffer.data());
      ASSERT_EQ(result, room < total ? -1 : total);
      ASSERT_EQ(size, room < total ? total : room);
      if (result >= 0) {
        ASSERT_EQ(all.compare(0, total, buffer.data(), total), 0);
        if (room > total) {
          ASSERT_EQ(buffer[total], 0);
        }
      }
    }
  }
}

}  // namespace
