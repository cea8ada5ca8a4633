// Memory files: bytes held or borrowed, with a current offset.

#include <cstdlib>
#include <cstring>
#include <functional>

#include "nxbase.h"

namespace {

/// Bytes that a holding file of `length` bytes has room for: the next power of
/// two, so that appending costs constant time a byte without a field for it.
unsigned long long Capacity(unsigned long long length) {
  unsigned long long capacity = 16;
  while (capacity < length) capacity *= 2;
  return length == 0 ? 0 : capacity;
}

}  // namespace

MemFile::MemFile() : data_(nullptr), length_(0), offset_(0), owns_(true) {}

MemFile::MemFile(void* data, unsigned long length)
    : data_(static_cast<unsigned char*>(data)), length_(length), offset_(0), owns_(false) {}

MemFile::~MemFile() {
  if (owns_) std::free(data_);
}

void* MemFile::Seek(long offset, unsigned short whence, unsigned long* available, unsigned short /*mode*/) {
  const unsigned long origins[] = {0, offset_, length_};
  const long long place = whence < 3 ? static_cast<long long>(origins[whence]) + offset : -1;
  const bool inside = data_ && place >= 0 && place < static_cast<long long>(length_);
  if (available) *available = inside ? length_ - static_cast<unsigned long>(place) : 0;
  if (!inside) return nullptr;
  offset_ = static_cast<unsigned long>(place);
  return data_ + offset_;
}

int MemFile::Append(const void* data, unsigned long length) {
  if (!owns_) return -1;
  if (length == 0) return 0;
  const unsigned long long needed = static_cast<unsigned long long>(length_) + length;
  const auto* from = static_cast<const unsigned char*>(data);
  if (Capacity(needed) > Capacity(length_)) {
    // The bytes may be the file's own, which the reallocation moves.
    const std::less<const unsigned char*> before;
    const bool own = data_ && !before(from, data_) && before(from, data_ + length_);
    const unsigned long ownOffset = own ? static_cast<unsigned long>(from - data_) : 0;
    const unsigned long long capacity = Capacity(needed);
    void* grown = capacity <= 0x7FFFFFFF ? std::realloc(data_, static_cast<std::size_t>(capacity)) : nullptr;
    if (!grown) {
      NxCallMemoryHandler(length);
      return -1;
    }
    data_ = static_cast<unsigned char*>(grown);
    if (own) from = data_ + ownOffset;
  }
  std::memcpy(data_ + length_, from, length);
  length_ = static_cast<unsigned long>(needed);
  return 0;
}
