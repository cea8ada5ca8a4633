/// The time that a command takes.
#ifndef NXTM_STOPWATCH_H
#define NXTM_STOPWATCH_H

#include <chrono>

namespace nxtm {

class Stopwatch {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace nxtm

#endif
