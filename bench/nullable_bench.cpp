// Storing and loading arrays of nullable longs beside memcpy of the same stored bytes, and
// comparing stored ones through the type manager.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "nxbase.h"
#include "nxnultyp.h"
#include "nxtypmgr.h"

namespace {

constexpr unsigned long kValues = 1'000'000;
constexpr char kNullLong = 34;

/// Values, every eighth of them null, with room for their image and a copy of it. All
/// cases use the same ones: the rate of a copy depends on where its pages lie.
struct Arrays {
  Arrays() : values(kValues), image(static_cast<std::size_t>(NxNull_longNullSizeGet(kValues))), copy(image) {
    for (unsigned long i = 0; i < kValues; ++i)
      if (i % 8 != 0) values[i] = NxNull_long(static_cast<long>(i * 2654435761));
    NxNull_longStore(image.data(), values.data(), kFormatNative, kValues);
  }
  std::vector<NxNull_long> values;
  std::vector<unsigned char> image, copy;
};

template <class Move>
void Measure(benchmark::State& state, Move move) {
  static Arrays arrays;
  for (auto _ : state) {
    benchmark::DoNotOptimize(arrays);  // an unseen copy would be left out
    move(arrays);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(arrays.image.size()));
}

void Memcpy(benchmark::State& state) {
  Measure(state, [](Arrays& a) { std::copy(a.image.begin(), a.image.end(), a.copy.begin()); });
}

void Store(benchmark::State& state, unsigned char format) {
  Measure(state, [=](Arrays& a) { NxNull_longStore(a.copy.data(), a.values.data(), format, kValues); });
}

void Load(benchmark::State& state, unsigned char format) {
  Measure(state, [=](Arrays& a) { NxNull_longLoad(a.values.data(), a.image.data(), format, kValues); });
}

/// Values that differ in their last byte, so that all of it is read.
void Compare(benchmark::State& state, unsigned char format) {
  NxNull_long values[] = {NxNull_long(123456), NxNull_long(123457)};
  unsigned char image[2 * 5];
  NxNull_longStore(image, values, format, 2);
  NxTypeMgr mgr(5);
  for (auto _ : state) benchmark::DoNotOptimize(mgr.Cmp(kNullLong, image, image + 5, 0, 1, format));
}

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const char* name, auto... arguments) {
    benchmark::RegisterBenchmark(name, arguments...);
  };
  add("nullable longs/memcpy", Memcpy);
  add("nullable longs/store", Store, kFormatNative);
  add("nullable longs/store swapped", Store, kFormatBigEndian);
  add("nullable longs/load", Load, kFormatNative);
  add("nullable longs/load swapped", Load, kFormatBigEndian);
  add("compare stored nullable longs", Compare, kFormatNative);
  add("compare stored nullable longs swapped", Compare, kFormatBigEndian);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
