#include <gtest/gtest.h>
#include <memory>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"
#include "vexalink_agent_scheduler/vxw/RuleTable.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

// Random tables: 16 zones, so 10,000 in all, each drawn together, asked, changed and asked again.
constexpr int kTablesOfZone = 625;

class OwnedTable {
 public:
  OwnedTable(std::time_t about, const Instants& instants, Random& random) {
    const auto count = random.Between(0, 9);
    for (long long i = 0; i < count; ++i) Add(about, instants, random);
  }
  void Add(std::time_t about, const Instants& instants, Random& random) {
    const auto id = static_cast<unsigned long>(random.Between(1, 150));
    owned_[id] = std::make_unique<Event>(RandomEvent(id, about, instants, random));
    events[id] = owned_[id].get();
  }
  void RemoveOne(Random& random) {
    if (events.empty()) return;
    const auto gone =
        std::next(events.begin(), random.Between(0, static_cast<long long>(events.size()) - 1));
    owned_.erase(gone->first);
    events.erase(gone);
  }
  std::string Text() const {
    std::string text;
    for (const auto& [id, event] : events) text += Describe(*event) + "\n";
    return text;
  }

  plain::Table events;

 private:
  std::map<unsigned long, std::unique_ptr<Event>> owned_;
};

void ExpectSameDay(const OwnedTable& table, RuleTable& rules, std::time_t date) {
  std::vector<unsigned long> ids;
  plain::Records records;
  {
    const AssertLines lines;
    for (const Event* event : rules.FindOnDate(table.events, VxTime(date))) {
      ids.push_back(event->eventid);
    }
    records = lines.lines;
  }
  plain::Records plainRecords;
  EXPECT_EQ(ids, plain::IdsOnDate(table.events, date, &plainRecords)) << date << "\n"
                                                                      << table.Text();
  EXPECT_EQ(records, plainRecords) << date << "\n" << table.Text();
}

void ExpectSameListing(const OwnedTable& table, std::time_t from, std::time_t to) {
  std::vector<plain::Listed> listed;
  plain::Records records;
  {
    const AssertLines lines;
    const local_time::ZoneHold hold;
    OccurrenceListing listing(table.events, VxTime(from), VxTime(to));
    std::vector<ListedOccurrence> part;
    while (listing.Next(&part)) {
      for (const ListedOccurrence& entry : part) {
        listed.push_back(
            {entry.event->eventid, entry.year, entry.month, entry.day, entry.hour, entry.minute});
      }
    }
    records = lines.lines;
  }
  plain::Records plainRecords;
  const unsigned long unsettled = plain::UnsettledTimes();
  const std::vector<plain::Listed> plainListed = plain::List(table.events, from, to, &plainRecords);
  if (unsettled != plain::UnsettledTimes()) return;
  EXPECT_EQ(listed, plainListed) << from << " to " << to << "\n" << table.Text();
  EXPECT_EQ(records, plainRecords) << from << " to " << to << "\n" << table.Text();
}

}  // namespace

TEST(RulesDrawnTogether, FindWhatAWalkOverTheTableFinds) {
  Random random(11);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < kTablesOfZone && !testing::Test::HasFailure(); ++i) {
      const std::time_t about = instants.Any(random);
      OwnedTable table(about, instants, random);
      RuleTable rules;
      for (int day = 0; day < 4; ++day)
        ExpectSameDay(table, rules, instants.Near(about, 3, random));
      rules.Forget();
      if (random.OneIn(2)) table.RemoveOne(random);
      table.Add(about, instants, random);
      for (int day = 0; day < 4; ++day)
        ExpectSameDay(table, rules, instants.Near(about, 40, random));
      ExpectSameDay(table, rules,
                    random.Of<long long>(
                        {0, -1, 1LL << 31, 253402300799, -62167219200, 1LL << 56, 1LL << 58}));
    }
  }
}

TEST(Listing, ListsAndRecordsWhatADayByDayWalkDoes) {
  Random random(12);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < kTablesOfZone / 3 && !testing::Test::HasFailure(); ++i) {
      const std::time_t about = instants.Any(random);
      const OwnedTable table(about, instants, random);
      const TestClock clock(about);
      const std::time_t from = instants.Near(about, 5, random);
      const std::time_t to = from + random.Between(-1, random.OneIn(20) ? 700 : 25) * 86400;
      ExpectSameListing(table, from, instants.Near(to, 1, random));
    }
  }
}

TEST(SingleEvent, OccursOnTheDaysThatItsRuleNamesAndAtTheirTimes) {
  Random random(13);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 1000 && !testing::Test::HasFailure(); ++i) {
      const std::time_t about = instants.Any(random);
      const Event event = RandomEvent(1, about, instants, random);
      const TestClock clock(instants.Near(about, 200, random));
      const std::time_t date = instants.Near(about, 20, random);
      plain::Records records;
      const AssertLines lines;
      EXPECT_EQ(event.OccursOnDate(VxTime(date)), plain::OccursOnDate(event, date, &records))
          << date << " " << Describe(event);
      const std::time_t time = event.EventTime(VxTime(date)).Seconds();
      const unsigned long unsettled = plain::UnsettledTimes();
      const std::time_t plainTime = plain::EventTime(event, date, &records);
      if (unsettled != plain::UnsettledTimes()) continue;
      EXPECT_EQ(time, plainTime) << date << " " << Describe(event) << " now " << std::time(nullptr);
      EXPECT_EQ(lines.lines, records) << date << " " << Describe(event);
    }
  }
}

TEST(SingleEvent, OccursNextWhereADayByDaySearchFindsIt) {
  Random random(14);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 250 && !testing::Test::HasFailure(); ++i) {
      const std::time_t about = instants.Any(random);
      Event event = RandomEvent(1, about, instants, random);
      // The plain search takes each day up to the rate's limit or the event's end.
      if (event.rate > 4 && event.end_date.Seconds() > about + 800 * 86400L) event.rate %= 4;
      const TestClock clock(instants.Near(about, 20, random));
      plain::Records records;
      const AssertLines lines;
      const auto [time, found] = event.GetNextOccurance();
      const unsigned long unsettled = plain::UnsettledTimes();
      const auto next = plain::NextOccurrence(event, &records);
      if (unsettled != plain::UnsettledTimes()) continue;
      EXPECT_EQ(std::pair(time.Seconds(), found), next)
          << Describe(event) << " now " << std::time(nullptr);
      EXPECT_EQ(lines.lines, records) << Describe(event) << " now " << std::time(nullptr);
    }
  }
}
