// The truth value with its null state, and the 48-bit seal.
#include "nxbool.h"

#include <gtest/gtest.h>

#include "nxint64.h"
#include "nxseal.h"
#include "nxstring.h"

namespace {

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
}

TEST(NxBoolean, ComparesWithNullFirst) {
  const struct {
    int a, b, equal, less, greater;
  } cases[] = {
      {255, 255, 1, 0, 0},
      {255, 0, 0, 1, 0},
      {0, 255, 0, 0, 1},
      {255, 128, 0, 1, 0},
      {0, 0, 1, 0, 0},
      {0, 1, 0, 1, 0},
      {1, 0, 0, 0, 1},
      {1, 2, 1, 0, 0},    // both true, and no lower for being the
                          // smaller byte
      {2, 1, 1, 0, 1},    // but greater
      {128, 0, 0, 1, 0},  // -128
      {0, 254, 0, 0, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Byte(c.a) == Byte(c.b), c.equal) << c.a << ' ' << c.b;
    EXPECT_EQ(Byte(c.a) < Byte(c.b), c.less) << c.a << ' ' << c.b;
    EXPECT_EQ(Byte(c.a) > Byte(c.b), c.greater) << c.a << ' ' << c.b;
  }
  EXPECT_EQ(Byte(2) == 7L, 1);
  EXPECT_EQ(Byte(255) < 0L, 1);
  EXPECT_EQ(Byte(1) > 0L, 1);
}

TEST(NxSeal, OrdersByItsWords) {
  const NxSeal high = {1, 0, 0}, low = {0, 0xFFFF, 0xFFFF};
  EXPECT_EQ(high != low, 1);
  EXPECT_EQ(low != high, -1);
  EXPECT_EQ((NxSeal{1, 2, 3} != NxSeal{1, 0xFFFF, 0}), 2 - 0xFFFF);
  EXPECT_EQ((NxSeal{1, 2, 3} != NxSeal{1, 2, 0}), 3);
  EXPECT_EQ((NxSeal{1, 2, 3} != NxSeal{1, 2, 3}), 0);
  EXPECT_TRUE((NxSeal{1, 2, 3} == NxSeal{1, 2, 3}));
  EXPECT_FALSE((NxSeal{1, 2, 3} == NxSeal{0, 2, 3}));
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

TEST(NxSeal, PrintsAndScansInDecimal) {
  NxString text("seal ");
  EXPECT_STREQ(NxSeal({1, 2, 3}).PrintToNxString(text).StrGet(), "seal 4295098371");
  NxSeal seal;
  seal.ScanFromNxString(NxString("4295098371"));
  EXPECT_TRUE((seal == NxSeal{1, 2, 3}));
  seal.ScanFromNxString(NxString());
  EXPECT_TRUE(seal == NxSeal());
  seal.ScanFromNxString(NxString("no number"));  // scans as -1
  EXPECT_TRUE((seal == NxSeal{0xFFFF, 0xFFFF, 0xFFFF}));
}

}  // namespace
