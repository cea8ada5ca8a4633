// Index bounds and estimates of the fixed-size types.

#include "nxtypevl.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "nxtypcmp.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

TEST(Boundaries, ByTheRelation) {
  struct Row {
    unsigned short relation;
    bool lower, upper;
  };
  const Row rows[] = {{kRelationEqual, true, true},
                      {kRelationLess, false, true},
                      {kRelationLess | kRelationEqual, false, true},
                      {kRelationGreater, true, false},
                      {kRelationGreater | kRelationEqual, true, false},
                      {kRelationLess | kRelationGreater, false, false}};
  unsigned char key[] = {1, 2, 3};
  SetBoundaries(nullptr, key, kRelationEqual, 3);
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
  SetBoundaries(&bounds, key, kRelationEqual, 2);
  EXPECT_EQ(bounds.lower, &present);
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
