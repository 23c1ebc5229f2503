#include "controller/ServiceNotify.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "controller/Printable.h"

namespace controller {

namespace {

void Send(const std::string& message) {
  const char* path = std::getenv("NOTIFY_SOCKET");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path == nullptr || (path[0] != '/' && path[0] != '@')) return;
  const std::size_t length = std::strlen(path);
  if (length >= sizeof(address.sun_path)) return;
  std::memcpy(address.sun_path, path, length);
  if (path[0] == '@') address.sun_path[0] = '\0';

  const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket < 0) return;
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
  // Whether it arrives is the service manager's affair; there is nothing to do about it here.
  (void)::sendto(socket, message.data(), message.size(), MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&address), size);
  ::close(socket);
}

std::string MonotonicMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::to_string(now.tv_sec * 1000000LL + now.tv_nsec / 1000);
}

}  // namespace

void ServiceNotify::Ready(const std::string& status) {
  Send("READY=1\nSTATUS=" + Printable(status));
}

void ServiceNotify::Status(const std::string& status) { Send("STATUS=" + Printable(status)); }

void ServiceNotify::Reloading() { Send("RELOADING=1\nMONOTONIC_USEC=" + MonotonicMicroseconds()); }

void ServiceNotify::Stopping() { Send("STOPPING=1\nSTATUS=stopping"); }

}  // namespace controller
