// The early image of strings: one 16-bit length T, then every text in 8 bits with its
// NUL. StringLoad reads it, beside the current image.

#include <cstring>

#include "base/nxstored.h"
#include "nxtypes.h"
#include "text/nxstrbuild.h"

namespace {

constexpr unsigned long kLengthSize = NxStoredString::kLengthSize;

/// Bytes of the texts of n strings, each with its NUL.
unsigned long TextBytes(const NxString* strings, unsigned long n) {
  unsigned long bytes = 0;
  for (unsigned long i = 0; i < n; ++i) bytes += strings[i].Len() + 1UL;
  return bytes;
}

}  // namespace

int StringOldStore(void* image, const void* values, unsigned char format, unsigned long n) {
  const auto* strings = static_cast<const NxString*>(values);
  char* const texts = static_cast<char*>(image) + kLengthSize;
  char* p = texts;
  for (unsigned long i = 0; i < n; ++i) {
    const NxString& s = strings[i];
    const unsigned long length = s.Len();
    if (NxCharWidth(s._nCodeSet) == 1)
      std::memcpy(p, s.StrGet(), length);
    else  // the code set that StringLoad takes the text to be in
      NxMapText(s._nCodeSet, s.StrGet(), NxLanguageContext::GetDefault8CodeSet(), p, length);
    p += length;
    *p++ = 0;
  }
  const auto bytes = static_cast<unsigned long>(p - texts);
  NxWriteShort(image, static_cast<unsigned short>(bytes), format);
  return static_cast<int>(kLengthSize + bytes);
}

int StringOldSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n) {
  const bool inMemory = form & kFormatMemory;
  return static_cast<int>(kLengthSize + (inMemory ? TextBytes(static_cast<const NxString*>(p), n)
                                                  : NxStoredString::LengthOf(p, format)));
}

int StringOldSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long /*n*/) {
  unsigned long available = 0;
  const void* image = file->Seek(0, 1, &available, 0);
  if (!image || available < kLengthSize) return 0;
  return static_cast<int>(kLengthSize + NxStoredString::LengthOf(image, format));
}
