// The values that are numbers: 64-bit integers by the laws of arithmetic, truth values,
// seals.
#include "nxint64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "nxbool.h"
#include "nxseal.h"
#include "support/strings.h"

namespace {

const NxInt64 kMinimum(0UL, static_cast<long>(0x80000000UL));

NxInt64 N(long long v) { return NxInt64::FromWide(v); }

std::string Hex(const NxInt64& v) {
  char text[40];
  std::snprintf(text, sizeof text, "%08lX:%08lX", static_cast<unsigned long>(v.high), v.low);
  return text;
}

/// Zero, powers of two and of ten with their neighbours, and both ends; both signs.
std::vector<NxInt64> Corners() {
  std::vector<NxInt64> values;
  for (int bit = 0; bit < 64; bit += 7)
    for (long long offset = -1; offset <= 1; ++offset)
      values.push_back(N(static_cast<long long>((1ULL << bit) + static_cast<unsigned long long>(offset))));
  for (long long v : {3LL, 10LL, 1000000007LL, 0xFFFFFFFFLL, 0x100000000LL, 1000000000000000000LL}) {
    values.push_back(N(v));
    values.push_back(N(-v));
  }
  values.push_back(kMinimum);
  return values;
}

bool Same(const NxInt64& a, const NxInt64& b) { return a.low == b.low && a.high == b.high; }

/// The laws of arithmetic modulo 2^64, which the halves alone have to keep.
void CheckLaws(const NxInt64& a, const NxInt64& b) {
  const NxInt64 zero, one(1);
  const auto wide = [](const NxInt64& v) { return static_cast<unsigned long long>(v.Wide()); };
  SCOPED_TRACE(Hex(a) + ' ' + Hex(b));
  ASSERT_EQ(wide(a + b), wide(a) + wide(b));
  ASSERT_TRUE(Same((a + b) - b, a) && Same(-a, zero - a) && Same(~a, -a - one));
  ASSERT_EQ(wide(a * b), wide(a) * wide(b));
  ASSERT_TRUE(Same((a & b) + (a | b), a + b) && Same(~(a & b), ~a | ~b));
  ASSERT_TRUE(OperatorsAgree(a, b, (a.Wide() > b.Wide()) - (a.Wide() < b.Wide())));
  ASSERT_TRUE(Same(a.Abs(), a < zero ? -a : a));
  if (Same(b, zero)) return;
  const NxInt64 quotient = a / b, remainder = a % b;
  ASSERT_TRUE(Same(quotient * b + remainder, a));
  ASSERT_TRUE(remainder.Abs() < b.Abs() || Same(b, kMinimum));
  ASSERT_TRUE(Same(remainder, zero) || (remainder < zero) == (a < zero));
  for (unsigned count : {0U, 1U, 31U, 32U, 33U, 63U, 64U, 70U, 0xFFFFFFFFU}) {
    ASSERT_EQ(wide(a << count), count < 64 ? wide(a) << count : 0);
    ASSERT_EQ((a >> count).Wide(), a.Wide() >> (count < 64 ? count : 63));
  }
}

TEST(NxInt64, KeepsTheLawsOfArithmetic) {
  const std::vector<NxInt64> corners = Corners();
  for (const NxInt64& a : corners)
    for (const NxInt64& b : corners) CheckLaws(a, b);
  std::mt19937_64 random(20011);
  const auto any = [&] {
    return N(static_cast<long long>(random())) >> static_cast<unsigned>(random() % 64);
  };
  for (int i = 0; i < 20000; ++i) CheckLaws(any(), any());
}

TEST(NxInt64, ConstructionAndAssignment) {
  NxInt64 v;
  EXPECT_EQ(v.Wide(), 0);
  EXPECT_EQ(NxInt64(-1L).Wide(), -1);
  EXPECT_EQ(NxInt64(-2147483647 - 1).Wide(), -2147483648LL);
  EXPECT_EQ(NxInt64(4294967295UL).Wide(), 4294967295LL);
  EXPECT_EQ(NxInt64(5UL, -1L).Wide(), 5 - 4294967296LL);
  EXPECT_EQ((v = -7).Wide(), -7);
  EXPECT_EQ((v = 0x80000000UL).Wide(), 2147483648LL);
}

TEST(NxInt64, InPlaceOperatorsStoreAndReturnACopy) {
  NxInt64 v(0xFFFFFFFFUL);
  EXPECT_EQ((++v).Wide(), 4294967296LL);
  EXPECT_EQ((--v).Wide(), 4294967295LL);
  EXPECT_EQ((v += 2).Wide(), 4294967297LL);
  EXPECT_EQ((v -= NxInt64(7)).Wide(), 4294967290LL);
  EXPECT_EQ((v *= -3).Wide(), -12884901870LL);
  EXPECT_EQ((v /= 4).Wide(), -3221225467LL);
  EXPECT_EQ((v %= 1000).Wide(), -467);
  EXPECT_EQ((v <<= 40).Wide(), -467LL * 1099511627776LL);
  EXPECT_EQ((v >>= 41).Wide(), -234);
  (v += 1) += 100;
  EXPECT_EQ(v.Wide(), -233);
  v *= v;
  EXPECT_EQ(v.Wide(), 54289);
}

TEST(NxInt64, DivisionByZeroIsReported) {
  Reports reports;
  EXPECT_EQ((NxInt64(5) / NxInt64()).Wide(), 0);
  EXPECT_EQ((NxInt64(-5) % NxInt64()).Wide(), 0);
  EXPECT_EQ((kMinimum / NxInt64()).Wide(), 0);
  EXPECT_EQ((kMinimum % NxInt64()).Wide(), -1);  // the correction for the lowest dividend
  EXPECT_EQ(reports.Take(), std::vector<std::string>(4, "0 && \"NxInt64 divide by zero\" src/nxint64:737"));
}

NxBoolean Byte(int value) {
  NxBoolean b;
  b.value = static_cast<unsigned char>(value);
  return b;
}

TEST(NxBoolean, AnyNumberButZeroIsTrue) {
  EXPECT_EQ(NxBoolean().value, 0);
  EXPECT_EQ(NxBoolean(5).value, 1);
  EXPECT_EQ(NxBoolean(-256L).value, 1);
  NxBoolean b(1);
  EXPECT_EQ((b = 0L).value, 0);
  EXPECT_EQ(b.SetNullValue(), 0);
  EXPECT_EQ(b.value, 255);
  EXPECT_TRUE(b.IsNullValue());
  EXPECT_TRUE(b < 0L && Byte(1) > 0L && Byte(2) == 7L && Byte(2) == Byte(1));
  EXPECT_TRUE(Byte(2) > Byte(1) && !(Byte(1) < Byte(2))) << "greater, but no lower";
}

TEST(NxSeal, IsANumber) {
  NxInt64 number;
  NxSeal({1, 2, 3}).ConvertTo(number);
  EXPECT_EQ(number.Wide(), 4295098371LL);
  NxSeal({0xFFFF, 0xFFFF, 0xFFFF}).ConvertTo(number);
  EXPECT_EQ(number.Wide(), 0xFFFFFFFFFFFFLL);
  NxSeal seal;
  seal.ConvertFrom(NxInt64(5UL, 0x10000));  // 2^48 is beyond a seal
  EXPECT_TRUE((seal == NxSeal{0, 0, 5}));
  seal.ConvertFrom(NxInt64(-1));
  EXPECT_TRUE((seal == NxSeal{0xFFFF, 0xFFFF, 0xFFFF}));
}

}  // namespace
