#include "data/utf16.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "data/failure.h"

namespace nxtm {

namespace {

constexpr unsigned kMark = 0xFEFF, kSwappedMark = 0xFFFE;

class Utf16Text {
 public:
  Utf16Text(ByteSource source, std::string file, Utf16Order order)
      : source_(std::move(source)), file_(std::move(file)), order_(order) {}

  /// As a ByteSource.
  unsigned long Read(char* room, unsigned long size) {
    while (ready_.empty() && Convert()) continue;
    const unsigned long n = std::min<unsigned long>(size, ready_.size());
    ready_.copy(room, n);
    ready_.erase(0, n);
    return n;
  }

 private:
  /// Converts another piece of the source; false at its end.
  bool Convert() {
    char bytes[4096];
    const unsigned long n = source_(bytes, sizeof bytes);
    for (unsigned long i = 0; i < n; ++i)
      if (half_) {
        Take(static_cast<unsigned char>(*half_), static_cast<unsigned char>(bytes[i]));
        half_.reset();
      } else {
        half_ = bytes[i];
      }
    if (n != 0) return true;
    if (half_) Fail("ends within a character");
    if (high_ != 0) Fail("ends within a surrogate pair");
    return false;
  }

  void Take(unsigned first, unsigned second) {
    const unsigned unit = order_ == Utf16Order::kBig ? first << 8 | second : second << 8 | first;
    const bool isFirst = ++units_ == 1;
    if (isFirst && unit == kMark) return;
    if (isFirst && unit == kSwappedMark && order_ == Utf16Order::kByMark) {
      order_ = Utf16Order::kBig;
      return;
    }
    const bool isHigh = unit >= 0xD800 && unit < 0xDC00, isLow = unit >= 0xDC00 && unit < 0xE000;
    if (isLow != (high_ != 0)) Fail("half of a surrogate pair as character " + std::to_string(units_));
    if (isHigh) {
      high_ = unit;
    } else {
      Put(isLow ? 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00) : unit);
      high_ = 0;
    }
  }

  void Put(unsigned c) {
    if (c < 0x80) {
      ready_ += static_cast<char>(c);
      return;
    }
    const unsigned more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;  // bytes behind the first one
    ready_ += static_cast<char>((0xF80 >> more & 0xFF) | c >> 6 * more);
    for (unsigned i = more; i-- > 0;) ready_ += static_cast<char>(0x80 | (c >> 6 * i & 0x3F));
  }

  [[noreturn]] void Fail(const std::string& reason) const {
    throw Failure(file_ + ": not UTF-16: " + reason);
  }

  ByteSource source_;
  std::string file_;
  Utf16Order order_;
  std::string ready_;         // converted, and not read yet
  std::optional<char> half_;  // of a unit
  unsigned high_ = 0;         // the first half of a surrogate pair
  unsigned long long units_ = 0;
};

}  // namespace

ByteSource Utf8OfUtf16(ByteSource source, const std::string& file, Utf16Order order) {
  const auto text = std::make_shared<Utf16Text>(std::move(source), file, order);
  return [text](char* room, unsigned long size) { return text->Read(room, size); };
}

}  // namespace nxtm
