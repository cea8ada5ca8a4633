// The format of an LMDB file of this machine: pages of one size, each with its number, its
// kind, and the places of its nodes, which lie from its end backward.

#include "store/pages.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "data/failure.h"

namespace nxtm {

namespace {

static_assert(sizeof(PageTree) == 28);

struct Meta {
  std::uint32_t magic, version, address, mapSize;
  PageTree free, tables;
  std::uint32_t lastPage;
  std::uint32_t transaction;
};
static_assert(sizeof(Meta) == 80);

constexpr std::uint32_t kMagic = 0xBEEFC0DE;
constexpr std::uint32_t kNoPage = 0xFFFFFFFF;
constexpr std::uint32_t kMetaPages = 2;

constexpr std::uint16_t kBranch = 0x01, kLeaf = 0x02, kOverflow = 0x04;  // kinds of pages
constexpr std::uint16_t kOnOtherPages = 1, kTree = 2;                    // kinds of data

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

/// Reads pages, and refuses those that cannot be what they should be.
class PageReader {
 public:
  PageReader(int file, const Snapshot& snapshot, const std::string& path)
      : file_(file), snapshot_(snapshot), path_(path) {}

 protected:
  /// A page of a tree: its nodes fill it from the end without a gap.
  struct TreePage {
    std::uint32_t number;
    bool isBranch;
    std::string bytes;
    std::vector<std::uint16_t> places;

    Node NodeAt(unsigned long i) const { return ReadAs<Node>(bytes, places[i]); }
    std::string_view Key(unsigned long i) const {
      return std::string_view(bytes).substr(places[i] + sizeof(Node), NodeAt(i).keySize);
    }
    unsigned long DataPlace(unsigned long i) const { return places[i] + sizeof(Node) + NodeAt(i).keySize; }
  };

  [[noreturn]] void Fail(std::uint32_t page, const char* what) const {
    throw StoreFailure(path_ + ": the store is damaged: page " + std::to_string(page) + " " + what);
  }

  std::string Read(std::uint32_t page, unsigned long pages) const {
    const unsigned long size = pages * snapshot_.pageSize;
    std::string bytes = ReadBytes(file_, 1ULL * page * snapshot_.pageSize, size);
    if (bytes.size() != size || ReadAs<PageHead>(bytes, 0).number != page)
      Fail(page, "does not have its number");
    return bytes;
  }

  TreePage ReadTreePage(std::uint32_t number, int depth) const {
    constexpr int kDeepest = 32;
    if (depth > kDeepest) Fail(number, "lies too deep");
    TreePage page{number, false, Read(number, 1), {}};
    const auto head = ReadAs<PageHead>(page.bytes, 0);
    if (head.lower < sizeof head || head.lower > head.upper || head.upper > page.bytes.size())
      Fail(number, "has no place for its nodes");
    if (head.flags != kBranch && head.flags != kLeaf) Fail(number, "is no part of a tree");
    page.isBranch = head.flags == kBranch;
    unsigned long filled = 0;
    for (unsigned long at = sizeof head; at < head.lower; at += sizeof(std::uint16_t)) {
      page.places.push_back(ReadAs<std::uint16_t>(page.bytes, at));
      filled += SizeOfNode(page, page.places.size() - 1, head.upper);
    }
    if (filled != page.bytes.size() - head.upper) Fail(number, "does not have all of its nodes");
    return page;
  }

  /// The tree of a table: those of a store order their keys as bytes, and have no options.
  PageTree TableOn(const TreePage& page, unsigned long at) const {
    const auto tree = ReadAs<PageTree>(page.bytes, at);
    if (tree.flags != 0) Fail(page.number, "has a table of another kind");
    return tree;
  }

  const int file_;
  const Snapshot& snapshot_;
  const std::string& path_;

 private:
  unsigned long SizeOfNode(const TreePage& page, unsigned long i, unsigned long first) const {
    const Node node = page.NodeAt(i);
    unsigned long size = sizeof node + node.keySize;
    if (!page.isBranch) size += node.flags & kOnOtherPages ? sizeof(std::uint32_t) : node.size;
    if (page.places[i] < first || size > page.bytes.size() - page.places[i])
      Fail(page.number, "has a node outside of it");
    return size + size % 2;
  }
};

/// Walks everything, and finds the owner of each page.
class Walk : PageReader {
 public:
  Walk(int file, const Snapshot& snapshot, const std::string& path)
      : PageReader(file, snapshot, path), owned_(snapshot.lastPage + 1ULL, false) {}

  void All() {
    for (std::uint32_t page = 0; page < kMetaPages; ++page) Own(page);
    constexpr std::uint16_t kFreeFlags = 0x4008;  // keys are numbers; the store is one file
    if (snapshot_.free.flags != kFreeFlags || snapshot_.tables.flags != 0)
      Fail(snapshot_.transaction % kMetaPages, "has trees of other kinds");
    inFreeList_ = true;
    WalkTree(snapshot_.free, 0);
    inFreeList_ = false;
    WalkTree(snapshot_.tables, 0);
    for (std::uint32_t page = 0; page <= snapshot_.lastPage; ++page)
      if (!owned_[page]) Fail(page, "belongs to nothing");
  }

 private:
  void Own(std::uint32_t page) {
    if (page > snapshot_.lastPage) Fail(page, "lies behind the last one");
    if (owned_[page]) Fail(page, "belongs to two");
    owned_[page] = true;
  }

  /// A whole tree, which must be as it is described.
  void WalkTree(const PageTree& tree, std::uint32_t describedOn) {
    PageTree found{};
    if (tree.root != kNoPage) WalkPage(tree.root, 0, found);
    if (tree.depth != found.depth || tree.branchPages != found.branchPages ||
        tree.leafPages != found.leafPages || tree.overflowPages != found.overflowPages ||
        tree.entries != found.entries)
      Fail(describedOn, "does not describe a tree as it is");
  }

  void WalkPage(std::uint32_t number, int depth, PageTree& tree) {
    Own(number);
    const TreePage page = ReadTreePage(number, depth);
    ++(page.isBranch ? tree.branchPages : tree.leafPages);
    tree.depth = std::max(tree.depth, static_cast<std::uint16_t>(depth + 1));
    for (unsigned long i = 0; i < page.places.size(); ++i) {
      if (page.isBranch)
        WalkPage(page.NodeAt(i).size, depth + 1, tree);
      else
        WalkData(page, i, tree);
    }
  }

  void WalkData(const TreePage& page, unsigned long i, PageTree& tree) {
    const Node node = page.NodeAt(i);
    const unsigned long at = page.DataPlace(i);
    ++tree.entries;
    if (node.flags & kOnOtherPages)
      tree.overflowPages += WalkOverflow(ReadAs<std::uint32_t>(page.bytes, at), node.size);
    else if (inFreeList_)
      OwnFreePages(page.number, page.bytes.substr(at, node.size));
    else if (node.flags & kTree)
      WalkTree(TableOn(page, at), page.number);
  }

  /// Returns how many pages it has.
  std::uint32_t WalkOverflow(std::uint32_t page, std::uint32_t size) {
    const std::uint32_t pages = (sizeof(PageHead) - 1 + size) / snapshot_.pageSize + 1;
    for (std::uint32_t i = 0; i < pages; ++i) Own(page + i);
    const std::string bytes = Read(page, inFreeList_ ? pages : 1);
    if (!(ReadAs<PageHead>(bytes, 0).flags & kOverflow)) Fail(page, "is no page of long data");
    if (inFreeList_) OwnFreePages(page, bytes.substr(sizeof(PageHead), size));
    return pages;
  }

  /// A number of pages, and their numbers.
  void OwnFreePages(std::uint32_t page, const std::string& list) {
    const unsigned long count = ReadAs<std::uint32_t>(list, 0);
    if (count >= list.size() / sizeof(std::uint32_t)) Fail(page, "has a list that is too long");
    for (unsigned long i = 1; i <= count; ++i) Own(ReadAs<std::uint32_t>(list, i * sizeof(std::uint32_t)));
  }

  std::vector<bool> owned_;
  bool inFreeList_ = false;
};

/// Walks the pages of a tree on which keys of a range lie.
class RangeWalk : PageReader {
 public:
  using PageReader::PageReader;

  void Table(const std::string& name, std::string_view from, std::string_view to) {
    std::uint32_t number = snapshot_.tables.root;
    for (int depth = 0; number != kNoPage; ++depth) {
      const TreePage page = ReadTreePage(number, depth);
      const unsigned long i = Find(page, name);
      if (i == page.places.size()) break;
      if (page.isBranch) {
        number = page.NodeAt(i).size;
        continue;
      }
      if (page.Key(i) != name) break;
      const PageTree tree = TableOn(page, page.DataPlace(i));
      levels_ = tree.depth;
      WalkTree({tree.root, {}, {}, 0}, from, to);
      return;
    }
    throw StoreFailure(path_ + ": the store is damaged: table " + name + " is lost");
  }

 private:
  /// A page, and what its parent says of its keys: from `first` on, below `end` (empty: any).
  struct Place {
    std::uint32_t number;
    std::string_view first, end;
    int depth;
  };

  /// The node under which a key lies; none of a page without nodes.
  static unsigned long Find(const TreePage& page, std::string_view key) {
    unsigned long i = 0;
    while (i + 1 < page.places.size() && page.Key(i + 1) <= key) ++i;
    return i;
  }

  void WalkTree(const Place& place, std::string_view from, std::string_view to) {
    if (place.number == kNoPage) return;
    const TreePage page = ReadTreePage(place.number, place.depth);
    const unsigned long count = page.places.size();
    if (count == 0) Fail(place.number, "is empty");
    if (page.isBranch != (place.depth + 1 < levels_)) Fail(place.number, "lies at another level");
    const unsigned long named = page.isBranch ? 1 : 0;  // the first node of a branch has no key
    std::string_view last = place.first;
    for (unsigned long i = named; i < count; ++i) {
      if (i == 0 ? page.Key(i) < last : page.Key(i) <= last) Fail(place.number, "has keys out of order");
      last = page.Key(i);
    }
    if (!place.end.empty() && last >= place.end) Fail(place.number, "has keys of another page");
    if (!page.isBranch) return;
    for (unsigned long i = 0; i < count; ++i) {
      const std::string_view first = i == 0 ? place.first : page.Key(i);
      const std::string_view end = i + 1 == count ? place.end : page.Key(i + 1);
      if (!to.empty() && first >= to) return;
      if (end.empty() || end > from) WalkTree({page.NodeAt(i).size, first, end, place.depth + 1}, from, to);
    }
  }

  int levels_ = 0;  // of the tree
};

}  // namespace

std::optional<Snapshot> FindSnapshot(int file, std::uint32_t transaction) {
  const auto first = ReadAs<Meta>(ReadBytes(file, sizeof(PageHead), sizeof(Meta)), 0);
  const std::uint32_t pageSize = first.free.pad;
  const auto second = ReadAs<Meta>(ReadBytes(file, pageSize + sizeof(PageHead), sizeof(Meta)), 0);
  const bool follow =
      std::max(first.transaction, second.transaction) - std::min(first.transaction, second.transaction) == 1;
  for (const Meta& meta : {first, second}) {
    if (!follow || meta.magic != kMagic || meta.transaction != transaction) continue;
    return Snapshot{pageSize, meta.lastPage, meta.free, meta.tables, meta.transaction};
  }
  return std::nullopt;
}

void CheckRange(int file, const Snapshot& snapshot, const std::string& table, std::string_view from,
                std::string_view to, const std::string& path) {
  RangeWalk(file, snapshot, path).Table(table, from, to);
}

void CheckPages(int file, const Snapshot& snapshot, const std::string& path) {
  Walk(file, snapshot, path).All();
}

// ---------------------------------------------------------------------------
// What can be read of a damaged file

namespace {

constexpr std::uint32_t kPageSize = 4096;  // of this machine: the meta pages, too, may be damaged

/// The nodes of a leaf page by what is there alone.
class LooseLeaf {
 public:
  explicit LooseLeaf(int file) : file_(file) {
    struct stat status {};
    if (fstat(file, &status) == 0) fileSize_ = static_cast<unsigned long long>(status.st_size);
  }

  /// False behind the end of the file.
  bool Read(std::uint32_t page) {
    bytes_ = ReadBytes(file_, 1ULL * page * kPageSize, kPageSize);
    const auto head = ReadAs<PageHead>(bytes_, 0);
    const bool isLeaf = bytes_.size() == kPageSize && head.flags == kLeaf && head.number == page &&
                        head.lower >= sizeof head && head.lower <= kPageSize;
    nodes_ = isLeaf ? (head.lower - sizeof head) / sizeof(std::uint16_t) : 0;
    return !bytes_.empty();
  }
  unsigned long Count() const { return nodes_; }
  /// False for a node that does not lie on the page, or is no value.
  bool Get(unsigned long i, std::string_view& key, std::string& value) const {
    const unsigned long at = ReadAs<std::uint16_t>(bytes_, sizeof(PageHead) + i * sizeof(std::uint16_t));
    const auto node = ReadAs<Node>(bytes_, at);
    const unsigned long data = at + sizeof node + node.keySize;
    const unsigned long size = node.flags & kOnOtherPages ? sizeof(std::uint32_t) : node.size;
    if (data > kPageSize || size > kPageSize - data || node.flags & kTree) return false;
    key = std::string_view(bytes_).substr(at + sizeof node, node.keySize);
    if (!(node.flags & kOnOtherPages)) return value = bytes_.substr(data, size), true;
    const auto first = ReadAs<std::uint32_t>(bytes_, data);
    const auto head = ReadAs<PageHead>(ReadBytes(file_, 1ULL * first * kPageSize, sizeof(PageHead)), 0);
    if (head.flags != kOverflow || head.number != first || node.size > fileSize_) return false;
    value = ReadBytes(file_, 1ULL * first * kPageSize + sizeof head, node.size);
    return true;
  }

 private:
  int file_;
  unsigned long long fileSize_ = 0;
  std::string bytes_;
  unsigned long nodes_ = 0;
};

}  // namespace

void ForEachNode(int file,
                 const std::function<void(const NodePlace&, std::string_view, std::string_view)>& onNode) {
  LooseLeaf leaf(file);
  std::string_view key;
  std::string value;
  for (std::uint32_t page = 0; leaf.Read(page); ++page)
    for (unsigned long i = 0; i < leaf.Count(); ++i)
      if (leaf.Get(i, key, value)) onNode({page, static_cast<std::uint16_t>(i)}, key, value);
}

std::string ReadNode(int file, const NodePlace& place) {
  LooseLeaf leaf(file);
  std::string_view key;
  std::string value;
  leaf.Read(place.page);
  if (place.node < leaf.Count() && leaf.Get(place.node, key, value)) return value;
  return "";
}

}  // namespace nxtm
