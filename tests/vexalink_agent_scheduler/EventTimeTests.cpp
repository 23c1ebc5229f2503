// At which instant an event fires on a day.

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "astro/AstroClock.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

using Scheduler::kClock;
using Scheduler::kSunrise;
using Scheduler::kSunset;

constexpr double kLatitude = 51.5;

VxTime Clock(VxTime day, int minutes) {
  return Event::CalculateEventTime(day, kClock, minutes, 0, 0);
}

TEST(ClockTime, CountsMinutesFromLocalMidnight) {
  const struct {
    const char* why;
    int minutes;
    const char* when;
  } rows[] = {
      {"midnight", 0, "2024-03-06 00:00:00"},
      {"half past seven", 450, "2024-03-06 07:30:00"},
      {"the last minute", 1439, "2024-03-06 23:59:00"},
      {"the next midnight", 1440, "2024-03-07 00:00:00"},
      {"two days on", 3000, "2024-03-08 02:00:00"},
      {"the minute before", -1, "2024-03-05 23:59:00"},
      {"a day before", -1440, "2024-03-05 00:00:00"},
  };
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kLordHowe, zones::kKolkata}) {
    const ZoneScope zone(name);
    for (const char* time : {"2024-03-06 00:00:00", "2024-03-06 12:00:00", "2024-03-06 23:59:59"}) {
      for (const auto& row : rows) {
        EXPECT_EQ(Text(Clock(At(time), row.minutes)), row.when) << row.why << ", " << name;
      }
    }
  }
}

TEST(ClockTime, IsWhatTheClockShowsOnDaysOfAChange) {
  const ZoneScope zone(zones::kNewYork);
  EXPECT_EQ(Text(Clock(Noon("2024-03-10"), 720)), "2024-03-10 12:00:00") << "11 hours later";
  EXPECT_EQ(Text(Clock(Noon("2024-11-03"), 720)), "2024-11-03 12:00:00") << "13 hours later";
  EXPECT_EQ(Clock(Noon("2024-11-03"), 90).Seconds(), 1730611800) << "1:30, the first of two";
  const std::string skipped = Text(Clock(Noon("2024-03-10"), 150));
  EXPECT_TRUE(skipped == "2024-03-10 03:30:00" || skipped == "2024-03-10 01:30:00") << skipped;
}

TEST(ClockTime, TakesAnyNumberOfMinutes) {
  const ZoneScope zone(zones::kUtc);
  const VxTime day = Midnight("2024-03-06");
  EXPECT_EQ(Clock(day, INT_MAX).Seconds(), day.Seconds() + 60LL * INT_MAX);
  EXPECT_EQ(Clock(day, INT_MIN).Seconds(), day.Seconds() + 60LL * INT_MIN);
}

TEST(ClockTime, OfADayThatCannotBeConvertedCountsFromYear0) {
  const ZoneScope zone(zones::kUtc);
  const VxTime day(std::numeric_limits<std::time_t>::max());
  EXPECT_EQ(Clock(day, 61), VxTime(0, 0, 0, 0, 61, 0, -1));
}

TEST(EventTime, AppliesTheRecordsOwnSettings) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 00:00:00");
  Event event = Daily("2024-03-01", 1);
  event.SetLatLong(kLatitude, 10);
  event.offset_minutes = -17;
  for (const auto offset : {kClock, kSunrise, kSunset}) {
    event.offset = offset;
    EXPECT_EQ(event.EventTime(Noon("2024-06-21")),
              Event::CalculateEventTime(Noon("2024-06-21"), offset, -17, kLatitude, 10));
  }
}

TEST(EventTime, OfAnUnknownBaseIsTheDateAndIsRecorded) {
  const ZoneScope zone(zones::kUtc);
  for (const int offset : {3, -1, 17, INT_MAX, INT_MIN}) {
    const AssertLines asserts;
    const VxTime date = At("2024-03-06 07:08:09");
    EXPECT_EQ(Event::CalculateEventTime(date, static_cast<Scheduler::OFFSET_TYPE>(offset), 30,
                                        kLatitude, 0),
              date)
        << "unchanged, the minutes too";
    EXPECT_EQ(asserts.lines, std::vector<int>{233});
  }
}

// Midnight UTC of a date plus the minutes that the sun's formulas give, to the second.
void ExpectAt(VxTime actual, const std::string& utcMidnight, float minutes, long off,
              const std::string& why) {
  std::time_t midnight = 0;
  {
    const ZoneScope utc(zones::kUtc);
    midnight = Local(utcMidnight);
  }
  const double expected = static_cast<double>(midnight) + 60.0 * minutes + static_cast<double>(off);
  EXPECT_NEAR(static_cast<double>(actual.Seconds()), expected, 1.01) << why;
}

constexpr int kMidsummer = 173;  // 21 June 2024
constexpr int kMidwinter = 356;  // 21 December 2024

TEST(SunTime, IsTheInstantOfTheSunWhateverTheZoneAndTheSeason) {
  const struct {
    const char* why;
    const char* zone;
    float longitude;
  } rows[] = {
      {"Greenwich", zones::kUtc, 0},
      {"five hours behind, clocks changed", zones::kNewYork, -74},
      {"five and a half ahead", zones::kKolkata, 77},
      {"three and a half behind", zones::kStJohns, -52.7f},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    for (const char* now : {"2024-01-15 12:00:00", "2024-07-15 12:00:00"}) {
      const TestClock clock(now);
      const std::string why = std::string(row.why) + ", seen from " + now;
      const double east = row.longitude;
      ExpectAt(Event::CalculateEventTime(Noon("2024-06-21"), kSunrise, 0, kLatitude, east),
               "2024-06-21", AstroClock::calcSunriseGMT(kMidsummer, 51.5f, row.longitude), 0, why);
      ExpectAt(Event::CalculateEventTime(Noon("2024-06-21"), kSunset, 0, kLatitude, east),
               "2024-06-21", AstroClock::calcSunsetGMT(kMidsummer, 51.5f, row.longitude), 0, why);
      ExpectAt(Event::CalculateEventTime(Noon("2024-12-21"), kSunset, 0, kLatitude, east),
               "2024-12-21", AstroClock::calcSunsetGMT(kMidwinter, 51.5f, row.longitude), 0, why);
    }
  }
}

// The flag of the present moment is worth an hour, whatever the zone's summer time is.
TEST(SunTime, TakesThePresentFlagAsOneHour) {
  const struct {
    const char* why;
    const char* zone;
    const char* summer;
    long seconds;  // by which it comes out late while summer time is in force
  } rows[] = {
      {"half an hour of it is half an hour too much", zones::kLordHowe, "2024-01-15 12:00:00",
       1800},
      {"of two hours one is missing", zones::kTroll, "2024-07-15 12:00:00", -3600},
      {"of three hours two are missing", zones::kThreeHours, "2024-07-15 12:00:00", -7200},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    const TestClock clock(row.summer);
    const std::string today = std::string(row.summer).substr(0, 10);
    const int day = today == "2024-01-15" ? 15 : 197;
    ExpectAt(Event::CalculateEventTime(Noon(today), kSunrise, 0, -31.5, 20), today,
             AstroClock::calcSunriseGMT(day, -31.5f, 20), row.seconds, row.why);
  }
}

TEST(SunTime, AddsTheMinutesAfterwards) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-06 12:00:00");
  const VxTime day = Noon("2024-03-09");
  const VxTime sunrise = Event::CalculateEventTime(day, kSunrise, 0, 40.7, -74);
  const auto shifted = [&](int minutes) {
    return Event::CalculateEventTime(day, kSunrise, minutes, 40.7, -74).Seconds() -
           sunrise.Seconds();
  };
  EXPECT_EQ(shifted(-30), -1800);
  EXPECT_EQ(shifted(30), 1800);
  EXPECT_EQ(shifted(1440), 86400) << "seconds, not a civil day: the clocks change that night";
  EXPECT_EQ(shifted(INT_MAX), 60LL * INT_MAX);
  EXPECT_EQ(shifted(INT_MIN), 60LL * INT_MIN);
}

TEST(SunTime, BelongsToTheLocalDate) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-06 12:00:00");
  const VxTime expected = Event::CalculateEventTime(Noon("2024-06-21"), kSunset, 0, 40.7, -74);
  for (const char* time : {"2024-06-21 00:00:00", "2024-06-21 23:59:59"}) {
    EXPECT_EQ(Event::CalculateEventTime(At(time), kSunset, 0, 40.7, -74), expected)
        << time << ", whatever date it is in Greenwich";
  }
}

TEST(SunTime, CountsTheDayOfTheYearWithLeapDays) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 12:00:00");
  const struct {
    const char* date;
    int day;
  } rows[] = {
      {"2024-01-01", 1},   {"2024-02-29", 60}, {"2024-03-01", 61},
      {"2024-12-31", 366}, {"2023-03-01", 60}, {"2023-12-31", 365},
      {"2100-03-01", 60},  {"2000-03-01", 61}, {"2023-09-30", 273},
  };
  for (const auto& row : rows) {
    ExpectAt(Event::CalculateEventTime(Noon(row.date), kSunrise, 0, kLatitude, 0), row.date,
             AstroClock::calcSunriseGMT(row.day, 51.5f, 0), 0, row.date);
  }
}

TEST(SunTime, ClampsTheSite) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-06 12:00:00");
  const VxTime day = Noon("2024-03-20");
  const auto sunset = [&](double latitude, double longitude) {
    return Event::CalculateEventTime(day, kSunset, 0, latitude, longitude);
  };
  EXPECT_EQ(sunset(89, 0), sunset(85, 0));
  EXPECT_EQ(sunset(-89, 0), sunset(-85, 0));
  EXPECT_NE(sunset(84, 0), sunset(85, 0));
  EXPECT_EQ(sunset(40, -179), sunset(40, -175));
  EXPECT_EQ(sunset(40, 179), sunset(40, 175));
  EXPECT_EQ(sunset(1e300, -1e300), sunset(85, -175)) << "what no float holds";
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(sunset(infinity, -infinity), sunset(85, -175));
}

using Operation = float (*)(int, float, float);

TEST(SunTime, BorrowsADayWhereTheSunDoesNotRiseOrSet) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2023-03-06 12:00:00");
  const struct {
    const char* why;
    const char* date;
    int day;
    float latitude;
    Operation sunrise, sunset;
  } rows[] = {
      {"north, midnight sun: the last one", "2023-06-21", 172, 70, AstroClock::findRecentSunrise,
       AstroClock::findRecentSunset},
      {"north, polar night: the next one", "2023-12-21", 355, 70, AstroClock::findNextSunrise,
       AstroClock::findNextSunset},
      {"north, polar night in January", "2023-01-05", 5, 70, AstroClock::findNextSunrise,
       AstroClock::findNextSunset},
      {"south, polar night: the next one", "2023-06-21", 172, -70, AstroClock::findNextSunrise,
       AstroClock::findNextSunset},
      {"south, midnight sun: the last one", "2023-12-21", 355, -70, AstroClock::findRecentSunrise,
       AstroClock::findRecentSunset},
      {"south, midnight sun in January: the last one, of the year before", "2023-01-05", 5, -70,
       AstroClock::findRecentSunrise, AstroClock::findRecentSunset},
      {"south of the circle the midnight sun all but reaches", "2023-06-21", 172, 66,
       AstroClock::findRecentSunrise, AstroClock::findRecentSunset},
      {"north of the southern circle as well", "2023-12-21", 355, -66,
       AstroClock::findRecentSunrise, AstroClock::findRecentSunset},
      {"the sun rises and sets", "2023-06-21", 172, 60, AstroClock::calcSunriseGMT,
       AstroClock::calcSunsetGMT},
      {"and at the equinox everywhere", "2023-03-20", 79, 80, AstroClock::calcSunriseGMT,
       AstroClock::calcSunsetGMT},
  };
  for (const auto& row : rows) {
    if (row.sunrise != AstroClock::calcSunriseGMT) {
      ASSERT_TRUE(std::isnan(AstroClock::calcSunriseGMT(row.day, row.latitude, 15))) << row.why;
    }
    ExpectAt(Event::CalculateEventTime(Noon(row.date), kSunrise, 0, row.latitude, 15), row.date,
             row.sunrise(row.day, row.latitude, 15), 0, row.why);
    ExpectAt(Event::CalculateEventTime(Noon(row.date), kSunset, 0, row.latitude, 15), row.date,
             row.sunset(row.day, row.latitude, 15), 0, row.why);
  }
}

TEST(SunTime, OfNoPlaceIsMinusOneSecond) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-06 12:00:00");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const int minutes : {0, 30, -30}) {
    for (const auto base : {kSunrise, kSunset}) {
      EXPECT_EQ(Event::CalculateEventTime(Noon("2024-06-21"), base, minutes, nan, 0), VxTime(-1));
      EXPECT_EQ(Event::CalculateEventTime(Noon("2024-06-21"), base, minutes, 40, nan), VxTime(-1));
    }
  }
}

TEST(SunTime, FollowsAChangeOfTheZoneAndOfThePresent) {
  const VxTime day(1718971200);  // 2024-06-21 12:00 UTC
  TestClock clock(1705320000);   // 2024-01-15 12:00 UTC
  for (int round = 0; round < 2; ++round) {
    {
      const ZoneScope zone(zones::kLordHowe);
      const VxTime inSummer = Event::CalculateEventTime(day, kSunset, 0, -31.5, 159);
      clock.Set(1721044800);  // July: the flag is down
      const VxTime inWinter = Event::CalculateEventTime(day, kSunset, 0, -31.5, 159);
      EXPECT_EQ(inSummer.Seconds() - inWinter.Seconds(), 1800);
      clock.Set(1705320000);
    }
    const ZoneScope zone(zones::kUtc);
    ExpectAt(Event::CalculateEventTime(day, kSunset, 0, -31.5, 159), "2024-06-21",
             AstroClock::calcSunsetGMT(kMidsummer, -31.5f, 159), 0, "UTC");
  }
}

}  // namespace
