// A fuzz target as a test: the cases of its corpus, and random changes of them. Their
// operands lie in blocks that end before forbidden memory (support/block.h).
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::string running;

/// Writes the case that ends the program, for the fuzz target to run it again.
void Report(int signal) {
  for (const char byte : running) std::fprintf(stderr, "\\x%02X", static_cast<unsigned char>(byte));
  std::fprintf(stderr, " ended %s by signal %d\n", NX_FUZZ_CORPUS, signal);
  std::_Exit(1);
}

void Feed(const std::string& bytes) {
  running = bytes;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(running.data()), running.size());
}

TEST(Replay, CorpusAndItsChanges) {
  for (int signal : {SIGSEGV, SIGBUS, SIGILL, SIGTRAP, SIGABRT}) std::signal(signal, Report);
  std::set<std::string> files;
  for (const auto& file : std::filesystem::directory_iterator(NX_FUZZ_CORPUS)) {
    std::ifstream in(file.path(), std::ios::binary);
    files.emplace(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  const std::vector<std::string> corpus(files.begin(), files.end());
  ASSERT_FALSE(corpus.empty());
  for (const std::string& bytes : corpus) Feed(bytes);
  std::mt19937 random(1);
  const auto below = [&](std::size_t n) { return random() % n; };
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = corpus[below(corpus.size())];
    for (std::size_t n = 1 + below(4); n > 0 && !bytes.empty(); --n)
      bytes[below(bytes.size())] = static_cast<char>(below(3) ? random() : bytes[below(bytes.size())]);
    if (below(4) == 0) bytes.resize(below(bytes.size() + 1));
    Feed(bytes);
  }
}

}  // namespace
