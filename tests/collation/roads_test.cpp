// Which road serves a comparison: a short way that is never taken answers right and is
// noticed by nobody else. The sources that choose are compiled into this program with
// their counters.
#include <gtest/gtest.h>

#include <functional>

#include "collation/nxstrcmp.h"
#include "nxtypcmp.h"
#include "strwild.h"
#include "support/strings.h"

namespace {

/// The road that served, and no other one, when the tables have been built.
NxRoad RoadOf(const std::function<void()>& compare) {
  compare();
  for (auto& count : nxRoadsTaken) count = 0;
  compare();
  int road = -1;
  for (int i = 0; i <= static_cast<int>(NxRoad::kKeyLevels); ++i) {
    if (nxRoadsTaken[i] == 0) continue;
    EXPECT_EQ(road, -1) << "two roads";
    road = i;
  }
  return static_cast<NxRoad>(road);
}

TEST(Roads, OfTexts) {
  const struct {
    const char *a, *b;
    unsigned char codeSetA, codeSetB, languageB;
    unsigned short op;
    NxRoad road;
  } cases[] = {
      {"ab", "ac", 1, 1, 1, kWildcardsOff, NxRoad::kPlainBytes},
      {"ab", "aB", 1, 1, 1, kWildcardsOff, NxRoad::kPlainBytes},
      {"ab", "a*", 1, 1, 1, 0, NxRoad::kPlainBytes},
      {"ab", "ac", 1, 3, 1, kWildcardsOff, NxRoad::kWalk},
      {"ab", "ac", 1, 1, 4, kWildcardsOff, NxRoad::kWalk},
      {"ab", "ac", 1, 1, 1, kWildcardsOff | kIgnoreCase, NxRoad::kPlainBytes},
      {"ab", "ac", 253, 253, 1, 0, NxRoad::kWalk},
      {"ab", "ac", 1, 253, 1, kWildcardsOff, NxRoad::kLevels},
      {"ab", "ac", 1, 1, 1, kOrderValuesOnly, NxRoad::kOrderValues},
      {"ab", "ac", 0, 0, 0, 0, NxRoad::kBytes},
      {"ab", "ac", 1, 1, 254, 0, NxRoad::kUnread},
  };
  for (const auto& c : cases) {
    const std::string a = Encoded(Widened(c.a), c.codeSetA) + std::string(2, '\0');
    const std::string b = Encoded(Widened(c.b), c.codeSetB) + std::string(2, '\0');
    const NxRoad road = RoadOf([&] {
      NxStrCmp(c.codeSetA, 1, a.c_str(), c.codeSetB, c.languageB, b.c_str(), c.op, -1, 1, nullptr);
    });
    EXPECT_EQ(static_cast<int>(road), static_cast<int>(c.road)) << "row " << &c - cases;
  }
}

TEST(Roads, OfStoredOnes) {
  const struct {
    std::string a, b;
    unsigned short op;
    unsigned char format;
    NxRoad road;
  } cases[] = {
      {StringImage(u"\u500C\u5010", 254), StringImage(u"\u500C\u5014", 254), kWildcardsOff, 0x81,
       NxRoad::kKeyBases},
      {StringImage(u"\u500C\u5010", 254), StringImage(u"\u500C\u4010", 254), kWildcardsOff, 0x81,
       NxRoad::kKeyLevels},
      {StringImage(u"\u500C\u5010", 254, 1, 2), StringImage(u"\u500C\u5014", 254, 1, 2), kWildcardsOff, 0x82,
       NxRoad::kKeyLevels},
      {StringImage("ab"), StringImage("ac"), kWildcardsOff, 1, NxRoad::kPlainBytes},
      {StringImage("ab"), StringImage("ac", 253), kWildcardsOff, 1, NxRoad::kLevels},
      {StringImage("ab", 253), StringImage("ac", 253), kWildcardsOff, 1, NxRoad::kWalk},
      {StringImage("ab", 253, 1, 2), StringImage("ac", 253, 1, 2), kWildcardsOff, 2, NxRoad::kLevels},
  };
  for (const auto& c : cases) {
    std::string a = c.a, b = c.b;
    int error;
    const NxRoad road =
        RoadOf([&] { StringCompare(c.format, a.size(), &a[0], b.size(), &b[0], c.op, 1, error); });
    EXPECT_EQ(static_cast<int>(road), static_cast<int>(c.road)) << "row " << &c - cases;
  }
}

}  // namespace
