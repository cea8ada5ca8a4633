// Comparisons of images where they lie: of one size, under the native format. The manager,
// which compares values of any type and form, is what they are tested against.

#include <cstdint>
#include <cstring>

#include "query/query.h"

namespace nxtm {

namespace {

template <class Number>
Number ReadAs(const char* image) {
  Number number;
  std::memcpy(&number, image, sizeof number);
  return number;
}

/// The order of numbers.
template <class Number>
long OrderOf(const char* a, const char* b) {
  const auto x = ReadAs<Number>(a), y = ReadAs<Number>(b);
  return (x > y) - (x < y);
}

/// The same with a byte before them, which tells null.
template <class Number>
long OrderBehindFlag(const char* a, const char* b) {
  return OrderOf<Number>(a + 1, b + 1);
}

/// A date as a number: its year, and month and day, which are signed, too.
std::int32_t NumberOfDate(const char* image) {
  constexpr unsigned kSign = 0x80;
  const unsigned month = static_cast<unsigned char>(image[2]), day = static_cast<unsigned char>(image[3]);
  return ReadAs<std::int16_t>(image) * 0x10000 + static_cast<int>((month ^ kSign) << 8 | (day ^ kSign));
}

long OrderOfDates(const char* a, const char* b) {
  const std::int32_t x = NumberOfDate(a), y = NumberOfDate(b);
  return (x > y) - (x < y);
}

constexpr struct {
  std::string_view type;
  unsigned short options;  // that a comparison must have
  CompareImages order;
} kOrders[] = {{"short", 0, OrderOf<std::int16_t>},
               {"long", 0, OrderOf<std::int32_t>},
               {"int", 0, OrderOf<std::int32_t>},
               {"unsigned", 0, OrderOf<std::uint32_t>},
               {"float", 0, OrderOf<float>},
               {"double", 0, OrderOf<double>},
               {"NxInt64", 0, OrderOf<std::int64_t>},
               {"NxNull_short", 0, OrderBehindFlag<std::int16_t>},
               {"NxNull_long", 0, OrderBehindFlag<std::int32_t>},
               {"NxNull_int", 0, OrderBehindFlag<std::int32_t>},
               {"NxNull_unsigned", 0, OrderBehindFlag<std::uint32_t>},
               {"NxNull_float", 0, OrderBehindFlag<float>},
               {"NxNull_double", 0, OrderBehindFlag<double>},
               {"NxNull_NxInt64", 0, OrderBehindFlag<std::int64_t>},
               {"NxDate", kWildcardsOff, OrderOfDates}};

}  // namespace

CompareImages InPlaceOrder(char type, unsigned short options) {
  const std::string_view name = Manager().NameGet(type, nullptr);
  for (const auto& order : kOrders)
    if (order.type == name && (options & order.options) == order.options) return order.order;
  return nullptr;
}

}  // namespace nxtm
