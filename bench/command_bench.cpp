// Commands of the workbench over 1,000,000 rows, as processes of their own: import of four
// columns (text, long, double, date), an ordered index of the words, scans. Times are those
// of the clock.
//
// The peer is a store without types, in this process: lines of the file as LMDB's values
// under the row's number; an index of the words in the order of their bytes; a scan by
// strtol or fnmatch over the bytes. It, too, ends with what it wrote on the disk.

#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <lmdb.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "samplestore.h"

namespace {

using State = benchmark::State;
namespace fs = std::filesystem;

constexpr unsigned kRows = 1'000'000;
constexpr long kAbove = 2'000'000'000;  // a number that about 3 of 100 rows are above

// ---------------------------------------------------------------------------
// Files

/// A directory with the rows, which lives as long as the process.
class Files {
 public:
  Files() : path_(fs::temp_directory_path() / ("nxcommand" + std::to_string(getpid()))) {
    fs::create_directory(path_);
    WriteSchema(Name("schema"));
    WriteRows();
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { fs::remove_all(path_); }

  std::string Name(const char* file) const { return path_ / file; }
  void Remove(const char* file) const {
    fs::remove(path_ / file);
    fs::remove(path_ / (std::string(file) + "-lock"));
  }

 private:
  void WriteRows() const {
    std::mt19937 random(5);
    ::WriteRows(Name("rows"), kRows, [&](FILE* out, const std::vector<std::string>& words, unsigned) {
      const std::string& word = words[random() % words.size()];
      const long number = static_cast<long>(random());
      const double real = random() / 4096.0;
      const unsigned year = 1900 + random() % 120, month = 1 + random() % 12, day = 1 + random() % 28;
      std::fprintf(out, "%s,%ld,%.6f,%04u-%02u-%02u\n", word.c_str(), number, real, year, month, day);
    });
  }

  fs::path path_;
};

const Files& TheFiles() {
  static const Files files;
  return files;
}

// ---------------------------------------------------------------------------
// The workbench

void Import(const char* store) {
  Run("import " + TheFiles().Name("schema") + " " + TheFiles().Name("rows") + " " + TheFiles().Name(store));
}

/// The store that index and scans work on.
const std::string& Sample() {
  static const std::string store = [] {
    Import("sample");
    return TheFiles().Name("sample");
  }();
  return store;
}

void MeasureImport(State& state) {
  TheFiles();
  for (auto _ : state) {
    state.PauseTiming();
    TheFiles().Remove("imported");
    state.ResumeTiming();
    Import("imported");
  }
}

void MeasureIndex(State& state) {
  Sample();
  for (auto _ : state) {
    Run("index " + Sample() + " word");
    state.PauseTiming();
    Run("drop " + Sample() + " word");
    state.ResumeTiming();
  }
}

void MeasureScan(State& state, const std::string& condition) {
  Sample();
  for (auto _ : state) Run("query " + Sample() + " '" + condition + "' --scan --count");
}

// ---------------------------------------------------------------------------
// The peer

void Check(int code) {
  if (code != 0) Stop(std::string("LMDB: ") + mdb_strerror(code));
}

MDB_val Val(std::string_view bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }
std::string_view View(MDB_val v) { return {static_cast<const char*>(v.mv_data), v.mv_size}; }
std::string_view Word(std::string_view row) { return row.substr(0, row.find(',')); }

/// A file of LMDB with rows by number and words in order.
class Plain {
 public:
  explicit Plain(const char* file) {
    Check(mdb_env_create(&env_));
    Check(mdb_env_set_mapsize(env_, 512UL << 20));
    Check(mdb_env_set_maxdbs(env_, 2));
    Check(mdb_env_open(env_, TheFiles().Name(file).c_str(), MDB_NOSUBDIR | MDB_NOLOCK, 0600));
  }
  Plain(const Plain&) = delete;
  Plain& operator=(const Plain&) = delete;
  ~Plain() { mdb_env_close(env_); }

  void Import(const std::string& file) const {
    std::ifstream in(file, std::ios::binary);
    std::string text(fs::file_size(file), '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    MDB_txn* txn;
    Check(mdb_txn_begin(env_, nullptr, 0, &txn));
    const MDB_dbi table = Table(txn, "rows", MDB_INTEGERKEY);
    unsigned number = 0;
    for (std::size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1, ++number) {
      MDB_val key = {sizeof number, &number}, row = Val(std::string_view(text).substr(at, end - at));
      Check(mdb_put(txn, table, &key, &row, MDB_APPEND));
    }
    Check(mdb_txn_commit(txn));
  }

  /// Calls use(number, row) for every row.
  template <class Use>
  void ForEach(Use use) const {
    MDB_txn* txn;
    MDB_cursor* cursor;
    Check(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn));
    Check(mdb_cursor_open(txn, Table(txn, "rows", MDB_INTEGERKEY), &cursor));
    for (MDB_val key, row; mdb_cursor_get(cursor, &key, &row, MDB_NEXT) == 0;)
      use(*static_cast<unsigned*>(key.mv_data), View(row));
    mdb_cursor_close(cursor);
    mdb_txn_abort(txn);
  }

  void Index() const {
    std::vector<std::pair<std::string, unsigned>> entries;
    entries.reserve(kRows);
    ForEach([&](unsigned number, std::string_view row) { entries.emplace_back(Word(row), number); });
    std::sort(entries.begin(), entries.end());
    MDB_txn* txn;
    MDB_cursor* cursor;
    Check(mdb_txn_begin(env_, nullptr, 0, &txn));
    Check(mdb_cursor_open(txn, Table(txn, "words", kWordsFlags), &cursor));
    for (auto& [word, number] : entries) {
      MDB_val key = Val(word), data = {sizeof number, &number};
      Check(mdb_cursor_put(cursor, &key, &data, MDB_APPENDDUP));
    }
    mdb_cursor_close(cursor);
    Check(mdb_txn_commit(txn));
  }

  void DropIndex() const {
    MDB_txn* txn;
    Check(mdb_txn_begin(env_, nullptr, 0, &txn));
    Check(mdb_drop(txn, Table(txn, "words", kWordsFlags), 1));
    Check(mdb_txn_commit(txn));
  }

 private:
  static constexpr unsigned kWordsFlags = MDB_DUPSORT | MDB_DUPFIXED | MDB_INTEGERDUP;
  static MDB_dbi Table(MDB_txn* txn, const char* name, unsigned flags) {
    MDB_dbi table;
    const int code = mdb_dbi_open(txn, name, flags, &table);
    Check(code == MDB_NOTFOUND || code == EACCES ? mdb_dbi_open(txn, name, flags | MDB_CREATE, &table)
                                                 : code);
    return table;
  }

  MDB_env* env_ = nullptr;
};

const Plain& PlainSample() {
  static const Plain plain("plainSample");
  static const bool filled = (plain.Import(TheFiles().Name("rows")), true);
  benchmark::DoNotOptimize(filled);
  return plain;
}

void MeasurePlainImport(State& state) {
  TheFiles();
  for (auto _ : state) {
    state.PauseTiming();
    TheFiles().Remove("plain");
    state.ResumeTiming();
    Plain("plain").Import(TheFiles().Name("rows"));
  }
}

void MeasurePlainIndex(State& state) {
  PlainSample();
  for (auto _ : state) {
    PlainSample().Index();
    state.PauseTiming();
    PlainSample().DropIndex();
    state.ResumeTiming();
  }
}

template <class Selects>
void MeasurePlainScan(State& state, Selects selects) {
  PlainSample();
  for (auto _ : state) {
    unsigned count = 0;
    PlainSample().ForEach([&](unsigned, std::string_view row) { count += selects(row); });
    if (count == 0) state.SkipWithError("nothing found");
  }
}

bool IsAbove(std::string_view row) {
  return std::strtol(row.data() + Word(row).size() + 1, nullptr, 10) > kAbove;
}

bool FitsPattern(std::string_view row) {
  char word[256];
  const std::string_view found = Word(row).substr(0, sizeof word - 1);
  word[found.copy(word, found.size())] = 0;
  return fnmatch("*sch*en", word, 0) == 0;
}

template <class Call>
void Add(const char* name, Call call) {
  benchmark::RegisterBenchmark(name, call)->Unit(benchmark::kMillisecond)->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Add("import/untyped", MeasurePlainImport);
  Add("import/nxtm", MeasureImport);
  Add("ordered index/untyped", MeasurePlainIndex);
  Add("ordered index/nxtm", MeasureIndex);
  Add("scan by number/untyped", [](State& s) { MeasurePlainScan(s, IsAbove); });
  Add("scan by number/nxtm", [](State& s) { MeasureScan(s, "number > " + std::to_string(kAbove)); });
  Add("scan by pattern/untyped", [](State& s) { MeasurePlainScan(s, FitsPattern); });
  Add("scan by pattern/nxtm", [](State& s) { MeasureScan(s, "word = \"*sch*en\""); });
  benchmark::RunSpecifiedBenchmarks();
}
