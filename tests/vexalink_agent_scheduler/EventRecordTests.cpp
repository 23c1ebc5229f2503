// How a record comes to be, and its small operations.

#include <climits>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

void ExpectInitialNumbers(const Event& event) {
  EXPECT_EQ(event.start_period, Scheduler::kByDay);
  EXPECT_EQ(event.start_weekday, 0);
  EXPECT_EQ(event.offset, Scheduler::kClock);
  EXPECT_EQ(event.offset_minutes, 0);
  EXPECT_EQ(event.randomize, 0);
  EXPECT_EQ(event.frequency, Scheduler::kOnce);
  EXPECT_EQ(event.rate, 0);
  EXPECT_EQ(event.daymask, 0U);
  EXPECT_FALSE(event.hasEndDate);
}

TEST(EventRecord, BeginsWithItsInitialValues) {
  const Event event(51.5, -0.1);
  EXPECT_EQ(event.latitude, 51.5);
  EXPECT_EQ(event.longitude, -0.1);
  EXPECT_EQ(event.eventid, 0U);
  EXPECT_EQ(event.description, "");
  EXPECT_EQ(event.start, VxTime());
  EXPECT_EQ(event.end_date, VxTime());
  EXPECT_EQ(event.next_fire, VxTime());
  ExpectInitialNumbers(event);
}

TEST(EventRecord, TakesAnIdAndADescription) {
  const Event event(42, "Porch", 1, 2);
  EXPECT_EQ(event.eventid, 42U);
  EXPECT_EQ(event.description, "Porch");
  EXPECT_EQ(event.latitude, 1);
  EXPECT_EQ(event.longitude, 2);
  ExpectInitialNumbers(event);
}

TEST(EventRecord, FromNoDocumentHasItsInitialValues) {
  const AssertLines asserts;
  const Event event(static_cast<VxXML::IDocument*>(nullptr), 1, 2);
  EXPECT_EQ(event.eventid, 0U);
  EXPECT_EQ(event.end_date, VxTime()) << "nothing was read, so no end was set";
  EXPECT_EQ(event.latitude, 1);
  ExpectInitialNumbers(event);
  EXPECT_TRUE(asserts.lines.empty());
}

TEST(EventRecord, InitLeavesDescriptionStartAndEndAlone) {
  const ZoneScope zone(zones::kUtc);
  Event event = MonthlyBy("2024-03-06", 3, Scheduler::kLast, 4);
  event.eventid = 9;
  event.offset = Scheduler::kSunset;
  event.randomize = 5;
  event.daymask = 0x22;
  EndOn(event, "2024-12-24");
  event.Init(3, 4);
  EXPECT_EQ(event.eventid, 0U);
  ExpectInitialNumbers(event);
  EXPECT_EQ(event.latitude, 3);
  EXPECT_EQ(event.longitude, 4);
  EXPECT_EQ(event.description, "test");
  EXPECT_EQ(event.start, Midnight("2024-03-06"));
  EXPECT_EQ(Text(event.end_date), "2024-12-24 23:59:59");
}

TEST(EventRecord, NeverIsADayBeforeTheLargest32BitTime) {
  EXPECT_EQ(NeverTime.Seconds(), 2147483647 - 86400);
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(Text(NeverTime), "2038-01-18 03:14:07");
}

TEST(EventRecord, ADailyEventIsMadeToStartNow) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-06 15:16:17");
  const std::unique_ptr<Event> event(Event::newDailyEvent("Porch", 3, 450, 51.5, -0.1));
  EXPECT_EQ(event->eventid, 0U);
  EXPECT_EQ(event->description, "Porch");
  EXPECT_EQ(event->frequency, Scheduler::kDaily);
  EXPECT_EQ(event->rate, 3);
  EXPECT_EQ(event->daymask, 0U);
  EXPECT_EQ(event->offset, Scheduler::kClock);
  EXPECT_EQ(event->offset_minutes, 450);
  EXPECT_EQ(Text(event->start), "2024-03-06 15:16:17") << "the present instant, not midnight";
  EXPECT_FALSE(event->hasEndDate);
  EXPECT_EQ(event->end_date, NeverTime) << "not the last second of its day";
  EXPECT_EQ(event->latitude, 51.5);
  EXPECT_EQ(event->longitude, -0.1);
}

TEST(EventRecord, AnEventOfWeekdaysIsMadeForEveryWeek) {
  const TestClock clock(1709726889);
  const std::unique_ptr<Event> event(Event::newDaysOfWeekEvent("Porch", 0x22, 450, 51.5, -0.1));
  EXPECT_EQ(event->description, "Porch");
  EXPECT_EQ(event->frequency, Scheduler::kWeekly);
  EXPECT_EQ(event->rate, 1);
  EXPECT_EQ(event->daymask, 0x22U);
  EXPECT_EQ(event->offset_minutes, 450);
  EXPECT_EQ(event->start.Seconds(), 1709726889);
  EXPECT_EQ(event->end_date, NeverTime);
}

TEST(EventRecord, FactoriesStoreTheirNumbersAsGiven) {
  const AssertLines asserts;
  const std::unique_ptr<Event> none(Event::newDailyEvent("", 0, 0, 0, 0));
  EXPECT_EQ(none->rate, 0);
  const std::unique_ptr<Event> large(Event::newDailyEvent("", UINT_MAX, UINT_MAX, 0, 0));
  EXPECT_EQ(large->rate, -1) << "narrowed";
  EXPECT_EQ(large->offset_minutes, -1);
  const std::unique_ptr<Event> mask(Event::newDaysOfWeekEvent("", UINT_MAX, 4000000000U, 0, 0));
  EXPECT_EQ(mask->daymask, UINT_MAX);
  EXPECT_EQ(mask->offset_minutes, static_cast<int>(4000000000U));
  EXPECT_TRUE(asserts.lines.empty());
}

TEST(EventRecord, RatesBelowOneAreRecordedAndStored) {
  const struct {
    const char* why;
    int frequency, rate;
    bool recorded;
  } rows[] = {
      {"a single event's 0", 0, 0, false},
      {"a single event's 1", 0, 1, false},
      {"a single event's -1", 0, -1, true},
      {"a daily event's 0", 1, 0, true},
      {"a daily event's 1", 1, 1, false},
      {"a daily event's -1", 1, -1, true},
      {"a weekly event's 0", 2, 0, true},
      {"a yearly event's smallest", 4, INT_MIN, true},
      {"a yearly event's largest", 4, INT_MAX, false},
      {"one of no kind", 9, 0, true},
  };
  for (const auto& row : rows) {
    const AssertLines asserts;
    Event event(0, 0);
    event.frequency = row.frequency;
    event.Rate(row.rate);
    EXPECT_EQ(event.rate, row.rate) << row.why;
    EXPECT_EQ(asserts.lines, row.recorded ? std::vector<int>{146} : std::vector<int>{}) << row.why;
  }
}

TEST(EventRecord, EndDateIsTheLastSecondOfTheLocalDay) {
  const struct {
    const char* why;
    const char* zone;
    const char* day;
    std::time_t end;
  } rows[] = {
      {"UTC", zones::kUtc, "2024-03-06 00:00:00", 1709769599},
      {"the last second stays", zones::kUtc, "2024-03-06 23:59:59", 1709769599},
      {"New York, five hours later", zones::kNewYork, "2024-03-06 12:00:00", 1709787599},
      {"a day of 25 hours", zones::kNewYork, "2024-11-03 00:00:00", 1730696399},
      {"a last hour that comes twice: the first", zones::kMidnight, "2024-02-17 00:00:00",
       1708221599},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    Event event(0, 0);
    event.EndDate(At(row.day));
    EXPECT_EQ(event.end_date.Seconds(), row.end) << row.why;
    EXPECT_FALSE(event.hasEndDate) << "which it does not touch";
  }
}

TEST(EventRecord, KnowsWhetherItRepeatsByZero) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_FALSE(Once("2024-03-06").RepeatsByZero());
  EXPECT_TRUE(Daily("2024-03-06", 0).RepeatsByZero());
  EXPECT_FALSE(Daily("2024-03-06", -1).RepeatsByZero());
  EXPECT_TRUE(Yearly("2024-03-06", 0).RepeatsByZero());
  Event event = Daily("2024-03-06", 0);
  event.frequency = 5;
  EXPECT_FALSE(event.RepeatsByZero());
}

}  // namespace
