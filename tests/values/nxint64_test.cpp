// NxInt64 held to a plain algorithm on halves and bits, over corner values and random
// ones; division by zero, and the conversion from double.
#include "nxint64.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"

namespace {

// The truth: two halves, 32-bit steps, one bit at a time.
namespace steps {

const NxInt64 kMinimum(0UL, static_cast<long>(0x80000000UL));
const NxInt64 kMaximum(0xFFFFFFFFUL, 0x7FFFFFFF);

bool Same(const NxInt64& a, const NxInt64& b) { return a.low == b.low && a.high == b.high; }

NxInt64 Add(const NxInt64& a, const NxInt64& b) {
  const unsigned long low = a.low + b.low;
  const unsigned long carry = low < b.low;
  return {low,
          static_cast<long>(static_cast<unsigned long>(a.high) + static_cast<unsigned long>(b.high) + carry)};
}

NxInt64 Negate(const NxInt64& a) { return Add(NxInt64(~a.low, ~a.high), NxInt64(1UL, 0)); }

NxInt64 Magnitude(const NxInt64& a) { return a.high < 0 ? Negate(a) : a; }

NxInt64 Left(NxInt64 a, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    a.high = static_cast<long>(static_cast<unsigned long>(a.high) << 1 | a.low >> 31);
    a.low <<= 1;
  }
  return a;
}

NxInt64 Right(NxInt64 a, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    a.low = a.low >> 1 | static_cast<unsigned long>(a.high) << 31;
    a.high >>= 1;
  }
  return a;
}

bool Bit(const NxInt64& a, unsigned i) { return Right(a, i).low & 1; }

NxInt64 Multiply(const NxInt64& a, const NxInt64& b) {
  if (Same(a, kMinimum) || Same(b, kMinimum))
    return (Same(a, kMinimum) ? b.low : a.low) & 1 ? kMinimum : NxInt64(0UL, 0);
  const NxInt64 factor = Magnitude(b);
  NxInt64 product(0UL, 0);
  for (int i = 62; i >= 0; --i) {
    product = Left(product, 1);
    if (Bit(factor, static_cast<unsigned>(i))) product = Add(product, a);
  }
  return b.high < 0 ? Negate(product) : product;
}

bool Less(const NxInt64& a, const NxInt64& b) { return a.high != b.high ? a.high < b.high : a.low < b.low; }

/// Quotient and remainder; b is not 0.
void Divide(const NxInt64& a, const NxInt64& b, NxInt64& quotient, NxInt64& remainder) {
  const bool correct = Same(a, kMinimum);
  const NxInt64 dividend = correct ? kMaximum : Magnitude(a);
  const NxInt64 divisor = Magnitude(b);
  quotient = NxInt64(0UL, 0);
  remainder = NxInt64(0UL, 0);
  if (Same(b, kMinimum)) {
    remainder = dividend;
  } else {
    for (int i = 62; i >= 0; --i) {
      remainder = Left(remainder, 1);
      if (Bit(dividend, static_cast<unsigned>(i))) remainder.low |= 1;
      if (Less(remainder, divisor)) continue;
      remainder = Add(remainder, Negate(divisor));
      quotient = Add(quotient, Left(NxInt64(1UL, 0), static_cast<unsigned>(i)));
    }
  }
  if (correct) {
    remainder = Add(remainder, NxInt64(1UL, 0));
    if (Same(remainder, divisor)) {
      remainder = NxInt64(0UL, 0);
      quotient = Add(quotient, NxInt64(1UL, 0));
    }
  }
  if ((a.high < 0) != (b.high < 0)) quotient = Negate(quotient);
  if (a.high < 0) remainder = Negate(remainder);
}

}  // namespace steps

NxInt64 N(long long v) { return NxInt64::FromWide(v); }

std::string Hex(const NxInt64& v) {
  char text[40];
  std::snprintf(text, sizeof text, "%08lX:%08lX", static_cast<unsigned long>(v.high), v.low);
  return text;
}

#define EXPECT_SAME(actual, expected) EXPECT_EQ(Hex(actual), Hex(expected)) << Hex(a) << ' ' << Hex(b)

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
  values.push_back(steps::kMinimum);
  values.push_back(steps::kMaximum);
  return values;
}

void CheckPair(const NxInt64& a, const NxInt64& b) {
  EXPECT_SAME(a + b, steps::Add(a, b));
  EXPECT_SAME(a - b, steps::Add(a, steps::Negate(b)));
  EXPECT_SAME(a * b, steps::Multiply(a, b));
  EXPECT_SAME(a & b, NxInt64(a.low & b.low, a.high & b.high));
  EXPECT_SAME(a | b, NxInt64(a.low | b.low, a.high | b.high));
  const bool less = steps::Less(a, b), greater = steps::Less(b, a);
  EXPECT_TRUE((a < b) == less && (a >= b) == !less && (a > b) == greater && (a <= b) == !greater &&
              (a == b) == (!less && !greater) && (a != b) == (less || greater))
      << Hex(a) << ' ' << Hex(b);
  if (steps::Same(b, NxInt64())) return;
  NxInt64 quotient, remainder;
  steps::Divide(a, b, quotient, remainder);
  EXPECT_SAME(a / b, quotient);
  EXPECT_SAME(a % b, remainder);
}

void CheckOne(const NxInt64& a) {
  const NxInt64 b;
  EXPECT_SAME(-a, steps::Negate(a));
  EXPECT_SAME(~a, NxInt64(~a.low, ~a.high));
  EXPECT_SAME(a.Abs(), steps::Magnitude(a));
  for (unsigned count : {0U, 1U, 31U, 32U, 33U, 63U, 64U, 70U, 4096U}) {
    EXPECT_SAME(a << count, steps::Left(a, count));
    EXPECT_SAME(a >> count, steps::Right(a, count));
  }
  EXPECT_SAME(a >> 0xFFFFFFFFU, steps::Right(a, 64));
  EXPECT_SAME(a << 0xFFFFFFFFU, b);
}

TEST(NxInt64, ArithmeticIsThatOfTheHalves) {
  const std::vector<NxInt64> corners = Corners();
  for (const NxInt64& a : corners) {
    CheckOne(a);
    for (const NxInt64& b : corners) CheckPair(a, b);
  }
  std::mt19937_64 random(20011);
  for (int i = 0; i < 20000; ++i) {
    const NxInt64 a = N(static_cast<long long>(random())) >> static_cast<unsigned>(random() % 64);
    const NxInt64 b = N(static_cast<long long>(random())) >> static_cast<unsigned>(random() % 64);
    CheckPair(a, b);
    CheckOne(a);
  }
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

std::string report;

TEST(NxInt64, DivisionByZeroIsReported) {
  const NxAssertHandler before = NxSetAssertHandler([](const char* expression, const char* path, int line) {
    report += std::string(expression) + '|' + path + '|' + std::to_string(line) + '\n';
  });
  const std::string one = "0 && \"NxInt64 divide by zero\"|src/nxint64|737\n";
  EXPECT_EQ((NxInt64(5) / NxInt64()).Wide(), 0);
  EXPECT_EQ(report, one);
  EXPECT_EQ((NxInt64(-5) % NxInt64()).Wide(), 0);
  EXPECT_EQ((steps::kMinimum / NxInt64()).Wide(), 0);
  EXPECT_EQ((steps::kMinimum % NxInt64()).Wide(), -1);  // the correction for the lowest dividend
  EXPECT_EQ(report, one + one + one + one);
  NxSetAssertHandler(before);
}

}  // namespace
