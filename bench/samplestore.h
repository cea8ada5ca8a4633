// What the benchmarks of whole stores have in common: rows of four columns, and the workbench
// that takes them.
#ifndef SAMPLESTORE_H
#define SAMPLESTORE_H

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

[[noreturn]] inline void Stop(const std::string& reason) {
  std::fprintf(stderr, "%s\n", reason.c_str());
  std::exit(2);
}

inline void WriteSchema(const std::string& file) {
  std::ofstream(file) << "word NxString language=german\nnumber long\nreal double\nday NxDate\n";
}

/// Writes rows, each by `writeRow(out, words, i)` with the German words.
template <class WriteRow>
void WriteRows(const std::string& file, unsigned count, WriteRow writeRow) {
  std::vector<std::string> words;
  std::ifstream list("/usr/share/dict/ngerman");
  for (std::string word; std::getline(list, word);) words.push_back(word);
  if (words.empty()) Stop("The package wngerman is missing.");
  std::unique_ptr<FILE, int (*)(FILE*)> out(std::fopen(file.c_str(), "w"), std::fclose);
  for (unsigned i = 0; i < count; ++i) writeRow(out.get(), words, i);
}

/// Runs nxtm; its output goes nowhere.
inline void Run(const std::string& arguments) {
  if (std::system((NXTM " " + arguments + " >/dev/null").c_str()) != 0) Stop("failed: nxtm " + arguments);
}

#endif
