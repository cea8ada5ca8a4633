// Queries on the alphabetic strings: comparison with wildcards and keys, bounds of
// a term's index scan, hashing (there is none).

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "alpha/nxalpha.h"
#include "base/nxalloc.h"
#include "base/nxclosedcopy.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "nxtyphash.h"
#include "strwild.h"

namespace {

constexpr unsigned long kHeadSize = NxAlphaImage::kHeadSize;

/// A text as the byte matchers take it: zero-terminated. Copied only when the bytes
/// at hand end without a terminator.
class TerminatedText {
 public:
  explicit TerminatedText(NxTextSpan text) {
    const unsigned long size = text.Size();
    if (size == 0) return;
    if (std::memchr(text.at, 0, size)) {
      text_ = reinterpret_cast<const char*>(text.at);
    } else if (const char* const closed = copy_.Take(text.at, size)) {
      text_ = closed;
    }
  }

  operator const char*() const { return text_; }

 private:
  NxClosedCopy<kTruncatedTextMax> copy_;
  const char* text_ = "";
};

// ---------------------------------------------------------------------------
// Comparison

/// As nxstrcmp; neither text is read past its end.
int CompareBytes(NxTextSpan a, NxTextSpan b, unsigned long n) {
  for (;;) {
    const int byteA = a.HasByte() ? *a.at++ : 0;
    const int byteB = b.HasByte() ? *b.at++ : 0;
    if (byteA != byteB || byteA == 0 || --n == 0) return byteA - byteB;
  }
}

/// One comparison of two arrays: Run() walks the elements, CompareElement() decides
/// one of them by what the operands are (keys or texts) and by the wildcards.
template <class Text>
class AlphaComparison {
 public:
  AlphaComparison(unsigned char format, unsigned short options, int& error)
      : format_(format), options_(options), error_(error) {}

  long Run(unsigned long len1, const void* value1, unsigned long len2, const void* value2,
           unsigned long count) {
    error_ = 0;
    if (count == 0) return 0;
    if (!Open(first_, value1, len1) || !Open(second_, value2, len2)) {
      error_ = kPastBuffer;
      return 0;
    }
    if (Truncated(second_) && !CopySecond()) {
      error_ = kNotPossible;
      return -1;
    }
    for (;;) {
      const long result = CompareElement();
      if (--count == 0) return result;
      // The way to the next element is checked whatever the result is, but the element
      // itself is not looked at behind one that decides.
      if (!Advance(first_) || !Advance(second_)) error_ = kPastBuffer;
      if (result != 0 || error_ != 0) return result;
      if (InMemory()) {
        TakeText(first_);
        TakeText(second_);
      }
    }
  }

 private:
  static constexpr bool kFoldsCase = NxAlphaRules<Text>::kFoldsCase;
  static constexpr unsigned long kWorkSize = kTruncatedTextMax;

  struct Operand {
    NxTextSpan rest;        // from the element's text to the end of what can be read
    unsigned long size;     // bytes from there to the end of the image by its head
    unsigned char flags;    // form of all texts
    const Text* value;      // memory form: the element
    unsigned long objects;  // memory form: elements left in the buffer from `value` on

    bool IsKey() const { return flags & kAlphaKeys; }
  };

  bool InMemory() const { return format_ == kFormatMemory; }
  bool WildcardsActive() const { return !(options_ & (kWildcardsOff | kOrderValuesOnly)); }

  /// Sets an operand to its first element; false when the buffer does not hold the
  /// object or the image's head. A length of 0 is no limit.
  bool Open(Operand& operand, const void* value, unsigned long length) {
    if (length == 0) length = kNoLimit;
    if (InMemory()) {
      operand.value = static_cast<const Text*>(value);
      operand.objects = length / sizeof(Text);
      if (operand.objects == 0) return false;
      operand.flags = operand.value->_nForm;
      TakeText(operand);
      return true;
    }
    if (length < kHeadSize) return false;
    const NxAlphaImage image(value, length, format_);
    operand.rest = image.texts;
    operand.size = image.total;
    operand.flags = image.header;
    return true;
  }

  static void TakeText(Operand& operand) {
    operand.rest = NxTextOf(operand.value->_pStr);
    operand.size = operand.rest.Size();
  }

  static bool Truncated(const Operand& operand) { return operand.rest.Size() < operand.size; }

  /// Copies what there is of the second operand's image, its last byte replaced by a
  /// terminator; false when it is too long for that.
  bool CopySecond() {
    const unsigned long available = second_.rest.Size();
    if (available >= kWorkSize) return false;
    std::copy_n(second_.rest.at, available, work_);
    if (available > 0) work_[available - 1] = 0;
    second_.rest = {work_, work_ + available};
    return true;
  }

  /// Moves to the next element; false when there is none to be read. In memory form its
  /// text is still to be taken.
  bool Advance(Operand& operand) {
    if (InMemory()) {
      ++operand.value;
      return --operand.objects != 0;
    }
    const unsigned char* start = operand.rest.at;
    NxNextText(operand.rest);
    operand.size -= static_cast<unsigned long>(operand.rest.at - start);
    return operand.rest.HasByte();
  }

  // What follows compares the elements at hand.

  long CompareElement() {
    if (!WildcardsActive()) {
      if (!first_.IsKey()) return CompareKeys(FirstTruncated(), first_.flags);
      return ComparePlain(FirstTruncated() || (second_.IsKey() && StoredKeysMayBeCut()));
    }
    const TerminatedText pattern(second_.rest);
    const int wildcard = kFoldsCase ? caseistrwc(pattern, second_.flags) : istrwc(pattern, second_.flags);
    if (wildcard >= 0) {
      const auto w = static_cast<unsigned long>(wildcard);
      return first_.IsKey() ? MatchKey(pattern, w) : MatchText(pattern, w);
    }
    if (first_.IsKey())
      return second_.IsKey() ? ComparePlain(FirstTruncated() || StoredKeysMayBeCut())
                             : CompareKeys(true, first_.flags);
    long result = CompareKeys(FirstTruncated(), TextFlags());
    if (!kFoldsCase && result == 0 && error_ != kPastBuffer) result = ComparePlain(false);
    return result;
  }

  /// The first operand's form where wildcards are active and it is no key.
  unsigned char TextFlags() const {
    return kFoldsCase ? static_cast<unsigned char>(first_.flags | kAlphaAccents) : first_.flags;
  }

  bool FirstTruncated() const { return Truncated(first_) && first_.rest.Size() < second_.size; }
  /// Two keys: the first one may be a cut of what the second one is.
  bool StoredKeysMayBeCut() const { return !InMemory() && first_.rest.Size() <= second_.size; }

  /// Characters of the first operand that a limited comparison uses: the last byte
  /// may be its terminator or belong to it.
  unsigned long FirstCharacters() const { return std::max(first_.rest.Size(), 1UL) - 1; }

  /// The length of a comparison, 0 meaning whole texts; a limited one is reported.
  unsigned long Length(bool limited) {
    if (!limited) return 0;
    error_ = kPastBuffer;
    return FirstCharacters();
  }
  /// Whether a limited comparison has nothing of the first operand to go by. (An empty
  /// text compares as it is.)
  bool NothingToCompare(bool limited) const {
    return limited && FirstCharacters() == 0 && !(first_.rest.HasByte() && *first_.rest.at == 0);
  }

  long CompareKeys(bool limited, unsigned char flags) {
    const unsigned long n = Length(limited);
    return NothingToCompare(limited) ? 0 : CompareKeysOver(n, flags);
  }
  /// n keys at most, 0 meaning all.
  long CompareKeysOver(unsigned long n, unsigned char flags) const {
    return NxCompareAlpha<Text>(first_.rest, second_.rest, static_cast<unsigned short>(std::min(n, 0xFFFFUL)),
                                flags, second_.flags);
  }
  long ComparePlain(bool limited) {
    const unsigned long n = Length(limited);
    return NothingToCompare(limited) ? 0 : CompareBytes(first_.rest, second_.rest, n);
  }
  /// The first n keys; 0 for none.
  long ComparePrefix(unsigned long n, unsigned char flags) const {
    return n == 0 ? 0 : CompareKeysOver(n, flags);
  }

  bool Matches(const char* pattern) const {
    const TerminatedText text(first_.rest);
    return kFoldsCase ? caseistrwild(pattern, text, second_.flags, first_.flags)
                      : istrwild(pattern, text, second_.flags, first_.flags);
  }

  /// A text against a pattern with its first wildcard at w.
  long MatchText(const char* pattern, unsigned long w) const {
    if (Matches(pattern)) return 0;
    const long result = ComparePrefix(w, TextFlags());
    return result ? result : 1;
  }

  /// A key against a pattern with its first wildcard at w.
  long MatchKey(const char* pattern, unsigned long w) {
    if (std::strcmp(pattern, "*") == 0) return 0;
    error_ = kPastBuffer;
    if (!kFoldsCase) return 0;
    if (w + 1 > first_.size) return CompareKeys(true, first_.flags);
    if (Matches(pattern)) return 0;
    const unsigned long n = FirstCharacters();
    const bool wildcardLast = pattern[w + 1] == 0;
    if (!wildcardLast || (FirstTruncated() && n < w)) return ComparePrefix(std::min(w, n), first_.flags);
    const long result = ComparePrefix(w, first_.flags);
    return result ? result : 1;
  }

  unsigned char format_;
  unsigned short options_;
  int& error_;
  Operand first_ = {};
  Operand second_ = {};
  unsigned char work_[kWorkSize];  // a truncated second operand
};

// ---------------------------------------------------------------------------
// Bounds

constexpr unsigned char kKeyHeader = kAlphaKeys | kAlphaDisk;
constexpr unsigned char kHighestKey = 0xFF;  // above the key of every byte
/// Keys that a bound image holds beside its head and its terminator.
constexpr unsigned long kMaxKeys = NxINDEX_MAX_KEYLEN - kHeadSize - 1;

/// The first four bytes of a text as a number, the first one highest.
uint32_t Prefix(NxTextSpan text) {
  uint32_t prefix = 0;
  for (int i = 0; i < 4; ++i) prefix = prefix << 8 | (text.HasByte() ? *text.at++ : 0U);
  return prefix;
}

/// The keys of an index image, without head and terminator; none without an image.
NxTextSpan IndexKeys(const void* image, unsigned char length) {
  if (!image || length <= kHeadSize) return {nullptr, nullptr};
  auto* keys = static_cast<const unsigned char*>(image) + kHeadSize;
  return {keys, keys + length - kHeadSize - 1};
}

/// The bounds and the estimate of one query term.
template <class Text>
class AlphaBounds {
 public:
  AlphaBounds(const void* key, unsigned char format) : format_(format) { ReadKey(key); }

  float Run(const NxIdxBounds* indexRange, unsigned short& relation, NxIdxBounds* bounds) {
    relation &= kRelationMask;
    if (wildcard_ >= 0) relation |= kWildcardFound;
    if (wildcard_ == 0) return 1.0F;
    if (bounds) BuildBounds(relation, *bounds);
    return Estimate(indexRange, relation);
  }

 private:
  /// Finds the first wildcard and maps the text before it.
  void ReadKey(const void* key) {
    const NxAlphaImage image(key, kNoLimit, format_);
    NxTextSpan text = image.texts;
    const TerminatedText pattern(text);
    wildcard_ =
        NxAlphaRules<Text>::kFoldsCase ? caseistrwc(pattern, image.header) : istrwc(pattern, image.header);
    if (text.HasByte()) --text.end;  // its terminator
    if (wildcard_ >= 0) text.end = std::min(text.end, text.at + wildcard_);
    NxCutWriter out = {keys_, sizeof keys_};
    if (image.IsKey()) {
      while (text.HasByte()) out.Put(*text.at++);
    } else {
      NxKeyReader reader(NxAlphaRules<Text>::kMap, text, image.header);
      while (unsigned char k = reader.Next()) out.Put(k);
    }
    count_ = out.count;
  }

  void BuildBounds(unsigned short relation, NxIdxBounds& bounds) const {
    if (!bounds.lower && !(relation & kRelationLess))
      bounds.lower = KeyImage(std::min(count_, kMaxKeys), false, bounds.lowerLen);
    if (bounds.upper || (relation & kRelationGreater)) return;
    // Where the key goes on, by a wildcard or past the room of an image, the highest
    // key stands for all that may follow.
    const bool open = wildcard_ > 0 || count_ > kMaxKeys;
    bounds.upper = KeyImage(std::min(count_ + (open ? 1 : 0), kMaxKeys), open, bounds.upperLen);
  }

  /// An image of the first `count` keys, of which `open` makes the last the highest.
  void* KeyImage(unsigned long count, bool open, unsigned char& length) const {
    const unsigned long size = kHeadSize + count + 1;
    auto* image = static_cast<unsigned char*>(NxAllocate(size));
    if (!image) return nullptr;
    const auto total = static_cast<unsigned short>(count + 1);
    image[0] = kKeyHeader;
    ShortStore(image + 1, &total, format_, 1);
    std::copy_n(keys_, count, image + kHeadSize);
    if (open) image[kHeadSize + count - 1] = kHighestKey;
    image[size - 1] = 0;
    length = static_cast<unsigned char>(size);
    return image;
  }

  /// The fraction of the index's keys, taken as the four-byte numbers that they begin
  /// with, that the term selects. Arithmetic wraps at 32 bits.
  float Estimate(const NxIdxBounds* indexRange, unsigned short relation) const {
    const unsigned long p = std::min(count_, 4UL);
    // A key of fewer than four bytes stands for all that begin with it.
    const uint32_t widen = p > 0 && p < 4 ? 0xFFU << 8 * (3 - p) : 0;
    NxTextSpan key = {keys_, keys_ + p};
    uint32_t low = 0, high = 0;
    if (indexRange) {
      NxTextSpan lower = IndexKeys(indexRange->lower, indexRange->lowerLen);
      NxTextSpan upper = IndexKeys(indexRange->upper, indexRange->upperLen);
      if (NxAlphaRules<Text>::kFoldsCase && widen == 0) SkipCommon(lower, upper, key);
      low = Prefix(lower);
      high = Prefix(upper);
    }
    const uint32_t keyLow = Prefix(key);
    const uint32_t total = high - low + 1;
    const uint32_t below = Clamp(keyLow, low, high) - low + 1;
    const uint32_t through = Clamp(keyLow + widen, low, high) - low + 1;
    uint32_t count = 0;
    if (relation & kRelationLess) count = below;
    if (relation & kRelationGreater) count += total - through;
    if (relation & kRelationEqual) count += through - below + 1;
    // A range of all four-byte numbers wraps to 0.
    return static_cast<float>(count / (total ? static_cast<double>(total) : 4294967296.0));
  }

  static void SkipCommon(NxTextSpan& lower, NxTextSpan& upper, NxTextSpan& key) {
    while (lower.HasByte() && upper.HasByte() && key.HasByte() && *lower.at == *upper.at &&
           *lower.at == *key.at) {
      ++lower.at;
      ++upper.at;
      ++key.at;
    }
  }

  static uint32_t Clamp(uint32_t key, uint32_t low, uint32_t high) {
    return key < low ? low - 1 : key > high ? high + 1 : key;
  }

  unsigned char format_;
  int wildcard_ = -1;                      // its position in the key, or -1
  unsigned char keys_[kMaxKeys + 1] = {};  // of the text before the wildcard, as far as they fit
  unsigned long count_ = 0;                // all of them
};

}  // namespace

#define NX_ALPHA_QUERY_SLOTS(Text)                                                               \
  long Text##Compare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, \
                     void* value2, unsigned short options, unsigned long count, int& error) {    \
    return AlphaComparison<Text>(format, options, error).Run(len1, value1, len2, value2, count); \
  }                                                                                              \
  float Text##EvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,         \
                           unsigned char format, unsigned long, NxIdxBounds* bounds) {           \
    return AlphaBounds<Text>(key, format).Run(indexRange, relation, bounds);                     \
  }                                                                                              \
  unsigned long Text##Hash(unsigned char, unsigned long, void*, unsigned long, int&) { return 0; }

NX_ALPHA_QUERY_SLOTS(NxIString)
NX_ALPHA_QUERY_SLOTS(NxCaseIString)

#undef NX_ALPHA_QUERY_SLOTS
