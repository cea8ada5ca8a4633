// Files of points in time through the workbench: a million under a format, beside the
// same file as plain texts. Every line names what is to be reached.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "commands/commands.h"
#include "nxtmdata.h"

namespace {

constexpr int kRows = 1000000;
constexpr int kRuns = 3;  // the best counts

/// Sends what is printed nowhere as long as it lives.
class Silence {
 public:
  Silence() : kept_(dup(STDOUT_FILENO)) { Become(open("/dev/null", O_WRONLY)); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() { Become(kept_); }

 private:
  static void Become(int file) {
    std::fflush(stdout);
    dup2(file, STDOUT_FILENO);
    close(file);
  }
  int kept_;
};

/// Processor time of an action: that of the clock depends on who else is at work.
template <class Action>
double Seconds(Action action) {
  const Silence silence;
  const std::clock_t start = std::clock();
  action();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void WriteRows(const std::string& file) {
  std::ofstream out(file, std::ios::binary);
  std::mt19937 random(41);
  for (int row = 0; row < kRows; ++row) {
    char text[40];
    const unsigned year = 1970 + random() % 80, month = 1 + random() % 12, day = 1 + random() % 28;
    const unsigned hour = random() % 24, minute = random() % 60, second = random() % 60;
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u\n", year, month, day, hour, minute,
                  second);
    out << text;
  }
}

void Measure(const std::filesystem::path& folder) {
  const std::string data = folder / "rows";
  WriteRows(data);
  const struct {
    const char* name;
    const char* schema;
  } kColumns[] = {{"text", "at NxString\n"}, {"point", "at NxDateTime format=\"%Y-%m-%d %H:%M:%S\"\n"}};
  double in[2], out[2];
  for (int run = 0; run < kRuns; ++run) {  // in turns, so that a disturbance meets both
    for (int i : {0, 1}) {
      const std::string schema = folder / (std::string(kColumns[i].name) + ".schema");
      const std::string store = folder / kColumns[i].name;
      std::ofstream(schema) << kColumns[i].schema;
      std::filesystem::remove(store);
      const double import = Seconds([&] { nxtm::Import(schema, data, store); });
      const double dump = Seconds([&] { nxtm::Export(store, false); });
      in[i] = run == 0 ? import : std::min(in[i], import);
      out[i] = run == 0 ? dump : std::min(out[i], dump);
    }
  }
  std::printf("a million points in time under a format, beside the same as texts (at most 1.5 times)\n");
  std::printf("  import %.2f s beside %.2f s: %.2f times\n", in[1], in[0], in[1] / in[0]);
  std::printf("  export %.2f s beside %.2f s: %.2f times\n", out[1], out[0], out[1] / out[0]);
}

}  // namespace

int main() {
  ___NxTypemgrContext(1);
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("nxpoints" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  Measure(folder);
  std::filesystem::remove_all(folder);
  ___NxTypemgrContext(0);
}
