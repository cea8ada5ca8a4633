// The disk code set: what is known of its two tables without repeating them.
#include "nxcodset.h"

#include <gtest/gtest.h>

#include <set>

namespace {

unsigned char To(int c) { return _NxConvertToDiskFormat(static_cast<unsigned char>(c)); }
unsigned char From(int c) { return _NxConvertFromDiskFormat(static_cast<unsigned char>(c)); }

TEST(DiskCodeSet, AsciiStandsForItself) {
  for (int c = 0; c < 0x80; ++c) {
    EXPECT_EQ(To(c), c);
    EXPECT_EQ(From(c), c);
  }
}

TEST(DiskCodeSet, ReadingIsAPermutationAndUndoesAllWritesButTwo) {
  std::set<unsigned char> read, written, lost;
  for (int c = 0x80; c < 0x100; ++c) {
    read.insert(From(c));
    written.insert(To(c));
    if (From(To(c)) != c) lost.insert(static_cast<unsigned char>(c));
  }
  EXPECT_EQ(read.size(), 128U);
  EXPECT_EQ(*read.begin(), 0x80);
  EXPECT_EQ(lost, (std::set<unsigned char>{0xAC, 0xEC}));
  EXPECT_EQ(written.size(), 126U);
  EXPECT_EQ(written.count(0x90) + written.count(0x92), 0U);
}

// The two tables must not be off by the same permutation: single bytes from every row.
TEST(DiskCodeSet, SingleBytes) {
  const unsigned char pairs[][2] = {{0x80, 0x80}, {0x8F, 0x97}, {0x90, 0x98}, {0x9F, 0xF7}, {0xA8, 0xB4},
                                    {0xAC, 0x98}, {0xBE, 0x83}, {0xC0, 0xE2}, {0xCF, 0xFC}, {0xD8, 0xC4},
                                    {0xDF, 0xD4}, {0xE0, 0xC1}, {0xEC, 0x9A}, {0xF4, 0xB6}, {0xFF, 0x8F}};
  for (const auto& pair : pairs) EXPECT_EQ(To(pair[0]), pair[1]) << std::hex << +pair[0];
}

}  // namespace
