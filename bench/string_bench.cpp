// Storing and loading 100,000 German words beside a length-prefixed writer and reader
// over std::string that allocates per word, and what single strings cost.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "nxstring.h"
#include "nxtypes.h"

namespace {

unsigned long allocations = 0;

}  // namespace

// Counted, so that what a string costs can be told. Not inlined: a compiler that sees
// only one half of a pair takes it for a mismatch.
#define NX_ALLOCATOR __attribute__((noinline))
NX_ALLOCATOR void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size);
}
NX_ALLOCATOR void* operator new(std::size_t size) {
  if (void* p = operator new(size, std::nothrow)) return p;
  std::abort();
}
NX_ALLOCATOR void* operator new[](std::size_t size) { return operator new(size); }
NX_ALLOCATOR void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size, std::nothrow);
}
NX_ALLOCATOR void operator delete(void* p) noexcept { std::free(p); }
NX_ALLOCATOR void operator delete(void* p, std::size_t) noexcept { std::free(p); }
NX_ALLOCATOR void operator delete[](void* p) noexcept { std::free(p); }
NX_ALLOCATOR void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

constexpr unsigned long kWords = 100'000;

/// Every third word of the German list in Latin-1.
const std::vector<std::string>& Words() {
  static const std::vector<std::string> words = [] {
    std::vector<std::string> list;
    std::ifstream file("/usr/share/dict/ngerman");
    std::string line;
    for (unsigned long i = 0; list.size() < kWords && std::getline(file, line); ++i) {
      if (i % 3 != 0) continue;
      std::string word;
      for (std::size_t k = 0; k < line.size(); ++k) {
        const auto byte = static_cast<unsigned char>(line[k]);
        word += byte < 0x80 ? line[k] : static_cast<char>((byte & 3) << 6 | (line[++k] & 0x3F));
      }
      list.push_back(word);
    }
    if (list.size() < kWords) {
      std::fprintf(stderr, "/usr/share/dict/ngerman is missing (package wngerman)\n");
      std::exit(2);
    }
    return list;
  }();
  return words;
}

std::vector<NxString> Strings() {
  std::vector<NxString> strings;
  strings.reserve(kWords);
  for (const auto& word : Words()) strings.emplace_back(word.c_str());
  return strings;
}

// ---------------------------------------------------------------------------
// The peer: 16-bit length, then the bytes.

void PutWord(std::string& image, const std::string& word) {
  image.push_back(static_cast<char>(word.size()));
  image.push_back(static_cast<char>(word.size() >> 8));
  image.append(word);
}

std::size_t WordSize(const char* p) {
  return static_cast<unsigned char>(p[0]) | static_cast<unsigned char>(p[1]) << 8;
}

std::string PeerImage() {
  std::string image;
  for (const auto& word : Words()) PutWord(image, word);
  return image;
}

/// Notes the allocations per word since `before`.
void Report(benchmark::State& state, unsigned long before) {
  const auto words = static_cast<double>(state.iterations()) * kWords;
  state.counters["allocations"] = static_cast<double>(allocations - before) / words;
}

/// A record for every word, then all of them one after another.
void PeerStore(benchmark::State& state) {
  std::string image = PeerImage();
  const unsigned long before = allocations;
  for (auto _ : state) {
    image.clear();
    for (const auto& word : Words()) {
      const auto record = std::make_unique<std::string>();
      record->reserve(word.size() + 2);
      PutWord(*record, word);
      image += *record;
    }
    benchmark::DoNotOptimize(image.data());
  }
  Report(state, before);
}

/// Into one image whose room is there already.
void PeerStoreReusing(benchmark::State& state) {
  std::string image = PeerImage();
  const unsigned long before = allocations;
  for (auto _ : state) {
    image.clear();
    for (const auto& word : Words()) PutWord(image, word);
    benchmark::DoNotOptimize(image.data());
  }
  Report(state, before);
}

/// A new string for every word, in place of the one of the load before.
void PeerLoad(benchmark::State& state) {
  const std::string image = PeerImage();
  std::vector<std::unique_ptr<std::string>> words(kWords);
  const unsigned long before = allocations;
  for (auto _ : state) {
    const char* p = image.data();
    for (auto& word : words) {
      word = std::make_unique<std::string>(p + 2, WordSize(p));
      p += 2 + WordSize(p);
    }
    benchmark::DoNotOptimize(words.data());
  }
  Report(state, before);
}

/// Into the strings of the load before.
void PeerLoadReusing(benchmark::State& state) {
  const std::string image = PeerImage();
  std::vector<std::string> words(kWords);
  const unsigned long before = allocations;
  for (auto _ : state) {
    const char* p = image.data();
    for (auto& word : words) {
      word.assign(p + 2, WordSize(p));
      p += 2 + WordSize(p);
    }
    benchmark::DoNotOptimize(words.data());
  }
  Report(state, before);
}

// ---------------------------------------------------------------------------
// Ours

std::vector<unsigned char> Image(const std::vector<NxString>& strings) {
  std::vector<unsigned char> image(StringSizeGet(strings.data(), 8, 1, kWords));
  StringStore(image.data(), strings.data(), 1, kWords);
  return image;
}

void Store(benchmark::State& state) {
  const auto strings = Strings();
  auto image = Image(strings);
  const unsigned long before = allocations;
  for (auto _ : state) {
    StringStore(image.data(), strings.data(), 1, kWords);
    benchmark::DoNotOptimize(image.data());
  }
  Report(state, before);
}

/// Over the strings of the load before.
void Load(benchmark::State& state) {
  auto strings = Strings();
  const auto image = Image(strings);
  const unsigned long before = allocations;
  for (auto _ : state) {
    StringLoad(strings.data(), image.data(), 1, kWords);
    benchmark::DoNotOptimize(strings.data());
  }
  Report(state, before);
}

/// One after another into one string, as a store does that walks its records.
void LoadOne(benchmark::State& state) {
  const auto image = Image(Strings());
  const unsigned long before = allocations;
  NxString s;
  for (auto _ : state) {
    const unsigned char* p = image.data();
    for (unsigned long i = 0; i < kWords; ++i) p += StringLoad(&s, p, 1, 1);
    benchmark::DoNotOptimize(s);
  }
  Report(state, before);
}

/// Over strings of other lengths: most buffers are replaced.
void LoadOther(benchmark::State& state) {
  auto strings = Strings();
  const auto image = Image(strings);
  std::rotate(strings.begin(), strings.begin() + 1, strings.end());
  const auto rotated = Image(strings);
  const unsigned long before = allocations;
  bool odd = false;
  for (auto _ : state) {
    StringLoad(strings.data(), (odd ? rotated : image).data(), 1, kWords);
    benchmark::DoNotOptimize(strings.data());
    odd = !odd;
  }
  Report(state, before);
}

// ---------------------------------------------------------------------------
// Single strings

template <class String, class Work>
void Single(benchmark::State& state, Work work) {
  const std::vector<String> words = [] {
    std::vector<String> list;
    for (unsigned long i = 0; i < 1000; ++i) list.emplace_back(Words()[i * 100].c_str());
    return list;
  }();
  for (auto _ : state)
    for (const String& word : words) benchmark::DoNotOptimize(work(word));
  state.SetItemsProcessed(state.iterations() * 1000);
}

template <class String>
void RegisterSingle(const char* name) {
  const auto add = [name](const std::string& group, auto work) {
    benchmark::RegisterBenchmark((group + "/" + name).c_str(), Single<String, decltype(work)>, work);
  };
  add("1000 copies", [](const String& s) { return String(s); });
  add("1000 assignments", [copy = String()](const String& s) mutable -> const String& { return copy = s; });
  add("1000 appends", [](const String& s) {
    String sum(s);
    sum += s;
    return sum;
  });
}

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMicrosecond);
  };
  add("store words/std::string", PeerStore);
  add("store words/std::string, reusing", PeerStoreReusing);
  add("store words/StringStore", Store);
  add("load words/std::string", PeerLoad);
  add("load words/std::string, reusing", PeerLoadReusing);
  add("load words/StringLoad", Load);
  add("load words/StringLoad, into one string", LoadOne);
  add("load words/StringLoad, over other words", LoadOther);
  RegisterSingle<std::string>("std::string");
  RegisterSingle<NxString>("NxString");
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
