// Events that happen every so many months and years, by day or by weekday.

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

using DayList = std::vector<std::string>;
using Scheduler::PERIOD;

std::string Day(VxTime time) { return time == VxTime() ? "none" : Text(time).substr(0, 10); }

TEST(NthDayOfMonth, FindsWeekdaysOfTheMonth) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    int month, weekday, year;
    PERIOD period;
    const char* day;
  } rows[] = {
      {"the fourth Thursday", 2, 5, 2024, Scheduler::kFourth, "2024-02-22"},
      {"the last Thursday, a leap day", 2, 5, 2024, Scheduler::kLast, "2024-02-29"},
      {"the last Monday of May", 5, 2, 2024, Scheduler::kLast, "2024-05-27"},
      {"the first day is the first of its weekday", 3, 6, 2024, Scheduler::kFirst, "2024-03-01"},
      {"the first Sunday", 3, 1, 2024, Scheduler::kFirst, "2024-03-03"},
      {"the second Sunday", 3, 1, 2024, Scheduler::kSecond, "2024-03-10"},
      {"the third Saturday", 3, 7, 2024, Scheduler::kThird, "2024-03-16"},
      {"the fourth is the last in February", 2, 1, 2023, Scheduler::kFourth, "2023-02-26"},
      {"and so the last is the fourth", 2, 1, 2023, Scheduler::kLast, "2023-02-26"},
      {"the last day is the last of its weekday", 3, 1, 2024, Scheduler::kLast, "2024-03-31"},
      {"no leap year: 28 days", 2, 4, 2100, Scheduler::kLast, "2100-02-24"},
      {"a leap year of a century", 2, 3, 2000, Scheduler::kLast, "2000-02-29"},
      {"before the epoch", 12, 4, 1969, Scheduler::kLast, "1969-12-31"},
      {"a period of 6 walks the whole month", 5, 2, 2024, PERIOD{6}, "2024-05-27"},
      {"a negative one, too", 5, 2, 2024, PERIOD{-1}, "2024-05-27"},
      {"a weekday that never matches", 5, 0, 2024, Scheduler::kFirst, "none"},
      {"one above", 5, 8, 2024, Scheduler::kFirst, "none"},
      {"one far below", 5, INT_MIN, 2024, Scheduler::kLast, "none"},
      {"month 0", 0, 2, 2024, Scheduler::kFirst, "none"},
      {"month 13", 13, 2, 2024, Scheduler::kFirst, "none"},
      {"a month of any number", INT_MAX, 2, 2024, Scheduler::kLast, "none"},
  };
  for (const auto& row : rows) {
    const AssertLines asserts;
    EXPECT_EQ(Day(Event::GetNthDayOfMonth(row.month, row.weekday, row.year, row.period)), row.day)
        << row.why;
    EXPECT_TRUE(asserts.lines.empty()) << row.why;
  }
}

TEST(NthDayOfMonth, WithoutAPeriodIsRecordedAndIsNone) {
  const ZoneScope zone(zones::kUtc);
  const AssertLines asserts;
  EXPECT_EQ(Event::GetNthDayOfMonth(5, 2, 2024, Scheduler::kByDay), VxTime());
  EXPECT_EQ(Event::GetNthDayOfMonth(13, 9, 2024, Scheduler::kByDay), VxTime());
  EXPECT_EQ(asserts.lines, (std::vector<int>{309, 309}));
}

TEST(NthDayOfMonth, IsLocalMidnight) {
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kLordHowe, zones::kKolkata}) {
    const ZoneScope zone(name);
    EXPECT_EQ(Text(Event::GetNthDayOfMonth(5, 2, 2024, Scheduler::kThird)), "2024-05-20 00:00:00")
        << name;
  }
}

// In New York the clocks go back on Sunday, 3 November 2024. The walk in steps of 86400 s is at
// 23:00 of that same day at its next step, and so meets the Sunday twice.
TEST(NthDayOfMonth, CountsTheClockChangeDayTwice) {
  const ZoneScope zone(zones::kNewYork);
  const struct {
    const char* why;
    int weekday;
    PERIOD period;
    const char* when;
  } rows[] = {
      {"the first Saturday comes before the change", 7, Scheduler::kFirst, "2024-11-02 00:00:00"},
      {"the first Sunday", 1, Scheduler::kFirst, "2024-11-03 00:00:00"},
      {"the second is the same day", 1, Scheduler::kSecond, "2024-11-03 23:00:00"},
      {"the third is the calendar's second", 1, Scheduler::kThird, "2024-11-10 23:00:00"},
      {"the first Monday, at its last hour", 2, Scheduler::kFirst, "2024-11-04 23:00:00"},
      {"a step more than the month has days", 7, Scheduler::kLast, "2024-11-30 23:00:00"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Text(Event::GetNthDayOfMonth(11, row.weekday, 2024, row.period)), row.when)
        << row.why;
  }
}

TEST(NthDayOfMonth, StepsAnHourLaterAfterTheClocksWentForward) {
  const ZoneScope zone(zones::kNewYork);  // on 10 March 2024
  EXPECT_EQ(Text(Event::GetNthDayOfMonth(3, 1, 2024, Scheduler::kSecond)), "2024-03-10 00:00:00");
  EXPECT_EQ(Text(Event::GetNthDayOfMonth(3, 1, 2024, Scheduler::kThird)), "2024-03-17 01:00:00");
}

TEST(NthDayOfMonth, IsWorkedOutInTheZoneInForce) {
  for (int round = 0; round < 3; ++round) {
    {
      const ZoneScope zone(zones::kNewYork);
      EXPECT_EQ(Day(Event::GetNthDayOfMonth(11, 1, 2024, Scheduler::kSecond)), "2024-11-03");
    }
    const ZoneScope zone(zones::kUtc);
    EXPECT_EQ(Day(Event::GetNthDayOfMonth(11, 1, 2024, Scheduler::kSecond)), "2024-11-10");
  }
}

TEST(MonthlyRecurrence, ByDaySkipsMonthsThatAreTooShort) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(Monthly("2024-01-31", 1), "2024-01-01", "2024-08-31"),
            (DayList{"2024-01-31", "2024-03-31", "2024-05-31", "2024-07-31", "2024-08-31"}));
  EXPECT_EQ(Days(Monthly("2024-01-31", 3), "2024-01-01", "2025-02-28"),
            (DayList{"2024-01-31", "2024-07-31", "2024-10-31", "2025-01-31"}))
      << "April has no 31st, and is not made up for";
  EXPECT_EQ(
      Days(Monthly("2023-11-29", 3), "2023-11-01", "2025-06-30"),
      (DayList{"2023-11-29", "2024-02-29", "2024-05-29", "2024-08-29", "2024-11-29", "2025-05-29"}))
      << "29 February in leap years";
}

TEST(MonthlyRecurrence, CountsMonthsOverTheTurnOfTheYear) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(Monthly("2024-11-15", 5), "2024-11-01", "2026-01-31"),
            (DayList{"2024-11-15", "2025-04-15", "2025-09-15"}));
  EXPECT_EQ(Days(Monthly("2024-05-06", 12), "2024-01-01", "2026-12-31"),
            (DayList{"2024-05-06", "2025-05-06", "2026-05-06"}));
}

TEST(MonthlyRecurrence, ByWeekTakesTheLastOfItsWeekday) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(MonthlyBy("2024-01-26", 2, Scheduler::kLast, 6), "2024-01-01", "2024-10-31"),
            (DayList{"2024-01-26", "2024-03-29", "2024-05-31", "2024-07-26", "2024-09-27"}));
}

TEST(MonthlyRecurrence, ByWeekDoesNotComeBeforeItsStart) {
  const ZoneScope zone(zones::kUtc);
  // The first Friday of March 2024 is the 1st, and lies before a start on the 4th.
  EXPECT_EQ(Days(MonthlyBy("2024-03-04", 1, Scheduler::kFirst, 6), "2024-03-01", "2024-05-31"),
            (DayList{"2024-04-05", "2024-05-03"}));
}

// Where the clocks go back the second Sunday is the day of the change itself, and the event happens
// there, on the day of the first.
TEST(MonthlyRecurrence, ByWeekFollowsTheWalkOverTheClockChange) {
  const ZoneScope zone(zones::kNewYork);
  EXPECT_EQ(Days(MonthlyBy("2024-09-08", 1, Scheduler::kSecond, 1), "2024-09-01", "2024-12-31"),
            (DayList{"2024-09-08", "2024-10-13", "2024-11-03", "2024-12-08"}));
}

TEST(MonthlyRecurrence, ByAWeekdayThatNeverComesIsTheEpochsDay) {
  // The search yields the time value 0, whose local day is compared.
  {
    const ZoneScope zone(zones::kUtc);
    EXPECT_EQ(Days(MonthlyBy("1969-12-01", 1, Scheduler::kFirst, 9), "1969-12-01", "1970-02-28"),
              DayList{"1970-01-01"});
  }
  const ZoneScope zone(zones::kNewYork);
  EXPECT_EQ(Days(MonthlyBy("1969-12-01", 1, Scheduler::kFirst, 9), "1969-12-01", "1970-02-28"),
            DayList{"1969-12-31"});
}

TEST(MonthlyRecurrence, RatesAtTheirLimits) {
  const ZoneScope zone(zones::kUtc);
  const AssertLines asserts;
  EXPECT_EQ(Days(Monthly("2024-01-15", -1), "2024-01-01", "2024-03-31"),
            (DayList{"2024-01-15", "2024-02-15", "2024-03-15"}));
  EXPECT_EQ(Days(Monthly("2024-01-15", -2), "2024-01-01", "2024-03-31"),
            (DayList{"2024-01-15", "2024-03-15"}));
  for (const int rate : {INT_MAX, INT_MIN}) {
    EXPECT_EQ(Days(Monthly("2024-01-15", rate), "2024-01-01", "2024-03-31"), DayList{"2024-01-15"});
  }
  EXPECT_TRUE(asserts.lines.empty());
}

TEST(YearlyRecurrence, OnALeapDayHappensInLeapYearsOnly) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(Yearly("2020-02-29", 1), "2020-01-01", "2029-12-31"),
            (DayList{"2020-02-29", "2024-02-29", "2028-02-29"}));
  EXPECT_EQ(Days(Yearly("2020-02-29", 3), "2020-01-01", "2033-12-31"),
            (DayList{"2020-02-29", "2032-02-29"}));
}

TEST(YearlyRecurrence, IsEveryNthYear) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(Yearly("2020-12-31", 2), "2020-01-01", "2025-12-31"),
            (DayList{"2020-12-31", "2022-12-31", "2024-12-31"}));
}

TEST(YearlyRecurrence, ByWeekStaysInTheMonthOfTheStart) {
  const ZoneScope zone(zones::kUtc);
  // Fourth Thursdays of November.
  EXPECT_EQ(Days(YearlyBy("2023-11-23", 1, Scheduler::kFourth, 5), "2023-01-01", "2026-12-31"),
            (DayList{"2023-11-23", "2024-11-28", "2025-11-27", "2026-11-26"}));
  EXPECT_EQ(Days(YearlyBy("2023-11-23", 2, Scheduler::kFourth, 5), "2023-01-01", "2026-12-31"),
            (DayList{"2023-11-23", "2025-11-27"}));
}

TEST(YearlyRecurrence, ByWeekFollowsTheWalkOverTheClockChange) {
  const ZoneScope zone(zones::kNewYork);  // back on 3 November 2024 and 2 November 2025
  EXPECT_EQ(Days(YearlyBy("2023-11-12", 1, Scheduler::kSecond, 1), "2024-01-01", "2025-12-31"),
            (DayList{"2024-11-03", "2025-11-02"}));
}

}  // namespace
