#include <cmath>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>

#include "astro/AstroClock.h"
#include "tests/astro/AstroReference.h"
#include "tests/support/TestClock.h"

namespace {

using reference::Sun;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(AstroClock, ClampsLatitudeAndLongitudeEachForItself) {
  const struct {
    const char* why;
    float latitude, longitude, clampedLatitude, clampedLongitude;
  } rows[] = {
      {"both beyond", 90, -200, 85, -175},
      {"exactly at the limits", 85, 175, 85, 175},
      {"exactly at the other limits", -85, -175, -85, -175},
      {"just above", std::nextafter(85.0f, 90.0f), std::nextafter(175.0f, 180.0f), 85, 175},
      {"just below", std::nextafter(85.0f, 0.0f), std::nextafter(175.0f, 0.0f),
       std::nextafter(85.0f, 0.0f), std::nextafter(175.0f, 0.0f)},
      {"latitude alone", -90, 10, -85, 10},
      {"longitude alone", 10, 180, 10, 175},
      {"inside", 51.5f, -0.1f, 51.5f, -0.1f},
      {"infinite", kInfinity, -kInfinity, 85, -175},
  };
  for (const auto& row : rows) {
    float latitude = row.latitude;
    float longitude = row.longitude;
    AstroClock::FixupLatAndLong(latitude, longitude);
    EXPECT_EQ(latitude, row.clampedLatitude) << row.why;
    EXPECT_EQ(longitude, row.clampedLongitude) << row.why;
  }
}

TEST(AstroClock, LeavesNaNUnclamped) {
  float latitude = kNaN;
  float longitude = 200;
  AstroClock::FixupLatAndLong(latitude, longitude);
  EXPECT_TRUE(std::isnan(latitude));
  EXPECT_EQ(longitude, 175) << "the other one is clamped all the same";
  latitude = 90;
  longitude = kNaN;
  AstroClock::FixupLatAndLong(latitude, longitude);
  EXPECT_EQ(latitude, 85);
  EXPECT_TRUE(std::isnan(longitude));
}

TEST(AstroClock, KnowsGregorianLeapYears) {
  const struct {
    const char* why;
    int year;
    bool leap;
  } rows[] = {
      {"a fourth century", 2000, true},
      {"a century", 1900, false},
      {"a fourth year", 2024, true},
      {"an odd year", 2023, false},
      {"a century to come", 2100, false},
      {"a fourth century to come", 2400, true},
      {"year 0", 0, true},
      {"before it, by the same remainders", -4, true},
      {"a century before", -100, false},
      {"a fourth century before", -400, true},
      {"one year before", -1, false},
      {"the first of all", std::numeric_limits<int>::min(), true},
      {"the last of all", std::numeric_limits<int>::max(), false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(AstroClock::IsLeapYear(row.year), row.leap) << row.year << ": " << row.why;
  }
}

TEST(AstroClock, DaylightSavingFollowsTheZoneAndThePresentMoment) {
  const char* const newYork = "EST5EDT,M3.2.0,M11.1.0";
  const char* const wellington = "NZST-12NZDT,M9.5.0,M4.1.0/3";
  const struct {
    const char* why;
    const char* zone;
    std::time_t now;
    bool inForce;
  } rows[] = {
      {"winter in New York", newYork, 1705320000, false},           // 2024-01-15 12:00 UTC
      {"summer in New York", newYork, 1721044800, true},            // 2024-07-15 12:00 UTC
      {"the second before it begins", newYork, 1710053999, false},  // 2024-03-10 06:59:59 UTC
      {"the second it begins", newYork, 1710054000, true},
      {"the second before it ends", newYork, 1730613599, true},  // 2024-11-03 05:59:59 UTC
      {"the second it ends", newYork, 1730613600, false},
      {"summer in Wellington", wellington, 1705320000, true},
      {"winter in Wellington", wellington, 1721044800, false},
      {"a zone without", "UTC0", 1721044800, false},
      {"a moment that cannot be converted", newYork, std::numeric_limits<std::time_t>::max(),
       false},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    const TestClock clock(row.now);
    EXPECT_EQ(AstroClock::IsDaylightSavings(), row.inForce) << row.why;
  }
}

TEST(CalcHourAngle, IsPositiveForSunriseAndNegativeForSunset) {
  const float rises = AstroClock::CalcHourAngle(51.5f, 0.4f, 1);
  EXPECT_GT(rises, 0);
  EXPECT_EQ(AstroClock::CalcHourAngle(51.5f, 0.4f, 0), -rises);
  EXPECT_EQ(AstroClock::CalcHourAngle(51.5f, 0.4f, -7), rises) << "anything but 0 is sunrise";
}

TEST(CalcHourAngle, FollowsTheZenithOf90833Thousandths) {
  // acos(cos 90.833 / (cos lat * cos decl) - tan lat * tan decl), by hand in degrees.
  const struct {
    const char* why;
    float latitude, declination;
    double degrees;
  } rows[] = {
      {"the equator at an equinox: 90.833 itself", 0, 0, 90.833},
      {"45 north at an equinox: acos(-0.0145381 / 0.7071068)", 45, 0, 91.1781},
      {"45 north, declination 0.4: acos(-0.0223220 - 0.4227932)", 45, 0.4f, 116.4307},
      {"45 south, declination 0.4: acos(-0.0223220 + 0.4227932)", -45, 0.4f, 66.3924},
  };
  for (const auto& row : rows) {
    EXPECT_NEAR(AstroClock::CalcHourAngle(row.latitude, row.declination, 1) * 57.29578, row.degrees,
                0.001)
        << row.why;
  }
}

TEST(CalcHourAngle, IsNaNWhereTheSunDoesNotCrossTheHorizon) {
  EXPECT_TRUE(std::isnan(AstroClock::CalcHourAngle(80, 0.4f, 1))) << "midnight sun";
  EXPECT_TRUE(std::isnan(AstroClock::CalcHourAngle(80, -0.4f, 1))) << "polar night";
  EXPECT_TRUE(std::isnan(AstroClock::CalcHourAngle(kNaN, 0, 0))) << "no latitude";
}

// The first pass takes the index of the day itself, the second that of the day before: what comes
// out is a single pass for the day before.
TEST(AstroClock, SunsetFirstPassUsesTheDayItself) {
  for (int day = 1; day <= 366; ++day) {
    EXPECT_NEAR(AstroClock::calcSunsetGMT(day, 0, 0),
                reference::SeriesMinutes(day - 1, 0, 0, Sun::kSets), 0.02)
        << "day " << day;
  }
  // The two passes differ where the first has no answer and the second would have one: on the day
  // after which the polar night begins sunrise has a time and sunset has none.
  int lastDays = 0;
  for (int day = 200; day <= 366; ++day) {
    const bool today = !std::isnan(reference::SeriesMinutes(day - 1, 80, 0, Sun::kSets));
    const bool tomorrow = !std::isnan(reference::SeriesMinutes(day, 80, 0, Sun::kSets));
    if (!today || tomorrow) continue;
    ++lastDays;
    EXPECT_TRUE(std::isfinite(AstroClock::calcSunriseGMT(day, 80, 0))) << "day " << day;
    EXPECT_TRUE(std::isnan(AstroClock::calcSunsetGMT(day, 80, 0))) << "day " << day;
  }
  EXPECT_EQ(lastDays, 1);
}

// The whole-day shift of the second pass is seen where a day makes minutes of difference: at
// latitude 60 near the equinox. `longitude` puts the first pass where it is wanted.
double LongitudeFor(double provisional, int firstIndex, double latitude, Sun event) {
  return -(provisional - reference::SeriesMinutes(firstIndex, latitude, 0, event)) / 4;
}

TEST(AstroClock, ASecondPassMovesByTheWholeDaysOfTheFirst) {
  constexpr int kDay = 80;  // about the equinox
  constexpr double kLatitude = 60;
  const struct {
    const char* why;
    double provisional;
    int days;
  } rows[] = {
      {"inside its day", 700, 0},
      {"just below a day", 1439.9, 0},
      {"beyond a day", 1450, 1},
      {"negative, towards zero", -100, 0},
      {"just above minus a day", -1439.9, 0},
      {"below minus a day", -1450, -1},
      {"two days", 2890, 2},
  };
  for (const auto& row : rows) {
    for (const Sun event : {Sun::kRises, Sun::kSets}) {
      const int first = event == Sun::kRises ? kDay - 1 : kDay;
      const double longitude = LongitudeFor(row.provisional, first, kLatitude, event);
      const auto narrow = static_cast<float>(longitude);
      const float actual = event == Sun::kRises
                               ? AstroClock::calcSunriseGMT(kDay, float{kLatitude}, narrow)
                               : AstroClock::calcSunsetGMT(kDay, float{kLatitude}, narrow);
      EXPECT_NEAR(actual,
                  reference::SeriesMinutes(kDay - 1 + row.days, kLatitude, longitude, event), 0.05)
          << row.why;
    }
  }
  EXPECT_GT(std::abs(reference::SeriesMinutes(kDay, kLatitude, 0, Sun::kSets) -
                     reference::SeriesMinutes(kDay - 1, kLatitude, 0, Sun::kSets)),
            2)
      << "a day is minutes of difference, so that the rows tell";
}

TEST(AstroClock, DoesNotWrapTimesIntoTheDay) {
  // At longitude -170 noon is at 23:20 UTC, so a summer evening is the next day in Greenwich.
  EXPECT_GT(AstroClock::calcSunsetGMT(172, 51.5f, -170), 1440 + 400);
  // At longitude 170 noon is at 00:40 UTC, so the morning is the day before.
  EXPECT_LT(AstroClock::calcSunriseGMT(172, 51.5f, 170), -400);
}

TEST(AstroClock, IsNaNWhereTheSunDoesNotRiseOrSet) {
  const struct {
    const char* why;
    int day;
    float latitude, longitude;
  } rows[] = {
      {"midnight sun", 172, 80, 0},          {"at any longitude", 172, 80, 170},
      {"polar night", 355, 80, 0},           {"southern midnight sun", 355, -80, 0},
      {"southern polar night", 172, -80, 0}, {"no latitude", 172, kNaN, 0},
      {"no longitude", 172, 0, kNaN},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(std::isnan(AstroClock::calcSunriseGMT(row.day, row.latitude, row.longitude)))
        << row.why;
    EXPECT_TRUE(std::isnan(AstroClock::calcSunsetGMT(row.day, row.latitude, row.longitude)))
        << row.why;
  }
}

TEST(AstroClock, CopesWithLongitudesThatNoMapHas) {
  // The provisional time is beyond what an int holds; what comes out does not matter.
  for (const float longitude : {1e9f, -1e9f, 1e30f, -1e30f, kInfinity, -kInfinity}) {
    AstroClock::calcSunriseGMT(100, 10, longitude);
    AstroClock::calcSunsetGMT(100, 10, longitude);
  }
}

}  // namespace
