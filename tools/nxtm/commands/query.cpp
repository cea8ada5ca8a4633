// The command that prints what a condition selects.

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>

#include "commands/commands.h"
#include "commands/csvwriter.h"
#include "commands/output.h"
#include "commands/stopwatch.h"
#include "data/csvfile.h"
#include "data/failure.h"
#include "nxsortkey.h"
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
    const Access& shown = used == report.used.end() ? access : *used;  // narrowed by other terms
    if (!shown.index.hash && !(shown.lower.empty() && shown.upper.empty())) {
      PrintBound("sort keys from", shown.lower);
      PrintBound("below         ", shown.upper);
    }
    if (used != report.used.end()) std::printf("--   %lu entries read\n", used->entriesRead);
  }
  if (report.used.empty()) std::printf("-- no index helps: all records are read\n");
  std::printf("-- %lu of %lu records read, %lu found, %.3f ms\n", report.recordsRead, store.Count(),
              report.found, seconds * 1000);
  const unsigned long roundTrips = store.Engine().RoundTrips();
  if (roundTrips != 0) std::printf("-- %lu round trips\n", roundTrips);
}

// ---------------------------------------------------------------------------
// What is asked for

std::vector<std::string> SplitList(const std::string& list) {
  std::vector<std::string> items;
  std::istringstream text(list);
  for (std::string item; std::getline(text, item, ',');) {
    item.erase(0, item.find_first_not_of(' '));
    items.push_back(item.erase(item.find_last_not_of(' ') + 1));
  }
  return items;
}

std::vector<unsigned long> FindColumns(const Schema& schema, const std::string& list) {
  std::vector<unsigned long> columns;
  for (const std::string& name : SplitList(list)) columns.push_back(schema.Find(name));
  return columns.empty() ? AllColumns(schema) : columns;
}

/// The key of an attribute in its type's order: null before all others.
std::string OrderKeyOf(const Schema& schema, unsigned long attribute, const Field& field, bool descending) {
  if (field.isNull) return std::string(1, descending ? '\xFF' : '\0');
  const unsigned short options = descending ? kSortKeyDescending : 0;
  const char type = schema.Columns()[attribute].type;
  const auto write = [&](void* key, unsigned long room) {
    return NxSortKey(type, field.image.data(), kFormatNative, field.image.size(), options, key, room);
  };
  std::string key(1 + write(nullptr, 0), descending ? '\xFE' : '\1');
  write(key.data() + 1, key.size() - 1);
  return key;
}

/// Refuses an attribute whose type has no order.
unsigned long FindOrdered(const Schema& schema, const std::string& name) {
  const unsigned long attribute = schema.Find(name);
  if (FormOf(schema.Columns()[attribute].type).kind == Kind::kBlob)
    throw Failure("'" + name + "': blobs have no order");
  return attribute;
}

/// Keeps records to print them in the order of some of their attributes.
class Sorter {
 public:
  /// Of the first `limit` records, 0 meaning all of them.
  Sorter(const Schema& schema, const std::string& list, unsigned long limit)
      : schema_(schema), limit_(limit) {
    for (const std::string& item : SplitList(list)) {
      const unsigned long blank = item.find(' ');
      const std::string direction = blank == item.npos ? "" : item.substr(item.find_last_of(' ') + 1);
      if (!direction.empty() && direction != "desc" && direction != "asc")
        throw Failure("'" + item + "': expected 'asc' or 'desc' behind the name", kUsageStatus);
      order_.emplace_back(FindOrdered(schema, item.substr(0, blank)), direction == "desc");
    }
  }

  bool Sorts() const { return !order_.empty(); }

  void Take(const std::vector<Field>& fields) {
    std::string key;
    for (const auto& [attribute, descending] : order_)
      key += OrderKeyOf(schema_, attribute, fields[attribute], descending);
    // Attributes lie one behind the other, and null ones may have no image.
    std::string record;
    for (unsigned long i = 0; i < fields.size(); ++i) {
      const Column& column = schema_.Columns()[i];
      if (fields[i].isNull) {
        Record::AppendNull(record, column);
      } else {
        Record::AppendHead(record, column);
        record += fields[i].image;
      }
    }
    records_.emplace_back(std::move(key), std::move(record));
    constexpr unsigned long kSpare = 1000;
    if (limit_ != 0 && records_.size() / 2 > limit_ + kSpare) Sort();
  }

  void Print(RowPrinter& printer) {
    Sort();
    RecordReader reader(schema_);
    for (const auto& record : records_) {
      reader.Begin(record.second);
      printer.Print(reader.All());
    }
  }

 private:
  void Sort() {
    std::stable_sort(records_.begin(), records_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    if (limit_ != 0 && limit_ < records_.size()) records_.resize(limit_);
  }

  const Schema& schema_;
  unsigned long limit_;
  std::vector<std::pair<unsigned long, bool>> order_;  // attributes, and whether they descend
  std::vector<std::pair<std::string, std::string>> records_;
};

/// The smallest or largest value of an attribute.
class Extreme {
 public:
  Extreme(const Schema& schema, const std::string& name, bool largest)
      : schema_(schema), attribute_(FindOrdered(schema, name)), largest_(largest) {}

  void Take(const std::vector<Field>& fields) {
    if (fields[attribute_].isNull) return;
    std::string key = OrderKeyOf(schema_, attribute_, fields[attribute_], largest_);
    if (!key_.empty() && key_ <= key) return;
    key_ = std::move(key);
    image_ = fields[attribute_].image;
  }
  std::string Name() const { return (largest_ ? "max(" : "min(") + schema_.Columns()[attribute_].name + ')'; }
  /// As a field of CSV; nothing where all were null.
  std::string Text() const {
    const Column& column = schema_.Columns()[attribute_];
    return key_.empty() ? "" : CsvText(Converter(column.type, column.style).ToText(image_).text, false);
  }

 private:
  const Schema& schema_;
  unsigned long attribute_;
  bool largest_;
  std::string key_;
  Image image_;
};

/// One row of figures of all records found: their number, and extremes.
class Figures {
 public:
  Figures(const Schema& schema, const QueryOptions& options) : counts_(options.count) {
    for (const std::string& name : SplitList(options.min)) extremes_.emplace_back(schema, name, false);
    for (const std::string& name : SplitList(options.max)) extremes_.emplace_back(schema, name, true);
  }

  bool AreWanted() const { return counts_ || !extremes_.empty(); }
  void Take(const std::vector<Field>& fields) {
    for (Extreme& extreme : extremes_) extreme.Take(fields);
  }
  void Print(unsigned long found, bool header) const {
    std::string names = counts_ ? "count," : "", values = counts_ ? std::to_string(found) + ',' : "";
    for (const Extreme& extreme : extremes_) {
      names += extreme.Name() + ',';
      values += extreme.Text() + ',';
    }
    names.back() = values.back() = '\n';
    if (header) std::fputs(names.c_str(), stdout);
    std::fputs(values.c_str(), stdout);
  }

 private:
  bool counts_;
  std::vector<Extreme> extremes_;
};

}  // namespace

void Query(const std::string& storeFile, const std::string& condition, const QueryOptions& options) {
  auto store = Store::Open(storeFile, Store::Mode::kRead);
  const Schema& schema = store->GetSchema();
  const Condition parsed = Condition::Parse(condition, schema);
  const std::vector<unsigned long> columns = FindColumns(schema, options.select);
  const RowForm form = FindRowForm(options.output);
  Sorter sorter(schema, options.orderBy, options.limit);
  Figures figures(schema, options);
  if (figures.AreWanted() &&
      (form != RowForm::kCsv || sorter.Sorts() || !options.select.empty() || options.limit != 0))
    throw Failure("--count, --min and --max print one row of CSV and go with no other form of records",
                  kUsageStatus);
  std::unique_ptr<RowPrinter> printer;
  if (!figures.AreWanted()) printer = RowPrinter::Make(form, schema, columns, options.header);
  Stopwatch watch;
  unsigned long printed = 0;
  const QueryReport report =
      RunQuery(*store, parsed, options.scan, [&](unsigned int, const std::vector<Field>& fields) {
        if (!printer) return figures.Take(fields), true;
        if (sorter.Sorts()) return sorter.Take(fields), true;
        printer->Print(fields);
        return ++printed != options.limit;
      });
  const double seconds = watch.Seconds();
  if (printer) {
    sorter.Print(*printer);
    printer->End();
  } else {
    figures.Print(report.found, options.header);
  }
  if (options.explain) Explain(*store, report, seconds);
}

}  // namespace nxtm
