#include "vexalink_agent_scheduler/vxw/DayGrid.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/Steps.h"
#include "vexalink_agent_scheduler/vxw/WeekCount.h"

namespace {

bool IsLater(const CivilDay& a, const CivilDay& b) {
  return std::tie(a.year, a.month, a.day) > std::tie(b.year, b.month, b.day);
}

DayGrid::Day MakeDay(VxTime instant) {
  DayGrid::Day day;
  day.instant = instant;
  day.civil = CivilDay::Of(instant);
  if (const local_time::Day* local = local_time::FindDay(instant.Seconds())) {
    // Clocks that are set back leave no time out; of one that comes twice the first is meant.
    day.hasAllTimes = local->after.offset <= local->before.offset;
  }
  return day;
}

DayGrid::Position Clip(long long position, std::size_t size) {
  return static_cast<DayGrid::Position>(
      std::clamp<long long>(position, 0, static_cast<long long>(size)));
}

}  // namespace

bool DayGrid::Fill(VxTime origin, long long first, long long last, const CivilDay& lastDate) {
  days_.clear();
  months_.clear();
  weekdays_.clear();
  for (long long step = first; step <= last; ++step) {
    const Day day = MakeDay(steps::At(origin, step));
    if (IsLater(day.civil, lastDate)) return false;
    const auto position = static_cast<Position>(days_.size());
    if (months_.empty() || months_.back().civil.Months() != day.civil.Months()) {
      months_.push_back({day.civil, position, position});
    }
    ++months_.back().end;
    weekdays_.push_back(
        static_cast<std::uint8_t>(day.civil.IsKnown() ? 1U << (day.civil.weekday - 1) : 0U));
    days_.push_back(day);
  }
  return true;
}

DayGrid::Range DayGrid::ActivePositions(const Event& event) const {
  if (days_.empty() || event.end_date < days_.front().instant) return {0, 0};
  const VxTime first = days_.front().instant;
  const Position begin = Clip(steps::Reaching(first, event.start), days_.size());
  const Position end = Clip(steps::Between(first, event.end_date) + 1, days_.size());
  return {begin, std::max(begin, end)};
}

void DayGrid::FindOccurrences(const Event& event, std::vector<Position>* out) const {
  out->clear();
  const Range active = ActivePositions(event);
  if (active.first == active.second || event.RepeatsByZero()) return;
  switch (event.frequency) {
    case Scheduler::kOnce:
      return FindOnce(event, active, out);
    case Scheduler::kDaily:
      return FindDaily(event, active, out);
    case Scheduler::kWeekly:
      return FindWeekly(event, active, out);
    case Scheduler::kMonthly:
    case Scheduler::kYearly:
      return FindByMonth(event, active, out);
    default:
      return;
  }
}

void DayGrid::FindOnce(const Event& event, Range active, std::vector<Position>* out) const {
  AppendDate(event.StartDay().days, active, out);
}

void DayGrid::FindDaily(const Event& event, Range active, std::vector<Position>* out) const {
  const long long every = std::llabs(event.rate);
  const long long past = steps::Between(event.start, days_[active.first].instant) % every;
  const long long first = active.first + (past == 0 ? 0 : every - past);
  for (long long at = first; at < active.second; at += every) {
    out->push_back(static_cast<Position>(at));
  }
}

void DayGrid::FindWeekly(const Event& event, Range active, std::vector<Position>* out) const {
  const auto mask = static_cast<std::uint8_t>(event.daymask & 0x7FU);
  if (event.rate == 1 || event.rate == -1) {
    AppendWeekdays(mask, active.first, active.second, out);
    return;
  }
  const int weekday = event.StartWeekday();
  long long days = steps::Between(event.start, days_[active.first].instant);
  for (Position at = active.first; at < active.second;) {
    const long long week = WeeksSinceStart(days, weekday);
    const long long weekEnd = (week + 1) * 7 - (std::max(weekday, 1) - 1);  // as `days` counts
    const Position end = std::min(active.second, Clip(at + weekEnd - days, days_.size()));
    if (week % event.rate == 0) AppendWeekdays(mask, at, end, out);
    days += end - at;
    at = end;
  }
}

void DayGrid::AppendWeekdays(std::uint8_t mask, Position begin, Position end,
                             std::vector<Position>* out) const {
  std::size_t count = out->size();
  out->resize(count + (end - begin));
  // Written whether it counts or not: a mask is not to be guessed by the processor.
  for (Position day = begin; day < end; ++day) {
    (*out)[count] = day;
    count += (weekdays_[day] & mask) != 0 ? 1U : 0U;
  }
  out->resize(count);
}

// Monthly and yearly events: at most one date a month.
void DayGrid::FindByMonth(const Event& event, Range active, std::vector<Position>* out) const {
  const bool byDay = event.start_period == Scheduler::kByDay;
  if (!byDay && (event.start_weekday < 1 || event.start_weekday > 7)) {
    return FindOnEpoch(event, active, out);
  }
  const CivilDay first = event.StartDay();
  const bool yearly = event.frequency == Scheduler::kYearly;
  for (const Month& month : months_) {
    if (month.end <= active.first || month.begin >= active.second) continue;
    // Where the clocks leave out the first midnight of a month, its first weekday may come out on
    // the day before.
    const bool isMonthBefore = !byDay && month.civil.month % 12 + 1 == first.month;
    if (yearly && month.civil.month != first.month && !isMonthBefore) continue;
    const long long units = yearly ? static_cast<long long>(month.civil.year) - first.year
                                   : month.civil.Months() - first.Months();
    if (units % event.rate != 0) continue;
    const long long date =
        byDay ? month.civil.days - month.civil.day + first.day
              : nth_day::FindDay(yearly ? first.month : month.civil.month, event.start_weekday,
                                 month.civil.year, event.start_period)
                    .days;
    AppendDate(date, {std::max(month.begin, active.first), std::min(month.end, active.second)},
               out);
  }
}

// A weekday that never comes: the search for it yields the epoch, so only that day is to be asked.
void DayGrid::FindOnEpoch(const Event& event, Range active, std::vector<Position>* out) const {
  AppendDate(CivilDay::Of(VxTime()).days, active, out);
  std::erase_if(*out,
                [&](Position position) { return !event.OccursOnDate(days_[position].instant); });
}

void DayGrid::AppendDate(long long civilDays, Range within, std::vector<Position>* out) const {
  // Where it would be if each step were a civil day; it is never far from there.
  Position at = Clip(civilDays - days_.front().civil.days, days_.size());
  while (at > 0 && days_[at - 1].civil.days >= civilDays) --at;
  while (at < days_.size() && days_[at].civil.days < civilDays) ++at;
  for (; at < days_.size() && days_[at].civil.days == civilDays; ++at) {
    if (at >= within.first && at < within.second) out->push_back(at);
  }
}
