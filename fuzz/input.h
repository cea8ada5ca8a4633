// What the fuzz targets share: the fields of a case, taken from the front of its bytes.
// They lie in memory of exactly their size, so that a step beside it is seen.
#ifndef FUZZ_INPUT_H
#define FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "support/block.h"

inline void Require(bool condition) {
  if (!condition) __builtin_trap();
}

/// The bytes of one case. What lies behind their end reads as 0.
class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : at_(bytes), end_(bytes + size) {}

  bool IsUsedUp() const { return at_ == end_; }

  unsigned char Byte() { return at_ != end_ ? *at_++ : 0; }
  /// Low byte first.
  unsigned short Word() {
    const unsigned char low = Byte();
    return static_cast<unsigned short>(Byte() << 8 | low);
  }

  /// A size that is small most of the time: one byte, or the word behind kWide.
  unsigned short Size() {
    const unsigned char size = Byte();
    return size != kWide ? size : Word();
  }

  /// So many bytes; fewer when the case ends before.
  Block Take(unsigned long size) {
    const unsigned long taken = std::min<unsigned long>(size, static_cast<unsigned long>(end_ - at_));
    at_ += taken;
    return Block(at_ - taken, taken);
  }

  /// Its size as in Size, then its bytes. Behind a wide size a byte says how many of them there
  /// are; repeated they fill the block, so that a short case makes a large one.
  Block TakeBlock() {
    const unsigned char small = Byte();
    if (small != kWide) return Take(small);
    const unsigned long size = Word();
    const Block pattern = Take(Byte() + 1UL);
    Block block(pattern.Size() != 0 ? size : 0);
    for (unsigned long at = 0; at < block.Size(); at += pattern.Size())
      std::memcpy(block.Data() + at, pattern.Data(), std::min(pattern.Size(), block.Size() - at));
    return block;
  }

  /// All that is left.
  Block Rest() { return Take(static_cast<unsigned long>(end_ - at_)); }

 private:
  // Not a byte that the fuzzer likes to put: large cases are slow.
  static constexpr unsigned char kWide = 0xF3;

  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

#endif
