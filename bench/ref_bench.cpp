// Comparison of stored identifiers and references by the type manager, beside memcmp of
// as many bytes: random pairs, which differ in the first byte that is looked at, and pairs
// of neighbours in an index, which differ in the last one.

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxref.h"
#include "nxtypmgr.h"

namespace {

constexpr unsigned long kPairs = 1024;
constexpr char kObjIdType = 15;
constexpr char kRefType = 17;

/// Images one behind the other; each is compared with the next.
struct Images {
  unsigned long size;
  std::vector<unsigned char> bytes;
  unsigned char* At(unsigned long i) { return &bytes[i * size]; }
};

template <class T>
Images MakeImages(unsigned long size, bool neighbours) {
  std::mt19937 random(15);
  Images made = {size, std::vector<unsigned char>((kPairs + 1) * size)};
  T value;
  NxObjId& id = reinterpret_cast<NxObjId&>(value);  // a reference begins with its object
  for (unsigned long i = 0; i <= kPairs; ++i) {
    ++id;
    if (!neighbours) {
      id.low = random();
      id.high = static_cast<unsigned short>(random());
    }
    T::Store(made.At(i), &value, kFormatNative, 1);
  }
  return made;
}

template <class Compare>
void Measure(benchmark::State& state, Images images, Compare compare) {
  while (state.KeepRunningBatch(kPairs))
    for (unsigned long i = 0; i < kPairs; ++i)
      benchmark::DoNotOptimize(compare(images.At(i), images.At(i + 1)));
}

template <class T>
void Register(const std::string& group, char type, bool neighbours) {
  const Images images = MakeImages<T>(static_cast<unsigned long>(T::NullSizeGet(1)), neighbours);
  benchmark::RegisterBenchmark((group + "/memcmp").c_str(), [=](benchmark::State& state) {
    Measure(state, images, [size = images.size](unsigned char* a, unsigned char* b) {
      benchmark::DoNotOptimize(a);
      return std::memcmp(a, b, size);
    });
  });
  benchmark::RegisterBenchmark((group + "/Cmp").c_str(), [=](benchmark::State& state) {
    static NxTypeMgr manager(5);
    Measure(state, images, [=, size = images.size](unsigned char* a, unsigned char* b) {
      int error;
      return manager.Cmp(type, size, a, size, b, 0, 1, kFormatNative, error);
    });
  });
}

}  // namespace

int main(int argc, char** argv) {
  Register<NxObjId>("stored NxObjId, random", kObjIdType, false);
  Register<NxObjId>("stored NxObjId, neighbours", kObjIdType, true);
  Register<NxRef>("stored NxRef, random", kRefType, false);
  Register<NxRef>("stored NxRef, neighbours", kRefType, true);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
