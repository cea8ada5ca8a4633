// Comparison and hashing of NxString values in memory and in stored images: takes each
// text out of its image, closes it where the image does not, and counts what a cut
// buffer leaves of it.

#include <algorithm>
#include <cstring>

#include "base/nxclosedcopy.h"
#include "base/nxstored.h"
#include "collation/nxplainbytes.h"
#include "collation/nxplainhash.h"
#include "collation/nxstrcmp.h"
#include "collation/nxstrcmpkeys.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtyphash.h"
#include "slots/nxelement.h"
#include "strwild.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kLengthSize = NxStoredString::kLengthSize;

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
  static constexpr long long kSmallestRest = 5;  // less than that holds no image

  bool Holds(unsigned long bytes) const { return !limited_ || left_ >= static_cast<long long>(bytes); }
  unsigned long Left() const { return left_ > 0 ? static_cast<unsigned long>(left_) : 0; }
  void ReadValue();
  bool ReadsAsEarly() const;
  void LocateCurrent();
  void LocateEarly(bool last);
  bool IsClosed() const;
  int Close(const char* from);

  const char* at_;  // the element's image; of an early one, once read, the text at hand
  long long left_;  // bytes of the buffer from there
  const bool limited_;
  const unsigned char format_;
  const bool oldForm_;

  NxStoredString image_;            // what its head says
  unsigned long textSize_ = 0;      // bytes of text that the image states
  unsigned long available_ = 0;     // bytes of text in the buffer
  const char* earlyEnd_ = nullptr;  // end of an early image's texts; null for a current one
  NxClosedCopy<kTruncatedTextMax> copy_;
};

int StringOperand::Read(bool last) {
  if (format_ == kFormatMemory) {
    ReadValue();
    return 0;
  }
  if (!earlyEnd_) image_ = NxStoredString(at_, limited_ ? Left() : NxStoredString::kNoEnd, format_);
  const bool early = earlyEnd_ || ReadsAsEarly();
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

/// Whether the element at hand is an early image. Its last byte tells (nxstored.h); where
/// the buffer ends before that byte, the type does. Index keys are always current ones.
bool StringOperand::ReadsAsEarly() const {
  if (format_ & kFormatKey) return false;
  return image_.Fits() ? image_.early : oldForm_;
}

/// The first time steps over the length of the whole; the texts then follow each other.
void StringOperand::LocateEarly(bool last) {
  codeSet = language = 0;
  if (!earlyEnd_) {
    truncated = !image_.Fits();
    textSize_ = image_.n != 0 ? image_.n - 1 : 0;
    if (Holds(kLengthSize)) at_ += kLengthSize;
    left_ -= kLengthSize;
    earlyEnd_ = at_ + (truncated ? Left() : image_.n);
    if (truncated) {
      available_ = std::min(Left(), textSize_);
      return;
    }
    --left_;  // the early image has no closing 0xFF to count with
  }
  const unsigned long rest = static_cast<unsigned long>(earlyEnd_ - at_) - 1;
  available_ = textSize_ = last ? rest : std::strlen(at_);
}

void StringOperand::LocateCurrent() {
  codeSet = image_.ByteAt(kLengthSize);
  language = image_.ByteAt(kLengthSize + 1);
  cutKey = codeSet == kCodeSetOrderValues && (language & kMixedCollation) != 0;
  if (cutKey) language &= ~kMixedCollation;
  const unsigned long n = image_.n;
  textSize_ = available_ = n > NxStoredString::kEmptyLength ? n - NxStoredString::kEmptyLength : 0;
  truncated = false;
  if (image_.Fits()) return;
  const unsigned long left = Left();
  available_ = std::min(textSize_, left > NxStoredString::kHeadSize ? left - NxStoredString::kHeadSize : 0);
  truncated = left < kLengthSize || left + 1 != image_.Size();  // the last byte says nothing
}

/// Whether a current image's text ends with its zero as it lies there.
bool StringOperand::IsClosed() const {
  return !truncated && image_.n >= NxStoredString::kEmptyLength && NxCharWidth(codeSet) == 1 &&
         at_[image_.n] == 0;  // the byte behind the text
}

/// Copies the text and puts a zero behind it.
int StringOperand::Close(const char* from) {
  unsigned long bytes = available_;
  if (truncated && NxCharWidth(codeSet) == 2) bytes &= ~1UL;
  text = copy_.Take(from, bytes);
  return text ? 0 : kNotPossible;
}

int StringOperand::Advance() {
  if (format_ == kFormatMemory) {
    left_ -= sizeof(NxString);
    if (!Holds(sizeof(NxString))) return kPastBuffer;
    at_ += sizeof(NxString);
    return 0;
  }
  if (truncated) return kPastBuffer;
  const unsigned long size = earlyEnd_ ? available_ + 1 : image_.Size();
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
  int CompareTexts(short length);

  StringOperand& a_;
  StringOperand& b_;
  const unsigned short options_;
  const unsigned char code_;
  const bool wildcards_;
  const bool skipsSpaces_;

  int error_ = 0;
  int partial_ = 0;  // what NxStrCmp reports of the base letters
};

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

int StringComparison::CompareTexts(short length) {
  partial_ = 0;
  return NxStrCmp(a_.codeSet, a_.language, a_.text, b_.codeSet, b_.language, b_.text, options_, length, code_,
                  &partial_);
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
  long result = CompareTexts(static_cast<short>(length));
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

/// Compares two of them as far as plain texts go, of which most calls are, else kNoResult. The
/// format is the usual one.
inline int ComparePlain(const char* a, unsigned long length1, const char* b, unsigned long length2,
                        unsigned short options) {
  if (!NxStoredString::IsWhole(a, length1, kFormatNative) ||
      !NxStoredString::IsWhole(b, length2, kFormatNative))
    return kNoResult;
  if (NxStoredString::KindOf(a) != NxStoredString::KindOf(b)) return kNoResult;
  const NxOrderTable* const table =
      NxTableOfBoth(NxStoredString::CodeSetOf(a), NxStoredString::LanguageOf(a), options);
  if (!table) return kNoResult;
  const unsigned bytes =
      std::min(NxStoredString::LengthOf(a, kFormatNative), NxStoredString::LengthOf(b, kFormatNative));
  NxNoteRoad(NxRoad::kPlainBytes);
  return NxCompareAlike(*table, NxStoredString::TextOf(a), NxStoredString::TextOf(b),
                        NxKnownEnds{a + bytes + 1}, options);
}

/// Compares two of them; kUnsuited for texts that must be taken out first.
NxVerdict CompareWhole(const char* a, const char* b, unsigned short options, unsigned char format,
                       long& result, int& error) {
  const unsigned char codeSet1 = NxStoredString::CodeSetOf(a);
  const unsigned char codeSet2 = NxStoredString::CodeSetOf(b);
  const unsigned char language1 = NxStoredString::LanguageOf(a);
  const unsigned char language2 = NxStoredString::LanguageOf(b);
  const char* const text1 = NxStoredString::TextOf(a);
  const char* const text2 = NxStoredString::TextOf(b);
  const unsigned char code = format & kFormatCodeMask;
  if (NxCharWidth(codeSet1) == 1 && NxCharWidth(codeSet2) == 1) {
    error = 0;
    result =
        NxStrCmp(codeSet1, language1, text1, codeSet2, language2, text2, options, kWholeText, code, nullptr);
    return NxVerdict::kDecided;
  }
  const NxVerdict verdict = NxCompareKeys(a, b, format, options, result, error);
  if (verdict == NxVerdict::kDecided) NxNoteRoad(NxRoad::kKeyLevels);
  return verdict;
}

}  // namespace

long StringCompareCommon(unsigned char format, unsigned long len1, void* value1, unsigned long len2,
                         void* value2, unsigned short options, unsigned long count, int& error,
                         unsigned short oldForm) {
  StringOperand a(value1, len1, format, oldForm != 0);
  StringOperand b(value2, len2, format, oldForm != 0);
  return StringComparison(a, b, options, format).Run(count, error);
}

namespace {

/// StringCompare of what ComparePlain leaves over.
[[gnu::noinline]] long CompareOthers(unsigned char format, unsigned long len1, void* value1,
                                     unsigned long len2, void* value2, unsigned short options,
                                     unsigned long count, int& error) {
  const char* const a = static_cast<const char*>(value1);
  const char* const b = static_cast<const char*>(value2);
  long result;
  const bool nativeKeys = format == (kFormatKey | kFormatNative) && count == 1;
  if (nativeKeys && (options & (kWildcardsOff | kOrderValuesOnly)) == kWildcardsOff &&
      NxCompareBases(a, len1, b, len2, result) == NxVerdict::kDecided) {
    NxNoteRoad(NxRoad::kKeyBases);
    error = 0;
    return result;
  }
  if (count == 1 && format != kFormatMemory && NxStoredString::IsWhole(a, len1, format) &&
      NxStoredString::IsWhole(b, len2, format) &&
      CompareWhole(a, b, options, format, result, error) == NxVerdict::kDecided)
    return result;
  return StringCompareCommon(format, len1, value1, len2, value2, options, count, error, 0);
}

}  // namespace

long StringCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                   unsigned short options, unsigned long count, int& error) {
  if (format != kFormatNative || count != 1)
    return CompareOthers(format, len1, value1, len2, value2, options, count, error);
  const int result =
      ComparePlain(static_cast<const char*>(value1), len1, static_cast<const char*>(value2), len2, options);
  if (result == kNoResult) return CompareOthers(kFormatNative, len1, value1, len2, value2, options, 1, error);
  error = 0;
  return result;
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
    const short length = operand.truncated ? static_cast<short>(operand.Characters()) : kWholeText;
    hash ^= HashString(operand.codeSet, operand.language, operand.text, length, format & kFormatCodeMask);
    if (!last) error = operand.Advance();
  }
  return hash * kHashMultiplier;
}

namespace {

/// Hashes one whole image of a text that its table alone can tell. The format is the usual one.
inline bool HashPlain(const char* image, unsigned long len, unsigned& hash) {
  unsigned size;
  const NxOrderTable* const table = NxTableOfStored(image, len, size);
  return table && size != 0 && NxHashPlain(*table, NxStoredString::TextOf(image), size, hash);
}

/// StringHash of what HashPlain leaves over.
[[gnu::noinline]] unsigned long HashOthers(unsigned char format, unsigned long len, void* value,
                                           unsigned long count, int& error) {
  const char* const image = static_cast<const char*>(value);
  if (count == 1 && format != kFormatMemory && NxStoredString::IsWhole(image, len, format) &&
      NxCharWidth(NxStoredString::CodeSetOf(image)) == 1) {
    error = 0;
    const unsigned long hash =
        HashString(NxStoredString::CodeSetOf(image), NxStoredString::LanguageOf(image),
                   NxStoredString::TextOf(image), kWholeText, format & kFormatCodeMask);
    return hash * kHashMultiplier;
  }
  return StringHashCommon(format, len, value, count, error, 0);
}

}  // namespace

unsigned long StringHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                         int& error) {
  unsigned hash;
  if (format == kFormatNative && count == 1 && HashPlain(static_cast<const char*>(value), len, hash)) {
    error = 0;
    return hash * kHashMultiplier;
  }
  return HashOthers(format, len, value, count, error);
}

unsigned long StringOldHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                            int& error) {
  return StringHashCommon(format, len, value, count, error, 1);
}
