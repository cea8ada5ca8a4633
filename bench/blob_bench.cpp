// Storing and loading 100 blobs of 64 KB beside memcpy of the same bytes, and finding 8
// bytes beside memmem.

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxblob.h"
#include "nxblobx.h"

namespace {

constexpr unsigned long kBlobs = 100;
constexpr long kBlobBytes = 65536;
constexpr long kMegabyte = 1 << 20;

/// Blobs, and the image that they are stored in.
struct Data {
  std::vector<NxBlob> blobs;
  std::vector<unsigned char> image;

  Data() : blobs(kBlobs) {
    const std::string bytes(kBlobBytes, 'x');
    for (NxBlob& b : blobs) b.SetTo(bytes.data(), kBlobBytes);
    image.resize(BlobSizeGet(blobs.data(), kFormatMemory, kFormatNative, kBlobs));
    BlobStore(image.data(), blobs.data(), kFormatNative, kBlobs);
  }
};

void Count(benchmark::State& state, int64_t bytes) { state.SetBytesProcessed(state.iterations() * bytes); }

void StorePeer(benchmark::State& state) {
  Data data;
  for (auto _ : state) {
    unsigned char* place = data.image.data();
    for (const NxBlob& b : data.blobs) {
      std::memcpy(place, b.Seek(0, kBlobBytes), kBlobBytes);
      place += kBlobBytes;
    }
    benchmark::ClobberMemory();
  }
  Count(state, kBlobs * kBlobBytes);
}

void Store(benchmark::State& state) {
  Data data;
  for (auto _ : state) {
    BlobStore(data.image.data(), data.blobs.data(), kFormatNative, kBlobs);
    benchmark::ClobberMemory();
  }
  Count(state, kBlobs * kBlobBytes);
}

void LoadPeer(benchmark::State& state) {
  Data data;
  for (auto _ : state) {
    const unsigned char* place = data.image.data();
    for (NxBlob& b : data.blobs) {
      std::memcpy(b.Seek(0, kBlobBytes), place, kBlobBytes);
      place += kBlobBytes;
    }
    benchmark::ClobberMemory();
  }
  Count(state, kBlobs * kBlobBytes);
}

void Load(benchmark::State& state) {
  Data data;
  for (auto _ : state) {
    BlobLoad(data.blobs.data(), data.image.data(), kFormatNative, kBlobs);
    benchmark::ClobberMemory();
  }
  Count(state, kBlobs * kBlobBytes);
}

/// Random bytes that end with the pattern.
struct Haystack {
  static constexpr char kPattern[] = "NxBlobs!";

  explicit Haystack(long size) : blob(size), pattern(kPattern, 8) {
    std::mt19937 random(1);
    auto* bytes = static_cast<unsigned char*>(blob.Seek(0, size));
    for (long i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(random());
    std::memcpy(bytes + size - 8, kPattern, 8);
  }

  NxBlob blob, pattern;
};

void SearchPeer(benchmark::State& state, long size) {
  Haystack hay(size);
  for (auto _ : state)
    benchmark::DoNotOptimize(memmem(hay.blob.Seek(0, size), size, hay.pattern.Seek(0, 8), 8));
  Count(state, size);
}

/// Behind the first 64 KB there is no place that the answer could tell.
void Search(benchmark::State& state, long size) {
  Haystack hay(size);
  for (auto _ : state) benchmark::DoNotOptimize(hay.blob.Search(hay.pattern));
  Count(state, size);
}

BENCHMARK(StorePeer)->Name("store 100 blobs/memcpy");
BENCHMARK(Store)->Name("store 100 blobs/BlobStore");
BENCHMARK(LoadPeer)->Name("load 100 blobs/memcpy");
BENCHMARK(Load)->Name("load 100 blobs/BlobLoad");
BENCHMARK_CAPTURE(SearchPeer, 64, kBlobBytes)->Name("search 64 KB/memmem");
BENCHMARK_CAPTURE(Search, 64, kBlobBytes)->Name("search 64 KB/NxBlob");
BENCHMARK_CAPTURE(SearchPeer, 1024, kMegabyte)->Name("search 1 MB/memmem");
BENCHMARK_CAPTURE(Search, 1024, kMegabyte)->Name("search 1 MB/NxBlob");

}  // namespace

BENCHMARK_MAIN();
