#pragma once

#include <cstdint>
#include <event2/http.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "controller/Loop.h"
#include "controller/http/Access.h"
#include "controller/http/Http.h"
#include "controller/http/HttpConnection.h"
#include "controller/http/HttpLimits.h"
#include "controller/http/ListenAddress.h"
#include "controller/http/Router.h"

namespace controller {

struct HttpOptions {
  std::vector<ListenAddress> listen = {ListenAddress{}};
  /// Further names under which the server is reached.
  std::vector<std::string> allowedHosts;
  HttpLimits limits;
};

/// What has been counted since the server was made.
struct HttpCounters {
  /// Answers by their status.
  std::map<int, std::uint64_t> answers;
  std::uint64_t connections = 0;
  std::size_t openConnections = 0;
};

/// The web server: takes connections, lets in those requests that may come in, and gives each to
/// its entry of the table. From the loop only. Destroyed, it ends all connections; what handlers
/// still hold to answer with is harmless then.
class HttpServer final : private HttpConnection::IOwner {
 public:
  /// Does not listen yet. `tokens` must outlive it, and SIGPIPE must be ignored (see `Signals`).
  /// Throws a `Failure`.
  HttpServer(event_base* base, HttpOptions options, ITokens& tokens);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Before `Listen`. Throws a `Failure` where the entry is there already.
  void Add(HttpRoute route) { router_.Add(std::move(route)); }
  /// Opens all sockets or throws a `Failure`; answers where they are bound, port 0 replaced by the
  /// real one.
  std::vector<ListenAddress> Listen();

  /// As long as this answers a reason, requests are answered with it and 503, but for those routes
  /// that answer always. At most one.
  void HoldWhile(std::function<std::string()> reason) { holdReason_ = std::move(reason); }

  const HttpCounters& Counters() const { return counters_; }
  const HttpLimits& Limits() const { return options_.limits; }
  /// Somebody who is not at this computer can reach it, so that tokens are needed.
  bool NeedsToken() const { return access_.NeedsToken(); }
  /// Whether the token that came with a request is still one that may do what needs `role`; true
  /// where none was needed and none came.
  bool IsStillAllowed(const HttpRequest& request, Role role);

 private:
  struct HttpFree {
    void operator()(evhttp* http) const { evhttp_free(http); }
  };

  static bufferevent* OnConnection(event_base* base, void* self);
  static void OnRequest(evhttp_request* request, void* self);
  static void OnAcceptTrouble(evconnlistener* listener, void* self);
  static void OnAcceptAgain(int, short, void* self);

  bool HasRoom() const override;
  JudgedRequest Judge(const RequestHead& head, const HttpConnection& connection) override;
  void OnRefused(const HttpConnection& connection, int status) override;
  void OnEnded(HttpConnection& connection) override;

  void Route(const RequestHead& head, const HttpConnection& connection, JudgedRequest& judged);
  bufferevent* TakeConnection();
  void Handle(evhttp_request* request);
  void Work(JudgedRequest judged, const Respond& respond);
  void Count(const std::string& what, int status);

  event_base* base_;
  HttpOptions options_;
  Router router_;
  std::function<std::string()> holdReason_;
  Access access_;
  HttpCounters counters_;
  std::unordered_map<const bufferevent*, std::unique_ptr<HttpConnection>> connections_;
  std::vector<evconnlistener*> listeners_;
  LoopEvent acceptAgain_;
  std::unique_ptr<evhttp, HttpFree> http_;
};

}  // namespace controller
