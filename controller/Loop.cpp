#include "controller/Loop.h"

#include <exception>
#include <utility>

#include "controller/Failure.h"
#include "controller/Log.h"

namespace controller {

namespace {

constexpr long kLongestStretchMilliseconds = 5;
// Of three the middle one is what an event has that asks for none.
constexpr int kPriorities = 3;
constexpr int kUsualPriority = 1;

bool loopFailed = false;

}  // namespace

void Guarded(event_base* base, const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& failure) {
    Log::Error(std::string("the controller ends: ") + failure.what());
    loopFailed = true;
    event_base_loopbreak(base);
  }
}

bool LoopFailed() { return loopFailed; }

EventBase MakeEventBase() {
  event_config* config = event_config_new();
  if (config == nullptr) throw Failure("out of memory");
  // Delays are counted from the moment they are set, not from when the loop last woke up.
  event_config_set_flag(config, EVENT_BASE_FLAG_NO_CACHE_TIME | EVENT_BASE_FLAG_PRECISE_TIMER);
  // However much there is to be answered: after so much of it, it is looked whether a tick is due.
  const timeval most = Milliseconds(kLongestStretchMilliseconds);
  event_config_set_max_dispatch_interval(config, &most, -1, kUsualPriority);
  EventBase base(event_base_new_with_config(config));
  event_config_free(config);
  if (base == nullptr || event_base_priority_init(base.get(), kPriorities) != 0) {
    throw Failure("the event loop cannot be started");
  }
  return base;
}

LoopEvent MakeLoopEvent(event_base* base, int fd, short what, event_callback_fn callback,
                        void* argument) {
  LoopEvent made(event_new(base, fd, what, callback, argument));
  if (made == nullptr) throw Failure("the event loop takes no further event");
  return made;
}

void PutFirst(event* due) { event_priority_set(due, 0); }

timeval Milliseconds(long count) { return {count / 1000, (count % 1000) * 1000}; }

LoopQueue::LoopQueue(event_base* base)
    : base_(base), ready_(MakeLoopEvent(base, -1, 0, OnReady, this)) {}

void LoopQueue::Post(std::function<void()> work) {
  work_.push_back(std::move(work));
  event_active(ready_.get(), EV_TIMEOUT, 0);
}

void LoopQueue::Drain() {
  while (!work_.empty()) {
    const std::function<void()> next = std::move(work_.front());
    work_.pop_front();
    next();
  }
}

void LoopQueue::OnReady(int, short, void* argument) {
  auto& self = *static_cast<LoopQueue*>(argument);
  Guarded(self.base_, [&] { self.Drain(); });
}

}  // namespace controller
