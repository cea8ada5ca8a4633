// NxInt64 arithmetic beside the compiler's 64-bit integers, element by element over
// two arrays of random numbers of mixed size.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "nxint64.h"

namespace {

constexpr std::size_t kNumbers = 1024;

/// Pairs of numbers: left ones of up to 63 bits, right ones of up to rightBits, none 0.
template <class Int>
struct Operands {
  std::vector<Int> left, right;
  std::vector<unsigned> count;
};

Operands<long long> PlainOperands(unsigned rightBits) {
  std::mt19937_64 random(64);
  Operands<long long> o;
  for (std::size_t i = 0; i < kNumbers; ++i) {
    const auto number = [&](unsigned bits) {
      return static_cast<long long>(random()) >> (64 - bits + random() % bits);
    };
    o.left.push_back(number(63));
    const long long right = number(rightBits);
    o.right.push_back(right ? right : 7);
    o.count.push_back(static_cast<unsigned>(random() % 64));
  }
  return o;
}

Operands<NxInt64> ClassOperands(unsigned rightBits) {
  const Operands<long long> plain = PlainOperands(rightBits);
  Operands<NxInt64> o;
  for (long long v : plain.left) o.left.push_back(NxInt64::FromWide(v));
  for (long long v : plain.right) o.right.push_back(NxInt64::FromWide(v));
  o.count = plain.count;
  return o;
}

template <class Int, class Operation>
void Measure(benchmark::State& state, const Operands<Int>& o, Operation operation) {
  for (auto _ : state)
    for (std::size_t i = 0; i < kNumbers; ++i) {
      auto result = operation(o.left[i], o.right[i], o.count[i]);
      benchmark::DoNotOptimize(result);
    }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kNumbers));
}

/// One operation on both kinds of integer.
template <class Operation>
void Register(const std::string& group, unsigned rightBits, Operation operation) {
  benchmark::RegisterBenchmark((group + "/compiler").c_str(), [=](benchmark::State& state) {
    Measure(state, PlainOperands(rightBits), operation);
  });
  benchmark::RegisterBenchmark((group + "/NxInt64").c_str(), [=](benchmark::State& state) {
    Measure(state, ClassOperands(rightBits), operation);
  });
}

}  // namespace

int main(int argc, char** argv) {
  Register("int64 add", 63, [](const auto& a, const auto& b, unsigned) { return a + b; });
  Register("int64 multiply", 31, [](const auto& a, const auto& b, unsigned) { return a * b; });
  Register("int64 divide by 31 bits", 31, [](const auto& a, const auto& b, unsigned) { return a / b; });
  Register("int64 divide by 63 bits", 63, [](const auto& a, const auto& b, unsigned) { return a / b; });
  Register("int64 remainder", 31, [](const auto& a, const auto& b, unsigned) { return a % b; });
  Register("int64 shift left", 31, [](const auto& a, const auto&, unsigned n) { return a << n; });
  Register("int64 shift right", 31, [](const auto& a, const auto&, unsigned n) { return a >> n; });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
