// When events come, as the API answers it.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

#include "ApiClient.h"
#include "controller/LocalTimeText.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";
/// The clocks go forward at midnight: the day begins at 01:00.
constexpr const char* kMidnightGap = "<-04>4<-03>,M9.1.6/24,M4.1.6/24";

TEST(OccurrenceList, HoldsAllEventsInTheOrderOfTheirTime) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-11-20 12:00:00");
  FakeHouse house;
  ApiClient client(house);
  const auto add = [&](const char* name, const char* at, const char* repeat) {
    const std::string body = std::string(R"({"description":")") + name +
                             R"(","time":{"base":"clock","at":")" + at + R"("},"repeat":)" +
                             repeat + '}';
    EXPECT_EQ(client.Post("/events", body).status, 201);
  };
  add("Late", "22:00", R"({"unit":"day"})");
  add("Early", "06:00", R"({"unit":"day","every":2})");
  auto list = client.Get("/occurrences?from=2026-11-20&to=2026-11-21").Json();
  ASSERT_EQ(list["occurrences"].size(), 3u);
  EXPECT_EQ(list["truncated"], false);
  EXPECT_EQ(list["occurrences"][0], (nlohmann::json{{"event", 2},
                                                    {"description", "Early"},
                                                    {"date", "2026-11-20"},
                                                    {"time", "2026-11-20T06:00:00+01:00"},
                                                    {"base", "clock"}}));
  EXPECT_EQ(list["occurrences"][1]["event"], 1);
  list = client.Get("/occurrences?from=2026-11-20&to=2026-11-21&limit=2").Json();
  EXPECT_EQ(list["occurrences"].size(), 2u);
  EXPECT_EQ(list["truncated"], true);
  list = client.Get("/occurrences?from=2026-11-20&to=2026-11-26&event=2").Json();
  EXPECT_EQ(list["occurrences"].size(), 4u);
  list = client.Get("/occurrences").Json();
  EXPECT_EQ(list["occurrences"].size(), 7u + 4u) << "a week from today";
  EXPECT_EQ(client.Get("/occurrences?from=2026-11-20&to=2036-11-20&limit=10000").status, 200);
}

TEST(OccurrenceList, OfAllIsThatOfEach) {
  for (const char* name : {kBerlin, kNewYork, kMidnightGap}) {
    const ZoneScope zone(name);
    const TestClock clock("2026-02-20 12:00:00");
    FakeHouse house;
    ApiClient client(house);
    for (const char* repeat : {R"({"unit":"day"})", R"({"unit":"day","every":2})",
                               R"({"unit":"week","every":2,"on":["sun"]})"}) {
      const std::string body = R"({"description":")" + std::to_string(house.actors.size()) +
                               R"(","time":{"base":"sunset"},"repeat":)" + repeat + '}';
      ASSERT_EQ(client.Post("/events", body).status, 201);
    }
    const std::string span = "/occurrences?from=2026-02-21&to=2026-12-31&limit=10000";
    const auto all = client.Get(span).Json()["occurrences"];
    for (int id = 1; id <= 3; ++id) {
      std::vector<nlohmann::json> ofAll;
      std::copy_if(all.begin(), all.end(), std::back_inserter(ofAll),
                   [id](const nlohmann::json& occurrence) { return occurrence["event"] == id; });
      const auto alone = client.Get(span + "&event=" + std::to_string(id)).Json()["occurrences"];
      EXPECT_EQ(nlohmann::json(ofAll), alone) << name << ' ' << id;
      EXPECT_EQ(alone.size() == 314u, id == 1) << name << ": every day";
    }
  }
}

TEST(OccurrenceList, RefusesSpansThatAreNone) {
  FakeHouse house;
  ApiClient client(house);
  for (const char* query :
       {"from=2026-11-21&to=2026-11-20", "from=2026-02-31", "from=", "to=x", "limit=0",
        "limit=10001", "limit=1e3", "event=0", "event=x", "from=2026-11-20&to=2036-11-21", "days=3",
        "from=2026-11-20&from=2026-11-21"}) {
    EXPECT_EQ(client.Get(std::string("/occurrences?") + query).Problem(), "malformed") << query;
  }
  EXPECT_EQ(client.Get("/occurrences?event=7").Problem(), "not-found");
}

TEST(Next, IsFoundWhereTheSchedulerLooksNoFurther) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-03-01 12:00:00");
  FakeHouse house;
  ApiClient client(house);
  const auto next = [&](const std::string& start, const std::string& repeat) {
    const std::string body = R"({"description":")" + std::to_string(house.actors.size()) +
                             R"(","start":")" + start +
                             R"(","time":{"base":"clock","at":"07:00"},"repeat":)" + repeat + '}';
    const auto answer = client.Post("/events", body);
    EXPECT_EQ(answer.status, 201) << answer.text;
    return answer.Json()["next"];
  };
  EXPECT_EQ(next("2025-08-31", R"({"unit":"month"})"), "2026-03-31T07:00:00+02:00");
  EXPECT_EQ(next("2024-02-29", R"({"unit":"year"})"), "2028-02-29T07:00:00+01:00");
  EXPECT_EQ(next("2026-01-30", R"({"unit":"month"})"), "2026-03-30T07:00:00+02:00");
  EXPECT_EQ(next("2020-01-01", R"({"unit":"month","until":"2026-02-01"})"), nullptr);
  EXPECT_EQ(next("2020-01-01", "null"), nullptr);
}

constexpr const char* kEveryOther =
    R"({"description":"Porch","start":"2026-03-25","time":{"base":"clock","at":"18:00"},
        "repeat":{"unit":"day","every":2}})";

PlannedOccurrence Pending(unsigned long event) {
  PlannedOccurrence occurrence;
  occurrence.event = event;
  return occurrence;
}

TEST(Next, IsThatOfTodaysListWhereTheDayBeganWithAnother) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-03-30 12:00:00");
  FakeHouse house;
  house.todayDate = {2026, 3, 30};
  ApiClient client(house);
  // At the midnight with which the 30th began the scheduler counted four days, at noon it counts
  // five. An event that was there comes today, and one that is added comes on the 31st not either.
  EXPECT_EQ(client.Post("/events", kEveryOther).Json()["next"], "2026-04-01T18:00:00+02:00");
  house.today = {Pending(1)};
  EXPECT_EQ(client.Ask("PATCH", "/events/1", R"({"time":{"at":"18:30"}})").Json()["next"],
            "2026-03-30T18:30:00+02:00");
}

TEST(Next, IsThatOfTodaysListAlsoWhereTheListingLeavesItOut) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-03-30 12:00:00");
  FakeHouse house;
  house.todayDate = {2026, 3, 30};
  PlannedOccurrence today = Pending(1);
  today.planned = LocalInstant({2026, 3, 30}, 18, 30);
  house.today = {today};
  ApiClient client(house);
  // By the calendar and at noon it comes on the 30th; at midnight a day less is counted.
  EXPECT_EQ(client
                .Post("/events",
                      R"({"description":"Porch","start":"2026-03-24",
                          "time":{"base":"clock","at":"18:30"},"repeat":{"unit":"day","every":2}})")
                .Json()["next"],
            "2026-03-30T18:30:00+02:00");
}

TEST(Next, LeavesOutTheDayOnWhichAnEventHasHadItsTurn) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-03-30 12:00:00");
  FakeHouse house;
  house.todayDate = {2026, 3, 30};
  ApiClient client(house);
  // It came this morning and was then moved to the evening, where it is held back.
  house.today = {Pending(1), Pending(2)};
  for (PlannedOccurrence& occurrence : house.today) occurrence.state = OccurrenceState::kFired;
  const auto next = [&client](const std::string& description, const std::string& repeat) {
    return client
        .Post("/events", R"({"description":")" + description +
                             R"(","time":{"base":"clock","at":"18:00"},"repeat":)" + repeat + '}')
        .Json()["next"];
  };
  EXPECT_EQ(next("Porch", R"({"unit":"day"})"), "2026-03-31T18:00:00+02:00");
  EXPECT_EQ(next("Gate", "null"), nullptr);
  EXPECT_EQ(next("Garden", "null"), "2026-03-30T18:00:00+02:00") << "it has not come yet";
}

TEST(Next, OfAnEventThatIsNotThereYetIsWhatItsDayWillList) {
  const ZoneScope zone(kBerlin);
  FakeHouse house;
  ApiClient client(house);
  const auto first = [&](const char* now) {
    const TestClock clock(now);
    return client.Post("/preview", kEveryOther).Json()["occurrences"][0]["date"];
  };
  EXPECT_EQ(first("2026-03-30 12:00:00"), "2026-03-30") << "though the scheduler counts on";
  EXPECT_EQ(first("2026-03-30 00:30:00"), "2026-03-30");
  EXPECT_EQ(first("2026-03-30 18:00:01"), "2026-04-01");
  EXPECT_EQ(first("2026-03-31 12:00:00"), "2026-04-01") << "though the scheduler would fire it";
}

}  // namespace
