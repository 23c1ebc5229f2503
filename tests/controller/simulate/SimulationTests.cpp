// What a simulation tells of a house.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DeskHouse.h"
#include "SimulatedHouses.h"
#include "TempFolder.h"
#include "controller/Clock.h"
#include "controller/LocalTimeText.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kSeven = 7 * 60;
constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr DayFields kWednesday{2024, 3, 6};
constexpr DayFields kThursday{2024, 3, 7};

class SimulationTest : public testing::Test {
 protected:
  SimulatedTotals Run(const DayFields& from, const DayFields& to,
                      std::optional<unsigned long> only = std::nullopt) {
    return Simulation(Agent(), house, report, only).Run(from, to);
  }

  const EnvironmentScope zone{"TZ", kBerlin};
  SimulatedHouse house;
  KeptReport report;
};

TEST_F(SimulationTest, TellsWhatFiresAndWhen) {
  house = HouseWith({Daily(1, kSeven), Daily(2, 0)});
  const SimulatedTotals totals = Run(kWednesday, kThursday);
  EXPECT_THAT(report.Texts(),
              ElementsAre("2 fired timer 03-06 00:00:01", "1 fired timer 03-06 07:00:00",
                          "2 fired timer 03-07 00:00:01", "1 fired timer 03-07 07:00:00"))
      << "the list of a day is drawn up in its first second and fired from in the next";
  EXPECT_EQ(totals.fired, 4u);
  EXPECT_EQ(totals.days, 2u);
  EXPECT_THAT(report.shifts, IsEmpty());
}

TEST_F(SimulationTest, AHouseWithoutAScheduleDoesNothing) {
  house.projectId = "new";
  const SimulatedTotals totals = Run(kWednesday, kThursday);
  EXPECT_THAT(report.Texts(), IsEmpty());
  EXPECT_EQ(totals.days, 2u);
}

TEST_F(SimulationTest, GivesTheClockBack) {
  house = HouseWith({Daily(1, kSeven)});
  Run(kWednesday, kThursday);
  EXPECT_FALSE(Clock::IsFrozen());
}

TEST_F(SimulationTest, SkipsWhatIsToBeSkippedOnceWithinTheSpan) {
  house = HouseWith({Daily(1, kSeven)});
  house.programming[1].skipNext = true;
  Run(kWednesday, kThursday);
  EXPECT_THAT(report.Texts(),
              ElementsAre("1 held skipped 03-06 07:00:00", "1 fired timer 03-07 07:00:00"));
}

TEST_F(SimulationTest, HoldsBackWhatMayNotHappen) {
  house = HouseWith({Daily(1, kSeven), Daily(2, kSeven + 1)});
  house.programming[1].enabled = false;
  house.programming[2].pausedUntil = kThursday;
  house.awayUntil = kWednesday;
  Run({2024, 3, 5}, kThursday);
  EXPECT_THAT(report.Texts(),
              ElementsAre("1 held disabled 03-05 07:00:00", "2 held away 03-05 07:01:00",
                          "1 held disabled 03-06 07:00:00", "2 held paused 03-06 07:01:00",
                          "1 held disabled 03-07 07:00:00", "2 fired timer 03-07 07:01:00"));
}

TEST_F(SimulationTest, WhatBelongsToADayOfAbsenceIsHeldBackAlsoWhereItComesAfterwards) {
  house = HouseWith({Daily(1, 24 * 60 + 30)});
  house.awayUntil = kThursday;
  Run(kWednesday, kThursday);
  EXPECT_THAT(report.Texts(),
              ElementsAre("1 held away 03-06 00:30:00", "1 fired caught-up 03-07 00:30:00"));
}

TEST_F(SimulationTest, WhatFallsPastMidnightBelongsToItsDay) {
  house = HouseWith({Daily(1, 24 * 60 + 30), Daily(2, 24 * 60 + 31)});
  house.programming[2].catchUp.policy = CatchUp::Policy::kIgnore;
  Run(kWednesday, kWednesday);
  EXPECT_THAT(report.Texts(), ElementsAre("1 fired caught-up 03-06 00:30:00",
                                          "2 missed past-midnight 03-06 00:31:00"));
  ASSERT_EQ(report.days.size(), 2u);
  EXPECT_EQ(report.days[1].date, kThursday);
  EXPECT_EQ(report.endedDays[0].fired, 0u);
  EXPECT_EQ(report.endedDays[1].missed, 1u);
}

TEST_F(SimulationTest, TellsClockChangesAndTheDaysTheyMake) {
  house = HouseWith({Daily(1, 150), Daily(2, 180)});
  Run({2024, 3, 30}, {2024, 4, 1});
  ASSERT_EQ(report.days.size(), 3u);
  EXPECT_EQ(report.days[0].seconds, 86400);
  EXPECT_EQ(report.days[1].seconds, 82800);
  ASSERT_EQ(report.shifts.size(), 1u);
  EXPECT_EQ(MomentText(report.shifts[0].at), "2024-03-31T03:00:00+02:00");
  EXPECT_EQ(report.shifts[0].before, 3600);
  EXPECT_EQ(report.shifts[0].after, 7200);
  EXPECT_EQ(report.occurrences.size(), 6u) << "what the clocks skip still happens";
}

TEST_F(SimulationTest, TheRepeatedHourBringsNothingTwice) {
  house = HouseWith({Daily(1, 150)});
  Run({2024, 10, 27}, {2024, 10, 27});
  EXPECT_THAT(report.Texts(), ElementsAre("1 fired timer 10-27 02:30:00"));
  EXPECT_EQ(report.days[0].seconds, 90000);
}

TEST_F(SimulationTest, EventsWithinAMinuteKnowEachOther) {
  EventElement dusk = Daily(3, 0);
  dusk.offset = static_cast<int>(OffsetBase::kSunset);
  house = HouseWith({Daily(1, kSeven), Daily(2, kSeven), Daily(4, kSeven + 1), dusk});
  const SimulatedTotals totals = Run(kWednesday, kWednesday);
  ASSERT_EQ(report.occurrences.size(), 4u);
  EXPECT_THAT(report.occurrences[0].near, ElementsAre(2u));
  EXPECT_THAT(report.occurrences[1].near, ElementsAre(1u));
  EXPECT_THAT(report.occurrences[2].near, IsEmpty()) << "60 seconds are a minute";
  EXPECT_EQ(report.occurrences[3].base, OffsetBase::kSunset);
  EXPECT_EQ(totals.near, 2u);
}

TEST_F(SimulationTest, EventsOverMidnightKnowEachOtherToo) {
  EventElement late = Daily(1, 24 * 60 - 1);
  EventElement early = Daily(2, 0);
  house = HouseWith({late, early});
  house.place = {0, 0};
  Run(kWednesday, kThursday);
  ASSERT_EQ(report.occurrences.size(), 4u);
  EXPECT_THAT(report.occurrences[1].near, IsEmpty());
  house.schedule = ScheduleOf({Daily(1, 24 * 60), Daily(2, 0)});
  KeptReport second;
  Simulation(Agent(), house, second).Run(kWednesday, kThursday);
  ASSERT_GE(second.occurrences.size(), 3u);
  EXPECT_THAT(second.Texts()[1], testing::StartsWith("1 fired timer 03-06 00:00:00"));
  EXPECT_THAT(second.occurrences[1].near, ElementsAre(2u));
}

TEST_F(SimulationTest, OneEventCanBeLookedAtAlone) {
  house = HouseWith({Daily(1, kSeven), Daily(2, kSeven)});
  const SimulatedTotals totals = Run(kWednesday, kThursday, 2);
  EXPECT_THAT(report.Texts(),
              ElementsAre("2 fired timer 03-06 07:00:00", "2 fired timer 03-07 07:00:00"));
  EXPECT_THAT(report.occurrences[0].near, ElementsAre(1u)) << "the others are there all the same";
  EXPECT_EQ(totals.fired, 2u);
}

Programming ProgrammingOf(const char* text) {
  FieldErrors errors;
  Programming programming = ReadProgramming(nlohmann::json::parse(text), "", errors);
  EXPECT_EQ(ErrorText(errors), "");
  return programming;
}

TEST_F(SimulationTest, TellsWhichActionsWouldRun) {
  house = HouseWith({Daily(1, 6 * 60), Daily(2, 12 * 60)});
  const char* const what = R"({"actions": [
      {"on": "click", "variable": {"device": 1, "variable": 5, "value": "{trigger} {{x}"}},
      {"if": {"kind": "time", "is": "night"}, "delay": 90,
       "hook": {"url": "http://hub.local/{description}", "body": "{\"at\": \"{actual}\"}"}},
      {"on": "push", "command": {"argv": ["/bin/echo", "{event}", "{planned}"]}}]})";
  house.programming[1] = house.programming[2] = ProgrammingOf(what);
  const SimulatedTotals totals = Run(kWednesday, kWednesday);
  ASSERT_EQ(report.occurrences.size(), 2u);
  const auto& early = report.occurrences[0].actions;
  ASSERT_EQ(early.size(), 3u) << "in the order of the triggers";
  EXPECT_TRUE(early[0].runs);
  EXPECT_EQ(early[0].action.delaySeconds, 90);
  EXPECT_EQ(std::get<HookAction>(early[0].action.what).url, "http://hub.local/Event%201");
  EXPECT_EQ(std::get<HookAction>(early[0].action.what).body,
            R"({"at": "2024-03-06T06:00:00+01:00"})");
  EXPECT_NE(early[0].because, "");
  EXPECT_THAT(std::get<CommandAction>(early[1].action.what).argv,
              ElementsAre("/bin/echo", "1", "2024-03-06T06:00:00+01:00"));
  EXPECT_EQ(std::get<VariableAction>(early[2].action.what).value, "click {x}");
  const auto& noon = report.occurrences[1].actions;
  EXPECT_FALSE(noon[0].runs) << "it is day";
  EXPECT_TRUE(noon[1].runs);
  EXPECT_EQ(totals.actions, 5u);
  EXPECT_EQ(totals.unmet, 1u);
}

TEST_F(SimulationTest, WhatIsHeldBackDoesNothing) {
  house = HouseWith({Daily(1, kSeven)});
  house.programming[1] =
      ProgrammingOf(R"({"enabled": false, "actions": [{"command": {"argv": ["/bin/true"]}}]})");
  EXPECT_EQ(Run(kWednesday, kWednesday).actions, 0u);
  EXPECT_THAT(report.occurrences[0].actions, IsEmpty());
}

// The same scheduler on the live host, tick by tick: the random parts too.
TEST(Simulation, IsWhatTheLiveHouseDoes) {
  const std::vector<EventElement> events = [] {
    std::vector<EventElement> made;
    for (unsigned long id = 1; id <= 12; ++id) {
      EventElement event = Daily(id, static_cast<int>(id) * 117, id % 3 == 0 ? 90 : 0);
      if (id % 4 == 0) event.offset = static_cast<int>(OffsetBase::kSunset);
      if (id % 4 == 0) event.offset_minutes = -45;
      event.start = {2024, 1, 1};
      event.rate = static_cast<int>(id % 5) + 1;
      made.push_back(event);
    }
    return made;
  }();
  DeskHouse live("2024-03-29T23:59:00", kBerlin);
  SimulatedHouse house = HouseWith(events);
  for (const EventElement& event : events) {
    EventElement fresh = event;
    fresh.eventid = 0;
    ASSERT_EQ(live.Add(fresh), event.eventid);
  }
  live.programming[3].skipNext = house.programming[3].skipNext = true;
  live.programming[5].enabled = house.programming[5].enabled = false;
  live.RunUntil("2024-03-29T23:59:59");
  live.Decided();
  live.RunUntil("2024-04-02T23:59:59");
  KeptReport report;
  Simulation(Agent(), house, report).Run({2024, 3, 30}, {2024, 4, 2});
  std::vector<std::string> simulated;
  for (const SimulatedOccurrence& each : report.occurrences) {
    std::string text = std::to_string(each.event) + ' ' + StateName(each.outcome) + ' ' +
                       each.reason + ' ' + DayText(each.date).substr(5) + ' ' +
                       MomentText(each.planned).substr(11, 5);
    if (each.drawn) text += (*each.drawn < 0 ? "" : "+") + std::to_string(*each.drawn);
    simulated.push_back(text);
  }
  EXPECT_EQ(simulated, live.Decided());
  EXPECT_GT(simulated.size(), 20u);
}

struct PaceCase {
  const char* zone;
  DayFields from;
};

TEST(Simulation, PassesOverNothingWhenItSkipsIdleSeconds) {
  const PaceCase cases[] = {
      {kBerlin, {2026, 3, 20}},
      {"TST-00:00:37", {2026, 3, 20}},
      {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", {2026, 3, 28}},
      {"NST3:30NDT,M3.2.0/0:01,M11.2.0/0:01", {2026, 11, 1}},
      {"<-01>1<+00>,M3.5.0/0,M10.5.0/1", {2026, 10, 20}},
      {"UTC0", {1970, 1, 2}},
  };
  for (const PaceCase& each : cases) {
    const EnvironmentScope zone("TZ", each.zone);
    std::mt19937 random(7);
    SimulatedHouse house = HouseWith(RandomEvents(random, 60, each.from.year));
    house.programming = RandomProgramming(random, 60, each.from.year);
    KeptReport slow;
    KeptReport quick;
    const DayFields to = DaysAfter(each.from, 14);
    Simulation(Agent(), house, slow).Run(each.from, to, Simulation::Pace::kEverySecond);
    Simulation(Agent(), house, quick).Run(each.from, to);
    EXPECT_GT(quick.occurrences.size(), 50u) << each.zone;
    EXPECT_EQ(quick.Texts(), slow.Texts()) << each.zone;
  }
}

}  // namespace
}  // namespace controller
