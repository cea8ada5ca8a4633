// Storing arrays of scalars: same order and the other byte order beside memcpy
// of as many bytes, and the single fields that most calls move.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "bs/swapbytes.h"
#include "nxbase.h"

namespace {

constexpr unsigned long kValues = 1'000'000;

/// Source and destination of kValues values of type T. All cases use the same ones: the
/// rate of a copy depends on where its pages lie.
template <class T>
struct Arrays {
  std::vector<T> src = std::vector<T>(kValues, T(3));
  std::vector<T> dst = std::vector<T>(kValues, T(5));
};

template <class T>
Arrays<T>& SharedArrays() {
  static Arrays<T> arrays;
  return arrays;
}

template <class T, class Move>
void Measure(benchmark::State& state, Move move) {
  Arrays<T>& arrays = SharedArrays<T>();
  for (auto _ : state) {
    T* dst = arrays.dst.data();
    const T* src = arrays.src.data();
    benchmark::DoNotOptimize(dst);  // an unseen copy would be left out
    benchmark::DoNotOptimize(src);
    move(dst, src);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeof(T) * kValues);
}

template <class T>
void Memcpy(benchmark::State& state) {
  Measure<T>(state, [](T* dst, const T* src) { std::memcpy(dst, src, kValues * sizeof(T)); });
}

using Converter = int (*)(void*, const void*, unsigned char, unsigned long);

template <class T>
void Stored(benchmark::State& state, Converter convert, unsigned char format) {
  Measure<T>(state, [=](T* dst, const T* src) { convert(dst, src, format, kValues); });
}

template <class T>
void SwapAt(benchmark::State& state, SwapLevel level) {
  Measure<T>(state, [=](T* dst, const T* src) { SwapArrayAt<sizeof(T)>(level, dst, src, kValues); });
}

void SingleField(benchmark::State& state, Converter convert) {
  char field[8] = {}, image[16] = {};
  for (auto _ : state) {
    convert(image + 1, field, kFormatBigEndian, 1);
    benchmark::ClobberMemory();
  }
}

template <class T>
void Register(const std::string& group, Converter convert) {
  const auto add = [&](const char* name, auto... arguments) {
    benchmark::RegisterBenchmark((group + name).c_str(), arguments...);
  };
  add("/memcpy", Memcpy<T>);
  add("/same order", Stored<T>, convert, kFormatNative);
  add("/swapped", Stored<T>, convert, kFormatBigEndian);
  add("/swapped with SSE2", SwapAt<T>, SwapLevel::kSse2);
  if (BestSwapLevel() == SwapLevel::kSsse3) add("/swapped with SSSE3", SwapAt<T>, SwapLevel::kSsse3);
}

}  // namespace

int main(int argc, char** argv) {
  Register<short>("shorts", ShortStore);
  Register<long>("longs", LongStore);
  Register<double>("doubles", DoubleStore);
  benchmark::RegisterBenchmark("one short", SingleField, ShortStore);
  benchmark::RegisterBenchmark("one long", SingleField, LongStore);
  benchmark::RegisterBenchmark("one double", SingleField, DoubleStore);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
