// The command that prints what a condition selects.

#include <algorithm>
#include <cstdio>

#include "commands/commands.h"
#include "commands/csvwriter.h"
#include "commands/stopwatch.h"
#include "data/utf8.h"
#include "query/query.h"
#include "store/store.h"

namespace nxtm {

namespace {

void PrintBound(const char* name, const std::string& bound) {
  std::printf("--   %s %s\n", name, bound.empty() ? "open" : Hex(bound).c_str());
}

void Explain(const Store& store, const QueryReport& report, double seconds) {
  for (const Access& access : report.considered) {
    const Column& column = store.GetSchema().Columns()[access.index.attribute];
    auto used = std::find_if(report.used.begin(), report.used.end(),
                             [&](const Access& other) { return other.IsFor(access.terms[0]); });
    std::printf("-- %s: %s index of %s, estimated fraction %.6f (%.0f records)%s\n",
                access.terms[0]->text.c_str(), access.index.hash ? "hash" : "ordered", column.name.c_str(),
                access.fraction, access.fraction * static_cast<double>(store.Count()),
                used == report.used.end() ? ", not used" : "");
    if (!access.index.hash) {
      PrintBound("sort keys from", access.lower);
      PrintBound("below         ", access.upper);
    }
    if (used != report.used.end()) std::printf("--   %lu entries read\n", used->entriesRead);
  }
  if (report.used.empty()) std::printf("-- no index helps: all records are read\n");
  std::printf("-- %lu of %lu records read, %lu found, %.3f ms\n", report.recordsRead, store.Count(),
              report.found, seconds * 1000);
}

}  // namespace

void Query(const std::string& storeFile, const std::string& condition, const QueryOptions& options) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  Condition parsed = Condition::Parse(condition, store->GetSchema());
  Stopwatch watch;
  CsvWriter writer(store->GetSchema());
  std::string output;
  unsigned long printed = 0;
  QueryReport report =
      RunQuery(*store, parsed, options.scan, [&](unsigned int, const std::vector<Field>& fields) {
        if (!options.count) output += writer.LineOf(fields);
        return options.count || ++printed != options.limit;
      });
  double seconds = watch.Seconds();
  if (options.explain) Explain(*store, report, seconds);
  std::fwrite(output.data(), 1, output.size(), stdout);
  if (options.count) std::printf("%lu\n", report.found);
}

}  // namespace nxtm
