// Values to text and back beside the C library and <charconv>: date-times under the ISO
// format and the long default one, 64-bit and 32-bit integers. The texts go into one
// NxString, as where rows are written.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "nxdatime.h"
#include "nxint64.h"
#include "nxstring.h"
#include "nxtypfmt.h"

namespace {

constexpr std::size_t kValues = 1024;
constexpr std::size_t kManyValues = 16384;  // whose lengths a processor does not learn to foresee
constexpr char kIso[] = "%Y-%m-%dT%H:%M:%S";
constexpr char kLong[] = "%a %e.%b %Y %I:%M:%S %p";

std::vector<NxDateTime> DateTimes() {
  std::mt19937 random(9);
  std::vector<NxDateTime> values;
  for (std::size_t i = 0; i < kValues; ++i)
    values.push_back(
        {NxDate(2440588 + static_cast<long>(random() % 20000)), NxTime(static_cast<long>(random() % 86400))});
  return values;
}

std::vector<std::tm> Calendars() {
  std::vector<std::tm> values;
  for (const NxDateTime& t : DateTimes()) {
    std::tm calendar{};
    calendar.tm_year = t.date.year - 1900;
    calendar.tm_mon = t.date.month - 1;
    calendar.tm_mday = t.date.day;
    calendar.tm_hour = t.time.hour;
    calendar.tm_min = t.time.minute;
    calendar.tm_sec = t.time.second;
    calendar.tm_wday = (const_cast<NxDateTime&>(t).date.DayOfTheDate() + 1) % 7;
    values.push_back(calendar);
  }
  return values;
}

/// Numbers of all magnitudes, most of them long.
template <class Int>
std::vector<Int> Numbers(std::size_t count = kValues) {
  std::mt19937_64 random(10);
  std::vector<Int> values;
  for (std::size_t i = 0; i < count; ++i)
    values.push_back(static_cast<Int>(static_cast<Int>(random()) >> random() % 24));
  return values;
}

/// Calls use(value) for one value after the other.
template <class T, class Use>
void Measure(benchmark::State& state, std::vector<T> values, Use use) {
  for (auto _ : state)
    for (T& value : values) use(value);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * values.size()));
}

/// Texts that are appended need a string that is emptied before.
template <class T>
void Print(benchmark::State& state, std::vector<T> values, NxSlot::Print* slot, const char* format) {
  const bool appends = slot != LongPrintToNxString;
  NxString out;
  Measure(state, std::move(values), [&](T& value) {
    if (appends) out.MakeString(nullptr, 1);
    slot(out, &value, format, 1);
    benchmark::DoNotOptimize(out._pBuffer);
  });
}

/// Scans the texts of values.
template <class T>
void Scan(benchmark::State& state, std::vector<T> values, NxSlot::Print* print, NxSlot::Scan* slot,
          const char* format) {
  std::vector<NxString> texts(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) print(texts[i], &values[i], format, 1);
  T value(values.front());
  Measure(state, std::move(texts), [&](NxString& text) {
    slot(&value, text, format, 1);
    benchmark::DoNotOptimize(value);
  });
}

void PrintCalendar(benchmark::State& state, const char* format) {
  char text[64];
  Measure(state, Calendars(), [&](std::tm& calendar) {
    std::strftime(text, sizeof text, format, &calendar);
    benchmark::DoNotOptimize(text);
  });
}

void ScanCalendar(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const std::tm& calendar : Calendars()) {
    char text[64];
    std::strftime(text, sizeof text, kIso, &calendar);
    texts.push_back(text);
  }
  std::tm calendar{};
  Measure(state, std::move(texts),
          [&](std::string& text) { benchmark::DoNotOptimize(strptime(text.c_str(), kIso, &calendar)); });
}

template <class Int>
void PrintNumber(benchmark::State& state, std::size_t count) {
  char text[32];
  Measure(state, Numbers<Int>(count), [&](Int& value) {
    benchmark::DoNotOptimize(std::to_chars(text, text + sizeof text, value).ptr);
    benchmark::DoNotOptimize(text);
  });
}

template <class Int>
void ScanNumber(benchmark::State& state) {
  std::vector<std::string> texts;
  for (Int value : Numbers<Int>()) texts.push_back(std::to_string(value));
  Int number = 0;
  Measure(state, std::move(texts), [&](std::string& text) {
    std::from_chars(text.data(), text.data() + text.size(), number);
    benchmark::DoNotOptimize(number);
  });
}

std::vector<NxInt64> Wide(std::size_t count = kValues) {
  std::vector<NxInt64> values;
  for (long long v : Numbers<long long>(count)) values.push_back(NxInt64::FromWide(v));
  return values;
}

template <class Function>
void Register(const char* name, Function function) {
  benchmark::RegisterBenchmark(name, function);
}

}  // namespace

int main(int argc, char** argv) {
  using State = benchmark::State;
  Register("date-time to ISO text/strftime", [](State& s) { PrintCalendar(s, kIso); });
  Register("date-time to ISO text/NxDateTime",
           [](State& s) { Print(s, DateTimes(), DaTimePrintToNxString, kIso); });
  Register("date-time to long text/strftime", [](State& s) { PrintCalendar(s, kLong); });
  Register("date-time to long text/NxDateTime",
           [](State& s) { Print(s, DateTimes(), DaTimePrintToNxString, kLong); });
  Register("date-time from ISO text/strptime", ScanCalendar);
  Register("date-time from ISO text/NxDateTime",
           [](State& s) { Scan(s, DateTimes(), DaTimePrintToNxString, DaTimeScanFromNxString, kIso); });
  for (std::size_t count : {kValues, kManyValues}) {
    const std::string group = "int64 to text, " + std::to_string(count) + " values/";
    Register((group + "to_chars").c_str(), [=](State& s) { PrintNumber<long long>(s, count); });
    Register((group + "NxInt64").c_str(),
             [=](State& s) { Print(s, Wide(count), Int64PrintToNxString, "%S"); });
  }
  Register("int64 from text/from_chars", ScanNumber<long long>);
  Register("int64 from text/NxInt64",
           [](State& s) { Scan(s, Wide(), Int64PrintToNxString, Int64ScanFromNxString, "%S"); });
  Register("long to text/to_chars", [](State& s) { PrintNumber<long>(s, kValues); });
  Register("long to text/slot", [](State& s) { Print(s, Numbers<long>(), LongPrintToNxString, "%ld"); });
  Register("long from text/from_chars", ScanNumber<long>);
  Register("long from text/slot",
           [](State& s) { Scan(s, Numbers<long>(), LongPrintToNxString, LongScanFromNxString, "%ld"); });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
