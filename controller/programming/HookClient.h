#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "controller/Curl.h"
#include "controller/Loop.h"
#include "controller/programming/HookRequest.h"

namespace controller {

/// How one attempt at a request went.
struct HookAnswer {
  enum class Kind { kAnswered, kTimedOut, kNoAnswer };
  Kind kind = Kind::kNoAnswer;
  /// The last answer's status; 0 where there was none.
  long status = 0;
  /// "200 OK", or why there is no answer.
  std::string text;
  /// The first 4,096 bytes of what was answered.
  std::string body;
  /// Whether another attempt may go better.
  bool mayPass = false;
  /// The answer's Retry-After.
  std::optional<long> retryAfterSeconds;
};

/// Sends requests by libcurl, on the loop and without holding it, looking up names included. The
/// library is loaded at the first request. Nothing of the environment counts: no proxy, no .netrc,
/// no cookies.
class HookClient {
 public:
  /// Called once, from the loop, never from inside `Begin`.
  using Done = std::function<void(const HookAnswer&)>;

  explicit HookClient(event_base* base);
  /// Aborts what is under way.
  ~HookClient();
  HookClient(const HookClient&) = delete;
  HookClient& operator=(const HookClient&) = delete;

  /// Answers by what `Abort` knows it. Throws a `Failure` where the library is not there.
  unsigned long Begin(HookRequest request, Done done);
  /// Ends a request; its `Done` is not called. One that has ended already is no error.
  void Abort(unsigned long id);

 private:
  class Call;
  struct MultiCleanup {
    void operator()(CURLM* multi) const;
  };

  void Open();
  void Add(Call& call);
  void Act(int fd, int what);
  void TakeEnded();
  void End(unsigned long id, CURLcode code);
  void WatchSocket(curl_socket_t fd, int what);
  void WatchTimer(long milliseconds);
  static int OnSocketWanted(CURL*, curl_socket_t fd, int what, void* self, void*) noexcept;
  static int OnTimerWanted(CURLM*, long milliseconds, void* self) noexcept;
  static void OnSocket(int fd, short what, void* self);
  static void OnTimer(int, short, void* self);

  event_base* base_;
  const Curl* curl_ = nullptr;
  LoopEvent timer_;
  std::map<curl_socket_t, LoopEvent> sockets_;
  std::unique_ptr<CURLM, MultiCleanup> multi_;
  std::map<unsigned long, std::unique_ptr<Call>> calls_;
  unsigned long lastId_ = 0;
};

}  // namespace controller
