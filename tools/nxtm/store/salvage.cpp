// Reading a file without the engine that wrote it.

#include "store/salvage.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "data/failure.h"
#include "store/pages.h"

namespace nxtm {

namespace {

class DamagedFile : public KeyValue {
 public:
  DamagedFile(const std::string& path, const std::function<bool(const std::string&)>& isRoot)
      : path_(path), file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (file_ < 0) throw StoreFailure(path + ": " + std::strerror(errno));
    unsigned long long newest = 0;
    ForEachNode(file_, [&](const NodePlace& place, std::string_view key, std::string_view value) {
      if (key.size() == kNumberSize) found_.push_back({std::string(key), place});
      if (key != "root") return;
      const unsigned long end = std::min(value.rfind(' '), value.size());
      const std::string root(value.substr(0, end));
      const unsigned long long transaction = std::strtoull(value.data() + end, nullptr, 10);
      if (transaction < newest || !isRoot(root)) return;
      newest = transaction;
      root_ = root;
    });
    if (root_.empty()) throw StoreFailure(path + ": nothing can be read: no root of the store is left");
    std::stable_sort(found_.begin(), found_.end(),
                     [](const Found& a, const Found& b) { return a.key < b.key; });
  }
  DamagedFile(const DamagedFile&) = delete;
  DamagedFile& operator=(const DamagedFile&) = delete;
  ~DamagedFile() override { close(file_); }

  const std::string& Root() const override { return root_; }
  void Range(Table, std::string_view, std::string_view, const OnEntry& onEntry) override {
    for (const Found& found : found_)
      if (!onEntry(found.key, ReadNode(file_, found.place))) return;
  }

  void GetMany(Table, const std::vector<std::string>&, const OnValue&) override { Refuse(); }
  void Put(Table, std::string_view, std::string_view) override { Refuse(); }
  void Remove(Table, std::string_view) override { Refuse(); }
  void Drop(Table) override { Refuse(); }
  void Commit(const std::string&) override { Refuse(); }
  bool LeftUnfinished() const override { return false; }
  void Check() override { Refuse(); }
  void Compact() override { Refuse(); }
  unsigned long long Size() const override { return 0; }

 private:
  static constexpr unsigned long kNumberSize = 4;
  struct Found {
    std::string key;
    NodePlace place;
  };

  [[noreturn]] void Refuse() const { throw StoreFailure(path_ + ": a damaged store is only read"); }

  std::string path_;
  int file_;
  std::string root_;
  std::vector<Found> found_;
};

}  // namespace

std::unique_ptr<KeyValue> OpenDamaged(const std::string& path,
                                      const std::function<bool(const std::string&)>& isRoot) {
  return std::make_unique<DamagedFile>(path, isRoot);
}

}  // namespace nxtm
