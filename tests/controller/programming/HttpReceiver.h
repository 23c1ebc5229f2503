#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A request as it came in.
struct ReceivedRequest {
  std::string method;
  std::string target;
  /// By names in lower case; of several with one name the values, ", " between them.
  std::map<std::string, std::string> headers;
  std::string body;
};

/// A real HTTP server on a free port of 127.0.0.1, on threads of its own. Serves one request a
/// connection.
class HttpReceiver {
 public:
  struct Reply {
    /// The whole answer, status line first; empty: the connection is closed without one.
    std::string bytes;
    /// Nothing is sent, and the connection stays open until the client closes it.
    bool hangs = false;
    /// After `bytes` comes more, until the client has enough.
    bool isEndless = false;
  };
  /// Called on the server's threads, one at a time, with how many requests came before.
  using Answer = std::function<Reply(const ReceivedRequest&, int before)>;

  explicit HttpReceiver(Answer answer);
  ~HttpReceiver();
  HttpReceiver(const HttpReceiver&) = delete;
  HttpReceiver& operator=(const HttpReceiver&) = delete;

  /// "http://127.0.0.1:PORT" and the path.
  std::string Url(const std::string& path = "/") const;
  int Port() const { return port_; }
  std::vector<ReceivedRequest> Requests() const;

  /// An answer: "200 OK", more header lines, each with its line end, and a body.
  static Reply Plain(const std::string& status, const std::string& body = "",
                     const std::string& headers = "");

 private:
  void Listen();
  void Serve(int fd);
  bool ReadRequest(int fd, ReceivedRequest& request);

  Answer answer_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stops_{false};
  mutable std::mutex mutex_;
  std::vector<ReceivedRequest> requests_;
  std::vector<std::thread> servers_;
  std::thread acceptor_;
};

/// A port of 127.0.0.1 on which nobody listens.
int ClosedPort();
