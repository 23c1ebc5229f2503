#include "tests/support/TestClock.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <time.h>

#include "host/Export.h"

namespace {

bool stopped = false;
std::time_t stoppedAt = 0;

}  // namespace

extern "C" VX_API std::time_t time(std::time_t* out) noexcept {
  std::time_t now = stoppedAt;
  if (!stopped) {
    timespec system{};
    clock_gettime(CLOCK_REALTIME, &system);
    now = system.tv_sec;
  }
  if (out != nullptr) *out = now;
  return now;
}

TestClock::TestClock(std::time_t now) { Set(now); }

TestClock::TestClock(const std::string& local) { Set(local); }

TestClock::~TestClock() { stopped = false; }

void TestClock::Set(std::time_t now) {
  stopped = true;
  stoppedAt = now;
}

void TestClock::Set(const std::string& local) { Set(Local(local)); }

void TestClock::Advance(std::time_t seconds) { stoppedAt += seconds; }

ZoneScope::ZoneScope(const std::string& zone) {
  const char* const before = std::getenv("TZ");
  hadZone_ = before != nullptr;
  if (hadZone_) before_ = before;
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

ZoneScope::~ZoneScope() {
  if (hadZone_) {
    setenv("TZ", before_.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

std::time_t Local(const std::string& text) {
  std::tm fields{};
  const int read = std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &fields.tm_year, &fields.tm_mon,
                               &fields.tm_mday, &fields.tm_hour, &fields.tm_min, &fields.tm_sec);
  if (read != 3 && read != 6) throw std::invalid_argument("no local time: " + text);
  fields.tm_year -= 1900;
  fields.tm_mon -= 1;
  fields.tm_isdst = -1;
  const std::tm wanted = fields;
  const std::time_t instant = std::mktime(&fields);
  // The earliest instant of the three hours before with the same fields, looked for minute by
  // minute.
  for (std::time_t earlier = instant - 3 * 3600; earlier < instant; earlier += 60) {
    std::tm local{};
    localtime_r(&earlier, &local);
    if (local.tm_mday == wanted.tm_mday && local.tm_hour == wanted.tm_hour &&
        local.tm_min == wanted.tm_min && local.tm_sec == wanted.tm_sec) {
      return earlier;
    }
  }
  return instant;
}
