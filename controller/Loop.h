#pragma once

#include <deque>
#include <event2/event.h>
#include <functional>
#include <memory>

namespace controller {

struct EventBaseFree {
  void operator()(event_base* base) const { event_base_free(base); }
};
/// The one event loop. Outlives every event on it.
using EventBase = std::unique_ptr<event_base, EventBaseFree>;

struct EventFree {
  void operator()(event* watched) const { event_free(watched); }
};
/// One thing that the loop waits for; freed, it is waited for no longer.
using LoopEvent = std::unique_ptr<event, EventFree>;

/// Has an event that is not pending come before all others that are due at the same time.
void PutFirst(event* due);

/// A new loop whose timers are as exact as the system allows. Throws a `Failure`.
EventBase MakeEventBase();
/// A new event (see event_new). Throws a `Failure`.
LoopEvent MakeLoopEvent(event_base* base, int fd, short what, event_callback_fn callback,
                        void* argument);
/// A delay for event_add.
timeval Milliseconds(long count);

/// Runs what an event of the loop calls, and keeps its exceptions from the loop, which is written
/// in C and would not survive them: they are logged, and the loop is ended with `LoopFailed`.
void Guarded(event_base* base, const std::function<void()>& work) noexcept;
/// Whether `Guarded` has ended a loop of this process.
bool LoopFailed();

/// Work for after the present call: what a host operation may not do itself, because it would lead
/// back into the driver that is calling. Runs from the loop, in the order in which it was posted.
class LoopQueue {
 public:
  explicit LoopQueue(event_base* base);

  void Post(std::function<void()> work);
  /// Runs what is there now, and what that posts, without waiting for the loop: at the end. Not
  /// from inside a driver's call.
  void Drain();

 private:
  static void OnReady(int, short, void* self);

  event_base* base_;
  std::deque<std::function<void()>> work_;
  LoopEvent ready_;
};

}  // namespace controller
