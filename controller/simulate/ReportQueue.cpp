#include "controller/simulate/ReportQueue.h"

#include <utility>

namespace controller {

void SimulatedTotals::Count(const SimulatedOccurrence& occurrence) {
  if (occurrence.outcome == OccurrenceState::kHeld) ++held;
  if (occurrence.outcome == OccurrenceState::kMissed) ++missed;
  if (occurrence.outcome != OccurrenceState::kFired) return;
  ++fired;
  if (!occurrence.near.empty()) ++near;
  for (const SimulatedAction& action : occurrence.actions) ++(action.runs ? actions : unmet);
}

void ReportQueue::Put(Item item) {
  while (!waiting_.empty() && waiting_.front().at <= item.at - kNearSeconds) TellFirst();
  waiting_.push_back(std::move(item));
}

void ReportQueue::Put(SimulatedOccurrence occurrence) {
  while (!waiting_.empty() && waiting_.front().at <= occurrence.at - kNearSeconds) TellFirst();
  if (occurrence.outcome == OccurrenceState::kFired) FindNear(occurrence);
  const std::time_t at = occurrence.at;
  waiting_.push_back({at, std::move(occurrence)});
}

void ReportQueue::FindNear(SimulatedOccurrence& occurrence) {
  for (Item& item : waiting_) {
    auto* other = std::get_if<SimulatedOccurrence>(&item.what);
    if (other == nullptr || other->outcome != OccurrenceState::kFired) continue;
    if (other->event == occurrence.event || other->at <= occurrence.at - kNearSeconds) continue;
    other->near.insert(occurrence.event);
    occurrence.near.insert(other->event);
  }
}

void ReportQueue::TellFirst() {
  std::visit([this](const auto& what) { Tell(what); }, waiting_.front().what);
  waiting_.pop_front();
}

void ReportQueue::Finish() {
  while (!waiting_.empty()) TellFirst();
  EndDay();
}

void ReportQueue::EndDay() {
  if (!day_) return;
  report_.OnDayEnd(*day_, ofDay_);
  day_.reset();
}

void ReportQueue::Tell(const SimulatedDay& day) {
  EndDay();
  day_ = day;
  ofDay_ = {};
  ofDay_.days = 1;
  ++totals_.days;
  report_.OnDay(day);
}

void ReportQueue::Tell(const ClockShift& shift) {
  ++ofDay_.clockShifts;
  ++totals_.clockShifts;
  report_.OnClockShift(shift);
}

void ReportQueue::Tell(const SimulatedOccurrence& occurrence) {
  if (only_ && occurrence.event != *only_) return;
  ofDay_.Count(occurrence);
  totals_.Count(occurrence);
  report_.OnOccurrence(occurrence);
}

}  // namespace controller
