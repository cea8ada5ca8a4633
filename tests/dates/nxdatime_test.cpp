// NxDateTime and the system clock: moves across midnight, zones, images, queries, texts.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64  // of the clock that is put in the C library's place

#include "nxdatime.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/time.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxconv.h"
#include "nxdatimx.h"
#include "nxint64.h"
#include "nxnulltext.h"
#include "nxostime.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"

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
  utc.NowUTC();
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

TEST(DateTimeSlots, ImagesOfTwoOrders) {
  NxTypeMgr mgr(5);
  NxDateTime values[2] = {Of(2004, 3, 15, 13, 45, 30), Of(-2, 12, 31, -1)}, loaded[2];
  const unsigned char big[14] = {0x07, 0xD4, 3, 15, 13, 45, 30, 0xFF, 0xFE, 12, 31, 0xFF, 0, 0};
  const unsigned char little[14] = {0xD4, 0x07, 3, 15, 13, 45, 30, 0xFE, 0xFF, 12, 31, 0xFF, 0, 0};
  for (unsigned char format : {1, 2, 0x82}) {
    unsigned char image[15] = {};
    const unsigned char* expected = (format & 2) != 0 ? big : little;
    EXPECT_EQ(DaTimeStore(image, values, format, 2), 14);
    EXPECT_EQ(std::memcmp(image, expected, 14), 0);
    EXPECT_EQ(image[14], 0);
    EXPECT_EQ(DaTimeLoad(loaded, image, format, 2), 14);
    EXPECT_EQ(loaded[1].Compare(values[1]), 0);
    EXPECT_EQ(DaTimeTranslate(loaded, 8, 16, image + 7, format, 7, 1), 7);
    EXPECT_EQ(loaded[0].Compare(values[1]), 0);
    EXPECT_EQ(DaTimeTranslate(image, format, 14, values, 8, 16, 2), 14);
    EXPECT_EQ(std::memcmp(image, expected, 14), 0);
    EXPECT_EQ(DaTimeTranslate(image, format, 9, image, format, 3, 1), 3);
    EXPECT_TRUE(image[2] == 3 && image[3] == 0 && image[8] == 0 && image[9] == 12);
  }
  EXPECT_EQ(DaTimeTranslate(loaded, 8, 16, values, 8, 16, 2), 16);
  EXPECT_EQ(mgr.DiskLenGet(19, values, 1, 2, 8), 14);

  std::unique_ptr<NxDateTime> none(static_cast<NxDateTime*>(NxDateTimeDefaultValue(1, 1)));
  EXPECT_TRUE(NxDateTimeIsNull(none.get()));
  NxDateTimeConstructor(none.get(), 1, 0);
  EXPECT_FALSE(NxDateTimeIsNull(none.get()));
  EXPECT_EQ(NxDateTimeSetNull(none.get()), 0);
  NxDateTimeCopy(loaded, none.get(), 2, 1);
  EXPECT_TRUE(loaded[1].IsNullValue());
  auto* many = static_cast<NxDateTime*>(NxDateTimeDefaultValue(3, 0));
  EXPECT_EQ(Text(many[2]), "-4713-11-24T00:00:00");  // what an empty text converts to
  EXPECT_EQ(NxDateTimeDelete(many, 3), 0);
}

TEST(DateTimeSlots, CompareHashAndBounds) {
  // Stored, -1 is no wildcard, and every field orders as a signed number.
  std::vector<NxDateTime> rising = {Of(-3, 1, 1),         Of(-1, 1, 1),           Of(2004, -1, 9),
                                    Of(2004, 3, 8),       Of(2004, 3, 9, -1),     Of(2004, 3, 9, 0, 1),
                                    Of(2004, 3, 9, 0, 2), Of(2004, 3, 9, 0, 2, 1)};
  const auto same = [](const NxDateTime& t) { return std::vector<NxDateTime>{Of(2004, 3, 9), t}; };
  for (unsigned char format : {1, 2, 0x88}) {
    for (std::size_t i = 0; i < rising.size(); ++i)
      for (std::size_t j = 0; j < rising.size(); ++j) {
        unsigned char a[14], b[14];
        int error = 7;
        DaTimeStore(a, same(rising[i]).data(), format, 2);
        DaTimeStore(b, same(rising[j]).data(), format, 2);
        EXPECT_EQ(DaTimeCompare(format, 0, a, 14, b, 0, 2, error), i < j ? -1 : i > j);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(DaTimeCompare(format, 7, a, 14, b, 0, 2, error), 0);
        EXPECT_EQ(error, kPastBuffer);
        const NxDateTime& t = rising[i];
        const unsigned word = ((t.date.year * 65536U) + (t.date.month * 256U) + t.date.day) ^
                              ((t.time.hour * 65536U) + (t.time.minute * 256U) + t.time.second);
        EXPECT_EQ(DaTimeHash(format, 7, a + 7, 1, error), word * 1103515245U);
        EXPECT_EQ(DaTimeHash(8, 0, &rising[i], 1, error), word * 1103515245U);
      }
  }
  int error;
  NxDateTime any = Of(-1, 3, 9);
  EXPECT_EQ(DaTimeCompare(8, 8, &rising[3], 8, &any, kWildcardsOff, 1, error), -1);
  EXPECT_EQ(DaTimeCompare(8, 8, &rising[4], 0, &any, 0, 1, error), -1);

  unsigned char low[7], high[7], key[7];
  NxDateTime ends[3] = {Of(2000, 1, 1), Of(2000, 1, 2), Of(2000, 1, 1, 12, 0, 59)};
  DaTimeStore(low, &ends[0], 2, 1);
  DaTimeStore(high, &ends[1], 2, 1);
  DaTimeStore(key, &ends[2], 2, 1);
  NxIdxBounds range = {low, high, 7, 7}, bounds = {};
  unsigned short relation = 0x7FF0 | kRelationLess | kRelationEqual;
  EXPECT_FLOAT_EQ(DaTimeEvalAndBound(&range, relation, key, 2, 1, &bounds), 721.0F / 1441);
  EXPECT_EQ(relation, kRelationLess | kRelationEqual);
  EXPECT_TRUE(!bounds.lower && bounds.upperLen == 7 && std::memcmp(bounds.upper, key, 7) == 0);
  free(bounds.upper);
  relation = kRelationEqual;
  EXPECT_EQ(DaTimeEvalAndBound(nullptr, relation, low, 2, 1, nullptr), 0);
}

TEST(DateTimeSlots, StringArrays) {
  NxTypeMgr mgr(5);
  const char* texts[] = {"2453080:43200", ":3600", "2453080", "2453080:", "5:4:3", ""};
  const char* back[] = {"2453080:43200", "1721028:3600", "2453080:0", "2453080:0", "5:4", "0:0"};
  auto* strings = static_cast<NxString*>(mgr.Create(11, 7));
  for (int i = 0; i < 6; ++i) strings[i] = texts[i];
  strings[0].MapToCodeSet(253);
  strings[6].SetNullValue();
  auto* record = NxTypeConvertData::Make(11, 7, strings, &mgr);
  auto* values = static_cast<NxDateTime*>(DaTimeConvertFromNxString(record, 8));
  delete record;
  EXPECT_EQ(Text(values[1]), "0000-00-00T01:00:00");
  EXPECT_TRUE(values[6].IsNullValue() && values[7].IsNullValue());
  auto* converted = mgr.ConvertTo(19, values, 8);
  for (int i = 0; i < 6; ++i) EXPECT_STREQ(converted->GetString(i)->StrGet(), back[i]);
  EXPECT_TRUE(converted->GetString(7)->IsNullValue());
  delete converted;
  mgr.Delete(19, values, 8);
}

}  // namespace
