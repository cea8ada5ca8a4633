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

/// A word in every form that a candidate takes; the forms lie in arenas of their own,
/// so that each candidate reads its texts one after another.
struct Word {
  const char* latin1;
  const UChar* utf16;
  int32_t units;
  const char* utf8;
  char* image;  // stored
  unsigned long imageSize;
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

Word MakeWord(const std::string& latin1) {
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
  return {latin1Texts.Keep(latin1), utf16Texts.Keep(utf16), static_cast<int32_t>(utf16.size()),
          utf8Texts.Keep(utf8),     images.Keep(image),     static_cast<unsigned long>(image.size())};
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

using Pairs = std::vector<std::pair<Word, Word>>;

/// All of both lists.
const Pairs& Neighbours() {
  static const Pairs pairs = [] {
    Pairs made;
    for (const auto* words : {&German(), &French()}) {
      Word before = MakeWord(words->front());
      for (std::size_t i = 1; i < words->size(); ++i) {
        const Word word = MakeWord((*words)[i]);
        made.emplace_back(before, word);
        before = word;
      }
    }
    return made;
  }();
  return pairs;
}

const Pairs& RandomPairs() {
  static const Pairs pairs = [] {
    Pairs made;
    std::mt19937 random(1);
    for (const auto* words : {&German(), &French()})
      for (std::size_t i = 0; i < kPairs / 2; ++i)
        made.emplace_back(MakeWord((*words)[random() % words->size()]),
                          MakeWord((*words)[random() % words->size()]));
    return made;
  }();
  return pairs;
}

/// Words beside themselves with one letter in the other case, or with another accent.
const Pairs& OneDifference() {
  static const Pairs pairs = [] {
    const std::string groups[] = {"a\xE0\xE1\xE2\xE4", "e\xE8\xE9\xEA\xEB", "i\xEC\xED\xEE\xEF",
                                  "o\xF2\xF3\xF4\xF6", "u\xF9\xFA\xFB\xFC"};
    Pairs made;
    std::mt19937 random(2);
    while (made.size() < kPairs) {
      const auto& words = random() % 2 ? German() : French();
      const std::string& word = words[random() % words.size()];
      std::string other = word;
      char& c = other[random() % other.size()];
      for (const auto& group : groups)
        if (group.find(c) != std::string::npos) c = group[random() % group.size()];
      if (other == word && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) c ^= 0x20;
      if (other != word) made.emplace_back(MakeWord(word), MakeWord(other));
    }
    return made;
  }();
  return pairs;
}

const std::vector<Word>& GermanWords() {
  static const std::vector<Word> words = [] {
    std::vector<Word> made;
    for (const auto& word : German()) made.push_back(MakeWord(word));
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

int IcuCompare(const UCollator* collator, const Word& a, const Word& b) {
  return ucol_strcoll(collator, a.utf16, a.units, b.utf16, b.units);
}

// ---------------------------------------------------------------------------
// Cases

template <class Items, class Call>
void Measure(benchmark::State& state, const Items& items, Call call) {
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(items.size())))
    for (const auto& item : items) benchmark::DoNotOptimize(call(item));
}

void RegisterPairs(const std::string& group, const Pairs& (*pairs)(), bool fourLevelsFirst) {
  const auto add = [&](const char* name, auto call) {
    benchmark::RegisterBenchmark((group + "/" + name).c_str(),
                                 [=](benchmark::State& state) { Measure(state, pairs(), call); });
  };
  const UCollator* const plain = Collator(false);
  const UCollator* const four = Collator(true);
  const auto icu = [plain](const auto& p) { return IcuCompare(plain, p.first, p.second); };
  const auto icu4 = [four](const auto& p) { return IcuCompare(four, p.first, p.second); };
  if (fourLevelsFirst) add("IcuFourLevels", icu4);
  add("Icu", icu);
  if (!fourLevelsFirst) add("IcuFourLevels", icu4);
  benchmark::RegisterBenchmark((group + "/strcoll").c_str(), [=](benchmark::State& state) {
    const Locale locale("ISO-8859-1");
    Measure(state, pairs(), [](const auto& p) { return strcoll(p.first.latin1, p.second.latin1); });
  });
  add("NxStrCmp", [](const auto& p) {
    return NxStrCmp(kLatin1, kGerman, p.first.latin1, kLatin1, kGerman, p.second.latin1, 0, -1, 1, nullptr);
  });
  static NxTypeMgr manager(5);
  add("Cmp", [all = &manager](const auto& p) {
    int error;
    return all->Cmp(kStringTypeId, p.first.imageSize, p.first.image, p.second.imageSize, p.second.image, 0, 1,
                    1, error);
  });
}

void RegisterPattern(const std::string& group, const char* pattern) {
  const auto add = [&](const char* name, auto call) {
    benchmark::RegisterBenchmark((group + "/" + name).c_str(),
                                 [=](benchmark::State& state) { Measure(state, GermanWords(), call); });
  };
  benchmark::RegisterBenchmark((group + "/fnmatchGerman").c_str(), [=](benchmark::State& state) {
    const Locale locale("UTF-8");
    Measure(state, GermanWords(), [=](const Word& w) { return fnmatch(pattern, w.utf8, 0); });
  });
  add("fnmatchBytes", [=](const Word& w) { return fnmatch(pattern, w.latin1, 0); });
  add("NxStrCmp", [=](const Word& w) {
    return NxStrCmp(kLatin1, kGerman, w.latin1, kLatin1, kGerman, pattern, 0, -1, 1, nullptr);
  });
  add("NxStrCmpNoCase", [=](const Word& w) {
    return NxStrCmp(kLatin1, kGerman, w.latin1, kLatin1, kGerman, pattern, kIgnoreCase, -1, 1, nullptr);
  });
  add("nxstrwild", [=](const Word& w) { return nxstrwild(pattern, w.latin1, 0); });
  add("strwild", [=](const Word& w) { return strwild(pattern, w.latin1); });
}

unsigned HashBytes(const unsigned char* bytes, int32_t n) {
  unsigned hash = 2166136261u;
  for (int32_t i = 0; i < n; ++i) hash = (hash ^ bytes[i]) * 16777619u;
  return hash;
}

void RegisterHash() {
  benchmark::RegisterBenchmark("Hash/IcuSortKey", [](benchmark::State& state) {
    const UCollator* const collator = Collator(false);
    Measure(state, GermanWords(), [=](const Word& w) {
      unsigned char key[512];
      const int32_t n = ucol_getSortKey(collator, w.utf16, w.units, key, sizeof key);
      return HashBytes(key, std::min<int32_t>(n, sizeof key));
    });
  });
  benchmark::RegisterBenchmark("Hash/Hash", [](benchmark::State& state) {
    NxTypeMgr manager(5);
    Measure(state, GermanWords(), [&](const Word& w) {
      int error;
      return manager.Hash(kStringTypeId, w.imageSize, w.image, 1, 1, error);
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
