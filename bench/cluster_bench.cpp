// A store on three nodes on the loopback of this machine: import of 100,000 rows of four columns
// into a store with one index, one value and about 1,000 rows through an index; and the reading
// of an index and its records through the interface under the store beside LMDB's own calls.
//
// The peers put and get the same bytes without a store: entries in plain batches, ranges and
// keys in transactions, as many requests in flight. Times are those of the clock.

#include <benchmark/benchmark.h>
#include <lmdb.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "query/query.h"
#include "samplestore.h"
#include "store/etcdclient.h"
#include "store/store.h"

namespace {

using benchmark::State;
using nxtm::EtcdClient;
using nxtm::KeyValue;
using nxtm::Store;
namespace fs = std::filesystem;
using Entries = std::vector<std::pair<std::string, std::string>>;

constexpr unsigned kRows = 100'000;
// The tables of a store that has one index, of the numbers, or several of which it is the first.
constexpr KeyValue::Table kRecords = 0, kNumbers = 1;

std::string Shell(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string output;
  for (int c; (c = std::fgetc(pipe.get())) != EOF;) output += static_cast<char>(c);
  while (!output.empty() && output.back() == '\n') output.pop_back();
  return output;
}

/// A folder with the rows and the cluster, which lives as long as the process.
class Site {
 public:
  Site() : path_(fs::temp_directory_path() / ("nxcluster" + std::to_string(getpid()))) {
    fs::create_directory(path_);
    WriteSchema(File("schema"));
    WriteRows("none", 1);
    WriteRows("rows", kRows);
    cluster_ = Shell(NX_SOURCE_DIR "/scripts/cluster start " + File("cluster"));
    if (cluster_.compare(0, 7, "etcd://") != 0) Stop("The cluster does not start.");
  }
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;
  ~Site() {
    Shell(NX_SOURCE_DIR "/scripts/cluster stop " + File("cluster"));
    fs::remove_all(path_);
  }
  std::string File(const std::string& name) const { return path_ / name; }
  std::string Remote(const std::string& name) const { return cluster_ + name; }
  std::string NumberOfTheFirstRow() const {
    std::string word, number;
    std::ifstream rows(File("rows"));
    return std::getline(std::getline(rows, word, ','), number, ',') ? number : "";
  }
  /// The node that plain requests go to.
  std::vector<std::string> Nodes() const {
    const std::string nodes = cluster_.substr(7);
    return {nodes.substr(0, nodes.find(','))};
  }

 private:
  /// Days come in order, numbers do not.
  void WriteRows(const char* file, unsigned count) const {
    std::mt19937 random(5);
    ::WriteRows(File(file), count, [&](FILE* out, const std::vector<std::string>& words, unsigned i) {
      std::fprintf(out, "%s,%u,%.6f,%04u-%02u-%02u\n", words[random() % words.size()].c_str(),
                   static_cast<unsigned>(random() % 1'000'000), random() / 4096.0, 1900 + i / 1000,
                   1 + i / 84 % 12, 1 + i / 3 % 28);
    });
  }

  fs::path path_;
  std::string cluster_;
};

const Site& TheSite() {
  static const Site site;
  return site;
}

// ---------------------------------------------------------------------------
// The store

void Import(const std::string& store, const char* rows) {
  Run("import " + TheSite().File("schema") + " " + TheSite().File(rows) + " " + store);
}
/// A store of one row with an index of the numbers, into which rows are imported.
void Begin(const std::string& store) {
  Import(store, "none");
  Run("index " + store + " number");
}

void MeasureImport(State& state) {
  TheSite();
  static int count = 0;
  for (auto _ : state) {
    const std::string store = TheSite().Remote("imported" + std::to_string(++count));
    state.PauseTiming();
    Begin(store);
    state.ResumeTiming();
    Import(store, "rows");
  }
  state.counters["rows a second"] = benchmark::Counter(kRows, benchmark::Counter::kIsIterationInvariantRate);
}

/// The store with indexes that is read.
std::string Sample(bool remote) {
  static std::string made[2];
  std::string& store = made[remote];
  if (store.empty()) {
    store = remote ? TheSite().Remote("sample") : TheSite().File("sample");
    Import(store, "rows");
    Run("index " + store + " number");
    Run("index " + store + " day");
  }
  return store;
}

void MeasureQuery(State& state, const std::string& condition) {
  const std::string name = Sample(true);
  unsigned long found = 0, trips = 0;
  for (auto _ : state) {
    const auto store = Store::Open(name, Store::Mode::kRead);
    found = 0;
    nxtm::RunQuery(*store, nxtm::Condition::Parse(condition, store->GetSchema()), false,
                   [&](unsigned int, const std::vector<nxtm::Field>&) { return ++found > 0; });
    trips = store->Engine().RoundTrips();
  }
  state.counters["rows"] = static_cast<double>(found);
  state.counters["round trips"] = static_cast<double>(trips);
  if (found == 0) state.SkipWithError("nothing found");
}

// ---------------------------------------------------------------------------
// Plain requests

std::string Field(const char* name, std::string_view bytes) {
  return std::string("\"") + name + "\":\"" + nxtm::Base64(bytes) + "\"";
}

/// Sends requests, as many in flight as the store has.
class Pipeline {
 public:
  explicit Pipeline(EtcdClient& client) : client_(client) {}
  void Send(const char* path, std::string body) {
    if (tickets_.size() == EtcdClient::kMostInFlight) Finish();
    tickets_.push_back(client_.Start(path, std::move(body)));
  }
  void FinishAll() {
    while (!tickets_.empty()) Finish();
  }

 private:
  void Finish() {
    if (client_.Finish(tickets_.front()).refusal != nxtm::Refusal::kNone) Stop("a plain batch is refused");
    tickets_.pop_front();
  }
  EtcdClient& client_;
  std::deque<EtcdClient::Ticket> tickets_;
};

/// All entries of a store: its records, and those of its index, under keys of the same length.
const Entries& EntriesOfTheStore() {
  static const Entries entries = [] {
    const std::string name = TheSite().Remote("counted");
    Begin(name);
    Import(name, "rows");
    const auto store = KeyValue::Open(name, KeyValue::Mode::kRead, nxtm::Wait::kNever);
    Entries all;
    for (const KeyValue::Table table : {kRecords, kNumbers})
      store->Range(table, "", "", [&](std::string_view key, std::string_view value) {
        std::string plain("counted\0t000", 12);
        plain.append(std::to_string(table)).append(key);
        all.emplace_back(std::move(plain), value);
        return true;
      });
    if (all.size() != 2 * (kRows + 1)) Stop("other entries than expected");
    return all;
  }();
  return entries;
}

void MeasurePlainPuts(State& state) {
  constexpr unsigned long kBatch = 1000;
  const Entries& entries = EntriesOfTheStore();
  EtcdClient client("plain", TheSite().Nodes());
  for (auto _ : state) {
    Pipeline pipeline(client);
    for (unsigned long from = 0; from < entries.size(); from += kBatch) {
      std::string puts;
      for (unsigned long i = from; i < std::min<unsigned long>(from + kBatch, entries.size()); ++i)
        puts.append(puts.empty() ? "" : ",")
            .append("{\"request_put\":{")
            .append(Field("key", entries[i].first) + ",")
            .append(Field("value", entries[i].second) + "}}");
      pipeline.Send("/v3/kv/txn", "{\"success\":[" + puts + "]}");
    }
    pipeline.FinishAll();
  }
  state.counters["rows a second"] = benchmark::Counter(kRows, benchmark::Counter::kIsIterationInvariantRate);
}

/// Gets as many entries as a query of 1,000 rows does: a range of them, and as many keys.
void MeasurePlainGets(State& state, unsigned long count, bool inOrder) {
  const Entries& entries = EntriesOfTheStore();
  EtcdClient client("plain", TheSite().Nodes());
  std::mt19937 random(1);
  for (auto _ : state) {
    Pipeline pipeline(client);
    const auto range = [&](unsigned long from, unsigned long to) {
      return Field("key", entries[from].first) + "," + Field("range_end", entries[to].first);
    };
    const unsigned long index = kRows + 1 + random() % (kRows - count);
    pipeline.Send("/v3/kv/range", "{" + range(index, index + count) + "}");
    pipeline.FinishAll();
    if (inOrder) {
      const unsigned long record = random() % (kRows - count);
      pipeline.Send("/v3/kv/range", "{" + range(record, record + count) + "}");
    }
    for (unsigned long got = 0; got < count && !inOrder;) {
      std::string gets;
      for (unsigned long i = 0; i < 125 && got < count; ++i, ++got)
        gets.append(gets.empty() ? "" : ",")
            .append("{\"request_range\":{")
            .append(Field("key", entries[random() % kRows].first) + "}}");
      pipeline.Send("/v3/kv/txn", "{\"success\":[" + gets + "]}");
    }
    pipeline.FinishAll();
  }
}

// ---------------------------------------------------------------------------
// LMDB

void Check(int code) {
  if (code != 0) Stop(std::string("LMDB: ") + mdb_strerror(code));
}

constexpr unsigned kRead = 1000;  // entries of the index, and their records

/// Reads on from an entry of the index: 1,000 entries and the records that they name.
void MeasureInterface(State& state) {
  const auto engine = KeyValue::Open(Sample(false), KeyValue::Mode::kRead, nxtm::Wait::kNever);
  std::string first;
  engine->Range(kNumbers, "", "", [&](std::string_view key, std::string_view) { return first = key, false; });
  for (auto _ : state) {
    std::vector<std::string> keys;
    engine->Range(kNumbers, first, "", [&](std::string_view key, std::string_view) {
      keys.emplace_back(key.substr(key.size() - 4));
      return keys.size() < kRead;
    });
    unsigned long bytes = 0;
    engine->GetMany(kRecords, keys, [&](unsigned long, const std::string_view* value) {
      bytes += value->size();
      return true;
    });
    benchmark::DoNotOptimize(bytes);
  }
}

void MeasureLmdb(State& state) {
  fs::copy_file(Sample(false), TheSite().File("copy"), fs::copy_options::overwrite_existing);
  MDB_env* env;
  MDB_txn* txn;
  MDB_dbi records, numbers;
  Check(mdb_env_create(&env));
  Check(mdb_env_set_mapsize(env, 256UL << 20));
  Check(mdb_env_set_maxdbs(env, 8));
  Check(mdb_env_open(env, TheSite().File("copy").c_str(), MDB_NOSUBDIR | MDB_NOLOCK | MDB_RDONLY, 0600));
  Check(mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn));
  Check(mdb_dbi_open(txn, std::to_string(kRecords).c_str(), 0, &records));
  Check(mdb_dbi_open(txn, std::to_string(kNumbers).c_str(), 0, &numbers));
  for (auto _ : state) {
    MDB_cursor* cursor;
    std::vector<std::string> keys;
    Check(mdb_cursor_open(txn, numbers, &cursor));
    MDB_val key, value;
    for (int code = mdb_cursor_get(cursor, &key, &value, MDB_FIRST); code == 0 && keys.size() < kRead;
         code = mdb_cursor_get(cursor, &key, &value, MDB_NEXT))
      keys.emplace_back(static_cast<char*>(key.mv_data) + key.mv_size - 4, 4);
    mdb_cursor_close(cursor);
    unsigned long bytes = 0;
    for (const std::string& number : keys) {
      key = {number.size(), const_cast<char*>(number.data())};
      Check(mdb_get(txn, records, &key, &value));
      bytes += value.mv_size;
    }
    benchmark::DoNotOptimize(bytes);
  }
  mdb_txn_abort(txn);
  mdb_env_close(env);
}

template <class Call>
void Add(const char* name, benchmark::TimeUnit unit, Call call, int turns = 0) {
  auto* const added = benchmark::RegisterBenchmark(name, call)->Unit(unit)->UseRealTime();
  if (turns) added->Iterations(1)->Repetitions(turns);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kImports = 3;  // seconds each
  benchmark::Initialize(&argc, argv);
  Add("import on three nodes/plain batches", benchmark::kMillisecond, MeasurePlainPuts, kImports);
  Add("import on three nodes/nxtm", benchmark::kMillisecond, MeasureImport, kImports);
  Add("one value/plain requests", benchmark::kMillisecond, [](State& s) { MeasurePlainGets(s, 1, false); });
  Add("one value/nxtm", benchmark::kMillisecond,
      [](State& s) { MeasureQuery(s, "number = " + TheSite().NumberOfTheFirstRow()); });
  Add("rows in order/plain requests", benchmark::kMillisecond,
      [](State& s) { MeasurePlainGets(s, 1000, true); });
  Add("rows in order/nxtm", benchmark::kMillisecond,
      [](State& s) { MeasureQuery(s, "day >= 1950-01-01 and day < 1951-01-01"); });
  Add("scattered rows/plain requests", benchmark::kMillisecond,
      [](State& s) { MeasurePlainGets(s, 1000, false); });
  Add("scattered rows/nxtm", benchmark::kMillisecond,
      [](State& s) { MeasureQuery(s, "number >= 500000 and number < 510000"); });
  Add("index and records in LMDB/its own calls", benchmark::kMicrosecond, MeasureLmdb);
  Add("index and records in LMDB/the interface", benchmark::kMicrosecond, MeasureInterface);
  benchmark::RunSpecifiedBenchmarks();
}
