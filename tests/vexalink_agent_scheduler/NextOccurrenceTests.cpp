// When an event fires next.

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

std::string Next(const Event& event) {
  const auto [time, found] = event.GetNextOccurance();
  if (!found) {
    EXPECT_EQ(time, VxTime()) << "the time is 0 when none was found";
    return "none";
  }
  return Text(time);
}

// All events here fire at noon.

TEST(NextOccurrence, OfASingleEventLiesAfterThePresentSecond) {
  const ZoneScope zone(zones::kNewYork);
  const Event event = Once("2024-03-10");
  const struct {
    const char* why;
    const char* now;
    const char* next;
  } rows[] = {
      {"long before", "2023-01-01 00:00:00", "2024-03-10 12:00:00"},
      {"a second before", "2024-03-10 11:59:59", "2024-03-10 12:00:00"},
      {"at it", "2024-03-10 12:00:00", "none"},
      {"after it", "2024-03-10 12:00:01", "none"},
  };
  for (const auto& row : rows) {
    const TestClock clock(row.now);
    EXPECT_EQ(Next(event), row.next) << row.why;
  }
}

TEST(NextOccurrence, OfASingleEventDoesNotLookAtTheEnd) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-01 00:00:00");
  Event event = Once("2024-03-10");
  EndOn(event, "2024-02-01");
  EXPECT_EQ(Next(event), "2024-03-10 12:00:00");
  event.start = Midnight("2040-05-06");
  event.EndDate(NeverTime);
  EXPECT_EQ(Next(event), "2040-05-06 12:00:00") << "nor at the end of 2038";
}

TEST(NextOccurrence, OfARepeatingEventMayBeThePresentSecond) {
  const ZoneScope zone(zones::kNewYork);
  const Event event = Daily("2024-03-01", 1);
  const struct {
    const char* why;
    const char* now;
    const char* next;
  } rows[] = {
      {"before its start", "2024-02-20 15:00:00", "2024-03-01 12:00:00"},
      {"on its start day", "2024-03-01 00:00:00", "2024-03-01 12:00:00"},
      {"a second before", "2024-03-06 11:59:59", "2024-03-06 12:00:00"},
      {"at it", "2024-03-06 12:00:00", "2024-03-06 12:00:00"},
      {"a second after: tomorrow's", "2024-03-06 12:00:01", "2024-03-07 12:00:00"},
      {"over the clock change", "2024-03-09 13:00:00", "2024-03-10 12:00:00"},
  };
  for (const auto& row : rows) {
    const TestClock clock(row.now);
    EXPECT_EQ(Next(event), row.next) << row.why;
  }
}

TEST(NextOccurrence, IsLookedForOverOneRepetition) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    Event event;
    const char* now;
    const char* next;
  } rows[] = {
      {"every second day: the second day after is the last that is tried", Daily("2024-03-01", 2),
       "2024-03-03 13:00:00", "2024-03-05 12:00:00"},
      {"every week: the same weekday again", Weekly("2024-03-06", 1, kWednesday),
       "2024-03-06 13:00:00", "2024-03-13 12:00:00"},
      {"every second week", Weekly("2024-03-06", 2, kWednesday), "2024-03-06 13:00:00",
       "2024-03-20 12:00:00"},
      {"no day of the week", Weekly("2024-03-06", 1, 0), "2024-03-06 11:00:00", "none"},
      {"every month", Monthly("2024-01-06", 1), "2024-03-06 13:00:00", "2024-04-06 12:00:00"},
      {"the 31st: February is skipped and March is too far", Monthly("2024-01-31", 1),
       "2024-01-31 13:00:00", "none"},
      {"but not from 29 February on", Monthly("2024-01-31", 1), "2024-02-29 13:00:00",
       "2024-03-31 12:00:00"},
      {"exactly 31 days", Monthly("2024-01-31", 1), "2024-07-31 11:00:00", "2024-07-31 12:00:00"},
      {"31 days after", Monthly("2024-01-31", 1), "2024-07-31 13:00:00", "2024-08-31 12:00:00"},
      {"every year", Yearly("2020-05-06", 1), "2024-05-06 13:00:00", "2025-05-06 12:00:00"},
      {"every year, 366 days", Yearly("2020-05-06", 1), "2027-05-06 13:00:00",
       "2028-05-06 12:00:00"},
      {"a leap day: too far", Yearly("2020-02-29", 1), "2024-02-29 13:00:00", "none"},
      {"every fourth year it is within reach", Yearly("2020-02-29", 4), "2024-02-29 13:00:00",
       "2028-02-29 12:00:00"},
      {"a huge rate, today", Yearly("2020-05-06", INT_MAX), "2020-05-06 11:00:00",
       "2020-05-06 12:00:00"},
      {"a huge rate, past", Yearly("2020-05-06", INT_MAX), "2020-05-06 13:00:00", "none"},
      {"a huge rate, weekly", Weekly("2024-03-06", INT_MAX, kWednesday), "2024-03-06 13:00:00",
       "none"},
  };
  for (const auto& row : rows) {
    const TestClock clock(row.now);
    EXPECT_EQ(Next(row.event), row.next) << row.why;
  }
}

TEST(NextOccurrence, OfANegativeRateIsNone) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 11:00:00");
  for (const int rate : {-1, -2, INT_MIN}) {
    for (const Event& event : {Daily("2024-03-06", rate), Weekly("2024-03-06", rate, 0x7F),
                               Monthly("2024-03-06", rate), Yearly("2024-03-06", rate)}) {
      const AssertLines asserts;
      EXPECT_EQ(Next(event), "none") << event.frequency << " by " << rate;
      EXPECT_TRUE(OccursOn(event, "2024-03-06")) << "though it happens today";
      EXPECT_TRUE(asserts.lines.empty());
    }
  }
}

TEST(NextOccurrence, OfARateOfZeroIsNoneAndRecordedOnce) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    int frequency;
    int line;
  } rows[] = {{1, 363}, {2, 379}, {3, 405}, {4, 427}};
  for (const auto& row : rows) {
    Event event = Weekly("2024-03-06", 0, 0x7F);
    event.frequency = row.frequency;
    {
      const TestClock clock("2024-03-20 11:00:00");
      const AssertLines asserts;
      EXPECT_EQ(Next(event), "none");
      EXPECT_EQ(asserts.lines, std::vector<int>{row.line}) << "today is asked, nothing else";
    }
    {
      const TestClock clock("2024-03-01 11:00:00");
      const AssertLines asserts;
      EXPECT_EQ(Next(event), "none");
      EXPECT_EQ(asserts.lines, std::vector<int>{row.line}) << "the start is asked";
    }
    EndOn(event, "2024-03-10");
    const TestClock clock("2024-03-20 11:00:00");
    const AssertLines asserts;
    EXPECT_EQ(Next(event), "none");
    EXPECT_TRUE(asserts.lines.empty()) << "past its end nothing is asked";
  }
}

TEST(NextOccurrence, OfAKindThatDoesNotExistIsNone) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 11:00:00");
  for (const int frequency : {-1, 5, 6, INT_MAX, INT_MIN}) {
    Event event = Daily("2024-03-06", 1);
    event.frequency = frequency;
    EXPECT_EQ(Next(event), "none") << frequency;
  }
}

TEST(NextOccurrence, DoesNotComeAfterTheEnd) {
  const ZoneScope zone(zones::kUtc);
  Event event = Daily("2024-03-01", 1);
  EndOn(event, "2024-03-06");
  const struct {
    const char* why;
    const char* now;
    const char* next;
  } rows[] = {
      {"on the last day, before it", "2024-03-06 11:00:00", "2024-03-06 12:00:00"},
      {"on the last day, after it", "2024-03-06 13:00:00", "none"},
      {"at the last second", "2024-03-06 23:59:59", "none"},
      {"after it", "2024-03-07 00:00:00", "none"},
  };
  for (const auto& row : rows) {
    const TestClock clock(row.now);
    EXPECT_EQ(Next(event), row.next) << row.why;
  }
  EndOn(event, "2024-02-01");
  const TestClock clock("2024-01-15 00:00:00");
  EXPECT_EQ(Next(event), "none") << "an end before the start";
}

TEST(NextOccurrence, TakesTheDayThatTheTimeBelongsTo) {
  const ZoneScope zone(zones::kUtc);
  Event event = Daily("2024-03-01", 1);
  event.offset_minutes = 1500;  // 1:00 of the day after
  const TestClock clock("2024-03-06 00:30:00");
  EXPECT_EQ(Next(event), "2024-03-07 01:00:00")
      << "the search begins with today; yesterday's, which is still to come, is not looked at";
  event.offset_minutes = -60;  // 23:00 of the day before
  EXPECT_EQ(Next(event), "2024-03-06 23:00:00") << "today's lies in the past";
}

// The search walks from the present time of day in steps of 86400 seconds, so soon after midnight
// behind a clock change it counts like OccursOnDate and misses by a day.
TEST(NextOccurrence, WalksFromThePresentTimeOfDay) {
  const ZoneScope zone(zones::kNewYork);
  const Event event = Daily("2024-03-09", 2);
  {
    const TestClock clock("2024-03-11 01:00:00");
    EXPECT_EQ(Next(event), "2024-03-11 12:00:00");
  }
  const TestClock clock("2024-03-11 00:30:00");
  EXPECT_EQ(Next(event), "2024-03-12 12:00:00");
}

TEST(NextOccurrence, OfAnUnknownBaseIsTheDayItself) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 11:22:33");
  Event event = Daily("2024-03-01", 1);
  event.offset = static_cast<Scheduler::OFFSET_TYPE>(3);
  const AssertLines asserts;
  EXPECT_EQ(Next(event), "2024-03-06 11:22:33");
  EXPECT_EQ(asserts.lines, std::vector<int>{233});
}

TEST(NextOccurrence, RecordsEachDayWhoseTimeIsAskedAndPast) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 11:22:33");
  Event event = Once("2024-03-01");
  event.offset = static_cast<Scheduler::OFFSET_TYPE>(17);
  const AssertLines asserts;
  EXPECT_EQ(Next(event), "none") << "its start, taken as its time, is past";
  EXPECT_EQ(asserts.lines, std::vector<int>{233});
}

TEST(NextOccurrence, IsFoundAtOnceHoweverFarItIs) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 13:00:00");
  Event event = Daily("2024-03-06", 1000000);
  event.end_date = At("9999-12-31 23:59:59");
  EXPECT_EQ(Next(event), "4762-02-01 12:00:00") << "a million days later";
  event = Yearly("2024-03-06", 7000);
  event.end_date = At("9999-12-31 23:59:59");
  EXPECT_EQ(Next(event), "9024-03-06 12:00:00");
}

}  // namespace
