#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"

#include <algorithm>

#include "vexalink_agent_scheduler/vxw/Steps.h"

namespace {

constexpr long long kDaysToSpare = 3;  // the end is an instant of the last day, and zones may shift
constexpr long long kMostDays = 512;
constexpr long long kMostAsked = 1
                                 << 20;  // at once, so that a large table does not fill the memory
constexpr int kMinutesPerDay = 1440;

// The time of day at which `event` fires on `day`.
void SetTime(const Event& event, const DayGrid::Day& day, ListedOccurrence* entry) {
  if (event.offset == Scheduler::kClock && day.midnight != -1 && event.offset_minutes >= 0 &&
      event.offset_minutes < kMinutesPerDay) {
    entry->hour = static_cast<signed char>(event.offset_minutes / 60);
    entry->minute = static_cast<signed char>(event.offset_minutes % 60);
    return;
  }
  std::tm local;
  const bool known = event.EventTime(day.instant).GetLocalTm(&local) != nullptr;
  entry->hour = static_cast<signed char>(known ? local.tm_hour : -1);
  entry->minute = static_cast<signed char>(known ? local.tm_min : -1);
}

}  // namespace

OccurrenceListing::OccurrenceListing(const std::map<unsigned long, Event*>& events, VxTime from,
                                     VxTime to)
    : from_(from), lastDate_(CivilDay::Of(to)), lastStep_(steps::Between(from, to) + kDaysToSpare) {
  sources_.reserve(events.size());
  for (const auto& [id, event] : events) sources_.push_back(event);
  mostDays_ =
      std::clamp<long long>(kMostAsked / static_cast<long long>(sources_.size() + 1), 1, kMostDays);
  daysAtOnce_ = mostDays_;
  for (std::uint32_t i = 0; i < sources_.size(); ++i) {
    const Event& event = *sources_[i];
    const long long start = steps::Reaching(from_, event.start);
    if (start <= lastStep_ && steps::At(from_, start) <= event.end_date) due_.push({start, i});
  }
}

bool OccurrenceListing::Next(std::vector<ListedOccurrence>* out) {
  out->clear();
  if (due_.empty()) return false;
  const long long first = due_.top().first;
  const long long last = std::min(lastStep_, first + daysAtOnce_ - 1);
  grid_.Fill(from_, first, last, lastDate_);
  if (grid_.Days().empty()) return false;
  CollectDue(first + static_cast<long long>(grid_.Days().size()));
  SortByDay();
  const Asked* begin = sorted_.data();
  for (std::size_t day = 0; day < grid_.Days().size(); ++day) {
    const Asked* const end = sorted_.data() + dayEnds_[day];
    AskDay(grid_.Days()[day], begin, end, out);
    begin = end;
  }
  const auto found = static_cast<long long>(asked_.size());
  daysAtOnce_ = found * 8 < daysAtOnce_ ? std::max<long long>(1, daysAtOnce_ / 8)
                                        : std::min(mostDays_, daysAtOnce_ * 2);
  return true;
}

// Collects whom to ask on the days of the grid, which ends before the step `end`.
void OccurrenceListing::CollectDue(long long end) {
  std::vector<std::uint32_t> active;
  for (; !due_.empty() && due_.top().first < end; due_.pop()) {
    active.push_back(due_.top().second);
  }
  std::sort(active.begin(), active.end());
  asked_.clear();
  std::vector<DayGrid::Position> positions;
  for (const std::uint32_t source : active) {
    const Event& event = *sources_[source];
    if (event.RepeatsByZero()) {
      // It never happens, but each day from its start to its end becomes an assertion record.
      const auto [begin, stop] = grid_.ActivePositions(event);
      for (DayGrid::Position day = begin; day < stop; ++day) asked_.push_back({day, source});
    } else {
      grid_.FindOccurrences(event, &positions);
      for (const DayGrid::Position day : positions) asked_.push_back({day, source});
    }
    Enter(source, end);
  }
}

void OccurrenceListing::Enter(std::uint32_t source, long long fromStep) {
  if (fromStep > lastStep_) return;
  const Event& event = *sources_[source];
  if (event.RepeatsByZero()) {
    if (steps::At(from_, fromStep) <= event.end_date) due_.push({fromStep, source});
  } else if (const auto step = event.FindOccurrence(from_, fromStep, lastStep_)) {
    due_.push({*step, source});
  }
}

void OccurrenceListing::SortByDay() {
  dayEnds_.assign(grid_.Days().size(), 0);
  for (const Asked& asked : asked_) ++dayEnds_[asked.day];
  std::uint32_t before = 0;
  for (std::uint32_t& end : dayEnds_) {  // for now, where each day begins
    const std::uint32_t count = end;
    end = before;
    before += count;
  }
  sorted_.resize(asked_.size());
  for (const Asked& asked : asked_) sorted_[dayEnds_[asked.day]++] = asked;
}

void OccurrenceListing::AskDay(const DayGrid::Day& day, const Asked* begin, const Asked* end,
                               std::vector<ListedOccurrence>* out) const {
  for (const Asked* asked = begin; asked != end; ++asked) {
    const Event& event = *sources_[asked->source];
    if (event.RepeatsByZero()) event.OccursOnDate(day.instant);  // for its record
  }
  for (const Asked* asked = begin; asked != end; ++asked) {
    const Event& event = *sources_[asked->source];
    if (event.RepeatsByZero()) continue;
    ListedOccurrence& entry = out->emplace_back();
    entry.event = &event;
    entry.year = day.civil.year;
    entry.month = day.civil.month;
    entry.day = day.civil.day;
    SetTime(event, day, &entry);
  }
}
