// The NxString type: life cycle, string arrays, and the current stored image, whose
// bytes are described at NxImageOf.

#include <cstring>

#include "nxconv.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "slots/nxlife.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kHeadSize = 4;         // length, code set, language
constexpr unsigned long kTrailerSize = 2;      // 0x00 0xFF
constexpr unsigned long kLongestText = 65531;  // bytes that the 16-bit length leaves for the text
constexpr unsigned char kLastByte = 0xFF;      // of every current image; early images end in 0

const NxString* Strings(const void* p) { return static_cast<const NxString*>(p); }
NxString* Strings(void* p) { return static_cast<NxString*>(p); }

unsigned char CodeOf(unsigned char format) { return format & kFormatCodeMask; }

// The image's length field, moved here rather than by ShortStore because every
// string has one and most strings are short.

void PutLength(unsigned char* p, unsigned long n, unsigned char code) {
  const bool highFirst = code == kFormatBigEndian;
  p[0] = static_cast<unsigned char>(highFirst ? n >> 8 : n);
  p[1] = static_cast<unsigned char>(highFirst ? n : n >> 8);
}

unsigned long GetLength(const unsigned char* p, unsigned char code) {
  return code == kFormatBigEndian ? p[0] << 8 | p[1] : p[1] << 8 | p[0];
}

/// Whether the image with length field n ends as early images do. Only N and the
/// image's last byte are read.
bool IsEarly(const unsigned char* image, unsigned long n) { return image[2 + n - 1] == 0; }

/// Bytes of text in the image of a string: all of the buffer but its terminator. A
/// text too long for the length field is cut.
unsigned long TextBytes(const NxString& s) {
  const unsigned long width = NxCharWidth(s._nCodeSet);
  if (!s._pBuffer || s._nSize < width) return 0;
  const unsigned long bytes = s._nSize - width;
  return bytes <= kLongestText ? bytes : kLongestText & ~(width - 1);
}

/// Image of one string:
///
///   0      2  length N of what follows
///   2      1  code set
///   3      1  language
///   4      -  text: bytes, or 16-bit units in the code's order
///   N      1  0x00
///   N + 1  1  0xFF
unsigned char* PutImage(unsigned char* image, const NxString& s, unsigned char code) {
  const unsigned long bytes = TextBytes(s);
  PutLength(image, bytes + kHeadSize, code);
  image[2] = s._nCodeSet;
  image[3] = s._nLanguage;
  unsigned char* text = image + kHeadSize;
  if (code == kFormatBigEndian && NxCharWidth(s._nCodeSet) == 2) {
    if (bytes % 2 != 0) text[bytes - 1] = 0;
    ShortStore(text, s._pBuffer, code, bytes / 2);
  } else {
    NxCopyBytes(text, s._pBuffer, bytes);
  }
  text[bytes] = 0;
  text[bytes + 1] = kLastByte;
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
  const unsigned long n = GetLength(image, code);
  const bool whole = n >= kHeadSize;
  s._nLanguage = whole ? image[3] : 0;
  s._nCodeSet = whole ? image[2] : 0;
  TakeText(s, image + kHeadSize, whole ? n - kHeadSize : 0, code);
  return image + 2 + n;
}

/// Reads an early block: a text with its NUL per string. Strings that the block has
/// no text for become empty ones.
int TakeEarly(NxString* strings, const unsigned char* image, unsigned long blockSize, unsigned long n) {
  const unsigned char* end = image + 2 + blockSize;
  const unsigned char* p = image + 2;
  for (unsigned long i = 0; i < n; ++i) {
    strings[i] = p < end ? reinterpret_cast<const char*>(p) : "";
    if (p < end) p = static_cast<const unsigned char*>(std::memchr(p, 0, end - p)) + 1;
  }
  return static_cast<int>(blockSize + 2);
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
      length = length * KeyScale(s._nCodeSet) & 0xFFFF;
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
  void* strings = NxStringCreate(n);
  if (strings) NxStringAssignment(strings, values, n, 0);
  return NxTypeConvertData::Make(kStringTypeId, n, strings, nullptr);
}

void* NxStringConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  NxString* values = Strings(NxStringCreate(n));
  if (!values) return nullptr;
  for (unsigned long i = 0; i < n; ++i) {
    if (const NxString* s = strings ? strings->GetString(static_cast<int>(i)) : nullptr)
      values[i] = *s;
    else
      values[i].SetNullValue();
  }
  return values;
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
  if (const unsigned long length = GetLength(start, code); IsEarly(start, length))
    return TakeEarly(Strings(values), start, length, n);
  const unsigned char* p = start;
  for (unsigned long i = 0; i < n; ++i) p = TakeImage(Strings(values)[i], p, code);
  return static_cast<unsigned short>(p - start);
}

int StringNullSizeGet(unsigned long n) { return static_cast<int>(n * (kHeadSize + kTrailerSize)); }

int StringSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n) {
  if (form & kFormatMemory) return static_cast<int>(SizeInMemory(Strings(p), format, n));
  const auto* image = static_cast<const unsigned char*>(p);
  unsigned long size = 0;
  for (unsigned long i = 0; i < n; ++i) {
    const unsigned long stored = GetLength(image, CodeOf(format));
    unsigned long length = stored;
    if (!(format & kFormatKey)) {
      if (IsEarly(image, stored)) return static_cast<int>(stored + 2);
    } else if (stored != 0 && IsTranslated(image[2], format)) {
      length = stored * KeyScale(image[2]) & 0xFFFF;
    }
    size += length + 2;
    image += stored + 2;
  }
  return static_cast<int>(size);
}

int StringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long n) {
  unsigned long available = 0;
  const auto* image = static_cast<const unsigned char*>(file->Seek(0, 1, &available, 0));
  if (!image || available == 0) return 0;
  // The most that this image and those after it can take, for want of anything better.
  const auto atMost = [](unsigned long images) { return static_cast<int>(images * 65535); };
  unsigned long size = 0;
  unsigned long pos = 0;
  for (unsigned long left = n; left > 0; --left) {
    if (pos + 2 > available) return atMost(left);
    const unsigned long stored = GetLength(image + pos, CodeOf(format));
    unsigned long length = stored;
    if (format & kFormatKey) {
      const unsigned char codeSet = pos + 2 < available ? image[pos + 2] : kCodeSetNone;
      if (IsTranslated(codeSet, format)) length *= KeyScale(CalculateCodeSet(codeSet, format));
    } else if (left > 1) {
      if (stored + file->Offset() > file->Length() || pos + 2 + stored > available) return atMost(left);
      if (IsEarly(image + pos, stored)) return static_cast<int>(stored + 2);
    }
    size += length + 2;
    pos += stored + 2;
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
