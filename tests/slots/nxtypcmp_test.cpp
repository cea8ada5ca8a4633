// Comparison of the fixed-size types: signs, formats, buffer ends, wildcards of dates.

#include "nxtypcmp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "nxbool.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Answer {
  long result;
  int error;
  bool operator==(const Answer& other) const { return result == other.result && error == other.error; }
};
std::ostream& operator<<(std::ostream& out, const Answer& a) { return out << a.result << "/" << a.error; }

/// Compares copies whose buffers end where the lengths say, so that a sanitizer sees
/// every byte read beyond.
Answer Compare(const NxTypeTab& type, unsigned char format, const Bytes& a, const Bytes& b,
               unsigned long count, unsigned short options = 0) {
  Bytes first = a, second = b;
  Answer answer{0, 7};
  answer.result = type.Compare(format, first.size(), first.data(), second.size(), second.data(), options,
                               count, answer.error);
  return answer;
}

template <class T>
Bytes Stored(const NxTypeTab& type, std::vector<T> values, unsigned char format) {
  Bytes image((type.flags & 0xFFFF) * values.size());
  type.Store(image.data(), values.data(), format, values.size());
  return image;
}

/// Every pair of values in ascending order, in memory and in both byte orders.
template <class T>
void ExpectOrder(const NxTypeTab& type, const std::vector<T>& ascending) {
  for (unsigned char format : {8, 1, 2, 3}) {
    for (std::size_t i = 0; i < ascending.size(); ++i) {
      for (std::size_t j = 0; j < ascending.size(); ++j) {
        const Bytes a = Stored<T>(type, {ascending[0], ascending[i]}, format);
        const Bytes b = Stored<T>(type, {ascending[0], ascending[j]}, format);
        const long sign = i < j ? -1 : i > j;
        EXPECT_EQ(Compare(type, format, a, b, 2), (Answer{sign, 0}))
            << type.name << " values " << i << ", " << j << " format " << int{format};
      }
    }
  }
}

TEST(Numbers, OrderBySignAndWidth) {
  ExpectOrder<signed char>(NxCharTab, {-128, -1, 0, 127});
  ExpectOrder<unsigned char>(NxByteTab, {0, 127, 128, 255});
  ExpectOrder<short>(NxShortTab, {-32768, -256, -1, 0, 1, 255, 256, 32767});
  ExpectOrder<unsigned short>(NxWordTab, {0, 1, 255, 256, 32767, 32768, 65535});
  const long low = std::numeric_limits<long>::min(), high = std::numeric_limits<long>::max();
  for (const NxTypeTab* type : {&NxIntTab, &NxEnumTab, &NxLongTab})
    ExpectOrder<long>(*type, {low, -65536, -1, 0, 1, 255, 256, 65536, high});
  for (const NxTypeTab* type : {&NxUnsignedTab, &NxDWordTab, &NxBlockIdTab})
    ExpectOrder<unsigned long>(*type, {0, 1, 255, 256, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF});
  ExpectOrder<long long>(NxInt64Tab, {std::numeric_limits<long long>::min(), -4294967296LL, -1, 0, 1,
                                      0xFFFFFFFFLL, 4294967296LL, std::numeric_limits<long long>::max()});
  ExpectOrder<float>(NxFloatTab,
                     {-std::numeric_limits<float>::infinity(), -1.5F, -1e-40F, 0, 1e-40F, 1.5F, 1e30F});
  ExpectOrder<double>(NxDoubleTab, {-1e300, -1.5, 0, 1e-320, 1.5, std::numeric_limits<double>::infinity()});
  ExpectOrder<NxTime>(NxTimeTab, {NxTime(0L), NxTime(59L), NxTime(60L), NxTime(3600L), NxTime(86399L)});
}

TEST(Numbers, WithoutOrder) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (unsigned char format : {8, 2}) {
    const Bytes a = Stored<double>(NxDoubleTab, {nan, 1}, format),
                b = Stored<double>(NxDoubleTab, {5, 2}, format);
    EXPECT_EQ(Compare(NxDoubleTab, format, a, b, 1), (Answer{0, 0}));
    EXPECT_EQ(Compare(NxDoubleTab, format, a, b, 2), (Answer{-1, 0})) << "the next element decides";
    EXPECT_EQ(Compare(NxDoubleTab, format, b, a, 1), (Answer{0, 0}));
  }
  EXPECT_EQ(Compare(NxDoubleTab, 8, Stored<double>(NxDoubleTab, {0.0}, 8),
                    Stored<double>(NxDoubleTab, {-0.0}, 8), 1),
            (Answer{0, 0}));
}

// The way to the next element is checked after a difference as well.
TEST(Buffers, Ends) {
  struct Row {
    std::size_t length1, length2;
    unsigned long count;
    Answer equal, different;  // of arrays that differ nowhere, or in their first element
  };
  const Row rows[] = {
      {4, 4, 0, {0, 0}, {0, 0}},        {4, 4, 1, {0, 0}, {-1, 0}},
      {4, 4, 2, {0, 2101}, {-1, 2101}}, {8, 8, 2, {0, 0}, {-1, 0}},
      {8, 4, 2, {0, 2101}, {-1, 2101}}, {4, 8, 2, {0, 2101}, {-1, 2101}},
      {12, 8, 3, {0, 2101}, {-1, 0}},   {3, 8, 1, {0, 2101}, {0, 2101}},  // an element in part
      {8, 6, 2, {0, 2101}, {-1, 0}},    {8, 8, 0xFFFFFFFF, {0, 2101}, {-1, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.length1 << " " << row.length2 << " " << row.count);
    const Bytes zeros(row.length2), ones(row.length2, 1);
    EXPECT_EQ(Compare(NxLongTab, 1, Bytes(row.length1), zeros, row.count), row.equal);
    EXPECT_EQ(Compare(NxLongTab, 1, Bytes(row.length1), ones, row.count), row.different);
  }
  // Without lengths the arrays hold all their elements.
  long a[] = {1, 2}, b[] = {1, 3};
  int error = 7;
  EXPECT_EQ(LongCompare(8, 0, a, 0, b, 0, 2, error), -1);
  EXPECT_EQ(error, 0);
}

TEST(Buffers, AnyBytesOfAnyLength) {
  std::minstd_rand random(3);
  for (int round = 0; round < 20000; ++round) {
    for (const NxTypeTab* type : {&NxCharTab, &NxWordTab, &NxIntTab, &NxDoubleTab, &NxInt64Tab, &NxBooleanTab,
                                  &NxDateTab, &NxTimeTab, &NxSealTab}) {
      Bytes a(1 + random() % 20), b(1 + random() % 20);
      for (unsigned char& byte : a) byte = random() % 4 ? 0 : static_cast<unsigned char>(random());
      for (unsigned char& byte : b) byte = random() % 4 ? 0 : static_cast<unsigned char>(random());
      const int error = Compare(*type, static_cast<unsigned char>(random()), a, b, random() % 5).error;
      ASSERT_TRUE(error == 0 || error == 2101);
    }
  }
}

TEST(Booleans, NullFirst) {
  // Null, then by signed byte; all bytes but 0 are true, and true equals true.
  const unsigned char null = 255;
  struct Row {
    unsigned char a, b;
    long result;
  };
  const Row rows[] = {{null, null, 0}, {null, 0, -1}, {1, null, 1}, {0, 1, -1},
                      {1, 0, 1},       {1, 2, 0},     {0x80, 0, -1}};
  for (const Row& row : rows)
    for (unsigned char format : {8, 1, 2})
      EXPECT_EQ(Compare(NxBooleanTab, format, {row.a}, {row.b}, 1), (Answer{row.result, 0}))
          << int{row.a} << " " << int{row.b};
}

TEST(Seals, OrderByTheWholeFormatByte) {
  const Bytes a = {1, 0, 0, 0, 0, 0}, b = {0, 0, 255, 255, 255, 255};  // words 1 0 0, 0 FFFF FFFF
  EXPECT_GT(Compare(NxSealTab, 8, a, b, 1).result, 0);
  EXPECT_LT(Compare(NxSealTab, 8, {0, 1, 0, 0, 0, 0}, {1, 1, 0, 0, 0, 0}, 1).result, 0);
  EXPECT_GT(Compare(NxSealTab, 8, {0, 1, 0, 0, 0, 0}, {255, 0, 0, 0, 0, 0}, 1).result, 0);
  for (unsigned char stored : {1, 2, 0x88})
    EXPECT_LT(Compare(NxSealTab, stored, {0, 1, 0, 0, 0, 0}, {255, 0, 0, 0, 0, 0}, 1).result, 0)
        << int{stored};
  EXPECT_EQ(Compare(NxSealTab, 1, a, a, 2), (Answer{0, 2101}));
}

Bytes DateImage(short year, int month, int day, unsigned char format) {
  Bytes image(4);
  ShortStore(image.data(), &year, format, 1);
  image[2] = static_cast<unsigned char>(month);
  image[3] = static_cast<unsigned char>(day);
  return image;
}

TEST(Dates, WildcardsOfStoredOnes) {
  struct Date {
    short year;
    int month, day;
  };
  struct Row {
    Date a, b;
    long wild, plain;  // with the wildcards on and off
  };
  const Row rows[] = {
      {{2004, 3, 15}, {2004, 3, 16}, -1, -1},  {{2004, 4, 1}, {2004, 3, 16}, 1, 1},
      {{2004, 3, 15}, {-1, -1, -1}, 0, 1},     {{2004, 3, 15}, {-1, 3, 15}, 0, 1},
      {{2004, 3, 15}, {-1, 4, 15}, -1, 1},     {{2004, 3, 15}, {2004, -1, 15}, 0, 1},
      {{2004, 3, 15}, {2004, -1, 14}, 1, 1},   {{2004, 3, 15}, {2004, 3, -1}, 0, 1},
      {{2004, 3, 15}, {2004, 5, -1}, -1, -1},  {{2004, 3, 15}, {2005, -1, -1}, -1, -1},
      {{-1, 3, 15}, {2004, 3, 15}, -1, -1},  // only the second is a pattern
      {{2004, -1, 15}, {2004, 3, 15}, -1, -1}, {{-1, 3, 15}, {-1, 3, 15}, 0, 0},
  };
  for (const Row& row : rows) {
    for (unsigned char format : {1, 2, 3}) {
      const Bytes a = DateImage(row.a.year, row.a.month, row.a.day, format);
      const Bytes b = DateImage(row.b.year, row.b.month, row.b.day, format);
      SCOPED_TRACE(testing::Message() << "row " << &row - rows << " format " << int{format});
      EXPECT_EQ(Compare(NxDateTab, format, a, b, 1), (Answer{row.wild, 0}));
      EXPECT_EQ(Compare(NxDateTab, format, a, b, 1, kWildcardsOff), (Answer{row.plain, 0}));
    }
  }
}

TEST(Dates, InMemoryAnswerTheDifference) {
  EXPECT_EQ(Compare(NxDateTab, 8, DateImage(2004, 3, 15, 1), DateImage(2001, 9, 9, 1), 1).result, 3);
  EXPECT_EQ(Compare(NxDateTab, 8, DateImage(-1, 3, 15, 1), DateImage(2001, 5, 9, 1), 1).result, -2);
  EXPECT_EQ(Compare(NxDateTab, 0x18, DateImage(-1, 3, 15, 1), DateImage(2001, -1, 15, 1), 1).result, 0);
  EXPECT_EQ(
      Compare(NxDateTab, 8, DateImage(-1, 3, 15, 1), DateImage(2001, -1, 15, 1), 1, kWildcardsOff).result, 0);
}

TEST(Steps, IncrementPointer) {
  char buffer[8];
  void* p = buffer;
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 7), 0);
  EXPECT_EQ(p, buffer + 7);
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 1), 2101);
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 0xFFFFFFFF), 2101);
  EXPECT_EQ(IncrementPointer(p, buffer + 3, 1), 2101);
  EXPECT_EQ(p, buffer + 7);
}

TEST(Nulls, Order) {
  NxBoolean null, value(1L);
  null.SetNullValue();
  EXPECT_EQ(NxNullValueCompare(null, null), kBothNull);
  EXPECT_EQ(NxNullValueCompare(null, value), kFirstNull);
  EXPECT_EQ(NxNullValueCompare(value, null), kSecondNull);
  EXPECT_EQ(NxNullValueCompare(value, value), kNoneNull);
}

}  // namespace
