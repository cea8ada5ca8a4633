// UTF-8: single characters by the table of sequence lengths, and whole texts. Both
// directions take ASCII in blocks of 16; everything else goes one character at a time.

#include "nx_utf_8.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "base/nxalloc.h"
#include "nxlang.h"
#include "nxstring.h"
#include "text/nxchartext.h"

namespace {

/// A length of sequences: the lead byte's mask and value, the shift of its bits, and the
/// values that the sequence is for.
struct SequenceRow {
  int leadMask;
  int lead;
  int shift;
  int maximum;
  int minimum;
};

// Row k, from 1, is for sequences of k bytes.
constexpr SequenceRow tab[] = {
    {0x80, 0x00, 0, 0x7F, 0},
    {0xE0, 0xC0, 6, 0x7FF, 0x80},
    {0xF0, 0xE0, 12, 0xFFFF, 0x800},
    {0xF8, 0xF0, 18, 0x1FFFFF, 0x10000},
    {0xFC, 0xF8, 24, 0x3FFFFFF, 0x200000},
    {0xFE, 0xFC, 30, 0x7FFFFFFF, 0x4000000},
    {0, 0, 0, 0, 0},
};

constexpr unsigned long kBlock = 16;       // characters taken at once
constexpr unsigned long kMaxSequence = 3;  // bytes of one 16-bit character

/// Which of the 16 bytes are zero or not ASCII, a bit each from the first.
unsigned int NotPlain(__m128i bytes) {
  const __m128i zeros = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
  return static_cast<unsigned int>(_mm_movemask_epi8(_mm_or_si128(bytes, zeros)));
}

__m128i LoadBlock(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }

void StoreBlock(void* to, __m128i block) { _mm_storeu_si128(static_cast<__m128i*>(to), block); }

unsigned long FirstBit(unsigned int mask) { return static_cast<unsigned long>(__builtin_ctz(mask)); }

/// Bytes of text that are not continuation bytes: no fewer than its characters.
unsigned long CountLeads(const unsigned char* text, unsigned long length) {
  const auto isLead = [](unsigned char byte) { return (byte & 0xC0) != 0x80; };
  const __m128i lastContinuation = _mm_set1_epi8(static_cast<char>(0xBF));
  unsigned long count = 0;
  unsigned long i = 0;
  for (; i + kBlock <= length; i += kBlock) {  // as signed values, continuation bytes are the lowest
    const __m128i leads = _mm_cmpgt_epi8(LoadBlock(text + i), lastContinuation);
    const __m128i sums = _mm_sad_epu8(_mm_sub_epi8(_mm_setzero_si128(), leads), _mm_setzero_si128());
    count += static_cast<unsigned long>(_mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4));
  }
  return count + static_cast<unsigned long>(std::count_if(text + i, text + length, isLead));
}

/// Decodes a text into units until one of its ends.
class TextDecoder {
 public:
  /// `units` has room for `room` units, no fewer than there are lead bytes among the first
  /// kMaxUtf8Input + 1.
  TextDecoder(const unsigned char* text, unsigned long length, unsigned short* units, unsigned long room)
      : text_(text), length_(length), units_(units), room_(room) {}

  /// What NxMBS2NxString returns.
  long Run();
  unsigned long Count() const { return count_; }

 private:
  void WidenPlainBlocks();
  int DecodeOne(unsigned short& unit) const;

  const unsigned char* const text_;
  const unsigned long length_;
  unsigned short* const units_;
  const unsigned long room_;
  unsigned long consumed_ = 0;
  unsigned long count_ = 0;
};

long TextDecoder::Run() {
  while (consumed_ <= kMaxUtf8Input && consumed_ < length_) {
    if (text_[consumed_] < 0x80) WidenPlainBlocks();
    if (consumed_ > kMaxUtf8Input || consumed_ == length_) break;
    unsigned short unit;
    const int bytes = DecodeOne(unit);
    if (bytes < 0) return kUtf8Error;
    if (unit == 0) return static_cast<long>(consumed_);
    units_[count_++] = unit;
    consumed_ += static_cast<unsigned long>(bytes);
  }
  return consumed_ > kMaxUtf8Input ? kUtf8TooLong : static_cast<long>(length_);
}

/// Takes blocks up to the first byte that is zero or not ASCII. What is written past
/// that byte's unit is written over.
void TextDecoder::WidenPlainBlocks() {
  const unsigned long limit = std::min<unsigned long>(length_, kMaxUtf8Input + 1);
  const __m128i zero = _mm_setzero_si128();
  unsigned long consumed = consumed_;  // what is stored could be the object, for all the compiler knows
  unsigned long count = count_;
  unsigned long taken = kBlock;
  while (taken == kBlock && consumed + kBlock <= limit && count + kBlock <= room_) {
    const __m128i bytes = LoadBlock(text_ + consumed);
    const unsigned int notPlain = NotPlain(bytes);
    StoreBlock(units_ + count, _mm_unpacklo_epi8(bytes, zero));
    StoreBlock(units_ + count + kBlock / 2, _mm_unpackhi_epi8(bytes, zero));
    taken = notPlain == 0 ? kBlock : FirstBit(notPlain);
    consumed += taken;
    count += taken;
  }
  consumed_ = consumed;
  count_ = count;
}

/// nx_mbtowc, with sequences of two bytes decoded in place.
int TextDecoder::DecodeOne(unsigned short& unit) const {
  const unsigned char* at = text_ + consumed_;
  const unsigned long left = length_ - consumed_;
  if (left >= 2 && at[0] >= 0xC2 && at[0] <= 0xDF && (at[1] & 0xC0) == 0x80) {
    unit = static_cast<unsigned short>((at[0] & 0x1F) << 6 | (at[1] & 0x3F));
    return 2;
  }
  return nx_mbtowc(&unit, reinterpret_cast<const char*>(at), left);
}

/// Gives the empty `out` the decoded units, which are followed by room for a zero. Beyond what
/// a string can hold, the pieces of 256 that fit are kept and the next is appended for the
/// report.
void TakeUnits(NxString& out, char* buffer, unsigned long room, unsigned long count) {
  constexpr unsigned long kPiece = 256;
  constexpr unsigned long kMostUnits = kMaxStringBytes / 2 - 1;
  const unsigned long kept = count <= kMostUnits ? count : kMostUnits / kPiece * kPiece;
  const unsigned long bytes = (kept + 1) * 2;
  char* text = buffer;
  if (kept < room) {
    text = NxNewArray<char>(bytes);
    if (!text) {
      delete[] buffer;
      return;
    }
    std::memcpy(text, buffer, bytes);
  }
  text[bytes - 2] = text[bytes - 1] = 0;
  out._pBuffer = text;
  out._nSize = static_cast<unsigned short>(bytes);
  if (kept < count) {
    NxString rest(out._nCodeSet, out._nLanguage);
    rest.MakeString(buffer + kept * 2, out._nCodeSet, static_cast<short>(count - kept), kFormatNative);
    out += rest;
  }
  if (text != buffer) delete[] buffer;
}

/// The characters of a string as units of code set 253, whatever its own code set is.
class UnicodeText {
 public:
  explicit UnicodeText(const NxString& s);

  unsigned long Length() const { return length_; }
  /// The units as they stand, or null when they are mapped one by one.
  const unsigned short* Units() const { return units_; }
  unsigned short operator[](unsigned long i) const {
    if (units_) return units_[i];
    if (foreign_) return unicode_->MapFrom(foreign_[i], codeSet_);
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): one of the three is set
    return toUnicode_ ? toUnicode_[bytes_[i]] : unicode_->MapFrom(bytes_[i], codeSet_);
  }

 private:
  unsigned char codeSet_;
  unsigned long length_;
  const unsigned short* units_ = nullptr;
  const unsigned char* bytes_ = nullptr;
  const unsigned short* foreign_ = nullptr;  // units of another 16-bit code set
  const unsigned short* toUnicode_ = nullptr;
  const NxCodeSet* unicode_ = NxLanguageContext::QueryCodeSet(kCodeSetUnicode);
};

/// Units before the zero, of at most `limit`.
unsigned long UnitLength(const unsigned short* units, unsigned long limit) {
  unsigned long i = 0;
  for (; i + kBlock / 2 <= limit; i += kBlock / 2) {
    const __m128i zeros = _mm_cmpeq_epi16(LoadBlock(units + i), _mm_setzero_si128());
    const unsigned int mask = static_cast<unsigned int>(_mm_movemask_epi8(zeros));
    if (mask != 0) return i + FirstBit(mask) / 2;
  }
  while (i < limit && units[i] != 0) ++i;
  return i;
}

UnicodeText::UnicodeText(const NxString& s) : codeSet_(StatedCodeSet(s._nCodeSet)) {
  const char* text = s.StrGet();
  if (NxCharWidth(s._nCodeSet) == 1) {
    length_ = std::strlen(text);
    bytes_ = reinterpret_cast<const unsigned char*>(text);
    toUnicode_ = NxLanguageContext::QueryCodeSet(codeSet_)->FlatToUnicode();
    return;
  }
  const unsigned short* units = reinterpret_cast<const unsigned short*>(text);
  length_ = UnitLength(units, s._pBuffer ? s._nSize / 2U : 0);
  if (codeSet_ == kCodeSetUnicode)
    units_ = units;
  else
    foreign_ = units;
}

long Utf8Length(const UnicodeText& text, unsigned long characters) {
  long bytes = 0;
  for (unsigned long i = 0; i < characters; ++i) bytes += nx_len4wc(text[i]);
  return bytes;
}

/// Encodes a text into a buffer until the next character does not fit.
class TextEncoder {
 public:
  TextEncoder(const UnicodeText& text, char* out, unsigned long size) : text_(text), out_(out), size_(size) {}

  /// What NxString2NxMBS returns.
  long Run();

 private:
  void NarrowPlainBlocks();
  bool EncodeOne(unsigned short unit);

  const UnicodeText& text_;
  char* const out_;
  const unsigned long size_;
  unsigned long next_ = 0;
  unsigned long written_ = 0;
};

long TextEncoder::Run() {
  while (next_ < text_.Length()) {
    if (text_.Units() && text_[next_] < 0x80) NarrowPlainBlocks();
    if (next_ == text_.Length()) break;
    if (!EncodeOne(text_[next_])) return -static_cast<long>(written_);
    ++next_;
  }
  if (written_ < size_) out_[written_] = 0;
  return static_cast<long>(written_);
}

/// Takes blocks up to the first unit beyond ASCII. There is room for whatever the block
/// holds, so what is written past that unit's byte is written over.
void TextEncoder::NarrowPlainBlocks() {
  const unsigned short* const units = text_.Units();
  const unsigned long length = text_.Length();
  unsigned long next = next_;  // what is stored could be the object, for all the compiler knows
  unsigned long written = written_;
  unsigned long taken = kBlock;
  const __m128i notPlain = _mm_set1_epi16(static_cast<short>(0xFF80));
  const __m128i zero = _mm_setzero_si128();
  while (taken == kBlock && next + kBlock <= length && written + kBlock * kMaxSequence <= size_) {
    const __m128i low = LoadBlock(units + next);
    const __m128i high = LoadBlock(units + next + kBlock / 2);
    const __m128i plain = _mm_packs_epi16(_mm_cmpeq_epi16(_mm_and_si128(low, notPlain), zero),
                                          _mm_cmpeq_epi16(_mm_and_si128(high, notPlain), zero));
    StoreBlock(out_ + written, _mm_packus_epi16(low, high));
    const unsigned int stops = ~static_cast<unsigned int>(_mm_movemask_epi8(plain)) & 0xFFFF;
    taken = stops == 0 ? kBlock : FirstBit(stops);
    next += taken;
    written += taken;
  }
  next_ = next;
  written_ = written;
}

/// nx_wctomb, with sequences of two bytes encoded in place. False when there is no room.
bool TextEncoder::EncodeOne(unsigned short unit) {
  if (unit >= 0x80 && unit <= 0x7FF && size_ - written_ >= 2) {
    out_[written_] = static_cast<char>(0xC0 | unit >> 6);
    out_[written_ + 1] = static_cast<char>(0x80 | (unit & 0x3F));
    written_ += 2;
    return true;
  }
  char sequence[kMaxSequence];
  const unsigned long bytes = static_cast<unsigned long>(nx_wctomb(sequence, unit));
  if (written_ + bytes > size_) return false;
  std::memcpy(out_ + written_, sequence, bytes);
  written_ += bytes;
  return true;
}

/// Whether texts of the code set that hold ASCII only are UTF-8 as they stand.
bool Is7BitCompatible(unsigned char codeSet) { return codeSet < 6; }

bool IsAscii(const char* text, unsigned long length) {
  unsigned long i = 0;
  for (; i + kBlock <= length; i += kBlock)
    if (_mm_movemask_epi8(LoadBlock(text + i)) != 0) return false;
  return std::all_of(text + i, text + length, [](char c) { return static_cast<signed char>(c) >= 0; });
}

}  // namespace

int nx_mbtowc(unsigned short* wc, const char* s, unsigned int n) {
  if (!s) return 0;
  if (n == 0) return kUtf8Error;
  const unsigned int lead = static_cast<unsigned char>(*s);
  unsigned int value = lead;
  unsigned int bytes = 1;
  for (const SequenceRow* row = tab; row->leadMask != 0; ++row, ++bytes) {
    if ((lead & row->leadMask) == static_cast<unsigned int>(row->lead)) {
      value &= row->maximum;
      if (value < static_cast<unsigned int>(row->minimum)) return kUtf8Error;
      if (wc) *wc = static_cast<unsigned short>(value);
      return static_cast<int>(bytes);
    }
    if (n <= bytes) return kUtf8Error;
    const unsigned int bits = static_cast<unsigned char>(s[bytes]) ^ 0x80U;
    if (bits > 0x3F) return kUtf8Error;
    value = value << 6 | bits;
  }
  return kUtf8Error;
}

int nx_wctomb(char* s, unsigned short wc) {
  if (!s) return 0;
  const int bytes = nx_len4wc(wc);
  const SequenceRow& row = tab[bytes - 1];
  *s++ = static_cast<char>(row.lead | wc >> row.shift);
  for (int shift = row.shift - 6; shift >= 0; shift -= 6)
    *s++ = static_cast<char>(0x80 | (wc >> shift & 0x3F));
  return bytes;
}

int nx_len4wc(unsigned short wc) { return wc <= tab[0].maximum ? 1 : wc <= tab[1].maximum ? 2 : 3; }

int NxMultiByte2WChar(unsigned short* wc, const char* s, unsigned int n) { return nx_mbtowc(wc, s, n); }

int NxWChar2MultiByte(char* s, wchar_t wc) { return nx_wctomb(s, static_cast<unsigned short>(wc)); }

int NxMultiByteStr2WCharStr(unsigned short* dst, int dstLen, const char* src, int srcLen) {
  if (srcLen < 0) return kUtf8Error;
  if (!src) return 0;
  int count = 0;
  for (int consumed = 0; consumed < srcLen; ++count) {
    unsigned short unit;
    const int bytes = nx_mbtowc(&unit, src + consumed, static_cast<unsigned int>(srcLen - consumed));
    if (bytes < 0) return kUtf8Error;
    if (dst && count < dstLen) dst[count] = unit;
    consumed += bytes;
  }
  return count;
}

long NxMBS2NxString(const char* s, NxString& out, long len) {
  const NxShortageWatch shortage;
  NxString decoded(kCodeSetUnicode, out._nLanguage);  // s may be the text of out
  constexpr unsigned long kSlack = 8;                 // so that the last character is not cut
  long result = 0;
  if (s && len != 0) {
    const unsigned long length =
        len > 0 ? static_cast<unsigned long>(len) : strnlen(s, kMaxUtf8Input + kSlack);
    const unsigned char* text = reinterpret_cast<const unsigned char*>(s);
    const unsigned long room = CountLeads(text, std::min<unsigned long>(length, kMaxUtf8Input + 1));
    char* buffer = NxNewArray<char>((room + 1) * 2);
    if (buffer) {
      TextDecoder decoder(text, length, reinterpret_cast<unsigned short*>(buffer), room);
      result = decoder.Run();
      if (decoder.Count() > 0)
        TakeUnits(decoded, buffer, room, decoder.Count());
      else
        delete[] buffer;
    }
  }
  if (shortage.Happened()) return 0;
  out.Destruct(decoded);
  return result;
}

long NxMultiByteString2NxString(const NxString& s, NxString& out) {
  return NxMBS2NxString(s.StrGet(), out, s.Len());
}

long NxMultiByteString2NxString(const char* s, NxString& out, long len) {
  return NxMBS2NxString(s, out, len);
}

long NxString2NxMBS(const NxString& s, char* out, long size) {
  if (!out || size <= 0) return 0;  // nothing fits, nothing is written
  const unsigned long room = static_cast<unsigned long>(size);
  if (Is7BitCompatible(s._nCodeSet)) {
    const char* text = s.StrGet();
    const unsigned long length = strnlen(text, room);
    if (IsAscii(text, length)) {
      std::memcpy(out, text, length);
      std::memset(out + length, 0, room - length);
      return static_cast<long>(length);
    }
  }
  return TextEncoder(UnicodeText(s), out, room).Run();
}

long NxString2MultiByteString(const NxString& s, char*& out, long& size) {
  const UnicodeText text(s);
  const long total = Utf8Length(text, text.Length());
  if (size > 0 && out) {
    NxString2NxMBS(s, out, size);
    if (total <= size) return total;
    size = total;
    return kUtf8Error;
  }
  size = 0;
  out = NxNewArray<char>(static_cast<unsigned long>(total) + 1);
  if (!out) return kUtf8Error;
  size = total + 1;
  return NxString2NxMBS(s, out, size);
}

long NxMBSLength(const NxString& s, unsigned short n) {
  if (Is7BitCompatible(s._nCodeSet)) {
    const unsigned long length = strnlen(s.StrGet(), n);
    if (IsAscii(s.StrGet(), length)) return static_cast<long>(length);
  }
  const UnicodeText text(s);
  return Utf8Length(text, std::min<unsigned long>(text.Length(), n));
}
