#pragma once

#include <string>

namespace controller {

/// Tells the service manager that started this program how it is doing, through the datagram socket
/// that NOTIFY_SOCKET names (a path, or `@name` for an abstract one). Without that variable, or
/// when nobody listens, nothing happens. Never blocks, never fails.
class ServiceNotify {
 public:
  /// Everything is up; `status` is a sentence for people.
  static void Ready(const std::string& status);
  static void Status(const std::string& status);
  /// Reloading has begun; `Ready` ends it.
  static void Reloading();
  static void Stopping();
};

}  // namespace controller
