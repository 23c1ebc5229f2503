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

// The first multiple of |rate| above `count`.
long long NextMultiple(long long count, long long rate) {
  const long long every = std::llabs(rate);
  return count - count % every + (count % every < 0 ? 0 : every);
}

// Days from 1970-01-01 to the first of a month, months counted from January of year 0.
long long FirstOfMonth(long long months) {
  const long long year = months / 12 - (months % 12 < 0 ? 1 : 0);
  return local_time::CivilDays(year, static_cast<int>(months - year * 12) + 1, 1);
}

// The next step after `step` on which an event may happen, kNoStep where there is none; what lies
// between need not be looked at. `days` are those since the start, `day` is the local day of
// `step`, which itself was looked at already.

long long AfterDaily(const Event& event, long long step, long long days) {
  return step + NextMultiple(days, event.rate) - days;
}

long long AfterWeekly(const Event& event, long long step, long long days) {
  if ((event.daymask & 0x7FU) == 0) return kNoStep;
  const int weekday = event.StartWeekday();
  const long long weeks = WeeksSinceStart(days + 1, weekday);
  if (weeks % event.rate == 0) return step + 1;
  const long long daysBeforeStart = std::max(weekday, 1) - 1;  // since the Sunday of its week
  return step + NextMultiple(weeks, event.rate) * 7 - daysBeforeStart - days;
}

// The step on which the civil day `target` may come up first, after `step` on `day`.
long long Towards(long long target, long long step, const CivilDay& day) {
  return std::max(step + 1, step + target - day.days - kStrayDays);
}

// The same where nothing comes after the target any more.
long long TowardsOnly(long long target, long long step, const CivilDay& day) {
  return day.days > target + kStrayDays ? kNoStep : Towards(target, step, day);
}

// An event by week whose weekday never comes: the search for it yields the epoch, so it can only
// happen on the epoch's local day.
bool NeverMatches(const Event& event) {
  return event.start_period != Scheduler::kByDay &&
         (event.start_weekday < 1 || event.start_weekday > 7);
}

long long AfterMonthly(const Event& event, long long step, const CivilDay& day) {
  if (NeverMatches(event)) return TowardsOnly(CivilDay::Of(VxTime()).days, step, day);
  const CivilDay& first = event.StartDay();
  const long long months = day.Months() - first.Months();
  if (months % event.rate == 0) {
    const long long target =
        event.start_period == Scheduler::kByDay
            ? day.days - day.day + first.day
            : nth_day::FindDay(day.month, event.start_weekday, day.year, event.start_period).days;
    if (day.days <= target) return Towards(target, step, day);
  }
  return Towards(FirstOfMonth(first.Months() + NextMultiple(months, event.rate)), step, day);
}

long long AfterYearly(const Event& event, long long step, const CivilDay& day) {
  if (NeverMatches(event)) return TowardsOnly(CivilDay::Of(VxTime()).days, step, day);
  const CivilDay& first = event.StartDay();
  const long long years = static_cast<long long>(day.year) - first.year;
  if (years % event.rate == 0) {
    const long long target =
        event.start_period == Scheduler::kByDay
            ? local_time::CivilDays(day.year, first.month, first.day)
            : nth_day::FindDay(first.month, event.start_weekday, day.year, event.start_period).days;
    if (day.days <= target) return Towards(target, step, day);
  }
  const long long year = first.year + NextMultiple(years, event.rate);
  return Towards(local_time::CivilDays(year, first.month, 1), step, day);
}

long long After(const Event& event, const VxTime& date, long long step) {
  if (event.frequency == Scheduler::kDaily) {
    return AfterDaily(event, step, steps::Between(event.start, date));
  }
  if (event.frequency == Scheduler::kWeekly) {
    return AfterWeekly(event, step, steps::Between(event.start, date));
  }
  const CivilDay day = CivilDay::Of(date);
  if (!day.IsKnown()) return step + 1;
  switch (event.frequency) {
    case Scheduler::kOnce:
      return TowardsOnly(event.StartDay().days, step, day);
    case Scheduler::kMonthly:
      return AfterMonthly(event, step, day);
    case Scheduler::kYearly:
      return AfterYearly(event, step, day);
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
    step = After(*this, date, step);
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
