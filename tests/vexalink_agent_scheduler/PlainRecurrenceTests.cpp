// The plain reading of the rules itself, held against what was worked out by hand: a second opinion
// that is wrong in the same way would be none.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/PlainRecurrence.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

std::vector<std::string> PlainDays(const Event& event, const std::string& from,
                                   const std::string& to) {
  plain::Records records;
  std::vector<std::string> days;
  for (std::time_t noon = Local(from + " 12:00:00"); noon <= Local(to + " 12:00:00");
       noon += 86400) {
    if (plain::OccursOnDate(event, noon, records)) days.push_back(Text(VxTime(noon)).substr(0, 10));
  }
  EXPECT_TRUE(records.empty());
  return days;
}

using DayList = std::vector<std::string>;

TEST(PlainRecurrence, YieldsTheDaysWorkedOutByHand) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(PlainDays(Once("2024-03-05"), "2024-03-01", "2024-03-09"), DayList{"2024-03-05"});
  EXPECT_EQ(PlainDays(Daily("2024-03-01", 2), "2024-03-01", "2024-03-05"),
            (DayList{"2024-03-01", "2024-03-03", "2024-03-05"}));
  EXPECT_EQ(PlainDays(Weekly("2024-03-06", 2, kMonday | kFriday), "2024-03-01", "2024-03-23"),
            (DayList{"2024-03-08", "2024-03-18", "2024-03-22"}));
  EXPECT_EQ(PlainDays(Monthly("2024-01-31", 1), "2024-01-01", "2024-05-31"),
            (DayList{"2024-01-31", "2024-03-31", "2024-05-31"}));
  EXPECT_EQ(PlainDays(MonthlyBy("2024-01-26", 2, Scheduler::kLast, 6), "2024-01-01", "2024-05-31"),
            (DayList{"2024-01-26", "2024-03-29", "2024-05-31"}));
  EXPECT_EQ(PlainDays(Yearly("2020-02-29", 1), "2020-01-01", "2024-12-31"),
            (DayList{"2020-02-29", "2024-02-29"}));
}

TEST(PlainRecurrence, WalksTheMonthInStepsOf86400Seconds) {
  const ZoneScope zone(zones::kNewYork);
  plain::Records records;
  EXPECT_EQ(Text(VxTime(plain::GetNthDayOfMonth(11, 1, 2024, 2, records))), "2024-11-03 23:00:00");
  EXPECT_EQ(Text(VxTime(plain::GetNthDayOfMonth(5, 2, 2024, 5, records))), "2024-05-27 00:00:00");
  EXPECT_EQ(plain::GetNthDayOfMonth(5, 8, 2024, 5, records), 0);
  EXPECT_TRUE(records.empty());
  EXPECT_EQ(plain::GetNthDayOfMonth(5, 2, 2024, 0, records), 0);
  EXPECT_EQ(records, plain::Records{309});
}

TEST(PlainRecurrence, KnowsTheNextOccurrence) {
  const ZoneScope zone(zones::kUtc);
  plain::Records records;
  const auto next = [&](const Event& event, const char* now) {
    return Text(VxTime(plain::GetNextOccurance(event, Local(now), records).first));
  };
  EXPECT_EQ(next(Daily("2024-03-01", 1), "2024-03-06 12:00:00"), "2024-03-06 12:00:00");
  EXPECT_EQ(next(Once("2024-03-06"), "2024-03-06 12:00:00"), "1970-01-01 00:00:00");
  EXPECT_EQ(next(Monthly("2024-01-31", 1), "2024-01-31 13:00:00"), "1970-01-01 00:00:00");
  EXPECT_EQ(next(Yearly("2020-05-06", 1), "2027-05-06 13:00:00"), "2028-05-06 12:00:00");
  EXPECT_TRUE(records.empty());
  next(Weekly("2024-03-01", 0, 1), "2024-03-06 12:00:00");
  EXPECT_EQ(records, plain::Records{379});
}

TEST(PlainRecurrence, ListsTheDayOfTheClockChangeTwice) {
  const ZoneScope zone(zones::kNewYork);
  const Event event = Daily("2024-11-01", 1);
  plain::Records records;
  EXPECT_EQ(
      plain::List({{1, &event}}, Local("2024-11-02"), Local("2024-11-04"), 0, records),
      (DayList{"1 2024-11-2 12:0", "1 2024-11-3 12:0", "1 2024-11-3 12:0", "1 2024-11-4 12:0"}));
}

}  // namespace
