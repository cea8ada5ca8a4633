// The format of an LMDB file of this machine: pages of one size, each with its number, its
// kind, and the places of its nodes, which lie from its end backward.

#include "store/pages.h"

#include <unistd.h>

#include <cstring>
#include <vector>

#include "data/failure.h"

namespace nxtm {

namespace {

struct PageHead {
  std::uint32_t number;
  std::uint16_t keySize;  // of a page of keys alone
  std::uint16_t flags;
  std::uint16_t lower;  // where the places of nodes end
  std::uint16_t upper;  // where the nodes begin
};
static_assert(sizeof(PageHead) == 12);

struct Node {
  std::uint32_t size;  // of its data; of a branch the page below
  std::uint16_t flags;
  std::uint16_t keySize;
};
static_assert(sizeof(Node) == 8);

struct Tree {
  std::uint32_t pad;  // of the first tree of a meta page: the size of pages
  std::uint16_t flags;
  std::uint16_t depth;
  std::uint32_t branchPages, leafPages, overflowPages, entries;
  std::uint32_t root;
};
static_assert(sizeof(Tree) == 28);

struct Meta {
  std::uint32_t magic, version, address, mapSize;
  Tree free, tables;
  std::uint32_t lastPage;
  std::uint32_t transaction;
};
static_assert(sizeof(Meta) == 80);

constexpr std::uint32_t kMagic = 0xBEEFC0DE;
constexpr std::uint32_t kNoPage = 0xFFFFFFFF;
constexpr std::uint32_t kMetaPages = 2;

constexpr std::uint16_t kBranch = 0x01, kLeaf = 0x02, kOverflow = 0x04, kKeysAlone = 0x20;  // kinds of pages
constexpr std::uint16_t kOnOtherPages = 1, kTree = 2;                                       // kinds of data

template <class T>
T ReadAs(const std::string& bytes, unsigned long at) {
  T value{};
  if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

std::string ReadBytes(int file, unsigned long long at, unsigned long size) {
  std::string bytes(size, '\0');
  const ssize_t n = pread(file, bytes.data(), size, static_cast<off_t>(at));
  bytes.resize(n > 0 ? static_cast<unsigned long>(n) : 0);
  return bytes;
}

class Walk {
 public:
  Walk(int file, const Snapshot& snapshot, const std::string& path)
      : file_(file), snapshot_(snapshot), path_(path), owned_(snapshot.lastPage + 1ULL, false) {}

  void All() {
    for (std::uint32_t page = 0; page < kMetaPages; ++page) Own(page);
    inFreeList_ = true;
    WalkTree(snapshot_.freeRoot, 0);
    inFreeList_ = false;
    WalkTree(snapshot_.tableRoot, 0);
    for (std::uint32_t page = 0; page <= snapshot_.lastPage; ++page)
      if (!owned_[page]) Fail(page, "belongs to nothing");
  }

 private:
  [[noreturn]] void Fail(std::uint32_t page, const char* what) const {
    throw StoreFailure(path_ + ": the store is damaged: page " + std::to_string(page) + " " + what);
  }

  void Own(std::uint32_t page) {
    if (page > snapshot_.lastPage) Fail(page, "lies behind the last one");
    if (owned_[page]) Fail(page, "belongs to two");
    owned_[page] = true;
  }

  std::string Read(std::uint32_t page, unsigned long pages) const {
    const unsigned long size = pages * snapshot_.pageSize;
    std::string bytes = ReadBytes(file_, 1ULL * page * snapshot_.pageSize, size);
    if (bytes.size() != size || ReadAs<PageHead>(bytes, 0).number != page)
      Fail(page, "does not have its number");
    return bytes;
  }

  void WalkTree(std::uint32_t page, int depth) {
    constexpr int kDeepest = 32;
    if (page == kNoPage) return;
    if (depth > kDeepest) Fail(page, "lies too deep");
    Own(page);
    const std::string bytes = Read(page, 1);
    const auto head = ReadAs<PageHead>(bytes, 0);
    if (head.lower < sizeof head || head.lower > head.upper || head.upper > bytes.size())
      Fail(page, "has no place for its nodes");
    if (head.flags & kKeysAlone) return;
    if (!(head.flags & (kBranch | kLeaf))) Fail(page, "is no part of a tree");
    for (unsigned long at = sizeof head; at < head.lower; at += sizeof(std::uint16_t)) {
      const std::uint16_t place = ReadAs<std::uint16_t>(bytes, at);
      const auto node = ReadAs<Node>(bytes, place);
      const unsigned long data = place + sizeof node + node.keySize;
      if (place < head.upper || data > bytes.size()) Fail(page, "has a node outside of it");
      if (head.flags & kBranch)
        WalkTree(node.size, depth + 1);
      else
        WalkData(page, bytes, node, data, depth);
    }
  }

  void WalkData(std::uint32_t page, const std::string& bytes, const Node& node, unsigned long at, int depth) {
    const bool elsewhere = node.flags & kOnOtherPages;
    if (at + (elsewhere ? sizeof(std::uint32_t) : node.size) > bytes.size())
      Fail(page, "has data outside of it");
    if (elsewhere)
      WalkOverflow(ReadAs<std::uint32_t>(bytes, at), node.size);
    else if (inFreeList_)
      OwnFreePages(page, bytes.substr(at, node.size));
    else if (node.flags & kTree)
      WalkTree(ReadAs<Tree>(bytes, at).root, depth + 1);
  }

  void WalkOverflow(std::uint32_t page, std::uint32_t size) {
    const std::uint32_t pages = (sizeof(PageHead) - 1 + size) / snapshot_.pageSize + 1;
    for (std::uint32_t i = 0; i < pages; ++i) Own(page + i);
    const std::string bytes = Read(page, inFreeList_ ? pages : 1);
    if (!(ReadAs<PageHead>(bytes, 0).flags & kOverflow)) Fail(page, "is no page of long data");
    if (inFreeList_) OwnFreePages(page, bytes.substr(sizeof(PageHead), size));
  }

  /// A number of pages, and their numbers.
  void OwnFreePages(std::uint32_t page, const std::string& list) {
    const unsigned long count = ReadAs<std::uint32_t>(list, 0);
    if (count >= list.size() / sizeof(std::uint32_t)) Fail(page, "has a list that is too long");
    for (unsigned long i = 1; i <= count; ++i) Own(ReadAs<std::uint32_t>(list, i * sizeof(std::uint32_t)));
  }

  int file_;
  const Snapshot& snapshot_;
  const std::string& path_;
  std::vector<bool> owned_;
  bool inFreeList_ = false;
};

}  // namespace

std::optional<Snapshot> FindSnapshot(int file, std::uint32_t transaction) {
  const auto first = ReadAs<Meta>(ReadBytes(file, sizeof(PageHead), sizeof(Meta)), 0);
  const std::uint32_t pageSize = first.free.pad;
  const auto second = ReadAs<Meta>(ReadBytes(file, pageSize + sizeof(PageHead), sizeof(Meta)), 0);
  for (const Meta& meta : {first, second}) {
    if (meta.magic != kMagic || meta.transaction != transaction) continue;
    return Snapshot{pageSize, meta.lastPage, meta.free.root, meta.tables.root, meta.transaction};
  }
  return std::nullopt;
}

void CheckPages(int file, const Snapshot& snapshot, const std::string& path) {
  Walk(file, snapshot, path).All();
}

}  // namespace nxtm
