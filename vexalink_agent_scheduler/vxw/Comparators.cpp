#include "vexalink_agent_scheduler/vxw/Comparators.h"

#include <ctime>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/SunEvent.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

namespace {

int IsWithin(long long current, int from, int to) { return from <= current && current <= to; }

}  // namespace

int CompareClockTime(int from, int to) {
  return IsWithin(VxTime::GetCurrentTime().Seconds(), from, to);
}

int CompareToday(int from, int to) {
  const std::tm* now = VxTime::GetCurrentTime().GetLocalTm(nullptr);
  return IsWithin(now == nullptr ? 0 : now->tm_wday + 1, from, to);
}

int CompareDate(int from, int to) { return IsWithin(VxTime::GetCurrentTime().GetDay(), from, to); }

int CompareMonth(int from, int to) {
  return IsWithin(VxTime::GetCurrentTime().GetMonth(), from, to);
}

int CompareYear(int from, int to) { return IsWithin(VxTime::GetCurrentTime().GetYear(), from, to); }

int CompareLeap() {
  // What cannot be converted counts as a leap year here, as it does for the sun's day of the year.
  const std::tm* now = VxTime::GetCurrentTime().GetLocalTm(nullptr);
  return now == nullptr || AstroClock::IsLeapYear(VxTime::GetCurrentTime().GetYear());
}

int CompareAstroClockTime(int t, double latitude, double longitude) {
  const auto sunset =
      sun_event::Instant(sun_event::Kind::kSunset, VxTime::GetCurrentTime(), latitude, longitude);
  return sunset && VxTime(t) <= *sunset;
}
