#include "controller/http/HttpServer.h"

#include <cerrno>
#include <cstring>
#include <event2/listener.h>
#include <exception>
#include <unistd.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/http/HttpExchange.h"
#include "controller/http/LibeventVersion.h"
#include "controller/http/MediaType.h"
#include "controller/http/Problem.h"
#include "controller/http/ResponseHead.h"

namespace controller {

namespace {

/// After the system had no descriptor left, say; the loop would try again at once and for ever.
constexpr long kPauseAfterTrouble = 1000;

/// Whose a listener is: evhttp keeps the listeners' own argument for itself.
std::unordered_map<const evconnlistener*, HttpServer*>& ListenerOwners() {
  static std::unordered_map<const evconnlistener*, HttpServer*> owners;
  return owners;
}

std::string TakeBody(evhttp_request* request) {
  evbuffer* const input = evhttp_request_get_input_buffer(request);
  std::string body(evbuffer_get_length(input), '\0');
  evbuffer_remove(input, body.data(), body.size());
  return body;
}

HttpResponse Refusal(const Problem& problem, const std::string& allowed) {
  HttpResponse refusal = problem.Response();
  if (refusal.status == 401) refusal.headers.emplace_back("WWW-Authenticate", "Bearer");
  if (refusal.status == 405) refusal.headers.emplace_back("Allow", allowed);
  return refusal;
}

HttpResponse Options(const std::string& allowed) {
  HttpResponse response;
  response.status = 204;
  response.headers.emplace_back("Allow", allowed);
  return response;
}

HttpResponse InternalTrouble() {
  return Problem("internal", "the controller could not do it; its log says why").Response();
}

}  // namespace

HttpServer::HttpServer(event_base* base, HttpOptions options, ITokens& tokens)
    : base_(base),
      options_(std::move(options)),
      access_(options_.listen, options_.allowedHosts, tokens),
      acceptAgain_(MakeLoopEvent(base, -1, 0, OnAcceptAgain, this)),
      http_(evhttp_new(base)) {
  if (http_ == nullptr) throw Failure("out of memory");
  CheckLibeventVersion();
  // What is too long or too large has been refused before evhttp sees it; these only keep it from
  // having other ideas.
  evhttp_set_max_headers_size(http_.get(), static_cast<ev_ssize_t>(options_.limits.head.bytes * 2));
  evhttp_set_allowed_methods(http_.get(), EVHTTP_REQ_GET | EVHTTP_REQ_HEAD | EVHTTP_REQ_POST |
                                              EVHTTP_REQ_PUT | EVHTTP_REQ_PATCH |
                                              EVHTTP_REQ_DELETE | EVHTTP_REQ_OPTIONS);
  evhttp_set_default_content_type(http_.get(), nullptr);
  evhttp_set_bevcb(http_.get(), OnConnection, this);
  evhttp_set_gencb(http_.get(), OnRequest, this);
}

HttpServer::~HttpServer() {
  for (const evconnlistener* const listener : listeners_) ListenerOwners().erase(listener);
  // Ends the connections, which tells those who are at work on them.
  http_.reset();
}

std::vector<ListenAddress> HttpServer::Listen() {
  std::vector<ListenAddress> bound;
  for (const ListenAddress& address : options_.listen) {
    const int fd = OpenListenSocket(address);
    evconnlistener* const listener =
        evconnlistener_new(base_, nullptr, nullptr, LEV_OPT_CLOSE_ON_FREE | LEV_OPT_CLOSE_ON_EXEC,
                           /*backlog, set already=*/0, fd);
    if (listener == nullptr) {
      close(fd);
      throw Failure("out of memory");
    }
    if (evhttp_bind_listener(http_.get(), listener) == nullptr) {
      evconnlistener_free(listener);
      throw Failure("out of memory");
    }
    evconnlistener_set_error_cb(listener, OnAcceptTrouble);
    listeners_.push_back(listener);
    ListenerOwners()[listener] = this;
    bound.push_back(LocalAddress(fd));
  }
  return bound;
}

void HttpServer::OnAcceptTrouble(evconnlistener* listener, void*) {
  const std::string why = std::strerror(errno);
  HttpServer& self = *ListenerOwners().at(listener);
  Guarded(self.base_, [&] {
    Log::Warning("http: no connection can be taken: " + why + "; trying again in a second");
    for (evconnlistener* const paused : self.listeners_) evconnlistener_disable(paused);
    const timeval pause = Milliseconds(kPauseAfterTrouble);
    event_add(self.acceptAgain_.get(), &pause);
  });
}

void HttpServer::OnAcceptAgain(int, short, void* argument) {
  auto& self = *static_cast<HttpServer*>(argument);
  for (evconnlistener* const listener : self.listeners_) evconnlistener_enable(listener);
}

bufferevent* HttpServer::OnConnection(event_base* base, void* argument) {
  auto& self = *static_cast<HttpServer*>(argument);
  bufferevent* buffers = nullptr;
  Guarded(base, [&] { buffers = self.TakeConnection(); });
  return buffers;
}

bufferevent* HttpServer::TakeConnection() {
  HttpConnection::IOwner& owner = *this;
  auto connection = std::make_unique<HttpConnection>(base_, owner, options_.limits);
  bufferevent* const buffers = connection->Buffers();
  connections_.emplace(buffers, std::move(connection));
  ++counters_.connections;
  counters_.openConnections = connections_.size();
  return buffers;
}

bool HttpServer::HasRoom() const { return connections_.size() <= options_.limits.connections; }

void HttpServer::OnEnded(HttpConnection& connection) {
  connections_.erase(connection.Buffers());
  counters_.openConnections = connections_.size();
}

void HttpServer::OnRefused(const HttpConnection& connection, int status) {
  Count(connection.Peer().Text() + " refused", status);
}

void HttpServer::Count(const std::string& what, int status) {
  ++counters_.answers[status];
  if (Log::Wants(LogLevel::kDebug)) Log::Debug("http: " + what + " " + std::to_string(status));
}

JudgedRequest HttpServer::Judge(const RequestHead& head, const HttpConnection& connection) {
  JudgedRequest judged;
  judged.method = head.method;
  judged.target = head.target;
  std::string allowed;
  try {
    Route(head, connection, judged);
  } catch (const Problem& problem) {
    if (const auto segments = PathSegments(head.path)) allowed = router_.Allowed(*segments);
    judged.refusal = Refusal(problem, allowed);
  } catch (const std::exception& failure) {
    Log::Error("http: " + Quoted(head.target) + ": " + failure.what());
    judged.refusal = InternalTrouble();
  }
  return judged;
}

void HttpServer::Route(const RequestHead& head, const HttpConnection& connection,
                       JudgedRequest& judged) {
  access_.CheckHost(head, connection.Local());
  const auto segments = PathSegments(head.path);
  if (!segments) {
    throw Problem("malformed", "the path " + Quoted(head.path) + " is not well encoded UTF-8");
  }
  HttpRequest& request = judged.request;
  if (head.method == "OPTIONS") {
    const std::string allowed = router_.Allowed(*segments);
    if (allowed.empty()) throw Problem("not-found", "there is nothing at this address");
    judged.refusal = Options(allowed);
    return;
  }
  Router::Match match = router_.Find(head.method, *segments);
  judged.route = match.route;
  request.method = match.route->method;
  if (request.method != "GET") access_.CheckSite(head);
  if (!match.route->open) {
    const TokenOwner owner = access_.Identify(head);
    CheckRole(owner, match.route->role);
    request.actor = owner.name;
    request.role = owner.role;
  }
  CheckMediaType(head, match.route->bodyTypes);
  if (head.length.value_or(0) > match.route->bodyLimit) RefuseBody(match.route->bodyLimit);
  for (const std::string& segment : *segments) request.path += "/" + segment;
  request.parts = std::move(match.parts);
  request.query = head.query;
  request.headers = head.fields;
}

bool HttpServer::IsStillAllowed(const HttpRequest& request, Role role) {
  RequestHead head;
  head.fields = request.headers;
  try {
    CheckRole(access_.Identify(head), role);
    return true;
  } catch (const Problem&) {
    return false;
  } catch (const Failure& failure) {
    // That the tokens cannot be read just now is no reason to turn those away who are in.
    Log::Error(std::string("http: tokens: ") + failure.what());
    return true;
  }
}

void HttpServer::OnRequest(evhttp_request* request, void* argument) {
  auto& self = *static_cast<HttpServer*>(argument);
  Guarded(self.base_, [&] { self.Handle(request); });
}

void HttpServer::Handle(evhttp_request* request) {
  evhttp_connection* const from = evhttp_request_get_connection(request);
  HttpConnection& connection = *connections_.at(evhttp_connection_get_bufferevent(from));
  std::optional<JudgedRequest> judged = connection.TakeRequest();
  const char* const target = evhttp_request_get_uri(request);
  const bool agreed = judged && target != nullptr && judged->target == target;
  const std::string method = agreed ? judged->method : "?";
  const std::string what =
      connection.Peer().Text() + " " + method + " " + (agreed ? Quoted(judged->target) : "?");
  const auto exchange = std::make_shared<HttpExchange>(
      request, connection, method != "HEAD",
      [this, what](const HttpResponse& response) { Count(what, response.status); });
  const auto respond = [exchange](HttpResponse response) { exchange->Answer(std::move(response)); };
  if (!agreed) {
    Log::Error("http: a request was read in two ways; its connection ends");
    respond(InternalTrouble());
    return connection.Cut();
  }
  judged->request.body = TakeBody(request);
  Work(*std::move(judged), respond);
}

void HttpServer::Work(JudgedRequest judged, const Respond& respond) {
  if (judged.refusal) return respond(*std::move(judged.refusal));
  try {
    if (holdReason_ && !judged.route->always) {
      const std::string reason = holdReason_();
      if (!reason.empty()) throw Problem("not-ready", reason);
    }
    judged.route->handler(judged.request, respond);
  } catch (const Problem& problem) {
    respond(problem.Response());
  } catch (const std::exception& failure) {
    Log::Error("http: " + judged.method + " " + Quoted(judged.target) + ": " + failure.what());
    respond(InternalTrouble());
  }
}

}  // namespace controller
