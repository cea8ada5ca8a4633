#include "collation/nxplainkey.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "collation/nxkeybytes.h"
#include "nxstring.h"

namespace {

using namespace NxKeyBytes;

constexpr unsigned char kSortAccent = 0x1F;
constexpr unsigned char kSortCapital = 0x80;

constexpr unsigned kLongest = 64;            // a bit for each letter
constexpr unsigned long kBytesOfLetter = 4;  // itself, an accent of two bytes, case
constexpr unsigned kStep = 8;                // letters that are read at once, and put at least

unsigned HighestBit(unsigned bits) { return 31 - static_cast<unsigned>(__builtin_clz(bits)); }
unsigned HighestBit(unsigned long long bits) { return 63 - static_cast<unsigned>(__builtin_clzll(bits)); }
unsigned LowestBit(unsigned bits) { return static_cast<unsigned>(__builtin_ctz(bits)); }
unsigned LowestBit(unsigned long long bits) { return static_cast<unsigned>(__builtin_ctzll(bits)); }

/// The sort bytes of eight characters, taken apart.
class Step {
 public:
  explicit Step(__m128i sortBytes)
      : letters_(_mm_packus_epi16(_mm_and_si128(sortBytes, _mm_set1_epi16(0xFF)), _mm_setzero_si128())),
        marks_(_mm_packus_epi16(_mm_srli_epi16(sortBytes, 8), _mm_setzero_si128())) {}

  /// Takes away the first `n` characters.
  void Drop(unsigned n) {
    const __m128i bits = _mm_cvtsi32_si128(static_cast<int>(8 * n));
    letters_ = _mm_srl_epi64(letters_, bits);
    marks_ = _mm_srl_epi64(marks_, bits);
  }
  void PutLetters(unsigned char* key) const { _mm_storel_epi64(reinterpret_cast<__m128i*>(key), letters_); }

  // A bit for each of the characters.

  unsigned WithoutLetter() const { return ZeroesOf(letters_); }
  unsigned WithAccent() const { return ZeroesOf(_mm_and_si128(marks_, _mm_set1_epi8(kSortAccent))) ^ 0xFF; }
  unsigned Capitals() const {
    static_assert(kSortCapital == 0x80, "the bit that movemask takes");
    return static_cast<unsigned>(_mm_movemask_epi8(marks_));
  }

 private:
  static unsigned ZeroesOf(__m128i bytes) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()))) & 0xFF;
  }

  __m128i letters_, marks_;  // in the low eight bytes
};

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
  unsigned At(const unsigned char* p) const { return sortBytes_[*p]; }
  /// The sort bytes of the four characters at p, behind those of four others.
  __m128i Behind(__m128i four, const unsigned char* p) const {
    four = _mm_insert_epi16(four, At(p), 4);
    four = _mm_insert_epi16(four, At(p + 1), 5);
    four = _mm_insert_epi16(four, At(p + 2), 6);
    return _mm_insert_epi16(four, At(p + 3), 7);
  }
  __m128i Four(const unsigned char* p) const {
    __m128i four = _mm_cvtsi32_si128(static_cast<int>(At(p)));
    four = _mm_insert_epi16(four, At(p + 1), 1);
    four = _mm_insert_epi16(four, At(p + 2), 2);
    return _mm_insert_epi16(four, At(p + 3), 3);
  }

  /// The last step may begin within the one before.
  bool PutLetters(unsigned char* key) {
    unsigned unsuited = 0;
    for (unsigned place = 0;; place += kStep) {
      place = std::min(place, size_ - kStep);
      const unsigned char* const p = text_ + place;
      const Step step(Behind(Four(p), p + kStep / 2));
      step.PutLetters(key + place);
      unsuited |= step.WithoutLetter();
      accents_ |= static_cast<Bits>(step.WithAccent()) << place;
      capitals_ |= static_cast<Bits>(step.Capitals()) << place;
      if (place == size_ - kStep) return unsuited == 0;
    }
  }
  /// Reads what lies before the text as well, and drops it.
  bool PutFewLetters(unsigned char* key) {
    const unsigned char* const p = text_ + size_ - kStep / 2;
    Step step(Behind(size_ > kStep / 2 ? Four(p - kStep / 2) : _mm_setzero_si128(), p));
    step.Drop(kStep - size_);
    step.PutLetters(key);
    accents_ = step.WithAccent();
    capitals_ = step.Capitals();
    return (step.WithoutLetter() & ~(~0U << size_)) == 0;
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

unsigned short NxSortBytesOf(unsigned short order, unsigned char selector) {
  if (selector != kHomeSelector || order < kFirstDigitOrder || order >= kFirstHanOrder) return 0;
  if (order < kFirstLetterOrder) {
    const unsigned digit = order - kFirstDigitOrder;
    return static_cast<unsigned short>(digit % 10 == 0 ? kFirstDigit + digit / 5 : 0);
  }
  const unsigned letterCase = order >> 12 & 3;
  if (letterCase > kSmallCase) return 0;
  const unsigned mark = (order >> 7 & kSortAccent) | (letterCase == 0 ? kSortCapital : 0);
  return static_cast<unsigned short>(mark << 8 | (kFirstBase + (order & 0x7F)));
}

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
