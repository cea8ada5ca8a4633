#include "collation/nxplainkey.h"

#include <algorithm>
#include <cstring>

#include "collation/nxkeybytes.h"
#include "collation/nxsortstep.h"
#include "nxstring.h"

namespace {

using namespace NxKeyBytes;
using Step = NxSortStep;

constexpr unsigned kLongest = 64;            // a bit for each letter
constexpr unsigned long kBytesOfLetter = 4;  // itself, an accent of two bytes, case
constexpr unsigned kStep = Step::kSize;

unsigned HighestBit(unsigned bits) { return 31 - static_cast<unsigned>(__builtin_clz(bits)); }
unsigned HighestBit(unsigned long long bits) { return 63 - static_cast<unsigned>(__builtin_clzll(bits)); }
unsigned LowestBit(unsigned bits) { return static_cast<unsigned>(__builtin_ctz(bits)); }
unsigned LowestBit(unsigned long long bits) { return static_cast<unsigned>(__builtin_ctzll(bits)); }

/// Reads and writes the key of one text.
template <class Bits>
class PlainKey {
 public:
  PlainKey(const NxOrderTable& table, const char* text, unsigned size)
      : sortBytes_(table.sortBytes), text_(reinterpret_cast<const unsigned char*>(text)), size_(size) {}

  unsigned Write(unsigned char* key) {
    if (!(size_ < kStep ? PutFewLetters(key) : PutLetters(key))) return 0;
    unsigned char* end = key + size_;
    if (accents_ != 0) end = PutAccents(end);
    if (capitals_ != 0)
      end = PutCase(end);
    else
      *end++ = kEnd;
    return static_cast<unsigned>(end - key);
  }

 private:
  __m128i Four(const unsigned char* p) const { return Step::Four(sortBytes_, p); }

  /// The last step may begin within the one before.
  bool PutLetters(unsigned char* key) {
    __m128i marks = _mm_setzero_si128();
    for (unsigned place = 0;; place += kStep) {
      place = std::min(place, size_ - kStep);
      const unsigned char* const p = text_ + place;
      const Step step(Four(p), Four(p + kStep / 2));
      step.PutLetters(key + place);
      marks = _mm_or_si128(marks, step.Marks());
      accents_ |= static_cast<Bits>(step.WithAccent()) << place;
      capitals_ |= static_cast<Bits>(step.Capitals()) << place;
      if (place == size_ - kStep) return !Step::AnyUnsuited(marks);
    }
  }
  /// Reads what lies before the text as well, and drops it.
  bool PutFewLetters(unsigned char* key) {
    const unsigned char* const p = text_ + size_ - kStep / 2;
    const __m128i first = size_ > kStep / 2 ? Four(p - kStep / 2) : _mm_setzero_si128();
    Step step(first, Four(p));
    step.Drop(kStep - size_);
    step.PutLetters(key);
    accents_ = step.WithAccent();
    capitals_ = step.Capitals();
    return !Step::AnyUnsuited(step.Marks());
  }

  /// From the last accent to the first one.
  unsigned char* PutAccents(unsigned char* key) const {
    *key++ = kAccents;
    unsigned end = size_;
    for (Bits left = accents_; left != 0;) {
      const unsigned place = HighestBit(left);
      left ^= Bits{1} << place;
      *key++ = static_cast<unsigned char>(0xFF - (end - 1 - place));
      *key++ = static_cast<unsigned char>(sortBytes_[text_[place]] >> 8 & kSortAccent);
      end = place;
    }
    return key;
  }
  /// From the first capital to the last one.
  unsigned char* PutCase(unsigned char* key) const {
    *key++ = kHighCase;
    unsigned begin = 0;
    for (Bits left = capitals_; left != 0; left &= left - 1) {
      const unsigned place = LowestBit(left);
      *key++ = static_cast<unsigned char>(0xFF - (place - begin));
      begin = place + 1;
    }
    *key++ = kCaseEnd;
    return key;
  }

  const unsigned short* const sortBytes_;
  const unsigned char* const text_;
  const unsigned size_;
  Bits accents_ = 0, capitals_ = 0;
};

}  // namespace

unsigned NxWritePlainKey(const NxOrderTable& table, const char* text, unsigned size, unsigned char* key,
                         unsigned long room) {
  if (size > kLongest || room < size * kBytesOfLetter + kStep) return 0;
  if (size > 32) return PlainKey<unsigned long long>(table, text, size).Write(key);
  return PlainKey<unsigned>(table, text, size).Write(key);
}

bool NxPutPlainKey(const NxOrderTable& table, const char* text, NxKeyWriter& key) {
  char copy[kBeforePlainText + kLongest] = {};
  const unsigned size = strnlen(text, kLongest + 1);
  if (size > kLongest) return false;
  std::memcpy(copy + kBeforePlainText, text, size);
  const unsigned n = NxWritePlainKey(table, copy + kBeforePlainText, size, key.Place(), key.Room());
  key.Take(n);
  return n != 0;
}
