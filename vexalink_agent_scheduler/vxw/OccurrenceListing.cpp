#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"

#include <algorithm>
#include <utility>

#include "vexalink_agent_scheduler/vxw/Steps.h"

namespace {

constexpr long long kDaysToSpare = 3;  // the end is an instant of the last day, and zones may shift
constexpr long long kMostDays = 512;
constexpr long long kMostAsked = 1
                                 << 20;  // at once, so that a large table does not fill the memory
constexpr long long kFirstDaysOfEach = 8;
constexpr long long kSparse = 8;  // days for each occurrence, with which they are better left out
constexpr int kMinutesPerDay = 1440;

}  // namespace

OccurrenceListing::Source OccurrenceListing::MakeSource(const Event& event) {
  Source source{&event, kAskEachDay, 0, event.RepeatsByZero()};
  if (event.offset == Scheduler::kClock && event.offset_minutes >= 0 &&
      event.offset_minutes < kMinutesPerDay) {
    source.hour = static_cast<signed char>(event.offset_minutes / 60);
    source.minute = static_cast<signed char>(event.offset_minutes % 60);
  }
  return source;
}

OccurrenceListing::OccurrenceListing(const std::map<unsigned long, Event*>& events, VxTime from,
                                     VxTime to)
    : from_(from), lastDate_(CivilDay::Of(to)), lastStep_(steps::Between(from, to) + kDaysToSpare) {
  sources_.reserve(events.size());
  std::vector<Due> due;
  for (const auto& [id, event] : events) {
    const long long start = steps::Reaching(from_, event->start);
    if (start > lastStep_ || steps::At(from_, start) > event->end_date) continue;
    due.emplace_back(start, static_cast<std::uint32_t>(sources_.size()));
    sources_.push_back(MakeSource(*event));
  }
  due_ = decltype(due_)(std::greater<>(), std::move(due));
  mostDays_ =
      std::clamp<long long>(kMostAsked / static_cast<long long>(sources_.size() + 1), 1, kMostDays);
  daysAtOnce_ = std::min(mostDays_, kFirstDaysOfEach * static_cast<long long>(sources_.size() + 1));
}

bool OccurrenceListing::Next(std::vector<ListedOccurrence>* out) {
  out->clear();
  if (due_.empty()) return false;
  const long long first = due_.top().first;
  const long long last = std::min(lastStep_, first + daysAtOnce_ - 1);
  const bool isFull = grid_.Fill(from_, first, last, lastDate_);
  if (grid_.Days().empty()) return false;
  const long long end = first + static_cast<long long>(grid_.Days().size());
  if (!isFull) lastStep_ = end - 1;
  CollectDue(end);
  CountDays();
  Place(out);
  if (hasUntimed_ || !askedZero_.empty()) AskInOrder(out);
  const bool hasGap = !due_.empty() && due_.top().first - end >= daysAtOnce_;
  const auto found = static_cast<long long>(asked_.size() + askedZero_.size());
  const bool isSparse = found * kSparse < end - first;
  daysAtOnce_ = hasGap || isSparse ? 1 : std::min(mostDays_, daysAtOnce_ * 2);
  return true;
}

// Collects whom to ask on the days of the grid, which ends before the step `end`.
void OccurrenceListing::CollectDue(long long end) {
  active_.clear();
  for (; !due_.empty() && due_.top().first < end; due_.pop()) {
    active_.push_back(due_.top().second);
  }
  std::sort(active_.begin(), active_.end());
  asked_.clear();
  askedZero_.clear();
  for (const std::uint32_t source : active_) {
    const Event& event = *sources_[source].event;
    if (sources_[source].repeatsByZero) {
      // It never happens, but each day from its start to its end becomes an assertion record.
      const auto [begin, stop] = grid_.ActivePositions(event);
      for (DayGrid::Position day = begin; day < stop; ++day) askedZero_.push_back({day, source});
    } else {
      grid_.FindOccurrences(event, &positions_);
      for (const DayGrid::Position day : positions_) asked_.push_back({day, source});
    }
    Enter(source, end);
  }
}

void OccurrenceListing::Enter(std::uint32_t source, long long fromStep) {
  if (fromStep > lastStep_) return;
  const Event& event = *sources_[source].event;
  if (sources_[source].repeatsByZero) {
    if (steps::At(from_, fromStep) <= event.end_date) due_.push({fromStep, source});
  } else if (const auto step = event.FindOccurrence(from_, fromStep, lastStep_)) {
    due_.push({*step, source});
  }
}

// Sets where the entries of each day begin; Place moves that to where they end.
void OccurrenceListing::CountDays() {
  dayEnds_.assign(grid_.Days().size(), 0);
  for (const Asked& asked : asked_) ++dayEnds_[asked.day];
  std::uint32_t before = 0;
  for (std::uint32_t& day : dayEnds_) before += std::exchange(day, before);
}

void OccurrenceListing::Place(std::vector<ListedOccurrence>* out) {
  out->resize(asked_.size());
  hasUntimed_ = false;
  const std::vector<DayGrid::Day>& days = grid_.Days();
  for (const Asked& asked : asked_) {
    const Source& source = sources_[asked.source];
    const DayGrid::Day& day = days[asked.day];
    ListedOccurrence& entry = (*out)[dayEnds_[asked.day]++];
    entry.event = source.event;
    entry.year = day.civil.year;
    entry.month = day.civil.month;
    entry.day = day.civil.day;
    entry.hour = day.hasAllTimes ? source.hour : kAskEachDay;
    entry.minute = source.minute;
    hasUntimed_ = hasUntimed_ || entry.hour == kAskEachDay;
  }
}

// Works out what is still open, in the order in which the plain walk does, because both kinds of
// question may leave assertion records: on each day first who happens, then when.
void OccurrenceListing::AskInOrder(std::vector<ListedOccurrence>* out) const {
  std::vector<Asked> zero = askedZero_;
  std::stable_sort(zero.begin(), zero.end(),
                   [](const Asked& a, const Asked& b) { return a.day < b.day; });
  auto nextZero = zero.begin();
  std::size_t at = 0;
  for (DayGrid::Position position = 0; position < dayEnds_.size(); ++position) {
    const VxTime day = grid_.Days()[position].instant;
    for (; nextZero != zero.end() && nextZero->day == position; ++nextZero) {
      sources_[nextZero->source].event->OccursOnDate(day);
    }
    for (; at < dayEnds_[position]; ++at) {
      ListedOccurrence& entry = (*out)[at];
      if (entry.hour != kAskEachDay) continue;
      std::tm local;
      const bool known = entry.event->EventTime(day).GetLocalTm(&local) != nullptr;
      entry.hour = static_cast<signed char>(known ? local.tm_hour : -1);
      entry.minute = static_cast<signed char>(known ? local.tm_min : -1);
    }
  }
}
