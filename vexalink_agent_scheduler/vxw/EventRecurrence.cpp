// On which days an event happens.

#include "vexalink_agent_scheduler/vxw/EventAssert.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/Steps.h"
#include "vexalink_agent_scheduler/vxw/WeekCount.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

using event_assert::Check;

namespace {

// By a divisor of either sign; most numbers are small, and dividing those is several times faster.
bool IsMultiple(long long value, int divisor) {
  const auto small = static_cast<int>(value);
  if (small == value && divisor > 0) return small % divisor == 0;
  return value % divisor == 0;
}

}  // namespace

const CivilDay& Event::StartDay() const {
  const unsigned zone = local_time::ZoneGeneration();
  if (startDayZone != zone || startDayOf != start) {
    startDay = CivilDay::Of(start);
    startDayOf = start;
    startDayZone = local_time::ZoneGeneration();
  }
  return startDay;
}

bool Event::OccursOnDate(const VxTime& date) const {
  if (date < start || date > end_date) return false;
  switch (frequency) {
    case Scheduler::kOnce:
      return StartDay().IsSameDate(CivilDay::Of(date));
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

bool Event::OccursDaily(const VxTime& date) const {
  Check(rate != 0, event_assert::kDailyByZero);
  const long long days = steps::Between(start, date);
  Check(days >= 0, event_assert::kDailyBeforeStart);
  return rate != 0 && IsMultiple(days, rate);
}

bool Event::OccursWeekly(const VxTime& date) const {
  Check(rate != 0, event_assert::kWeeklyByZero);
  const long long days = steps::Between(start, date);
  Check(days >= 0, event_assert::kWeeklyBeforeStart);
  if (rate == 0 || !IsMultiple(WeeksSinceStart(days, StartWeekday()), rate)) return false;
  const int weekday = CivilDay::Of(date).weekday;
  return weekday != 0 && (daymask >> (weekday - 1) & 1U) != 0;
}

bool Event::OccursMonthly(const VxTime& date) const {
  Check(rate != 0, event_assert::kMonthlyByZero);
  const CivilDay& first = StartDay();
  const CivilDay day = CivilDay::Of(date);
  if (rate == 0 || !IsMultiple(day.Months() - first.Months(), rate)) return false;
  if (start_period == Scheduler::kByDay) return first.day == day.day;
  return day.IsKnown() &&
         nth_day::FindDay(day.month, start_weekday, day.year, start_period).IsSameDate(day);
}

bool Event::OccursYearly(const VxTime& date) const {
  Check(rate != 0, event_assert::kYearlyByZero);
  const CivilDay& first = StartDay();
  const CivilDay day = CivilDay::Of(date);
  if (rate == 0 || !IsMultiple(static_cast<long long>(day.year) - first.year, rate)) return false;
  if (start_period == Scheduler::kByDay) return first.month == day.month && first.day == day.day;
  return first.IsKnown() &&
         nth_day::FindDay(first.month, start_weekday, day.year, start_period).IsSameDate(day);
}

VxTime Event::GetNthDayOfMonth(int month, int weekday, int year, Scheduler::PERIOD period) {
  Check(period != Scheduler::kByDay, event_assert::kNoPeriod);
  if (period == Scheduler::kByDay || month < 1 || month > 12) return VxTime();
  return nth_day::Find(month, weekday, year, period);
}

bool Event::RepeatsByZero() const {
  return rate == 0 && frequency >= Scheduler::kDaily && frequency <= Scheduler::kYearly;
}
