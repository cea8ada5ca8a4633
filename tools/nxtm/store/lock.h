/// Locks between processes that use one store.
#ifndef NXTM_LOCK_H
#define NXTM_LOCK_H

#include <optional>
#include <string>

#include "data/removal.h"

namespace nxtm {

/// What to do while another process has what one needs.
enum class Wait {
  kForever,  // with a line on standard error that says so
  kNever     // a Failure
};

/// An advisory lock on a file, released with the object. Processes hold it on the file that
/// has the name: where that was replaced or removed meanwhile, the lock is taken anew.
class FileLock {
 public:
  enum class Kind { kShared, kExclusive };

  /// `what` is the store, for messages; with `create` the file is made when it is missing.
  FileLock(const std::string& file, Kind kind, Wait wait, const std::string& what, bool create = false);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

 private:
  bool HasName() const;

  std::string file_;
  int descriptor_ = -1;
};

/// A new file beside `path` that nobody else has. It is removed with the object, and when a
/// signal ends the process, unless it gets its name.
class NewFile {
 public:
  explicit NewFile(const std::string& path);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  const std::string& Name() const { return name_; }
  /// Gives it its name; a Failure when that is taken, unless `replace`.
  void TakeName(bool replace);

 private:
  std::string path_;
  std::string name_;
  std::optional<RemovedOnSignal> removed_;
};

}  // namespace nxtm

#endif
