#include "tests/controller/programming/HttpReceiver.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int BoundSocket(int* port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no free port");
  }
  *port = ntohs(address.sin_port);
  return fd;
}

// Waits until there is something to read, and looks up now and then.
bool WaitReadable(int fd, const std::atomic<bool>& stops) {
  while (!stops) {
    pollfd wanted{fd, POLLIN, 0};
    if (poll(&wanted, 1, 20) > 0) return true;
  }
  return false;
}

bool SendAll(int fd, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return false;
    sent += static_cast<std::size_t>(count);
  }
  return true;
}

void ParseHead(const std::string& head, ReceivedRequest& request) {
  std::size_t begin = head.find("\r\n");
  const std::string first = head.substr(0, begin);
  request.method = first.substr(0, first.find(' '));
  request.target = first.substr(request.method.size() + 1);
  request.target.resize(request.target.find(' '));
  for (begin += 2; begin < head.size();) {
    const std::size_t end = head.find("\r\n", begin);
    const std::string line = head.substr(begin, end - begin);
    begin = end == head.npos ? head.size() : end + 2;
    const std::size_t colon = line.find(':');
    if (colon == line.npos) continue;
    std::string name = line.substr(0, colon);
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::size_t value = line.find_first_not_of(' ', colon + 1);
    std::string& all = request.headers[name];
    if (!all.empty()) all += ", ";
    if (value != line.npos) all += line.substr(value);
  }
}

}  // namespace

HttpReceiver::HttpReceiver(Answer answer) : answer_(std::move(answer)) {
  listener_ = BoundSocket(&port_);
  if (listen(listener_, 64) != 0) throw std::runtime_error("cannot listen");
  acceptor_ = std::thread([this] { Listen(); });
}

HttpReceiver::~HttpReceiver() {
  stops_ = true;
  acceptor_.join();
  for (std::thread& server : servers_) server.join();
  close(listener_);
}

std::string HttpReceiver::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<ReceivedRequest> HttpReceiver::Requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

HttpReceiver::Reply HttpReceiver::Plain(const std::string& status, const std::string& body,
                                        const std::string& headers) {
  return {"HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " +
          std::to_string(body.size()) + "\r\n" + headers + "\r\n" + body};
}

void HttpReceiver::Listen() {
  while (WaitReadable(listener_, stops_)) {
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) continue;
    servers_.emplace_back([this, fd] {
      Serve(fd);
      close(fd);
    });
  }
}

void HttpReceiver::Serve(int fd) {
  ReceivedRequest request;
  if (!ReadRequest(fd, request)) return;
  Reply reply;
  {
    const std::lock_guard lock(mutex_);
    reply = answer_(request, static_cast<int>(requests_.size()));
    requests_.push_back(request);
  }
  if (reply.hangs) {
    WaitReadable(fd, stops_);  // the client's end is something to read
    return;
  }
  SendAll(fd, reply.bytes);
  const std::string more(65536, 'x');
  while (reply.isEndless && !stops_ && SendAll(fd, more)) continue;
}

bool HttpReceiver::ReadRequest(int fd, ReceivedRequest& request) {
  std::string text;
  std::size_t end = text.npos;
  std::size_t wanted = 0;
  while (end == text.npos || text.size() < wanted) {
    if (!WaitReadable(fd, stops_)) return false;
    char bytes[4096];
    const ssize_t count = recv(fd, bytes, sizeof bytes, 0);
    if (count <= 0) return false;
    text.append(bytes, static_cast<std::size_t>(count));
    if (end != text.npos) continue;
    end = text.find("\r\n\r\n");
    if (end == text.npos) continue;
    ParseHead(text.substr(0, end), request);
    const auto length = request.headers.find("content-length");
    wanted = end + 4 + (length == request.headers.end() ? 0 : std::stoul(length->second));
  }
  request.body = text.substr(end + 4);
  return true;
}

int ClosedPort() {
  int port = 0;
  close(BoundSocket(&port));
  return port;
}
