/// The pages of a store's file, read without LMDB, which trusts them.
#ifndef NXTM_PAGES_H
#define NXTM_PAGES_H

#include <cstdint>
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
