// Index bounds and estimates of the fixed-size types.

#include "nxtypevl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "nxtypcmp.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

using Word = unsigned short;
constexpr Word kLess = kRelationLess;
constexpr unsigned short kEqual = kRelationEqual;
constexpr unsigned short kGreater = kRelationGreater;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kMost = std::numeric_limits<double>::max();

TEST(Range, OfARelation) {
  struct Row {
    unsigned short relation;
    double low, high, indexLow, indexHigh, expected;
  };
  const Row rows[] = {
      {kEqual, 5, 5, 1, 10, 1},
      {kLess, 5, 5, 1, 10, 4},
      {kGreater, 5, 5, 1, 10, 5},
      {kLess | kEqual, 5, 5, 1, 10, 5},
      {kGreater | kEqual, 5, 5, 1, 10, 6},
      {kLess | kGreater, 5, 5, 1, 10, 9},
      {kLess, 20, 20, 1, 10, 10},
      {kGreater, 0, 0, 1, 10, 10},
      {kEqual, 20, 20, 1, 10, 0},
      {kEqual, 3, 7, 1, 10, 5},
      {kLess, 1, 1, 1, 10, 0},
      {kGreater, 10, 10, 1, 10, 0},
      {kGreater, kInfinity, kInfinity, 1, kInfinity, kMost},
      {kEqual, kNan, kNan, 1, 10, kMost},
      {0x8008, 5, 5, 1, 10, 0},
  };
  for (const Row& row : rows)
    EXPECT_EQ(CalcRange(row.relation, row.low, row.high, row.indexLow, row.indexHigh, 1), row.expected)
        << "row " << &row - rows;
}

TEST(Boundaries, ByTheRelation) {
  struct Row {
    unsigned short relation;
    bool lower, upper;
  };
  const Row rows[] = {{kEqual, true, true},
                      {kLess, false, true},
                      {kLess | kEqual, false, true},
                      {kGreater, true, false},
                      {kGreater | kEqual, true, false},
                      {kLess | kGreater, false, false}};
  unsigned char key[] = {1, 2, 3};
  SetBoundaries(nullptr, key, kEqual, 3);
  for (const Row& row : rows) {
    NxIdxBounds bounds{};
    SetBoundaries(&bounds, key, row.relation, 3);
    EXPECT_EQ(bounds.lower != nullptr, row.lower);
    EXPECT_EQ(bounds.upper != nullptr, row.upper);
    EXPECT_EQ(bounds.lowerLen, row.lower ? 3 : 0);
    EXPECT_EQ(bounds.upperLen, row.upper ? 3 : 0);
    std::free(bounds.lower);
    std::free(bounds.upper);
  }
  unsigned char present = 9;
  NxIdxBounds bounds{&present, nullptr, 1, 0};
  SetBoundaries(&bounds, key, kEqual, 2);
  EXPECT_EQ(bounds.lower, &present);
  EXPECT_EQ(static_cast<unsigned char*>(bounds.upper)[1], 2);
  std::free(bounds.upper);
}

/// A term on an index, in one format.
struct Term {
  const NxTypeTab& type;
  unsigned char format;
  Bytes key, low, high;

  template <class T>
  Term(const NxTypeTab& t, unsigned char f, T keyValue, T lowValue, T highValue)
      : type(t), format(f), key(Image(keyValue)), low(Image(lowValue)), high(Image(highValue)) {}

  template <class T>
  Bytes Image(T value) const {
    Bytes image(type.flags & 0xFFFF);
    type.Store(image.data(), &value, format, 1);
    return image;
  }

  /// The estimate; the bounds that are built must be those of the key.
  float Eval(unsigned short relation, bool withRange = true) {
    NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                      static_cast<unsigned char>(high.size())};
    NxIdxBounds bounds{};
    const float estimate =
        type.EvalAndBound(withRange ? &range : nullptr, relation, key.data(), format, 1, &bounds);
    const auto expectKey = [this](void* image, unsigned char length) {
      ASSERT_NE(image, nullptr);
      EXPECT_EQ(Bytes(static_cast<unsigned char*>(image), static_cast<unsigned char*>(image) + length), key);
      std::free(image);
    };
    if (!(relation & kLess)) expectKey(bounds.lower, bounds.lowerLen);
    if (!(relation & kGreater)) expectKey(bounds.upper, bounds.upperLen);
    return estimate;
  }
};

TEST(Numbers, EstimatesInEveryFormat) {
  for (unsigned char format : {1, 2, 8}) {
    SCOPED_TRACE(int{format});
    EXPECT_EQ(Term(NxIntTab, format, 5, 1, 10).Eval(kEqual), 0.1F);
    EXPECT_EQ(Term(NxIntTab, format, 5, 1, 10).Eval(kEqual, false), 0);
    EXPECT_EQ(Term(NxCharTab, format, '\xFF', '\x80', '\x7F').Eval(kLess), 127 / 256.F);
    EXPECT_EQ(Term(NxByteTab, format, '\xFF', '\x00', '\xFF').Eval(kLess), 255 / 256.F);
    EXPECT_EQ(Term(NxShortTab, format, short{-1}, short{-32768}, short{32767}).Eval(kGreater),
              32768 / 65536.F);
    EXPECT_EQ(Term(NxWordTab, format, Word{0x8000}, Word{0}, Word{65535}).Eval(kLess), 0.5F);
    const long low = std::numeric_limits<long>::min(), high = std::numeric_limits<long>::max();
    EXPECT_EQ(Term(NxLongTab, format, 0L, low, high).Eval(kLess), 0.5F) << "the span does not overflow";
    EXPECT_EQ(Term(NxIntTab, format, 0, int(low), int(high)).Eval(kLess), 0.5F);
    EXPECT_EQ(Term(NxDWordTab, format, 0x80000000UL, 0UL, 0xFFFFFFFFUL).Eval(kLess), 0.5F);
    EXPECT_EQ(Term(NxUnsignedTab, format, 0xC0000000U, 0U, 0xFFFFFFFFU).Eval(kLess), 0.75F);
    EXPECT_EQ(Term(NxFloatTab, format, 1.5F, 0.F, 9.F).Eval(kLess), 0.15F);
    EXPECT_EQ(Term(NxDoubleTab, format, 2.5, 0.0, 9.0).Eval(kLess), 0.25F);
  }
}

TEST(Numbers, FloatsSelectSomething) {
  const float least = 1.1920928955078125e-7F;
  EXPECT_EQ(Term(NxDoubleTab, 1, 0.0, -1e308, 1e308).Eval(kEqual), least);
  EXPECT_EQ(Term(NxFloatTab, 1, 0.F, -1e30F, 1e30F).Eval(kEqual), least);
  EXPECT_EQ(Term(NxFloatTab, 1, 5.F, 6.F, 1e30F).Eval(kEqual), 0) << "an empty range stays one";
  EXPECT_EQ(Term(NxDoubleTab, 1, 1.0, kNan, kNan).Eval(kLess), 1) << "no numbers: the largest by the largest";
}

TEST(Numbers, Wide) {
  const long long big = 1LL << 60;
  EXPECT_EQ(Term(NxInt64Tab, 2, -5LL, -10LL, -1LL).Eval(kEqual), 0.1F);
  EXPECT_EQ(Term(NxInt64Tab, 1, big, big - 1, big + 1).Eval(kEqual), 1.0F);
  // The doubles see no difference between key and range; the integers do.
  EXPECT_EQ(Term(NxInt64Tab, 1, big + 1, big, big + 2).Eval(kGreater), 1.0F);
  EXPECT_EQ(Term(NxInt64Tab, 1, big + 3, big, big + 2).Eval(kGreater), 0.0F);
  EXPECT_EQ(Term(NxInt64Tab, 1, 5LL, 1LL, 10LL).Eval(kLess, false), 0);
  struct Words {
    unsigned short w0, w1, w2;
  };
  EXPECT_EQ(Term(NxSealTab, 1, Words{1, 0, 5}, Words{1, 0, 1}, Words{1, 0, 10}).Eval(kLess), 0.4F);
  EXPECT_EQ(
      Term(NxSealTab, 2, Words{0xFFFF, 0, 0}, Words{0, 0, 0}, Words{0xFFFF, 0xFFFF, 0xFFFF}).Eval(kGreater),
      static_cast<float>(4294967295.0 / 281474976710656.0));
}

TEST(Numbers, BooleansAndTimes) {
  EXPECT_EQ(Term(NxBooleanTab, 1, '\1', '\0', '\1').Eval(kEqual), 1 / 3.F);
  EXPECT_EQ(Term(NxBooleanTab, 1, '\1', '\0', '\1').Eval(kEqual, false), 0);
  struct Clock {
    signed char hour, minute, second;
  };
  EXPECT_EQ(Term(NxTimeTab, 1, Clock{12, 0, 0}, Clock{0, 0, 0}, Clock{23, 59, 59}).Eval(kLess), 0.5F);
  EXPECT_EQ(Term(NxTimeTab, 1, Clock{0, 0, 0}, Clock{0, 0, 0}, Clock{0, 0, 0}).Eval(kEqual, false), 1)
      << "an index of midnight alone";
  unsigned short relation = 0x7FF0 | kEqual;
  unsigned char key[3] = {};
  TimeEvalAndBound(nullptr, relation, key, 1, 1, nullptr);
  EXPECT_EQ(relation, kEqual) << "the options are masked out";
}

struct Day {
  short year;
  signed char month, day;
};

Day ReadDay(const void* image, unsigned char format) {
  Day d;
  DateLoad(&d, image, format, 1);
  return d;
}

TEST(Dates, WildcardsBecomeTheirEnds) {
  struct Row {
    Day key, lower, upper;
    unsigned short relation;  // after the call
    double fraction;          // of an index of the year 2000
  };
  const double year = 366;
  const Row rows[] = {
      {{2000, 3, 15}, {2000, 3, 15}, {2000, 3, 15}, kEqual, 1 / year},
      {{2000, 2, -1}, {2000, 2, 1}, {2000, 2, 29}, kEqual | kWildcardFound, 29 / year},
      {{2000, -1, -1}, {2000, 1, 1}, {2000, 12, 31}, kEqual | kWildcardFound, 1},
      {{2000, -1, 5}, {2000, 1, 5}, {2000, 12, 5}, kEqual | kWildcardFound, 336 / year},
      {{2001, 2, -1}, {2001, 2, 1}, {2001, 2, 28}, kEqual | kWildcardFound, 0},
      // From the first day there is (-4713-11-24) on.
      {{-1, -1, -1}, {-4713, 11, 24}, {32766, 12, 31}, kEqual | kWildcardFound, 1},
      {{-1, 2, -1}, {-4713, 2, 24}, {32766, 2, 28}, kEqual | kWildcardFound, 1},
      {{-1, 12, 3}, {-4713, 12, 3}, {32766, 12, 3}, kEqual | kWildcardFound, 1},
      {{-4713, 11, -1}, {-4713, 11, 24}, {-4713, 11, 30}, kEqual | kWildcardFound, 0},
      {{32767, 12, -1}, {32767, 12, 1}, {32767, 12, 31}, kEqual | kWildcardFound, 0},
  };
  for (const Row& row : rows) {
    for (unsigned char format : {1, 2}) {
      SCOPED_TRACE(testing::Message() << "row " << &row - rows << " format " << int{format});
      Bytes key(4), low(4), high(4);
      const Day first{2000, 1, 1}, last{2000, 12, 31};
      DateStore(key.data(), &row.key, format, 1);
      DateStore(low.data(), &first, format, 1);
      DateStore(high.data(), &last, format, 1);
      NxIdxBounds range{low.data(), high.data(), 4, 4}, bounds{};
      unsigned short relation = kEqual | kIgnoreCase;
      EXPECT_EQ(DateEvalAndBound(&range, relation, key.data(), format, 1, &bounds),
                static_cast<float>(row.fraction));
      EXPECT_EQ(relation, row.relation);
      for (const auto& [image, expected] : {std::pair{bounds.lower, row.lower}, {bounds.upper, row.upper}}) {
        const Day day = ReadDay(image, format);
        EXPECT_EQ((std::vector<int>{day.year, day.month, day.day}),
                  (std::vector<int>{expected.year, expected.month, expected.day}));
        std::free(image);
      }
    }
  }
}

// What the earliest date raises enters the estimate, not the image.
TEST(Dates, BeforeTheEarliest) {
  Bytes key(4), low(4), high(4);
  const Day term{-1, 3, 7}, first{-4713, 11, 24}, last{-4713, 12, 31};
  DateStore(key.data(), &term, 1, 1);
  DateStore(low.data(), &first, 1, 1);
  DateStore(high.data(), &last, 1, 1);
  NxIdxBounds range{low.data(), high.data(), 4, 4}, bounds{};
  unsigned short relation = kLess | kEqual;
  // All of the index lies between the raised lower end, its first day, and the upper.
  EXPECT_EQ(DateEvalAndBound(&range, relation, key.data(), 1, 1, &bounds), 1);
  EXPECT_EQ(bounds.lower, nullptr);
  EXPECT_EQ(ReadDay(bounds.upper, 1).month, 3);
  std::free(bounds.upper);

  bounds = {};
  relation = kEqual;
  DateEvalAndBound(nullptr, relation, key.data(), 1, 1, &bounds);
  EXPECT_EQ(ReadDay(bounds.lower, 1).month, 3);
  EXPECT_EQ(ReadDay(bounds.lower, 1).day, 7);
  std::free(bounds.lower);
  std::free(bounds.upper);
}

TEST(Dates, ImagesTooShortStay) {
  Bytes key(4, 0xFF);
  for (unsigned long length : {1UL, 3UL, 4UL}) {
    Bytes lower(length, 7), upper(length, 7);
    NxIdxBounds bounds{lower.data(), upper.data(), static_cast<unsigned char>(length),
                       static_cast<unsigned char>(length)};
    unsigned short relation = kEqual;
    DateEvalAndBound(nullptr, relation, key.data(), 1, 1, &bounds);
    EXPECT_EQ(lower[0] == 7, length < 4);
    EXPECT_EQ(upper[0] == 7, length < 4);
  }
  NxIdxBounds bounds{};
  unsigned short relation = kEqual;
  DateEvalAndBound(nullptr, relation, key.data(), 1, 0, &bounds);  // images of no date
  std::free(bounds.lower);
  std::free(bounds.upper);
}

}  // namespace
