// Events that happen once, every so many days and every so many weeks.

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

TEST(OnceRecurrence, IsTheStartDayAlone) {
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kMidnight}) {
    const ZoneScope zone(name);
    const Event event = Once("2024-03-10");
    EXPECT_EQ(Days(event, "2024-03-01", "2024-03-20"), DayList{"2024-03-10"}) << name;
    EXPECT_TRUE(event.OccursOnDate(At("2024-03-10 00:00:00"))) << "its first second";
    EXPECT_TRUE(event.OccursOnDate(At("2024-03-10 23:59:59"))) << "its last second";
    EXPECT_FALSE(event.OccursOnDate(At("2024-03-09 23:59:59"))) << "the second before";
    EXPECT_FALSE(event.OccursOnDate(At("2024-03-11 00:00:00"))) << "the second after";
  }
}

TEST(OnceRecurrence, DoesNotLookAtRateAndMask) {
  const ZoneScope zone(zones::kUtc);
  Event event = Once("2024-03-10");
  event.rate = 7;
  event.daymask = 0;
  const AssertLines asserts;
  EXPECT_TRUE(OccursOn(event, "2024-03-10"));
  EXPECT_FALSE(OccursOn(event, "2024-03-17"));
  EXPECT_TRUE(asserts.lines.empty());
}

TEST(DailyRecurrence, IsEveryNthDayFromTheStart) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Days(Daily("2024-03-01", 2), "2024-02-20", "2024-03-08"),
            (DayList{"2024-03-01", "2024-03-03", "2024-03-05", "2024-03-07"}));
  EXPECT_EQ(Days(Daily("2024-02-27", 1), "2024-02-26", "2024-03-01"),
            (DayList{"2024-02-27", "2024-02-28", "2024-02-29", "2024-03-01"}));
  EXPECT_EQ(Days(Daily("2024-12-30", 5), "2024-12-01", "2025-01-12"),
            (DayList{"2024-12-30", "2025-01-04", "2025-01-09"}));
}

TEST(DailyRecurrence, IsAskedAtAnyTimeOfTheDay) {
  const ZoneScope zone(zones::kUtc);
  const Event event = Daily("2024-03-01", 2);
  for (const char* time : {" 00:00:00", " 06:30:00", " 23:59:59"}) {
    EXPECT_TRUE(event.OccursOnDate(At(std::string("2024-03-05") + time))) << time;
    EXPECT_FALSE(event.OccursOnDate(At(std::string("2024-03-06") + time))) << time;
  }
}

// A day is a step of 86400 seconds from the start. On the far side of the change to summer time
// local midnight lies 23 hours after the one before it, and so one step short; 1:00 is the first
// moment of the day that counts as it. After the change back, the last hour of a day is a step
// long.
TEST(DailyRecurrence, CountsStepsOf86400Seconds) {
  const ZoneScope zone(zones::kNewYork);
  const Event spring = Daily("2024-03-09", 2);  // the clocks go forward on the 10th
  const Event autumn = Daily("2024-11-02", 2);  // and back on 3 November
  const struct {
    const char* why;
    const Event& event;
    const char* when;
    bool occurs;
  } rows[] = {
      {"before the change all is well", spring, "2024-03-10 00:00:00", false},
      {"midnight after it is an hour short of two steps", spring, "2024-03-11 00:00:00", false},
      {"and still is a second before one", spring, "2024-03-11 00:59:59", false},
      {"at one two steps are full", spring, "2024-03-11 01:00:00", true},
      {"noon is clear of it", spring, "2024-03-11 12:00:00", true},
      {"the first hour of the next day still belongs to the day before", spring,
       "2024-03-12 00:30:00", true},
      {"and no longer at one", spring, "2024-03-12 01:00:00", false},
      {"the day of the change back has 25 hours: its last is two steps away", autumn,
       "2024-11-03 23:00:00", true},
      {"the one before is not", autumn, "2024-11-03 22:59:59", false},
      {"the day after", autumn, "2024-11-04 12:00:00", true},
      {"its last hour is three steps away", autumn, "2024-11-04 23:00:00", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.event.OccursOnDate(At(row.when)), row.occurs) << row.when << ": " << row.why;
  }
}

TEST(DailyRecurrence, CountsHalfHoursOfLordHoweToo) {
  const ZoneScope zone(zones::kLordHowe);  // forward by 30 minutes on 6 October 2024
  const Event event = Daily("2024-10-05", 2);
  EXPECT_FALSE(event.OccursOnDate(At("2024-10-07 00:29:59")));
  EXPECT_TRUE(event.OccursOnDate(At("2024-10-07 00:30:00")));
}

TEST(DailyRecurrence, StartsFromTheInstantOfTheStart) {
  const ZoneScope zone(zones::kUtc);
  Event event = Daily("2024-03-01", 2);
  event.start = At("2024-03-01 18:00:00");  // as the factories store it
  EXPECT_FALSE(event.OccursOnDate(At("2024-03-01 17:59:59"))) << "before the start";
  EXPECT_TRUE(event.OccursOnDate(At("2024-03-01 18:00:00")));
  EXPECT_TRUE(event.OccursOnDate(At("2024-03-02 17:59:59"))) << "less than a step after";
  EXPECT_FALSE(event.OccursOnDate(At("2024-03-02 18:00:00")));
  EXPECT_TRUE(event.OccursOnDate(At("2024-03-03 18:00:00")));
}

TEST(DailyRecurrence, RatesAtTheirLimits) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    int rate;
    bool onStart, nextDay, thirdDay;
  } rows[] = {
      {"every day", 1, true, true, true},
      {"-1 leaves no remainder", -1, true, true, true},
      {"-2 leaves the remainders of 2", -2, true, false, true},
      {"once in six million years", INT_MAX, true, false, false},
      {"the smallest number", INT_MIN, true, false, false},
  };
  for (const auto& row : rows) {
    const AssertLines asserts;
    const Event event = Daily("2024-03-01", row.rate);
    EXPECT_EQ(OccursOn(event, "2024-03-01"), row.onStart) << row.why;
    EXPECT_EQ(OccursOn(event, "2024-03-02"), row.nextDay) << row.why;
    EXPECT_EQ(OccursOn(event, "2024-03-03"), row.thirdDay) << row.why;
    EXPECT_TRUE(asserts.lines.empty()) << row.why;
  }
}

// Saturday is the last day of a week, Sunday the first of the next.
TEST(WeeklyRecurrence, CountsWeeksFromSundayNotFromTheStartDay) {
  const ZoneScope zone(zones::kUtc);
  const Event event = Weekly("2024-03-06" /* a Wednesday */, /*rate=*/2, kMonday | kFriday);
  const struct {
    const char* why;
    const char* day;
    bool occurs;
  } rows[] = {
      {"before the start, in its week", "2024-03-04", false},
      {"same week", "2024-03-08", true},
      {"Sunday began the off week", "2024-03-11", false},
      {"still the off week", "2024-03-15", false},
      {"on again", "2024-03-18", true},
      {"and its Friday", "2024-03-22", true},
      {"not a day of the mask", "2024-03-20", false},
      {"off again", "2024-03-25", false},
  };
  for (const auto& row : rows) EXPECT_EQ(OccursOn(event, row.day), row.occurs) << row.why;
}

TEST(WeeklyRecurrence, MasksSelectWeekdaysFromSunday) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    unsigned int mask;
    const char* day;  // of the week from Sunday, 3 March 2024
  } rows[] = {
      {"bit 0", kSunday, "2024-03-03"},   {"bit 1", kMonday, "2024-03-04"},
      {"bit 2", kTuesday, "2024-03-05"},  {"bit 3", kWednesday, "2024-03-06"},
      {"bit 4", kThursday, "2024-03-07"}, {"bit 5", kFriday, "2024-03-08"},
      {"bit 6", kSaturday, "2024-03-09"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Days(Weekly("2024-03-03", 1, row.mask), "2024-03-03", "2024-03-09"), DayList{row.day})
        << row.why;
  }
  EXPECT_EQ(Days(Weekly("2024-03-03", 1, 0x7F), "2024-03-03", "2024-03-16").size(), 14U);
  EXPECT_TRUE(Days(Weekly("2024-03-03", 1, 0), "2024-03-03", "2024-03-16").empty());
  EXPECT_TRUE(Days(Weekly("2024-03-03", 1, 0xFFFFFF80), "2024-03-03", "2024-03-16").empty())
      << "bits that no weekday has";
}

TEST(WeeklyRecurrence, TheWeekOfAStartOnEachWeekday) {
  const ZoneScope zone(zones::kUtc);
  const DayList starts = {"2024-03-03", "2024-03-04", "2024-03-05", "2024-03-06",
                          "2024-03-07", "2024-03-08", "2024-03-09"};
  for (const std::string& start : starts) {
    const Event event = Weekly(start, 2, 0x7F);
    EXPECT_TRUE(OccursOn(event, "2024-03-09")) << start << ": Saturday of the first week";
    EXPECT_FALSE(OccursOn(event, "2024-03-10")) << start << ": Sunday of the off week";
    EXPECT_FALSE(OccursOn(event, "2024-03-16")) << start << ": Saturday of the off week";
    EXPECT_TRUE(OccursOn(event, "2024-03-17")) << start << ": Sunday of the third";
  }
}

// The days since the start are steps of 86400 seconds here as well, but the weekday is that of the
// date: just after midnight on the far side of a clock change the two disagree.
TEST(WeeklyRecurrence, CountsStepsOf86400Seconds) {
  const ZoneScope zone(zones::kNewYork);  // forward on Sunday, 10 March 2024
  const Event event = Weekly("2024-03-08" /* a Friday */, 2, 0x7F);
  const struct {
    const char* why;
    const char* when;
    bool occurs;
  } rows[] = {
      {"Sunday itself begins before the change", "2024-03-10 00:00:00", false},
      {"Saturday of the off week", "2024-03-16 12:00:00", false},
      {"Sunday's first hour counts as Saturday's week", "2024-03-17 00:30:00", false},
      {"at one the third week begins", "2024-03-17 01:00:00", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(event.OccursOnDate(At(row.when)), row.occurs) << row.when << ": " << row.why;
  }
}

TEST(Recurrence, EndsWithTheLastSecondOfItsEndDay) {
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kMidnight}) {
    const ZoneScope zone(name);
    Event event = Daily("2024-03-01", 1);
    EndOn(event, "2024-03-15");
    EXPECT_TRUE(event.OccursOnDate(At("2024-03-15 23:59:59"))) << name;
    EXPECT_FALSE(event.OccursOnDate(At("2024-03-16 00:00:00"))) << name;
  }
}

TEST(Recurrence, DoesNotHappenOnAMatchingWeekdayAfterItsEnd) {
  const ZoneScope zone(zones::kUtc);
  Event event = Weekly("2024-03-06", 1, kWednesday);
  EndOn(event, "2024-03-19");
  EXPECT_EQ(Days(event, "2024-03-01", "2024-04-30"), (DayList{"2024-03-06", "2024-03-13"}));
}

TEST(Recurrence, WithoutAnEndDateEndsInJanuary2038) {
  const struct {
    const char* why;
    const char* zone;
    const char* last;
    const char* after;
  } rows[] = {
      {"03:14:07 UTC is the 18th in Greenwich", zones::kUtc, "2038-01-18", "2038-01-19"},
      {"and still the 17th in New York", zones::kNewYork, "2038-01-17", "2038-01-18"},
      {"and the 18th in Kolkata", zones::kKolkata, "2038-01-18", "2038-01-19"},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    const Event event = Daily("2024-03-01", 1);
    EXPECT_TRUE(OccursOn(event, row.last)) << row.why;
    EXPECT_FALSE(OccursOn(event, row.after)) << row.why;
  }
}

TEST(Recurrence, OfAKindThatDoesNotExistNeverHappens) {
  const ZoneScope zone(zones::kUtc);
  for (const int frequency : {-1, 5, 6, 17, INT_MAX, INT_MIN}) {
    Event event = Daily("2024-03-01", 1);
    event.frequency = frequency;
    const AssertLines asserts;
    EXPECT_FALSE(OccursOn(event, "2024-03-01")) << frequency;
    EXPECT_TRUE(asserts.lines.empty()) << frequency;
  }
}

TEST(Recurrence, ByZeroNeverHappensAndIsRecorded) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    int frequency;
    int line;
  } rows[] = {{Scheduler::kDaily, 363},
              {Scheduler::kWeekly, 379},
              {Scheduler::kMonthly, 405},
              {Scheduler::kYearly, 427}};
  for (const auto& row : rows) {
    Event event = Weekly("2024-03-06", 0, 0x7F);
    event.frequency = row.frequency;
    EndOn(event, "2024-03-31");
    const AssertLines asserts;
    EXPECT_FALSE(OccursOn(event, "2024-03-06")) << "its own start day";
    EXPECT_EQ(asserts.lines, std::vector<int>{row.line}) << row.frequency;
    EXPECT_FALSE(OccursOn(event, "2024-03-05")) << "before the start nothing is asked";
    EXPECT_FALSE(OccursOn(event, "2024-04-01")) << "nor after the end";
    EXPECT_EQ(asserts.lines.size(), 1U);
  }
}

}  // namespace
