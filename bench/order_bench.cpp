// Walking a text by collation order values, beside ICU's collation element iterator
// over the same text. Rates are in characters; allocations of ours are counted.

#include <benchmark/benchmark.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "nx_utf_8.h"
#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxstritr.h"

namespace {

unsigned long allocations = 0;

/// 30,000 characters of the German word list in a code set.
NxString German(unsigned char codeSet) {
  std::ifstream file("/usr/share/dict/ngerman", std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  while (text.size() < 40000) text += "Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich\n";
  unsigned long start = text.size() / 2;
  while ((text[start] & 0xC0) == 0x80) ++start;
  NxString s(codeSet, kLanguageGerman);
  NxMBS2NxString(text.data() + start, s, 31000);
  s = s.Left(30000);
  s.MapToCodeSet(codeSet);
  return s;
}

void WalkIcu(benchmark::State& state) {
  UErrorCode error = U_ZERO_ERROR;
  UCollator* collator = ucol_open("de", &error);
  const NxString text = German(kCodeSetUnicode);
  const UChar* units = reinterpret_cast<const UChar*>(text.StrGet());
  UCollationElements* elements = ucol_openElements(collator, units, text.Len(), &error);
  for (auto _ : state) {
    ucol_reset(elements);
    unsigned sum = 0;
    for (int32_t order; (order = ucol_next(elements, &error)) != UCOL_NULLORDER;) sum += order;
    benchmark::DoNotOptimize(sum);
  }
  ucol_closeElements(elements);
  ucol_close(collator);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * text.Len());
}

void WalkOurs(benchmark::State& state, unsigned char codeSet, unsigned char language, unsigned short update) {
  const NxString text = German(codeSet);
  const unsigned long before = allocations;
  for (auto _ : state) {
    NxStringIterator it(text.StrGet(), codeSet, language, kFormatNative);
    unsigned sum = 0;
    while (unsigned short order = it.GetNextOrder(update)) sum += order;
    benchmark::DoNotOptimize(sum);
  }
  if (allocations != before) state.SkipWithError("allocates");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * text.Len());
}

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  std::abort();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

BENCHMARK(WalkIcu)->Name("OrderWalk/IcuElements");
BENCHMARK_CAPTURE(WalkOurs, latin1, kCodeSetLatin1, kLanguageGerman, 0)->Name("OrderWalk/Latin1");
BENCHMARK_CAPTURE(WalkOurs, latin1, kCodeSetLatin1, kLanguageGerman, 1)->Name("OrderWalk/Latin1Update");
BENCHMARK_CAPTURE(WalkOurs, latin1, kCodeSetLatin1, kLanguageDanish, 1)->Name("OrderWalk/Latin1Danish");
BENCHMARK_CAPTURE(WalkOurs, unicode, kCodeSetUnicode, kLanguageGerman, 1)->Name("OrderWalk/Unicode");

BENCHMARK_MAIN();
