// The comparison of keys in place, held to the general way over images of every kind.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "collation/nxstrcmpkeys.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"

namespace {

/// Units that meet often: letters that differ in one level only, digits, symbols,
/// spaces, wildcards and the ends of each class.
std::vector<unsigned short> Alphabet() {
  std::vector<unsigned short> units = {1,      32,     0x4F, 0x50, 0x60, 0x3EFF, 0x3F00, 0x3F01,
                                       0x4000, 5020,   5021, 5148, 5276, 0x7FFF, 0x8000, 0xFFFE,
                                       0x400C, 0x500C, 400,  401,  402,  403,    0x508C, 0x500C + 0x100};
  units.push_back(NxString::GetAsterisk());
  units.push_back(NxString::GetQuestion());
  return units;
}

class KeyImages : public testing::Test {
 protected:
  unsigned Random(unsigned below) { return static_cast<unsigned>(random_()) % below; }

  std::string Image(const std::vector<unsigned short>& units, unsigned char language, unsigned char format) {
    const unsigned short n = static_cast<unsigned short>(2 * units.size() + 4);
    std::string image(2 * units.size() + 6, '\0');
    ShortStore(&image[0], &n, format, 1);
    image[2] = static_cast<char>(kCodeSetOrderValues);
    image[3] = static_cast<char>(language);
    ShortStore(&image[4], units.data(), format, units.size());
    image.back() = '\xFF';
    return image;
  }

  std::vector<unsigned short> Text() {
    static const std::vector<unsigned short> alphabet = Alphabet();
    std::vector<unsigned short> units(Random(3) ? Random(9) : Random(40));
    if (Random(3) == 0) {  // letters that share their bases often
      for (auto& unit : units) unit = static_cast<unsigned short>(0x500C + Random(2) * 4 + Random(3) * 0x80);
      return units;
    }
    const unsigned few = 2 + Random(static_cast<unsigned>(alphabet.size()) - 1);
    const unsigned from = Random(static_cast<unsigned>(alphabet.size()));
    for (auto& unit : units) unit = alphabet[(from + Random(few)) % alphabet.size()];
    if (Random(20) == 0 && !units.empty()) units[Random(static_cast<unsigned>(units.size()))] = 0;
    return units;
  }

  /// One of the first again with a unit or two changed, put in or left out.
  std::vector<unsigned short> Relative(std::vector<unsigned short> units) {
    const std::vector<unsigned short> other = Text();
    for (unsigned n = Random(3); n > 0 && !other.empty() && !units.empty(); --n) {
      const auto at = units.begin() + Random(static_cast<unsigned>(units.size()));
      if (Random(2))
        *at = other[Random(static_cast<unsigned>(other.size()))];
      else if (Random(2))
        units.insert(at, other[0]);
      else
        units.erase(at);
    }
    return units;
  }

  std::mt19937 random_{11};
};

TEST_F(KeyImages, CompareAsTheGeneralWay) {
  const unsigned char languages[] = {1, 1, 1, 1, 4, 0x81, 0, 0x80, 19, 20, 127, 254};
  unsigned served = 0;
  for (int i = 0; i < 300000; ++i) {
    const auto textA = Text();
    const auto textB = Random(3) ? Relative(textA) : Text();
    const unsigned char format = (Random(2) ? 1 : 2) | (Random(4) ? kFormatKey : 0);
    const unsigned short options = static_cast<unsigned short>(Random(2) ? kWildcardsOff : random_() & 0x3F0);
    std::string a = Image(textA, languages[Random(12)], format);
    std::string b =
        Image(textB, Random(4) ? static_cast<unsigned char>(a[3]) : languages[Random(12)], format);
    long result = 77;
    int error = 77, expectedError;
    if (NxCompareKeys(a.data(), b.data(), format, options, result, error) == NxVerdict::kDecided) {
      ++served;
      ASSERT_EQ(result,
                StringCompareCommon(format, a.size(), &a[0], b.size(), &b[0], options, 1, expectedError, 0))
          << testing::PrintToString(a) << testing::PrintToString(b) << " options " << options;
      ASSERT_EQ(error, expectedError);
    }
    if (Random(20) == 0) a[Random(4)] = static_cast<char>(random_());
    if (Random(20) == 0) b[b.size() - 1 - Random(2)] = static_cast<char>(random_());
    if (Random(10) == 0) b.resize(1 + Random(static_cast<unsigned>(b.size())));
    // In memory of their own size, so that a read beyond them is found.
    std::vector<char> x(a.begin(), a.end()), y(b.begin(), b.end());
    result = StringCompare(format, x.size(), x.data(), y.size(), y.data(), options, 1, error);
    ASSERT_EQ(result, StringCompareCommon(format, x.size(), x.data(), y.size(), y.data(), options, 1,
                                          expectedError, 0))
        << testing::PrintToString(x) << testing::PrintToString(y) << " options " << options << " format "
        << int{format};
    ASSERT_EQ(error, expectedError);
  }
  EXPECT_GT(served, 100000u);
}

}  // namespace
