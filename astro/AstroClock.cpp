#include "astro/AstroClock.h"

#include <array>
#include <cmath>
#include <ctime>
#include <limits>

namespace {

constexpr float kRadiansPerDay = 0.017214207f;  // 2 pi / 365
constexpr float kPi = 3.1415927f;
constexpr float kCosZenith = -0.014538058f;  // cos 90.833 degrees
constexpr int kDaysInAnyYear = 366;

enum class SunEvent { kSunrise, kSunset };

// What both passes share.
struct Place {
  explicit Place(float latitude, float east) : longitude(east) {
    const float phi = latitude * kPi / 180.0f;
    cosLatitude = cosf(phi);
    tanLatitude = tanf(phi);
  }
  float longitude;
  float cosLatitude;
  float tanLatitude;
};

// Radians, positive before noon.
float HourAngle(const Place& place, float cosDeclination, float tanDeclination, SunEvent event) {
  const float angle =
      acosf(kCosZenith / (place.cosLatitude * cosDeclination) - place.tanLatitude * tanDeclination);
  return event == SunEvent::kSunrise ? angle : -angle;
}

// The sun of one day index, the same for every place.
struct Sun {
  Sun() = default;
  explicit Sun(long dayIndex) {
    const float gamma = kRadiansPerDay * static_cast<float>(dayIndex);
    float sin1;
    float cos1;
    float sin2;
    float cos2;
    sincosf(gamma, &sin1, &cos1);
    sincosf(2.0f * gamma, &sin2, &cos2);
    const float declination =
        0.006918f - 0.399912f * cos1 + 0.070257f * sin1 - 0.006758f * cos2 + 0.000907f * sin2;
    cosDeclination = cosf(declination);
    tanDeclination = tanf(declination);
    equationOfTime = 229.18f * (7.5e-5f + 0.001868f * cos1 - 0.032077f * sin1 - 0.014615f * cos2 -
                                0.040849f * sin2);
  }
  float cosDeclination = 0;
  float tanDeclination = 0;
  float equationOfTime = 0;  // minutes
};

// The suns of a year, worked out once: they are what costs.
class SunTable {
 public:
  SunTable() {
    for (std::size_t i = 0; i < suns_.size(); ++i) suns_[i] = Sun(static_cast<long>(i));
  }
  const Sun& At(long dayIndex) const { return suns_[static_cast<std::size_t>(dayIndex)]; }
  bool Holds(long dayIndex) const {
    return dayIndex >= 0 && dayIndex < static_cast<long>(suns_.size());
  }

 private:
  std::array<Sun, kDaysInAnyYear + 2> suns_;
};

Sun SunAtDayIndex(long dayIndex) {
  static const SunTable table;
  return table.Holds(dayIndex) ? table.At(dayIndex) : Sun(dayIndex);
}

// One pass: the time, minutes UTC, with the sun where it stands at day index `dayIndex`.
float TimeAtDayIndex(long dayIndex, const Place& place, SunEvent event) {
  const Sun sun = SunAtDayIndex(dayIndex);
  const float hourAngle = HourAngle(place, sun.cosDeclination, sun.tanDeclination, event);
  const float hourAngleDegrees = hourAngle * 180.0f / kPi;
  return (-place.longitude - hourAngleDegrees) * 4.0f + 720.0f - sun.equationOfTime;
}

// Whole days by which a provisional time lies outside its day, towards zero at every step.
long WholeDays(float minutes) {
  constexpr float kLimit = 2147483648.0f;
  if (minutes >= kLimit) return std::numeric_limits<int>::max() / 60 / 24;
  if (minutes < -kLimit) return std::numeric_limits<int>::min() / 60 / 24;
  return static_cast<int>(minutes) / 60 / 24;
}

float Calculate(int dayOfYear, const Place& place, SunEvent event) {
  const long index = static_cast<long>(dayOfYear) - 1;
  // Sunset starts from the day's own index, sunrise from the one before. Kept: the times of every
  // schedule in use rest on it (AstroClock.SunsetFirstPassUsesTheDayItself).
  const long firstIndex = event == SunEvent::kSunrise ? index : index + 1;
  const float provisional = TimeAtDayIndex(firstIndex, place, event);
  if (std::isnan(provisional)) return provisional;
  const long secondIndex = index + WholeDays(provisional);
  return secondIndex == firstIndex ? provisional : TimeAtDayIndex(secondIndex, place, event);
}

int DayAfter(int dayOfYear) { return dayOfYear >= kDaysInAnyYear ? 1 : dayOfYear + 1; }

// Day 366 is never reached backwards, not even in a leap year.
int DayBefore(int dayOfYear) { return dayOfYear <= 1 ? 365 : dayOfYear - 1; }

float Find(int dayOfYear, float latitude, float longitude, SunEvent event, int (*step)(int)) {
  const Place place(latitude, longitude);
  for (int tried = 0; tried < kDaysInAnyYear; ++tried) {
    const float minutes = Calculate(dayOfYear, place, event);
    if (std::isfinite(minutes)) return minutes;
    dayOfYear = step(dayOfYear);
  }
  return std::numeric_limits<float>::quiet_NaN();
}

void Clamp(float& value, float limit) {
  if (value > limit) {
    value = limit;
  } else if (value < -limit) {
    value = -limit;
  }
}

}  // namespace

void AstroClock::FixupLatAndLong(float& latitude, float& longitude) {
  constexpr float LAT_LIMIT = 85.0f;
  constexpr float LONG_LIMIT = 175.0f;
  Clamp(latitude, LAT_LIMIT);
  Clamp(longitude, LONG_LIMIT);
}

float AstroClock::CalcHourAngle(float latitude, float declination, long sunrise) {
  return HourAngle(Place(latitude, 0.0f), cosf(declination), tanf(declination),
                   sunrise != 0 ? SunEvent::kSunrise : SunEvent::kSunset);
}

float AstroClock::calcSunriseGMT(int dayOfYear, float latitude, float longitude) {
  return Calculate(dayOfYear, Place(latitude, longitude), SunEvent::kSunrise);
}

float AstroClock::calcSunsetGMT(int dayOfYear, float latitude, float longitude) {
  return Calculate(dayOfYear, Place(latitude, longitude), SunEvent::kSunset);
}

float AstroClock::findNextSunrise(int dayOfYear, float latitude, float longitude) {
  return Find(dayOfYear, latitude, longitude, SunEvent::kSunrise, DayAfter);
}

float AstroClock::findNextSunset(int dayOfYear, float latitude, float longitude) {
  return Find(dayOfYear, latitude, longitude, SunEvent::kSunset, DayAfter);
}

float AstroClock::findRecentSunrise(int dayOfYear, float latitude, float longitude) {
  return Find(dayOfYear, latitude, longitude, SunEvent::kSunrise, DayBefore);
}

float AstroClock::findRecentSunset(int dayOfYear, float latitude, float longitude) {
  return Find(dayOfYear, latitude, longitude, SunEvent::kSunset, DayBefore);
}

bool AstroClock::IsLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

bool AstroClock::IsDaylightSavings() {
  const std::time_t now = std::time(nullptr);
  const std::tm* local = std::localtime(&now);
  return local != nullptr && local->tm_isdst == 1;
}
