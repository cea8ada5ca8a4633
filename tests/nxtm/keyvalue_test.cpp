// What a store asks of an engine, held against every engine.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "data/failure.h"
#include "store/etcdclient.h"
#include "store/keyvalue.h"

namespace {

using nxtm::KeyValue;
using nxtm::Wait;
using Mode = KeyValue::Mode;
using Map = std::map<std::string, std::string>;

/// Runs a command of a shell and returns what it prints, without the last end of line.
std::string Shell(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  char buffer[4096];
  while (const std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
  pclose(pipe);
  while (!output.empty() && output.back() == '\n') output.pop_back();
  return output;
}

/// A scratch folder with a cluster, for the whole run.
class Machines : public testing::Environment {
 public:
  void SetUp() override {
    mkdtemp(folder_);
    cluster_ = Shell(Script("start"));
    ASSERT_EQ(0U, cluster_.rfind("etcd://", 0)) << "the cluster does not start";
  }
  void TearDown() override {
    Shell(Script("stop"));
    Shell(std::string("rm -rf ") + folder_);
  }
  static std::string Script(const std::string& command) {
    return NX_SOURCE_DIR "/scripts/cluster " + command + " " + folder_ + "/cluster";
  }
  static pid_t Node(int number) {
    pid_t process = 0;
    std::ifstream(std::string(folder_) + "/cluster/node" + std::to_string(number) + ".pid") >> process;
    return process;
  }
  static const std::string& Cluster() { return cluster_; }
  static std::string Folder() { return folder_; }

 private:
  static inline char folder_[] = "/tmp/keyvalue_test_XXXXXX";
  static inline std::string cluster_;
};
const auto* const machines = testing::AddGlobalTestEnvironment(new Machines);

enum class Engine { kLmdb, kEtcd };

class KeyValueTest : public testing::TestWithParam<Engine> {
 protected:
  KeyValueTest() {
    static int count = 0;
    name_ = (GetParam() == Engine::kEtcd ? Machines::Cluster() : Machines::Folder() + "/") + "store" +
            std::to_string(++count);
  }
  std::unique_ptr<KeyValue> Open(Mode mode, Wait wait = Wait::kNever) const {
    return KeyValue::Open(name_, mode, wait);
  }
  static Map All(KeyValue& store, KeyValue::Table table, const std::string& from = "",
                 const std::string& to = "") {
    Map found;
    std::string last;
    store.Range(table, from, to, [&](std::string_view key, std::string_view value) {
      EXPECT_TRUE(found.empty() || last < std::string(key)) << "out of order";
      last = key;
      return found.emplace(key, value).second;
    });
    return found;
  }
  std::string name_;
};

}  // namespace

TEST_P(KeyValueTest, KeepsTheOrderOfBytesOverAllPages) {
  Map rows;
  std::mt19937 random(11);
  for (int i = 0; i < 9000; ++i) {
    std::string key(1 + random() % 12, '\0');
    for (char& byte : key) byte = static_cast<char>(random() % 3 ? random() : random() % 2 * 255);
    rows[key] = std::string(random() % 20, static_cast<char>(i));
  }
  rows[std::string(KeyValue::kLongestKey, '\xFF')] = "last";
  auto store = Open(Mode::kCreate);
  for (const auto& [key, value] : rows) store->Put(5, key, value);
  store->Put(4, "\xFF\xFF", "before");
  store->Put(6, std::string(1, '\0'), "behind");
  store->Commit("root");
  EXPECT_EQ("root", store->Root());
  store.reset();

  store = Open(Mode::kRead);
  EXPECT_EQ("root", store->Root());
  EXPECT_TRUE(rows == All(*store, 5));
  EXPECT_TRUE(All(*store, 7).empty());
  for (int i = 0; i < 30; ++i) {
    std::string from = std::next(rows.begin(), static_cast<long>(random() % rows.size()))->first;
    std::string to = std::next(rows.begin(), static_cast<long>(random() % rows.size()))->first;
    if (i % 3 == 0) from += '\0';  // between two keys
    if (i % 5 == 0) to.pop_back();
    const Map right = from < to ? Map(rows.lower_bound(from), rows.lower_bound(to)) : Map();
    if (!to.empty()) {
      ASSERT_TRUE(right == All(*store, 5, from, to)) << i;
    }
  }
  int calls = 0;
  store->Range(5, "", "", [&](std::string_view, std::string_view) { return ++calls < 3000; });
  EXPECT_EQ(3000, calls);
}

TEST_P(KeyValueTest, GetsManyValuesInTheOrderOfTheKeys) {
  auto store = Open(Mode::kCreate);
  for (int i = 0; i < 3000; ++i) store->Put(1, "k" + std::to_string(i), i % 7 ? std::to_string(i) : "");
  store->Commit("root");
  store = nullptr;
  store = Open(Mode::kRead);
  std::mt19937 random(3);
  std::vector<std::string> keys;
  for (int i = 0; i < 5000; ++i) keys.push_back("k" + std::to_string(random() % 4000));
  unsigned long next = 0;
  store->GetMany(1, keys, [&](unsigned long place, const std::string_view* value) {
    EXPECT_EQ(next++, place);
    const int number = std::stoi(keys[place].substr(1));
    EXPECT_EQ(number < 3000, value != nullptr) << number;
    if (value) {
      EXPECT_EQ(number % 7 ? std::to_string(number) : "", *value);
    }
    return next < 4900;
  });
  EXPECT_EQ(4900U, next);
  if (GetParam() == Engine::kEtcd) {
    EXPECT_LE(store->RoundTrips(), 7U) << "a round trip serves many keys";
  }
  // Reading goes on from within a reading.
  store->Range(1, "k1", "k11", [&](std::string_view key, std::string_view) {
    store->GetMany(1, {std::string(key)}, [&](unsigned long, const std::string_view* value) {
      EXPECT_NE(nullptr, value);
      return true;
    });
    return true;
  });
}

TEST_P(KeyValueTest, AReaderSeesOneStateWhileOthersWrite) {
  auto store = Open(Mode::kCreate);
  for (int i = 0; i < 2000; ++i) store->Put(1, std::to_string(i), "old");
  store->Commit("one");
  store = nullptr;
  store = Open(Mode::kRead);
  const Map before = All(*store, 1);
  EXPECT_EQ(2000U, before.size());
  int calls = 0;
  store->Range(1, "", "", [&](std::string_view, std::string_view value) {
    if (++calls == 10) {
      // A process of its own: two maps of a file may not fit into one on 32 bits.
      const pid_t child = fork();
      if (child == 0) {
        auto writer = Open(Mode::kWrite);
        for (int i = 1000; i < 3000; ++i) writer->Put(1, std::to_string(i), "new");
        for (int i = 0; i < 500; ++i) writer->Remove(1, std::to_string(i));
        writer->Remove(1, "was never there");
        writer->Commit("two");
        const bool sees = All(*writer, 1).size() == 2500;
        writer.reset();
        _exit(sees ? 0 : 1);
      }
      int status = 0;
      waitpid(child, &status, 0);
      EXPECT_EQ(0, status) << "a writer reads what it has committed";
    }
    EXPECT_EQ("old", value);
    return true;
  });
  EXPECT_EQ(2000, calls);
  EXPECT_TRUE(before == All(*store, 1));
  EXPECT_EQ("one", store->Root());
  store->Check();
  store = nullptr;
  store = Open(Mode::kRead);
  EXPECT_EQ("two", store->Root());
  EXPECT_EQ(2500U, All(*store, 1).size());
  store->Check();
}

TEST_P(KeyValueTest, TheLastOfSeveralChangesOfAKeyCounts) {
  auto store = Open(Mode::kCreate);
  Map right;
  std::mt19937 random(5);
  for (int i = 0; i < 6000; ++i) {
    const std::string key = std::to_string(random() % (i % 100 < 50 ? 10 : 1000));
    if (random() % 4) {
      store->Put(1, key, right[key] = std::to_string(i));
    } else {
      store->Remove(1, key);
      right.erase(key);
    }
  }
  store->Commit("root");
  EXPECT_TRUE(right == All(*store, 1));
}

TEST_P(KeyValueTest, OneWritesAtATime) {
  EXPECT_THROW(Open(Mode::kWrite), nxtm::Failure) << "there is none";
  EXPECT_THROW(Open(Mode::kRead), nxtm::Failure);
  auto first = Open(Mode::kCreate);
  EXPECT_THROW(Open(Mode::kCreate), nxtm::Failure);
  std::thread other([&] {
    auto second = Open(Mode::kCreate, Wait::kForever);
    EXPECT_EQ("first", second->Root());
    second->Commit("second");
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  first->Put(1, "key", "value");
  first->Commit("first");
  first.reset();
  other.join();
  EXPECT_EQ("second", Open(Mode::kRead)->Root());
  EXPECT_EQ(1U, All(*Open(Mode::kWrite), 1).size());
}

TEST_P(KeyValueTest, WhatWasNotCommittedDoesNotCountOrIsTold) {
  auto store = Open(Mode::kCreate);
  EXPECT_FALSE(store->LeftUnfinished());
  store->Put(1, "kept", "1");
  store->Commit("one");
  for (int i = 0; i < 1000; ++i) store->Put(1, std::to_string(i), "lost");
  store.reset();
  store = Open(Mode::kWrite);
  EXPECT_EQ("one", store->Root());
  // Either the engine has taken them back, or it tells that they may be there.
  EXPECT_TRUE(store->LeftUnfinished() || All(*store, 1).size() == 1);
  store->Commit("two");
  EXPECT_FALSE(store->LeftUnfinished());
  store.reset();
  EXPECT_FALSE(Open(Mode::kWrite)->LeftUnfinished());
}

TEST_P(KeyValueTest, DropsTablesWithTheCommit) {
  auto store = Open(Mode::kCreate);
  for (int i = 0; i < 1000; ++i)
    for (unsigned int table : {1U, 2U, 300U}) store->Put(table, std::to_string(i), "x");
  store->Commit("one");
  store->Drop(2);
  store->Drop(300);
  store->Drop(77);
  store->Commit("two");
  store.reset();
  store = Open(Mode::kRead);
  EXPECT_EQ(1000U, All(*store, 1).size());
  EXPECT_TRUE(All(*store, 2).empty() && All(*store, 300).empty());
}

TEST_P(KeyValueTest, TakesLargeValues) {
  auto store = Open(Mode::kCreate);
  Map right;
  for (int i = 0; i < 12; ++i)
    store->Put(1, std::to_string(i), right[std::to_string(i)] = std::string(900000 + i, 'a'));
  store->Commit("one");
  store = nullptr;
  store = Open(Mode::kWrite);
  EXPECT_TRUE(right == All(*store, 1));
  try {
    store->Put(1, "too large", std::string(8 << 20, 'b'));
    store->Put(1, "more", "b");
    store->Commit("two");
    EXPECT_EQ(Engine::kLmdb, GetParam());
  } catch (const nxtm::Failure& failure) {
    EXPECT_NE(std::string::npos, std::string(failure.what()).find("8388")) << failure.what();
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, KeyValueTest, testing::Values(Engine::kLmdb, Engine::kEtcd),
                         [](const auto& test) { return test.param == Engine::kLmdb ? "Lmdb" : "Etcd"; });

// What may happen to nodes only.

TEST(Cluster, AWriterThatStoppedTooLongCanCommitNothing) {
  const std::string name = Machines::Cluster() + "stopped";
  int ready[2];
  ASSERT_EQ(0, pipe(ready));
  const pid_t child = fork();
  if (child == 0) {
    int status = 1;
    try {
      auto store = KeyValue::Open(name, Mode::kCreate, Wait::kNever);
      store->Commit("one");
      for (int i = 0; i < 1000; ++i) store->Put(1, std::to_string(i), "lost");
      write(ready[1], "x", 1);
      std::this_thread::sleep_for(std::chrono::milliseconds(500));  // stopped in here
      store->Commit("two");
    } catch (const nxtm::Failure&) {
      status = 7;
    }
    _exit(status);
  }
  char byte;
  ASSERT_EQ(1, read(ready[0], &byte, 1));
  kill(child, SIGSTOP);
  {
    auto store = KeyValue::Open(name, Mode::kWrite, Wait::kForever);  // waits for the end of the lease
    EXPECT_TRUE(store->LeftUnfinished());
    EXPECT_EQ("one", store->Root());
    kill(child, SIGCONT);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(7, WEXITSTATUS(status));
    store->Commit("three");
  }
  EXPECT_EQ("three", KeyValue::Open(name, Mode::kRead, Wait::kNever)->Root());
}

TEST(Cluster, OneNodeMayDieOrHangAndTheMajorityMayNot) {
  const std::string name = Machines::Cluster() + "nodes";
  auto store = KeyValue::Open(name, Mode::kCreate, Wait::kNever);
  Map right;
  for (int i = 0; i < 20000; ++i) {
    const std::string key = std::to_string(i);
    store->Put(1, key, right[key] = "v");
    if (i == 5000) kill(Machines::Node(1), SIGKILL);  // the one that is spoken to
    if (i == 10000) Shell(Machines::Script("start"));
    if (i == 15000) kill(Machines::Node(2), SIGSTOP);
    if (i == 18000) kill(Machines::Node(2), SIGCONT);
  }
  store->Commit("one");
  auto reader = KeyValue::Open(name, Mode::kRead, Wait::kNever);
  Map found;
  reader->Range(1, "", "", [&](std::string_view key, std::string_view value) {
    if (found.size() == 1000) kill(Machines::Node(3), SIGKILL);
    return found.emplace(key, value).second;
  });
  EXPECT_TRUE(right == found);

  kill(Machines::Node(2), SIGKILL);
  nxtm::TheEtcdOptions().timeoutSeconds = 2;
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THROW(KeyValue::Open(name, Mode::kRead, Wait::kNever), nxtm::Unreachable);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
  nxtm::TheEtcdOptions().timeoutSeconds = 10;
  Shell(Machines::Script("start"));
  store->Put(1, "more", "v");
  store->Commit("two");
  EXPECT_EQ("two", KeyValue::Open(name, Mode::kRead, Wait::kNever)->Root());
}

TEST(Cluster, CompactionUnderAReaderIsTold) {
  const std::string name = Machines::Cluster() + "compacted";
  auto store = KeyValue::Open(name, Mode::kCreate, Wait::kNever);
  store->Put(1, "key", "value");
  store->Commit("one");
  auto reader = KeyValue::Open(name, Mode::kRead, Wait::kNever);
  store->Commit("two");
  const std::string rest = name.substr(7);
  nxtm::EtcdClient client(name, {rest.substr(0, rest.find_first_of(",/"))});
  const std::string revision = client.Call("/v3/kv/range", R"({"key":"AA=="})")["header"]["revision"];
  client.Call("/v3/kv/compaction", R"({"revision":")" + revision + "\"}");
  try {
    reader->Range(1, "", "", [](std::string_view, std::string_view) { return true; });
    FAIL() << "read a revision that is not kept";
  } catch (const nxtm::Failure& failure) {
    EXPECT_NE(std::string::npos, std::string(failure.what()).find("compacted")) << failure.what();
  }
}

TEST(Cluster, EntriesHaveCopiesOfShortRecords) {
  const std::string name = Machines::Cluster() + "copies", schema = Machines::Folder() + "/schema";
  std::ofstream(schema) << "text NxString\nnumber long\n";
  std::ofstream(schema + ".rows") << "short,1\n" << std::string(300, 'l') << ",2\nthird,3\n";
  const auto run = [](const std::string& command) { return Shell(NXTM " " + command + " 2>&1; echo $?"); };
  const auto ends = [](const std::string& text, const std::string& with) {
    EXPECT_EQ(with, text.substr(text.size() - std::min(text.size(), with.size())));
  };
  const auto tripsOf = [&](const std::string& term) {
    return Shell(NXTM " query " + name + " '" + term + "' --explain | grep -o '[0-9]* round trips'");
  };
  const std::string import = "import " + schema + " " + schema + ".rows " + name;
  ends(run(import), "\n0");
  ends(run("index " + name + " number"), "\n0");  // copies made by an index of old records
  ends(run(import), "\n0");                       // and of new ones
  EXPECT_EQ("2 round trips", tripsOf("number = 1"));
  EXPECT_EQ("3 round trips", tripsOf("number = 2"));  // too long for a copy
  EXPECT_EQ("3 round trips", tripsOf("number > 0"));
  const std::string all = run("query " + name + " 'number > 0'");
  EXPECT_EQ(run("export " + name), all);

  std::string key, value;
  const auto replace = [&](const std::string& copy) {
    auto engine = KeyValue::Open(name, Mode::kWrite, Wait::kNever);
    if (key.empty())
      engine->Range(1, "", "", [&](std::string_view first, std::string_view its) {
        return key = first, value = its, false;
      });
    engine->Put(1, key, copy);
    engine->Commit(engine->Root());
  };
  replace("");  // as an index made before has it
  EXPECT_EQ(all, run("query " + name + " 'number > 0'"));
  ends(run("check " + name), "\n0");
  value.back() ^= 1;
  replace(value);
  ends(run("query " + name + " 'number = 1'"), "nxtm reindex " + name + "\n3");
  ends(run("check " + name), "has another copy of record 0\n3");
  ends(run("reindex " + name), "\n0");
  EXPECT_EQ(all, run("query " + name + " 'number > 0'"));
}

TEST(Cluster, NamesThatAreNoneAreRefused) {
  for (const char* name : {"etcd://", "etcd:///p", "etcd://host/p", "etcd://host:1", "etcd://host:1/",
                           "etcd://host:x/p", "etcd://host:1,/p", "etcd://:1/p", "etcd://a:b@host:1/p"})
    EXPECT_THROW(KeyValue::Open(name, Mode::kRead, Wait::kNever), nxtm::Failure) << name;
}
