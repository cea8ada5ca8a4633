// Index keys of German words beside ICU's sort keys and the C library's strxfrm; the
// bounds of a term; and how near the estimates come, over the word list and over
// numbers (printed first: the mean difference of estimated and true fraction).

#include <benchmark/benchmark.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "germanlocale.h"
#include "nxsortkey.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Word {
  Bytes image, key;
  std::u16string utf16;
  std::string utf8;
};

NxTypeMgr manager(5);

Bytes KeyOf(Bytes& image) {
  Bytes key(NxINDEX_MAX_KEYLEN);
  key.resize(
      manager.Translate(kStringTypeId, key.data(), 0x81, key.size(), image.data(), 1, image.size(), 1));
  return key;
}

std::vector<Word> ReadWords() {
  std::vector<Word> words;
  std::ifstream list("/usr/share/dict/ngerman");
  for (std::string line; std::getline(list, line);) {
    Word word;
    word.utf8 = line;
    std::string latin1;
    for (std::size_t i = 0; i < line.size(); ++i) {
      auto c = static_cast<unsigned char>(line[i]);
      latin1 += c < 0x80 ? line[i] : static_cast<char>((c & 3) << 6 | (line[++i] & 0x3F));
    }
    for (unsigned char c : latin1) word.utf16 += c;
    NxString s(latin1.c_str());
    s._nLanguage = 2;
    word.image.resize(s._nSize + 8);
    word.image.resize(StringStore(word.image.data(), &s, 1, 1));
    word.key = KeyOf(word.image);
    words.push_back(std::move(word));
  }
  std::shuffle(words.begin(), words.end(), std::mt19937(5));
  return words;
}

long CompareKeys(Bytes& a, Bytes& b) {
  int error;
  return manager.Cmp(kStringTypeId, a.size(), a.data(), b.size(), b.data(), kWildcardsOff, 1, 0x81, error);
}

NxIdxBounds Range(Bytes& low, Bytes& high) {
  return {low.data(), high.data(), static_cast<unsigned char>(low.size()),
          static_cast<unsigned char>(high.size())};
}

float Estimate(char type, Bytes& key, unsigned short relation, NxIdxBounds range) {
  NxIdxBounds bounds{};
  float fraction = manager.EvalAndBound(type, &range, relation, key.data(), 1, 1, &bounds, nullptr);
  std::free(bounds.lower);
  std::free(bounds.upper);
  return std::clamp(fraction, 0.0F, 1.0F);
}

const unsigned short kRelations[] = {kRelationEqual, kRelationLess, kRelationLess | kRelationEqual,
                                     kRelationGreater, kRelationGreater | kRelationEqual};

/// True fraction for a term whose key has `below` keys below it and `equal` equal ones.
double TrueFraction(unsigned short relation, double below, double equal, double all) {
  double selected = 0;
  if (relation & kRelationLess) selected += below;
  if (relation & kRelationEqual) selected += equal;
  if (relation & kRelationGreater) selected += all - below - equal;
  return selected / all;
}

void PrintEstimates(const std::vector<Word>& words) {
  std::vector<Bytes> keys;
  for (const Word& word : words) keys.push_back(word.key);
  auto less = [](const Bytes& a, const Bytes& b) {
    return CompareKeys(const_cast<Bytes&>(a), const_cast<Bytes&>(b)) < 0;
  };
  std::sort(keys.begin(), keys.end(), less);
  std::vector<int> numbers(keys.size());
  std::mt19937 random(11);
  for (int& number : numbers) number = static_cast<int>(random() % 1000000);
  std::sort(numbers.begin(), numbers.end());
  Bytes low(4), high(4);
  std::memcpy(low.data(), &numbers.front(), 4);
  std::memcpy(high.data(), &numbers.back(), 4);

  for (unsigned short relation : kRelations) {
    double wordError = 0, numberError = 0;
    for (int i = 0; i < 500; ++i) {
      Word word = words[i];
      auto range = std::equal_range(keys.begin(), keys.end(), word.key, less);
      double truth =
          TrueFraction(relation, range.first - keys.begin(), range.second - range.first, keys.size());
      wordError +=
          std::fabs(truth - Estimate(kStringTypeId, word.image, relation, Range(keys.front(), keys.back())));

      int number = numbers[random() % numbers.size()];
      Bytes image(4);
      std::memcpy(image.data(), &number, 4);
      auto at = std::equal_range(numbers.begin(), numbers.end(), number);
      truth = TrueFraction(relation, at.first - numbers.begin(), at.second - at.first, numbers.size());
      numberError += std::fabs(truth - Estimate(2, image, relation, Range(low, high)));
    }
    std::printf("estimates, relation %d: words off by %.4f, numbers by %.4f\n", relation, wordError / 500,
                numberError / 500);
  }
}

/// `keyBytes` is the mean length of the keys that a call makes; 0 for a call that makes none.
template <class Call>
void Register(const char* name, std::vector<Word>& words, Call call, double keyBytes = 0) {
  benchmark::RegisterBenchmark(name, [&words, call, keyBytes](benchmark::State& state) {
    std::size_t i = 0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(call(words[i]));
      if (++i == words.size()) i = 0;
    }
    if (keyBytes != 0) state.counters["bytes a key"] = keyBytes;
  });
}

template <class Call>
double MeanLength(std::vector<Word>& words, Call call) {
  double sum = 0;
  for (Word& word : words) sum += static_cast<double>(call(word));
  return sum / static_cast<double>(words.size());
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::vector<Word> words = ReadWords();
  if (words.empty()) {
    std::printf("the word list of package wngerman is missing\n");
    return 0;
  }
  PrintEstimates(words);
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open("de", &status);
  const auto icuKey = [collator](const Word& word) {
    uint8_t key[256];
    return ucol_getSortKey(collator, word.utf16.data(), static_cast<int>(word.utf16.size()), key, sizeof key);
  };
  const auto sortKey = [](Word& word) {
    unsigned char key[256];
    return NxSortKey(kStringTypeId, word.image.data(), 1, word.image.size(), 0, key, sizeof key);
  };
  const double icuBytes = MeanLength(words, icuKey), bytes = MeanLength(words, sortKey);
  const double imageBytes = MeanLength(words, [](Word& word) { return word.key.size(); });
  words.resize(std::min<std::size_t>(words.size(), 1000));  // stay in the cache

  Register("Key/ucol_getSortKey", words, icuKey, icuBytes);
  const char* const peer = Locale::IsGerman() ? "Key/strxfrm German" : "Key/strxfrm of C.UTF-8, a copy";
  benchmark::RegisterBenchmark(peer, [&words](benchmark::State& state) {
    const Locale locale("UTF-8");
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(words.size())))
      for (const Word& word : words) {
        char key[256];
        benchmark::DoNotOptimize(std::strxfrm(key, word.utf8.c_str(), sizeof key));
      }
  });
  Register(
      "Key/Translate", words,
      [](Word& word) {
        unsigned char key[NxINDEX_MAX_KEYLEN];
        return manager.Translate(kStringTypeId, key, 0x81, sizeof key, word.image.data(), 1,
                                 word.image.size(), 1);
      },
      imageBytes);
  Register("Key/NxSortKey", words, sortKey, bytes);
  Bytes low = words[0].key, high = words[0].key;
  for (Word& word : words) {
    if (CompareKeys(word.key, low) < 0) low = word.key;
    if (CompareKeys(word.key, high) > 0) high = word.key;
  }
  for (unsigned short relation : {kRelationEqual, kRelationLess}) {
    const char* name = relation == kRelationEqual ? "Bounds/EvalAndBound_equal" : "Bounds/EvalAndBound_less";
    Register(name, words, [&low, &high, relation](Word& word) {
      return Estimate(kStringTypeId, word.image, relation, Range(low, high));
    });
  }
  benchmark::RunSpecifiedBenchmarks();
  ucol_close(collator);
}
