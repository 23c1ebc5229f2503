#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace controller {

/// What a client may do; each includes those before it.
enum class Role : int { kView = 0, kOperate = 1, kEdit = 2 };

/// A request that has passed the checks of the server: its host, origin, token and size.
struct HttpRequest {
  /// "GET", "POST", "PUT", "PATCH", "DELETE"; HEAD is answered like GET without its body.
  std::string method;
  /// As it was routed, percent-decoded, without the query.
  std::string path;
  /// The parts of the path that the route leaves open, by name.
  std::map<std::string, std::string> parts;
  /// Percent-decoded, in their order; a name may come more than once.
  std::vector<std::pair<std::string, std::string>> query;
  /// By name in lower case; of several with one name all, joined by ", ".
  std::map<std::string, std::string> headers;
  std::string body;
  /// Who it is, for the journal: a token's name, or "local", or what a local client calls itself.
  std::string actor;
  Role role = Role::kView;
};

/// The rest of an answer that goes on: each `Write` is sent at once. Destroyed, it ends the answer
/// and the connection. From the loop only.
class IHttpStream {
 public:
  virtual ~IHttpStream() = default;
  /// Harmless where the client has gone.
  virtual void Write(std::string_view text) = 0;
  /// How many bytes the client has not taken yet.
  virtual std::size_t Unread() const = 0;
  /// `gone` is called once, when the client goes; it may destroy the stream.
  virtual void WhenGone(std::function<void()> gone) = 0;
};

struct HttpResponse {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  /// Beside those that every answer has.
  std::vector<std::pair<std::string, std::string>> headers;
  /// Where it is given, `body` is only the beginning: this gets what the rest is written to. Not
  /// called for HEAD, nor where the client has gone.
  std::function<void(std::unique_ptr<IHttpStream>)> goesOn;
};

/// Answers a request: exactly once, from the loop, at once or later. Harmless where the client has
/// gone meanwhile.
using Respond = std::function<void(HttpResponse)>;

/// May throw: a `Problem` is answered as it says, a `Failure` with 500.
using HttpHandler = std::function<void(const HttpRequest& request, Respond respond)>;

/// One entry of the server's table.
struct HttpRoute {
  std::string method;
  /// "/api/v1/events/{id}": a part in braces takes one segment of the path.
  std::string path;
  Role role = Role::kView;
  HttpHandler handler;
  /// How much a body may hold.
  std::size_t bodyLimit = 1UL << 20;
  /// The media types that a body may have.
  std::vector<std::string> bodyTypes = {"application/json"};
  /// Answers also those who have no token where tokens are needed: the page, which has to be there
  /// before it can ask for one.
  bool open = false;
  /// Answers also while the server holds everything else back; see `HttpServer::HoldWhile`.
  bool always = false;
};

}  // namespace controller
