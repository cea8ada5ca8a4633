#include "store/etcdclient.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "data/failure.h"
#include "store/curllibrary.h"

namespace nxtm {

namespace {

using nlohmann::json;
using std::chrono::milliseconds;

constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::array<signed char, 256> DigitValues() {
  std::array<signed char, 256> values{};
  values.fill(-1);
  for (signed char i = 0; i < 64; ++i) values[static_cast<unsigned char>(kDigits[i])] = i;
  return values;
}

/// The password of a user, asked for once a process.
const std::string& Password(const std::string& user) {
  static const std::string password = [&] {
    if (const char* given = std::getenv("NXTM_PASSWORD")) return std::string(given);
    if (!isatty(STDIN_FILENO)) throw Failure("the password of " + user + " is not in NXTM_PASSWORD");
    std::fprintf(stderr, "Password of %s: ", user.c_str());
    termios before{};
    tcgetattr(STDIN_FILENO, &before);
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    std::string line;
    std::getline(std::cin, line);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::fputc('\n', stderr);
    return line;
  }();
  return password;
}

Refusal RefusalOf(const std::string& message) {
  const auto says = [&](const char* words) { return message.find(words) != std::string::npos; };
  if (says("too many operations")) return Refusal::kTooManyOperations;
  if (says("request is too large") || says("larger than max")) return Refusal::kTooLarge;
  if (says("has been compacted")) return Refusal::kCompacted;
  return Refusal::kNone;
}

/// Whether a node that answers so may give another answer soon, or another node does. The
/// codes are those of gRPC.
bool IsPassing(int code, const std::string& message) {
  constexpr int kUnknown = 2, kDeadlineExceeded = 4, kAborted = 10, kUnavailable = 14;
  return code == kUnknown || code == kDeadlineExceeded || code == kAborted || code == kUnavailable ||
         message.find("future revision") != std::string::npos ||
         message.find("too many requests") != std::string::npos;
}

}  // namespace

EtcdOptions& TheEtcdOptions() {
  static EtcdOptions options;
  return options;
}

void AppendBase64(std::string& text, std::string_view bytes) {
  const auto at = [&](unsigned long i) -> unsigned int {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0;
  };
  for (unsigned long i = 0; i < bytes.size(); i += 3) {
    const unsigned int group = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
    const char digits[] = {kDigits[group >> 18], kDigits[group >> 12 & 63],
                           i + 1 < bytes.size() ? kDigits[group >> 6 & 63] : '=',
                           i + 2 < bytes.size() ? kDigits[group & 63] : '='};
    text.append(digits, 4);
  }
}

std::string Base64(std::string_view bytes) {
  std::string text;
  AppendBase64(text, bytes);
  return text;
}

std::string FromBase64(const std::string& text) {
  static const std::array<signed char, 256> kValues = DigitValues();
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  unsigned int group = 0;
  unsigned int bits = 0;
  for (char digit : text) {
    if (digit == '=') break;
    const int value = kValues[static_cast<unsigned char>(digit)];
    if (value < 0) throw StoreFailure("a node's answer is not in base 64");
    group = group << 6 | static_cast<unsigned int>(value);
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    bytes += static_cast<char>(group >> bits & 255);
  }
  return bytes;
}

struct EtcdClient::Request {
  Ticket ticket = 0;
  const char* path = nullptr;
  std::string body, answer;
  unsigned long wait = 0;  // the first one that ends after it
  unsigned long node = 0;  // that it was sent to
  Clock::time_point end;
  Clock::time_point again;  // when to send it, while it is not under way
  CURL* handle = nullptr;   // while it is under way
  bool done = false;
  EtcdAnswer result;
  std::string failure;  // why the last node did not answer
  bool hasRefused = false;
};

struct EtcdClient::Curl {
  Curl() {
    if (!multi) throw std::bad_alloc();
    library.multiSetopt(multi, CURLMOPT_MAX_TOTAL_CONNECTIONS, long{kMostInFlight});
  }
  Curl(const Curl&) = delete;
  Curl& operator=(const Curl&) = delete;
  ~Curl() {
    for (CURL* handle : idle) library.easyCleanup(handle);
    library.multiCleanup(multi);
    library.slistFreeAll(headers);
  }

  /// The fields of a request's head, with the user's token.
  void SetHeaders(const std::string& token) {
    library.slistFreeAll(headers);
    headers = library.slistAppend(nullptr, "Content-Type: application/json");
    headers = library.slistAppend(headers, "Expect:");
    if (!token.empty()) headers = library.slistAppend(headers, ("Authorization: " + token).c_str());
  }

  const CurlLibrary& library = TheCurlLibrary();
  CURLM* multi = library.multiInit();
  std::vector<CURL*> idle;
  curl_slist* headers = nullptr;
};

EtcdClient::EtcdClient(const std::string& name, const std::vector<std::string>& nodes,
                       const std::atomic<bool>* stop)
    : name_(name),
      nodes_(nodes),
      timeout_(TheEtcdOptions().timeoutSeconds * 1000LL),
      curl_(std::make_unique<Curl>()),
      stop_(stop) {
  curl_->SetHeaders("");
  if (!TheEtcdOptions().user.empty()) Authenticate();
}

EtcdClient::~EtcdClient() {
  while (!requests_.empty()) Forget(requests_.begin()->first);
}

void EtcdClient::Authenticate() {
  const EtcdOptions& options = TheEtcdOptions();
  token_.clear();
  curl_->SetHeaders("");
  const json user = {{"name", options.user}, {"password", Password(options.user)}};
  token_ = Call("/v3/auth/authenticate", user.dump()).value("token", "");
  curl_->SetHeaders(token_);
}

EtcdClient::Ticket EtcdClient::Start(const char* path, std::string body) {
  auto request = std::make_unique<Request>();
  request->ticket = ++lastTicket_;
  request->path = path;
  request->body = std::move(body);
  request->wait = waits_ + 1;
  request->again = Clock::now();
  request->end = request->again + timeout_;
  requests_[lastTicket_] = std::move(request);
  Work(false);
  return lastTicket_;
}

void EtcdClient::Send(Request& request) {
  const EtcdOptions& options = TheEtcdOptions();
  CURL* handle = nullptr;
  if (curl_->idle.empty()) {
    handle = curl_->library.easyInit();
    if (!handle) throw std::bad_alloc();
  } else {
    handle = curl_->idle.back();
    curl_->idle.pop_back();
    curl_->library.easyReset(handle);
  }
  const bool safe = !options.caFile.empty() || !options.certFile.empty();
  const std::string url = (safe ? "https://" : "http://") + nodes_[node_] + request.path;
  const auto left = std::chrono::duration_cast<milliseconds>(request.end - Clock::now()).count();
  // A node that hangs leaves time for the others.
  const long share = std::max(1000L, static_cast<long>(timeout_.count() / 3));
  const long limit = std::max(1L, std::min(share, static_cast<long>(left)));
  const auto set = curl_->library.easySetopt;
  set(handle, CURLOPT_URL, url.c_str());
  set(handle, CURLOPT_NOPROXY, "*");
  set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  set(handle, CURLOPT_NOSIGNAL, 1L);
  set(handle, CURLOPT_TCP_KEEPALIVE, 1L);
  set(handle, CURLOPT_CONNECTTIMEOUT_MS, std::min(1000L, limit));
  set(handle, CURLOPT_TIMEOUT_MS, limit);
  set(handle, CURLOPT_HTTPHEADER, curl_->headers);
  set(handle, CURLOPT_POSTFIELDS, request.body.data());
  set(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
  set(handle, CURLOPT_PRIVATE, &request);
  set(handle, CURLOPT_WRITEDATA, &request.answer);
  set(
      handle, CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t size, std::size_t n, std::string* answer) {
        answer->append(bytes, size * n);
        return size * n;
      });
  if (!options.caFile.empty()) set(handle, CURLOPT_CAINFO, options.caFile.c_str());
  if (!options.certFile.empty()) set(handle, CURLOPT_SSLCERT, options.certFile.c_str());
  if (!options.keyFile.empty()) set(handle, CURLOPT_SSLKEY, options.keyFile.c_str());
  request.answer.clear();
  request.node = node_;
  request.handle = handle;
  curl_->library.multiAddHandle(curl_->multi, handle);
  ++inFlight_;
}

void EtcdClient::Work(bool wait) {
  const Clock::time_point now = Clock::now();
  // Time in which the caller did other things does not count against the nodes.
  const Clock::duration away = now - lastWork_;
  lastWork_ = now;
  bool resting = false;
  for (auto& [ticket, request] : requests_) {
    if (away > std::chrono::seconds(2)) request->end += away;
    if (request->done || request->handle) continue;
    if (request->again > now) {
      resting = true;
    } else if (inFlight_ < kMostInFlight) {
      Send(*request);
    }
  }
  int running = 0;
  curl_->library.multiPerform(curl_->multi, &running);
  if (wait && static_cast<unsigned int>(running) == inFlight_) {
    // Nothing has ended yet. A pause is cut short to send again, or to see the stop.
    curl_->library.multiPoll(curl_->multi, nullptr, 0, resting || stop_ ? 20 : 1000, nullptr);
    curl_->library.multiPerform(curl_->multi, &running);
  }
  int left = 0;
  while (CURLMsg* message = curl_->library.multiInfoRead(curl_->multi, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    CURL* handle = message->easy_handle;
    const CURLcode code = message->data.result;
    Request* request = nullptr;
    curl_->library.easyGetinfo(handle, CURLINFO_PRIVATE, &request);
    curl_->library.multiRemoveHandle(curl_->multi, handle);
    curl_->idle.push_back(handle);
    request->handle = nullptr;
    --inFlight_;
    request->done = Take(*request, code);
    if (request->done) continue;
    // The next node; after a round of all of them a pause.
    if (request->node == node_) node_ = (node_ + 1) % nodes_.size();
    request->again = Clock::now() + milliseconds(node_ == 0 ? 100 : 5);
    if (request->again > request->end) request->done = true;
  }
}

bool EtcdClient::Take(Request& request, int curlCode) {
  if (curlCode != CURLE_OK) {
    // That the time was over at last tells less than what happened before.
    if (curlCode != CURLE_OPERATION_TIMEDOUT || request.failure.empty())
      request.failure =
          nodes_[request.node] + ": " + curl_->library.easyStrerror(static_cast<CURLcode>(curlCode));
    return false;
  }
  json answer = json::parse(request.answer, nullptr, false);
  std::string().swap(request.answer);
  if (!answer.is_object()) {
    request.failure = nodes_[request.node] + ": an answer that is not JSON";
    return false;
  }
  const auto error = answer.find("error");
  if (error == answer.end()) {
    request.result.json = std::move(answer);
    request.failure.clear();
    return true;
  }
  // A stream's error is an object of its own.
  const json& said = error->is_object() ? *error : answer;
  const std::string message = said.value("message", error->is_string() ? error->get<std::string>() : "");
  request.failure = nodes_[request.node] + ": " + message;
  request.result.refusal = RefusalOf(message);
  if (request.result.refusal != Refusal::kNone) return true;
  if (IsPassing(said.value("code", said.value("grpc_code", 0)), message)) return false;
  request.hasRefused = true;
  return true;
}

EtcdAnswer EtcdClient::Finish(Ticket ticket) {
  for (;;) {
    Request& request = *requests_.at(ticket);
    waits_ = std::max(waits_, request.wait);
    while (!request.done) {
      if (stop_ && *stop_) FailUnreachable("waiting was broken off");
      Work(true);
    }
    if (request.hasRefused && !token_.empty() &&
        request.failure.find("invalid auth token") != std::string::npos) {
      // The token has run out.
      request.hasRefused = request.done = false;
      request.again = Clock::now() + std::chrono::hours(1);
      Authenticate();
      request.again = Clock::now();
      continue;
    }
    const std::unique_ptr<Request> ended = std::move(requests_.at(ticket));
    requests_.erase(ticket);
    if (ended->hasRefused) throw StoreFailure(name_ + ": " + ended->failure);
    if (ended->result.refusal == Refusal::kNone && !ended->failure.empty()) FailUnreachable(ended->failure);
    return std::move(ended->result);
  }
}

json EtcdClient::Call(const char* path, std::string body) {
  EtcdAnswer answer = Finish(Start(path, std::move(body)));
  if (answer.refusal != Refusal::kNone) throw StoreFailure(name_ + ": a node refuses " + path);
  return std::move(answer.json);
}

void EtcdClient::Forget(Ticket ticket) {
  const auto found = requests_.find(ticket);
  if (found == requests_.end()) return;
  if (CURL* handle = found->second->handle) {
    curl_->library.multiRemoveHandle(curl_->multi, handle);
    curl_->library.easyCleanup(handle);
    --inFlight_;
  }
  requests_.erase(found);
}

void EtcdClient::FailUnreachable(const std::string& reason) const {
  throw Unreachable(name_ + ": no majority of the nodes answered within " +
                    std::to_string(TheEtcdOptions().timeoutSeconds) + " seconds (" + reason + ")");
}

}  // namespace nxtm
