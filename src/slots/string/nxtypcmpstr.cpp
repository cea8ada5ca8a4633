// Comparison and hashing of NxString values in memory and in stored images: takes each
// text out of its image, closes it where the image does not, and counts what a cut
// buffer leaves of it.

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/nxalloc.h"
#include "base/nxstored.h"
#include "collation/nxstrcmp.h"
#include "collation/nxstrcmpkeys.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtyphash.h"
#include "slots/nxelement.h"
#include "strwild.h"

namespace {

constexpr unsigned long kLengthSize = 2;

/// The 16-bit length with which an image begins.
unsigned short LengthField(const char* image, unsigned char format) {
  unsigned short n;
  if ((format & kFormatCodeMask) == kFormatBigEndian) {
    ShortStore(&n, image, kFormatBigEndian, 1);
  } else {
    std::memcpy(&n, image, sizeof n);
  }
  return n;
}

// ---------------------------------------------------------------------------
// One operand

/// An array of strings, read element by element.
///
/// Current images follow each other, each with its length. In an early image one
/// length stands before all texts, which follow each other up to its end.
class StringOperand {
 public:
  /// `length` is the buffer's, 0 when none is given.
  StringOperand(const void* value, unsigned long length, unsigned char format, bool oldForm)
      : at_(static_cast<const char*>(value)),
        left_(length),
        limited_(length != 0),
        format_(format),
        oldForm_(oldForm) {}

  /// Takes the element at hand; `last` when no other follows. 0, or -2999 for a text
  /// that cannot be held.
  int Read(bool last);
  /// Goes on to the next element. 0, or 2101 when the buffer holds none.
  int Advance();

  unsigned long Characters() const { return available_ / NxCharWidth(codeSet); }

  unsigned char codeSet = 0;
  unsigned char language = 0;
  const char* text = nullptr;  // zero-terminated
  bool truncated = false;      // the buffer ends in the image
  bool cutKey = false;         // a key that stops short of its string

 private:
  static constexpr unsigned long kClosingZeros = 3;  // an odd byte and a 16-bit zero
  static constexpr long long kSmallestRest = 5;      // less than that holds no image

  bool Holds(unsigned long bytes) const { return !limited_ || left_ >= static_cast<long long>(bytes); }
  unsigned long Left() const { return left_ > 0 ? static_cast<unsigned long>(left_) : 0; }
  unsigned char HeadByte(unsigned long offset) const;
  void ReadValue();
  bool IsEarly() const;
  void LocateCurrent();
  void LocateEarly(bool last);
  bool IsClosed() const;
  int Close(const char* from);

  const char* at_;  // the element's image; of an early one, once read, the text at hand
  long long left_;  // bytes of the buffer from there
  const bool limited_;
  const unsigned char format_;
  const bool oldForm_;

  unsigned short n_ = 0;            // the image's length field
  unsigned long textSize_ = 0;      // bytes of text that the image states
  unsigned long available_ = 0;     // bytes of text in the buffer
  const char* earlyEnd_ = nullptr;  // end of an early image's texts; null for a current one
  std::unique_ptr<char[]> heap_;
  char local_[kTruncatedTextMax + kClosingZeros];
};

int StringOperand::Read(bool last) {
  if (format_ == kFormatMemory) {
    ReadValue();
    return 0;
  }
  if (!earlyEnd_) {
    n_ = 0;
    if (Holds(kLengthSize)) n_ = LengthField(at_, format_);
  }
  const bool early = earlyEnd_ || IsEarly();
  if (early) {
    LocateEarly(last);
  } else {
    LocateCurrent();
  }
  if (available_ < textSize_ && available_ >= kTruncatedTextMax) return kNotPossible;
  text = early ? at_ : at_ + NxStoredString::kHeadSize;
  const bool closed = early ? !truncated : IsClosed();
  return closed ? 0 : Close(text);
}

void StringOperand::ReadValue() {
  truncated = !Holds(sizeof(NxString));
  if (truncated) return;
  const NxString& s = *reinterpret_cast<const NxString*>(at_);
  text = s._pBuffer;
  codeSet = s._nCodeSet;
  language = s._nLanguage;
}

/// A current image never ends in 0. Of an image that the buffer cuts only the type
/// can tell.
bool StringOperand::IsEarly() const {
  if (format_ & kFormatKey) return false;
  if (!Holds(kLengthSize + n_)) return oldForm_;
  return n_ != 0 && at_[kLengthSize + n_ - 1] == 0;
}

/// The first time steps over the length of the whole; the texts then follow each other.
void StringOperand::LocateEarly(bool last) {
  codeSet = language = 0;
  if (!earlyEnd_) {
    truncated = !Holds(kLengthSize + n_);
    textSize_ = n_ != 0 ? n_ - 1 : 0;
    if (Holds(kLengthSize)) at_ += kLengthSize;
    left_ -= kLengthSize;
    earlyEnd_ = at_ + (truncated ? Left() : n_);
    if (truncated) {
      available_ = std::min(Left(), textSize_);
      return;
    }
    --left_;  // the early image has no closing 0xFF to count with
  }
  const unsigned long rest = static_cast<unsigned long>(earlyEnd_ - at_) - 1;
  available_ = textSize_ = last ? rest : std::strlen(at_);
}

unsigned char StringOperand::HeadByte(unsigned long offset) const {
  return offset < kLengthSize + n_ && Holds(offset + 1) ? static_cast<unsigned char>(at_[offset]) : 0;
}

void StringOperand::LocateCurrent() {
  codeSet = HeadByte(2);
  language = HeadByte(3);
  cutKey = codeSet == kCodeSetOrderValues && (language & kMixedCollation) != 0;
  if (cutKey) language &= ~kMixedCollation;
  textSize_ = available_ = n_ > NxStoredString::kEmptyLength ? n_ - NxStoredString::kEmptyLength : 0;
  truncated = false;
  const unsigned long size = kLengthSize + n_;
  if (Holds(size)) return;
  const unsigned long left = Left();
  available_ = std::min(textSize_, left > NxStoredString::kHeadSize ? left - NxStoredString::kHeadSize : 0);
  truncated = left < kLengthSize || left + 1 != size;  // the last byte says nothing
}

/// Whether a current image's text ends with its zero as it lies there.
bool StringOperand::IsClosed() const {
  return !truncated && n_ >= NxStoredString::kEmptyLength && NxCharWidth(codeSet) == 1 &&
         at_[n_] == 0;  // the byte behind the text
}

/// Copies the text and puts a zero behind it.
int StringOperand::Close(const char* from) {
  unsigned long bytes = available_;
  if (truncated && NxCharWidth(codeSet) == 2) bytes &= ~1UL;
  char* buffer = local_;
  if (bytes > kTruncatedTextMax) {
    heap_.reset(NxNewArray<char>(bytes + kClosingZeros));
    buffer = heap_.get();
    if (!buffer) return kNotPossible;
  }
  if (bytes != 0) std::memcpy(buffer, from, bytes);
  std::memset(buffer + bytes, 0, kClosingZeros);
  text = buffer;
  return 0;
}

int StringOperand::Advance() {
  if (format_ == kFormatMemory) {
    left_ -= sizeof(NxString);
    if (!Holds(sizeof(NxString))) return kPastBuffer;
    at_ += sizeof(NxString);
    return 0;
  }
  if (truncated) return kPastBuffer;
  const unsigned long size = earlyEnd_ ? available_ + 1 : kLengthSize + n_;
  left_ -= size;
  if (!Holds(kSmallestRest)) return kPastBuffer;
  at_ += size;
  return earlyEnd_ && at_ >= earlyEnd_ ? kPastBuffer : 0;
}

// ---------------------------------------------------------------------------
// Comparison

/// Two operands compared element by element under one option word.
class StringComparison {
 public:
  StringComparison(StringOperand& a, StringOperand& b, unsigned short options, unsigned char format)
      : a_(a),
        b_(b),
        options_(options),
        code_(format & kFormatCodeMask),
        wildcards_((options & (kWildcardsOff | kOrderValuesOnly)) == 0),
        skipsSpaces_((options & kSkipSpaces) != 0) {}

  long Run(unsigned long count, int& error);

 private:
  long CompareElement();
  long CompareTruncated(bool firstCut, bool secondCut);
  unsigned long LengthWithoutWildcard(bool firstCut, bool secondCut);
  unsigned long LengthToWildcard(unsigned long position, bool onlyFirstCut);
  int CompareTexts(unsigned long length);

  StringOperand& a_;
  StringOperand& b_;
  const unsigned short options_;
  const unsigned char code_;
  const bool wildcards_;
  const bool skipsSpaces_;

  int error_ = 0;
  int partial_ = 0;  // what NxStrCmp reports of the base letters
};

constexpr unsigned long kWholeText = 65535;

long StringComparison::Run(unsigned long count, int& error) {
  long result = 0;
  for (unsigned long i = 0; i < count && result == 0 && error_ == 0; ++i) {
    const bool last = i + 1 == count;
    if (a_.Read(last) != 0 || b_.Read(last) != 0) {
      error = kNotPossible;
      return -1;
    }
    result = CompareElement();
    if (!last && (a_.Advance() != 0 || b_.Advance() != 0)) error_ = kPastBuffer;
  }
  error = error_;
  return result;
}

long StringComparison::CompareElement() {
  if (a_.cutKey || b_.cutKey) error_ = kPastBuffer;
  const bool secondCut = b_.truncated || (b_.cutKey && wildcards_);
  if (!a_.truncated && !secondCut) return CompareTexts(kWholeText);
  return CompareTruncated(a_.truncated, secondCut);
}

int StringComparison::CompareTexts(unsigned long length) {
  partial_ = 0;
  return NxStrCmp(a_.codeSet, a_.language, a_.text, b_.codeSet, b_.language, b_.text, options_,
                  static_cast<short>(length), code_, &partial_);
}

/// Compares as far as both texts reach. The result is exact, and no error raised, only
/// where what is missing could not change it.
long StringComparison::CompareTruncated(bool firstCut, bool secondCut) {
  const unsigned long count1 = a_.Characters();
  const unsigned long count2 = b_.Characters();
  const int wildcard = !wildcards_ ? -1
                                   : NxStrWild(b_.codeSet, b_.language, b_.text, 1,
                                               static_cast<short>(count2), nullptr, code_);
  const unsigned long length = wildcard < 0 ? LengthWithoutWildcard(firstCut, secondCut)
                                            : LengthToWildcard(wildcard, firstCut && !secondCut);
  long result = CompareTexts(length);
  if (result == 0 && count1 != count2) {
    if (firstCut && !secondCut && length == count2) result = 1;
    if (!firstCut && secondCut && length == count1) result = -1;
  }
  return skipsSpaces_ ? partial_ : result;
}

unsigned long StringComparison::LengthWithoutWildcard(bool firstCut, bool secondCut) {
  const unsigned long count1 = a_.Characters();
  const unsigned long count2 = b_.Characters();
  const bool wholeIsShorter = firstCut != secondCut && (firstCut ? count2 < count1 : count1 < count2);
  if (!wholeIsShorter || skipsSpaces_) error_ = kPastBuffer;
  if (firstCut && secondCut) return std::min(count1, count2);
  return firstCut ? count1 : count2;
}

unsigned long StringComparison::LengthToWildcard(unsigned long position, bool onlyFirstCut) {
  const unsigned long count1 = a_.Characters();
  const bool reachesLastWildcard = position + 1 == b_.Characters() && count1 >= position;
  if (!onlyFirstCut || skipsSpaces_ || !reachesLastWildcard) error_ = kPastBuffer;
  return std::min(position, count1);
}

// ---------------------------------------------------------------------------
// One pair of whole texts: by far the most frequent call, which is to cost little more
// than the comparison of the texts itself.

/// Whether the buffer holds a whole image that ends as current ones do, with 00 FF.
bool IsWhole(const char* image, unsigned long length, unsigned char format) {
  const unsigned long last = length - 1;  // without a limit: beyond every image
  if (last < kLengthSize) return false;
  const unsigned n = LengthField(image, format);
  if (n < NxStoredString::kEmptyLength || last <= n) return false;
  return NxUnitAt<unsigned short>(image + n) == 0xFF00;
}

/// The table by which two of them can be compared as NxCompareAlike does, or null.
const NxOrderTable* TableOfBoth(const char* a, const char* b, unsigned short options) {
  constexpr unsigned kNoTable = 0xFF & ~(NxOrderTable::kCodeSets - 1);
  const unsigned kind = NxUnitAt<unsigned short>(a + 2);
  const unsigned unlike =
      (kind ^ NxUnitAt<unsigned short>(b + 2)) | (kind & kNoTable) | (options & kOrderValuesOnly);
  if (unlike != 0 || !NxOrderTable::WildcardsAreSymbols()) return nullptr;
  return NxOrderTable::FindBuilt(static_cast<unsigned char>(kind), static_cast<unsigned char>(kind >> 8));
}

/// NxStrCmp of the texts of two of them, of 8-bit code sets.
long CompareWhole(const char* a, const char* b, unsigned short options, unsigned char format) {
  return NxStrCmpAny(a[2], a[3], a + NxStoredString::kHeadSize, b[2], b[3], b + NxStoredString::kHeadSize,
                     options, -1, format & kFormatCodeMask, nullptr);
}

}  // namespace

long StringCompareCommon(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                         void* value2, unsigned short options, unsigned long count, int& error,
                         unsigned short oldForm) {
  StringOperand a(value1, len1, format, oldForm != 0);
  StringOperand b(value2, len2, format, oldForm != 0);
  return StringComparison(a, b, options, format).Run(count, error);
}

long StringCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                   unsigned short options, unsigned long count, int& error) {
  const char* const a = static_cast<const char*>(value1);
  const char* const b = static_cast<const char*>(value2);
  if (format == (kFormatKey | kFormatNative) && count == 1 &&
      (options & (kWildcardsOff | kOrderValuesOnly)) == kWildcardsOff) {
    const long result = NxCompareBases(a, len1, b, len2);
    if (result != kBasesDoNotDecide) {
      error = 0;
      return result;
    }
  }
  if (count == 1 && format != kFormatMemory && IsWhole(a, len1, format) && IsWhole(b, len2, format)) {
    if (const NxOrderTable* table = TableOfBoth(a, b, options)) {
      error = 0;
      return NxCompareAlike(*table, a[2], a[3], a + NxStoredString::kHeadSize, b + NxStoredString::kHeadSize,
                            options, format & kFormatCodeMask, nullptr);
    }
    if (NxCharWidth(a[2]) == 1 && NxCharWidth(b[2]) == 1) {
      error = 0;
      return CompareWhole(a, b, options, format);
    }
    long result;
    if (NxCompareKeys(a, b, format, options, result, error)) return result;
  }
  return StringCompareCommon(format, len1, value1, len2, value2, options, count, error, 0);
}

long StringOldCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                      void* value2, unsigned short options, unsigned long count, int& error) {
  return StringCompareCommon(format, len1, value1, len2, value2, options, count, error, 1);
}

// ---------------------------------------------------------------------------
// Hashing

unsigned long StringHashCommon(unsigned char format, unsigned long len, void* value, unsigned long count,
                               int& error, unsigned short oldForm) {
  StringOperand operand(value, len, format, oldForm != 0);
  error = 0;
  unsigned hash = 0;
  for (unsigned long i = 0; i < count && error == 0; ++i) {
    const bool last = i + 1 == count;
    if (operand.Read(last) != 0) {
      error = kNotPossible;
      return 0;
    }
    const unsigned long length = operand.truncated ? operand.Characters() : kWholeText;
    hash ^= HashString(operand.codeSet, operand.language, operand.text, static_cast<short>(length),
                       format & kFormatCodeMask);
    if (!last) error = operand.Advance();
  }
  return hash * kHashMultiplier;
}

unsigned long StringHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  const char* const image = static_cast<const char*>(value);
  if (count == 1 && format != kFormatMemory && IsWhole(image, len, format) && NxCharWidth(image[2]) == 1) {
    error = 0;
    return HashString(image[2], image[3], image + NxStoredString::kHeadSize, -1, format & kFormatCodeMask) *
           kHashMultiplier;
  }
  return StringHashCommon(format, len, value, count, error, 0);
}

unsigned long StringOldHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                            int& error) {
  return StringHashCommon(format, len, value, count, error, 1);
}
