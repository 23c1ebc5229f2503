// When an event happens next, without a walk over the days between.

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/Steps.h"
#include "vexalink_agent_scheduler/vxw/WeekCount.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

constexpr long long kNoStep = std::numeric_limits<long long>::max();
// How far a walk in steps of 86400 s may stray from the civil calendar: clock changes, and zones
// that moved across the date line.
constexpr long long kStrayDays = 3;
constexpr long long kLastMonth = std::numeric_limits<int>::max() * 12LL;  // of the last year

// The first multiple of |rate| above `count`.
long long NextMultiple(long long count, long long rate) {
  const long long every = std::llabs(rate);
  return count - count % every + (count % every < 0 ? 0 : every);
}

// Where a walk stands: at `step` from `origin`, on the local day `day`; it ends with the step
// `last`. Local days never go back from step to step; a clock change may show one twice or leave
// one out.
struct Place {
  VxTime origin;
  long long step;
  long long last;
  CivilDay day;

  // As CivilDay counts days; nothing where the instant cannot be converted.
  std::optional<long long> DaysAt(long long other) const {
    const VxTime instant = steps::At(origin, other);
    if (const local_time::ClockSpan* span = local_time::FindSpan(instant.Seconds())) {
      return span->CivilDaysAt(instant.Seconds());
    }
    const CivilDay there = CivilDay::Of(instant);
    return there.IsKnown() ? std::optional(there.days) : std::nullopt;
  }

  // The first step after this one whose local day is `target` or later; kNoStep past the last.
  long long Reach(long long target) const {
    long long reached = step + std::max<long long>(1, target - day.days);
    while (true) {
      if (reached > last + kStrayDays) return kNoStep;
      const std::optional<long long> there = DaysAt(reached);
      if (!there) return step + 1;
      if (*there >= target) break;
      reached += target - *there;
    }
    while (reached > step + 1 && DaysAt(reached - 1).value_or(0) >= target) --reached;
    return reached;
  }
};

// The next step on which an event may happen, kNoStep where there is none; what lies between need
// not be looked at. The place itself was looked at already.

long long AfterDaily(const Event& event, const Place& place) {
  const long long days = steps::Between(event.start, steps::At(place.origin, place.step));
  return place.step + NextMultiple(days, event.rate) - days;
}

long long AfterWeekly(const Event& event, const Place& place) {
  if ((event.daymask & 0x7FU) == 0) return kNoStep;
  const long long days = steps::Between(event.start, steps::At(place.origin, place.step));
  const int weekday = event.StartWeekday();
  const long long weeks = WeeksSinceStart(days + 1, weekday);
  if (weeks % event.rate == 0) return place.step + 1;
  const long long daysBeforeStart = std::max(weekday, 1) - 1;  // since the Sunday of its week
  return place.step + NextMultiple(weeks, event.rate) * 7 - daysBeforeStart - days;
}

// Where nothing comes after one day any more.
long long AfterOnly(long long target, const Place& place) {
  if (place.day.days > target) return kNoStep;
  // The day itself may come twice.
  return place.day.days == target ? place.step + 1 : place.Reach(target);
}

// An event by week whose weekday never comes: the search for it yields the epoch, so it can only
// happen on the epoch's local day.
bool NeverMatches(const Event& event) {
  return event.start_period != Scheduler::kByDay &&
         (event.start_weekday < 1 || event.start_weekday > 7);
}

// The day on which an event by month falls in a month of a year (which counts months from 0), or
// nothing where the month has no such day.
std::optional<long long> DayInMonth(const Event& event, long long months) {
  const long long year = months / 12 - (months % 12 < 0 ? 1 : 0);
  const int month = static_cast<int>(months - year * 12) + 1;
  if (event.start_period != Scheduler::kByDay) {
    return nth_day::FindDay(month, event.start_weekday, static_cast<int>(year), event.start_period)
        .days;
  }
  const bool leapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  const int day = event.StartDay().day;
  if (day > local_time::DaysInMonth(month, leapYear)) return std::nullopt;
  return local_time::CivilDays(year, month, day);
}

long long AfterByMonth(const Event& event, const Place& place) {
  if (NeverMatches(event)) return AfterOnly(CivilDay::Of(VxTime()).days, place);
  const long long monthsOfUnit = event.frequency == Scheduler::kYearly ? 12 : 1;
  const long long every = std::llabs(event.rate) * monthsOfUnit;
  const long long first = event.StartDay().Months();
  const long long past = place.day.Months() - first;
  // The leap years repeat after 400; what has no day by then never has one.
  constexpr int kMostTries = 4800;
  long long months = first + (past % every == 0 ? past : NextMultiple(past, every));
  for (int tries = 0; tries < kMostTries; ++tries, months += every) {
    if (months > kLastMonth) return kNoStep;
    const std::optional<long long> day = DayInMonth(event, months);
    if (!day) continue;
    if (*day > place.day.days) return place.Reach(*day);
    // The day itself may come twice.
    if (*day == place.day.days) return place.step + 1;
  }
  return kNoStep;
}

long long After(const Event& event, const Place& place) {
  if (event.frequency == Scheduler::kDaily) return AfterDaily(event, place);
  if (event.frequency == Scheduler::kWeekly) return AfterWeekly(event, place);
  if (!place.day.IsKnown()) return place.step + 1;
  switch (event.frequency) {
    case Scheduler::kOnce:
      return AfterOnly(event.StartDay().days, place);
    case Scheduler::kMonthly:
    case Scheduler::kYearly:
      return AfterByMonth(event, place);
    default:
      return kNoStep;
  }
}

}  // namespace

std::optional<long long> Event::FindOccurrence(VxTime origin, long long first,
                                               long long last) const {
  if (RepeatsByZero() || origin > end_date) return std::nullopt;
  last = std::min(last, steps::Between(origin, end_date));
  long long step = std::max(first, steps::Reaching(origin, start));
  while (step <= last) {
    const VxTime date = steps::At(origin, step);
    if (OccursOnDate(date)) return step;
    step = After(*this, {origin, step, last, CivilDay::Of(date)});
  }
  return std::nullopt;
}

std::pair<VxTime, bool> Event::GetNextOccurance() const {
  const local_time::ZoneHold hold;
  const std::pair<VxTime, bool> none{VxTime(), false};
  const VxTime now = VxTime::GetCurrentTime();
  if (frequency == Scheduler::kOnce) {
    const VxTime time = EventTime(start);
    return time > now ? std::pair{time, true} : none;
  }
  if (end_date <= now) return none;
  constexpr long long kDaysOfUnit[] = {0, 1, 7, 31, 366};
  if (frequency < Scheduler::kDaily || frequency > Scheduler::kYearly) return none;
  const long long limit = rate * kDaysOfUnit[frequency];
  const VxTime firstDay = now > start ? now : start;
  if (RepeatsByZero()) {
    OccursOnDate(firstDay);  // for its assertion record; there is never an occurrence
    return none;
  }
  for (auto step = FindOccurrence(firstDay, 0, limit); step;
       step = FindOccurrence(firstDay, *step + 1, limit)) {
    const VxTime time = EventTime(steps::At(firstDay, *step));
    if (time >= now) return {time, true};
  }
  return none;
}
