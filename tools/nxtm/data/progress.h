/// A progress bar on standard error, when that is a terminal.
#ifndef NXTM_PROGRESS_H
#define NXTM_PROGRESS_H

#include <unistd.h>

#include <cstdio>
#include <string>

namespace nxtm {

class Progress {
 public:
  Progress(const std::string& what, unsigned long long total)
      : what_(what), total_(total ? total : 1), shown_(isatty(STDERR_FILENO) != 0) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() {
    if (shown_ && percent_ >= 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(what_.size()) + 40, "");
  }

  void At(unsigned long long done) {
    if (!shown_) return;
    int percent = static_cast<int>(done * 100 / total_);
    if (percent == percent_) return;
    percent_ = percent;
    std::string bar(static_cast<unsigned>(percent) / 4, '#');
    std::fprintf(stderr, "\r%s [%-25s] %3d %%", what_.c_str(), bar.c_str(), percent);
    std::fflush(stderr);
  }

 private:
  std::string what_;
  unsigned long long total_;
  bool shown_;
  int percent_ = -1;
};

}  // namespace nxtm

#endif
