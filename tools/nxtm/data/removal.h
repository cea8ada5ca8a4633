/// Files that go away with the process that makes them.
#ifndef NXTM_REMOVAL_H
#define NXTM_REMOVAL_H

#include <string>

namespace nxtm {

/// While an object lives, a signal that ends the process (SIGINT, SIGTERM, SIGHUP) removes its
/// file. There may be a few at a time.
class RemovedOnSignal {
 public:
  explicit RemovedOnSignal(const std::string& file);
  RemovedOnSignal(const RemovedOnSignal&) = delete;
  RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;
  ~RemovedOnSignal() { Keep(); }
  /// The file is not removed any more.
  void Keep() { name_[0] = 0; }

 private:
  char* name_;
};

}  // namespace nxtm

#endif
