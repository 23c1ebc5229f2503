#pragma once

#include <string>
#include <string_view>

namespace controller {

/// Where the server listens.
struct ListenAddress {
  /// Numeric, IPv4 or IPv6, without brackets.
  std::string address = "127.0.0.1";
  /// 0: any that is free.
  unsigned short port = 7440;

  /// Nobody but this computer reaches it there.
  bool IsLoopback() const;
  /// "0.0.0.0" or "::": all addresses of this computer.
  bool IsWildcard() const;
  /// "127.0.0.1:7440", "[::1]:7440"
  std::string Text() const;
};

/// Reads "127.0.0.1:7440", "[::1]:7440", "localhost:7440", "*:7440" (all IPv4 addresses), and any
/// of them without the port. Throws a `Failure` that names `option`, for what came from the command
/// line.
ListenAddress ParseListenAddress(const std::string& option, std::string_view text);

/// A socket that listens there, not blocking, closed in child processes. Throws a `Failure` that
/// says why it cannot be had.
int OpenListenSocket(const ListenAddress& address);

/// Where a socket is bound, or where its peer is.
ListenAddress LocalAddress(int fd);
ListenAddress PeerAddress(int fd);

}  // namespace controller
