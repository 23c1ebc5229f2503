#include <gtest/gtest.h>

#include "ApiClient.h"
#include "controller/LocalTimeText.h"
#include "controller/api/OccurrenceTime.h"
#include "controller/api/SunEstimate.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;

constexpr Place kTromso{69.65, 18.96};

TEST(Polar, IsKnownByTheDay) {
  const struct {
    const char* why;
    DayFields day;
    Place place;
    Polar polar;
  } rows[] = {
      // Tromsø: midnight sun 20 May to 22 July, polar night 27 November to 15 January.
      {"midnight sun", {2026, 6, 21}, kTromso, Polar::kDay},
      {"polar night", {2026, 12, 21}, kTromso, Polar::kNight},
      {"spring", {2026, 4, 1}, kTromso, Polar::kNo},
      {"before the midnight sun", {2026, 5, 15}, kTromso, Polar::kNo},
      {"in the midnight sun", {2026, 5, 24}, kTromso, Polar::kDay},
      {"the other pole has night", {2026, 6, 21}, {-75, 0}, Polar::kNight},
      {"at the pole itself", {2026, 6, 21}, {90, 0}, Polar::kDay},
      {"at the other pole itself", {2026, 6, 21}, {-90, 0}, Polar::kNight},
      {"Berlin never", {2026, 12, 21}, {52.5, 13.4}, Polar::kNo},
      {"the equator never", {2026, 6, 21}, {0, 0}, Polar::kNo},
  };
  for (const auto& row : rows) EXPECT_EQ(PolarOn(row.day, row.place), row.polar) << row.why;
}

TEST(SunEstimate, IsWithinMinutesOfTheAlmanac) {
  const auto minutes = [](const DayFields& day, OffsetBase base, const Place& place) {
    return static_cast<double>(SunEstimate(day, base, place) -
                               DaysBetween({1970, 1, 1}, day) * 86400) /
           60;
  };
  // Greenwich, 20 March 2026: sunrise 06:05 UTC, sunset 18:14 UTC.
  EXPECT_NEAR(minutes({2026, 3, 20}, OffsetBase::kSunrise, {51.48, 0}), 365, 5);
  EXPECT_NEAR(minutes({2026, 3, 20}, OffsetBase::kSunset, {51.48, 0}), 1094, 5);
  // Auckland, 21 June 2026: sunrise 07:33 +12:00, which is 19:33 UTC of the day before.
  EXPECT_NEAR(minutes({2026, 6, 21}, OffsetBase::kSunrise, {-36.85, 174.76}), 7 * 60 + 33 - 720, 5);
}

TEST(InstantNear, TakesTheShortWay) {
  const ZoneScope zone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(InstantNear(Local("2026-11-20 16:10:30"), 16, 4), Local("2026-11-20 16:04:00"));
  EXPECT_EQ(InstantNear(Local("2026-11-20 23:50:00"), 0, 10), Local("2026-11-21 00:10:00"));
  EXPECT_EQ(InstantNear(Local("2026-11-20 00:10:00"), 23, 50), Local("2026-11-19 23:50:00"));
  EXPECT_EQ(InstantNear(Local("2026-03-29 01:00:00"), 4, 0), Local("2026-03-29 04:00:00"));
  EXPECT_EQ(InstantNear(Local("2026-10-25 00:30:00"), 4, 0), Local("2026-10-25 04:00:00"));
  const std::time_t near = Local("2026-03-29 01:30:00");
  EXPECT_EQ(InstantNear(near, 2, 30), near) << "there is no such time";
  EXPECT_EQ(InstantNear(near, -1, -1), near);
}

class SunTest : public testing::Test {
 protected:
  const ZoneScope zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  const TestClock clock{"2026-11-20 12:00:00"};
  FakeHouse house;
  ApiClient client{house};
};

TEST_F(SunTest, AnswersADayWithItsOffset) {
  const auto sun = client.Get("/sun?date=2026-11-21").Json();
  EXPECT_EQ(sun["date"], "2026-11-21");
  EXPECT_EQ(sun["polar"], nullptr);
  EXPECT_EQ(sun["place"], (nlohmann::json{{"latitude", 52.5}, {"longitude", 13.3667}}));
  // Berlin by the tables: 07:34 to 16:04.
  EXPECT_EQ(sun["sunrise"].get<std::string>().substr(0, 15), "2026-11-21T07:3");
  EXPECT_EQ(sun["sunset"].get<std::string>().substr(0, 15), "2026-11-21T16:0");
  EXPECT_EQ(sun["sunset"].get<std::string>().substr(19), "+01:00");
  const auto summer = client.Get("/sun?date=2026-06-21").Json();
  EXPECT_EQ(summer["sunrise"].get<std::string>().substr(0, 15), "2026-06-21T04:4");
  EXPECT_EQ(summer["sunrise"].get<std::string>().substr(19), "+02:00");
  EXPECT_EQ(client.Get("/sun").Json()["date"], "2026-11-20");
}

TEST_F(SunTest, AnswersAYearDayByDay) {
  const auto year = client.Get("/sun/year?year=2028").Json();
  EXPECT_EQ(year["year"], 2028);
  ASSERT_EQ(year["days"].size(), 366u);
  EXPECT_EQ(year["days"][59]["date"], "2028-02-29");
  EXPECT_EQ(year["days"][0]["offset"], 60);
  EXPECT_EQ(year["days"][200]["offset"], 120);
  for (const auto& day : year["days"]) {
    EXPECT_EQ(day["sunrise"].get<std::string>().substr(0, 10), day["date"]);
    EXPECT_EQ(day["sunset"].get<std::string>().substr(0, 10), day["date"]);
    EXPECT_LT(day["sunrise"], day["sunset"]);
  }
  EXPECT_EQ(client.Get("/sun/year").Json()["year"], 2026);
}

TEST_F(SunTest, RefusesDaysThatAreNone) {
  for (const char* target : {"/sun?date=2026-02-30", "/sun?date=today", "/sun?day=1",
                             "/sun/year?year=1969", "/sun/year?year=10000", "/sun/year?year="}) {
    EXPECT_EQ(client.Get(target).Problem(), "malformed") << target;
  }
}

TEST(SunAtThePole, TellsTheNearestDaysTimes) {
  const ZoneScope zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const TestClock clock("2026-06-21 12:00:00");
  FakeHouse house(kTromso);
  ApiClient client(house);
  const auto sun = client.Get("/sun?date=2026-06-21").Json();
  EXPECT_EQ(sun["polar"], "day");
  EXPECT_TRUE(sun["sunrise"].is_string());
  EXPECT_EQ(client.Get("/sun?date=2026-12-21").Json()["polar"], "night");
}

}  // namespace
