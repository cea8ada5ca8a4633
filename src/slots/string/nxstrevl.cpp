// Index bounds and estimates of string terms: the key up to its first wildcard gives
// the lower bound, the same prefix closed by the largest unit the upper one; where
// the bounds lie between the smallest and the largest key of the index gives the
// fraction that the term selects.
//
// All texts are read from private copies, closed by zeros, so the images that are
// handed in are never written to.

#include <algorithm>
#include <cstring>

#include "base/nxalloc.h"
#include "base/nxclosedcopy.h"
#include "base/nxstored.h"
#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "ord2str.h"
#include "strwild.h"
#include "text/nxchartext.h"

namespace {

constexpr unsigned short kUnknownCount = 65535;  // of characters: no smaller count is known
constexpr unsigned short kLargestUnit = 0xFFFE;
constexpr unsigned char kLargestByte = 0xFF;
constexpr double kByteTextUnit = 128.0;
constexpr double kOrderTextUnit = 1048576.0;
/// The selector that most languages share. A cut key under it counts as one without
/// wildcard.
constexpr unsigned char kRootSelector = 1;

// Where reports say that they come from; those who read reports know them by these
// numbers, which therefore stay.
constexpr int kLowerBoundLine = 733;
constexpr int kUpperBoundLine = 868;
constexpr int kEstimateLine = 1013;

/// The text of a stored image, copied and closed by zeros, with its head.
class ImageText {
 public:
  /// Takes the text of an image in a buffer of `length` bytes. Without memory the text
  /// stays empty.
  void Take(const void* image, unsigned long length, unsigned char formatCode, bool oldForm) {
    const NxStoredString stored(image, length, formatCode);
    const unsigned long offset =
        std::min(length, oldForm ? NxStoredString::kLengthSize : NxStoredString::kHeadSize);
    const unsigned long trailer = oldForm ? 1 : NxStoredString::kEmptyLength;
    const unsigned long bytes = stored.n > trailer ? std::min(stored.n - trailer, length - offset) : 0;
    if (!oldForm && length >= NxStoredString::kHeadSize) {
      codeSet = NxStoredString::CodeSetOf(image);
      language = NxStoredString::LanguageOf(image);
    }
    if (const char* const closed = copy_.Take(stored.bytes + offset, bytes)) text = closed;
  }

  unsigned short Width() const { return NxCharWidth(codeSet); }
  /// Characters that an image of `length` bytes can hold behind its head. For the
  /// empty early image (3 bytes) that is unknown.
  unsigned short CountIn(unsigned char length) const {
    return static_cast<unsigned short>((length - 4) / Width());
  }

  const char* text = zeroString;
  unsigned char codeSet = kCodeSetNone;
  unsigned char language = kLanguageNone;

 private:
  NxClosedCopy<509> copy_;
};

/// A text as the estimate walks it: where it is, and how many of its characters are
/// known.
struct ScanEnd {
  const ImageText* text;
  unsigned short count;
};

/// A bound image while it is built. Two units more than a bound may hold, so that a
/// key which is too long shows.
struct BoundImage {
  unsigned char bytes[NxINDEX_MAX_KEYLEN + 6] = {};
  unsigned long used = 0;  // bytes up to the terminator
  bool capped = false;     // the key did not fit and lacks its terminator
};

class StringBounds {
 public:
  StringBounds(unsigned short& relation, void* key, unsigned char format, NxIdxBounds* bounds, bool oldForm)
      : relationOut_(relation),
        relation_(relation & kRelationMask),
        options_(relation & kOptionMask),
        keyImage_(static_cast<const unsigned char*>(key)),
        code_(format & kFormatCodeMask),
        bounds_(bounds),
        oldForm_(oldForm) {
    keyLength_ = NxStoredString::LengthOf(key, code_);
    relationOut_ = relation_;
  }

  float Evaluate(const NxIdxBounds* indexRange) {
    if (keyLength_ < (oldForm_ ? 1 : NxStoredString::kEmptyLength)) return 0.0F;  // not an image
    key_.Take(keyImage_, NxStoredString::kLengthSize + keyLength_, code_, oldForm_);
    FindWildcard();
    ChooseMasks();
    if (!bounds_) return 0.0F;
    TakeLower();
    TakeUpper();
    if (!indexRange || !indexRange->lower || !indexRange->upper) return 0.0F;
    return Estimate(*indexRange);
  }

 private:
  bool Relation(unsigned short bit) const { return relation_ & bit; }
  bool SkipsCharacters() const { return options_ & (kSkipSpaces | kSkipSymbols); }
  bool HasWildcard() const { return wildByte_ >= 0; }

  // -- the key -----------------------------------------------------------------

  void FindWildcard() {
    if (options_ & kWildcardsOff) return;
    short position = -1;
    wildChar_ = NxStrWild(key_.codeSet, key_.language, key_.text, 0, -1, &position, code_);
    wildByte_ = wildChar_ < 0 ? -1 : position;
    // A key that was stored truncated goes on in any way, as one with a wildcard does.
    if (wildByte_ < 0 && (key_.language & kMixedCollation) && SelectorOf(key_.language) != kRootSelector) {
      wildByte_ = static_cast<long>(keyLength_ - NxStoredString::kEmptyLength);
      wildChar_ = wildByte_ / key_.Width();
    }
    if (HasWildcard()) relationOut_ |= kWildcardFound;
  }

  void ChooseMasks() {
    if (key_.codeSet == kCodeSetNone) return;
    if (options_ & kIgnoreCase) caseMask_ = kOrderCaseMask;
    if (options_ & kIgnoreAccents) accentMask_ = kOrderAccentMask;
  }

  // -- the bounds --------------------------------------------------------------

  bool CanBuild() const { return wildByte_ != 0; }
  unsigned long HeadSize() const {
    return oldForm_ ? NxStoredString::kLengthSize : NxStoredString::kHeadSize;
  }
  /// Bytes behind the text: the terminator, and 0xFF in the current form.
  unsigned long TrailerSize() const { return oldForm_ ? 1 : NxStoredString::kTrailerSize; }
  unsigned long UnitSize() const { return key_.codeSet == kCodeSetNone ? 1 : 2; }

  /// Bytes of the key's image that belong to a bound: up to the wildcard, or without
  /// what follows the text.
  unsigned long SourceSize() const {
    if (HasWildcard()) return HeadSize() + static_cast<unsigned long>(wildByte_);
    return oldForm_ ? keyLength_ + 1UL : keyLength_;
  }

  /// Translates the first bytes of the key's image to key form.
  void Translate(BoundImage& image, unsigned long sourceBytes) const {
    const auto translate = oldForm_ ? NxStringOldTranslate : NxStringTranslate;
    const unsigned long room = NxINDEX_MAX_KEYLEN + 2;
    int used = translate(image.bytes, code_ | kFormatKey, room, const_cast<unsigned char*>(keyImage_), code_,
                         std::min(sourceBytes, NxStoredString::kLengthSize + keyLength_), 1);
    image.used = static_cast<unsigned long>(used);
    if (HasOwnTerminator(image)) image.used -= 2;
    Cap(image);
  }

  void Cap(BoundImage& image) const {
    image.capped = image.used + TrailerSize() > NxINDEX_MAX_KEYLEN;
    if (image.capped) image.used = std::min(image.used, NxINDEX_MAX_KEYLEN);
  }

  bool IsTranslated() const { return UnitSize() == 2 && key_.codeSet != kCodeSetOrderValues; }

  /// Whether the translation closed the key, which it does at a zero character and
  /// where the collation changes; a key that it cut counts a terminator more.
  bool HasOwnTerminator(const BoundImage& image) const {
    return IsTranslated() && image.used > NxStoredString::kHeadSize &&
           NxStoredString::LengthOf(image.bytes, code_) != image.used;
  }

  /// Whether the key stops at a change of collation: any text may go on from there.
  bool IsMixed(const BoundImage& image) const {
    return IsTranslated() && (NxStoredString::LanguageOf(image.bytes) & kMixedCollation);
  }

  static unsigned char SelectorOf(unsigned char language) {
    return language & static_cast<unsigned char>(~kMixedCollation);
  }

  /// Clears and sets bits in every letter. Values of plain order carry no such bits.
  void MaskLetters(BoundImage& image, unsigned short clear, unsigned short set) const {
    if (!(caseMask_ | accentMask_) ||
        SelectorOf(NxStoredString::LanguageOf(image.bytes)) >= kPlainOrderSelector)
      return;
    for (unsigned long at = NxStoredString::kHeadSize; at + 2 <= image.used; at += 2) {
      const unsigned short unit = NxReadShort(image.bytes + at, code_);
      if (!NxIsLetterOrder(unit)) continue;
      NxWriteShort(image.bytes + at, static_cast<unsigned short>((unit & ~clear) | set), code_);
    }
  }

  /// Puts the largest unit in the place of the last one, or behind an empty head.
  void CloseWithLargest(BoundImage& image) const {
    if (image.used == HeadSize()) image.used += UnitSize();
    if (UnitSize() == 1)
      image.bytes[image.used - 1] = kLargestByte;
    else
      NxWriteShort(image.bytes + image.used - 2, kLargestUnit, code_);
  }

  /// Writes length and trailer and hands out a copy of the image.
  void Finish(BoundImage& image, void*& bound, unsigned char& boundLength, int line) const {
    const unsigned long size = image.capped ? NxINDEX_MAX_KEYLEN : image.used + TrailerSize();
    if (!image.capped) image.bytes[image.used] = 0;
    // An early image keeps the key's length, unless it has become longer than that.
    if (!oldForm_ || image.used > keyLength_ + 1UL) {
      NxWriteShort(image.bytes, static_cast<unsigned short>(oldForm_ ? image.used - 1 : image.used), code_);
    }
    if (!oldForm_ && !image.capped) image.bytes[image.used + 1] = NxStoredString::kLastByte;
    if (size > NxINDEX_MAX_KEYLEN) NEXO_assert("actualLen <= NxINDEX_MAX_KEYLEN", "src/nxtypevl", line);
    bound = NxAllocate(size);
    if (!bound) return;
    std::memcpy(bound, image.bytes, size);
    boundLength = static_cast<unsigned char>(size);
  }

  /// The lower end of the scan: the key, or a bound that was there already.
  void TakeLower() {
    scanLower_ = {&key_, HasWildcard() ? static_cast<unsigned short>(wildChar_) : kUnknownCount};
    if (bounds_->lower) {
      lower_.Take(bounds_->lower, bounds_->lowerLen, code_, oldForm_);
      scanLower_ = {&lower_, lower_.CountIn(bounds_->lowerLen)};
    } else if (CanBuild() && !Relation(kRelationLess)) {
      BoundImage image;
      Translate(image, SourceSize());
      MaskLetters(image, accentMask_, caseMask_);
      Finish(image, bounds_->lower, bounds_->lowerLen, kLowerBoundLine);
    }
  }

  /// The upper end: a bound that was there already or is built, else the key.
  void TakeUpper() {
    unsigned short count = kUnknownCount;
    if (HasWildcard()) count = static_cast<unsigned short>(wildChar_ + key_.Width());
    if (bounds_->upper) {
      upper_.Take(bounds_->upper, bounds_->upperLen, code_, oldForm_);
      scanUpper_ = {&upper_, upper_.CountIn(bounds_->upperLen)};
    } else if (CanBuild() && !Relation(kRelationGreater)) {
      const bool capped = BuildUpper();
      if (!bounds_->upper) {
        scanUpper_ = {&key_, count};
        return;
      }
      upper_.Take(bounds_->upper, bounds_->upperLen, code_, oldForm_);
      scanUpper_ = {&upper_, capped ? upper_.CountIn(bounds_->upperLen) : count};
    } else {
      scanUpper_ = {&key_, count};
    }
  }

  /// Returns whether the bound was capped.
  bool BuildUpper() const {
    BoundImage image;
    unsigned long source = SourceSize();
    if (HasWildcard()) source += key_.Width();
    Translate(image, source);
    MaskLetters(image, caseMask_, accentMask_);
    if (IsMixed(image)) {
      image.used += 2;
      Cap(image);
    }
    if (wildByte_ > 0 || SkipsCharacters() || IsMixed(image)) CloseWithLargest(image);
    Finish(image, bounds_->upper, bounds_->upperLen, kUpperBoundLine);
    return image.capped;
  }

  // -- the estimate ------------------------------------------------------------

  enum { kScanLower, kScanUpper, kIndexLower, kIndexUpper, kEnds };

  NxStringIterator Iterator(const ImageText& text) const {
    return NxStringIterator(text.text, text.codeSet, text.language, code_);
  }

  /// Moves the four positions behind the prefix that all share; returns its length.
  unsigned short SkipCommonPrefix(NxStringIterator (&at)[kEnds], unsigned short limit) const {
    unsigned short taken = 0;
    while (taken < limit) {
      NxStringIterator next[kEnds] = {at[0], at[1], at[2], at[3]};
      unsigned short value[kEnds];
      bool same = true;
      for (int i = 0; i < kEnds; ++i) {
        value[i] = GetNextOrderValue(next[i], caseMask_ | accentMask_);
        same = same && value[i] == value[0] && next[i]._nCollation == next[0]._nCollation;
      }
      if (!same) break;
      for (int i = 0; i < kEnds; ++i) at[i] = next[i];
      ++taken;
      if (value[0] == 0) break;
    }
    return taken;
  }

  static unsigned short Rest(unsigned short count, unsigned short taken) {
    return count > taken ? static_cast<unsigned short>(count - taken) : 0;
  }

  int CompareText(const ImageText& a, const ImageText& b, unsigned short length) const {
    return NxStrCmp(a.codeSet, a.language, a.text, b.codeSet, b.language, b.text, relation_ | options_,
                    static_cast<short>(length), code_, nullptr);
  }

  float Estimate(const NxIdxBounds& indexRange) {
    indexLowerText_.Take(indexRange.lower, indexRange.lowerLen, code_, oldForm_);
    indexUpperText_.Take(indexRange.upper, indexRange.upperLen, code_, oldForm_);
    indexLower_ = {&indexLowerText_, indexLowerText_.CountIn(indexRange.lowerLen)};
    indexUpper_ = {&indexUpperText_, indexUpperText_.CountIn(indexRange.upperLen)};

    unsigned short limit =
        std::min({scanLower_.count, scanUpper_.count, indexLower_.count, indexUpper_.count});
    NxStringIterator at[kEnds];
    unsigned short taken = 0;
    if (limit > 0) {
      at[kScanLower] = Iterator(*scanLower_.text);
      at[kScanUpper] = Iterator(*scanUpper_.text);
      at[kIndexLower] = Iterator(indexLowerText_);
      at[kIndexUpper] = Iterator(indexUpperText_);
      taken = SkipCommonPrefix(at, limit);
    }
    const double indexHigh = EvalString(at[kIndexUpper], Rest(indexUpper_.count, taken));
    const double indexLow = EvalString(at[kIndexLower], Rest(indexLower_.count, taken));
    const double low = EvalString(at[kScanLower], Rest(std::min(scanLower_.count, indexLower_.count), taken));
    const double high =
        EvalString(at[kScanUpper], Rest(std::min(scanUpper_.count, indexUpper_.count), taken));

    const double unit = key_.codeSet == kCodeSetNone ? kByteTextUnit : kOrderTextUnit;
    const double area = indexHigh - indexLow + unit;
    double range = CalcRange(relation_, low, high, indexLow, indexHigh, unit);
    if (range == 0.0) range = CorrectEmptyRange(low, high, indexLow, indexHigh, unit);
    if (wildChar_ == 0 && range < area) {
      NEXO_assert("charWildPos != 0 || valueRange >= valueTotalArea", "src/nxtypevl", kEstimateLine);
      range = area;
    }
    return static_cast<float>(range / area);
  }

  /// Where the values touch, the texts themselves decide whether the range is empty.
  double CorrectEmptyRange(double low, double high, double indexLow, double indexHigh, double unit) const {
    double range = 0.0;
    if ((Relation(kRelationLess) && indexLow == high) || (Relation(kRelationGreater) && indexHigh == low)) {
      if (Relation(kRelationLess) && CompareText(*scanUpper_.text, indexLowerText_, scanLower_.count) >= 0)
        range += unit;
      if (Relation(kRelationGreater) &&
          CompareText(*scanLower_.text, indexUpperText_, std::min(scanUpper_.count, indexUpper_.count)) <= 0)
        range += unit;
    }
    if (range == 0.0 && Relation(kRelationEqual) && indexHigh < high &&
        indexUpper_.count < scanUpper_.count &&
        CompareText(*scanUpper_.text, indexUpperText_, indexUpper_.count) == 0)
      range += unit;
    return range;
  }

  unsigned short& relationOut_;
  unsigned short relation_;
  unsigned short options_;
  const unsigned char* keyImage_;
  unsigned short keyLength_ = 0;
  unsigned char code_;
  NxIdxBounds* bounds_;
  bool oldForm_;

  ImageText key_;
  long wildByte_ = -1;  // of the first wildcard in the key's text, or -1
  long wildChar_ = -1;
  unsigned short caseMask_ = 0;
  unsigned short accentMask_ = 0;

  ImageText lower_, upper_, indexLowerText_, indexUpperText_;
  ScanEnd scanLower_{}, scanUpper_{}, indexLower_{}, indexUpper_{};
};

}  // namespace

float StringEvalAndBoundCommon(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                               unsigned char format, unsigned long /*count: one key*/, NxIdxBounds* bounds,
                               unsigned short oldForm) {
  // The key is an image under every format code. Translation, which makes the bounds of
  // it, would take the codes from 8 on for strings in memory.
  if (format & kFormatMemory)
    format = static_cast<unsigned char>((format & ~kFormatCodeMask) | kFormatNative);
  return StringBounds(relation, key, format, bounds, oldForm != 0).Evaluate(indexRange);
}

float StringEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                         unsigned long count, NxIdxBounds* bounds) {
  return StringEvalAndBoundCommon(indexRange, relation, key, format, count, bounds, 0);
}

float StringOldEvalAndBound(NxIdxBounds* indexRange, unsigned short& relation, void* key,
                            unsigned char format, unsigned long count, NxIdxBounds* bounds) {
  return StringEvalAndBoundCommon(indexRange, relation, key, format, count, bounds, 1);
}
