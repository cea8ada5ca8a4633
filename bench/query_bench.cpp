// The workbench on the German word list: import, index, a query through the index
// beside the same by full scan, and how near the planner's estimates come to the truth.
// Every line names what is to be reached.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "nxtmdata.h"
#include "query/query.h"
#include "store/store.h"

namespace {

using nxtm::Condition;
using nxtm::Image;
using nxtm::Store;

constexpr int kTerms = 500;  // of each relation
const char kList[] = "/usr/share/dict/ngerman";

double Seconds(std::chrono::steady_clock::time_point from) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - from).count();
}

/// A directory that lives as long as the object.
class Directory {
 public:
  Directory() : path_(std::filesystem::temp_directory_path() / ("nxquery" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
  }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory() { std::filesystem::remove_all(path_); }
  std::string File(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

void Write(const std::string& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::vector<std::string> ReadWords() {
  std::vector<std::string> words;
  std::ifstream in(kList);
  for (std::string word; std::getline(in, word);) words.push_back(word);
  if (words.empty()) std::exit((std::fprintf(stderr, "The package wngerman is missing.\n"), 2));
  return words;
}

// ---------------------------------------------------------------------------
// Speed

void MeasureImport(const Directory& directory) {
  Write(directory.File("words.schema"), "word NxString language=german\n");
  const std::string store = directory.File("words");
  const auto start = std::chrono::steady_clock::now();
  nxtm::Import(directory.File("words.schema"), kList, store);
  const double seconds = Seconds(start);
  const double size = static_cast<double>(std::filesystem::file_size(store));
  std::printf("  import in %.2f s (at most 2), store %.2f times the text (at most 3)\n", seconds,
              size / static_cast<double>(std::filesystem::file_size(kList)));
  nxtm::MakeIndex(store, "word", false);
}

/// Best of several runs, in seconds.
double QuerySeconds(Store& store, const Condition& condition, bool scan, int runs) {
  double best = 1e9;
  for (int i = 0; i < runs; ++i) {
    const auto start = std::chrono::steady_clock::now();
    nxtm::RunQuery(store, condition, scan,
                   [](unsigned int, const std::vector<nxtm::Field>&) { return true; });
    best = std::min(best, Seconds(start));
  }
  return best;
}

void MeasureQuery(const Directory& directory) {
  const auto store = Store::Open(directory.File("words"), Store::Mode::kRead);
  const Condition condition = Condition::Parse("word = \"Haus*\"", store->GetSchema());
  const double scan = QuerySeconds(*store, condition, true, 5);
  const double index = QuerySeconds(*store, condition, false, 50);
  std::printf("word = \"Haus*\": scan %.1f ms, index %.3f ms: %.0f times as fast (at least 200)\n",
              scan * 1e3, index * 1e3, scan / index);
}

// ---------------------------------------------------------------------------
// Estimates

/// One indexed attribute and all records, sorted by its values.
class Attribute {
 public:
  Attribute(Store& store, const std::string& name)
      : store_(store), name_(name), place_(store.GetSchema().Find(name)), reader_(store.GetSchema()) {
    store.ForEach([&](unsigned int, std::string_view record) {
      records_.emplace_back(record);
      return true;
    });
    std::sort(records_.begin(), records_.end(), [this](const std::string& a, const std::string& b) {
      Image x = Value(a), y = Value(b);
      int error;
      const char type = store_.GetSchema().Columns()[place_].type;
      return nxtm::Manager().Cmp(type, x.size(), &x[0], y.size(), &y[0], kWildcardsOff, 1, 1, error) < 0;
    });
  }

  /// The mean absolute difference of estimated and true fraction of random terms.
  double MeanError(const std::string& relation, const std::vector<std::string>& texts, std::mt19937& random) {
    double sum = 0;
    for (int i = 0; i < kTerms; ++i) {
      const std::string text = texts[random() % texts.size()];
      const Condition condition =
          Condition::Parse(name_ + " " + relation + " \"" + text + "\" literally", store_.GetSchema());
      const nxtm::Access access = nxtm::BoundTerm(store_, condition.term, *store_.FindIndex(place_, false));
      sum += std::fabs(access.fraction - TrueFraction(condition, relation));
    }
    return sum / kTerms;
  }

 private:
  /// The values below a term come first, then those equal to it.
  double TrueFraction(const Condition& condition, const std::string& relation) const {
    const auto first = [&](unsigned short relations) {
      Condition ranged = condition;
      ranged.term.relation = relations;
      const auto end = std::partition_point(records_.begin(), records_.end(), [&](const std::string& record) {
        reader_.Begin(record);
        return ranged.Matches(store_.GetSchema(), reader_);
      });
      return static_cast<double>(end - records_.begin()) / static_cast<double>(records_.size());
    };
    const double below = first(kRelationLess), upTo = first(kRelationLess | kRelationEqual);
    if (relation == "<") return below;
    if (relation == "<=") return upTo;
    if (relation == ">") return 1 - upTo;
    if (relation == ">=") return 1 - below;
    if (relation == "=") return upTo - below;
    return 1 - (upTo - below);
  }
  Image Value(const std::string& record) const {
    return Image(nxtm::FieldOf(store_.GetSchema(), record, place_).image);
  }

  Store& store_;
  std::string name_;
  unsigned long place_;
  mutable nxtm::RecordReader reader_;
  std::vector<std::string> records_;
};

void MeasureEstimates(const Directory& directory, const std::vector<std::string>& words) {
  std::mt19937 random(29);
  std::string rows;
  std::vector<std::string> longs, doubles, dates;
  for (const std::string& word : words) {
    longs.push_back(std::to_string(static_cast<long>(random())));
    doubles.push_back(std::to_string(random() / 4096.0));  // estimates count in units of 1
    char date[16];
    const unsigned year = 1900 + random() % 120, month = 1 + random() % 12, day = 1 + random() % 28;
    std::snprintf(date, sizeof date, "%04u-%02u-%02u", year, month, day);
    dates.push_back(date);
    rows += word + "," + longs.back() + "," + doubles.back() + "," + date + "\n";
  }
  Write(directory.File("schema"), "word NxString language=german\nnumber long\nreal double\nday NxDate\n");
  Write(directory.File("rows"), rows);
  const std::string file = directory.File("estimates");
  nxtm::Import(directory.File("schema"), directory.File("rows"), file);
  for (const char* name : {"word", "number", "real", "day"}) nxtm::MakeIndex(file, name, false);

  const auto store = Store::Open(file, Store::Mode::kRead);
  std::printf("mean absolute difference of estimated and true fraction, %d terms each\n", kTerms);
  std::printf("(ranges at most 0.1 on words, 0.02 on numbers)\n%-8s", "");
  const char* const relations[] = {"=", "!=", "<", "<=", ">", ">="};
  for (const char* relation : relations) std::printf("%10s", relation);
  const auto row = [&](const char* name, const std::vector<std::string>& texts) {
    Attribute attribute(*store, name);
    std::printf("\n%-8s", name);
    for (const char* relation : relations)
      std::printf("%10.5f", attribute.MeanError(relation, texts, random));
  };
  row("word", words);
  row("number", longs);
  row("real", doubles);
  row("day", dates);
  std::printf("\n");
}

}  // namespace

int main() {
  ___NxTypemgrContext(1);
  {
    const Directory directory;
    MeasureImport(directory);
    MeasureQuery(directory);
    MeasureEstimates(directory, ReadWords());
  }
  ___NxTypemgrContext(0);
}
