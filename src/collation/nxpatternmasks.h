// The search for the parts of a pattern behind a star by bits: each literal of the pattern has
// a number whose bits are the places of the text where it stands. Shifted and joined, these
// leave the places from which a part matches. It is what NxPatternSearch finds, for 8-bit
// texts of up to a block and more, where equal characters are equal bytes.
#ifndef NXPATTERNMASKS_H
#define NXPATTERNMASKS_H

#include "collation/nxblocks.h"
#include "collation/nxpatternsearch.h"

#ifdef NX_BLOCK_READS

/// The places of bytes in a text that ends in the block where it begins, or in the next one.
class NxBytePlaces {
 public:
  /// False for a text that is longer.
  NX_READS_BLOCKS bool Read(const char* text) {
    before_ = reinterpret_cast<std::uintptr_t>(text) % kBlockBytes;
    const auto* const block = reinterpret_cast<const __m128i*>(text - before_);
    first_ = _mm_load_si128(block);
    const unsigned zeros = Bits(_mm_cmpeq_epi8(first_, _mm_setzero_si128())) >> before_;
    // Where the text ends in the first block that one again, without a branch.
    second_ = _mm_load_si128(block + static_cast<int>(zeros == 0));
    const unsigned ends =
        Joined(_mm_cmpeq_epi8(first_, _mm_setzero_si128()), _mm_cmpeq_epi8(second_, _mm_setzero_si128()));
    inside_ = (ends & -ends) - 1;
    return ends != 0;
  }
  /// A bit for each byte of the text.
  unsigned Inside() const { return inside_; }
  unsigned Length() const { return static_cast<unsigned>(__builtin_ctz(~inside_)); }
  /// Those that a literal of a pattern stands for.
  unsigned Of(char literal) const {
    if (literal == '?') return inside_;
    const __m128i wanted = NxBlockOf(static_cast<unsigned char>(literal));
    return Joined(_mm_cmpeq_epi8(first_, wanted), _mm_cmpeq_epi8(second_, wanted)) & inside_;
  }
  /// Those above ASCII.
  unsigned High() const { return Joined(first_, second_) & inside_; }

 private:
  static unsigned Bits(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
  unsigned Joined(__m128i first, __m128i second) const {
    return (Bits(first) | Bits(second) << kBlockBytes) >> before_;
  }

  __m128i first_, second_;
  unsigned before_;
  unsigned inside_;
};

class NxPatternMasks {
 public:
  /// The table is that of both texts, no option leaves out differences of letters, and the
  /// wildcards are the usual ones.
  explicit NxPatternMasks(const NxOrderTable& table) : table_(table) {}

  /// Matches a text against a pattern that stands on a star: kMatches, kDiffers, kUnsuited.
  NxMatch Run(const char* text, const char* pattern) {
    if (table_.contracts || !places_.Read(text)) return NxMatch::kUnsuited;
    for (unsigned high = places_.High(); high != 0; high &= high - 1)
      if (table_.EntryOf(text[__builtin_ctz(high)]).key & NxOrderTable::kNeedsIterator)
        return NxMatch::kUnsuited;
    unsigned from = 0;
    for (;;) {
      while (*pattern == '*') ++pattern;
      if (*pattern == 0) return NxMatch::kMatches;
      const NxMatch match = FindPart(pattern, from);
      if (match != NxMatch::kNextStar) return match;
    }
  }

  /// Of a text that differs.
  int Difference() const { return NxEndBefore(table_.EntryOf(*ending_).key, *ending_ == '?'); }

 private:
  /// Takes `part` and `from` behind a part and where it first occurs from there on.
  NxMatch FindPart(const char*& part, unsigned& from) {
    if (table_.EntryOf(*part).key & NxOrderTable::kNeedsIterator) return NxMatch::kUnsuited;
    ending_ = part;
    const unsigned length = places_.Length();
    if (from == length) return NxMatch::kDiffers;
    unsigned begins = places_.Of(*part) >> from << from;  // from where the part matches so far
    unsigned n = 1;
    while (*++part != '*') {
      const unsigned key = table_.EntryOf(*part).key;
      if (key & NxOrderTable::kNeedsIterator) return NxMatch::kUnsuited;
      // The text may end behind what the part begins with. The earliest place where it does
      // is the last one found.
      const bool toEnd = (begins >> (length - n) & 1) != 0;
      if (key == 0) return toEnd ? NxMatch::kMatches : NxMatch::kDiffers;
      if (toEnd) ending_ = part;
      begins &= places_.Of(*part) >> n++;
      if (begins == 0) return NxMatch::kDiffers;  // as most texts do by two letters
    }
    if (begins == 0) return NxMatch::kDiffers;
    from = static_cast<unsigned>(__builtin_ctz(begins)) + n;
    return NxMatch::kNextStar;
  }

  const NxOrderTable& table_;
  NxBytePlaces places_;
  const char* ending_ = nullptr;  // where the pattern stands when the text ends
};

/// NxPatternMasks::Run with its difference.
[[gnu::noinline, gnu::regparm(3)]] inline NxMatch NxMatchByMasks(const NxOrderTable& table, const char* text,
                                                                 const char* pattern, int& difference) {
  NxPatternMasks masks(table);
  const NxMatch match = masks.Run(text, pattern);
  if (match == NxMatch::kDiffers) difference = masks.Difference();
  return match;
}

#endif

#endif
