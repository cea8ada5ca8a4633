// Compares the collation order of word lists with ICU's: how many random pairs,
// and how many neighbours in sorted order, both order alike. Exit status 1 when
// fewer do than the collation promises. Run: order_quality_bench [WORDLIST LANGUAGE]...
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "nxlang.h"
#include "strwild.h"

namespace {

constexpr int kRandomPairs = 1'000'000;
constexpr double kRandomTarget = 99.9;     // percent of random pairs ordered alike
constexpr double kNeighbourTarget = 99.5;  // percent of neighbours ordered alike
constexpr unsigned short kNoWildcards = 0x0010;
constexpr std::size_t kExamples = 3;  // shown of each kind of difference

using Words = std::vector<std::u16string>;
using Order = std::vector<unsigned>;

int Sign(int n) { return (n > 0) - (n < 0); }

std::string Utf8(const std::u16string& text) {
  std::string out(text.size() * 3, '\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
              static_cast<int32_t>(text.size()), &status);
  out.resize(static_cast<std::size_t>(length));
  return out;
}

/// The lines of a UTF-8 file; one with a character beyond 16 bits is left out.
Words ReadWords(const char* path) {
  Words words;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    std::u16string word(line.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(word.data(), static_cast<int32_t>(word.size()), &length, line.data(),
                  static_cast<int32_t>(line.size()), &status);
    if (U_FAILURE(status) || length == 0) continue;
    word.resize(static_cast<std::size_t>(length));
    words.push_back(word);
  }
  return words;
}

/// ICU's root order under the settings that this library's levels answer to.
class Peer {
 public:
  Peer() {
    UErrorCode status = U_ZERO_ERROR;
    collator_ = ucol_open("", &status);
    ucol_setAttribute(collator_, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    ucol_setAttribute(collator_, UCOL_FRENCH_COLLATION, UCOL_ON, &status);
    ucol_setAttribute(collator_, UCOL_STRENGTH, UCOL_QUATERNARY, &status);
    if (U_FAILURE(status)) {
      std::fprintf(stderr, "ICU has no collator: %s\n", u_errorName(status));
      std::exit(2);
    }
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() { ucol_close(collator_); }

  int Compare(const std::u16string& a, const std::u16string& b) const {
    return ucol_strcoll(collator_, a.data(), static_cast<int32_t>(a.size()), b.data(),
                        static_cast<int32_t>(b.size()));
  }

 private:
  UCollator* collator_;
};

int Compare(unsigned char language, const std::u16string& a, const std::u16string& b,
            unsigned short options) {
  return NxStrCmp(kCodeSetUnicode, language, reinterpret_cast<const char*>(a.c_str()), kCodeSetUnicode,
                  language, reinterpret_cast<const char*>(b.c_str()), options, -1, 1, nullptr);
}

/// Pairs that order differently, by the level of this library that decided.
class Differences {
 public:
  Differences(const Peer& peer, unsigned char language) : peer_(peer), language_(language) {}

  void Test(const std::u16string& a, const std::u16string& b) {
    ++tested_;
    const int ours = Sign(Compare(language_, a, b, kNoWildcards));
    const int theirs = Sign(peer_.Compare(a, b));
    if (ours == theirs) return;
    ++differing_;
    std::vector<std::string>& examples = kinds_[Kind(a, b)];
    examples.push_back(Utf8(a) + (ours < 0 ? " < " : ours > 0 ? " > " : " = ") + Utf8(b));
  }

  /// Prints the percentage and the kinds; answers whether `target` is reached.
  bool Report(const char* what, double target) const {
    const double alike = 100.0 * static_cast<double>(tested_ - differing_) / static_cast<double>(tested_);
    std::printf("  %-34s %8.4f %% of %zu alike (target %.1f %%)\n", what, alike, tested_, target);
    for (const auto& [kind, examples] : kinds_) {
      std::printf("    %zu by %s:", examples.size(), kind.c_str());
      for (std::size_t i = 0; i < std::min(kExamples, examples.size()); ++i)
        std::printf(" %s%s", examples[i].c_str(), i + 1 < std::min(kExamples, examples.size()) ? "," : "");
      std::printf("\n");
    }
    return alike >= target;
  }

 private:
  std::string Kind(const std::u16string& a, const std::u16string& b) const {
    constexpr unsigned short kIgnoreCase = 0x20;
    constexpr unsigned short kIgnoreAccents = 0x40;
    constexpr unsigned short kSkipSpaces = 0x80;
    constexpr unsigned short kSkipSymbols = 0x200;
    constexpr unsigned short kLettersOnly = kNoWildcards | kSkipSpaces | kSkipSymbols;
    if (Compare(language_, a, b, kLettersOnly | kIgnoreCase | kIgnoreAccents) != 0) return "base letters";
    if (Compare(language_, a, b, kLettersOnly | kIgnoreCase) != 0) return "accents";
    if (Compare(language_, a, b, kLettersOnly) != 0) return "case";
    return "symbols and spaces";
  }

  const Peer& peer_;
  unsigned char language_;
  std::size_t tested_ = 0;
  std::size_t differing_ = 0;
  std::map<std::string, std::vector<std::string>> kinds_;
};

template <typename Less>
Order Sorted(std::size_t count, Less less) {
  Order order(count);
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(), less);
  return order;
}

void TestNeighbours(const Words& words, const Order& order, Differences& differences) {
  for (std::size_t i = 1; i < order.size(); ++i) differences.Test(words[order[i - 1]], words[order[i]]);
}

bool CheckList(const char* path, unsigned char language) {
  const Words words = ReadWords(path);
  if (words.size() < 2) {
    std::fprintf(stderr, "%s: no words\n", path);
    return false;
  }
  std::printf("%s, language %d, %zu words\n", path, language, words.size());
  const Peer peer;

  Differences random(peer, language);
  std::mt19937 generator(1);
  std::uniform_int_distribution<std::size_t> pick(0, words.size() - 1);
  for (int i = 0; i < kRandomPairs; ++i) {
    const std::size_t first = pick(generator);
    random.Test(words[first], words[pick(generator)]);
  }

  Differences theirs(peer, language);
  TestNeighbours(
      words,
      Sorted(words.size(), [&](unsigned a, unsigned b) { return peer.Compare(words[a], words[b]) < 0; }),
      theirs);
  Differences ours(peer, language);
  TestNeighbours(
      words,
      Sorted(words.size(),
             [&](unsigned a, unsigned b) { return Compare(language, words[a], words[b], kNoWildcards) < 0; }),
      ours);

  const bool randomGood = random.Report("random pairs", kRandomTarget);
  const bool theirsGood = theirs.Report("neighbours as ICU sorts them", kNeighbourTarget);
  const bool oursGood = ours.Report("neighbours as this library sorts", kNeighbourTarget);
  return randomGood && theirsGood && oursGood;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    const bool german = CheckList("/usr/share/dict/ngerman", kLanguageGerman);
    const bool french = CheckList("/usr/share/dict/french", kLanguageFrench);
    return german && french ? 0 : 1;
  }
  bool good = true;
  for (int i = 1; i + 1 < argc; i += 2)
    good = CheckList(argv[i], static_cast<unsigned char>(std::atoi(argv[i + 1]))) && good;
  return good ? 0 : 1;
}
