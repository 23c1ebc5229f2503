#pragma once

#include <ctime>
#include <functional>
#include <optional>

#include "controller/Loop.h"

namespace controller {

/// The system's clocks at one moment, in seconds.
struct ClockReading {
  double realtime = 0;
  /// Stands still while the machine sleeps.
  double monotonic = 0;
  double boottime = 0;

  static ClockReading Now();
};

/// The wall clock has gone another way than time itself.
struct ClockJump {
  /// How far, in seconds; negative: it was set back.
  double seconds = 0;
  /// The machine was asleep meanwhile, and the clock is right.
  bool slept = false;

  /// Too far for what was drawn up before.
  bool IsLarge() const { return seconds > 60 || seconds < -60; }
};

/// Notices when the wall clock is set, by looking at it beside the monotonic one. What is smaller
/// than a second, as time servers correct it, is let pass.
class ClockGuard {
 public:
  explicit ClockGuard(const ClockReading& now) : last_(now) {}

  /// The jump since the last look, if there was one.
  std::optional<ClockJump> Look(const ClockReading& now);

 private:
  ClockReading last_;
};

/// Calls back, from the loop, as soon as the system's clock was set. A controller whose system
/// cannot tell finds out by the next tick.
class ClockWatch {
 public:
  ClockWatch(event_base* base, std::function<void()> onSet);
  ~ClockWatch();
  ClockWatch(const ClockWatch&) = delete;
  ClockWatch& operator=(const ClockWatch&) = delete;

 private:
  static void OnReadable(int fd, short, void* self);
  void Arm();

  event_base* base_;
  std::function<void()> onSet_;
  int timer_ = -1;
  LoopEvent readable_;
};

/// When this program was built; no clock that is right shows less.
std::time_t BuildTime();

}  // namespace controller
