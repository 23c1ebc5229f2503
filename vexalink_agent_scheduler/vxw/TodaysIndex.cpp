#include "vexalink_agent_scheduler/vxw/TodaysIndex.h"

#include <algorithm>
#include <iterator>
#include <tuple>

void TodaysIndex::Clear() {
  for (Event* event : list_) event->today.isListed = false;
  list_.clear();
  firstOfTime_.clear();
}

void TodaysIndex::Enter(Event& event, Entry entry) { event.today = {true, ++insertions_, entry}; }

void TodaysIndex::Insert(Event& event) {
  Remove(event);
  const auto later = firstOfTime_.upper_bound(event.next_fire);
  const Entry entry =
      list_.insert(later == firstOfTime_.end() ? list_.end() : later->second, &event);
  firstOfTime_.try_emplace(later, event.next_fire, entry);
  Enter(event, entry);
}

void TodaysIndex::Assign(std::vector<Event*> events) {
  Clear();
  std::stable_sort(events.begin(), events.end(),
                   [](const Event* a, const Event* b) { return a->next_fire < b->next_fire; });
  for (Event* event : events) {
    const Entry entry = list_.insert(list_.end(), event);
    firstOfTime_.try_emplace(firstOfTime_.end(), event->next_fire, entry);
    Enter(*event, entry);
  }
}

void TodaysIndex::Remove(Event& event) {
  if (!event.today.isListed) return;
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
  event.today.isListed = false;
}

bool TodaysIndex::IsBefore(const Event& a, const Event& b) {
  return std::tie(a.next_fire, a.today.order) < std::tie(b.next_fire, b.today.order);
}
