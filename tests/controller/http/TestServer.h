#pragma once

#include <csignal>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "controller/Loop.h"
#include "controller/http/HttpServer.h"

/// Tokens that are known to a test.
class FakeTokens final : public controller::ITokens {
 public:
  std::map<std::string, controller::TokenOwner> owners;

  std::optional<controller::TokenOwner> OwnerOf(std::string_view token) override {
    const auto found = owners.find(std::string(token));
    if (found == owners.end()) return std::nullopt;
    return found->second;
  }
};

/// A real server on a free port of 127.0.0.1; its loop turns while a `RawClient` waits.
struct TestServer {
  explicit TestServer(controller::HttpOptions options = {}, bool reachable = false) {
    std::signal(SIGPIPE, SIG_IGN);
    // Nobody may come in through the second one; but it is there, so that tokens are needed.
    options.listen = {{"127.0.0.1", 0}};
    if (reachable) options.listen.push_back({"0.0.0.0", 0});
    server = std::make_unique<controller::HttpServer>(base.get(), std::move(options), tokens);
  }

  /// Adds an entry that answers with what `handler` gives.
  void Add(const std::string& method, const std::string& path,
           std::function<controller::HttpResponse(const controller::HttpRequest&)> handler,
           controller::Role role = controller::Role::kView) {
    controller::HttpRoute route;
    route.method = method;
    route.path = path;
    route.role = role;
    route.handler = [handler = std::move(handler)](const controller::HttpRequest& request,
                                                   controller::Respond respond) {
      respond(handler(request));
    };
    server->Add(std::move(route));
  }

  /// An entry that tells what it was asked: "GET /x a=1 body".
  void AddEcho(const std::string& method, const std::string& path,
               controller::Role role = controller::Role::kView) {
    Add(
        method, path,
        [this](const controller::HttpRequest& request) {
          ++handled;
          std::string text = request.method + " " + request.path;
          for (const auto& [name, value] : request.parts) text += " {" + name + "=" + value + "}";
          for (const auto& [name, value] : request.query) text += " " + name + "=" + value;
          text += " [" + request.body + "] " + request.actor;
          return controller::HttpResponse{200, "text/plain", text, {}, {}};
        },
        role);
  }

  void Listen() { port = server->Listen().front().port; }
  void Turn() { event_base_loop(base.get(), EVLOOP_NONBLOCK); }

  controller::EventBase base = controller::MakeEventBase();
  FakeTokens tokens;
  std::unique_ptr<controller::HttpServer> server;
  unsigned short port = 0;
  int handled = 0;
};
