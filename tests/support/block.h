// Memory of exactly the size in use, of which every step beyond its end is seen: the
// sanitizers watch it, and without them a page lies behind it that must not be touched.
#ifndef BLOCK_H
#define BLOCK_H

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define NX_SANITIZED_MEMORY
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define NX_SANITIZED_MEMORY
#endif

/// memcpy, whose pointers may be null for no bytes.
inline void CopyBytes(void* dst, const void* src, unsigned long n) {
  if (n != 0) std::memcpy(dst, src, n);
}

/// Bytes that end where their memory ends; none without bytes.
class Block {
 public:
  explicit Block(unsigned long size) : size_(size), bytes_(size != 0 ? Allocate(size) : nullptr) {}
  Block(const void* bytes, unsigned long size) : Block(size) { CopyBytes(bytes_, bytes, size); }
  Block(const Block& b) : Block(b.bytes_, b.size_) {}
  Block(Block&& b) noexcept : size_(std::exchange(b.size_, 0)), bytes_(std::exchange(b.bytes_, nullptr)) {}
  Block& operator=(Block b) noexcept {
    std::swap(size_, b.size_);
    std::swap(bytes_, b.bytes_);
    return *this;
  }
  ~Block() {
    if (bytes_) Release(bytes_, size_);
  }

  unsigned char* Data() const { return bytes_; }
  unsigned long Size() const { return size_; }
  bool operator==(const Block& b) const {
    return size_ == b.size_ && (size_ == 0 || std::memcmp(bytes_, b.bytes_, size_) == 0);
  }

 private:
#ifdef NX_SANITIZED_MEMORY
  static unsigned char* Allocate(unsigned long size) { return new unsigned char[size]; }
  static void Release(unsigned char* bytes, unsigned long) { delete[] bytes; }
#else
  static constexpr unsigned long kPage = 4096;

  /// Regions not in use, by their pages; a forbidden page lies behind each.
  static std::vector<unsigned char*>& Free(unsigned long pages) {
    static std::map<unsigned long, std::vector<unsigned char*>> regions;
    return regions[pages];
  }
  static unsigned char* Map(unsigned long bytes) {
    void* region = mmap(nullptr, bytes + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (region == MAP_FAILED) std::abort();
    auto* begin = static_cast<unsigned char*>(region);
    mprotect(begin + bytes, kPage, PROT_NONE);
    return begin;
  }
  static unsigned char* Allocate(unsigned long size) {
    const unsigned long pages = (size + kPage - 1) / kPage;
    std::vector<unsigned char*>& free = Free(pages);
    if (free.empty()) free.push_back(Map(pages * kPage));
    unsigned char* bytes = free.back() + pages * kPage - size;
    free.pop_back();
    std::memset(bytes, 0xEE, size);
    return bytes;
  }
  static void Release(unsigned char* bytes, unsigned long size) {
    const unsigned long pages = (size + kPage - 1) / kPage;
    Free(pages).push_back(bytes + size - pages * kPage);
  }
#endif

  unsigned long size_;
  unsigned char* bytes_;
};

inline Block Exactly(const std::string& bytes) { return Block(bytes.data(), bytes.size()); }
/// The first bytes of a block, all of them unless a size is given.
inline std::string Str(const Block& block, unsigned long size = ~0UL) {
  return std::string(reinterpret_cast<const char*>(block.Data()), std::min(size, block.Size()));
}

#endif
