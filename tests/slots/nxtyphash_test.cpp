// Hashing of the fixed-size types.

#include "nxtyphash.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

/// The word behind a hash: the multiplier is odd and has an inverse modulo 2^32.
unsigned Word(const NxTypeTab& type, unsigned char format, Bytes value, unsigned long count = 1) {
  constexpr unsigned kInverse = 0xEEB9EB65;
  static_assert(1103515245U * kInverse == 1);
  int error = 7;
  const unsigned hash = type.Hash(format, value.size(), value.data(), count, error);
  EXPECT_EQ(error, 0);
  return hash * kInverse;
}

TEST(Hash, WordsOfElements) {
  struct Row {
    const NxTypeTab& type;
    Bytes value;
    unsigned native, big;  // under code 1 or 8, and under code 2
  };
  const Row rows[] = {
      {NxCharTab, {0x80}, 0xFFFFFF80, 0xFFFFFF80},
      {NxByteTab, {0x80}, 0x80, 0x80},
      {NxShortTab, {0x12, 0x80}, 0xFFFF8012, 0x1280},
      {NxWordTab, {0x12, 0x80}, 0x8012, 0x1280},
      {NxIntTab, {1, 2, 3, 4}, 0x04030201, 0x01020304},
      {NxUnsignedTab, {1, 2, 3, 4}, 0x04030201, 0x01020304},
      {NxLongTab, {1, 2, 3, 4}, 0x04030201, 0x01020304},
      {NxBlockIdTab, {1, 2, 3, 4}, 0x04030201, 0x01020304},
      {NxFloatTab, {1, 2, 3, 4}, 0x04030201, 0x01020304},
      {NxDoubleTab, {1, 2, 3, 4, 0, 0, 0, 0x10}, 0x14030201, 0x01020314},
      {NxInt64Tab, {1, 2, 3, 4, 0, 0, 0, 0x10}, 0x14030201, 0x01020314},
      {NxBooleanTab, {255}, 0xFFFFFFFF, 0xFFFFFFFF},
      {NxDateTab, {0x01, 0x02, 3, 4}, 0x02010304, 0x01020304},
      {NxDateTab, {0xFF, 0xFF, 0xFF, 0xFF}, 0xFFFEFEFF, 0xFFFEFEFF},
      {NxTimeTab, {1, 0xFF, 3}, 0xFF03, 0xFF03},
      {NxSealTab, {1, 2, 4, 8, 16, 32}, 0x2A15, 0x152A},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.type.name);
    EXPECT_EQ(Word(row.type, 8, row.value), row.native);
    EXPECT_EQ(Word(row.type, 1, row.value), row.native);
    EXPECT_EQ(Word(row.type, 2, row.value), row.big);
    Bytes twice = row.value;
    twice.insert(twice.end(), row.value.begin(), row.value.end());
    EXPECT_EQ(Word(row.type, 2, twice, 2), 0U) << "equal elements cancel";
    EXPECT_EQ(Word(row.type, 1, {}, 0), 0U);
  }
  int error;
  unsigned char byte = 0xFF;
  EXPECT_EQ(CharHash(1, 0, &byte, 1, error), 0xBE39B193);
  EXPECT_EQ(ByteHash(1, 0, &byte, 1, error), 0x84881E93);
}

TEST(Hash, BufferEnds) {
  struct Row {
    std::size_t length;
    unsigned long count;
    int error;
    unsigned long elements;  // that the answer covers
  };
  const Row rows[] = {{6, 3, 0, 3},    {4, 3, 2101, 2}, {5, 3, 2101, 2},         {2, 3, 2101, 1},
                      {1, 1, 2101, 0}, {4, 2, 0, 2},    {6, 0xFFFFFFFF, 2101, 3}};
  Bytes values = {1, 0, 2, 0, 4, 0};
  for (const Row& row : rows) {
    Bytes cut(values.begin(), values.begin() + static_cast<long>(row.length));  // ends where it says
    int error = 7, ignored;
    const unsigned long hash = ShortHash(1, cut.size(), cut.data(), row.count, error);
    EXPECT_EQ(error, row.error) << row.length << " " << row.count;
    EXPECT_EQ(hash, ShortHash(1, 0, values.data(), row.elements, ignored)) << row.length << " " << row.count;
  }
}

TEST(Hash, AlphabeticStringsLeaveTheErrorAlone) {
  int error = 7;
  unsigned char byte = 1;
  EXPECT_EQ(NxIStringHash(1, 0, &byte, 1, error), 0U);
  EXPECT_EQ(NxCaseIStringHash(1, 0, &byte, 1, error), 0U);
  EXPECT_EQ(error, 7);
}

}  // namespace
