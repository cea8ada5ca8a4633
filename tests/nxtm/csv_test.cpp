// What neither transcripts nor the fuzz target say of CSV: how much of a source is in memory.

#include "data/csvfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using nxtm::CsvReader;

TEST(Csv, MemoryHoldsAPieceOfManyRows) {
  const std::string row = std::string(1023, 'x') + "\n";
  unsigned long long left = 64ULL << 20;
  unsigned long most = 0;
  const auto source = [&](char* room, unsigned long size) {
    most = std::max(most, size);
    const unsigned long n = left == 0 ? 0 : row.copy(room, size);
    left -= n;
    return n;
  };
  CsvReader reader(source, "rows", {});
  while (reader.Next()) ASSERT_LE(reader.Fields().size(), 1UL);
  EXPECT_EQ(0ULL, left);
  EXPECT_EQ(64ULL << 20, reader.BytesDone());
  EXPECT_EQ(CsvReader::kPiece, most);
}

TEST(Csv, ARowThatDoesNotEndIsRefusedAndNamed) {
  bool first = true;
  const auto source = [&](char* room, unsigned long size) {
    std::memset(room, '\n', size);
    if (first) std::memcpy(room, "a\n\"", 3);
    first = false;
    return size;
  };
  CsvReader reader(source, "rows", {});
  ASSERT_TRUE(reader.Next());
  try {
    reader.Next();
    FAIL() << "it ended";
  } catch (const nxtm::BadRow& failure) {
    FAIL() << "nothing can be set aside: " << failure.what();
  } catch (const nxtm::Failure& failure) {
    EXPECT_STREQ("rows:2:1: the row is longer than 285212672 bytes", failure.what());
  }
}

}  // namespace
