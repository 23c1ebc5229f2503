#include "controller/http/ListenAddress.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/http/RequestHead.h"

namespace controller {

namespace {

/// Waiting connections beyond this are refused by the system.
constexpr int kBacklog = 128;

bool IsIpv6(const ListenAddress& address) { return address.address.find(':') != std::string::npos; }

/// Zeros but for the end: what `getsockname` fills and `bind` takes.
struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t size = sizeof(storage);

  sockaddr* Any() { return reinterpret_cast<sockaddr*>(&storage); }
  sockaddr_in& Ipv4() { return *reinterpret_cast<sockaddr_in*>(&storage); }
  sockaddr_in6& Ipv6() { return *reinterpret_cast<sockaddr_in6*>(&storage); }
};

SocketAddress ToSocketAddress(const ListenAddress& address) {
  SocketAddress made;
  if (IsIpv6(address)) {
    made.Ipv6().sin6_family = AF_INET6;
    made.Ipv6().sin6_port = htons(address.port);
    inet_pton(AF_INET6, address.address.c_str(), &made.Ipv6().sin6_addr);
    made.size = sizeof(sockaddr_in6);
  } else {
    made.Ipv4().sin_family = AF_INET;
    made.Ipv4().sin_port = htons(address.port);
    inet_pton(AF_INET, address.address.c_str(), &made.Ipv4().sin_addr);
    made.size = sizeof(sockaddr_in);
  }
  return made;
}

ListenAddress FromSocketAddress(SocketAddress& from) {
  char text[INET6_ADDRSTRLEN] = "";
  if (from.storage.ss_family == AF_INET6) {
    inet_ntop(AF_INET6, &from.Ipv6().sin6_addr, text, sizeof(text));
    return {text, ntohs(from.Ipv6().sin6_port)};
  }
  inet_ntop(AF_INET, &from.Ipv4().sin_addr, text, sizeof(text));
  return {text, ntohs(from.Ipv4().sin_port)};
}

[[noreturn]] void FailToListen(const ListenAddress& address, int fd) {
  const int error = errno;
  if (fd >= 0) close(fd);
  std::string why = std::strerror(error);
  if (error == EADDRINUSE) why = "another program listens there; give another --listen";
  if (error == EACCES) why = "not allowed; give a port from 1024 up";
  if (error == EADDRNOTAVAIL) why = "this computer does not have that address";
  throw Failure("listening on " + address.Text() + ": " + why);
}

}  // namespace

bool ListenAddress::IsLoopback() const {
  return address == "::1" || (!IsIpv6(*this) && address.starts_with("127."));
}

bool ListenAddress::IsWildcard() const { return address == "::" || address == "0.0.0.0"; }

std::string ListenAddress::Text() const {
  const std::string host = IsIpv6(*this) ? "[" + address + "]" : address;
  return host + ":" + std::to_string(port);
}

ListenAddress ParseListenAddress(const std::string& option, std::string_view text) {
  const bool all = text.starts_with('*');
  const auto authority =
      ParseAuthority(all ? "0.0.0.0" + std::string(text.substr(1)) : std::string(text));
  if (authority) {
    ListenAddress parsed;
    parsed.address = authority->host == "localhost" ? "127.0.0.1" : authority->host;
    parsed.port = static_cast<unsigned short>(authority->port.value_or(parsed.port));
    in6_addr bytes{};
    if (inet_pton(IsIpv6(parsed) ? AF_INET6 : AF_INET, parsed.address.c_str(), &bytes) == 1) {
      SocketAddress canonical = ToSocketAddress(parsed);
      return FromSocketAddress(canonical);
    }
  }
  throw Failure(
      option + " is " + Quoted(text) +
          "; give an address and a port, 127.0.0.1:7440, [::1]:7440 or *:7440 for example",
      ExitStatus::kBadInput);
}

int OpenListenSocket(const ListenAddress& address) {
  const int family = IsIpv6(address) ? AF_INET6 : AF_INET;
  const int fd = socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) FailToListen(address, fd);
  const int on = 1;
  // So that a controller that is started again need not wait for the connections of the one before.
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
  // "::" and "0.0.0.0" are two things that may both be asked for.
  if (family == AF_INET6) setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof(on));
  SocketAddress where = ToSocketAddress(address);
  if (bind(fd, where.Any(), where.size) != 0) FailToListen(address, fd);
  if (listen(fd, kBacklog) != 0) FailToListen(address, fd);
  return fd;
}

ListenAddress LocalAddress(int fd) {
  SocketAddress address;
  if (getsockname(fd, address.Any(), &address.size) != 0) return {"", 0};
  return FromSocketAddress(address);
}

ListenAddress PeerAddress(int fd) {
  SocketAddress address;
  if (getpeername(fd, address.Any(), &address.size) != 0) return {"", 0};
  return FromSocketAddress(address);
}

}  // namespace controller
