#include "RawClient.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "controller/http/UrlText.h"

RawClient::RawClient(TestServer& server) : server_(server) {
  socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(server.port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
    ADD_FAILURE() << "cannot connect";
  }
}

RawClient::~RawClient() { close(socket_); }

bool RawClient::Send(std::string_view bytes) {
  return Wait([&] {
           const ssize_t sent =
               send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
           if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
           if (sent < 0 && errno != EAGAIN) return true;
           return bytes.empty();
         }) &&
         bytes.empty();
}

void RawClient::EndSending() { shutdown(socket_, SHUT_WR); }

RawClient::Got RawClient::Receive() {
  if (ended_) return Got::kEnd;
  char bytes[65536];
  const ssize_t size = recv(socket_, bytes, sizeof(bytes), MSG_DONTWAIT);
  if (size > 0) {
    received_.append(bytes, static_cast<std::size_t>(size));
    return Got::kBytes;
  }
  if (size < 0 && (errno == EAGAIN || errno == EINTR)) return Got::kNothing;
  ended_ = true;
  return Got::kEnd;
}

template <typename Condition>
bool RawClient::Wait(Condition condition, int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (true) {
    server_.Turn();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    pollfd watched{socket_, POLLIN, 0};
    poll(ended_ ? nullptr : &watched, ended_ ? 0 : 1, 1);
  }
}

namespace {

std::optional<RawAnswer> ParseAnswer(std::string& received, bool hasBody) {
  const std::size_t end = received.find("\r\n\r\n");
  if (end == std::string::npos) return std::nullopt;
  RawAnswer answer;
  answer.status = std::stoi(received.substr(received.find(' ') + 1, 3));
  for (std::size_t at = received.find("\r\n") + 2; at < end;) {
    const std::size_t lineEnd = received.find("\r\n", at);
    const std::size_t colon = received.find(':', at);
    answer.fields[controller::LowerCase(received.substr(at, colon - at))] =
        controller::WithoutBlanks(
            std::string_view(received).substr(colon + 1, lineEnd - colon - 1));
    at = lineEnd + 2;
  }
  std::size_t size = 0;
  if (hasBody && answer.fields.contains("content-length")) {
    size = std::stoul(answer.fields["content-length"]);
  }
  if (received.size() < end + 4 + size) return std::nullopt;
  answer.body = received.substr(end + 4, size);
  received.erase(0, end + 4 + size);
  return answer;
}

}  // namespace

RawAnswer RawClient::Read(bool hasBody) {
  std::optional<RawAnswer> answer;
  Wait([&] {
    const Got got = Receive();
    answer = ParseAnswer(received_, hasBody);
    // "100 Continue" comes before the answer.
    if (answer && answer->status == 100) answer.reset();
    return answer || got == Got::kEnd;
  });
  if (answer) return *answer;
  ADD_FAILURE() << "no answer but \"" << received_ << "\"" << (ended_ ? ", then the end" : "");
  return {};
}

std::string RawClient::ReadToEnd() {
  Wait([&] { return Receive() == Got::kEnd; });
  return received_;
}

bool RawClient::ReadUntil(std::string_view text) {
  return Wait([&] {
           const Got got = Receive();
           return received_.find(text) != std::string::npos || got == Got::kEnd;
         }) &&
         received_.find(text) != std::string::npos;
}

bool RawClient::IsEnded() {
  return Wait([&] { return Receive() == Got::kEnd; });
}

bool RawClient::IsSilent(int milliseconds) {
  const std::size_t before = received_.size();
  return !Wait([&] { return Receive() == Got::kEnd || received_.size() > before; }, milliseconds);
}

RawAnswer Ask(TestServer& server, const std::string& method, const std::string& target,
              const std::string& more, const std::string& body) {
  RawClient client(server);
  std::string text = method + " " + target + " HTTP/1.1\r\n" + more;
  if (more.find("Host:") == std::string::npos) text += "Host: localhost\r\n";
  if (!body.empty()) {
    text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    if (more.find("Content-Type:") == std::string::npos)
      text += "Content-Type: application/json\r\n";
  }
  client.Send(text + "\r\n" + body);
  return client.Read(method != "HEAD");
}

std::string ProblemName(const RawAnswer& answer) {
  if (!answer.fields.contains("content-type") ||
      answer.fields.at("content-type") != "application/problem+json") {
    return "";
  }
  const auto body = nlohmann::json::parse(answer.body);
  EXPECT_EQ(body.at("status"), answer.status);
  EXPECT_FALSE(body.at("title").get<std::string>().empty());
  const std::string type = body.at("type");
  constexpr std::string_view kPrefix = "urn:vexalink:problem:";
  EXPECT_TRUE(type.starts_with(kPrefix)) << type;
  return type.substr(kPrefix.size());
}

std::string ProblemDetail(const RawAnswer& answer) {
  return nlohmann::json::parse(answer.body).at("detail");
}
