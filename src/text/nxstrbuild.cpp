// How the text of an NxString comes about: the building of its buffer, the
// conversion of its characters between code sets, and the limit of its size.

#include "text/nxstrbuild.h"

#include <algorithm>

// ---------------------------------------------------------------------------
// Texts

unsigned long NxLimitedLength(const char* text, unsigned width, unsigned long limit) {
  if (width == 1) return strnlen(text, limit);
  unsigned long length = 0;
  while (length < limit && NxUnitAt<unsigned short>(text + 2 * length) != 0) ++length;
  return length;
}

void NxMemCpy(char* dst, char* src, short width, unsigned char byteOrder, unsigned long bytes) {
  if (width == 2 && byteOrder == kFormatBigEndian)
    ShortStore(dst, src, kFormatBigEndian, bytes / 2);
  else
    NxCopyBytes(dst, src, bytes);
}

void NxReportOverflow(int line) {
  if (NxConfig* config = DefaultConfig(NxAskConfig())) {
    unsigned short wanted = 0;
    const NxConfigScope scope = {"debug", 0};
    config->Query("stringOverflow", &wanted, &scope);
    if (wanted == 0) return;
  }
  NEXO_assert("\"String overflow\" && 0", "src/nxstring", line);
}

// ---------------------------------------------------------------------------
// Building

namespace {

/// One run of BuildString. The new buffer is written from its start to its end:
/// what is kept before the source, the source, what is kept behind it.
class TextBuilder {
 public:
  TextBuilder(NxString& s, const NxPiece& piece, NxBuildMode mode)
      : s_(s),
        piece_(piece),
        mode_(mode),
        width_(NxCharWidth(s._nCodeSet)),
        old_(s._pBuffer ? s._nSize : 0) {}
  TextBuilder(const TextBuilder&) = delete;
  TextBuilder& operator=(const TextBuilder&) = delete;
  ~TextBuilder() { delete[] converted_; }

  bool Run() {
    if (mode_ != NxBuildMode::kCompose && !Applies()) return true;
    Measure();
    if (head_ + area_ + tail_ > kMaxStringBytes) {
      NxReportOverflow(kOverflowInBuild);
      return false;
    }
    if (!TakeSource()) return false;
    const auto size = static_cast<unsigned long>(head_ + area_ + tail_);
    char* buffer = NxNewArray<char>(size);
    if (!buffer) return false;
    out_ = buffer;
    PutKept(0, head_);
    PutSource(out_ + area_);
    PutKept(tailStart_, tail_);
    NxAttach(s_, buffer, size);
    return true;
  }

 private:
  /// Whether there is a text to insert or to overwrite with and its place lies
  /// within the text, so that the terminator stays.
  bool Applies() const {
    if (!piece_.text || NxCharAt(piece_.text, NxCharWidth(piece_.codeSet)) == 0) return false;
    if (old_ < width_) return mode_ == NxBuildMode::kInsert && piece_.destPos == 0;
    const unsigned long end = piece_.destPos + (mode_ == NxBuildMode::kOverwrite ? piece_.length : 0);
    return end <= old_ / width_ - 1;
  }

  void Measure() {
    area_ = 1ULL * piece_.length * width_ * piece_.repeat;
    head_ = 1ULL * piece_.destPos * width_;
    if (mode_ == NxBuildMode::kCompose || old_ < width_) {
      tailStart_ = old_;
      tail_ = width_;
    } else {
      tailStart_ = (piece_.destPos + (mode_ == NxBuildMode::kOverwrite ? piece_.length : 0)) * width_;
      tail_ = old_ - tailStart_;
    }
  }

  /// Finds the source in the string's own code set, converting it when it stands in
  /// another one, and how far it may be read.
  bool TakeSource() {
    source_ = piece_.text;
    if (!source_) return true;
    if (piece_.codeSet == s_._nCodeSet || (piece_.codeSet == kCodeSetNone && width_ == 1)) {
      const bool own = old_ != 0 && source_ >= s_._pBuffer && source_ < s_._pBuffer + old_;
      available_ = own ? s_._pBuffer + old_ - source_ : ~0UL;
      return true;
    }
    unsigned long wanted = piece_.repeat == 1 ? piece_.start + piece_.length : 1;
    wanted = NxLimitedLength(source_, NxCharWidth(piece_.codeSet), wanted);
    converted_ = NxNewArray<char>(wanted * width_);
    if (!converted_) return false;
    available_ = NxMapText(piece_.codeSet, source_, s_._nCodeSet, converted_, wanted) * width_;
    source_ = converted_;
    return true;
  }

  void Put(const char* bytes, unsigned long n) {
    NxMemCpy(out_, const_cast<char*>(bytes), static_cast<short>(width_), piece_.byteOrder, n);
    out_ += n;
  }
  void PutZeros(unsigned long n) {
    std::memset(out_, 0, n);
    out_ += n;
  }

  /// Old bytes from start, zeros where there are none.
  void PutKept(unsigned long start, unsigned long n) {
    unsigned long kept = start < old_ ? std::min(n, old_ - start) : 0;
    if (width_ == 2) kept &= ~1UL;
    Put(s_._pBuffer + start, kept);
    PutZeros(n - kept);
  }

  void PutSource(char* end) {
    const auto room = static_cast<unsigned long>(end - out_);
    if (piece_.repeat != 1) {
      if (available_ >= width_) PutCopies(std::min(piece_.repeat, room / width_));
    } else if (const unsigned long start = piece_.start * width_; available_ > start) {
      Put(source_ + start, std::min(room, available_ - start));
    }
    PutZeros(end - out_);
  }

  void PutCopies(unsigned long n) {
    if (width_ == 1) {
      std::memset(out_, *source_, n);
    } else {
      for (unsigned long i = 0; i < n; ++i) std::memcpy(out_ + 2 * i, source_, 2);
    }
    out_ += n * width_;
  }

  NxString& s_;
  const NxPiece& piece_;
  const NxBuildMode mode_;
  const unsigned long width_;
  const unsigned long old_;  // bytes of the present buffer

  // Bytes of the new buffer: kept before the source, source, kept behind it. The
  // counts are 16 bits wide, their product is not.
  unsigned long long head_ = 0;
  unsigned long long area_ = 0;
  unsigned long tailStart_ = 0;  // where the tail stands in the present buffer
  unsigned long tail_ = 0;

  const char* source_ = nullptr;
  char* converted_ = nullptr;    // the source, when it had to be converted
  unsigned long available_ = 0;  // bytes that may be read at source_
  char* out_ = nullptr;
};

/// Converts at most n characters into a buffer of `room` bytes, terminator and zeros
/// behind. Returns how many.
unsigned long MapInto(unsigned char srcCodeSet, const char* src, unsigned char dstCodeSet, char* buffer,
                      unsigned long room, unsigned long n) {
  const unsigned long count = NxMapText(srcCodeSet, src, dstCodeSet, buffer, n);
  const unsigned long used = count * NxCharWidth(dstCodeSet);
  std::memset(buffer + used, 0, room - used);
  return count;
}

/// AllocMappedN with the overflow told apart: false leaves everything as it was.
bool MapReusing(unsigned char srcCodeSet, unsigned char dstCodeSet, const char* src, short n, char*& buffer,
                unsigned short& size, unsigned long& count) {
  if (!src) src = zeroString;
  const unsigned long wanted =
      n == kWholeText ? NxTextLength(src, NxCharWidth(srcCodeSet)) : static_cast<unsigned short>(n);
  const unsigned long needed = (wanted + 1) * NxCharWidth(dstCodeSet);
  if (needed > kMaxStringBytes) {
    NxReportOverflow(kOverflowInMapping);
    return false;
  }
  if (buffer && size >= needed && buffer != src) {
    const unsigned width = NxCharWidth(dstCodeSet);
    count = NxMapText(srcCodeSet, src, dstCodeSet, buffer, wanted);
    NxPutTerminator(buffer + count * width, width);
    return true;
  }
  char* mapped = NxNewArray<char>(needed);
  if (!mapped) return false;
  count = MapInto(srcCodeSet, src, dstCodeSet, mapped, needed, wanted);
  delete[] buffer;
  buffer = mapped;
  size = static_cast<unsigned short>(needed);
  return true;
}

/// Converts the characters of s, which has a buffer; its code set stays as it is.
bool Remap(NxString& s, unsigned char codeSet) {
  const unsigned long length = NxTextLength(s._pBuffer, NxCharWidth(s._nCodeSet));
  const unsigned long size = (length + 1) * NxCharWidth(codeSet);
  if (size > kMaxStringBytes) {
    NxReportOverflow(kOverflowInMapping);
    return false;
  }
  char* buffer = NxNewArray<char>(size);
  if (!buffer) return false;
  MapInto(s._nCodeSet, s._pBuffer, codeSet, buffer, size, length);
  NxAttach(s, buffer, size);
  return true;
}

}  // namespace

bool NxBuildText(NxString& s, const NxPiece& piece, NxBuildMode mode) {
  return TextBuilder(s, piece, mode).Run();
}

void NxAssignText(NxString& s, const char* text, unsigned char codeSet, unsigned long n) {
  const unsigned width = NxCharWidth(codeSet);
  if (!text) {
    NxAttach(s, nullptr, 0);
  } else if (n >= kMaxStringBytes / width) {
    NxReportOverflow(kOverflowInBuild);
    return;
  } else if (const unsigned long size = (n + 1) * width;
             s._nSize == size && s._pBuffer && text != s._pBuffer) {
    NxCopyBytes(s._pBuffer, text, n * width);
    NxPutTerminator(s._pBuffer + n * width, width);
  } else {
    char* buffer = NxNewArray<char>(size);
    if (!buffer) return;
    NxCopyBytes(buffer, text, n * width);
    NxPutTerminator(buffer + n * width, width);
    NxAttach(s, buffer, size);
  }
  s._nCodeSet = codeSet;
  s._nLanguage = NxLanguageContext::GetDefaultLanguage();
}

void NxAppendText(NxString& s, const char* text, unsigned long n) {
  const unsigned long old = s.Len();
  if (!NxTakesAsItIs(s, old, n))
    NxBuildText(s, {text, NxString::GetDefault8CodeSet(), n, old}, NxBuildMode::kCompose);
  else if (char* const place = NxRoomBehind(s, old, n))
    NxCopyBytes(place, text, n);
}

void NxString::BuildString(const char* src, unsigned char srcCodeSet, unsigned short destPos,
                           unsigned short srcStart, unsigned short srcLen, unsigned short repeat,
                           unsigned short buildMode, unsigned char byteOrder) {
  const auto mode = static_cast<NxBuildMode>(buildMode);
  if (mode < NxBuildMode::kOverwrite || mode > NxBuildMode::kCompose) return;
  NxBuildText(*this, {src, srcCodeSet, srcLen, destPos, srcStart, repeat, byteOrder}, mode);
}

void NxString::MakeString(const char* text, unsigned char cs, short n, unsigned char mode) {
  if (!text || n == 0) {
    NxAttach(*this, nullptr, 0);
    return;
  }
  NxComposeText(*this, text, cs,
                n == kWholeText ? NxTextLength(text, NxCharWidth(cs)) : static_cast<unsigned short>(n), mode);
}

// ---------------------------------------------------------------------------
// Code sets

unsigned long NxMapText(unsigned char srcCodeSet, const char* src, unsigned char dstCodeSet, char* dst,
                        unsigned long limit) {
  const unsigned srcWidth = NxCharWidth(srcCodeSet);
  const unsigned dstWidth = NxCharWidth(dstCodeSet);
  if (srcCodeSet == kCodeSetNone) srcCodeSet = NxLanguageContext::GetNativeCodeSet();
  if (dstCodeSet == kCodeSetNone) dstCodeSet = NxLanguageContext::GetNativeCodeSet();
  const NxCodeSet* target = srcCodeSet == dstCodeSet ? nullptr : NxLanguageContext::QueryCodeSet(dstCodeSet);
  unsigned long count = 0;
  for (; count < limit; ++count) {
    unsigned short value = NxCharAt(src + count * srcWidth, srcWidth);
    if (value == 0) break;
    if (target) value = target->MapFrom(value, srcCodeSet);
    if (dstWidth == 1)
      dst[count] = static_cast<char>(value);
    else
      std::memcpy(dst + 2 * count, &value, 2);
  }
  return count;
}

unsigned short AllocMapped(unsigned char srcCodeSet, unsigned char dstCodeSet, char* src, char*& out,
                           unsigned short /*len*/, unsigned char /*byteOrder*/) {
  const char* text = src ? src : zeroString;
  const unsigned long width = NxCharWidth(dstCodeSet);
  unsigned long length = NxTextLength(text, NxCharWidth(srcCodeSet));
  constexpr unsigned long kLargestSize = 65535;  // that the result can say
  const unsigned long most = kLargestSize / width - 1;
  if (length > most) {
    NxReportOverflow(kOverflowInMapping);
    length = most;
  }
  const unsigned long size = (length + 1) * width;
  out = NxNewArray<char>(size);
  if (!out) return 0;
  MapInto(srcCodeSet, text, dstCodeSet, out, size, length);
  return static_cast<unsigned short>(size);
}

int AllocMappedN(unsigned char srcCodeSet, unsigned char dstCodeSet, char* src, short n, char*& buffer,
                 unsigned short& size) {
  unsigned long count = 0;
  MapReusing(srcCodeSet, dstCodeSet, src, n, buffer, size, count);
  return static_cast<int>(count);
}

int NxString::SetCodeSetCode(unsigned char cs) {
  if (NxCharWidth(cs) != NxCharWidth(_nCodeSet)) return kInvalidCodeSet;
  _nCodeSet = cs;
  return 0;
}

int NxString::SetCodeSet(unsigned char cs) {
  if (_pBuffer && NxCharWidth(cs) != NxCharWidth(_nCodeSet) && !Remap(*this, cs)) return kInvalidCodeSet;
  _nCodeSet = cs;
  return 0;
}

int NxString::MapToCodeSet(unsigned char cs) {
  if (cs == kCodeSetNone) return kInvalidCodeSet;
  if (_pBuffer && cs != _nCodeSet && !Remap(*this, cs)) return kInvalidCodeSet;
  _nCodeSet = cs;
  return 0;
}

int NxString::CopyMapped(const NxString& s, unsigned char cs, short n) {
  if (&s == this) return kInvalidCodeSet;
  unsigned long count = 0;
  if (!MapReusing(s._nCodeSet, cs, s.StrGet(), n, _pBuffer, _nSize, count)) return 0;
  _nCodeSet = cs;
  _nLanguage = s._nLanguage;
  // Searching and stored images go by the buffer's size: nothing of an old text, perhaps
  // of another width, may stand behind the new one.
  const unsigned long used = (count + 1) * NxCharWidth(cs);
  std::memset(_pBuffer + used, 0, _nSize - used);
  return static_cast<int>(count);
}
