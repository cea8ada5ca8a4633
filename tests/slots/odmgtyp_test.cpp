// The slots of the standard date and time types, where they differ from those of other
// types: wildcards of stored dates, hashes of two forms, bounds, and texts of arrays.
#include "odmgtyp.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "d_timest.h"
#include "nxbase.h"
#include "nxconv.h"
#include "nxoption.h"
#include "nxstring.h"
#include "nxtypes.h"
#include "nxtypevl.h"

namespace {

struct Image {
  unsigned char bytes[10];
};

/// A stored date under a format, with -1 as wildcards, and a time of zone 1:00 behind it.
Image Stored(int year, int month, int day, unsigned char format, int hour = 0, int minute = 0,
             int second = 0) {
  Image image = {};
  const auto y = static_cast<short>(year);
  ShortStore(image.bytes, &y, format, 1);
  const int rest[] = {month, day, 1, 0, hour, minute, second};
  for (int i = 0; i < 7; ++i) image.bytes[2 + i] = static_cast<unsigned char>(rest[i]);
  return image;
}

TEST(StandardTypes, StoredKeysTakeWildcardsInTheSecondOperand) {
  const struct {
    int a[3], b[3];
    long withWildcards, withoutWildcards;
  } cases[] = {
      {{2000, 2, 29}, {-1, -1, -1}, 0, -1},   {{2000, 2, 15}, {2000, -1, 15}, 0, 1},
      {{2000, 2, 15}, {2000, -1, 16}, -1, 1}, {{2000, 2, 15}, {2000, 2, -1}, 0, 1},
      {{2000, 3, 15}, {2000, 2, -1}, 1, 1},   {{2000, 2, 15}, {-1, 2, 14}, 1, -1},
      {{-1, -1, -1}, {2000, 2, 15}, 1, 1},    {{2000, 2, 15}, {2001, -1, -1}, -1, -1},
      {{-5, 1, 1}, {5, 1, 1}, 1, 1},  // years are unsigned
  };
  for (const unsigned char format : {1, 2, 0x88})
    for (const auto& c : cases) {
      Image a = Stored(c.a[0], c.a[1], c.a[2], format), b = Stored(c.b[0], c.b[1], c.b[2], format);
      int error = -1;
      for (const auto compare : {d_DateCompare, d_TimestampCompare}) {
        EXPECT_EQ(compare(format, 0, &a, 0, &b, 0, 1, error), c.withWildcards) << c.a[0] << ' ' << c.b[0];
        EXPECT_EQ(compare(format, 0, &a, 0, &b, kWildcardsOff, 1, error), c.withoutWildcards);
      }
    }
}

TEST(StandardTypes, StoredTimesCompareByTheirBytesAndThoseInMemoryByTheirLocalTime) {
  d_Time a(12, 0, 0, 5, 0), b(13, 0, 0.5F, 2, 0), c(12, 0, 0.5F, 2, 0);
  int error;
  EXPECT_EQ(d_TimeCompare(1, 0, &a, 0, &b, 0, 1, error), 1);
  EXPECT_EQ(d_TimeCompare(8, 0, &a, 0, &b, 0, 1, error), -1);
  EXPECT_EQ(d_TimeCompare(8, 0, &a, 0, &c, 0, 1, error), 0);
  d_Timestamp s(d_Date(2000, 3, 1), a), t(d_Date(2000, 2, 29), b), u(d_Date(2000, 3, 1), b);
  EXPECT_EQ(d_TimestampCompare(8, 0, &s, 0, &t, 0, 1, error), 1);
  EXPECT_EQ(d_TimestampCompare(8, 0, &s, 0, &u, 0, 1, error), -1);
  EXPECT_EQ(d_TimestampCompare(1, 0, &s, 0, &u, 0, 1, error), 1);
}

TEST(StandardTypes, HashesOfBothForms) {
  constexpr unsigned long kMultiplier = 1103515245;
  int error;
  Image key = Stored(2000, -1, 3, 2);
  EXPECT_EQ(d_DateHash(2, 0, &key, 1, error), ((2000UL << 16) + 0xFFFF00 + 3) * kMultiplier);
  d_Time time(10, 30, 15.25F, 2, 0);  // 02 00 0C 1E 0F 19
  EXPECT_EQ(d_TimeHash(1, 0, &time, 1, error), 0x20DEE9 * kMultiplier);
  EXPECT_EQ(d_TimeHash(8, 0, &time, 1, error), ((10UL << 24) + (30 << 16) + 15) * kMultiplier);
  d_Timestamp stamp(d_Date(2000, 2, 29), time);
  const unsigned long date = (2000UL << 16) + (2 << 8) + 29;
  EXPECT_EQ(d_TimestampHash(8, 0, &stamp, 1, error), (date ^ ((10UL << 24) + (30 << 16) + 15)) * kMultiplier);
  stamp.date.month = -1;  // stored, the month keeps its sign here
  EXPECT_EQ(d_TimestampHash(1, 0, &stamp, 1, error), (((2000UL << 16) - 256 + 29) ^ 0x20DEE9) * kMultiplier);
}

struct Bounds : NxIdxBounds {
  Bounds() : NxIdxBounds() {}
  Bounds(Image& low, Image& high, unsigned char size) : NxIdxBounds{&low, &high, size, size} {
    owned = false;
  }
  ~Bounds() {
    if (!owned) return;
    std::free(lower);
    std::free(upper);
  }
  bool owned = true;
};

TEST(StandardTypes, WildcardsWidenBoundsAndEstimates) {
  const struct {
    unsigned short relation;
    int key[3], lower[3], upper[3];
    float estimate;
  } cases[] = {
      {kRelationEqual, {2000, 6, 5}, {2000, 6, 5}, {2000, 6, 5}, 1 / 372.0F},
      {kRelationEqual, {-1, 6, 5}, {-32768, 6, 5}, {32767, 6, 5}, 1},
      {kRelationEqual, {-1, -1, -1}, {-32768, -128, -128}, {32767, 127, 127}, 1},
      {kRelationEqual, {2000, -1, 5}, {2000, -128, 5}, {2000, 127, 5}, 1 / 372.0F},
      {kRelationEqual, {2000, 6, -1}, {2000, 6, -128}, {2000, 6, 127}, 1 / 372.0F},
      {kRelationLess, {2000, 2, -1}, {0, 0, 0}, {2000, 2, 127}, 61 / 372.0F},
      {kRelationGreater | kRelationEqual, {2000, -1, 1}, {2000, -128, 1}, {0, 0, 0}, 31 / 372.0F},
      {kRelationLess | kRelationGreater, {2000, 6, 5}, {0, 0, 0}, {0, 0, 0}, 371 / 372.0F},
      {kRelationLess, {1999, 6, 5}, {0, 0, 0}, {1999, 6, 5}, 0},
  };
  for (const unsigned char format : {1, 2})
    for (const auto& c : cases) {
      Image low = Stored(2000, 1, 1, format), high = Stored(2000, 12, 31, format);
      Image key = Stored(c.key[0], c.key[1], c.key[2], format);
      const Bounds index(low, high, 4);
      Bounds range(index), bounds;
      unsigned short relation = c.relation | kIgnoreCase;
      EXPECT_FLOAT_EQ(d_DateEvalAndBound(&range, relation, &key, format, 1, &bounds), c.estimate);
      EXPECT_EQ(relation, c.relation);
      for (const auto& side :
           {std::make_pair(bounds.lower, c.lower), std::make_pair(bounds.upper, c.upper)}) {
        const Image expected = Stored(side.second[0], side.second[1], side.second[2], format);
        EXPECT_EQ(side.first != nullptr, side.second[0] != 0);
        if (side.first) EXPECT_EQ(std::memcmp(side.first, &expected, 4), 0) << c.key[0] << ' ' << c.key[1];
      }
    }
}

TEST(StandardTypes, EstimatesOfTimesAndTimestamps) {
  Image low = Stored(2000, 1, 1, 2, 0, 0, 0), high = Stored(2000, 1, 1, 2, 0, 59, 59);
  Image key = Stored(2000, 1, 1, 2, 0, 30, 30);
  Bounds stamps(low, high, 10), bounds;
  unsigned short relation = kRelationLess | kRelationEqual;
  EXPECT_FLOAT_EQ(d_TimestampEvalAndBound(&stamps, relation, &key, 2, 1, &bounds), 1801 / 3541.0F);
  EXPECT_TRUE(!bounds.lower && bounds.upperLen == 10 && std::memcmp(bounds.upper, &key, 10) == 0);
  Bounds times(low, high, 6);
  times.lower = low.bytes + 4;
  times.upper = high.bytes + 4;
  EXPECT_FLOAT_EQ(d_TimeEvalAndBound(&times, relation, key.bytes + 4, 2, 1, nullptr), 1831 / 3600.0F);
  // A range too short for a value, or none, counts from 0 to 0.
  times.lowerLen = 5;
  EXPECT_FLOAT_EQ(d_TimeEvalAndBound(&times, relation, key.bytes + 4, 2, 1, nullptr), 1831);
}

/// What a slot makes of a text, as text again.
std::string Again(NxSlot::ConvertFrom* from, NxSlot::ConvertTo* to, NxSlot::Delete* release,
                  const char* text) {
  NxString string(text ? text : "");
  if (!text) string.SetNullValue();
  NxTypeConvertData in(kStringTypeId, 1, &string, nullptr);
  void* values = from(&in, 1);
  std::unique_ptr<NxTypeConvertData> out(to(values, 1));
  release(values, 1);
  std::string again = out->GetString(0)->StrGet();
  NxStringDelete(out->data, 1);
  return again;
}

TEST(StandardTypes, StringArrays) {
  d_Time::set_default_Time_Zone(d_Time::UtcPlus2);
  const auto date = [](const char* s) {
    return Again(d_DateConvertFromNxString, d_DateConvertToNxString, d_DateDelete, s);
  };
  const auto time = [](const char* s) {
    return Again(d_TimeConvertFromNxString, d_TimeConvertToNxString, d_TimeDelete, s);
  };
  const auto stamp = [](const char* s) {
    return Again(d_TimestampConvertFromNxString, d_TimestampConvertToNxString, d_TimestampDelete, s);
  };
  const auto interval = [](const char* s) {
    return Again(d_IntervalConvertFromNxString, d_IntervalConvertToNxString, d_IntervalDelete, s);
  };
  const std::string none = std::to_string(julian_day(0, 0, 0) + 1);
  EXPECT_EQ(date("2451545") + ' ' + date("x") + ' ' + date(nullptr), "2451545 1 " + none);
  EXPECT_EQ(time("37800") + ' ' + time("-1") + ' ' + time(nullptr), "37800 86399 0");
  EXPECT_EQ(stamp("2451545:37800"), "2451545:37800");
  EXPECT_EQ(stamp("2451545") + ' ' + stamp("2451545:") + ' ' + stamp(nullptr),
            "2451545:0 2451545:0 " + none + ":0");
  EXPECT_EQ(stamp(":3600"), none + ":3600");
  EXPECT_EQ(interval("-12.75") + ' ' + interval("-0.5") + ' ' + interval("3e9") + ' ' + interval(nullptr),
            "-12 0 3000000000 0");
  d_Time::set_default_Time_Zone(d_Time::Utc);

  auto* defaults = static_cast<d_Timestamp*>(d_TimestampDefaultValue(2, 1));
  EXPECT_TRUE(defaults[1].date.year == -4712 && defaults[1].date.day == 1);  // day 0 of texts
  d_TimestampDelete(defaults, 2);
}

}  // namespace
