// Comparison, wildcards and hashes of texts over the German and French word lists:
// by collation beside ICU (words in 16 bits there, Latin-1 here) and the C library's
// strcoll, by pattern beside fnmatch. Times are of one call.
//
// The C library's German locale is made in a temporary directory; where that cannot
// be done C.UTF-8 stands in, and the first line says so.

#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "germanlocale.h"
#include "nxtypcmp.h"
#include "nxtypmgr.h"
#include "strwild.h"

namespace {

constexpr unsigned char kLatin1 = 1;
constexpr unsigned char kGerman = 2;
constexpr std::size_t kPairs = 20'000;

// ---------------------------------------------------------------------------
// Words

/// Words in every form that a candidate takes. Each form has vectors and an arena of its own, so
/// that a candidate reads nothing of the others', and its texts one after another.
struct Words {
  std::vector<const char*> latin1;
  std::vector<const UChar*> utf16;
  std::vector<int32_t> units;
  std::vector<const char*> utf8;
  std::vector<char*> images;  // stored
  std::vector<unsigned long> imageSizes;
};

template <class Unit>
class Arena {
 public:
  Unit* Keep(const std::basic_string<Unit>& text) {
    if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() <= text.size()) {
      blocks_.emplace_back();
      blocks_.back().reserve(1 << 16);
    }
    auto& block = blocks_.back();
    block.insert(block.end(), text.c_str(), text.c_str() + text.size() + 1);
    return block.data() + block.size() - text.size() - 1;
  }

 private:
  std::deque<std::vector<Unit>> blocks_;
};

void Add(Words& words, const std::string& latin1) {
  static Arena<char> latin1Texts, utf8Texts, images;
  static Arena<char16_t> utf16Texts;
  const unsigned short n = static_cast<unsigned short>(latin1.size() + 4);
  std::string image = {static_cast<char>(n), static_cast<char>(n >> 8), kLatin1, kGerman};
  image += latin1 + std::string("\0\xFF", 2);
  std::u16string utf16;
  std::string utf8;
  for (unsigned char c : latin1) {
    utf16 += c;
    if (c < 0x80) {
      utf8 += static_cast<char>(c);
    } else {
      utf8 += {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 0x3F))};
    }
  }
  words.latin1.push_back(latin1Texts.Keep(latin1));
  words.utf16.push_back(utf16Texts.Keep(utf16));
  words.units.push_back(static_cast<int32_t>(utf16.size()));
  words.utf8.push_back(utf8Texts.Keep(utf8));
  words.images.push_back(images.Keep(image));
  words.imageSizes.push_back(image.size());
}

int Compare(const std::string& a, const std::string& b) {
  return NxStrCmp(kLatin1, kGerman, a.c_str(), kLatin1, kGerman, b.c_str(), kWildcardsOff, -1, 1, nullptr);
}

/// The words of a list that Latin-1 can write, sorted.
std::vector<std::string> ReadWords(const char* path) {
  std::vector<std::string> words;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    std::string word;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const unsigned char c = line[i];
      if (c < 0x80) {
        word += static_cast<char>(c);
      } else if (c <= 0xC3 && i + 1 < line.size()) {
        word += static_cast<char>(c << 6 | (line[++i] & 0x3F));
      } else {
        word.clear();
        break;
      }
    }
    if (!word.empty()) words.push_back(word);
  }
  std::sort(words.begin(), words.end(), [](const auto& a, const auto& b) { return Compare(a, b) < 0; });
  return words;
}

const std::vector<std::string>& German() {
  static const auto words = ReadWords("/usr/share/dict/ngerman");
  return words;
}
const std::vector<std::string>& French() {
  static const auto words = ReadWords("/usr/share/dict/french");
  return words;
}

/// Pairs of words: those at 0 and 1, `step` and `step` + 1, and so on.
struct Pairs {
  Words words;
  std::size_t step;
};

/// All of both lists.
const Pairs& Neighbours() {
  static const Pairs pairs = [] {
    Pairs made{{}, 1};
    for (const auto* words : {&German(), &French()})
      for (const std::string& word : *words) Add(made.words, word);
    return made;
  }();
  return pairs;
}

const Pairs& RandomPairs() {
  static const Pairs pairs = [] {
    Pairs made{{}, 2};
    std::mt19937 random(1);
    for (const auto* words : {&German(), &French()})
      for (std::size_t i = 0; i < kPairs; ++i) Add(made.words, (*words)[random() % words->size()]);
    return made;
  }();
  return pairs;
}

/// Words beside themselves with one letter in the other case, or with another accent.
const Pairs& OneDifference() {
  static const Pairs pairs = [] {
    const std::string groups[] = {"a\xE0\xE1\xE2\xE4", "e\xE8\xE9\xEA\xEB", "i\xEC\xED\xEE\xEF",
                                  "o\xF2\xF3\xF4\xF6", "u\xF9\xFA\xFB\xFC"};
    Pairs made{{}, 2};
    std::mt19937 random(2);
    while (made.words.latin1.size() < 2 * kPairs) {
      const auto& words = random() % 2 ? German() : French();
      const std::string& word = words[random() % words.size()];
      std::string other = word;
      char& c = other[random() % other.size()];
      for (const auto& group : groups)
        if (group.find(c) != std::string::npos) c = group[random() % group.size()];
      if (other == word && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) c ^= 0x20;
      if (other == word) continue;
      Add(made.words, word);
      Add(made.words, other);
    }
    return made;
  }();
  return pairs;
}

const Words& GermanWords() {
  static const Words words = [] {
    Words made;
    for (const auto& word : German()) Add(made, word);
    return made;
  }();
  return words;
}

// ---------------------------------------------------------------------------
// Candidates

UCollator* Collator(bool fourLevels) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open("", &status);
  if (fourLevels) {
    ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    ucol_setAttribute(collator, UCOL_FRENCH_COLLATION, UCOL_ON, &status);
    ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_QUATERNARY, &status);
  }
  if (U_FAILURE(status)) {
    std::fprintf(stderr, "ICU has no collator: %s\n", u_errorName(status));
    std::exit(2);
  }
  return collator;
}

// ---------------------------------------------------------------------------
// Cases

template <class Call>
void Measure(benchmark::State& state, const Pairs& pairs, Call call) {
  const std::size_t size = pairs.words.latin1.size();
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>((size + pairs.step - 2) / pairs.step)))
    for (std::size_t i = 0; i + 1 < size; i += pairs.step)
      benchmark::DoNotOptimize(call(pairs.words, i, i + 1));
}
template <class Call>
void Measure(benchmark::State& state, const Words& words, Call call) {
  const std::size_t size = words.latin1.size();
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(size)))
    for (std::size_t i = 0; i < size; ++i) benchmark::DoNotOptimize(call(words, i));
}

void RegisterPairs(const std::string& group, const Pairs& (*pairs)(), bool fourLevelsFirst) {
  const auto add = [&](const char* name, auto call) {
    benchmark::RegisterBenchmark((group + "/" + name).c_str(),
                                 [=](benchmark::State& state) { Measure(state, pairs(), call); });
  };
  const auto icu = [](const UCollator* collator) {
    return [collator](const Words& w, std::size_t a, std::size_t b) {
      return ucol_strcoll(collator, w.utf16[a], w.units[a], w.utf16[b], w.units[b]);
    };
  };
  if (fourLevelsFirst) add("IcuFourLevels", icu(Collator(true)));
  add("Icu", icu(Collator(false)));
  if (!fourLevelsFirst) add("IcuFourLevels", icu(Collator(true)));
  benchmark::RegisterBenchmark((group + "/strcoll").c_str(), [=](benchmark::State& state) {
    const Locale locale("ISO-8859-1");
    Measure(state, pairs(),
            [](const Words& w, std::size_t a, std::size_t b) { return strcoll(w.latin1[a], w.latin1[b]); });
  });
  add("NxStrCmp", [](const Words& w, std::size_t a, std::size_t b) {
    return NxStrCmp(kLatin1, kGerman, w.latin1[a], kLatin1, kGerman, w.latin1[b], 0, -1, 1, nullptr);
  });
  static NxTypeMgr manager(5);
  add("Cmp", [all = &manager](const Words& w, std::size_t a, std::size_t b) {
    int error;
    return all->Cmp(kStringTypeId, w.imageSizes[a], w.images[a], w.imageSizes[b], w.images[b], 0, 1, 1,
                    error);
  });
}

void RegisterPattern(const std::string& group, const char* pattern) {
  const auto add = [&](const char* name, auto call) {
    benchmark::RegisterBenchmark((group + "/" + name).c_str(),
                                 [=](benchmark::State& state) { Measure(state, GermanWords(), call); });
  };
  benchmark::RegisterBenchmark((group + "/fnmatchGerman").c_str(), [=](benchmark::State& state) {
    const Locale locale("UTF-8");
    Measure(state, GermanWords(),
            [=](const Words& w, std::size_t i) { return fnmatch(pattern, w.utf8[i], 0); });
  });
  add("fnmatchBytes", [=](const Words& w, std::size_t i) { return fnmatch(pattern, w.latin1[i], 0); });
  add("NxStrCmp", [=](const Words& w, std::size_t i) {
    return NxStrCmp(kLatin1, kGerman, w.latin1[i], kLatin1, kGerman, pattern, 0, -1, 1, nullptr);
  });
  add("NxStrCmpNoCase", [=](const Words& w, std::size_t i) {
    return NxStrCmp(kLatin1, kGerman, w.latin1[i], kLatin1, kGerman, pattern, kIgnoreCase, -1, 1, nullptr);
  });
  add("nxstrwild", [=](const Words& w, std::size_t i) { return nxstrwild(pattern, w.latin1[i], 0); });
  add("strwild", [=](const Words& w, std::size_t i) { return strwild(pattern, w.latin1[i]); });
}

unsigned HashBytes(const unsigned char* bytes, int32_t n) {
  unsigned hash = 2166136261u;
  for (int32_t i = 0; i < n; ++i) hash = (hash ^ bytes[i]) * 16777619u;
  return hash;
}

void RegisterHash() {
  benchmark::RegisterBenchmark("Hash/IcuSortKey", [](benchmark::State& state) {
    const UCollator* const collator = Collator(false);
    Measure(state, GermanWords(), [=](const Words& w, std::size_t i) {
      unsigned char key[512];
      const int32_t n = ucol_getSortKey(collator, w.utf16[i], w.units[i], key, sizeof key);
      return HashBytes(key, std::min<int32_t>(n, sizeof key));
    });
  });
  benchmark::RegisterBenchmark("Hash/Hash", [](benchmark::State& state) {
    NxTypeMgr manager(5);
    Measure(state, GermanWords(), [&](const Words& w, std::size_t i) {
      int error;
      return manager.Hash(kStringTypeId, w.imageSizes[i], w.images[i], 1, 1, error);
    });
  });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (!Locale::IsGerman()) std::fprintf(stderr, "No German locale could be made: C.UTF-8 stands in.\n");
  RegisterPairs("Neighbours", Neighbours, false);
  RegisterPairs("Random", RandomPairs, false);
  RegisterPairs("OneDifference", OneDifference, true);
  RegisterPattern("M*er", "M*er");
  RegisterPattern("*sch*en", "*sch*en");
  RegisterHash();
  benchmark::RunSpecifiedBenchmarks();
}
