// An ordered index of the German words: look-ups in LMDB in random order, with the
// table compared by ICU on words, by memcmp on words, by the type manager on key images,
// and on sort keys as LMDB compares and by a short comparator; and the comparison of
// key images and sort keys by itself, beside ICU's of the words. Keys are ready.

#include <benchmark/benchmark.h>
#include <lmdb.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "nx_utf_8.h"
#include "nxlang.h"
#include "nxsortkey.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypmgr.h"
#include "store/keyorder.h"

namespace {

NxTypeMgr& Manager() {
  static NxTypeMgr manager(5);
  return manager;
}

const UCollator* Collator() {
  static const UCollator* const collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* made = ucol_open("", &status);
    if (U_FAILURE(status)) std::exit((std::fprintf(stderr, "ICU has no collator\n"), 2));
    return made;
  }();
  return collator;
}

// ---------------------------------------------------------------------------
// Words

struct Word {
  std::string utf8;
  std::u16string utf16;
  std::string key;  // its image
  std::string sortKey;
};

std::string KeyOf(NxString& s) {
  std::string image(s._nSize + 8U, '\0');
  image.resize(static_cast<unsigned>(StringStore(&image[0], &s, kFormatNative, 1)));
  std::string key(254, '\0');
  key.resize(
      static_cast<unsigned>(Manager().Translate(kStringTypeId, &key[0], kFormatKey | kFormatNative,
                                                key.size(), &image[0], kFormatNative, image.size(), 1)));
  return key;
}

std::string SortKeyOf(NxString& s) {
  std::string key(512, '\0');
  key.resize(NxSortKey(kStringTypeId, &s, 8, 0, 0, &key[0], key.size()));
  return key;
}

/// The words of the list in random order.
const std::vector<Word>& Words() {
  static const std::vector<Word> words = [] {
    std::vector<Word> made;
    std::ifstream in("/usr/share/dict/ngerman");
    for (std::string line; std::getline(in, line);) {
      NxString s(kCodeSetUnicode, kLanguageGerman);
      NxMBS2NxString(line.c_str(), s, static_cast<long>(line.size()));
      const auto* units = reinterpret_cast<const char16_t*>(s.StrGet());
      made.push_back({line, std::u16string(units, units + s.Len()), KeyOf(s), SortKeyOf(s)});
    }
    if (made.empty()) std::exit((std::fprintf(stderr, "The package wngerman is missing.\n"), 2));
    std::shuffle(made.begin(), made.end(), std::mt19937(1));
    return made;
  }();
  return words;
}

// ---------------------------------------------------------------------------
// Comparison

int CompareImages(const MDB_val* a, const MDB_val* b) {
  int error;
  const long order = Manager().Cmp(kStringTypeId, a->mv_size, a->mv_data, b->mv_size, b->mv_data,
                                   kWildcardsOff, 1, kFormatKey | kFormatNative, error);
  return order < 0 ? -1 : order > 0;
}

int CompareByIcu(const MDB_val* a, const MDB_val* b) {
  UErrorCode status = U_ZERO_ERROR;
  return ucol_strcollUTF8(Collator(), static_cast<const char*>(a->mv_data), static_cast<int32_t>(a->mv_size),
                          static_cast<const char*>(b->mv_data), static_cast<int32_t>(b->mv_size), &status);
}

int CompareBytes(const MDB_val* a, const MDB_val* b) {
  const int order = std::memcmp(a->mv_data, b->mv_data, std::min(a->mv_size, b->mv_size));
  return order != 0 ? order : static_cast<int>(a->mv_size) - static_cast<int>(b->mv_size);
}

// ---------------------------------------------------------------------------
// Look-ups

void Check(int code) {
  if (code != 0) std::exit((std::fprintf(stderr, "LMDB: %s\n", mdb_strerror(code)), 2));
}

MDB_val Val(const std::string& bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }

/// A table of the words, each with its number, filled in order; and the words one
/// behind the other as they are looked up. LMDB compares where `compare` is null.
class Table {
 public:
  Table(MDB_cmp_func* compare, std::string Word::*key) {
    const auto file =
        std::filesystem::temp_directory_path() / ("nxlookup" + std::to_string(getpid()) + ".mdb");
    Check(mdb_env_create(&env_));
    Check(mdb_env_set_mapsize(env_, 128UL << 20));
    Check(mdb_env_open(env_, file.c_str(), MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOSYNC, 0600));
    std::filesystem::remove(file);  // it lives as long as it is open
    Check(mdb_txn_begin(env_, nullptr, 0, &txn_));
    Check(mdb_dbi_open(txn_, nullptr, 0, &table_));
    if (compare) Check(mdb_set_compare(txn_, table_, compare));
    Fill(compare ? compare : CompareBytes, key);
    Check(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn_));
    if (compare) Check(mdb_set_compare(txn_, table_, compare));
    for (const Word& word : Words()) {
      texts_ += word.*key;
      ends_.push_back(texts_.size());
    }
  }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() {
    mdb_txn_abort(txn_);
    mdb_env_close(env_);
  }

  std::size_t Size() const { return ends_.size(); }
  bool Find(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    MDB_val key = {ends_[i] - begin, const_cast<char*>(texts_.data()) + begin}, data;
    return mdb_get(txn_, table_, &key, &data) == 0;
  }

 private:
  void Fill(MDB_cmp_func* compare, std::string Word::*key) {
    std::vector<const std::string*> order;
    for (const Word& word : Words()) order.push_back(&(word.*key));
    std::sort(order.begin(), order.end(), [&](const std::string* a, const std::string* b) {
      const MDB_val x = Val(*a), y = Val(*b);
      return compare(&x, &y) < 0;
    });
    unsigned number = 0;
    for (const std::string* text : order) {
      MDB_val k = Val(*text), data = {sizeof number, &number};
      const int code = mdb_put(txn_, table_, &k, &data, MDB_APPEND);
      if (code != MDB_KEYEXIST) Check(code);  // words that differ in nothing
      ++number;
    }
    Check(mdb_txn_commit(txn_));
  }

  MDB_env* env_ = nullptr;
  MDB_txn* txn_ = nullptr;
  MDB_dbi table_ = 0;
  std::string texts_;
  std::vector<std::size_t> ends_;
};

void RegisterLookUp(const char* name, MDB_cmp_func* compare, std::string Word::*key) {
  const auto run = [=, table = std::shared_ptr<Table>()](benchmark::State& state) mutable {
    if (!table) table = std::make_shared<Table>(compare, key);
    std::size_t at = 0;
    for (auto _ : state) {
      if (!table->Find(at)) state.SkipWithError("a word was not found");
      if (++at == table->Size()) at = 0;
    }
  };
  benchmark::RegisterBenchmark(name, run);
}

// ---------------------------------------------------------------------------
// Keys by themselves

/// Pairs of texts that lie one behind the other, as each candidate reads them.
template <class Text>
struct Pairs {
  Text texts;
  struct Span {
    std::size_t at;
    unsigned size;
  };
  std::vector<std::pair<Span, Span>> pairs;

  Span Add(const Text& text) {
    texts += text;
    return {texts.size() - text.size(), static_cast<unsigned>(text.size())};
  }
};

/// Pairs that follow each other in the index, or random ones.
template <class Text>
Pairs<Text> MakePairs(bool neighbours, Text Word::*text) {
  constexpr std::size_t kPairs = 10'000;
  std::vector<const Word*> words;
  for (const Word& word : Words()) words.push_back(&word);
  const auto less = [](const Word* a, const Word* b) {
    const MDB_val x = Val(a->key), y = Val(b->key);
    return CompareImages(&x, &y) < 0;
  };
  if (neighbours) std::sort(words.begin(), words.end(), less);
  Pairs<Text> made;
  for (std::size_t i = 0; i < kPairs; ++i) {
    const std::size_t at = i * (words.size() - 1) / kPairs;
    const auto first = made.Add(words[at]->*text);
    made.pairs.emplace_back(first, made.Add(words[at + 1]->*text));
  }
  return made;
}

template <class Text, class Call>
void RegisterPairs(const std::string& name, bool neighbours, Text Word::*text, Call call) {
  const auto run = [=, made = Pairs<Text>()](benchmark::State& state) mutable {
    if (made.pairs.empty()) made = MakePairs(neighbours, text);
    const auto* base = made.texts.data();
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(made.pairs.size())))
      for (const auto& [a, b] : made.pairs)
        benchmark::DoNotOptimize(call(base + a.at, a.size, base + b.at, b.size));
  };
  benchmark::RegisterBenchmark(name.c_str(), run);
}

void RegisterKeys(const std::string& group, bool neighbours) {
  RegisterPairs(group + "/ucol_strcoll", neighbours, &Word::utf16,
                [](const char16_t* a, unsigned n, const char16_t* b, unsigned m) {
                  return ucol_strcoll(Collator(), a, static_cast<int32_t>(n), b, static_cast<int32_t>(m));
                });
  RegisterPairs(group + "/Cmp", neighbours, &Word::key,
                [](const char* a, unsigned n, const char* b, unsigned m) {
                  const MDB_val x = {n, const_cast<char*>(a)}, y = {m, const_cast<char*>(b)};
                  return CompareImages(&x, &y);
                });
  const auto sortKeys = [&](const char* name, MDB_cmp_func* compare) {
    RegisterPairs(group + name, neighbours, &Word::sortKey,
                  [compare](const char* a, unsigned n, const char* b, unsigned m) {
                    const MDB_val x = {n, const_cast<char*>(a)}, y = {m, const_cast<char*>(b)};
                    return compare(&x, &y);
                  });
  };
  sortKeys("/sort keys, memcmp", CompareBytes);
  sortKeys("/sort keys, in place", nxtm::CompareKeys);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterLookUp("LookUp/ucol_strcollUTF8", CompareByIcu, &Word::utf8);
  RegisterLookUp("LookUp/memcmp of the words", nullptr, &Word::utf8);
  RegisterLookUp("LookUp/Cmp", CompareImages, &Word::key);
  RegisterLookUp("LookUp/sort keys, memcmp", nullptr, &Word::sortKey);
  RegisterLookUp("LookUp/sort keys, in place", nxtm::CompareKeys, &Word::sortKey);
  RegisterKeys("NeighbourKeys", true);
  RegisterKeys("RandomKeys", false);
  benchmark::RunSpecifiedBenchmarks();
}
