// On which days an event happens, and when it happens next.

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/EventAssert.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

using event_assert::Check;
using local_time::kSecondsPerDay;

namespace {

constexpr long long kNoStep = std::numeric_limits<long long>::max();
// How far a walk in steps of 86400 s may stray from the civil calendar: clock changes, and zones
// that moved across the date line.
constexpr long long kStrayDays = 3;

long long StepsOf86400(VxTime from, VxTime to) {
  return (to.Seconds() - from.Seconds()) / kSecondsPerDay;
}

VxTime Step(VxTime origin, long long steps) {
  return VxTime(origin.Seconds() + steps * kSecondsPerDay);
}

// The first multiple of |rate| above `count`.
long long NextMultiple(long long count, long long rate) {
  const long long every = std::llabs(rate);
  return count - count % every + (count % every < 0 ? 0 : every);
}

// Weeks from the start's week to the one `days` after the start; weeks begin on Sunday.
// `startWeekday` is 1 = Sunday .. 7 = Saturday, or 0 where it is not known.
long long WeeksSinceStart(long long days, int startWeekday) {
  return days / 7 + (startWeekday + days % 7 >= 8 ? 1 : 0);
}

int Weekday(VxTime instant) {
  std::tm local;
  return instant.GetLocalTm(&local) == nullptr ? 0 : local.tm_wday + 1;
}

struct CivilDay {
  long long year = 0;
  int month = 0;
  int day = 0;

  long long Days() const { return local_time::CivilDays(year, month, day); }
  long long Months() const { return year * 12 + month - 1; }
};

CivilDay LocalDay(VxTime instant) {
  std::tm local;
  if (instant.GetLocalTm(&local) == nullptr) return {};
  return {local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday};
}

// Days from 1970-01-01 to the first of a month, months counted from January of year 0.
long long FirstOfMonth(long long months) {
  const long long year = months / 12 - (months % 12 < 0 ? 1 : 0);
  return local_time::CivilDays(year, static_cast<int>(months - year * 12) + 1, 1);
}

}  // namespace

bool Event::OccursOnDate(const VxTime& date) const {
  if (date < start || date > end_date) return false;
  switch (frequency) {
    case Scheduler::kOnce:
      return YMD(start) == YMD(date);
    case Scheduler::kDaily:
      return OccursDaily(date);
    case Scheduler::kWeekly:
      return OccursWeekly(date);
    case Scheduler::kMonthly:
      return OccursMonthly(date);
    case Scheduler::kYearly:
      return OccursYearly(date);
    default:
      return false;  // XML may hold any number; such an event never happens
  }
}

bool Event::OccursDaily(VxTime date) const {
  Check(rate != 0, event_assert::kDailyByZero);
  const long long days = StepsOf86400(start, date);
  Check(days >= 0, event_assert::kDailyBeforeStart);
  return rate != 0 && days % rate == 0;
}

bool Event::OccursWeekly(VxTime date) const {
  Check(rate != 0, event_assert::kWeeklyByZero);
  const long long days = StepsOf86400(start, date);
  Check(days >= 0, event_assert::kWeeklyBeforeStart);
  if (rate == 0 || WeeksSinceStart(days, Weekday(start)) % rate != 0) return false;
  const int weekday = Weekday(date);
  return weekday != 0 && (daymask >> (weekday - 1) & 1U) != 0;
}

bool Event::OccursMonthly(VxTime date) const {
  Check(rate != 0, event_assert::kMonthlyByZero);
  const CivilDay first = LocalDay(start);
  const CivilDay day = LocalDay(date);
  const long long months = (day.year - first.year) * 12 + day.month - first.month;
  if (rate == 0 || months % rate != 0) return false;
  if (start_period == Scheduler::kByDay) return first.day == day.day;
  return YMD(GetNthDayOfMonth(day.month, start_weekday, static_cast<int>(day.year),
                              start_period)) == YMD(date);
}

bool Event::OccursYearly(VxTime date) const {
  Check(rate != 0, event_assert::kYearlyByZero);
  const CivilDay first = LocalDay(start);
  const CivilDay day = LocalDay(date);
  if (rate == 0 || (day.year - first.year) % rate != 0) return false;
  if (start_period == Scheduler::kByDay) return first.month == day.month && first.day == day.day;
  return YMD(GetNthDayOfMonth(first.month, start_weekday, static_cast<int>(day.year),
                              start_period)) == YMD(date);
}

VxTime Event::GetNthDayOfMonth(int month, int weekday, int year, Scheduler::PERIOD period) {
  Check(period != Scheduler::kByDay, event_assert::kNoPeriod);
  if (period == Scheduler::kByDay || month < 1 || month > 12) return VxTime();
  const int lastDay = local_time::DaysInMonth(month, AstroClock::IsLeapYear(year));
  const VxTime first(year, month, 1, 0, 0, 0, -1);
  const VxTime last(year, month, lastDay, 23, 59, 59, -1);
  VxTime match;
  int matches = 0;
  // Steps of 86400 s, not civil days: once the clocks have gone back, t is 23:00 of the day before
  // and one weekday is met twice. In New York the second Sunday of November 2024 thus comes out as
  // the 3rd. Kept: schedules written by older controllers rely on it
  // (NthDayOfMonth.CountsTheClockChangeDayTwice).
  const int kMostSteps = lastDay + static_cast<int>(kStrayDays);
  for (int step = 0; step <= kMostSteps; ++step) {
    const VxTime t = Step(first, step);
    if (t > last) break;
    if (Weekday(t) != weekday || weekday == 0) continue;
    match = t;
    if (++matches == period && period != Scheduler::kLast) break;
  }
  return match;
}

bool Event::RepeatsByZero() const {
  return rate == 0 && frequency >= Scheduler::kDaily && frequency <= Scheduler::kYearly;
}

std::pair<VxTime, bool> Event::GetNextOccurance() const {
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
    const VxTime time = EventTime(Step(firstDay, *step));
    if (time >= now) return {time, true};
  }
  return none;
}

namespace {

// The next step after `step` on which an event may happen, kNoStep where there is none; what lies
// between need not be looked at. Each function's `day` is the local day of `step`, which itself was
// looked at already.

long long AfterDaily(const Event& event, long long step, long long days) {
  return step + NextMultiple(days, event.rate) - days;
}

long long AfterWeekly(const Event& event, long long step, long long days) {
  if ((event.daymask & 0x7FU) == 0) return kNoStep;
  const int weekday = Weekday(event.start);
  const long long weeks = WeeksSinceStart(days + 1, weekday);
  if (weeks % event.rate == 0) return step + 1;
  const long long daysBeforeStart = std::max(weekday, 1) - 1;  // since the Sunday of its week
  return step + NextMultiple(weeks, event.rate) * 7 - daysBeforeStart - days;
}

// The step on which the civil day `target` may come up first, after `step` on `day`.
long long Towards(long long target, long long step, const CivilDay& day) {
  return std::max(step + 1, step + target - day.Days() - kStrayDays);
}

// An event by week whose weekday never comes: the search for it yields the epoch, so it can only
// happen on the epoch's local day.
long long AfterNeverMatching(long long step, const CivilDay& day) {
  const long long target = LocalDay(VxTime()).Days();
  if (day.Days() > target + kStrayDays) return kNoStep;
  return Towards(target, step, day);
}

bool NeverMatches(const Event& event) {
  return event.start_period != Scheduler::kByDay &&
         (event.start_weekday < 1 || event.start_weekday > 7);
}

long long AfterOnce(const Event& event, long long step, const CivilDay& day) {
  const long long target = LocalDay(event.start).Days();
  if (day.Days() > target + kStrayDays) return kNoStep;
  return Towards(target, step, day);
}

long long AfterMonthly(const Event& event, long long step, const CivilDay& day) {
  if (NeverMatches(event)) return AfterNeverMatching(step, day);
  const CivilDay first = LocalDay(event.start);
  const long long months = day.Months() - first.Months();
  if (months % event.rate == 0) {
    if (event.start_period != Scheduler::kByDay) return step + 1;
    if (day.day <= first.day) return Towards(day.Days() - day.day + first.day, step, day);
  }
  return Towards(FirstOfMonth(first.Months() + NextMultiple(months, event.rate)), step, day);
}

long long AfterYearly(const Event& event, long long step, const CivilDay& day) {
  if (NeverMatches(event)) return AfterNeverMatching(step, day);
  const CivilDay first = LocalDay(event.start);
  const long long years = day.year - first.year;
  if (years % event.rate == 0 && day.month <= first.month) {
    if (day.month == first.month) return step + 1;
    return Towards(local_time::CivilDays(day.year, first.month, 1), step, day);
  }
  const long long year = first.year + NextMultiple(years, event.rate);
  return Towards(local_time::CivilDays(year, first.month, 1), step, day);
}

long long After(const Event& event, VxTime date, long long step) {
  if (event.frequency == Scheduler::kDaily) {
    return AfterDaily(event, step, StepsOf86400(event.start, date));
  }
  if (event.frequency == Scheduler::kWeekly) {
    return AfterWeekly(event, step, StepsOf86400(event.start, date));
  }
  const CivilDay day = LocalDay(date);
  if (day.month == 0) return step + 1;
  switch (event.frequency) {
    case Scheduler::kOnce:
      return AfterOnce(event, step, day);
    case Scheduler::kMonthly:
      return AfterMonthly(event, step, day);
    case Scheduler::kYearly:
      return AfterYearly(event, step, day);
    default:
      return kNoStep;
  }
}

// The first step on or after which `instant` is reached.
long long StepReaching(VxTime origin, VxTime instant) {
  const long long distance = instant.Seconds() - origin.Seconds();
  return distance <= 0 ? 0 : (distance + kSecondsPerDay - 1) / kSecondsPerDay;
}

}  // namespace

std::optional<long long> Event::FindOccurrence(VxTime origin, long long first,
                                               long long last) const {
  if (RepeatsByZero() || origin > end_date) return std::nullopt;
  last = std::min(last, StepsOf86400(origin, end_date));
  long long step = std::max(first, StepReaching(origin, start));
  while (step <= last) {
    const VxTime date = Step(origin, step);
    if (OccursOnDate(date)) return step;
    step = After(*this, date, step);
  }
  return std::nullopt;
}
