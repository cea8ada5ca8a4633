/// The pages of a store's file, read without LMDB, which trusts them.
#ifndef NXTM_PAGES_H
#define NXTM_PAGES_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nxtm {

/// A tree of pages, as the file describes it.
struct PageTree {
  std::uint32_t pad;  // of the first tree of a meta page: the size of pages
  std::uint16_t flags;
  std::uint16_t depth;
  std::uint32_t branchPages, leafPages, overflowPages, entries;
  std::uint32_t root;
};

/// One state of the file: what one of its two meta pages says.
struct Snapshot {
  std::uint32_t pageSize = 0;
  std::uint32_t lastPage = 0;
  PageTree free{};    // the pages that are free
  PageTree tables{};  // the tables
  std::uint32_t transaction = 0;
};

/// The state that a transaction left; none when it is not there any more, or the two meta
/// pages do not follow each other.
std::optional<Snapshot> FindSnapshot(int file, std::uint32_t transaction);

/// Walks every tree and the list of free pages. Throws a Failure where a page has contents
/// that it cannot have, or belongs to two owners or to none: what is written to such a file
/// could overwrite other pages.
void CheckPages(int file, const Snapshot& snapshot, const std::string& path);

/// The same of the pages on which a table's keys lie from one on, below another one (empty:
/// to the last): none of them is missing from the table's tree, and the table is there. `table` is its name.
void CheckRange(int file, const Snapshot& snapshot, const std::string& table, std::string_view from,
                std::string_view to, const std::string& path);

/// The head of every page.
struct PageHead {
  std::uint32_t number;
  std::uint16_t keySize;  // of a page of keys alone
  std::uint16_t flags;
  std::uint16_t lower;  // where the places of nodes end
  std::uint16_t upper;  // where the nodes begin
};
static_assert(sizeof(PageHead) == 12);

/// The head of a key and its data.
struct Node {
  std::uint32_t size;  // of its data; of a branch the page below
  std::uint16_t flags;
  std::uint16_t keySize;
};
static_assert(sizeof(Node) == 8);

/// A leaf page where the file is mapped: its keys whose values lie beside them. A page that a
/// transaction has changed lies somewhere else until that commits.
class MappedLeaf {
 public:
  /// The page on which a key lies.
  MappedLeaf(const void* key, std::uint32_t pageSize)
      : page_(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(key) & ~(pageSize - 1UL))),
        size_(pageSize),
        count_((At<PageHead>(0).lower - sizeof(PageHead)) / sizeof(std::uint16_t)) {
    if (At<PageHead>(0).flags != kLeafPage || count_ > (size_ - sizeof(PageHead)) / sizeof(std::uint16_t))
      count_ = 0;
    ExpectNextPage();
  }

  /// Which of the page's keys it is; where it is none of them, there is none behind it.
  unsigned long PlaceOf(const void* key) const {
    const auto offset = static_cast<unsigned long>(static_cast<const char*>(key) - page_) - sizeof(Node);
    unsigned long place = 0;
    while (place < count_ && OffsetAt(place) != offset) ++place;
    return place;
  }
  /// False where there is no such key, or it or its value lies somewhere else.
  bool Read(unsigned long place, std::string_view& key, std::string_view& value) const {
    if (place >= count_) return false;
    if (place + kAhead < count_) __builtin_prefetch(page_ + OffsetAt(place + kAhead));
    const unsigned long offset = OffsetAt(place);
    if (offset > size_ - sizeof(Node)) return false;
    const auto node = At<Node>(offset);
    const unsigned long room = size_ - sizeof(Node) - offset;
    if (node.flags != 0 || node.keySize > room || node.size > room - node.keySize) return false;
    key = {page_ + offset + sizeof(Node), node.keySize};
    value = {key.data() + key.size(), node.size};
    return true;
  }

 private:
  static constexpr std::uint16_t kLeafPage = 2;
  static constexpr unsigned long kAhead = 8;  // entries that the memory is told of
  static constexpr unsigned long kLine = 64;

  /// Tells the memory of the page behind this one, which is the next in order where a table was
  /// filled in one go: its head, and its first entries, which lie at its end.
  void ExpectNextPage() const {
    const char* const next = page_ + size_;
    for (unsigned long i = 0; i < 2; ++i) __builtin_prefetch(next + i * kLine);
    for (unsigned long i = 1; i <= kAhead; ++i) __builtin_prefetch(next + size_ - i * kLine);
  }

  template <class T>
  T At(unsigned long offset) const {
    T value;
    std::memcpy(&value, page_ + offset, sizeof value);
    return value;
  }
  unsigned long OffsetAt(unsigned long place) const {
    return At<std::uint16_t>(sizeof(PageHead) + place * sizeof(std::uint16_t));
  }

  const char* page_;
  unsigned long size_;
  unsigned long count_;
};

/// Where a key and its value lie.
struct NodePlace {
  std::uint32_t page;
  std::uint16_t node;  // its place among the page's nodes
};
/// Finds every key with a value on the pages of a file, whatever is left of its trees: older
/// ones are among them, and what is damaged is passed over. The bytes are valid during the call.
void ForEachNode(int file,
                 const std::function<void(const NodePlace&, std::string_view, std::string_view)>& onNode);
/// The value at such a place.
std::string ReadNode(int file, const NodePlace& place);

}  // namespace nxtm

#endif
