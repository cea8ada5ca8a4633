// Images compared where they lie, held against the manager.

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "query/query.h"

namespace {

using nxtm::CompareImages;
using nxtm::Manager;

int Sign(long order) { return (order > 0) - (order < 0); }

/// Bytes of an image: often those of extremes, and of numbers that differ in one byte.
std::string AnyImage(std::mt19937& random, unsigned long size, bool nullable) {
  static const unsigned char kBytes[] = {0, 0, 1, 0x7F, 0x80, 0xF0, 0xFE, 0xFF};
  std::string image(size, '\0');
  for (char& byte : image) byte = static_cast<char>(random() % 3 ? kBytes[random() % 8] : random());
  if (nullable) image[0] = 0;
  return image;
}

}  // namespace

TEST(InPlaceOrder, IsTheManagers) {
  std::mt19937 random(7);
  int types = 0;
  for (char type = 0; type < 40; ++type) {
    for (const unsigned short options : {0, static_cast<int>(kWildcardsOff)}) {
      const CompareImages order = nxtm::InPlaceOrder(type, options);
      if (!order) continue;
      ++types;
      const bool nullable = std::strncmp(Manager().NameGet(type, nullptr), "NxNull_", 7) == 0;
      const unsigned long size = nxtm::Box(type).FixedSize();
      for (int i = 0; i < 20000; ++i) {
        std::string a = AnyImage(random, size, nullable);
        std::string b = i % 4 ? AnyImage(random, size, nullable) : a;
        if (i % 4 == 0) b[size - 1 - random() % (size - nullable)] ^= static_cast<char>(i % 8 ? 0 : 0x81);
        int error = 0;
        const long expected = Manager().Cmp(type, size, a.data(), size, b.data(), options, 1, 1, error);
        ASSERT_EQ(Sign(expected), Sign(order(a.data(), b.data()))) << int{type} << " " << nxtm::Hex(a + b);
      }
    }
  }
  EXPECT_EQ(14 * 2 + 1, types);
}
