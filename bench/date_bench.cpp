// Day numbers to dates and back, of NxDate and of d_Date, beside the civil calendar of
// <chrono>, over 1024 days of the years 1600 to 2400 in random order; and the weekday.

#include <benchmark/benchmark.h>

#include <chrono>
#include <random>
#include <vector>

#include "d_date.h"
#include "nxcomp.h"

namespace {

constexpr std::size_t kDates = 1024;
constexpr long kUnixDay = 2440588;  // the day number of 1970-01-01

std::vector<long> DayNumbers() {
  std::mt19937 random(1582);
  std::uniform_int_distribution<long> day(2305448, 2597641);
  std::vector<long> days(kDates);
  for (long& d : days) d = day(random);
  return days;
}

/// Applies convert to every element, one at a time: a loop that the compiler turns into
/// vector instructions tells nothing of single conversions.
template <class From, class Convert>
void Measure(benchmark::State& state, const std::vector<From>& from, Convert convert) {
  for (auto _ : state)
    for (const From& value : from) {
      auto result = convert(value);
      benchmark::DoNotOptimize(result);
    }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * from.size()));
}

using Ymd = std::chrono::year_month_day;
using std::chrono::days;
using std::chrono::sys_days;

Ymd ChronoDate(long dayNumber) { return Ymd(sys_days(days(dayNumber - kUnixDay))); }

void FromDayNumberChrono(benchmark::State& state) { Measure(state, DayNumbers(), ChronoDate); }

void FromDayNumber(benchmark::State& state) {
  Measure(state, DayNumbers(), [](long d) { return NxDate(d); });
}

void ToDayNumberChrono(benchmark::State& state) {
  std::vector<Ymd> dates;
  for (long d : DayNumbers()) dates.push_back(ChronoDate(d));
  Measure(state, dates,
          [](const Ymd& d) { return static_cast<long>(sys_days(d).time_since_epoch().count()) + kUnixDay; });
}

std::vector<NxDate> Dates() {
  std::vector<NxDate> dates;
  for (long d : DayNumbers()) dates.push_back(NxDate(d));
  return dates;
}

std::vector<d_Date> StandardDates() {
  std::vector<d_Date> dates;
  for (const NxDate& d : Dates()) dates.push_back(d_Date(d));
  return dates;
}

void ToDayNumber(benchmark::State& state) {
  Measure(state, Dates(), [](const NxDate& d) { return d.dayabs(); });
}

void StandardFromDayNumber(benchmark::State& state) {
  Measure(state, DayNumbers(), [](long d) {
    d_Date date(0, 0, 0);
    date.setAbsDate(d - 1);
    return date;
  });
}

void StandardToDayNumber(benchmark::State& state) {
  Measure(state, StandardDates(), [](const d_Date& d) { return d.getAbsDate(); });
}

void StandardWeekday(benchmark::State& state) {
  Measure(state, StandardDates(), [](const d_Date& d) { return d.day_of_week(); });
}

void WeekdayChrono(benchmark::State& state) {
  std::vector<Ymd> dates;
  for (long d : DayNumbers()) dates.push_back(ChronoDate(d));
  Measure(state, dates, [](const Ymd& d) {
    return static_cast<int>(std::chrono::weekday(sys_days(d)).iso_encoding()) - 1;
  });
}

void Weekday(benchmark::State& state) {
  Measure(state, Dates(), [](const NxDate& d) { return d.DayOfTheDate(); });
}

BENCHMARK(FromDayNumberChrono)->Name("date from day number/chrono");
BENCHMARK(FromDayNumber)->Name("date from day number/NxDate");
BENCHMARK(StandardFromDayNumber)->Name("date from day number/d_Date");
BENCHMARK(ToDayNumberChrono)->Name("date to day number/chrono");
BENCHMARK(ToDayNumber)->Name("date to day number/NxDate");
BENCHMARK(StandardToDayNumber)->Name("date to day number/d_Date");
BENCHMARK(WeekdayChrono)->Name("weekday/chrono");
BENCHMARK(Weekday)->Name("weekday/NxDate");
BENCHMARK(StandardWeekday)->Name("weekday/d_Date");

}  // namespace

BENCHMARK_MAIN();
