#include "controller/firing/DayPlan.h"

#include <algorithm>
#include <utility>

namespace controller {

PlannedOccurrence* DayPlan::Find(unsigned long event) {
  const auto found = occurrences_.find(event);
  return found == occurrences_.end() ? nullptr : &found->second;
}

void DayPlan::Put(PlannedOccurrence occurrence) {
  const unsigned long event = occurrence.event;
  occurrences_.insert_or_assign(event, std::move(occurrence));
}

std::vector<PlannedOccurrence> DayPlan::InOrder() const {
  std::vector<PlannedOccurrence> ordered;
  ordered.reserve(occurrences_.size());
  for (const auto& [event, occurrence] : occurrences_) ordered.push_back(occurrence);
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const PlannedOccurrence& a, const PlannedOccurrence& b) {
                     return a.due.value_or(a.planned) < b.due.value_or(b.planned);
                   });
  return ordered;
}

}  // namespace controller
