#include "store/etcd.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <numeric>
#include <optional>
#include <thread>
#include <unordered_map>

#include "data/failure.h"
#include "store/etcdclient.h"

namespace nxtm {

namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using Ticket = EtcdClient::Ticket;

constexpr char kScheme[] = "etcd://";
constexpr int kLeaseSeconds = 5;
constexpr unsigned long kFirstPage = 256, kLongestPage = 4096;  // entries
constexpr unsigned long kPageBytes = 4UL << 20;                 // about as many in an answer

/// The least key behind all that begin with a text.
std::string BehindPrefix(std::string text) {
  while (!text.empty() && text.back() == '\xFF') text.pop_back();
  if (!text.empty()) ++text.back();
  return text;
}

/// A number of an answer; JSON has those of 64 bits as texts, and none where it is 0.
long long Number(const json& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end()) return 0;
  return found->is_string() ? std::stoll(found->get_ref<const std::string&>()) : found->get<long long>();
}
std::string BytesOf(const json& object, const char* name) {
  const auto found = object.find(name);
  return found == object.end() ? std::string() : FromBase64(found->get_ref<const std::string&>());
}
long long RevisionOf(const json& answer) { return Number(answer.at("header"), "revision"); }

/// A list of an answer, which is not there when it is empty.
const json& List(const json& object, const char* name) {
  static const json kNone = json::array();
  const auto found = object.find(name);
  return found == object.end() ? kNone : *found;
}

/// Parts of requests as text: entries are many, so that they are not made into objects first.
std::string Quoted(const char* name, std::string_view bytes) {
  std::string text = std::string("\"") + name + "\":\"";
  AppendBase64(text, bytes);
  return text += '"';
}
std::string RangeOf(std::string_view from, std::string_view to) {
  return Quoted("key", from) + (to.empty() ? "" : "," + Quoted("range_end", to));
}
std::string PutOf(std::string_view key, std::string_view value, const std::string& lease = "") {
  return "{\"request_put\":{" + Quoted("key", key) + "," + Quoted("value", value) +
         (lease.empty() ? "" : ",\"lease\":\"" + lease + "\"") + "}}";
}
std::string RemovalOf(std::string_view from, std::string_view to = {}) {
  return "{\"request_delete_range\":{" + RangeOf(from, to) + "}}";
}
std::string Equal(std::string_view key, const char* target, const char* field, long long number) {
  return "{" + Quoted("key", key) + ",\"result\":\"EQUAL\",\"target\":\"" + target + "\",\"" + field +
         "\":\"" + std::to_string(number) + "\"}";
}
std::string Txn(const std::string& compares, const std::string& then, const std::string& otherwise = "") {
  return "{\"compare\":[" + compares + "],\"success\":[" + then + "],\"failure\":[" + otherwise + "]}";
}

/// A key that about `ahead` entries stand before, by the keys of a page; empty where there is
/// no telling. A node walks a range to its end however few entries are asked for, so that
/// pages up to the end of a table would cost the square of its size.
std::string KeyAhead(const std::string& first, const std::string& last, unsigned long entries,
                     unsigned long ahead) {
  unsigned long same = 0;
  while (same < first.size() && same < last.size() && first[same] == last[same]) ++same;
  const auto number = [same](const std::string& key) {
    unsigned long long value = 0;
    for (unsigned long i = same; i < same + sizeof value; ++i)
      value = value << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
    return value;
  };
  const unsigned long long from = number(last);
  const unsigned long long step = (from - number(first)) / entries;
  if (step == 0 || step > (~0ULL - from) / ahead) return "";
  std::string key = last.substr(0, same);
  for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>((from + step * ahead) >> shift & 255);
  return key;
}

/// Places of keys that one range is read for, in the order of the keys.
using Run = std::vector<unsigned long>;

/// Whether the keys between two are at most a few, as far as they can be told: reading some
/// entries in vain takes a node less time than a range of its own.
bool AreNear(const std::string& a, const std::string& b) {
  constexpr unsigned long long kNear = 4;
  if (a.size() != b.size()) return false;
  const unsigned long head = a.size() - std::min<unsigned long>(a.size(), sizeof kNear);
  if (a.compare(0, head, b, 0, head) != 0) return false;
  unsigned long long from = 0, to = 0;
  for (unsigned long i = head; i < a.size(); ++i) {
    from = from << 8 | static_cast<unsigned char>(a[i]);
    to = to << 8 | static_cast<unsigned char>(b[i]);
  }
  return to - from <= kNear;
}

std::vector<Run> RunsOf(const std::vector<std::string>& keys, unsigned long from, unsigned long to) {
  Run order(to - from);
  std::iota(order.begin(), order.end(), from);
  std::sort(order.begin(), order.end(),
            [&](unsigned long a, unsigned long b) { return keys[a] != keys[b] ? keys[a] < keys[b] : a < b; });
  std::vector<Run> runs;
  for (const unsigned long place : order) {
    if (runs.empty() || !AreNear(keys[runs.back().back()], keys[place])) runs.emplace_back();
    runs.back().push_back(place);
  }
  return runs;
}

struct Name {
  std::vector<std::string> nodes;
  std::string prefix;

  explicit Name(const std::string& name) {
    const std::string rest = name.substr(sizeof kScheme - 1);
    const unsigned long slash = std::min<unsigned long>(rest.find('/'), rest.size());
    for (unsigned long at = 0; at <= slash;) {
      const unsigned long end = std::min<unsigned long>(rest.find(',', at), slash);
      nodes.push_back(rest.substr(at, end - at));
      const std::string& node = nodes.back();
      const unsigned long colon = node.rfind(':');
      const std::string port = colon == std::string::npos ? "" : node.substr(colon + 1);
      if (colon == 0 || port.empty() || port.find_first_not_of("0123456789") != std::string::npos ||
          node.find_first_of("@?#\\ ") != std::string::npos)
        throw Failure(name + ": a cluster's store is etcd://HOST:PORT[,HOST:PORT...]/PREFIX");
      at = end + 1;
    }
    if (slash + 1 >= rest.size()) throw Failure(name + ": behind the nodes, /PREFIX of the store is missing");
    prefix = rest.substr(slash + 1);
  }
};

/// Renews a lease from a thread of its own until its end, and then gives it back.
class LeaseKeeper {
 public:
  LeaseKeeper(const std::string& name, const std::vector<std::string>& nodes, const std::string& lease)
      : client_(name, nodes, &stop_), body_(R"({"ID":")" + lease + "\"}"), thread_([this] { Run(); }) {}
  LeaseKeeper(const LeaseKeeper&) = delete;
  LeaseKeeper& operator=(const LeaseKeeper&) = delete;
  ~LeaseKeeper() {
    {
      const std::lock_guard<std::mutex> guard(mutex_);
      stop_ = true;
    }
    wake_.notify_one();
    thread_.join();
  }

 private:
  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!wake_.wait_for(lock, milliseconds(kLeaseSeconds * 1000 / 4), [this] { return stop_.load(); })) {
      lock.unlock();
      try {
        client_.Call("/v3/lease/keepalive", body_);
      } catch (const Failure&) {
        // A lease that is lost is told by the next write.
      }
      lock.lock();
    }
  }

  std::atomic<bool> stop_{false};
  EtcdClient client_;
  const std::string body_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::thread thread_;
};

class Etcd : public KeyValue {
 public:
  Etcd(const std::string& name, Mode mode, Wait wait) : Etcd(name, Name(name), mode, wait) {}
  Etcd(const Etcd&) = delete;
  Etcd& operator=(const Etcd&) = delete;
  ~Etcd() override {
    if (lease_.empty()) return;
    keeper_.reset();
    try {
      for (const Batch& batch : batches_) client_.Forget(batch.ticket);
      client_.SetTimeout(milliseconds(1000));
      client_.Call("/v3/lease/revoke", R"({"ID":")" + lease_ + "\"}");
    } catch (const std::exception&) {
      // Then the lease runs out.
    }
  }

  const std::string& Root() const override { return root_; }

  void Range(Table table, std::string_view from, std::string_view to, const OnEntry& onEntry) override;
  void GetMany(Table table, const std::vector<std::string>& keys, const OnValue& onValue) override;

  void Put(Table table, std::string_view key, std::string_view value) override {
    const std::string full = Key(table, key);
    Add(full, PutOf(full, value), full.size() + value.size());
  }
  void Remove(Table table, std::string_view key) override {
    const std::string full = Key(table, key);
    Add(full, RemovalOf(full), full.size());
  }
  void Drop(Table table) override { dropped_.push_back(table); }
  void Commit(const std::string& root) override;
  bool LeftUnfinished() const override { return unfinished_; }

  void Check() override {
    const json answer = Read("{" + RangeOf(RootKey(), {}) + AtRevision() + "}");
    const json& found = List(answer, "kvs");
    if (found.empty() ? !root_.empty() : BytesOf(found[0], "value") != root_)
      throw StoreFailure(name_ + ": the root is not what it was when the store was opened");
  }
  void Compact() override {
    throw Failure(name_ +
                  ": old revisions are the cluster's own, of all that it keeps; see etcd's "
                  "--auto-compaction-retention, or etcdctl compaction and etcdctl defrag");
  }
  unsigned long long Size() const override {
    return static_cast<unsigned long long>(
        Number(client_.Call("/v3/maintenance/status", "{}"), "dbSizeInUse"));
  }
  bool IsFar() const override { return true; }
  unsigned long RoundTrips() const override { return client_.RoundTrips(); }

 private:
  /// One change, as the part of a request.
  struct Change {
    std::string key, text;
    unsigned long bytes;
  };
  /// Changes that go into one transaction.
  struct Batch {
    std::vector<Change> changes;
    unsigned int slot = 0;
    bool marks = false;  // puts the mark as unfinished
    Ticket ticket = 0;
  };

  Etcd(const std::string& name, const Name& parts, Mode mode, Wait wait)
      : name_(name), nodes_(parts.nodes), base_(parts.prefix + '\0'), client_(name, nodes_) {
    if (mode == Mode::kRead) {
      const json answer = Read("{" + RangeOf(Meta(""), BehindPrefix(Meta(""))) + "}");
      TakeState(answer, RevisionOf(answer));
    } else {
      BecomeWriter(wait);
    }
    if (root_.empty() && mode != Mode::kCreate) {
      keeper_.reset();
      if (!lease_.empty()) client_.Call("/v3/lease/revoke", R"({"ID":")" + lease_ + "\"}");
      throw Failure(name_ + ": No such store");
    }
  }

  std::string Meta(const char* what) const { return base_ + "m/" + what; }
  std::string RootKey() const { return Meta("root"); }
  std::string UnfinishedKey() const { return Meta("unfinished"); }
  std::string WriterKey() const { return Meta("writer"); }
  std::string SlotKey(unsigned int slot) const { return Meta("writer/") + std::to_string(slot); }
  std::string Key(Table table, std::string_view key) const {
    std::string full = base_ + 't';
    for (int shift = 24; shift >= 0; shift -= 8) full += static_cast<char>(table >> shift & 255);
    return full.append(key);
  }
  /// A revision is the same on every node that has it, so that the one asked may answer alone.
  std::string AtRevision() const {
    return ",\"serializable\":true,\"revision\":\"" + std::to_string(revision_) + "\"";
  }
  std::string IsWriter() const { return Equal(WriterKey(), "CREATE", "create_revision", writerRevision_); }

  json Read(const std::string& body) {
    return Unrefused(client_.Finish(client_.Start("/v3/kv/range", body)));
  }
  json Unrefused(EtcdAnswer answer) const;
  std::vector<std::optional<std::string>> ValuesOf(const json& found, Table table,
                                                   const std::vector<std::string>& keys, unsigned long from,
                                                   const std::vector<Run>& runs) const;
  bool TakeState(const json& range, long long revision);
  void BecomeWriter(Wait wait);

  unsigned long SlotOperations() const { return operations_ - 2; }  // beside the slot's and the mark
  void Add(const std::string& key, std::string text, unsigned long bytes);
  void SendBatch(std::vector<Change> changes);
  void FinishBatch();
  void Flush();
  void Split(std::vector<Change> changes, Refusal refusal);
  [[noreturn]] void FailByOther() const {
    throw Failure(name_ + ": another process has become the writer meanwhile; nothing was committed");
  }

  const std::string name_;
  const std::vector<std::string> nodes_;
  const std::string base_;
  mutable EtcdClient client_;
  std::string root_;
  long long revision_ = 0;      // that is read
  long long rootRevision_ = 0;  // at which the root was put; 0 without one
  bool unfinished_ = false;

  std::string lease_;
  long long leaseNumber_ = 0;
  long long writerRevision_ = 0;
  std::unique_ptr<LeaseKeeper> keeper_;
  std::vector<Table> dropped_;

  // What a transaction can have is learned: it grows by steps until it is refused.
  unsigned long operations_ = 128, bytes_ = 1UL << 20;
  bool operationsKnown_ = false;
  Batch next_;
  unsigned long nextBytes_ = 0;
  std::deque<Batch> batches_;                            // under way, the oldest first
  std::unordered_map<std::string, unsigned long> keys_;  // in next_ by their place, else kUnderWay
  static constexpr unsigned long kUnderWay = ~0UL;
  std::vector<unsigned int> freeSlots_{0, 1, 2, 3, 4, 5, 6, 7};
  std::vector<long long> slotVersions_ = std::vector<long long>(8);
  bool marked_ = false;  // as unfinished, by this session
};

json Etcd::Unrefused(EtcdAnswer answer) const {
  switch (answer.refusal) {
    case Refusal::kNone:
      return std::move(answer.json);
    case Refusal::kCompacted:
      throw Failure(name_ + ": the cluster has compacted the revision that is read (" +
                    std::to_string(revision_) + "); begin again");
    default:
      throw StoreFailure(name_ + ": a request is larger than the nodes take");
  }
}

/// Takes root, mark and writer of a revision; whether the writer is this one.
bool Etcd::TakeState(const json& range, long long revision) {
  revision_ = revision;
  root_.clear();
  rootRevision_ = 0;
  unfinished_ = false;
  bool own = false;
  for (const json& entry : List(range, "kvs")) {
    const std::string key = BytesOf(entry, "key");
    if (key == RootKey()) {
      root_ = BytesOf(entry, "value");
      rootRevision_ = Number(entry, "mod_revision");
    } else if (key == UnfinishedKey()) {
      unfinished_ = true;
    } else if (key == WriterKey()) {
      own = leaseNumber_ != 0 && Number(entry, "lease") == leaseNumber_;
      if (own) writerRevision_ = Number(entry, "create_revision");
    }
  }
  return own;
}

void Etcd::BecomeWriter(Wait wait) {
  for (bool told = false;;) {
    const json granted =
        client_.Call("/v3/lease/grant", R"({"TTL":")" + std::to_string(kLeaseSeconds) + "\"}");
    lease_ = std::to_string(leaseNumber_ = Number(granted, "ID"));
    const std::string meta = "{\"request_range\":{" + RangeOf(Meta(""), BehindPrefix(Meta(""))) + "}}";
    const json answer = client_.Call("/v3/kv/txn", Txn(Equal(WriterKey(), "CREATE", "create_revision", 0),
                                                       PutOf(WriterKey(), "", lease_) + "," + meta, meta));
    const json& responses = List(answer, "responses");
    if (TakeState(responses.at(responses.size() - 1).at("response_range"), RevisionOf(answer))) break;
    client_.Call("/v3/lease/revoke", R"({"ID":")" + lease_ + "\"}");
    lease_.clear();
    if (wait == Wait::kNever) throw Failure(name_ + ": another process is using it");
    if (!told)
      std::fprintf(stderr, "nxtm: %s: waiting for another process that is using it\n", name_.c_str());
    told = true;
    do {
      std::this_thread::sleep_for(milliseconds(100));
    } while (!List(Read("{" + RangeOf(WriterKey(), {}) + "}"), "kvs").empty());
  }
  keeper_ = std::make_unique<LeaseKeeper>(name_, nodes_, lease_);
}

void Etcd::Range(Table table, std::string_view from, std::string_view to, const OnEntry& onEntry) {
  const std::string begin = Key(table, "");
  const std::string end = to.empty() ? BehindPrefix(begin) : Key(table, to);
  std::string at = Key(table, from);
  if (at >= end) return;
  std::string pageEnd = end;
  unsigned long limit = kFirstPage;
  // The request of a page is given up where an exception or the caller ends the reading.
  struct Page {
    EtcdClient& client;
    Ticket ticket;
    ~Page() { client.Forget(ticket); }
  } page{client_, 0};
  const auto ask = [&] {
    page.ticket = client_.Start("/v3/kv/range", "{" + RangeOf(at, pageEnd) + AtRevision() + ",\"limit\":\"" +
                                                    std::to_string(limit) + "\"}");
  };
  ask();
  for (;;) {
    const json answer = Unrefused(client_.Finish(page.ticket));
    const json& entries = List(answer, "kvs");
    const bool full = answer.value("more", false) && !entries.empty();
    const bool more = full || pageEnd < end;
    if (more) {
      at = full ? BytesOf(entries.back(), "key") + '\0' : pageEnd;
      pageEnd.clear();
      if (!entries.empty()) {
        unsigned long bytes = 0;
        for (const json& entry : entries)
          bytes += entry.at("key").get_ref<const std::string&>().size() +
                   (entry.contains("value") ? entry["value"].get_ref<const std::string&>().size() : 0);
        const unsigned long fitting = std::max(1UL, kPageBytes / (bytes / entries.size() + 1));
        limit = std::min({limit * 4, kLongestPage, fitting});
        pageEnd = KeyAhead(BytesOf(entries.front(), "key"), BytesOf(entries.back(), "key"), entries.size(),
                           2 * limit);
      }
      if (pageEnd <= at || pageEnd > end) pageEnd = end;
      ask();
    }
    for (const json& entry : entries) {
      const std::string key = BytesOf(entry, "key");
      const std::string value = BytesOf(entry, "value");
      if (!onEntry(std::string_view(key).substr(begin.size()), value)) return;
    }
    if (!more) return;
  }
}

void Etcd::GetMany(Table table, const std::vector<std::string>& keys, const OnValue& onValue) {
  struct Part {
    unsigned long from, to;
    std::vector<Run> runs;
    Ticket ticket;
  };
  struct Parts : std::deque<Part> {
    EtcdClient& client;
    explicit Parts(EtcdClient& itsClient) : client(itsClient) {}
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;
    ~Parts() {
      for (const Part& part : *this) client.Forget(part.ticket);
    }
  } parts(client_);
  const auto ask = [&](unsigned long from, unsigned long to) {
    std::vector<Run> runs = RunsOf(keys, from, to);
    std::string reads;
    for (const Run& run : runs) {
      const std::string first = Key(table, keys[run.front()]), last = Key(table, keys[run.back()]);
      reads += (reads.empty() ? "{" : ",{") +
               ("\"request_range\":{" + RangeOf(first, first == last ? "" : last + '\0')) + AtRevision() +
               "}}";
    }
    return Part{from, to, std::move(runs), client_.Start("/v3/kv/txn", Txn("", reads))};
  };
  for (unsigned long asked = 0; asked < keys.size() || !parts.empty();) {
    while (asked < keys.size() && parts.size() < EtcdClient::kMostInFlight) {
      const unsigned long to = std::min<unsigned long>(keys.size(), asked + operations_);
      parts.push_back(ask(asked, to));
      asked = to;
    }
    const Part part = std::move(parts.front());
    parts.pop_front();
    EtcdAnswer answer = client_.Finish(part.ticket);
    if (answer.refusal == Refusal::kTooManyOperations || answer.refusal == Refusal::kTooLarge) {
      const unsigned long half = (part.to - part.from) / 2;
      if (half == 0) Unrefused(std::move(answer));
      operations_ = std::max(1UL, std::min(operations_, half));
      operationsKnown_ = true;
      parts.push_front(ask(part.from + half, part.to));
      parts.push_front(ask(part.from, part.from + half));
      continue;
    }
    const json found = Unrefused(std::move(answer));
    const std::vector<std::optional<std::string>> values = ValuesOf(found, table, keys, part.from, part.runs);
    for (unsigned long i = part.from; i < part.to; ++i) {
      const std::optional<std::string>& value = values[i - part.from];
      const std::string_view view = value ? *value : std::string_view();
      if (!onValue(i, value ? &view : nullptr)) return;
    }
  }
}

/// The values of the keys that runs were read for, by their places from `from` on.
std::vector<std::optional<std::string>> Etcd::ValuesOf(const json& found, Table table,
                                                       const std::vector<std::string>& keys,
                                                       unsigned long from,
                                                       const std::vector<Run>& runs) const {
  const json& responses = List(found, "responses");
  if (responses.size() != runs.size()) throw StoreFailure(name_ + ": an answer has other keys");
  unsigned long count = 0;
  for (const Run& run : runs) count += run.size();
  std::vector<std::optional<std::string>> values(count);
  for (unsigned long i = 0; i < runs.size(); ++i) {
    const json& entries = List(responses[i].at("response_range"), "kvs");
    auto entry = entries.begin();
    std::string key;  // of the entry
    for (const unsigned long place : runs[i]) {
      const std::string wanted = Key(table, keys[place]);
      while (entry != entries.end() && (key = BytesOf(*entry, "key")) < wanted) ++entry;
      if (entry != entries.end() && key == wanted) values[place - from] = BytesOf(*entry, "value");
    }
  }
  return values;
}

void Etcd::Add(const std::string& key, std::string text, unsigned long bytes) {
  const auto known = keys_.find(key);
  if (known != keys_.end() && known->second != kUnderWay) {
    Change& change = next_.changes[known->second];
    nextBytes_ = nextBytes_ - change.bytes + bytes;
    change = {key, std::move(text), bytes};
    return;
  }
  if (known != keys_.end()) Flush();  // batches under way go through in any order
  if (!next_.changes.empty() &&
      (next_.changes.size() + 1 > SlotOperations() || nextBytes_ + bytes > bytes_)) {
    SendBatch(std::move(next_.changes));
    next_.changes.clear();
    nextBytes_ = 0;
  }
  keys_[key] = next_.changes.size();
  next_.changes.push_back({key, std::move(text), bytes});
  nextBytes_ += bytes;
}

void Etcd::SendBatch(std::vector<Change> changes) {
  const bool first = !marked_;
  while (freeSlots_.empty()) FinishBatch();
  Batch batch;
  batch.slot = freeSlots_.back();
  freeSlots_.pop_back();
  const std::string slotKey = SlotKey(batch.slot);
  std::string parts = PutOf(slotKey, "", lease_);
  if (first) parts += "," + PutOf(UnfinishedKey(), "");
  for (const Change& change : changes) {
    parts += "," + change.text;
    const auto known = keys_.find(change.key);
    if (known != keys_.end()) known->second = kUnderWay;
  }
  // A request can be carried out twice: the second time the slot's version is another one.
  const std::string compares =
      IsWriter() + "," + Equal(slotKey, "VERSION", "version", slotVersions_[batch.slot]);
  const std::string found = "{\"request_range\":{" + RangeOf(slotKey, {}) + "}},{\"request_range\":{" +
                            RangeOf(WriterKey(), {}) + "}}";
  batch.marks = first;
  batch.changes = std::move(changes);
  batch.ticket = client_.Start("/v3/kv/txn", Txn(compares, parts, found));
  batches_.push_back(std::move(batch));
  // Nothing may be there before the mark is.
  if (first) {
    marked_ = true;
    while (!batches_.empty()) FinishBatch();
  }
}

/// Waits for the oldest batch.
void Etcd::FinishBatch() {
  Batch batch = std::move(batches_.front());
  batches_.pop_front();
  EtcdAnswer answer = client_.Finish(batch.ticket);
  freeSlots_.push_back(batch.slot);
  if (answer.refusal != Refusal::kNone) {
    if (batch.marks) marked_ = false;
    Split(std::move(batch.changes), answer.refusal);
    return;
  }
  if (!answer.json.value("succeeded", false)) {
    // Either the lease is lost, or the batch went through before and its answer was lost.
    const json& found = List(answer.json, "responses");
    const json& slot = List(found.at(0).at("response_range"), "kvs");
    const json& writer = List(found.at(1).at("response_range"), "kvs");
    if (writer.empty() || Number(writer[0], "create_revision") != writerRevision_ || slot.empty() ||
        Number(slot[0], "version") != slotVersions_[batch.slot] + 1)
      FailByOther();
  }
  ++slotVersions_[batch.slot];
  for (const Change& change : batch.changes) {
    const auto known = keys_.find(change.key);
    if (known != keys_.end() && known->second == kUnderWay) keys_.erase(known);
  }
  constexpr unsigned long kMostOperations = 2048;
  if (!operationsKnown_ && batch.changes.size() + 2 >= operations_ && operations_ < kMostOperations)
    operations_ *= 2;
}

void Etcd::Split(std::vector<Change> changes, Refusal refusal) {
  const unsigned long half = changes.size() / 2;
  if (half == 0)
    throw Failure(name_ + ": an entry of " + std::to_string(changes.at(0).bytes) +
                  " bytes is larger than the nodes take in one request");
  if (refusal == Refusal::kTooManyOperations) {
    operationsKnown_ = true;
    operations_ = std::max(4UL, std::min(operations_, half + 2));
  } else {
    unsigned long bytes = 0;
    for (const Change& change : changes) bytes += change.bytes;
    bytes_ = std::min(bytes_, bytes / 2);
  }
  const auto middle = std::make_move_iterator(changes.begin() + static_cast<long>(half));
  SendBatch({std::make_move_iterator(changes.begin()), middle});
  SendBatch({middle, std::make_move_iterator(changes.end())});
}

/// Sends what waits, and waits for all that is under way.
void Etcd::Flush() {
  if (!next_.changes.empty()) {
    SendBatch(std::move(next_.changes));
    next_.changes.clear();
    nextBytes_ = 0;
  }
  while (!batches_.empty()) FinishBatch();
  keys_.clear();
}

void Etcd::Commit(const std::string& root) {
  Flush();
  const std::string compares = IsWriter() + "," + Equal(RootKey(), "MOD", "mod_revision", rootRevision_);
  const EtcdAnswer answer = client_.Finish(
      client_.Start("/v3/kv/txn", Txn(compares, PutOf(RootKey(), root) + "," + RemovalOf(UnfinishedKey()),
                                      "{\"request_range\":{" + RangeOf(RootKey(), {}) + "}}")));
  if (answer.refusal != Refusal::kNone)
    throw Failure(name_ + ": a root of " + std::to_string(root.size()) +
                  " bytes is larger than the nodes take in one request");
  if (answer.json.value("succeeded", false)) {
    rootRevision_ = RevisionOf(answer.json);
  } else {
    // It may have gone through before, with its answer lost.
    const json& found = List(answer.json.at("responses").at(0).at("response_range"), "kvs");
    if (found.empty() || Number(found[0], "mod_revision") == rootRevision_ ||
        BytesOf(found[0], "value") != root)
      FailByOther();
    rootRevision_ = Number(found[0], "mod_revision");
  }
  revision_ = rootRevision_;
  root_ = root;
  unfinished_ = marked_ = false;
  // What is left over of dropped tables is harmless: no root speaks of it.
  const std::vector<Table> dropped = std::move(dropped_);
  dropped_.clear();
  try {
    std::string removals;
    for (unsigned long i = 0; i < dropped.size(); ++i) {
      const std::string begin = Key(dropped[i], "");
      removals += (removals.empty() ? "" : ",") + RemovalOf(begin, BehindPrefix(begin));
      if (i + 1 < dropped.size() && (i + 1) % SlotOperations() != 0) continue;
      const json removed = client_.Call("/v3/kv/txn", Txn(IsWriter(), removals));
      if (removed.value("succeeded", false)) revision_ = RevisionOf(removed);
      removals.clear();
    }
  } catch (const Failure& failure) {
    std::fprintf(stderr, "nxtm: warning: what was dropped is not removed yet: %s\n", failure.what());
  }
}

}  // namespace

bool IsEtcdName(const std::string& name) { return name.compare(0, sizeof kScheme - 1, kScheme) == 0; }

std::unique_ptr<KeyValue> OpenEtcd(const std::string& name, KeyValue::Mode mode, Wait wait) {
  try {
    return std::make_unique<Etcd>(name, mode, wait);
  } catch (const json::exception& error) {
    throw StoreFailure(name + ": an answer of a node is not as expected: " + error.what());
  }
}

}  // namespace nxtm
