#include "controller/live/ClockGuard.h"

#include <cmath>
#include <cstdint>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace controller {

namespace {

constexpr double kLeastJump = 1;
constexpr std::time_t kFarAway = 365L * 24 * 60 * 60;

double Read(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace

ClockReading ClockReading::Now() {
  return {Read(CLOCK_REALTIME), Read(CLOCK_MONOTONIC), Read(CLOCK_BOOTTIME)};
}

std::optional<ClockJump> ClockGuard::Look(const ClockReading& now) {
  const ClockReading before = std::exchange(last_, now);
  const double passed = now.monotonic - before.monotonic;
  const double jump = (now.realtime - before.realtime) - passed;
  const double asleep = (now.boottime - before.boottime) - passed;
  if (std::fabs(jump) < kLeastJump) return std::nullopt;
  return ClockJump{jump, std::fabs(jump - asleep) < kLeastJump};
}

ClockWatch::ClockWatch(event_base* base, std::function<void()> onSet)
    : base_(base),
      onSet_(std::move(onSet)),
      timer_(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {
  if (timer_ < 0) return;
  readable_ = MakeLoopEvent(base, timer_, EV_READ | EV_PERSIST, OnReadable, this);
  event_add(readable_.get(), nullptr);
  Arm();
}

ClockWatch::~ClockWatch() {
  readable_.reset();
  if (timer_ >= 0) ::close(timer_);
}

void ClockWatch::Arm() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  itimerspec far{};
  far.it_value.tv_sec = now.tv_sec + kFarAway;
  // What is waited for is not the timer's end but that the system cancels it.
  ::timerfd_settime(timer_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &far, nullptr);
}

void ClockWatch::OnReadable(int fd, short, void* argument) {
  auto& self = *static_cast<ClockWatch*>(argument);
  std::uint64_t expirations = 0;
  // Fails, which is the news.
  [[maybe_unused]] const auto got = ::read(fd, &expirations, sizeof expirations);
  self.Arm();
  Guarded(self.base_, [&self] { self.onSet_(); });
}

std::time_t BuildTime() { return VEXALINK_BUILD_TIME; }

}  // namespace controller
