#include "controller/Clock.h"

#include <time.h>

#include "host/Export.h"

namespace {

bool frozen = false;
std::time_t frozenAt = 0;

}  // namespace

namespace controller {

void Clock::Freeze(std::time_t now) {
  frozen = true;
  frozenAt = now;
}

void Clock::Release() { frozen = false; }

std::time_t Clock::Now() {
  if (frozen) return frozenAt;
  timespec now{};
  clock_gettime(CLOCK_REALTIME_COARSE, &now);  // what the C library's own time() reads
  return now.tv_sec;
}

bool Clock::IsFrozen() { return frozen; }

ClockScope::ClockScope(std::time_t now) : wasFrozen_(Clock::IsFrozen()), before_(Clock::Now()) {
  Clock::Freeze(now);
}

ClockScope::~ClockScope() { wasFrozen_ ? Clock::Freeze(before_) : Clock::Release(); }

}  // namespace controller

/// Takes the place of the C library's function for the program and every library it loads.
extern "C" VX_API std::time_t time(std::time_t* out) noexcept {
  const std::time_t now = controller::Clock::Now();
  if (out != nullptr) *out = now;
  return now;
}
