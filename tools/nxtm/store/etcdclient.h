/// Requests to a cluster of etcd nodes: JSON by HTTP, several in flight, passing over nodes
/// that do not answer.
#ifndef NXTM_ETCDCLIENT_H
#define NXTM_ETCDCLIENT_H

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace nxtm {

/// How nodes are spoken to; the same for every cluster of a process. TLS is used where a file
/// of it is named. The password of the user is that of the environment variable
/// NXTM_PASSWORD; without it, it is asked for on the terminal.
struct EtcdOptions {
  std::string caFile, certFile, keyFile;
  std::string user;
  unsigned int timeoutSeconds = 10;  // until a request counts as not answered
};
EtcdOptions& TheEtcdOptions();

/// Base 64, in which requests and answers hold bytes.
void AppendBase64(std::string& text, std::string_view bytes);
std::string Base64(std::string_view bytes);
/// A StoreFailure for what is no base 64.
std::string FromBase64(const std::string& text);

/// What a cluster refuses, by the kinds that callers treat on their own.
enum class Refusal {
  kNone,
  kTooManyOperations,
  kTooLarge,
  kCompacted,  // the revision is not kept any more
};

/// An answer: its JSON, or why the cluster refused.
struct EtcdAnswer {
  Refusal refusal = Refusal::kNone;
  nlohmann::json json;
};

/// A client of one thread. Requests go to one node; when it does not answer they go to the
/// next one, so that a request can be carried out twice.
class EtcdClient {
 public:
  using Clock = std::chrono::steady_clock;
  using Ticket = unsigned long;
  static constexpr unsigned int kMostInFlight = 8;

  /// `nodes` are of the form HOST:PORT; `name` is the store, for messages. Where `stop` is
  /// given and becomes true, waiting ends with Unreachable.
  EtcdClient(const std::string& name, const std::vector<std::string>& nodes,
             const std::atomic<bool>* stop = nullptr);
  EtcdClient(const EtcdClient&) = delete;
  EtcdClient& operator=(const EtcdClient&) = delete;
  ~EtcdClient();

  /// Sends a request, as soon as fewer than kMostInFlight are under way.
  Ticket Start(const char* path, std::string body);
  /// Waits for the answer of a request. Unreachable when no node gave one in time; a
  /// StoreFailure when it was refused in another way than those of Refusal.
  EtcdAnswer Finish(Ticket ticket);
  /// Both, for a request that is refused in no way.
  nlohmann::json Call(const char* path, std::string body);
  /// Gives up a request whose answer is not needed.
  void Forget(Ticket ticket);

  /// For requests from now on.
  void SetTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

  /// Waits so far, one for all requests that were sent before it.
  unsigned long RoundTrips() const { return waits_; }

 private:
  struct Request;
  struct Curl;

  void Send(Request& request);
  void Work(bool wait);
  /// Takes an answer or a failure to have one; whether the request is done.
  bool Take(Request& request, int curlCode);
  void Authenticate();
  [[noreturn]] void FailUnreachable(const std::string& reason) const;

  std::string name_;
  std::vector<std::string> nodes_;
  std::chrono::milliseconds timeout_;
  unsigned long node_ = 0;  // the one that requests go to
  std::unique_ptr<Curl> curl_;
  std::map<Ticket, std::unique_ptr<Request>> requests_;
  Ticket lastTicket_ = 0;
  unsigned int inFlight_ = 0;
  unsigned long waits_ = 0;
  Clock::time_point lastWork_ = Clock::now();
  std::string token_;  // of the user
  const std::atomic<bool>* stop_;
};

}  // namespace nxtm

#endif
