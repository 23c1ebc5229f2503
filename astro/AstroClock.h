#pragma once

/// The sun for a scheduler: sunrise and sunset of a day of the year at a place, and two small
/// calendar facts. No state; the sun operations may be called from any thread.
///
/// Common to the sun operations: `dayOfYear` is 1 on 1 January and 365 or 366 on 31 December;
/// `latitude` and `longitude` are degrees, north and east positive, and nothing is clamped (callers
/// use `FixupLatAndLong`). Results are minutes after 00:00 UTC of that day, fractions included.
/// They may be negative or above 1440 far from Greenwich, and are NaN where there is no answer.
///
/// Sources: fractional year, declination and equation of time as Fourier series after Spencer
/// (1971), the third harmonics left out on purpose; hour angle for a zenith of 90.833 degrees,
/// which allows for refraction and the solar disc, after the general solar position calculations
/// that NOAA publishes. All of it in single precision, so that every controller computes the same
/// minute.
class AstroClock {
 public:
  /// Clamps `latitude` to -85..85 and `longitude` to -175..175 degrees; NaN stays.
  static void FixupLatAndLong(float& latitude, float& longitude);

  /// Hour angle, radians, of the sun at the horizon: positive for sunrise (`sunrise` not 0),
  /// negative for sunset (0). `latitude` in degrees, `declination` in radians. NaN where the sun
  /// does not cross the horizon.
  static float CalcHourAngle(float latitude, float declination, long sunrise);

  /// Sunrise of the day; NaN where the sun does not rise.
  static float calcSunriseGMT(int dayOfYear, float latitude, float longitude);
  /// Sunset of the day; NaN where the sun does not set.
  static float calcSunsetGMT(int dayOfYear, float latitude, float longitude);

  /// The first sunrise (sunset) on this day or a later one, the year taken as a ring in which day 1
  /// follows day 366. Which day it was is not told. NaN where no day of the year has one.
  static float findNextSunrise(int dayOfYear, float latitude, float longitude);
  static float findNextSunset(int dayOfYear, float latitude, float longitude);
  /// The last sunrise (sunset) on this day or an earlier one, the year taken as a ring in which day
  /// 365 precedes day 1. NaN where no day of the year has one.
  static float findRecentSunrise(int dayOfYear, float latitude, float longitude);
  static float findRecentSunset(int dayOfYear, float latitude, float longitude);

  /// Whether `year` (full, 2024 for example) is a Gregorian leap year.
  static bool IsLeapYear(int year);

  /// Whether daylight-saving time is in force here and now; false where that is not known. Uses the
  /// C library's `localtime`: from the driver's thread only.
  static bool IsDaylightSavings();
};
