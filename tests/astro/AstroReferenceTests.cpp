// AstroClock against the same formulas in double precision, and against the sun itself.

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "astro/AstroClock.h"
#include "tests/astro/AstroReference.h"

namespace {

using reference::Sun;

constexpr double kLatitudes[] = {-85, -75,  -66.4, -60, -45,  -33.9, -10, 0,  5, 23.4,
                                 35,  40.7, 51.5,  60,  64.1, 66.4,  70,  80, 85};
constexpr double kLongitudes[] = {-175, -122.4, -74, -0.1, 0, 30, 103.8, 151.2, 175};

float Calculate(int day, double latitude, double longitude, Sun event) {
  const auto phi = static_cast<float>(latitude);
  const auto lambda = static_cast<float>(longitude);
  return event == Sun::kRises ? AstroClock::calcSunriseGMT(day, phi, lambda)
                              : AstroClock::calcSunsetGMT(day, phi, lambda);
}

// How far the two may be apart for single precision alone: 0.02 minutes, more where the sun grazes
// the horizon and a small error of its height is a long time.
double RoundingTolerance(double minutes, double longitude) {
  const double fromNoon = std::remainder(minutes - (720 - 4 * longitude), 1440) / 4;
  const double sine = std::abs(std::sin(fromNoon * 3.14159265 / 180));
  return 0.02 / std::max(sine, 0.02);
}

// Counts the days on which the two disagree about whether there is an event at all.
int CompareAllDays(double latitude, double longitude, Sun event) {
  int disagreements = 0;
  for (int day = 1; day <= 366; ++day) {
    const double expected = reference::TwoPassMinutes(day, latitude, longitude, event);
    const double actual = Calculate(day, latitude, longitude, event);
    if (std::isnan(expected) != std::isnan(actual)) {
      ++disagreements;
      continue;
    }
    if (std::isnan(expected)) continue;
    EXPECT_NEAR(actual, expected, RoundingTolerance(expected, longitude))
        << "day " << day << " at " << latitude << ", " << longitude;
  }
  return disagreements;
}

TEST(AstroClock, AgreesWithItsFormulasInDoublePrecision) {
  for (const double latitude : kLatitudes) {
    for (const double longitude : kLongitudes) {
      // At most the days on which the sun just touches the horizon: one at each end of the polar
      // day and of the polar night.
      EXPECT_LE(CompareAllDays(latitude, longitude, Sun::kRises), 4) << latitude;
      EXPECT_LE(CompareAllDays(latitude, longitude, Sun::kSets), 4) << latitude;
    }
  }
}

// What the series, cut to two harmonics and evaluated for a whole day index, may be wrong by.
// Declination: 0.18 degrees for the third harmonic, 0.3 for up to 18 hours between the index's noon
// and the event and 0.3 for the leap day that is still to come (it changes by 0.4 in a day).
// Equation of time: half a minute for the series, as much for the day.
struct Budget {
  double declination = 0.8;
  double minutes = 1.0;
};

// That budget in minutes at a place; NaN where the sun may not cross the horizon within it. Above
// half an hour there is nothing to compare: the sun all but grazes the horizon.
constexpr double kGrazing = 30;

double TruncationTolerance(double days, double latitude) {
  const Budget budget;
  const double declination = reference::TruePosition(days).declination;
  const double low = reference::HourAngle(latitude, declination - budget.declination);
  const double here = reference::HourAngle(latitude, declination);
  const double high = reference::HourAngle(latitude, declination + budget.declination);
  return budget.minutes + 4 * std::max(std::abs(high - here), std::abs(low - here));
}

TEST(AstroClock, FollowsTheSunAsFarAsTheTruncatedSeriesCan) {
  constexpr double kMidnightOf2023 = 8400.5;  // 2023-01-01 00:00 UTC, days since J2000
  int compared = 0;
  for (const double latitude : kLatitudes) {
    for (const double longitude : kLongitudes) {
      // Nearer to the poles a degree of declination is hours, and nothing is left to compare.
      if (std::abs(latitude) > 70) continue;
      for (int day = 1; day <= 365; ++day) {
        const double midnight = kMidnightOf2023 + day - 1;
        const double tolerance = TruncationTolerance(midnight + 0.5, latitude);
        if (!(tolerance < kGrazing)) continue;
        for (const Sun event : {Sun::kRises, Sun::kSets}) {
          const double expected = reference::TrueMinutes(midnight, latitude, longitude, event);
          EXPECT_NEAR(Calculate(day, latitude, longitude, event), expected, tolerance)
              << "day " << day << " at " << latitude << ", " << longitude;
          ++compared;
        }
      }
    }
  }
  EXPECT_GT(compared, 80000);
}

TEST(AstroClock, TheToleranceIsAFewMinutesWherePeopleLive) {
  for (int day = 0; day < 365; ++day) {
    EXPECT_LT(TruncationTolerance(8400.5 + day, 0), 1.1) << "equator";
    EXPECT_LT(TruncationTolerance(8400.5 + day, 40.7), 5) << "New York";
    EXPECT_LT(TruncationTolerance(8400.5 + day, 51.5), 7) << "London";
  }
}

}  // namespace
