#include "tests/astro/AstroReference.h"

#include <cmath>
#include <numbers>

namespace reference {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

double Minutes(double latitude, double longitude, const Position& sun, Sun event) {
  const double angle = HourAngle(latitude, sun.declination);
  const double signedAngle = event == Sun::kRises ? angle : -angle;
  return 720 - 4 * (longitude + signedAngle) - sun.equationOfTime;
}

}  // namespace

double HourAngle(double latitude, double declination) {
  const double phi = latitude * kDegree;
  const double delta = declination * kDegree;
  return std::acos(std::cos(90.833 * kDegree) / (std::cos(phi) * std::cos(delta)) -
                   std::tan(phi) * std::tan(delta)) /
         kDegree;
}

double SeriesMinutes(long dayIndex, double latitude, double longitude, Sun event) {
  const double g = 2 * std::numbers::pi / 365 * static_cast<double>(dayIndex);
  const double declination = 0.006918 - 0.399912 * std::cos(g) + 0.070257 * std::sin(g) -
                             0.006758 * std::cos(2 * g) + 0.000907 * std::sin(2 * g);
  const double equationOfTime =
      229.18 * (0.000075 + 0.001868 * std::cos(g) - 0.032077 * std::sin(g) -
                0.014615 * std::cos(2 * g) - 0.040849 * std::sin(2 * g));
  return Minutes(latitude, longitude, {declination / kDegree, equationOfTime}, event);
}

double TwoPassMinutes(int dayOfYear, double latitude, double longitude, Sun event) {
  const long first = event == Sun::kRises ? dayOfYear - 1 : dayOfYear;
  const double provisional = SeriesMinutes(first, latitude, longitude, event);
  if (std::isnan(provisional)) return provisional;
  const long wholeDays = static_cast<long>(std::trunc(provisional / 1440));
  return SeriesMinutes(dayOfYear - 1 + wholeDays, latitude, longitude, event);
}

Position TruePosition(double daysSinceJ2000) {
  const double t = daysSinceJ2000 / 36525;
  const double meanLongitude = (280.46646 + t * (36000.76983 + t * 0.0003032)) * kDegree;
  const double anomaly = (357.52911 + t * (35999.05029 - t * 0.0001537)) * kDegree;
  const double eccentricity = 0.016708634 - t * (0.000042037 + t * 0.0000001267);
  const double centre = (1.914602 - t * (0.004817 + t * 0.000014)) * std::sin(anomaly) +
                        (0.019993 - t * 0.000101) * std::sin(2 * anomaly) +
                        0.000289 * std::sin(3 * anomaly);
  const double node = (125.04 - 1934.136 * t) * kDegree;
  const double apparent = meanLongitude + (centre - 0.00569 - 0.00478 * std::sin(node)) * kDegree;
  const double meanObliquity =
      23 + (26 + (21.448 - t * (46.815 + t * (0.00059 - t * 0.001813))) / 60) / 60;
  const double obliquity = (meanObliquity + 0.00256 * std::cos(node)) * kDegree;
  const double declination = std::asin(std::sin(obliquity) * std::sin(apparent));
  const double y = std::pow(std::tan(obliquity / 2), 2);
  const double equationOfTime =
      y * std::sin(2 * meanLongitude) - 2 * eccentricity * std::sin(anomaly) +
      4 * eccentricity * y * std::sin(anomaly) * std::cos(2 * meanLongitude) -
      0.5 * y * y * std::sin(4 * meanLongitude) -
      1.25 * eccentricity * eccentricity * std::sin(2 * anomaly);
  return {declination / kDegree, 4 * equationOfTime / kDegree};
}

double TrueMinutes(double daysSinceJ2000AtMidnight, double latitude, double longitude, Sun event) {
  double minutes = 720 - 4 * longitude;
  for (int round = 0; round < 5; ++round) {
    const Position sun = TruePosition(daysSinceJ2000AtMidnight + minutes / 1440);
    minutes = Minutes(latitude, longitude, sun, event);
  }
  return minutes;
}

}  // namespace reference
