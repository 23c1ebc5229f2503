#include "controller/DriverTimers.h"

#include <ctime>
#include <utility>
#include <vector>

namespace controller {

namespace {

constexpr unsigned long kLongestInterval = 24UL * 60 * 60 * 1000;
// `time()` may lag behind the exact clock by one tick of the kernel, up to 10 ms.
constexpr long kAfterTheSecond = 20;

long WallMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_nsec / 1000000;
}

}  // namespace

long DelayToTick(long interval, long wallMilliseconds) {
  if (interval % 1000 != 0) return interval;
  return interval - wallMilliseconds + kAfterTheSecond;
}

unsigned long DriverTimers::Add(unsigned long intervalMilliseconds, OnExpired onExpired) {
  if (intervalMilliseconds == 0 || intervalMilliseconds > kLongestInterval) return 0;
  auto timer = std::make_unique<Timer>();
  timer->owner = this;
  timer->id = ++last_;
  timer->interval = static_cast<long>(intervalMilliseconds);
  timer->onExpired = std::make_shared<OnExpired>(std::move(onExpired));
  timer->due = MakeLoopEvent(base_, -1, 0, OnDue, timer.get());
  PutFirst(timer->due.get());
  Arm(*timer);
  timers_[last_] = std::move(timer);
  return last_;
}

void DriverTimers::Arm(Timer& timer) {
  const timeval delay = Milliseconds(DelayToTick(timer.interval, WallMilliseconds()));
  event_add(timer.due.get(), &delay);
}

void DriverTimers::OnDue(int, short, void* argument) {
  Timer& timer = *static_cast<Timer*>(argument);
  Arm(timer);
  // The call may kill the timer; what is being called must outlast that.
  const std::shared_ptr<OnExpired> call = timer.onExpired;
  const unsigned long id = timer.id;
  Guarded(timer.owner->base_, [&] { (*call)(id); });
}

void DriverTimers::ExpireAll() {
  std::vector<unsigned long> ids;
  for (const auto& [id, timer] : timers_) ids.push_back(id);
  for (const unsigned long id : ids) {
    const auto found = timers_.find(id);
    if (found == timers_.end()) continue;
    const std::shared_ptr<OnExpired> call = found->second->onExpired;
    (*call)(id);
  }
}

}  // namespace controller
