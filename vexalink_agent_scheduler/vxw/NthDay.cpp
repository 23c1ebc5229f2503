#include "vexalink_agent_scheduler/vxw/NthDay.h"

#include <array>
#include <tuple>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace nth_day {
namespace {

constexpr int kFourth = 4;
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

std::size_t SlotOf(const Key& key) {
  const auto months = static_cast<std::size_t>(key.year * 12LL + key.month);
  const auto kind =
      static_cast<std::size_t>(key.weekday & 7) * 8 + static_cast<std::size_t>(key.period & 7);
  return months % kKeptMonths * kKindsOfDay + kind;
}

}  // namespace

VxTime Find(int month, int weekday, int year, int period) {
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
  for (int step = 0; step < lastDay + kSpareSteps; ++step) {
    const VxTime t(first.Seconds() + step * local_time::kSecondsPerDay);
    if (t > last) break;
    const CivilDay day = CivilDay::Of(t);
    if (!day.IsKnown() || day.weekday != weekday) continue;
    match = t;
    if (++matches == period && stopsAtPeriod) break;
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
