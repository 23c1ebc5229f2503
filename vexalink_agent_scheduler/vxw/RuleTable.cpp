#include "vexalink_agent_scheduler/vxw/RuleTable.h"

#include <array>
#include <bit>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/Steps.h"
#include "vexalink_agent_scheduler/vxw/WeekCount.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

// By a rate that is not 0; most are small, and dividing small numbers is several times faster.
bool IsMultiple(long long value, std::int32_t rate) {
  const auto small = static_cast<std::uint32_t>(value);
  if (small == value && rate > 0) return small % static_cast<std::uint32_t>(rate) == 0;
  return value % rate == 0;
}

}  // namespace

// Which nth weekdays of its month one day is, looked up once for each kind that is asked for.
class RuleTable::NthWeekdays {
 public:
  explicit NthWeekdays(const CivilDay& day) : day_(day) {}

  bool Is(int weekday, int period) {
    Answer& answer = answers_[static_cast<std::size_t>(weekday * 8 + period)];
    if (answer == Answer::kOpen) {
      const bool is = nth_day::FindDay(day_.month, weekday, day_.year, period).IsSameDate(day_);
      answer = is ? Answer::kYes : Answer::kNo;
    }
    return answer == Answer::kYes;
  }

 private:
  enum class Answer : std::uint8_t { kOpen, kYes, kNo };

  CivilDay day_;
  std::array<Answer, 64> answers_{};
};

const std::vector<Event*>& RuleTable::FindOnDate(const std::map<unsigned long, Event*>& events,
                                                 VxTime date) {
  const local_time::ZoneHold hold;
  const unsigned generation = local_time::ZoneGeneration();
  if (generation_ != generation) DrawTogether(events, generation);
  marks_.assign(events_.size() / 64 + 1, 0);
  const CivilDay day = CivilDay::Of(date);
  MarkOnce(date, day);
  MarkDaily(date);
  MarkWeekly(date, day);
  MarkByMonth(date, day);
  MarkOthers(date);
  TakeMarked();
  return found_;
}

void RuleTable::DrawTogether(const std::map<unsigned long, Event*>& events, unsigned generation) {
  events_.clear();
  once_.clear();
  daily_.clear();
  weekly_.clear();
  byMonth_.clear();
  others_.clear();
  events_.reserve(events.size());
  for (const auto& [id, event] : events) {
    Add(*event, static_cast<std::uint32_t>(events_.size()));
    events_.push_back(event);
  }
  generation_ = generation;
}

void RuleTable::Add(const Event& event, std::uint32_t number) {
  const Rule rule{event.start, event.end_date, number, event.rate};
  // Those that repeat by 0 leave assertion records, so they are asked themselves.
  const bool isPlain = !event.RepeatsByZero() && event.StartDay().IsKnown();
  if (isPlain && event.frequency == Scheduler::kOnce) {
    once_.push_back({rule, event.StartDay().days});
  } else if (isPlain && event.frequency == Scheduler::kDaily) {
    daily_.push_back(rule);
  } else if (isPlain && event.frequency == Scheduler::kWeekly) {
    weekly_.push_back({rule, static_cast<std::uint8_t>(event.daymask & 0x7FU),
                       static_cast<std::int8_t>(event.StartWeekday())});
  } else if (isPlain &&
             (event.frequency == Scheduler::kMonthly || event.frequency == Scheduler::kYearly)) {
    AddByMonth(event, rule);
  } else {
    others_.push_back(number);
  }
}

void RuleTable::AddByMonth(const Event& event, const Rule& rule) {
  const bool byDay = event.start_period == Scheduler::kByDay;
  if (!byDay && (event.start_weekday < 1 || event.start_weekday > 7)) {
    others_.push_back(rule.number);  // it falls on the epoch's day, if ever
    return;
  }
  const CivilDay& start = event.StartDay();
  const bool yearly = event.frequency == Scheduler::kYearly;
  ByMonth entry{rule, yearly ? start.year : start.Months(), 0, 0, 0, 0};
  if (yearly) entry.month = start.month;
  if (byDay) {
    entry.day = start.day;
  } else {
    const bool isLast =
        event.start_period < Scheduler::kFirst || event.start_period > Scheduler::kFourth;
    entry.weekday = static_cast<std::int8_t>(event.start_weekday);
    entry.period = static_cast<std::int8_t>(isLast ? Scheduler::kLast : event.start_period);
  }
  byMonth_.push_back(entry);
}

void RuleTable::MarkOnce(VxTime date, const CivilDay& day) {
  if (!day.IsKnown()) return;
  for (const Once& rule : once_) {
    if (rule.days == day.days && rule.IsActive(date)) Mark(rule.number);
  }
}

void RuleTable::MarkDaily(VxTime date) {
  for (const Rule& rule : daily_) {
    if (rule.IsActive(date) && IsMultiple(steps::Between(rule.start, date), rule.rate)) {
      Mark(rule.number);
    }
  }
}

void RuleTable::MarkWeekly(VxTime date, const CivilDay& day) {
  if (!day.IsKnown()) return;
  const auto today = static_cast<std::uint8_t>(1U << (day.weekday - 1));
  for (const Weekly& rule : weekly_) {
    if ((rule.weekdays & today) == 0 || !rule.IsActive(date)) continue;
    const long long days = steps::Between(rule.start, date);
    if (IsMultiple(WeeksSinceStart(days, rule.startWeekday), rule.rate)) Mark(rule.number);
  }
}

void RuleTable::MarkByMonth(VxTime date, const CivilDay& day) {
  if (!day.IsKnown()) return;
  NthWeekdays nth(day);
  // Where the clocks leave out the first midnight of a month, its first weekday may come out on the
  // day before.
  const bool isLastOfMonth =
      day.day == local_time::DaysInMonth(day.month, AstroClock::IsLeapYear(day.year));
  for (const ByMonth& rule : byMonth_) {
    if (isLastOfMonth && rule.day == 0 && rule.month == day.month % 12 + 1) {
      if (events_[rule.number]->OccursOnDate(date)) Mark(rule.number);
      continue;
    }
    if (rule.day != 0 ? rule.day != day.day : !nth.Is(rule.weekday, rule.period)) continue;
    if (!rule.IsActive(date) || (rule.month != 0 && rule.month != day.month)) continue;
    const long long units = (rule.month != 0 ? day.year : day.Months()) - rule.units;
    if (IsMultiple(units, rule.rate)) Mark(rule.number);
  }
}

void RuleTable::MarkOthers(VxTime date) {
  for (const std::uint32_t number : others_) {
    if (events_[number]->OccursOnDate(date)) Mark(number);
  }
}

void RuleTable::TakeMarked() {
  found_.clear();
  for (std::size_t word = 0; word < marks_.size(); ++word) {
    for (std::uint64_t bits = marks_[word]; bits != 0; bits &= bits - 1) {
      found_.push_back(events_[word * 64 + static_cast<std::size_t>(std::countr_zero(bits))]);
    }
  }
}
