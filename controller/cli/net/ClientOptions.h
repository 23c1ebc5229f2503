#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace controller::cli {

/// What all commands have that talk to a running controller.
struct ClientOptions {
  std::string url = "http://127.0.0.1:7440";
  std::string token;
  std::string tokenFile;
  /// Write JSON for programs instead of a text for people.
  bool json = false;
  /// "auto", "always", "never"
  std::string color = "auto";
};

/// Adds them to a command; `options` must live until the command has run.
void AddClientOptions(CLI::App& command, ClientOptions& options);

/// The token that is to be sent, from the option, the environment or the file; empty: none. Throws
/// a `Failure`.
std::string ClientToken(const ClientOptions& options);

/// The controller's address without a slash at its end: "http://127.0.0.1:7440". "http://" may be
/// left out. Throws a `Failure` where the text is no address of an HTTP server.
std::string ClientAddress(const std::string& url);

/// Whether an address leads to this machine, so that no proxy may stand before it.
bool IsLoopback(const std::string& address);

/// Who a local client says it is: "cli:ada".
std::string ClientActor();

}  // namespace controller::cli
