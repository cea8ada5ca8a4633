#include "data/removal.h"

#include <signal.h>
#include <unistd.h>

#include <climits>
#include <cstdio>

#include "data/failure.h"

namespace nxtm {

namespace {

// What the handler removes; empty for none. A name is written before the handler is set.
char names[4][PATH_MAX];

void OnEnd(int signal) {
  for (const auto& name : names)
    if (name[0]) unlink(name);
  ::signal(signal, SIG_DFL);
  raise(signal);
}

char* FreePlace() {
  for (auto& name : names)
    if (!name[0]) return name;
  throw Failure("too many files are being made");
}

}  // namespace

RemovedOnSignal::RemovedOnSignal(const std::string& file) : name_(FreePlace()) {
  std::snprintf(name_, PATH_MAX, "%s", file.c_str());
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    action.sa_handler = OnEnd;
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace nxtm
