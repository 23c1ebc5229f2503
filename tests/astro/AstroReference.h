#pragma once

/// The sun worked a second time, in double precision, to hold AstroClock against. Degrees, north
/// and east positive; minutes after 00:00 UTC; NaN where the sun does not cross the horizon.
namespace reference {

enum class Sun { kRises, kSets };

/// What the truncated Fourier series give for one day index (days since 1 January): one pass.
double SeriesMinutes(long dayIndex, double latitude, double longitude, Sun event);
/// The two passes of AstroClock: a first one for the day index (that of the day before for sunrise,
/// of the day itself for sunset), a second one moved by the whole days of the first's result.
double TwoPassMinutes(int dayOfYear, double latitude, double longitude, Sun event);

/// Declination (degrees) and equation of time (minutes) of an instant, days since noon of
/// 2000-01-01, after J. Meeus, "Astronomical Algorithms", chapters 25 and 28, as in the solar
/// calculator that NOAA publishes. Good to 0.01 degrees.
struct Position {
  double declination;
  double equationOfTime;
};
Position TruePosition(double daysSinceJ2000);
/// Sunrise or sunset by `TruePosition` at the moment of the event itself.
double TrueMinutes(double daysSinceJ2000AtMidnight, double latitude, double longitude, Sun event);

/// Hour angle, degrees from noon, of the sun's centre 90.833 degrees from the zenith.
double HourAngle(double latitude, double declination);

}  // namespace reference
