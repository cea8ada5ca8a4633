// Base services: byte order, the clock, reports, configuration, memory files.

#include "nxbase.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bs/swapbytes.h"
#include "support/strings.h"

namespace {

using Image = Bytes;

// Every size around the vectors' and the blocks' edges, at every alignment of both
// arrays, and in place; the bytes around the destination stay as they were.
template <unsigned Width>
void ExpectSwapsAsPlain(SwapLevel level) {
  constexpr unsigned long kMaxValues = 100;
  constexpr unsigned long kGuard = 32;
  Image src(kMaxValues * Width + 2 * kGuard);
  for (std::size_t i = 0; i < src.size(); ++i) src[i] = static_cast<unsigned char>(i * 37 + i / 256);
  for (unsigned long n = 0; n <= kMaxValues; ++n) {
    for (unsigned from = 0; from < 16; ++from) {
      for (unsigned to = 0; to < 16; ++to) {
        Image truth(src.size(), 0xEE), fast = truth;
        SwapArrayPlain<Width>(&truth[kGuard / 2 + to], &src[from], n);
        SwapArrayAt<Width>(level, &fast[kGuard / 2 + to], &src[from], n);
        ASSERT_EQ(fast, truth) << "width " << Width << ", n " << n << ", from " << from << ", to " << to;
      }
      Image truth = src, fast = src;
      SwapArrayPlain<Width>(&truth[from], &truth[from], n);
      SwapArrayAt<Width>(level, &fast[from], &fast[from], n);
      ASSERT_EQ(fast, truth) << "in place, width " << Width << ", n " << n << ", at " << from;
    }
  }
}

TEST(Scalars, FastSwapsEqualThePlainOne) {
  std::vector<SwapLevel> levels{SwapLevel::kSse2};
  if (BestSwapLevel() != SwapLevel::kSse2) levels.push_back(BestSwapLevel());
  for (const SwapLevel level : levels) {
    ExpectSwapsAsPlain<2>(level);
    ExpectSwapsAsPlain<4>(level);
    ExpectSwapsAsPlain<8>(level);
  }
}

TEST(Scalars, FloatingImagesKeepEveryBit) {
  // A signalling not-a-number must not turn quiet on the way.
  const unsigned char signalling[8] = {1, 0, 0, 0, 0, 0, 0xF0, 0x7F};
  unsigned char image[8], back[8];
  DoubleStore(image, signalling, kFormatBigEndian, 1);
  DoubleStore(back, image, kFormatBigEndian, 1);
  EXPECT_EQ(std::memcmp(back, signalling, 8), 0);
  const double one = 1.0;
  DoubleStore(image, &one, kFormatBigEndian, 1);
  EXPECT_EQ(Image(image, image + 8), (Image{0x3F, 0xF0, 0, 0, 0, 0, 0, 0}));
}

class Clock : public testing::Test {
 protected:
  void SetUp() override {
    const char* zone = getenv("TZ");
    had_ = zone != nullptr;
    if (had_) before_ = zone;
  }
  void TearDown() override { had_ ? setenv("TZ", before_.c_str(), 1) : unsetenv("TZ"); }

  bool had_ = false;
  std::string before_;
};

time_t Seconds(const bdate& date, const btime& time) {
  tm calendar{};
  calendar.tm_year = date.year - 1900;
  calendar.tm_mon = date.month - 1;
  calendar.tm_mday = date.day;
  calendar.tm_hour = time.hour;
  calendar.tm_min = time.minute;
  calendar.tm_sec = time.second;
  return timegm(&calendar);
}

TEST_F(Clock, LocalTimeIsUniversalTimePlusTheZone) {
  const struct {
    const char* zone;
    int minutes;
  } zones[] = {{"UTC0", 0}, {"IST-5:30", 330}, {"AAA+9:30", -570}, {"LINT-14", 840}, {"BAKER12", -720}};
  for (const auto& [zone, minutes] : zones) {
    SCOPED_TRACE(zone);
    setenv("TZ", zone, 1);
    btime local{}, universal{};
    bdate localDate{}, universalDate{};
    do {  // again when a second passed between the calls, which a zone kept too long does not explain
      bksgetsystemtime(&universal, &universalDate);
      bksgetdate(&localDate);
      bksgettime(&local);
    } while (time(nullptr) != Seconds(universalDate, universal));
    EXPECT_EQ(Seconds(localDate, local), Seconds(universalDate, universal) + minutes * 60);
    EXPECT_EQ(local.zone, minutes * 60);
    EXPECT_EQ(universal.zone, 0);
    EXPECT_EQ(bksgettimezone(), minutes);
    EXPECT_NEAR(static_cast<double>(Seconds(universalDate, universal)), static_cast<double>(time(nullptr)),
                2);
  }
}

std::string lastAssert;
unsigned long lastShortage;

TEST(Reports, AssertGoesToStandardErrorOrToTheHandler) {
  testing::internal::CaptureStderr();
  NEXO_assert("index < count", "src/nxstring", 17);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "index < count, src/nxstring, 17\n");

  const NxAssertHandler handler = [](const char* expression, const char* path, int line) {
    lastAssert = std::string(expression) + "|" + path + "|" + std::to_string(line);
  };
  EXPECT_EQ(NxSetAssertHandler(handler), nullptr);
  testing::internal::CaptureStderr();
  NEXO_assert("a == b", "src/nxtypes", 4);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(lastAssert, "a == b|src/nxtypes|4");
  EXPECT_EQ(NxSetAssertHandler(nullptr), handler);
}

TEST(ReportsDeathTest, ShortageOfMemoryEndsTheProcessUnlessHandled) {
  const NxMemoryHandler handler = [](unsigned long size) { lastShortage = size; };
  EXPECT_EQ(NxSetMemoryHandler(handler), nullptr);
  NxCallMemoryHandler(4711);
  EXPECT_EQ(lastShortage, 4711u);
  EXPECT_EQ(NxSetMemoryHandler(nullptr), handler);
  EXPECT_DEATH(NxCallMemoryHandler(4711), "4711 bytes");
}

TEST(Reports, VersionFitsByMajorAndMinor) {
  EXPECT_EQ(CheckNxVersionNumber(9, 5, 23, 262, 0, 3), 0);
  EXPECT_EQ(CheckNxVersionNumber(9, 5, 0, 1, 2, 0x7FFFFFFF), 0);
  EXPECT_EQ(CheckNxVersionNumber(9, 4, 23, 262, 0, 3), -1);
  EXPECT_EQ(CheckNxVersionNumber(10, 5, 23, 262, 0, 3), -1);
}

// Reads a configuration file in a process of its own, since a process reads it once, and
// prints "KEY=value" or "KEY absent" for each query.
void PrintConfig(const char* text) {
  const std::string path = testing::TempDir() + "nxbase_test." + std::to_string(getpid());
  std::FILE* file = std::fopen(path.c_str(), "w");
  std::fputs(text, file);
  std::fclose(file);
  setenv("NX21_CONFIG", path.c_str(), 1);
  NxConfig* config = DefaultConfig(NxAskConfig());
  std::remove(path.c_str());
  if (!config) std::exit(1);
  const NxConfigScope debug{"debug", 0};
  for (const char* key : {"stringOverflow", "oldIndexUnicodeOrder", "last"}) {
    for (const NxConfigScope* scope : {static_cast<const NxConfigScope*>(nullptr), &debug}) {
      unsigned short value = 99;
      const int found = config->Query(key, &value, scope);
      std::fprintf(stderr, "%s%s %d %u\n", scope ? "debug." : "", key, found, value);
    }
  }
  std::exit(DefaultConfig(NxAskConfig()) == config ? 0 : 1);
}

TEST(ConfigDeathTest, FileGivesKeysAndKeysOfASection) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(PrintConfig("# comment\r\n\n debug.stringOverflow = 2 \r\noldIndexUnicodeOrder=65535\nlast=7"),
              testing::ExitedWithCode(0),
              "^stringOverflow 0 99\ndebug.stringOverflow 1 2\n"
              "oldIndexUnicodeOrder 1 65535\ndebug.oldIndexUnicodeOrder 1 65535\n"
              "last 1 7\ndebug.last 1 7\n$");
  EXPECT_EXIT(PrintConfig("=3\nlast\nlast=65536\nlast=-1\nlast=1x\nlast=\nlast=4294967297\n"),
              testing::ExitedWithCode(0), ":1: .*:2: .*:3: .*:4: .*:5: .*:6: .*:7: .*last 0 99\n");
}

TEST(ConfigDeathTest, WithoutAFileThereIsNone) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  for (const char* path : {"", "no/such/file"}) {
    EXPECT_EXIT(
        {
          setenv("NX21_CONFIG", path, 1);
          std::exit(DefaultConfig(NxAskConfig()) ? 1 : 0);
        },
        testing::ExitedWithCode(0), path);
  }
}

TEST(Config, TheProcessInstallsItsOwn) {
  NxConfig* before = DefaultConfig(NxAskConfig());
  {
    OneSetting own;
    EXPECT_EQ(DefaultConfig(NxAskConfig()), &own);
    EXPECT_EQ(DefaultConfig(nullptr), nullptr);
    EXPECT_EQ(DefaultConfig(NxAskConfig()), nullptr);
  }
  EXPECT_EQ(DefaultConfig(NxAskConfig()), before);
}

TEST(MemFiles, SeekMovesOnlyToReadableBytes) {
  char bytes[] = "0123456789";
  const struct {
    long offset;
    unsigned short whence;
    const char* found;  // null: out of reach, the offset stays
  } steps[] = {
      {0, 1, "0123456789"}, {4, 0, "456789"},     {0, 1, "456789"},         {-2, 1, "23456789"},
      {-3, 1, nullptr},     {8, 1, nullptr},  // the end is not readable
      {7, 1, "9"},          {1, 1, nullptr},      {-10, 2, "0123456789"},   {-11, 2, nullptr},
      {0, 2, nullptr},      {-1, 0, nullptr},     {0x7FFFFFFF, 1, nullptr}, {-0x7FFFFFFF - 1, 2, nullptr},
      {0, 3, nullptr},      {0, 1, "0123456789"},
  };
  MemFile file(bytes, 10);
  for (const auto& step : steps) {
    SCOPED_TRACE(std::to_string(step.offset) + " whence " + std::to_string(step.whence));
    const unsigned long before = file.Offset();
    unsigned long available = 4711;
    void* found = file.Seek(step.offset, step.whence, &available, 0);
    EXPECT_EQ(available, step.found ? std::strlen(step.found) : 0);
    EXPECT_EQ(found, step.found ? bytes + (std::strlen(bytes) - available) : nullptr);
    EXPECT_EQ(file.Offset(), step.found ? 10 - available : before);
  }
  EXPECT_EQ(file.Seek(3, 0, nullptr, 0), bytes + 3);
  EXPECT_EQ(file.Append("x", 1), -1);
  EXPECT_EQ(file.Length(), 10u);
}

TEST(MemFiles, HeldBytesGrowAlsoFromThemselves) {
  MemFile file;
  unsigned long available = 1;
  EXPECT_EQ(file.Seek(0, 1, &available, 0), nullptr);
  EXPECT_EQ(available, 0u);
  EXPECT_EQ(file.Append(nullptr, 0), 0);
  std::string truth = "abc";
  ASSERT_EQ(file.Append("abc", 3), 0);
  for (int i = 0; i < 12; ++i) {  // the file's own bytes, which a growing file moves
    ASSERT_EQ(file.Append(file.Seek(0, 0, nullptr, 0), file.Length()), 0);
    truth += truth;
  }
  const char* bytes = static_cast<const char*>(file.Seek(0, 0, &available, 0));
  ASSERT_EQ(available, truth.size());
  EXPECT_EQ(std::string(bytes, available), truth);
}

}  // namespace
