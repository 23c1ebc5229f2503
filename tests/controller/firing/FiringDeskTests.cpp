// Once, and not lost: what becomes of the occurrences of a real scheduler.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "DeskHouse.h"

namespace controller {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr int kSeven = 7 * 60;
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";

TEST(FiringDesk, LetsFireWhatFallsDue) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  EXPECT_THAT(house.States(), ElementsAre("1 pending"));
  house.RunUntil("2024-03-06T07:00:05");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired timer 03-06 07:00"));
  EXPECT_THAT(house.States(), ElementsAre("1 fired"));
}

TEST(FiringDesk, BeginsEachDayAnew) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  house.RunUntil("2024-03-07T07:00:05");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 fired timer 03-06 07:00", "1 fired timer 03-07 07:00"));
}

TEST(FiringDesk, KnowsTheRandomPartOfEachDay) {
  DeskHouse house("2024-03-05T23:59:58");
  house.Daily("Porch", kSeven, 30);
  house.RunUntil("2024-03-06T00:00:01");
  ASSERT_EQ(house.desk.Plan().InOrder().size(), 1u);
  const PlannedOccurrence planned = house.desk.Plan().InOrder()[0];
  ASSERT_TRUE(planned.due);
  const long drawn = (*planned.due - planned.planned) / 60;
  house.RunUntil("2024-03-06T08:00:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 fired timer 03-06 07:00" + std::string(drawn < 0 ? "" : "+") +
                          std::to_string(drawn)));
}

TEST(FiringDesk, ARestartDoesNotDrawTheDayAnew) {
  for (const char* restart :
       {"2024-03-06T06:00:00", "2024-03-06T07:00:00", "2024-03-06T08:00:00"}) {
    DeskHouse house("2024-03-05T23:59:58");
    house.Daily("Porch", kSeven, 59);
    house.Daily("Gate", kSeven, 59);
    house.RunUntil(restart);
    const auto before = house.Decided();
    house.RestartAt(restart);
    house.RunUntil("2024-03-06T09:00:00");
    auto all = house.Decided();
    all.insert(all.begin(), before.begin(), before.end());
    EXPECT_EQ(all.size(), 2u) << restart;
    EXPECT_THAT(all, UnorderedElementsAre(testing::StartsWith("1 fired timer"),
                                          testing::StartsWith("2 fired timer")));
  }
}

TEST(FiringDesk, ActsOnceADay) {
  DeskHouse house("2024-03-06T06:59:58");
  const auto porch = house.Daily("Porch", kSeven);
  house.RunUntil("2024-03-06T07:00:01");
  house.Decided();
  house.Move(porch, kSeven + 1);
  house.RunUntil("2024-03-06T07:02:00");
  EXPECT_THAT(house.Decided(), ElementsAre("1 held already-acted 03-06 07:01"));
  EXPECT_THAT(house.States(), ElementsAre("1 fired"));
}

TEST(FiringDesk, WhatWasMovedAfterItHadItsTurnIsShownWhenItCameAlsoAfterARestart) {
  DeskHouse house("2024-03-06T06:59:58");
  const auto porch = house.Daily("Porch", kSeven);
  house.RunUntil("2024-03-06T07:00:01");
  const std::time_t came = house.desk.Plan().InOrder().at(0).planned;
  house.Move(porch, kSeven + 60);
  house.RestartAt("2024-03-06T07:30:00");
  ASSERT_THAT(house.States(), ElementsAre("1 fired"));
  EXPECT_EQ(house.desk.Plan().InOrder()[0].planned, came);
  EXPECT_EQ(house.desk.Plan().InOrder()[0].due, came);
}

/// Every second day from a day in winter on, at 10:05; added on a day in summer at 10:00.
unsigned long AddInSummer(DeskHouse& house, const DayFields& start) {
  EventElement event;
  event.description = "from " + std::to_string(start.day);
  event.offset_minutes = 10 * 60 + 5;
  event.frequency = static_cast<int>(RepeatKind::kDaily);
  event.rate = 2;
  event.start = start;
  return house.Add(event);
}

// 10 July 2024 is 191 days after 1 January by the calendar and at 10:00, but 190 at its midnight,
// because the clocks were put forward. The scheduler adds an event by the first count, and lists
// the days by the second. What is listed counts.
TEST(FiringDesk, WhatIsAddedDuringTheDayIsHeldBackWhereTheDayDoesNotListIt) {
  DeskHouse house("2024-07-10T10:00:00", kNewYork);
  AddInSummer(house, {2024, 1, 2});
  EXPECT_THAT(house.States(), IsEmpty());
  house.RunUntil("2024-07-10T10:05:01");
  EXPECT_THAT(house.Decided(), ElementsAre("1 held not-listed 07-10 10:05"));
  EXPECT_THAT(house.States(), IsEmpty());
}

TEST(FiringDesk, WhatIsAddedDuringTheDayComesWhereTheSchedulerLeavesItOut) {
  DeskHouse house("2024-07-10T10:00:00", kNewYork);
  AddInSummer(house, {2024, 1, 1});
  EXPECT_THAT(house.States(), ElementsAre("1 pending"));
  house.RunUntil("2024-07-10T10:05:01");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired caught-up 07-10 10:05"));
  house.TickAt("2024-07-10T23:59:59");
  house.RunUntil("2024-07-11T00:00:02");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, WhatWasLeftOutGoesWithItsEvent) {
  DeskHouse house("2024-07-10T10:00:00", kNewYork);
  AddInSummer(house, {2024, 1, 1});
  house.Delete(1);
  EXPECT_THAT(house.States(), IsEmpty());
  house.RunUntil("2024-07-10T10:06:00");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, ARestartDuringTheDayDoesNotChangeWhatTheDayHolds) {
  DeskHouse house("2024-07-09T23:59:58", kNewYork);
  AddInSummer(house, {2024, 1, 1});
  AddInSummer(house, {2024, 1, 2});
  house.RunUntil("2024-07-10T00:00:02");
  EXPECT_THAT(house.States(), ElementsAre("1 pending"));
  house.RestartAt("2024-07-10T09:00:00");
  EXPECT_THAT(house.States(), ElementsAre("1 pending"));
  house.TickAt("2024-07-10T10:04:59");
  house.RunUntil("2024-07-10T10:06:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("2 held not-listed 07-10 10:05", "1 fired caught-up 07-10 10:05"));
}

TEST(FiringDesk, WhatWasLeftOutIsMissedWhereNothingIsToBeCaughtUp) {
  DeskHouse house("2024-07-10T10:00:00", kNewYork);
  house.programming[1].catchUp.policy = CatchUp::Policy::kIgnore;
  AddInSummer(house, {2024, 1, 1});
  house.RunUntil("2024-07-10T10:06:00");
  EXPECT_THAT(house.Decided(), ElementsAre("1 missed left-out 07-10 10:05"));
}

// One minute after the midnight that begins November the clocks go back by an hour: 31 October is
// drawn up again for its last hour, and then 1 November once more.
TEST(FiringDesk, ADayThatComesAgainBringsNothingTwiceAndLosesNothing) {
  DeskHouse house("2009-10-30T23:59:58", "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01");
  house.Daily("1", 23 * 60 + 59);
  house.Daily("2", 30, 5);
  EventElement counted;
  counted.offset_minutes = 23 * 60 + 30;
  counted.frequency = static_cast<int>(RepeatKind::kDaily);
  counted.rate = 2;
  for (const int day : {1, 2}) {
    counted.description = "counted from " + std::to_string(day);
    counted.start = {2009, 7, day};
    house.Add(counted);
  }
  house.RunUntil("2009-11-02T00:00:05");
  std::vector<std::string> fired;
  for (const std::string& decided : house.Decided()) {
    if (decided.find(" held ") == std::string::npos) fired.push_back(decided.substr(0, 19));
  }
  EXPECT_THAT(fired,
              ElementsAre("2 fired timer 10-31", "3 fired timer 10-31", "1 fired timer 10-31",
                          "2 fired timer 11-01", "4 fired timer 11-01", "1 fired timer 11-01"));
}

TEST(FiringDesk, AClockThatIsSetBackBringsNothingTwice) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  house.RunUntil("2024-03-06T07:00:01");
  house.RestartAt("2024-03-06T06:50:00", "clock-jump");
  house.RunUntil("2024-03-06T07:10:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 fired timer 03-06 07:00", "1 held already-acted 03-06 07:00"));
}

TEST(FiringDesk, TheRepeatedHourBringsNothingTwice) {
  DeskHouse house("2024-11-02T23:59:58", kNewYork);
  house.Daily("Porch", 90);
  house.RunUntil("2024-11-03T04:00:00");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired timer 11-03 01:30"));
  house.RestartAt("2024-11-03T04:00:01");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, WhatFellDueWhileItWasDownIsCaughtUpOrMissed) {
  DeskHouse house("2024-03-06T06:00:00");
  house.Daily("long ago", kSeven);
  house.Daily("just now", kSeven + 55);
  house.Daily("never", kSeven + 56);
  house.Daily("always", kSeven + 1);
  house.Daily("to come", kSeven + 65);
  house.programming[3].catchUp.policy = CatchUp::Policy::kIgnore;
  house.programming[4].catchUp.policy = CatchUp::Policy::kAlways;
  house.RunUntil("2024-03-06T06:30:00");
  house.RestartAt("2024-03-06T08:00:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 missed down 03-06 07:00", "4 fired caught-up 03-06 07:01",
                          "2 fired caught-up 03-06 07:55", "3 missed down 03-06 07:56"))
      << "in the order of their time";
  house.RestartAt("2024-03-06T08:00:10");
  EXPECT_THAT(house.Decided(), IsEmpty()) << "told once";
  house.RunUntil("2024-03-06T09:00:00");
  EXPECT_THAT(house.Decided(), ElementsAre("5 fired timer 03-06 08:05"));
}

TEST(FiringDesk, OfSeveralMissedDaysOneIsCaughtUp) {
  DeskHouse house("2024-03-06T06:00:00");
  const auto porch = house.Daily("Porch", kSeven);
  house.programming[porch].catchUp.policy = CatchUp::Policy::kAlways;
  house.RestartAt("2024-03-09T08:00:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 missed superseded 03-06 07:00", "1 missed superseded 03-07 07:00",
                          "1 missed superseded 03-08 07:00", "1 fired caught-up 03-09 07:00"));
}

TEST(FiringDesk, WhatTheClockJumpedOverIsJudgedByItsPolicy) {
  DeskHouse house("2024-03-06T06:59:00");
  house.Daily("Porch", kSeven);
  house.Daily("Gate", kSeven + 25);
  house.TickAt("2024-03-06T07:30:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 missed clock-jump 03-06 07:00", "2 fired caught-up 03-06 07:25"));
}

TEST(FiringDesk, WhatWasMissedByAWrongClockStillComesWhenItIsRight) {
  DeskHouse house("2024-03-06T06:59:00");
  house.Daily("Porch", kSeven);
  house.RestartAt("2024-03-06T20:00:00", "clock-jump");
  EXPECT_THAT(house.Decided(), ElementsAre("1 missed clock-jump 03-06 07:00"));
  house.RestartAt("2024-03-06T06:59:30", "clock-jump");
  EXPECT_THAT(house.States(), ElementsAre("1 pending"));
  house.RunUntil("2024-03-06T07:00:30");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired timer 03-06 07:00"));
}

TEST(FiringDesk, WhatFallsPastMidnightIsCaughtUpWhenItsTimeComes) {
  DeskHouse house("2024-03-06T20:00:00");
  house.Daily("half past midnight", 24 * 60 + 30);
  house.Daily("not wanted", 24 * 60 + 31);
  house.Daily("midnight itself", 24 * 60);
  house.programming[2].catchUp.policy = CatchUp::Policy::kIgnore;
  house.RunUntil("2024-03-07T00:29:59");
  EXPECT_THAT(house.Decided(), ElementsAre("3 fired timer 03-06 00:00"));
  house.RunUntil("2024-03-07T00:40:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 fired caught-up 03-06 00:30", "2 missed past-midnight 03-06 00:31"));
}

TEST(FiringDesk, ARestartAfterMidnightStillKnowsWhatFallsPastIt) {
  DeskHouse house("2024-03-06T20:00:00");
  house.Daily("half past midnight", 24 * 60 + 30);
  house.RunUntil("2024-03-07T00:10:00");
  house.RestartAt("2024-03-07T00:15:00");
  EXPECT_THAT(house.Decided(), IsEmpty());
  house.RunUntil("2024-03-07T00:40:00");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired caught-up 03-06 00:30"));
}

/// What becomes of four evenings whose random parts may lead over midnight, where the scheduler is
/// restarted at these times.
std::vector<std::string> LateEvenings(const std::vector<std::string>& restarts) {
  DeskHouse house("2024-03-05T12:00:00");
  for (const char* name : {"a", "b", "c", "d"}) {
    const auto event = house.Daily(name, 23 * 60 + 55, 30);
    house.programming[event].catchUp.policy = CatchUp::Policy::kAlways;
  }
  house.RunUntil("2024-03-06T20:00:00");
  house.Decided();
  for (const std::string& restart : restarts) {
    if (restart < "2024-03-07T00:10:00") house.RunUntil(restart);
    house.RestartAt(restart);
  }
  house.RunUntil("2024-03-07T01:00:00");
  return house.Decided();
}

TEST(FiringDesk, ARestartAfterMidnightStillKnowsWhatWasDrawnPastIt) {
  const auto undisturbed = LateEvenings({});
  EXPECT_THAT(undisturbed, testing::SizeIs(4));
  EXPECT_THAT(undisturbed, testing::Contains(testing::HasSubstr("fired caught-up 03-06 23:55+")));
  EXPECT_EQ(LateEvenings({"2024-03-07T00:00:30"}), undisturbed);
  EXPECT_EQ(LateEvenings({"2024-03-06T23:50:00", "2024-03-07T00:00:05", "2024-03-07T00:00:06"}),
            undisturbed);
}

TEST(FiringDesk, WhatWasDrawnPastMidnightAfterADayOfRestWaitsForItsTime) {
  DeskHouse house("2024-03-01T12:00:00");
  for (const char* name : {"a", "b", "c", "d"}) house.Daily(name, 23 * 60 + 55, 30);
  house.RestartAt("2024-03-07T00:00:30");
  // Of the day before only what was due by now is decided, each by the random part of its day.
  for (const std::string& decided : house.Decided()) {
    if (decided.find(" 03-06 ") == std::string::npos) continue;
    EXPECT_THAT(decided, testing::ContainsRegex("23:55[+-]"));
    EXPECT_THAT(decided, testing::Not(testing::ContainsRegex("23:55\\+([6-9]|[12])")));
  }
  house.RunUntil("2024-03-07T00:30:00");
  EXPECT_THAT(
      house.Decided(),
      testing::Contains(testing::ContainsRegex("fired caught-up 03-06 23:55\\+([6-9]|[12][0-9])")));
}

TEST(FiringDesk, WhatIsDueBeforeItsDayComesInTimeAsThatBegins) {
  DeskHouse house("2024-03-06T20:00:00");
  const auto early = house.Daily("a quarter before midnight", -15);
  house.programming[early].catchUp.policy = CatchUp::Policy::kIgnore;
  house.RunUntil("2024-03-07T00:00:05");
  EXPECT_THAT(house.Decided(), ElementsAre("1 fired timer 03-07 23:45"));
}

TEST(FiringDesk, WhatIsDueBeforeItsDayIsMissedWhereNobodyIsThereAsThatBegins) {
  DeskHouse house("2024-03-06T20:00:00");
  house.Daily("a quarter before midnight", -15);
  const auto second = house.Daily("a quarter before midnight, ignored", -15);
  house.programming[second].catchUp.policy = CatchUp::Policy::kIgnore;
  house.RunUntil("2024-03-06T23:50:00");
  house.RestartAt("2024-03-07T00:05:00");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 fired caught-up 03-07 23:45", "2 missed down 03-07 23:45"));
}

TEST(FiringDesk, ARestartInTheFirstSecondOfADayLosesNothingOfIt) {
  for (const char* restart : {"2024-03-07T00:00:00", "2024-03-07T00:00:01"}) {
    DeskHouse house("2024-03-06T20:00:00");
    house.Daily("midnight", 0);
    house.Daily("just before", -1);
    house.Daily("the end of the day", 24 * 60);
    house.RunUntil("2024-03-07T00:00:00");
    house.RestartAt(restart);
    house.RunUntil("2024-03-07T00:00:05");
    EXPECT_THAT(house.Decided(),
                UnorderedElementsAre("1 fired timer 03-07 00:00", "2 fired timer 03-07 23:59",
                                     "3 fired timer 03-06 00:00"))
        << restart;
  }
}

TEST(FiringDesk, HoldsBackAndDoesNotMakeUpForIt) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  house.programming[1].enabled = false;
  house.RunUntil("2024-03-06T07:00:01");
  house.programming[1].enabled = true;
  house.RunUntil("2024-03-06T07:10:00");
  house.RestartAt("2024-03-06T07:10:00");
  EXPECT_THAT(house.Decided(), ElementsAre("1 held disabled 03-06 07:00"));
}

TEST(FiringDesk, SkipsOneAndOneOnly) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  house.programming[1].skipNext = true;
  house.RunUntil("2024-03-07T07:00:01");
  EXPECT_THAT(house.Decided(),
              ElementsAre("1 held skipped 03-06 07:00", "1 fired timer 03-07 07:00"));
}

TEST(FiringDesk, AbsenceIsASmallerThingThanADisabledEventAndALargerOneThanASkip) {
  DeskHouse house("2024-03-06T06:59:58");
  house.Daily("Porch", kSeven);
  house.programming[1].skipNext = true;
  house.away = DayFields{2024, 3, 7};
  house.RunUntil("2024-03-06T07:00:01");
  EXPECT_THAT(house.Decided(), ElementsAre("1 held away 03-06 07:00"));
  EXPECT_TRUE(house.programming[1].skipNext) << "it did nothing anyway";
}

TEST(FiringDesk, AnEventThatComesTooLateForTodayIsNotMissed) {
  DeskHouse house("2024-03-06T08:00:00");
  house.Daily("Porch", kSeven);
  EXPECT_THAT(house.States(), IsEmpty());
  house.RunUntil("2024-03-06T08:00:10");
  house.RestartAt("2024-03-06T08:01:00");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, WhatIsDrawnIntoThePastAsItIsAddedComesWhenItsRandomPartIsOver) {
  DeskHouse house("2024-03-06T07:00:00");
  for (const char* name : {"a", "b", "c", "d", "e", "f"}) house.Daily(name, kSeven, 30);
  house.programming[2].catchUp.policy = CatchUp::Policy::kIgnore;
  house.programming[3].catchUp.policy = CatchUp::Policy::kIgnore;
  house.RunUntil("2024-03-06T07:30:59");
  const auto inTime = house.Decided();
  EXPECT_THAT(inTime, testing::Not(IsEmpty()));
  EXPECT_THAT(inTime, testing::Each(testing::HasSubstr("fired timer 03-06 07:00+")));
  house.RunUntil("2024-03-06T07:31:00");
  const auto leftOut = house.Decided();
  EXPECT_THAT(leftOut, testing::Not(IsEmpty()));
  EXPECT_THAT(leftOut, testing::Each(testing::AnyOf(
                           "1 fired caught-up 03-06 07:00", "2 missed left-out 03-06 07:00",
                           "3 missed left-out 03-06 07:00", "4 fired caught-up 03-06 07:00",
                           "5 fired caught-up 03-06 07:00", "6 fired caught-up 03-06 07:00")));
  EXPECT_EQ(inTime.size() + leftOut.size(), 6u);
  EXPECT_THAT(house.States(), testing::Not(testing::Contains(testing::HasSubstr("pending"))));
  house.RunUntil("2024-03-07T00:00:05");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, ARestartThatDrawsOtherwiseBecauseAnEventIsGoneLosesNothing) {
  bool drawnIntoThePast = false;
  for (const char* restart : {"2024-03-06T06:40:00", "2024-03-06T07:00:00", "2024-03-06T07:20:00",
                              "2024-03-06T07:40:00"}) {
    DeskHouse house("2024-03-05T23:59:58");
    const auto first = house.Daily("first", kSeven, 59);
    for (const char* name : {"a", "b", "c", "d", "e"}) house.Daily(name, kSeven, 59);
    house.RunUntil("2024-03-06T05:00:00");
    house.Delete(first);
    house.RunUntil(restart);
    house.RestartAt(restart);
    house.RunUntil("2024-03-06T09:00:00");
    std::set<char> told;
    for (const std::string& decided : house.Decided()) {
      if (decided.find("held already-acted") != std::string::npos) continue;
      EXPECT_TRUE(told.insert(decided[0]).second) << decided << " at " << restart;
      drawnIntoThePast |= decided.find("left-out") != std::string::npos ||
                          decided.find("caught-up") != std::string::npos;
    }
    EXPECT_THAT(told, ElementsAre('2', '3', '4', '5', '6')) << restart;
  }
  EXPECT_TRUE(drawnIntoThePast) << "it tests nothing";
}

TEST(FiringDesk, WhatIsLeftOfAnEveningGoesWithItsEvent) {
  DeskHouse house("2024-03-06T20:00:00");
  const auto late = house.Daily("half past midnight", 24 * 60 + 30);
  house.RunUntil("2024-03-07T00:10:00");
  house.Delete(late);
  house.RunUntil("2024-03-07T00:40:00");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, WhatIsDeletedIsNotMissed) {
  DeskHouse house("2024-03-06T06:00:00");
  const auto porch = house.Daily("Porch", kSeven);
  house.Delete(porch);
  EXPECT_THAT(house.States(), IsEmpty());
  house.RunUntil("2024-03-06T07:10:00");
  EXPECT_THAT(house.Decided(), IsEmpty());
}

TEST(FiringDesk, ASunTimeIsInTimeInItsMinute) {
  DeskHouse house("2024-03-06T12:00:00");
  EventElement event;
  event.description = "Dusk";
  event.offset = static_cast<int>(OffsetBase::kSunset);
  event.frequency = static_cast<int>(RepeatKind::kDaily);
  event.rate = 1;
  event.start = {2024, 3, 1};
  house.Add(event);
  house.RunUntil("2024-03-06T19:00:00");
  const auto decided = house.Decided();
  ASSERT_EQ(decided.size(), 1u);
  EXPECT_THAT(decided[0], testing::StartsWith("1 fired timer 03-06 16:5"));
}

}  // namespace
}  // namespace controller
