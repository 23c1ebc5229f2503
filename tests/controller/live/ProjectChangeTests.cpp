#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LiveHouse.h"
#include "controller/Clock.h"
#include "controller/LocalTimeText.h"

namespace controller {
namespace {

using testing::Contains;
using testing::HasSubstr;

TEST(ProjectChanges, AreKept) {
  LiveHouse house;
  ProjectPatch patch;
  patch.name = "Home";
  patch.place = Place{-33.86, 151.21};
  const DayFields tomorrow = DaysAfter(LocalDay(std::time(nullptr)), 1);
  patch.awayUntil = tomorrow;
  house.Get().ChangeProject(patch, "ada", house.Saved());
  EXPECT_EQ(house.Get().Name(), "Home");
  EXPECT_EQ(house.Get().WhereItIs().place.latitude, -33.86);
  EXPECT_FALSE(house.Get().WhereItIs().guessed);
  EXPECT_EQ(house.Get().AwayUntil(), tomorrow);
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_THAT(house.told, Contains("project"));
  const auto rows = house.Rows("change");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].reason, "project");
  EXPECT_THAT(rows[0].before, HasSubstr("52.52"));
  EXPECT_THAT(rows[0].after, HasSubstr("-33.86"));
  house.Crash();
  EXPECT_EQ(house.Get().Name(), "Home");
  EXPECT_EQ(house.Get().AwayUntil(), tomorrow);
  ProjectPatch back;
  back.awayUntil = std::optional<DayFields>();
  house.Get().ChangeProject(back, "ada", house.Saved());
  EXPECT_FALSE(house.Get().AwayUntil());
}

TEST(ProjectChanges, AnAbsenceIsOverWhenItsDayHasBegun) {
  LiveHouse house;
  ProjectPatch patch;
  patch.awayUntil = LocalDay(std::time(nullptr));
  house.Get().ChangeProject(patch, "ada", house.Saved());
  EXPECT_FALSE(house.Get().AwayUntil());
}

TEST(ProjectChanges, WhatWasMissedDuringAnAbsenceIsNotCaughtUpAfterIt) {
  LiveHouse house;
  const DayFields today = LocalDay(std::time(nullptr));
  EventElement event = LiveHouse::Daily("Porch", 7 * 60);
  event.frequency = 0;
  event.start = DaysAfter(today, 1);
  Programming programming;
  programming.catchUp.policy = CatchUp::Policy::kAlways;
  ASSERT_NE(house.Get().AddEvent(event, &programming, "ada", house.Saved()), 0u);
  ProjectPatch patch;
  patch.awayUntil = DaysAfter(today, 2);
  house.Get().ChangeProject(patch, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  {
    const ClockScope comingHome(LocalInstant(DaysAfter(today, 2), 12, 0));
    house.Restart();
    ASSERT_TRUE(house.Until([&] { return !house.Rows("held").empty(); }));
  }
  EXPECT_TRUE(house.Rows("fired").empty());
  const auto held = house.Rows("held");
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].reason, "away");
  EXPECT_EQ(held[0].date, event.start);
}

std::string ScheduleOf(std::vector<EventElement> events) {
  std::string xml = "<event_data><current_id>9</current_id><events>";
  for (const EventElement& event : events) xml += MakeEventElement(event)->ToString();
  return xml + "</events></event_data>";
}

TEST(ProjectChanges, WhatWasActedOnTodayGoesWithItsEventIntoAnotherSchedule) {
  LiveHouse house;
  const DayFields today = DaysAfter(LocalDay(std::time(nullptr)), 1);
  const ClockScope noon(LocalInstant(today, 12, 0));
  const auto daily = [](unsigned long id, const char* name, int minutes) {
    EventElement event = LiveHouse::Daily(name, minutes);
    event.eventid = id;
    return event;
  };
  ASSERT_TRUE(house.Get()
                  .ImportSchedule(ScheduleOf({daily(1, "Porch", 11 * 60), daily(2, "Gate", 15 * 60),
                                              daily(3, "Lamp", 16 * 60)}),
                                  false, "ada", house.Saved())
                  .done);
  ASSERT_TRUE(house.WaitForSaved());
  DecisionBook::Write(house.Get().Store(),
                      {1, today, LocalInstant(today, 11, 0), OccurrenceState::kFired});
  DecisionBook::Write(house.Get().Store(),
                      {3, today, LocalInstant(today, 10, 0), OccurrenceState::kFired});
  // The numbers of two are exchanged, and the third is another event's.
  ASSERT_TRUE(house.Get()
                  .ImportSchedule(ScheduleOf({daily(2, "Porch", 17 * 60), daily(1, "Gate", 15 * 60),
                                              daily(3, "Door", 16 * 60)}),
                                  false, "ada", house.Saved())
                  .done);
  ASSERT_TRUE(house.WaitForSaved());
  const auto states = [&house] {
    std::vector<std::string> texts;
    for (const PlannedOccurrence& each : house.Get().Today()) {
      texts.push_back(each.description + ' ' + StateName(each.state));
    }
    return texts;
  };
  EXPECT_THAT(states(),
              testing::UnorderedElementsAre("Porch fired", "Gate pending", "Door pending"));
  house.Crash();
  EXPECT_THAT(states(),
              testing::UnorderedElementsAre("Porch fired", "Gate pending", "Door pending"));
}

TEST(ProjectChanges, AnotherPlaceIsKnownToTheSchedulerAtOnce) {
  LiveHouse house;
  const auto sunrise = [&house] {
    const auto sun = house.Get().Scheduler().Request(
        "GET_SUNRISE_SUNSET", {{"DAY", "21"}, {"MONTH", "6"}, {"YEAR", "2026"}});
    return sun->GetChild("sunrise")->GetInt("hour") * 60 + sun->GetChild("sunrise")->GetInt("min");
  };
  const int before = sunrise();
  ProjectPatch patch;
  patch.place = Place{52.52, 13.405 + 15};
  house.Get().ChangeProject(patch, "ada", house.Saved());
  const int after = sunrise();
  EXPECT_NEAR((before - after + 1440) % 1440, 60, 2) << "15 degrees are an hour";
}

TEST(ProjectChanges, ABackupIsMadeBeforeTheFirstChangeOfADay) {
  LiveHouse house;
  house.Get().AddEvent(LiveHouse::Daily("Porch", 420), nullptr, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  house.Restart();
  const auto before = house.Get().Store().Backups("scheduler").size();
  house.Get().AddEvent(LiveHouse::Daily("Gate", 420), nullptr, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  house.Get().AddEvent(LiveHouse::Daily("Door", 420), nullptr, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  const auto backups = house.Get().Store().Backups("scheduler");
  ASSERT_EQ(backups.size(), before + 1);
  EXPECT_THAT(backups[0].reason, HasSubstr("before the changes of"));
  EXPECT_THAT(backups[0].xml, HasSubstr("Porch"));
  EXPECT_THAT(backups[0].xml, testing::Not(HasSubstr("Gate")));
}

TEST(ProjectChanges, StartsAndStopsAreInTheJournal) {
  LiveHouse house;
  house.Restart();
  const auto rows = house.Rows("controller");
  ASSERT_GE(rows.size(), 2u);
  EXPECT_EQ(rows[0].reason, "stopped");
  EXPECT_EQ(rows[1].reason, "started");
}

}  // namespace
}  // namespace controller
