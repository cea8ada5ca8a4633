// The NxString type: life cycle, string arrays, and the current stored image, whose
// bytes nxstored.h describes.

#include <cstring>

#include "base/nxstored.h"
#include "nxconv.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "slots/nxconvkit.h"
#include "slots/nxlife.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kLengthSize = NxStoredString::kLengthSize;
constexpr unsigned long kHeadSize = NxStoredString::kHeadSize;
constexpr unsigned long kTrailerSize = NxStoredString::kTrailerSize;
/// Bytes of text that the length field leaves room for.
constexpr unsigned long kLongestText = NxStoredString::kLongestLength - NxStoredString::kEmptyLength;

const NxString* Strings(const void* p) { return static_cast<const NxString*>(p); }
NxString* Strings(void* p) { return static_cast<NxString*>(p); }

unsigned char CodeOf(unsigned char format) { return format & kFormatCodeMask; }

/// Bytes of text in the image of a string: all of the buffer but its terminator. A
/// text too long for the length field is cut.
unsigned long TextBytes(const NxString& s) {
  const unsigned long width = NxCharWidth(s._nCodeSet);
  if (!s._pBuffer || s._nSize < width) return 0;
  const unsigned long bytes = s._nSize - width;
  return bytes <= kLongestText ? bytes : kLongestText & ~(width - 1);
}

/// Writes the current image of a string (nxstored.h), its text in bytes or in 16-bit
/// units of the code's order; returns its end.
unsigned char* PutImage(unsigned char* image, const NxString& s, unsigned char code) {
  const unsigned long bytes = TextBytes(s);
  NxStoredString::PutHead(image, bytes + NxStoredString::kEmptyLength, s._nCodeSet, s._nLanguage, code);
  unsigned char* text = image + kHeadSize;
  if (code == kFormatBigEndian && NxCharWidth(s._nCodeSet) == 2) {
    if (bytes % 2 != 0) text[bytes - 1] = 0;
    ShortStore(text, s._pBuffer, code, bytes / 2);
  } else {
    NxCopyBytes(text, s._pBuffer, bytes);
  }
  text[bytes] = 0;
  text[bytes + 1] = NxStoredString::kLastByte;
  return text + bytes + kTrailerSize;
}

/// Makes s the text of a stored one: `bytes` bytes in the code's order.
void TakeText(NxString& s, const unsigned char* text, unsigned long bytes, unsigned char code) {
  const unsigned width = NxCharWidth(s._nCodeSet);
  bytes &= ~(width - 1UL);
  if (bytes == 0) {
    NxAttach(s, nullptr, 0);
    return;
  }
  char* buffer = NxBufferFor(s, bytes + width);
  if (!buffer) {
    NxAttach(s, nullptr, 0);
    return;
  }
  if (width == 2) {
    ShortStore(buffer, text, code, bytes / 2);
    std::memset(buffer + bytes, 0, 2);
  } else {
    NxCopyBytes(buffer, text, bytes);
    buffer[bytes] = 0;
  }
}

/// Reads one current image; returns its end. A damaged length that does not even
/// cover code set and language makes an empty string.
const unsigned char* TakeImage(NxString& s, const unsigned char* image, unsigned char code) {
  const unsigned long n = NxStoredString::LengthOf(image, code);
  const bool whole = n >= NxStoredString::kEmptyLength;
  s._nLanguage = whole ? NxStoredString::LanguageOf(image) : kLanguageNone;
  s._nCodeSet = whole ? NxStoredString::CodeSetOf(image) : kCodeSetNone;
  TakeText(s, image + kHeadSize, whole ? n - NxStoredString::kEmptyLength : 0, code);
  return image + kLengthSize + n;
}

/// Reads an early block: a text with its NUL per string. Strings that the block has
/// no text for become empty ones.
int TakeEarly(NxString* strings, const unsigned char* image, unsigned long blockSize, unsigned long n) {
  const unsigned char* const end = image + kLengthSize + blockSize;
  const unsigned char* p = image + kLengthSize;
  for (unsigned long i = 0; i < n; ++i) {
    strings[i] = p < end ? reinterpret_cast<const char*>(p) : "";
    if (p < end) p = static_cast<const unsigned char*>(std::memchr(p, 0, end - p)) + 1;
  }
  return static_cast<int>(blockSize + kLengthSize);
}

bool IsTranslated(unsigned char codeSet, unsigned char format) {
  const unsigned char result = CalculateCodeSet(codeSet, format);
  return result != kCodeSetNone && result != kCodeSetOrderValues;
}

/// What a length grows to at most when its text becomes an index key.
unsigned long KeyScale(unsigned char codeSet) { return NxCharWidth(codeSet) == 1 ? 4 : 2; }

/// Bytes of the images of n strings in memory under format.
unsigned long SizeInMemory(const NxString* strings, unsigned char format, unsigned long n) {
  unsigned long size = 0;
  for (unsigned long i = 0; i < n; ++i) {
    const NxString& s = strings[i];
    unsigned long length = TextBytes(s) + kTrailerSize;
    if (format & kFormatKey && IsTranslated(s._nCodeSet, format))
      length = length * KeyScale(s._nCodeSet) & NxStoredString::kLongestLength;
    size += length + kHeadSize;
  }
  return size;
}

}  // namespace

// ---------------------------------------------------------------------------
// Life cycle

void* NxStringCreate(unsigned long n) { return NxObjectForm<NxString>::Create(n); }
int NxStringDelete(void* values, unsigned long n) { return NxObjectForm<NxString>::Delete(values, n); }

void NxStringConstructor(void* place, unsigned long n, unsigned long /*extra*/) {
  NxObjectValues<NxString>::Construct(place, n);
}
void NxStringDestructor(void* place, unsigned long n, unsigned long /*extra*/) {
  NxObjectValues<NxString>::Destroy(place, n);
}
void NxStringAssignment(void* dst, void* src, unsigned long n, int fill) {
  NxObjectValues<NxString>::Assign(dst, src, n, fill);
}
void NxStringCopy(void* dst, void* src, unsigned long n, int fill) {
  NxObjectValues<NxString>::Copy(dst, src, n, fill);
}

void* NxStringDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxString>(n) : NxDefaultFromEmptyText(NxStringConvertFromNxString, n);
}

// ---------------------------------------------------------------------------
// String arrays

NxTypeConvertData* NxStringConvertToNxString(void* values, unsigned long n) {
  const NxShortageWatch shortage;
  NxString* strings = Strings(NxStringCreate(n));
  if (strings) NxStringAssignment(strings, values, n, 0);
  return NxStringArray(strings, n, shortage);
}

void* NxStringConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  const NxShortageWatch shortage;
  NxString* values = Strings(NxStringCreate(n));
  if (!values) return nullptr;
  for (unsigned long i = 0; i < n; ++i) {
    if (const NxString* s = strings ? strings->GetString(static_cast<int>(i)) : nullptr)
      values[i] = *s;
    else
      values[i].SetNullValue();
  }
  return NxWholeOrNone(values, n, NxStringDelete, shortage);
}

// ---------------------------------------------------------------------------
// Stored images

unsigned char CalculateCodeSet(unsigned char codeSet, unsigned char format) {
  if (codeSet == kCodeSetOrderValues) return codeSet;
  if (format & kFormatDropCodeSet && codeSet != kCodeSetNone) return kCodeSetNone;
  if (format & kFormatNativeCodeSet && codeSet == kCodeSetNone) return NxLanguageContext::GetNativeCodeSet();
  return codeSet;
}

int StringStore(void* image, const void* values, unsigned char format, unsigned long n) {
  auto* start = static_cast<unsigned char*>(image);
  unsigned char* p = start;
  for (unsigned long i = 0; i < n; ++i) p = PutImage(p, Strings(values)[i], CodeOf(format));
  return static_cast<unsigned short>(p - start);
}

int StringLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  const auto* start = static_cast<const unsigned char*>(image);
  const unsigned char code = CodeOf(format);
  if (n == 0) return 0;
  if (const unsigned long length = NxStoredString::LengthOf(start, code);
      NxStoredString::EndsEarly(start, length))
    return TakeEarly(Strings(values), start, length, n);
  const unsigned char* p = start;
  for (unsigned long i = 0; i < n; ++i) p = TakeImage(Strings(values)[i], p, code);
  return static_cast<unsigned short>(p - start);
}

int StringNullSizeGet(unsigned long n) { return static_cast<int>(n * NxStoredString::kEmptySize); }

int StringSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n) {
  if (form & kFormatMemory) return static_cast<int>(SizeInMemory(Strings(p), format, n));
  const auto* image = static_cast<const unsigned char*>(p);
  unsigned long size = 0;
  for (unsigned long i = 0; i < n; ++i) {
    const unsigned long stored = NxStoredString::LengthOf(image, format);
    unsigned long length = stored;
    if (!(format & kFormatKey)) {
      if (NxStoredString::EndsEarly(image, stored)) return static_cast<int>(stored + kLengthSize);
    } else if (stored != 0 && IsTranslated(NxStoredString::CodeSetOf(image), format)) {
      length = stored * KeyScale(NxStoredString::CodeSetOf(image)) & NxStoredString::kLongestLength;
    }
    size += length + kLengthSize;
    image += stored + kLengthSize;
  }
  return static_cast<int>(size);
}

int StringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long n) {
  unsigned long available = 0;
  const auto* image = static_cast<const unsigned char*>(file->Seek(0, 1, &available, 0));
  if (!image || available == 0) return 0;
  // The most that this image and those after it can take, for want of anything better.
  const auto atMost = [](unsigned long images) {
    return static_cast<int>(images * NxStoredString::kLongestLength);
  };
  unsigned long size = 0;
  unsigned long pos = 0;
  for (unsigned long left = n; left > 0; --left) {
    if (pos + kLengthSize > available) return atMost(left);
    const unsigned long stored = NxStoredString::LengthOf(image + pos, format);
    unsigned long length = stored;
    if (format & kFormatKey) {
      const unsigned char codeSet =
          pos + kLengthSize < available ? NxStoredString::CodeSetOf(image + pos) : kCodeSetNone;
      if (IsTranslated(codeSet, format)) length *= KeyScale(CalculateCodeSet(codeSet, format));
    } else if (left > 1) {
      if (stored + file->Offset() > file->Length() || pos + kLengthSize + stored > available)
        return atMost(left);
      if (NxStoredString::EndsEarly(image + pos, stored)) return static_cast<int>(stored + kLengthSize);
    }
    size += length + kLengthSize;
    pos += stored + kLengthSize;
  }
  return static_cast<int>(size);
}

// ---------------------------------------------------------------------------
// Null state

int NxStringIsNull(void* value) { return static_cast<NxString*>(value)->IsNullValue(); }
int NxStringSetNull(void* value) {
  static_cast<NxString*>(value)->SetNullValue();
  return 0;
}
