// What the product answers and records is what the plain reading of the rules answers and records:
// every kind, rate, mask, period and base, in zones of every sort.

#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/PlainRecurrence.h"
#include "tests/vexalink_agent_scheduler/RandomEvents.h"
#include "tests/vexalink_agent_scheduler/Zones.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

class EveryZone : public testing::TestWithParam<const char*> {
 protected:
  ZoneScope zone{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Zones, EveryZone,
                         testing::Values(zones::kUtc, zones::kNewYork, zones::kLordHowe,
                                         zones::kTroll, zones::kThreeHours, zones::kMidnight,
                                         zones::kFirstMidnight, zones::kKolkata, zones::kStJohns),
                         [](const auto& zone) { return "Zone" + std::to_string(zone.index); });

TEST_P(EveryZone, OccursOnDateIsThePlainReading) {
  RandomEvents random(1);
  for (int i = 0; i < 1500; ++i) {
    const Event event = random.Next();
    for (int j = 0; j < 40; ++j) {
      // Near the start and the end, on consecutive days, and anywhere.
      std::time_t date = random.Instant();
      if (j % 4 == 1) date = event.start.Seconds() + random.Below(40 * 86400) - 86400;
      if (j % 4 == 2) date = event.end_date.Seconds() - random.Below(40 * 86400) + 86400;
      const AssertLines asserts;
      plain::Records records;
      const bool expected = plain::OccursOnDate(event, date, records);
      EXPECT_EQ(event.OccursOnDate(VxTime(date)), expected)
          << RandomEvents::Describe(event) << "\non " << Text(VxTime(date)) << " = " << date;
      EXPECT_EQ(asserts.lines, records) << RandomEvents::Describe(event);
    }
  }
}

TEST_P(EveryZone, EveryDayOfSomeYearsIsThePlainReading) {
  RandomEvents random(2);
  for (int i = 0; i < 60; ++i) {
    const Event event = random.Next();
    const std::time_t from = random.Instant() - 200LL * 86400;
    for (int day = 0; day < 800; ++day) {
      const AssertLines asserts;
      plain::Records records;
      const std::time_t date = from + day * 86400LL;
      EXPECT_EQ(event.OccursOnDate(VxTime(date)), plain::OccursOnDate(event, date, records))
          << RandomEvents::Describe(event) << "\non " << Text(VxTime(date)) << " = " << date;
      EXPECT_EQ(asserts.lines, records) << RandomEvents::Describe(event);
    }
  }
}

TEST_P(EveryZone, GetNthDayOfMonthIsThePlainReading) {
  for (int year : {1969, 1970, 2000, 2023, 2024, 2025, 2037, 2100}) {
    for (int month = 0; month <= 13; ++month) {
      for (int weekday = 0; weekday <= 8; ++weekday) {
        for (int period = -1; period <= 6; ++period) {
          const AssertLines asserts;
          plain::Records records;
          EXPECT_EQ(
              Event::GetNthDayOfMonth(month, weekday, year, static_cast<Scheduler::PERIOD>(period))
                  .Seconds(),
              plain::GetNthDayOfMonth(month, weekday, year, period, records))
              << year << "-" << month << ", weekday " << weekday << ", period " << period;
          EXPECT_EQ(asserts.lines, records);
        }
      }
    }
  }
}

TEST_P(EveryZone, EventTimeIsThePlainReading) {
  RandomEvents random(3);
  for (int i = 0; i < 4000; ++i) {
    const Event event = random.Next();
    const std::time_t date = random.Instant();
    const TestClock clock(random.Instant());
    const AssertLines asserts;
    plain::Records records;
    EXPECT_EQ(event.EventTime(VxTime(date)).Seconds(),
              plain::EventTime(event, date, std::time(nullptr), records))
        << RandomEvents::Describe(event) << "\non " << Text(VxTime(date)) << " = " << date
        << " seen from " << Text(VxTime(std::time(nullptr)));
    EXPECT_EQ(asserts.lines, records) << RandomEvents::Describe(event);
  }
}

TEST_P(EveryZone, GetNextOccuranceIsThePlainReading) {
  RandomEvents random(4);
  for (int i = 0; i < 700; ++i) {
    const Event event = random.Next();
    for (int j = 0; j < 4; ++j) {
      const std::time_t now =
          j == 0 ? event.start.Seconds() + random.Below(200000) - 100000 : random.Instant();
      const TestClock clock(now);
      const AssertLines asserts;
      plain::Records records;
      const auto [expected, found] = plain::GetNextOccurance(event, now, records);
      const auto actual = event.GetNextOccurance();
      EXPECT_EQ(actual.second, found) << RandomEvents::Describe(event) << "\nat " << now;
      EXPECT_EQ(actual.first.Seconds(), expected)
          << RandomEvents::Describe(event) << "\nat " << Text(VxTime(now)) << " = " << now;
      EXPECT_EQ(asserts.lines, records) << RandomEvents::Describe(event) << "\nat " << now;
    }
  }
}

TEST_P(EveryZone, FindOccurrenceIsTheFirstOfAWalk) {
  RandomEvents random(5);
  for (int i = 0; i < 1000; ++i) {
    const Event event = random.Next();
    if (event.RepeatsByZero()) continue;
    const std::time_t origin = random.Instant() - random.Below(400) * 86400LL;
    const long long first = random.Below(3) == 0 ? random.Below(400) : 0;
    const long long last = first + random.Below(900) - 5;
    const AssertLines asserts;
    const long long expected = plain::FindOccurrence(event, origin, first, last);
    EXPECT_EQ(event.FindOccurrence(VxTime(origin), first, last).value_or(-1), expected)
        << RandomEvents::Describe(event) << "\nfrom " << Text(VxTime(origin)) << " = " << origin
        << " steps " << first << ".." << last;
    EXPECT_TRUE(asserts.lines.empty()) << RandomEvents::Describe(event);
  }
}

// The entries of a listing as lines.
std::vector<std::string> Lines(const VxXML::INode& list) {
  std::vector<std::string> lines;
  for (const VxXML::INode* entry = list.GetFirstChild(); entry != nullptr;
       entry = entry->GetNextSibling()) {
    const VxXML::INode& when = *entry->GetChild("event_time");
    lines.push_back(entry->GetText("eventid") + " " + when.GetText("year") + "-" +
                    when.GetText("month") + "-" + when.GetText("day") + " " + when.GetText("hour") +
                    ":" + when.GetText("min"));
  }
  return lines;
}

TEST_P(EveryZone, TheAgentsListingIsThePlainWalk) {
  RandomEvents random(6);
  FakeHost host;
  for (int round = 0; round < 40; ++round) {
    vexalink_agent_scheduler agent(host);
    std::map<unsigned long, const Event*> events;
    std::vector<std::unique_ptr<Event>> copies;
    const TestClock clock(random.Instant());
    const int count = 1 + random.Below(60);
    while (static_cast<int>(events.size()) < count) {
      Event event = random.Next();
      if (events.contains(event.eventid)) continue;
      copies.push_back(std::make_unique<Event>(event));
      events[event.eventid] = copies.back().get();
      const AssertLines ignored;
      agent.AddEvent(new Event(event), /*assignNewId=*/false, /*registerButton=*/false);
    }
    const std::time_t from = random.Instant();
    const std::time_t to = from + random.Below(round % 4 == 0 ? 700 * 86400 : 40 * 86400) - 86400;
    const AssertLines asserts;
    plain::Records records;
    const std::vector<std::string> expected =
        plain::List(events, from, to, std::time(nullptr), records);
    const auto list = agent.GetEventOccurences(VxTime(from), VxTime(to));
    EXPECT_EQ(Lines(*list), expected) << Text(VxTime(from)) << " = " << from << " to " << to;
    EXPECT_EQ(asserts.lines, records) << Text(VxTime(from)) << " = " << from << " to " << to;
  }
}

TEST_P(EveryZone, TheAgentsDayIsThePlainReading) {
  RandomEvents random(7);
  FakeHost host;
  vexalink_agent_scheduler agent(host);
  std::map<unsigned long, Event> events;
  const TestClock clock(random.Instant());
  while (events.size() < 200) {
    const Event event = random.Next();
    if (!events.emplace(event.eventid, event).second) continue;
    const AssertLines ignored;
    agent.AddEvent(new Event(event), /*assignNewId=*/false, /*registerButton=*/false);
  }
  for (int i = 0; i < 100; ++i) {
    const std::time_t date = random.Instant();
    const AssertLines asserts;
    plain::Records records;
    std::vector<unsigned long> expected;
    for (const auto& [id, event] : events) {
      if (plain::OccursOnDate(event, date, records)) expected.push_back(id);
    }
    std::list<Event*> day{nullptr};
    agent.GetEventsOnDate(VxTime(date), &day);
    std::vector<unsigned long> actual;
    for (const Event* event : day) actual.push_back(event->eventid);
    EXPECT_EQ(actual, expected) << Text(VxTime(date)) << " = " << date;
    EXPECT_EQ(asserts.lines, records);
  }
}

// The same events, asked now in one zone, now in another: nothing of the last may be left.
TEST(ZoneChanges, LeaveNothingOfTheOldZoneInTheRules) {
  RandomEvents random(8);
  std::vector<Event> events;
  {
    const ZoneScope zone(zones::kUtc);
    for (int i = 0; i < 150; ++i) events.push_back(random.Next());
  }
  constexpr const char* kZones[] = {
      zones::kUtc,      zones::kNewYork, zones::kLordHowe, zones::kThreeHours,
      zones::kMidnight, zones::kKolkata, "EST5",           "EST5EDT,M4.1.0,M10.5.0"};
  for (int round = 0; round < 60; ++round) {
    const ZoneScope zone(kZones[random.Below(8)]);
    const std::time_t date = random.Instant();
    const TestClock clock(random.Instant());
    for (const Event& event : events) {
      const AssertLines asserts;
      plain::Records records;
      EXPECT_EQ(event.OccursOnDate(VxTime(date)), plain::OccursOnDate(event, date, records))
          << RandomEvents::Describe(event) << "\non " << date;
      EXPECT_EQ(event.EventTime(VxTime(date)).Seconds(),
                plain::EventTime(event, date, std::time(nullptr), records))
          << RandomEvents::Describe(event) << "\non " << date;
      EXPECT_EQ(asserts.lines, records);
    }
  }
}

}  // namespace
