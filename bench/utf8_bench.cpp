// UTF-8 to a string of code set 253 and back, beside ICU between buffers that it is
// given. Ours makes the string, so its allocation counts.

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "nx_utf_8.h"
#include "nxstring.h"

namespace {

constexpr unsigned long kBytes = 32000;

/// The start of the German word list, repeated when there is none.
std::string German() {
  std::ifstream file("/usr/share/dict/ngerman", std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  while (text.size() < kBytes) text += "Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich\n";
  // From the middle: names, few of which have umlauts, come first.
  text = text.substr((text.size() - kBytes) / 2);
  while ((text[0] & 0xC0) == 0x80) text.erase(0, 1);
  unsigned long end = kBytes;
  while ((text[end] & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

std::string Ascii() {
  std::string text = German();
  for (char& c : text)
    if (static_cast<signed char>(c) < 0) c = 'e';
  return text;
}

using Text = std::string (*)();

void DecodeIcu(benchmark::State& state, Text make) {
  const std::string text = make();
  std::vector<UChar> units(kBytes + 1);
  for (auto _ : state) {
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), kBytes, &length, text.data(), static_cast<int32_t>(text.size()), &error);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void DecodeOurs(benchmark::State& state, Text make) {
  const std::string text = make();
  NxString out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(NxMBS2NxString(text.data(), out, static_cast<long>(text.size())));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void EncodeIcu(benchmark::State& state, Text make) {
  const std::string text = make();
  NxString source;
  NxMBS2NxString(text.data(), source, static_cast<long>(text.size()));
  std::vector<char> bytes(kBytes + 1);
  const int32_t units = source.Len();
  for (auto _ : state) {
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(bytes.data(), kBytes + 1, &length, reinterpret_cast<const UChar*>(source.StrGet()), units,
                &error);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void EncodeOurs(benchmark::State& state, Text make) {
  const std::string text = make();
  NxString source;
  NxMBS2NxString(text.data(), source, static_cast<long>(text.size()));
  std::vector<char> bytes(kBytes + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(NxString2NxMBS(source, bytes.data(), kBytes + 1));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

}  // namespace

BENCHMARK_CAPTURE(DecodeIcu, ours, German)->Name("Utf8DecodeGerman/Icu");
BENCHMARK_CAPTURE(DecodeOurs, ours, German)->Name("Utf8DecodeGerman/Ours");
BENCHMARK_CAPTURE(DecodeIcu, ours, Ascii)->Name("Utf8DecodeAscii/Icu");
BENCHMARK_CAPTURE(DecodeOurs, ours, Ascii)->Name("Utf8DecodeAscii/Ours");
BENCHMARK_CAPTURE(EncodeIcu, ours, German)->Name("Utf8EncodeGerman/Icu");
BENCHMARK_CAPTURE(EncodeOurs, ours, German)->Name("Utf8EncodeGerman/Ours");
BENCHMARK_CAPTURE(EncodeIcu, ours, Ascii)->Name("Utf8EncodeAscii/Icu");
BENCHMARK_CAPTURE(EncodeOurs, ours, Ascii)->Name("Utf8EncodeAscii/Ours");

BENCHMARK_MAIN();
