#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TestServer.h"

/// An answer, taken apart.
struct RawAnswer {
  int status = 0;
  /// Names in lower case.
  std::map<std::string, std::string> fields;
  std::string body;
};

/// A client that sends bytes as they are given and reads what comes, while the server's loop turns.
class RawClient {
 public:
  explicit RawClient(TestServer& server);
  ~RawClient();
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;

  /// All of it, at once; false where the server does not take it.
  bool Send(std::string_view bytes);
  /// Nothing more will be sent.
  void EndSending();
  /// The next answer. Without one within ten seconds, or before the connection ends, a failure of
  /// the test and status 0. `hasBody` false: it answers a HEAD.
  RawAnswer Read(bool hasBody = true);
  /// All that comes until the server ends the connection.
  std::string ReadToEnd();
  /// Reads until `text` has come; false where it does not.
  bool ReadUntil(std::string_view text);
  /// Waits until the server has ended the connection.
  bool IsEnded();
  /// Whether something comes within so many milliseconds.
  bool IsSilent(int milliseconds);
  const std::string& Received() const { return received_; }

 private:
  enum class Got { kBytes, kNothing, kEnd };
  Got Receive();
  template <typename Condition>
  bool Wait(Condition condition, int milliseconds = 10000);

  TestServer& server_;
  int socket_ = -1;
  bool ended_ = false;
  std::string received_;
};

/// One request on a connection of its own. `more` are further header lines, each with its CR LF.
RawAnswer Ask(TestServer& server, const std::string& method, const std::string& target,
              const std::string& more = "", const std::string& body = "");

/// Name of an answer's problem, "not-found"; empty where it is none.
std::string ProblemName(const RawAnswer& answer);
/// Its detail.
std::string ProblemDetail(const RawAnswer& answer);
