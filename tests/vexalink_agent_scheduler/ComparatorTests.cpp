// The seven exported functions.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "astro/AstroClock.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/Zones.h"
#include "vexalink_agent_scheduler/vxw/Comparators.h"

namespace {

class Comparators : public testing::Test {
 protected:
  ZoneScope zone{zones::kUtc};
  TestClock clock{"2024-03-06 07:00:00"};  // a Wednesday

  void BeyondTheCalendar() { clock.Set(std::numeric_limits<std::time_t>::max()); }
};

TEST_F(Comparators, ClockTimeComparesInstants) {
  const int now = static_cast<int>(Local("2024-03-06 07:00:00"));
  const struct {
    const char* why;
    int from, to, result;
  } rows[] = {
      {"now to now", now, now, 1},       {"round it", now - 1, now + 1, 1},
      {"until now", now - 1, now, 1},    {"from now", now, now + 1, 1},
      {"past", now - 2, now - 1, 0},     {"to come", now + 1, now + 2, 0},
      {"reversed", now + 1, now - 1, 0}, {"everything", -2147483647 - 1, 2147483647, 1},
  };
  for (const auto& row : rows) EXPECT_EQ(CompareClockTime(row.from, row.to), row.result) << row.why;
}

TEST_F(Comparators, ClockTimeBeyond32BitsIsLaterThanAll) {
  clock.Set(4294967296);
  EXPECT_EQ(CompareClockTime(0, 2147483647), 0);
  clock.Set(-4294967296);
  EXPECT_EQ(CompareClockTime(-2147483647 - 1, 0), 0);
}

TEST_F(Comparators, TodayComparesWeekdaysFromSunday) {
  const char* const week[] = {"2024-03-03 12:00:00", "2024-03-04 12:00:00", "2024-03-05 12:00:00",
                              "2024-03-06 12:00:00", "2024-03-07 12:00:00", "2024-03-08 12:00:00",
                              "2024-03-09 12:00:00"};
  for (int day = 1; day <= 7; ++day) {
    clock.Set(week[day - 1]);
    EXPECT_EQ(CompareToday(day, day), 1) << day;
    EXPECT_EQ(CompareToday(2, 6), day >= 2 && day <= 6 ? 1 : 0) << day << ": Monday to Friday";
    EXPECT_EQ(CompareToday(6, 2), 0) << day << ": no range wraps";
    EXPECT_EQ(CompareToday(1, 7), 1) << day;
    EXPECT_EQ(CompareToday(0, 0), 0) << day;
  }
}

TEST_F(Comparators, DateMonthAndYearComparePartsOfTheDate) {
  const struct {
    const char* why;
    int (*compare)(int, int);
    int from, to, result;
  } rows[] = {
      {"day, at it", CompareDate, 6, 6, 1},
      {"day, from it", CompareDate, 6, 31, 1},
      {"day, until it", CompareDate, 1, 6, 1},
      {"day, below", CompareDate, 1, 5, 0},
      {"day, above", CompareDate, 7, 31, 0},
      {"day, reversed", CompareDate, 31, 1, 0},
      {"month, at it", CompareMonth, 3, 3, 1},
      {"month, below", CompareMonth, 1, 2, 0},
      {"month, above", CompareMonth, 4, 12, 0},
      {"month, over the turn of the year", CompareMonth, 11, 3, 0},
      {"year, at it", CompareYear, 2024, 2024, 1},
      {"year, below", CompareYear, 0, 2023, 0},
      {"year, above", CompareYear, 2025, 9999, 0},
      {"year, of two digits", CompareYear, 24, 24, 0},
  };
  for (const auto& row : rows) EXPECT_EQ(row.compare(row.from, row.to), row.result) << row.why;
}

TEST_F(Comparators, YearHoldsThroughoutTheYear) {
  for (const char* moment : {"2024-01-01 00:00:00", "2024-12-31 23:59:59"}) {
    clock.Set(moment);
    EXPECT_EQ(CompareYear(2024, 2024), 1) << moment;
  }
  clock.Set("2025-01-01 00:00:00");
  EXPECT_EQ(CompareYear(2024, 2024), 0);
}

TEST_F(Comparators, ReadTheLocalCalendar) {
  const ZoneScope newYork(zones::kNewYork);
  clock.Set(1704067200);  // 2024-01-01 00:00 UTC, still 2023 in New York, a Sunday
  EXPECT_EQ(CompareYear(2023, 2023), 1);
  EXPECT_EQ(CompareMonth(12, 12), 1);
  EXPECT_EQ(CompareDate(31, 31), 1);
  EXPECT_EQ(CompareToday(1, 1), 1);
}

TEST_F(Comparators, LeapFollowsTheGregorianRule) {
  const struct {
    const char* moment;
    int leap;
  } rows[] = {{"2000-06-01 00:00:00", 1}, {"2100-06-01 00:00:00", 0}, {"2024-01-01 00:00:00", 1},
              {"2023-12-31 23:59:59", 0}, {"1900-06-01 00:00:00", 0}, {"2400-06-01 00:00:00", 1}};
  for (const auto& row : rows) {
    clock.Set(row.moment);
    EXPECT_EQ(CompareLeap(), row.leap) << row.moment;
  }
}

TEST_F(Comparators, WhereTheMomentCannotBeConvertedItsPartsAreZero) {
  BeyondTheCalendar();
  EXPECT_EQ(CompareToday(0, 0), 1);
  EXPECT_EQ(CompareToday(1, 7), 0);
  EXPECT_EQ(CompareDate(0, 0), 1);
  EXPECT_EQ(CompareDate(1, 31), 0);
  EXPECT_EQ(CompareMonth(0, 12), 1);
  EXPECT_EQ(CompareMonth(1, 12), 0);
  EXPECT_EQ(CompareYear(0, 0), 1);
  EXPECT_EQ(CompareYear(1, 9999), 0);
  EXPECT_EQ(CompareLeap(), 1) << "on purpose";
}

// The last second of today's sunset at a place, found by asking.
int LastSecond(double latitude, double longitude) {
  int low = static_cast<int>(std::time(nullptr)) - 2 * 86400;
  int high = low + 4 * 86400;
  while (high - low > 1) {
    const int middle = low + (high - low) / 2;
    (CompareAstroClockTime(middle, latitude, longitude) != 0 ? low : high) = middle;
  }
  return low;
}

// Midnight UTC of 6 March 2024 plus minutes.
double Expected(const char* day, float minutes) {
  const ZoneScope utc(zones::kUtc);
  return static_cast<double>(Local(day)) + 60.0 * minutes;
}

TEST_F(Comparators, AstroClockTimeHoldsUntilTodaysSunset) {
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kKolkata, zones::kStJohns}) {
    const ZoneScope other(name);
    clock.Set("2024-03-06 07:00:00");
    EXPECT_NEAR(LastSecond(51.5, 0),
                Expected("2024-03-06", AstroClock::calcSunsetGMT(66, 51.5f, 0)), 1.01)
        << name;
  }
}

TEST_F(Comparators, AstroClockTimeClampsTheSite) {
  clock.Set("2024-03-20 07:00:00");
  EXPECT_EQ(LastSecond(89, 0), LastSecond(85, 0));
  EXPECT_EQ(LastSecond(-1e300, 0), LastSecond(-85, 0));
  EXPECT_EQ(LastSecond(40, 179), LastSecond(40, 175));
  EXPECT_NE(LastSecond(40, 170), LastSecond(40, 175));
}

TEST_F(Comparators, AstroClockTimeSearchesInPolarRegions) {
  const struct {
    const char* why;
    const char* day;
    int dayOfYear;
    float latitude;
    float (*sunset)(int, float, float);
  } rows[] = {
      {"north, midnight sun: back", "2023-06-21", 172, 70, AstroClock::findRecentSunset},
      {"north, polar night: on", "2023-12-21", 355, 70, AstroClock::findNextSunset},
      {"north, polar night in January: on", "2023-01-05", 5, 70, AstroClock::findNextSunset},
      {"south, polar night: on", "2023-06-21", 172, -70, AstroClock::findNextSunset},
      {"south, midnight sun: back", "2023-12-21", 355, -70, AstroClock::findRecentSunset},
      {"south, in January: back over the turn of the year", "2023-01-05", 5, -70,
       AstroClock::findRecentSunset},
      {"just south of the circle", "2023-06-21", 172, 66, AstroClock::findRecentSunset},
      {"leap day counted", "2024-12-31", 366, 51.5f, AstroClock::calcSunsetGMT},
  };
  for (const auto& row : rows) {
    clock.Set(std::string(row.day) + " 12:00:00");
    EXPECT_NEAR(LastSecond(row.latitude, 15),
                Expected(row.day, row.sunset(row.dayOfYear, row.latitude, 15)), 1.01)
        << row.why;
  }
}

TEST_F(Comparators, AstroClockTimeWithoutAPlaceIsNever) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const int t : {-2147483647 - 1, -1, 0, 2147483647}) {
    EXPECT_EQ(CompareAstroClockTime(t, nan, 0), 0);
    EXPECT_EQ(CompareAstroClockTime(t, 0, nan), 0);
  }
}

}  // namespace
