// Index bounds of every type for any key, index range, relation and bounds that are
// there already: nothing is read outside the images or changed in them, and bounds of
// strings keep to the largest key.

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "nxcomp.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "operand.h"

namespace {

/// Whether bounds that are there have the wildcards in their dates replaced.
bool ReplacesWildcards(const Subject& subject) {
  constexpr char kDates[] = {12, 22};  // NxDate, d_Date
  return std::count(std::begin(kDates), std::end(kDates), subject.id) != 0;
}

/// A key whose length field, if it has one, keeps within it.
Block TakeKey(Input& in, Subject& subject, unsigned char format, unsigned long count) {
  Block key = in.TakeBlock();
  if (subject.IsString()) {
    const unsigned long at = subject.IsAlphabetic() ? 1 : 0;
    if (key.Size() < at + 2) return Block(0UL);
    const unsigned long room = key.Size() - at - 2;
    if (LengthAt(key.Data() + at, format) > room) {
      const auto n = static_cast<unsigned short>(room);
      ShortStore(key.Data() + at, &n, format, 1);
    }
    return Block(key.Data(), at + 2 + LengthAt(key.Data() + at, format));
  }
  return IsWhole(subject, key, format, std::max(count, 1UL)) ? key : Block(0UL);
}

/// An image of an index range or of a bound; none at times.
class Image {
 public:
  Image(Input& in, Subject& subject) : block_(in.Take(in.Byte())), is_(block_.Size() != 0 || in.Byte() & 1) {
    // Of the fixed types a length of 0 stands for a multiple of 256.
    if (block_.Size() == 0 && !subject.IsString()) is_ = false;
  }

  void* Data() const { return is_ ? block_.Data() : nullptr; }
  unsigned char Length() const { return is_ ? static_cast<unsigned char>(block_.Size()) : 0; }
  const Block& Bytes() const { return block_; }

 private:
  Block block_;
  bool is_;
};

struct Range {
  Image lower, upper;

  Range(Input& in, Subject& subject) : lower(in, subject), upper(in, subject) {}
  NxIdxBounds Bounds() const { return {lower.Data(), upper.Data(), lower.Length(), upper.Length()}; }
};

struct Case {
  Subject subject;
  unsigned char format;
  unsigned short relation;
  unsigned long count;
  unsigned char present;  // bit 0: an index range, bit 1: a bounds record

  bool HasRange() const { return present & 1; }
  bool HasBounds() const { return present & 2; }
};

/// A bound that is built has its length, and no more than a key may have.
Block TakeBuilt(const Case& c, void* bound, unsigned char length, const Image& given) {
  if (!bound || bound == given.Data()) return Block(0UL);
  Require(!c.subject.IsString() || length <= NxINDEX_MAX_KEYLEN);
  const Block built(bound, length);
  std::free(bound);
  return built;
}

struct Answer {
  unsigned short relation;
  unsigned int estimate;  // its bits
  Block lower, upper;

  bool operator==(const Answer& a) const {
    return relation == a.relation && estimate == a.estimate && lower == a.lower && upper == a.upper;
  }
};

Answer Evaluate(Case& c, const Block& key, const Range& index, const Range& given) {
  NxIdxBounds range = index.Bounds();
  NxIdxBounds bounds = given.Bounds();
  unsigned short relation = c.relation;
  const float estimate =
      c.subject.mgr.EvalAndBound(c.subject.id, c.HasRange() ? &range : nullptr, relation, key.Data(),
                                 c.format, c.count, c.HasBounds() ? &bounds : nullptr, nullptr);
  unsigned int bits;
  std::memcpy(&bits, &estimate, sizeof bits);
  return {relation, bits, TakeBuilt(c, bounds.lower, bounds.lowerLen, given.lower),
          TakeBuilt(c, bounds.upper, bounds.upperLen, given.upper)};
}

void Report(const char* expression, const char*, int) {
  // That a wildcard selects all takes an index range that is in order.
  Require(std::strncmp(expression, "charWildPos", 11) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NxSetAssertHandler(Report);
  Input in(data, size);
  Case c = {Subject(in.Byte()), in.Byte(), in.Word(), in.Byte(), in.Byte()};
  // A key is stored; translation would take bit 3 for strings in memory.
  if (c.subject.IsText() && (c.format & kFormatMemory)) return 0;
  const Block key = TakeKey(in, c.subject, c.format, c.count);
  if (key.Size() == 0) return 0;
  const Range index(in, c.subject);
  const Range given(in, c.subject);
  const Block images[] = {key, index.lower.Bytes(), index.upper.Bytes(), given.lower.Bytes(),
                          given.upper.Bytes()};
  const Answer answer = Evaluate(c, key, index, given);
  if (ReplacesWildcards(c.subject)) return 0;
  Require(key == images[0] && index.lower.Bytes() == images[1] && index.upper.Bytes() == images[2]);
  Require(given.lower.Bytes() == images[3] && given.upper.Bytes() == images[4]);
  Require(Evaluate(c, key, index, given) == answer);
  return 0;
}
