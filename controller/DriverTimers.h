#pragma once

#include <functional>
#include <map>
#include <memory>

#include "controller/Loop.h"

namespace controller {

/// The periodic timers of drivers, on the event loop. Ids count up from 1 and are not given twice.
///
/// A timer of whole seconds ticks shortly after the seconds of the wall clock begin, so that what
/// is due at 07:00:00 is acted on then and not most of a second later. The delay to the next tick
/// is worked out anew each time; a clock that is set, or a machine that slept, costs at most one
/// irregular interval, and ticks that were missed are not made up for.
class DriverTimers {
 public:
  using OnExpired = std::function<void(unsigned long id)>;

  explicit DriverTimers(event_base* base) : base_(base) {}

  /// 0 where the interval is 0 or beyond a day.
  unsigned long Add(unsigned long intervalMilliseconds, OnExpired onExpired);
  /// May be called by the timer's own `OnExpired`. An unknown id is ignored.
  void Kill(unsigned long id) { timers_.erase(id); }
  /// Each timer expires now; when it is due next remains as it was. Not inside a driver's call.
  void ExpireAll();

 private:
  struct Timer {
    DriverTimers* owner = nullptr;
    unsigned long id = 0;
    long interval = 0;
    std::shared_ptr<OnExpired> onExpired;
    LoopEvent due;
  };

  static void OnDue(int, short, void* timer);
  static void Arm(Timer& timer);

  event_base* base_;
  unsigned long last_ = 0;
  std::map<unsigned long, std::unique_ptr<Timer>> timers_;
};

/// The delay until a timer's next tick, in milliseconds: `interval` itself, or for whole seconds
/// what leads to 20 ms after a full second. `wallMilliseconds` is the present part of the second,
/// 0..999.
long DelayToTick(long interval, long wallMilliseconds);

}  // namespace controller
