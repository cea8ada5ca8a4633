// NxDateTime and the system clock: moves across midnight, zones, null values.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64  // of the clock that is put in the C library's place

#include "nxdatime.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/time.h>

#include <ctime>
#include <memory>
#include <random>
#include <string>

#include "nxdatimx.h"
#include "nxint64.h"
#include "nxostime.h"
#include "nxstring.h"

namespace {

bool clockFails = false;

NxDateTime At(long day, long second) { return {NxDate(day), NxTime(second)}; }

NxDateTime Of(short year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  NxDateTime t(NxDateTime::Null());
  t.date.year = year;
  t.date.month = static_cast<signed char>(month);
  t.date.day = static_cast<signed char>(day);
  t.time.hour = static_cast<signed char>(hour);
  t.time.minute = static_cast<signed char>(minute);
  t.time.second = static_cast<signed char>(second);
  return t;
}

std::string Text(const NxDateTime& t) {
  NxString out;
  return t.PrintToNxString(out, nullptr).StrGet();
}

}  // namespace

// In place of the C library's.
extern "C" int gettimeofday(timeval* now, void*) noexcept {
  *now = {};
  now->tv_sec = 4'000'000'000;  // the year 2096
  now->tv_usec = 123'999;
  return clockFails ? -1 : 0;
}

namespace {

TEST(SystemTime, Milliseconds) {
  NxInt64 ms(5);
  EXPECT_EQ(GetSystemTimeInMSSinceTheEpoch(ms), 0);
  EXPECT_EQ(ms.Wide(), 4'000'000'000'123);
  clockFails = true;
  EXPECT_EQ(GetSystemTimeInMSSinceTheEpoch(ms), -2172);
  EXPECT_EQ(ms.Wide(), 0);
}

TEST(DateTime, MovesBySeconds) {
  std::mt19937 random(2);
  for (int i = 0; i < 20000; ++i) {
    const long day = static_cast<long>(100000 + random() % 3000000),
               second = static_cast<long>(random() % 86400);
    const long move = static_cast<long>(random()) >> random() % 31;
    NxDateTime t = At(day, second);
    t.AddSeconds(move);
    const long long whole = 86400LL * day + second + move;
    ASSERT_EQ(t != At(static_cast<long>(whole / 86400), static_cast<long>(whole % 86400)), 0)
        << day << ' ' << second << ' ' << move;
  }
}

TEST(DateTime, MinutesOfDaysAround) {
  const struct {
    long minutes;
    const char* text;
  } cases[] = {{0, "2000-03-01T00:00:07"},     {1439, "2000-03-01T23:59:07"},  {1440, "2000-03-02T00:00:07"},
               {1500, "2000-03-02T01:00:07"},  {2879, "2000-03-02T23:59:07"},  {-60, "2000-02-29T23:00:07"},
               {-90, "2000-02-29T22:30:07"},   {-1440, "2000-02-29T00:00:07"}, {-1, "2000-02-29T23:59:07"},
               {-1510, "2000-02-29T-02:50:07"}};  // beyond: only one day is carried
  for (const auto& c : cases) {
    NxDateTime t = Of(2000, 3, 1, 12, 30, 7);
    t.AddMinutes(c.minutes);
    EXPECT_EQ(Text(t), c.text);
  }
  setenv("TZ", "Here-01:00", 1);
  NxDateTime t = Of(2000, 2, 29, 23, 30);
  EXPECT_EQ(t.ToLocalTime(), 0);
  EXPECT_EQ(Text(t), "2000-03-01T00:30:00");
  EXPECT_EQ(t.ToUTCTime(), 0);
  EXPECT_EQ(Text(t), "2000-02-29T23:30:00");
  NxDateTime local, utc;
  const auto clock = [] {
    char text[32];
    const time_t now = std::time(nullptr);
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", std::gmtime(&now)));
  };
  const std::string before = clock();
  const std::string now = Text(utc.NowUTC());
  EXPECT_TRUE(before <= now && now <= clock()) << now;
  utc.ToLocalTime();
  local.Now();
  utc.AddSeconds(60);
  EXPECT_GT(utc != local, 0);
  utc.AddSeconds(-120);
  EXPECT_LT(utc.Compare(local), 0);
  EXPECT_TRUE(local.IsDaTime());
}

TEST(DateTime, ComparesAndIsNull) {
  const NxDateTime t = Of(2004, 3, 15, 13, 45, 30);
  EXPECT_EQ(t.Compare(Of(2001, 3, 15)), 3);
  EXPECT_EQ(t.Compare(Of(-1, -1, 15, 13, 45, 31)), -1);  // -1 is any year, any month
  NxDateTime other(t.date), today(t.time);
  EXPECT_EQ(other.date != t.date, 0);
  EXPECT_EQ(today.time != t.time, 0);
  other = NxTime(1L);
  EXPECT_EQ(Text(other), "2004-03-15T00:00:01");
  other.date.SetNullValue();
  EXPECT_FALSE(other.IsNullValue());
  EXPECT_EQ(other.SetNullValue(), 0);
  EXPECT_TRUE(other.IsNullValue());
  EXPECT_EQ(Text(other), "{NULL}");
  EXPECT_FALSE(NxDateTime::Null().IsNullValue());
  EXPECT_FALSE(Of(2001, 2, 29).IsDaTime() || Of(2001, 2, 28, 24).IsDaTime());
}

TEST(DateTimeSlots, DefaultsAndNull) {
  std::unique_ptr<NxDateTime> none(static_cast<NxDateTime*>(NxDateTimeDefaultValue(1, 1)));
  NxDateTimeConstructor(none.get(), 1, 0);
  EXPECT_FALSE(NxDateTimeIsNull(none.get()));
  auto* many = static_cast<NxDateTime*>(NxDateTimeDefaultValue(3, 0));
  EXPECT_EQ(Text(many[2]), "-4713-11-24T00:00:00");  // what an empty text converts to
  EXPECT_EQ(NxDateTimeDelete(many, 3), 0);
}

}  // namespace
