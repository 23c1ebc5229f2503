#include "controller/api/SunEstimate.h"

#include <algorithm>
#include <cmath>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadians = kPi / 180;
constexpr double kZenithCosine = -0.0145380;  // 90.833 degrees
constexpr long kSecondsPerDay = 86400;

/// The general solar position formula (declination and equation of time as Fourier series of the
/// day of the year, two harmonics).
struct Sun {
  double declination;
  double equationOfTime;  // minutes
};

Sun SunOf(int dayIndex) {
  const double g = 2 * kPi / 365 * dayIndex;
  return {0.006918 - 0.399912 * std::cos(g) + 0.070257 * std::sin(g) - 0.006758 * std::cos(2 * g) +
              0.000907 * std::sin(2 * g),
          229.18 * (0.000075 + 0.001868 * std::cos(g) - 0.032077 * std::sin(g) -
                    0.014615 * std::cos(2 * g) - 0.040849 * std::sin(2 * g))};
}

int DayOfYear(const DayFields& day) {
  return static_cast<int>(DaysBetween({day.year, 1, 1}, day)) + 1;
}

/// The hour angle of rising or setting in degrees; NaN where the sun does neither.
double HourAngle(const Sun& sun, double latitude) {
  const double north = latitude * kRadians;
  return std::acos((kZenithCosine - std::sin(north) * std::sin(sun.declination)) /
                   (std::cos(north) * std::cos(sun.declination))) /
         kRadians;
}

/// Minutes after 00:00 UTC; NaN where the sun does not rise or set.
double SunMinutes(int dayOfYear, OffsetBase base, const Place& place) {
  const Sun sun = SunOf(dayOfYear - 1);
  const double angle = HourAngle(sun, place.latitude);
  const double side = base == OffsetBase::kSunrise ? angle : -angle;
  return 720 - sun.equationOfTime - 4 * (place.longitude + side);
}

/// Which way the scheduler looks for a day on which the sun rises or sets: back in the summer's
/// half of the year, forward in the other.
int SearchStep(int dayOfYear, double latitude) {
  if (latitude > 0) return dayOfYear >= 80 && dayOfYear <= 266 ? -1 : 1;
  return dayOfYear >= 83 && dayOfYear <= 263 ? 1 : -1;
}

double NearestSunMinutes(int dayOfYear, OffsetBase base, const Place& place) {
  const int step = SearchStep(dayOfYear, place.latitude);
  for (int tried = 0; tried < 366; ++tried) {
    const double minutes = SunMinutes(dayOfYear, base, place);
    if (std::isfinite(minutes)) return minutes;
    dayOfYear += step;
    if (dayOfYear < 1) dayOfYear = 365;
    if (dayOfYear > 366) dayOfYear = 1;
  }
  return 720 - 4 * place.longitude;
}

}  // namespace

Polar PolarOn(const DayFields& day, const Place& place) {
  const Sun sun = SunOf(DayOfYear(day) - 1);
  const double north = place.latitude * kRadians;
  // How far the sun's edge has to be above the equator's plane, beside how far it gets: without a
  // division, which the poles would not survive.
  const double wanted = kZenithCosine - std::sin(north) * std::sin(sun.declination);
  const double reach = std::cos(north) * std::cos(sun.declination);
  if (wanted < -reach) return Polar::kDay;
  return wanted > reach ? Polar::kNight : Polar::kNo;
}

std::time_t SunEstimate(const DayFields& day, OffsetBase base, const Place& place) {
  // The scheduler, too, goes no nearer to the poles and to the date line.
  const Place within{std::clamp(place.latitude, -85.0, 85.0),
                     std::clamp(place.longitude, -175.0, 175.0)};
  const double minutes = NearestSunMinutes(DayOfYear(day), base, within);
  return DaysBetween({1970, 1, 1}, day) * kSecondsPerDay + std::lround(minutes * 60);
}

}  // namespace controller
