// NxBlob: bytes on the heap. Whatever changes a blob makes the new bytes before it
// releases the old ones, so that bytes of the blob itself may be handed in, and a blob
// without memory for the change stays as it was.
#include "nxblob.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/nxalloc.h"
#include "nxstring.h"

namespace {

constexpr long kReusedSlack = 128;  // a buffer may be longer than its bytes by so many
constexpr unsigned short kNotFound = 65535;
constexpr unsigned long kNumberBytes = 352;  // the longest text: of the largest double

/// What is copied of n bytes at p.
unsigned long BytesAt(const void* p, long n) { return p && n > 0 ? static_cast<unsigned long>(n) : 0; }

/// memmove, whose pointers may be null for no bytes.
void CopyBytes(void* dst, const void* src, unsigned long n) {
  if (n != 0) std::memmove(dst, src, n);
}

// New data; null when memory is short for them or for their bytes.

NxBlobData* NewData() { return NxNewObject<NxBlobData>(); }

NxBlobData* KeepIf(bool complete, NxBlobData* data) {
  if (complete) return data;
  delete data;
  return nullptr;
}

/// Of n bytes at p.
NxBlobData* NewCopy(const void* p, long n) {
  NxBlobData* data = NewData();
  return KeepIf(data && data->init(p, n), data);
}

/// Of n uninitialised bytes.
NxBlobData* NewBytes(long n) {
  NxBlobData* data = NewData();
  if (data && n > 0) data->Resize(static_cast<unsigned long>(n));
  return KeepIf(data && data->length >= n, data);
}

/// The text of a number with its terminating zero.
template <class Number>
NxBlobData* TextOf(const char* format, Number v) {
  char text[kNumberBytes];
  const int length = std::snprintf(text, sizeof text, format, v);
  return NewCopy(text, length + 1L);
}

}  // namespace

// ---------------------------------------------------------------------------
// NxBlobData

NxBlobData::NxBlobData(const void* p, long n) { init(p, n); }
NxBlobData::NxBlobData(const NxBlob& b) : NxBlobData(b.Seek(0, b.Length()), b.Length()) {}
NxBlobData::NxBlobData(long n) {
  if (n > 0) Resize(static_cast<unsigned long>(n));
}

NxBlobData::~NxBlobData() { Hold(nullptr, 0); }

/// A new buffer of n bytes; null for none, and when memory is short. A length is a
/// long, so larger buffers are refused.
unsigned char* NxBlobData::Allocate(unsigned long n) {
  if (n == 0) return nullptr;
  if (n > LONG_MAX) {
    NxReportShortage(n);
    return nullptr;
  }
  return static_cast<unsigned char*>(NxAllocate(n));
}

/// Releases the buffer for another one, of n bytes.
void NxBlobData::Hold(unsigned char* fresh, unsigned long n) {
  std::free(buffer);
  buffer = fresh;
  length = static_cast<long>(n);
}

/// Takes a new buffer of n bytes that begins with the old ones.
void NxBlobData::Rebuild(unsigned long n) {
  unsigned char* fresh = Allocate(n);
  if (!fresh && n != 0) return;
  CopyBytes(fresh, buffer, std::min(n, static_cast<unsigned long>(length)));
  Hold(fresh, n);
}

bool NxBlobData::init(const void* p, long n) {
  const unsigned long bytes = BytesAt(p, n);
  const long wanted = static_cast<long>(bytes);
  if (buffer && wanted <= length && length - wanted <= kReusedSlack) {
    CopyBytes(buffer, p, bytes);
    length = wanted;
    return true;
  }
  unsigned char* fresh = Allocate(bytes);
  if (!fresh && bytes != 0) return false;
  CopyBytes(fresh, p, bytes);
  Hold(fresh, bytes);
  return true;
}

void NxBlobData::Resize(unsigned long n) {
  const auto old = static_cast<unsigned long>(length);
  if (n == 0 && old != 0)
    Hold(nullptr, 0);
  else if (n > old)
    Rebuild(n);
  else
    length = static_cast<long>(n);
}

// ---------------------------------------------------------------------------
// Construction and assignment

NxBlob::NxBlob() : data_(NewData()) {}
NxBlob::NxBlob(long n) : data_(NewBytes(n)) {}
NxBlob::NxBlob(const void* p, long n) : data_(NewCopy(p, n)) {}
NxBlob::NxBlob(const char* text)
    : data_(NewCopy(text, text ? static_cast<long>(std::strlen(text)) + 1 : 0)) {}
NxBlob::NxBlob(int v) : data_(TextOf("%d", v)) {}
NxBlob::NxBlob(short v) : data_(TextOf("%hd", v)) {}
NxBlob::NxBlob(unsigned long v) : data_(TextOf("%lu", v)) {}
NxBlob::NxBlob(double v) : data_(TextOf("%lf", v)) {}
NxBlob::NxBlob(const NxString& s) : data_(s.IsNullValue() ? nullptr : NewCopy(s._pBuffer, s._nSize)) {}
NxBlob::NxBlob(const NxBlob& b) : data_(b.data_ ? NewCopy(b.data_->buffer, b.data_->length) : nullptr) {}

NxBlob::~NxBlob() { delete data_; }

NxBlob& NxBlob::operator=(const NxBlob& b) {
  if (this == &b) return *this;
  if (b.data_)
    SetTo(b.data_->buffer, b.data_->length);
  else
    SetNullValue();
  return *this;
}

NxBlob& NxBlob::operator=(const char* lengthAndBytes) {
  long n = -1;
  if (lengthAndBytes) std::memcpy(&n, lengthAndBytes, sizeof n);
  NxBlobData* fresh = nullptr;
  if (n >= 0) {
    fresh = NewCopy(lengthAndBytes + sizeof n, n);
    if (!fresh) return *this;
  }
  delete data_;
  data_ = fresh;
  return *this;
}

int NxBlob::SetNullValue() {
  delete data_;
  data_ = nullptr;
  return 0;
}

// ---------------------------------------------------------------------------
// Comparison

int NxBlob::operator!=(const NxBlob& b) const {
  if (!data_ || !b.data_) return data_ ? 2 : b.data_ ? -2 : 0;
  const auto common = static_cast<std::size_t>(std::min(Length(), b.Length()));
  const int order = common != 0 ? std::memcmp(data_->buffer, b.data_->buffer, common) : 0;
  if (order != 0) return order < 0 ? -1 : 1;
  return Length() < b.Length() ? -1 : Length() > b.Length();
}

// ---------------------------------------------------------------------------
// Places within the blob

/// Whether the blob has a place pos and, from there on, n bytes.
bool NxBlob::Reaches(long pos, long n) const { return pos >= 0 && pos <= Length() && n <= Length() - pos; }

/// n, or as many bytes as there are from pos on; 0 or less for none.
long NxBlob::Clip(long pos, long n) const { return Reaches(pos, 0) ? std::min(n, Length() - pos) : 0; }

void* NxBlob::Seek(long pos, long n) { return const_cast<void*>(std::as_const(*this).Seek(pos, n)); }

const void* NxBlob::Seek(long pos, long n) const {
  if (!data_ || !data_->buffer || n == 0 || !Reaches(pos, n)) return nullptr;
  return data_->buffer + pos;
}

NxBlob NxBlob::CopyFrom(long pos, long n) const {
  n = Clip(pos, n);
  return NxBlob(n > 0 ? Seek(pos, n) : nullptr, n);
}

void NxBlob::CopyTo(const NxBlob& src, long pos, long n) {
  n = src.Clip(0, Clip(pos, n));
  if (n > 0) std::memmove(Seek(pos, n), src.Seek(0, n), static_cast<std::size_t>(n));
}

unsigned short NxBlob::Search(const NxBlob& pattern) const {
  if (!data_) return kNotFound;
  const auto wanted = static_cast<unsigned long>(pattern.Length());
  if (wanted == 0) return 0;
  if (Length() < pattern.Length()) return kNotFound;  // memmem takes no null bytes
  // Only places below 65535 have an answer of their own.
  const unsigned long searched = std::min(static_cast<unsigned long>(Length()), kNotFound - 1 + wanted);
  const void* found = memmem(data_->buffer, searched, pattern.data_->buffer, wanted);
  if (!found) return kNotFound;
  return static_cast<unsigned short>(static_cast<const unsigned char*>(found) - data_->buffer);
}

// ---------------------------------------------------------------------------
// Changes

void NxBlob::SetTo(const void* p, long n) {
  if (data_)
    data_->init(p, n);
  else
    data_ = NewCopy(p, n);
}

void NxBlob::Expand(long n) {
  n = std::max(n, 0L);
  if (data_)
    data_->Rebuild(static_cast<unsigned long>(n));
  else
    data_ = NewBytes(n);
}

void NxBlob::Resize(unsigned long n) {
  if (data_)
    data_->Resize(n);
  else
    data_ = NewBytes(static_cast<long>(n));
}

void NxBlob::Append(const void* p, long n) {
  const unsigned long added = BytesAt(p, n);
  if (added == 0) return;
  if (!data_) {
    SetTo(p, n);
    return;
  }
  const auto old = static_cast<unsigned long>(Length());
  unsigned char* fresh = NxBlobData::Allocate(old + added);
  if (!fresh) return;
  CopyBytes(fresh, data_->buffer, old);
  CopyBytes(fresh + old, p, added);
  data_->Hold(fresh, old + added);
}

void NxBlob::Append(const NxBlob& b) { Append(b.Seek(0, b.Length()), b.Length()); }

NxBlob& NxBlob::operator+=(const NxBlob& b) {
  Append(b);
  return *this;
}

void NxBlob::Cut(long pos, long n) {
  n = Clip(pos, n);
  if (n < 1) return;
  const auto left = static_cast<unsigned long>(Length() - n);
  unsigned char* fresh = NxBlobData::Allocate(left);
  if (!fresh && left != 0) return;
  const auto before = static_cast<unsigned long>(pos);
  CopyBytes(fresh, data_->buffer, before);
  CopyBytes(fresh + before, data_->buffer + pos + n, left - before);
  data_->Hold(fresh, left);
}

// ---------------------------------------------------------------------------
// Data on their own

NxBlobData* NxBlob::AllocData(long n) {
  NxBlobData* data = NewData();
  if (data && n >= 0) data->Resize(n + 1UL);
  return data;
}

void NxBlob::Destroy(NxBlob& other) {
  if (&other == this) return;
  delete data_;
  data_ = other.data_;
  other.data_ = data_ ? NewData() : nullptr;
}

// ---------------------------------------------------------------------------
// Numbers

namespace {

/// What `convert` reads of the bytes as a text. They may lack the terminating zero that
/// it needs.
template <class Number>
Number NumberIn(const NxBlob& b, Number (*convert)(const char* text)) {
  const auto length = static_cast<unsigned long>(b.Length());
  auto* bytes = static_cast<const char*>(b.Seek(0, b.Length()));
  if (!bytes) return 0;
  if (std::memchr(bytes, 0, length)) return convert(bytes);
  NxBlob terminated(b);
  terminated.Append("", 1);
  return terminated.Length() > b.Length() ? convert(static_cast<const char*>(terminated.Seek(0, 1))) : 0;
}

long ReadLong(const char* text) { return std::strtol(text, nullptr, 10); }
double ReadDouble(const char* text) { return std::strtod(text, nullptr); }

}  // namespace

NxBlob::operator int() const { return static_cast<int>(NumberIn(*this, ReadLong)); }
NxBlob::operator short() const { return static_cast<short>(NumberIn(*this, ReadLong)); }
NxBlob::operator long() const { return NumberIn(*this, ReadLong); }
NxBlob::operator double() const { return NumberIn(*this, ReadDouble); }
