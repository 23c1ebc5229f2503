#include <algorithm>
#include <deque>
#include <gtest/gtest.h>

#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/TodaysIndex.h"

namespace {

using List = std::list<Event*>;

// By a walk from the front.
void Insert(List& list, Event* event) {
  auto at = list.begin();
  while (at != list.end() && (*at)->next_fire <= event->next_fire) ++at;
  list.insert(at, event);
}

bool Holds(const List& list, const Event* event) {
  return std::find(list.begin(), list.end(), event) != list.end();
}

// The index, and a plain list to which the same is done.
struct Pair {
  std::deque<Event> events;
  List list;
  TodaysIndex index{list};
  List plain;

  explicit Pair(int count) {
    for (int i = 0; i < count; ++i) events.emplace_back(0, 0);
  }
  void Insert(Event& event, Random& random) {
    if (!Holds(plain, &event)) event.next_fire = VxTime(random.Between(0, 12));
    plain.remove(&event);
    ::Insert(plain, &event);
    index.Insert(event);
  }
  void Remove(Event& event) {
    plain.remove(&event);
    index.Remove(event);
  }
  void Assign(Random& random) {
    std::vector<Event*> chosen;
    for (Event& event : events) {
      if (!random.OneIn(3)) continue;
      event.next_fire = VxTime(random.Between(0, 12));
      chosen.insert(chosen.begin() + random.Between(0, static_cast<long long>(chosen.size())),
                    &event);
    }
    plain.clear();
    for (Event* event : chosen) ::Insert(plain, event);
    index.Assign(chosen);
  }
  void Act(Random& random) {
    Event& event = events[static_cast<std::size_t>(
        random.Between(0, static_cast<long long>(events.size()) - 1))];
    const long long act = random.Between(0, 99);
    if (act < 55) return Insert(event, random);
    if (act < 95) return Remove(event);
    if (act < 98) return Assign(random);
    plain.clear();
    index.Clear();
  }
};

}  // namespace

TEST(SortedList, IsWhatAWalkFromTheFrontMakesOfIt) {
  Random random(21);
  for (int run = 0; run < 60; ++run) {
    Pair pair(static_cast<int>(random.Between(1, 40)));
    for (int i = 0; i < 400; ++i) {
      pair.Act(random);
      ASSERT_EQ(pair.list, pair.plain) << "run " << run << ", act " << i;
      for (const Event& event : pair.events) {
        ASSERT_EQ(pair.index.IsListed(event), Holds(pair.plain, &event)) << run << ", " << i;
      }
    }
  }
}

TEST(SortedList, KnowsWhichOfTwoStandsBefore) {
  Random random(22);
  for (int run = 0; run < 200; ++run) {
    Pair pair(12);
    for (int i = 0; i < 60; ++i) pair.Act(random);
    for (auto a = pair.plain.begin(); a != pair.plain.end(); ++a) {
      for (auto b = std::next(a); b != pair.plain.end(); ++b) {
        EXPECT_TRUE(TodaysIndex::IsBefore(**a, **b));
        EXPECT_FALSE(TodaysIndex::IsBefore(**b, **a));
      }
    }
  }
}
