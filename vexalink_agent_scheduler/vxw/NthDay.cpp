#include "vexalink_agent_scheduler/vxw/NthDay.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/Steps.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace nth_day {
namespace {

constexpr int kFourth = 4;
constexpr int kSunday = 1;
constexpr int kSaturday = 7;
// By how many steps of 86400 s a month may be longer than its days: clock changes, date line.
constexpr int kSpareSteps = 3;

struct Key {
  unsigned generation = 0;  // of the zone; 0: nothing is kept here
  int year = 0;
  int month = 0;
  int weekday = 0;
  int period = 0;

  bool operator==(const Key&) const = default;
};

constexpr std::size_t kKeptMonths = 64;  // for each weekday and period; a power of two
constexpr std::size_t kKindsOfDay = 64;
std::array<std::pair<Key, CivilDay>, kKeptMonths * kKindsOfDay> kept;

// From an instant on, the steps in which weekdays come in their order, because the clock stands
// still; one where that is not known. The weekday is 1 = Sunday .. 7 = Saturday, 0 where the
// instant cannot be converted.
struct Stretch {
  int weekday;
  long long steps;
};

Stretch StretchFrom(VxTime t) {
  if (const local_time::ClockSpan* span = local_time::FindSpan(t.Seconds())) {
    const long long days = span->CivilDaysAt(t.Seconds());
    const long long still = (span->end - 1 - t.Seconds()) / local_time::kSecondsPerDay;
    return {local_time::WeekdayOf(days) + kSunday, still + 1};
  }
  return {CivilDay::Of(t).weekday, 1};
}

std::size_t SlotOf(const Key& key) {
  const auto months = static_cast<std::size_t>(key.year * 12LL + key.month);
  const auto kind =
      static_cast<std::size_t>(key.weekday & 7) * 8 + static_cast<std::size_t>(key.period & 7);
  return months % kKeptMonths * kKindsOfDay + kind;
}

}  // namespace

VxTime Find(int month, int weekday, int year, int period) {
  if (weekday < kSunday || weekday > kSaturday) return VxTime();
  const int lastDay = local_time::DaysInMonth(month, AstroClock::IsLeapYear(year));
  const VxTime first(year, month, 1, 0, 0, 0, -1);
  const VxTime last(year, month, lastDay, 23, 59, 59, -1);
  const bool stopsAtPeriod = period >= 1 && period <= kFourth;
  VxTime match;
  int matches = 0;
  // Steps of 86400 s, not civil days: once the clocks have gone back, t is 23:00 of the day before
  // and one weekday is met twice. In New York the second Sunday of November 2024 thus comes out as
  // the 3rd. Kept: schedules written by older controllers rely on it
  // (NthDayOfMonth.CountsTheClockChangeDayTwice).
  for (long long step = 0; step < lastDay + kSpareSteps;) {
    const VxTime t = steps::At(first, step);
    if (t > last) break;
    const Stretch stretch = StretchFrom(t);
    const long long ahead = stretch.weekday == 0 ? 1 : (weekday - stretch.weekday + 7) % 7;
    if (ahead != 0) {
      step += std::min(ahead, stretch.steps);
      continue;
    }
    match = t;
    if (++matches == period && stopsAtPeriod) break;
    ++step;
  }
  return match;
}

CivilDay FindDay(int month, int weekday, int year, int period) {
  const Key key{local_time::ZoneGeneration(), year, month, weekday, period};
  auto& [keptKey, keptDay] = kept[SlotOf(key)];
  if (keptKey == key) return keptDay;
  const CivilDay day = CivilDay::Of(Find(month, weekday, year, period));
  keptKey = key;
  keptDay = day;
  return day;
}

}  // namespace nth_day
