// Index bounds and estimates of the fixed-size types.

#include "nxtypevl.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "nxtypcmp.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

TEST(Boundaries, ThatAreThereStay) {
  unsigned char key[] = {1, 2, 3}, present = 9;
  SetBoundaries(nullptr, key, kRelationEqual, 3);
  NxIdxBounds bounds{&present, nullptr, 1, 0};
  SetBoundaries(&bounds, key, kRelationEqual, 2);
  EXPECT_EQ(bounds.lower, &present);
  EXPECT_EQ(bounds.lowerLen, 1);
  EXPECT_EQ(static_cast<unsigned char*>(bounds.upper)[1], 2);
  std::free(bounds.upper);
}

TEST(Dates, ImagesTooShortStay) {
  Bytes key(4, 0xFF);
  for (unsigned long length : {1UL, 3UL, 4UL}) {
    Bytes lower(length, 7), upper(length, 7);
    NxIdxBounds bounds{lower.data(), upper.data(), static_cast<unsigned char>(length),
                       static_cast<unsigned char>(length)};
    unsigned short relation = kRelationEqual;
    DateEvalAndBound(nullptr, relation, key.data(), 1, 1, &bounds);
    EXPECT_EQ(lower[0] == 7, length < 4);
    EXPECT_EQ(upper[0] == 7, length < 4);
  }
  NxIdxBounds bounds{};
  unsigned short relation = kRelationEqual;
  DateEvalAndBound(nullptr, relation, key.data(), 1, 0, &bounds);  // images of no date
  std::free(bounds.lower);
  std::free(bounds.upper);
}

}  // namespace
