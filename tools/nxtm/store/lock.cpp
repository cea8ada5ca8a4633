#include "store/lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "data/failure.h"
#include "data/file.h"

namespace nxtm {

namespace {

[[noreturn]] void FailBySystem(const std::string& what) {
  throw StoreFailure(what + ": " + std::strerror(errno));
}

/// The permissions that open(2) gives a new file.
mode_t NewMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

FileLock::FileLock(const std::string& file, Kind kind, Wait wait, const std::string& what, bool create)
    : file_(file) {
  const int operation = kind == Kind::kShared ? LOCK_SH : LOCK_EX;
  bool told = false;
  do {
    if (descriptor_ >= 0) close(descriptor_);
    const int access = create ? O_RDWR | O_CREAT : O_RDONLY;
    descriptor_ = open(file.c_str(), access | O_CLOEXEC, 0666);
    if (descriptor_ < 0) FailBySystem(what);
    if (flock(descriptor_, operation | LOCK_NB) == 0) continue;
    if (wait == Wait::kNever) {
      close(descriptor_);
      throw Failure(what + ": another process is using it");
    }
    if (!told) std::fprintf(stderr, "nxtm: %s: waiting for another process that is using it\n", what.c_str());
    told = true;
    while (flock(descriptor_, operation) != 0)
      if (errno != EINTR) FailBySystem(what);
  } while (!HasName());
}

FileLock::~FileLock() { close(descriptor_); }

bool FileLock::HasName() const {
  struct stat own {
  }, named{};
  return fstat(descriptor_, &own) == 0 && stat(file_.c_str(), &named) == 0 && own.st_dev == named.st_dev &&
         own.st_ino == named.st_ino;
}

NewFile::NewFile(const std::string& path) : path_(path), name_(path + ".XXXXXX") {
  const int descriptor = mkstemp(name_.data());
  if (descriptor < 0) FailBySystem(path);
  removed_.emplace(name_);
  fchmod(descriptor, NewMode());
  close(descriptor);
}

NewFile::~NewFile() {
  if (name_.empty()) return;
  unlink(name_.c_str());
}

void NewFile::TakeName(bool replace) {
  const unsigned int flags = replace ? 0 : RENAME_NOREPLACE;
  int code = renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, path_.c_str(), flags);
  // A file system that cannot tell is asked before; the store's lock keeps others off.
  if (code != 0 && errno == EINVAL && !replace && access(path_.c_str(), F_OK) != 0)
    code = std::rename(name_.c_str(), path_.c_str());
  if (code != 0) FailBySystem(path_);
  removed_.reset();
  name_.clear();
  const std::string folder = FolderOf(path_);
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);  // the name, too, outlives a loss of power
  close(descriptor);
}

}  // namespace nxtm
