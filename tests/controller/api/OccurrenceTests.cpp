// Where and when events come: asked of the scheduler day by day, and told apart from the calendar.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ApiClient.h"
#include "controller/LocalTimeText.h"
#include "controller/api/CivilRule.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventProbe.h"
#include "controller/api/JsonText.h"
#include "controller/api/OccurrenceTime.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;
using testing::ElementsAre;

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";
/// The clocks go forward at midnight: the day begins at 01:00.
constexpr const char* kMidnightGap = "<-04>4<-03>,M9.1.6/24,M4.1.6/24";

EventElement Event(const std::string& repeat, const std::string& start = "2026-11-20",
                   const std::string& time = R"({"base":"clock","at":"07:00"})") {
  FieldErrors errors;
  const auto body = nlohmann::json::parse(R"({"description":"Porch","start":")" + start +
                                          R"(","time":)" + time + R"(,"repeat":)" + repeat + '}');
  const EventElement event = ReadEventBody(body, EventUse::kCreate, {}, errors).event;
  EXPECT_TRUE(errors.empty()) << ErrorText(errors);
  return event;
}

std::vector<std::string> Days(const std::vector<ProbedOccurrence>& occurrences) {
  std::vector<std::string> days;
  for (const auto& occurrence : occurrences) days.push_back(DayText(occurrence.day));
  return days;
}

std::vector<std::string> Times(const std::vector<ProbedOccurrence>& occurrences) {
  std::vector<std::string> times;
  for (const auto& occurrence : occurrences) times.push_back(MomentJson(occurrence.time));
  return times;
}

TEST(Weekday, IsKnownWithoutTheCLibrary) {
  EXPECT_EQ(WeekdayOf({1970, 1, 1}), 5) << "a Thursday";
  EXPECT_EQ(WeekdayOf({2026, 11, 22}), 1) << "a Sunday";
  EXPECT_EQ(WeekdayOf({2026, 11, 21}), 7);
  EXPECT_EQ(WeekdayOf({2000, 2, 29}), 3);
  EXPECT_EQ(WeekdayOf({9999, 12, 31}), 6);
}

TEST(ClockChanges, AreFoundToTheSecond) {
  const ZoneScope zone(kBerlin);
  const auto changes = ClockChangesBetween(Local("2026-01-01"), Local("2027-01-01"));
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_EQ(changes[0].at, 1774746000);  // 2026-03-29 01:00 UTC
  EXPECT_EQ(changes[0].before, 3600);
  EXPECT_EQ(changes[0].after, 7200);
  EXPECT_EQ(changes[1].at, 1792890000);  // 2026-10-25 01:00 UTC
  EXPECT_EQ(changes[1].after, 3600);
  EXPECT_TRUE(ClockChangesBetween(Local("2026-04-01"), Local("2026-10-01")).empty());
}

TEST(ClockChanges, DivideDaysSuchThatEachIsAskedWhenItBegins) {
  const ZoneScope zone(kBerlin);
  const auto spans = SplitAtClockChanges({{2026, 3, 27}, {2026, 10, 27}});
  ASSERT_EQ(spans.size(), 3u);
  EXPECT_EQ(spans[0].counts.to, (DayFields{2026, 3, 29}));
  EXPECT_EQ(spans[1].counts.from, (DayFields{2026, 3, 30}));
  EXPECT_EQ(spans[1].counts.to, (DayFields{2026, 10, 25}));
  EXPECT_EQ(spans[2].asked.from, (DayFields{2026, 10, 26}));
  EXPECT_EQ(spans[2].counts.to, (DayFields{2026, 10, 27}));
}

TEST(ClockChanges, LeaveNoDayOut) {
  for (const char* name :
       {kBerlin, kNewYork, kMidnightGap, "UTC0", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"}) {
    const ZoneScope zone(name);
    for (DayFields from{2026, 3, 1}; from.month < 11; from = DaysAfter(from, 1)) {
      DayFields next = from;
      for (const AskedSpan& span : SplitAtClockChanges({from, {2026, 11, 9}})) {
        EXPECT_EQ(span.counts.from, next) << name;
        EXPECT_LE(span.asked.from, span.counts.from) << name;
        EXPECT_TRUE(BeginsAtMidnight(span.asked.from)) << name << ' ' << DayText(from);
        next = DaysAfter(span.counts.to, 1);
      }
      EXPECT_EQ(next, (DayFields{2026, 11, 10})) << name << ' ' << DayText(from);
    }
  }
}

TEST(Occurrences, AreThoseOfTheRule) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-11-20 12:00:00");
  FakeHouse house;
  const struct {
    const char* repeat;
    const char* start;
    std::vector<std::string> days;
  } rows[] = {
      {"null", "2026-12-01", {"2026-12-01"}},
      {R"({"unit":"day","every":30})", "2026-11-20", {"2026-12-20", "2027-01-19", "2027-02-18"}},
      {R"({"unit":"week","every":2,"on":["mon","fri"]})",
       "2026-11-20",
       {"2026-11-30", "2026-12-04", "2026-12-14"}},
      {R"({"unit":"month"})", "2027-01-31", {"2027-01-31", "2027-03-31", "2027-05-31"}},
      {R"({"unit":"month","every":2,"nth":{"week":"last","weekday":"sat"}})",
       "2026-11-20",
       {"2026-11-28", "2027-01-30", "2027-03-27"}},
      {R"({"unit":"year","nth":{"week":1,"weekday":"mon"}})",
       "2026-05-20",
       {"2027-05-03", "2028-05-01", "2029-05-07"}},
      {R"({"unit":"year","until":"9999-12-31"})",
       "2092-02-29",
       {"2092-02-29", "2096-02-29", "2104-02-29"}},
      {R"({"unit":"day","every":1000000,"until":"9999-12-31"})",
       "1970-01-03",
       {"4707-12-01", "7445-10-27"}},
      {R"({"unit":"week","every":1000,"on":["wed"],"until":"2099-12-31"})",
       "2020-01-08",
       {"2039-03-09", "2058-05-08", "2077-07-07"}},
  };
  for (const auto& row : rows) {
    EventProbe probe(house, Event(row.repeat, row.start));
    EXPECT_EQ(Days(probe.Next({2026, 11, 20}, std::time(nullptr), 3)), row.days) << row.repeat;
  }
}

TEST(Occurrences, OfTodayCountUntilTheirTime) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  EventProbe probe(house, Event(R"({"unit":"day"})"));
  const auto first = [&](const char* now) {
    return DayText(probe.Next(LocalDay(Local(now)), Local(now), 1).at(0).day);
  };
  EXPECT_EQ(first("2026-11-21 06:59:59"), "2026-11-21");
  EXPECT_EQ(first("2026-11-21 07:00:00"), "2026-11-21");
  EXPECT_EQ(first("2026-11-21 07:00:01"), "2026-11-22");
}

TEST(Occurrences, ComeADayLateWhereTheSchedulerCounts24HoursADay) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  EventProbe probe(house, Event(R"({"unit":"day","every":2})", "2026-03-25"));
  // At midnight after the clocks have gone forward, on the 30th, only four times 24 hours have
  // passed since the 25th began, and five on the 31st.
  EXPECT_THAT(Days(probe.On({{2026, 3, 25}, {2026, 4, 3}})),
              ElementsAre("2026-03-25", "2026-03-27", "2026-03-29", "2026-03-30", "2026-04-01",
                          "2026-04-03"));
}

/// The rule in the calendar against the scheduler, where no clock is changed: they have to agree.
TEST(CivilRule, IsTheSchedulersWhereNoClockChanges) {
  const ZoneScope zone("<+0530>-5:30");
  FakeHouse house;
  for (const char* repeat :
       {"null", R"({"unit":"day"})", R"({"unit":"day","every":2})", R"({"unit":"day","every":11})",
        R"({"unit":"week","on":["sun"]})", R"({"unit":"week","every":2,"on":["sun","sat","wed"]})",
        R"({"unit":"week","every":5,"on":["fri","sun"]})", R"({"unit":"month"})",
        R"({"unit":"month","every":5,"until":"2028-08-20"})",
        R"({"unit":"month","nth":{"week":4,"weekday":"thu"}})",
        R"({"unit":"month","every":2,"nth":{"week":"last","weekday":"sun"}})", R"({"unit":"year"})",
        R"({"unit":"year","nth":{"week":1,"weekday":"sat"}})"}) {
    for (const char* start : {"2026-11-20", "2026-11-22", "2027-01-31", "2028-02-29"}) {
      const EventElement event = Event(repeat, start);
      EventProbe probe(house, event);
      ASSERT_TRUE(probe.Stored()) << repeat;
      EXPECT_EQ(probe.Trouble(), "") << repeat;
      const CivilRule rule(*probe.Stored());
      std::vector<std::string> wanted;
      for (DayFields day{2026, 10, 1}; day.year < 2029; day = DaysAfter(day, 1)) {
        if (rule.OccursOn(day)) wanted.push_back(DayText(day));
      }
      EXPECT_FALSE(wanted.empty()) << repeat << ' ' << start;
      EXPECT_EQ(Days(probe.On({{2026, 10, 1}, {2028, 12, 31}})), wanted) << repeat << ' ' << start;
      const auto next = probe.Next({2026, 10, 1}, 0, wanted.size());
      EXPECT_EQ(Days(next), wanted) << repeat << ' ' << start;
    }
  }
}

TEST(OccurrenceTime, OfAClockTimeIsThatOfTheDay) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  const auto times = [&](const char* time, const DayFields& day) {
    EventProbe probe(house, Event(R"({"unit":"day"})", "2026-01-01", time));
    return Times(probe.On({day, day}));
  };
  EXPECT_THAT(times(R"({"base":"clock","at":"07:00"})", {2026, 7, 1}),
              ElementsAre("2026-07-01T07:00:00+02:00"));
  EXPECT_THAT(times(R"({"base":"clock","minutes":1500})", {2026, 11, 20}),
              ElementsAre("2026-11-21T01:00:00+01:00"));
  EXPECT_THAT(times(R"({"base":"clock","minutes":-30})", {2026, 11, 20}),
              ElementsAre("2026-11-19T23:30:00+01:00"));
  EXPECT_THAT(times(R"({"base":"clock","minutes":2880})", {2026, 11, 20}),
              ElementsAre("2026-11-22T00:00:00+01:00"));
  EXPECT_THAT(times(R"({"base":"clock","at":"02:30"})", {2026, 10, 25}),
              ElementsAre("2026-10-25T02:30:00+02:00"))
      << "of two the first";
}

TEST(OccurrenceTime, OfASunTimeFollowsItOverMidnight) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-11-20 12:00:00");
  FakeHouse house;
  const auto time = [&](const char* minutes) {
    EventProbe probe(house, Event(R"({"unit":"day"})", "2026-11-01",
                                  std::string(R"({"base":"sunset","minutes":)") + minutes + '}'));
    return Times(probe.On({{2026, 11, 20}, {2026, 11, 20}})).at(0).substr(0, 11);
  };
  EXPECT_EQ(time("0"), "2026-11-20T");
  EXPECT_EQ(time("600"), "2026-11-21T") << "sunset at about 16:04, and ten hours";
  EXPECT_EQ(time("1440"), "2026-11-21T");
  EXPECT_EQ(time("-1000"), "2026-11-19T");
}

TEST(OccurrenceTime, IsTheSameInTheWinterHalfAndInTheSummerHalf) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  const EventElement event = Event(R"({"unit":"day"})", "2026-01-01", R"({"base":"sunrise"})");
  const auto on = [&](const char* now) {
    const TestClock clock(now);
    EventProbe probe(house, event);
    return Times(probe.On({{2026, 7, 1}, {2026, 7, 1}})).at(0);
  };
  // Berlin, 1 July 2026: 04:47 by the tables of the German weather service.
  EXPECT_EQ(on("2026-07-01 12:00:00").substr(0, 15), "2026-07-01T04:4");
  EXPECT_EQ(on("2026-01-01 12:00:00"), on("2026-07-01 12:00:00"));
}

TEST(Occurrences, OfADayWith25HoursAreThoseOfItsBeginning) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  // Begun in winter: all summer a day begins with one day too few, on 25 October, too; at 23:00,
  // an hour before the 26th, the count is right again.
  EventProbe winter(house, Event(R"({"unit":"day","every":2})", "2026-01-01"));
  EXPECT_THAT(Days(winter.On({{2026, 10, 23}, {2026, 10, 27}})),
              ElementsAre("2026-10-23", "2026-10-25", "2026-10-26"));
  // Begun in summer: at 00:00 the count is right, at 23:00 a day has been added.
  EventProbe summer(house, Event(R"({"unit":"day","every":2})", "2026-07-02"));
  EXPECT_THAT(Days(summer.On({{2026, 10, 23}, {2026, 10, 27}})),
              ElementsAre("2026-10-24", "2026-10-26"));
  EventProbe daily(house, Event(R"({"unit":"day"})", "2026-07-02"));
  EXPECT_EQ(daily.On({{2026, 10, 20}, {2026, 10, 30}}).size(), 11u);
}

}  // namespace
