#include "vexalink_agent_scheduler/vxw/TodaysIndex.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

void TodaysIndex::Clear() {
  ++listing_;
  list_.clear();
  firstOfTime_.clear();
}

void TodaysIndex::Enter(Event& event, Entry entry) {
  event.today = {listing_, ++insertions_, entry};
}

void TodaysIndex::Insert(Event& event) {
  Remove(event);
  const auto later = firstOfTime_.upper_bound(event.next_fire);
  const Entry entry =
      list_.insert(later == firstOfTime_.end() ? list_.end() : later->second, &event);
  firstOfTime_.try_emplace(later, event.next_fire, entry);
  Enter(event, entry);
}

void TodaysIndex::Assign(const std::vector<Event*>& events) {
  std::vector<std::pair<VxTime, Event*>> sorted;
  sorted.reserve(events.size());
  for (Event* event : events) sorted.emplace_back(event->next_fire, event);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  ++listing_;
  firstOfTime_.clear();
  list_.resize(sorted.size());  // the entries there are serve again
  auto entry = list_.begin();
  for (const auto& [time, event] : sorted) {
    *entry = event;
    if (firstOfTime_.empty() || firstOfTime_.rbegin()->first != time) {
      firstOfTime_.emplace_hint(firstOfTime_.end(), time, entry);
    }
    Enter(*event, entry++);
  }
}

void TodaysIndex::Remove(Event& event) {
  if (!IsListed(event)) return;
  const Entry entry = event.today.entry;
  const auto first = firstOfTime_.find(event.next_fire);
  if (first != firstOfTime_.end() && first->second == entry) {
    const Entry next = std::next(entry);
    if (next != list_.end() && (*next)->next_fire == event.next_fire) {
      first->second = next;
    } else {
      firstOfTime_.erase(first);
    }
  }
  list_.erase(entry);
  event.today.listing = 0;
}

bool TodaysIndex::IsBefore(const Event& a, const Event& b) {
  return std::tie(a.next_fire, a.today.order) < std::tie(b.next_fire, b.today.order);
}
