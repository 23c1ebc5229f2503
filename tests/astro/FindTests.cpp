// The search for the next or the last day with a sunrise or sunset.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "astro/AstroClock.h"

namespace {

using Operation = float (*)(int, float, float);

// The days in the order in which they are tried, once each.
std::vector<int> Forwards(int from) {
  std::vector<int> days;
  for (int day = from; day <= 366; ++day) days.push_back(day);
  for (int day = 1; day < from; ++day) days.push_back(day);
  return days;
}

std::vector<int> Backwards(int from) {
  std::vector<int> days;
  for (int day = from; day >= 1; --day) days.push_back(day);
  for (int day = 365; day > from; --day) days.push_back(day);
  return days;
}

float FirstFinite(const std::vector<int>& days, Operation plain, float latitude) {
  for (const int day : days) {
    const float minutes = plain(day, latitude, 15.0f);
    if (std::isfinite(minutes)) return minutes;
  }
  return std::numeric_limits<float>::quiet_NaN();
}

struct Search {
  const char* name;
  Operation find;
  Operation plain;
  std::vector<int> (*order)(int);
};

const Search kSearches[] = {
    {"next sunrise", AstroClock::findNextSunrise, AstroClock::calcSunriseGMT, Forwards},
    {"next sunset", AstroClock::findNextSunset, AstroClock::calcSunsetGMT, Forwards},
    {"recent sunrise", AstroClock::findRecentSunrise, AstroClock::calcSunriseGMT, Backwards},
    {"recent sunset", AstroClock::findRecentSunset, AstroClock::calcSunsetGMT, Backwards},
};

TEST(FindSunEvent, TriesTheDaysOfTheYearRoundTheRing) {
  for (const Search& search : kSearches) {
    for (const float latitude : {-85.0f, -80.0f, -70.0f, -67.0f, -66.0f, 0.0f, 51.5f, 65.8f, 66.1f,
                                 66.4f, 67.0f, 67.4f, 68.0f, 70.0f, 80.0f, 85.0f}) {
      for (int day = 1; day <= 366; ++day) {
        EXPECT_EQ(search.find(day, latitude, 15.0f),
                  FirstFinite(search.order(day), search.plain, latitude))
            << search.name << " from day " << day << " at " << latitude;
      }
    }
  }
}

TEST(FindSunEvent, StartsWithTheDayItself) {
  for (const Search& search : kSearches) {
    EXPECT_EQ(search.find(172, 51.5f, 0.0f), search.plain(172, 51.5f, 0.0f)) << search.name;
  }
}

TEST(FindSunEvent, FindsTheFirstSunriseAfterTheMidnightSun) {
  ASSERT_TRUE(std::isnan(AstroClock::calcSunriseGMT(172, 80.0f, 15.0f)));
  int day = 172;
  while (std::isnan(AstroClock::calcSunriseGMT(day, 80.0f, 15.0f))) ++day;
  // The midnight sun of latitude 80 (Svalbard's north) lasts until about 29 August.
  EXPECT_NEAR(day, 241, 4);
  EXPECT_EQ(AstroClock::findNextSunrise(172, 80.0f, 15.0f),
            AstroClock::calcSunriseGMT(day, 80.0f, 15.0f));
}

TEST(FindSunEvent, GoesOnWithTheFirstDayAfterDay366) {
  ASSERT_TRUE(std::isnan(AstroClock::calcSunriseGMT(366, 80.0f, 15.0f)));
  int day = 1;
  while (std::isnan(AstroClock::calcSunriseGMT(day, 80.0f, 15.0f))) ++day;
  EXPECT_NEAR(day, 53, 4) << "the sun comes back to latitude 80 about 22 February";
  EXPECT_EQ(AstroClock::findNextSunrise(366, 80.0f, 15.0f),
            AstroClock::calcSunriseGMT(day, 80.0f, 15.0f));
}

TEST(FindSunEvent, GoesBackFromTheFirstDayToDay365) {
  ASSERT_TRUE(std::isnan(AstroClock::calcSunsetGMT(1, 80.0f, 15.0f)));
  int day = 365;
  while (std::isnan(AstroClock::calcSunsetGMT(day, 80.0f, 15.0f))) --day;
  EXPECT_NEAR(day, 293, 4) << "the sun leaves latitude 80 about 20 October";
  EXPECT_EQ(AstroClock::findRecentSunset(1, 80.0f, 15.0f),
            AstroClock::calcSunsetGMT(day, 80.0f, 15.0f));
}

TEST(FindSunEvent, GivesUpAfterAYearWithoutAnEvent) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const Search& search : kSearches) {
    EXPECT_TRUE(std::isnan(search.find(100, 90.0f, 0.0f))) << search.name << ": the pole";
    EXPECT_TRUE(std::isnan(search.find(100, nan, 0.0f))) << search.name << ": no latitude";
    EXPECT_TRUE(std::isnan(search.find(100, 10.0f, nan))) << search.name << ": no longitude";
  }
}

}  // namespace
