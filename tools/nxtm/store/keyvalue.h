/// What a store needs of the engine that keeps its bytes: tables of entries in the order of
/// their keys, a snapshot to read and one atomic commit. Keys compare as unsigned bytes, a
/// shorter one before the longer ones that it begins. An entry is at most kLongestKey bytes
/// of key and, where an engine says so with a Failure, a limited value.
///
/// An object reads the state that the last commit had left when it was opened, or that its
/// own last commit left; what it has put since then it need not see. Failures: StoreFailure
/// for damage and for input and output, Unreachable where too few machines answer in time.
#ifndef NXTM_KEYVALUE_H
#define NXTM_KEYVALUE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/lock.h"

namespace nxtm {

class KeyValue {
 public:
  enum class Mode {
    kRead,
    kWrite,   // one writer at a time; readers go on
    kCreate,  // the same; a store that is missing begins empty, and is there from Commit on
    kAlone    // to write with nobody reading
  };
  /// A table by its number; it is there as soon as an entry is.
  using Table = unsigned int;
  static constexpr unsigned long kLongestKey = 511;

  /// Opens a store by its name: the path of a file, or etcd://HOST:PORT[,HOST:PORT...]/PREFIX.
  /// A Failure when there is none, unless it may be made.
  static std::unique_ptr<KeyValue> Open(const std::string& name, Mode mode, Wait wait);
  virtual ~KeyValue() = default;

  /// What the last commit said of the store; empty where nothing was committed yet.
  virtual const std::string& Root() const = 0;

  /// Gets an entry; false ends the reading. The bytes are valid during the call.
  using OnEntry = std::function<bool(std::string_view key, std::string_view value)>;
  /// Reads the entries of a table from `from` on, below `to` (empty: to the last) in order.
  virtual void Range(Table table, std::string_view from, std::string_view to, const OnEntry& onEntry) = 0;
  /// Throws a StoreFailure where entries of such a range of a table that has some are lost,
  /// which Range itself cannot tell: for tables whose keys do not follow from each other.
  virtual void RequireWhole(Table /*table*/, std::string_view /*from*/, std::string_view /*to*/) {}
  /// Gets the value of a key by its place among the keys, null where there is none; false
  /// ends the reading. The bytes are valid during the call.
  using OnValue = std::function<bool(unsigned long place, const std::string_view* value)>;
  /// Reads the values of keys, in the order of the keys.
  virtual void GetMany(Table table, const std::vector<std::string>& keys, const OnValue& onValue) = 0;

  /// Adds an entry, or replaces its value. Until Commit it may be seen by readers of other
  /// processes, which have to tell by the root whether it counts. Ascending keys are fastest.
  virtual void Put(Table table, std::string_view key, std::string_view value) = 0;
  /// Takes an entry away, as Put adds one; nothing when it is not there.
  virtual void Remove(Table table, std::string_view key) = 0;
  /// Takes all entries of a table away with the next commit.
  virtual void Drop(Table table) = 0;
  /// Makes `root` the root, and lasting with all that was put. A Failure when another writer
  /// has committed meanwhile. Reading and writing may go on.
  virtual void Commit(const std::string& root) = 0;
  /// Whether a writer before was ended before its Commit, so that entries of no root may be
  /// there. Commit ends this state.
  virtual bool LeftUnfinished() const = 0;

  /// Throws a StoreFailure where the engine's own structures do not add up.
  virtual void Check() = 0;
  /// Gives back what is not used; must be open alone with nothing put.
  virtual void Compact() = 0;
  /// Bytes that the store takes; of machines that many stores share, what one keeps of all.
  virtual unsigned long long Size() const = 0;
  /// Whether a value read by its own key takes much longer than one more entry of a range, so
  /// that it pays to keep it beside the entry that leads to it, too.
  virtual bool IsFar() const { return false; }
  /// Requests that this object waited for, of an engine on other machines; else 0.
  virtual unsigned long RoundTrips() const { return 0; }
};

}  // namespace nxtm

#endif
