#pragma once

#include <ctime>

namespace controller {

/// The one clock of the process. The executable answers `time()` itself, in place of the C library,
/// so whatever it loads lives by this clock: the system's, until it is frozen. From one thread
/// only.
class Clock {
 public:
  Clock() = delete;

  /// Stops the clock at `now`: from here on it stands still but for `Freeze`.
  static void Freeze(std::time_t now);
  /// Back to the system's clock.
  static void Release();
  /// What `time()` answers.
  static std::time_t Now();
  /// Whether it has been stopped.
  static bool IsFrozen();
};

/// Another time for a while: the clock stands still from here on, and when this goes it is what it
/// was before.
class ClockScope {
 public:
  explicit ClockScope(std::time_t now);
  ~ClockScope();
  ClockScope(const ClockScope&) = delete;
  ClockScope& operator=(const ClockScope&) = delete;

 private:
  bool wasFrozen_;
  std::time_t before_;
};

}  // namespace controller
