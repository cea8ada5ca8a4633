// A private copy of a text that its buffer does not close: what reads texts goes on to
// their zero.
#ifndef NXCLOSEDCOPY_H
#define NXCLOSEDCOPY_H

#include <cstring>
#include <memory>

#include "base/nxalloc.h"

/// A copy of bytes with zeros behind them, in the object itself where they fit.
template <unsigned long kLocalBytes>
class NxClosedCopy {
 public:
  NxClosedCopy() = default;
  NxClosedCopy(const NxClosedCopy&) = delete;
  NxClosedCopy& operator=(const NxClosedCopy&) = delete;

  /// Copies n bytes of text in place of what was copied before. Null, without a copy,
  /// when there is no memory.
  const char* Take(const void* text, unsigned long n) {
    char* copy = local_;
    if (n > kLocalBytes) {
      heap_.reset(NxNewArray<char>(n + kZeros));
      copy = heap_.get();
      if (!copy) return nullptr;
    }
    if (n != 0) std::memcpy(copy, text, n);
    std::memset(copy + n, 0, kZeros);
    return copy;
  }

 private:
  static constexpr unsigned long kZeros = 3;  // a 16-bit zero, also behind an odd byte

  char local_[kLocalBytes + kZeros];
  std::unique_ptr<char[]> heap_;
};

#endif
