#include "tests/vexalink_agent_scheduler/shortcuts/PlainSun.h"

#include <cmath>

namespace plain {
namespace {

float OnePass(bool sunrise, int dayIndex, float latitude, float longitude) {
  constexpr float kPi = 3.1415927f;
  const float gamma = 0.017214207f * static_cast<float>(dayIndex);
  float sin1;
  float cos1;
  float sin2;
  float cos2;
  sincosf(gamma, &sin1, &cos1);
  sincosf(2.0f * gamma, &sin2, &cos2);
  const float declination =
      0.006918f - 0.399912f * cos1 + 0.070257f * sin1 - 0.006758f * cos2 + 0.000907f * sin2;
  const float equationOfTime = 229.18f * (7.5e-5f + 0.001868f * cos1 - 0.032077f * sin1 -
                                          0.014615f * cos2 - 0.040849f * sin2);
  const float phi = latitude * kPi / 180.0f;
  const float angle =
      acosf(-0.014538058f / (cosf(phi) * cosf(declination)) - tanf(phi) * tanf(declination));
  const float degrees = (sunrise ? angle : -angle) * 180.0f / kPi;
  return (-longitude - degrees) * 4.0f + 720.0f - equationOfTime;
}

}  // namespace

float Sun(bool sunrise, int dayOfYear, float latitude, float longitude) {
  const float first = OnePass(sunrise, sunrise ? dayOfYear - 1 : dayOfYear, latitude, longitude);
  if (std::isnan(first)) return first;
  const int wholeDays = static_cast<int>(first) / 60 / 24;
  return OnePass(sunrise, dayOfYear - 1 + wholeDays, latitude, longitude);
}

float FindSun(bool sunrise, int step, int dayOfYear, float latitude, float longitude) {
  float minutes = Sun(sunrise, dayOfYear, latitude, longitude);
  for (int tried = 1; tried < 366 && !std::isfinite(minutes); ++tried) {
    dayOfYear += step;
    if (dayOfYear > 366) dayOfYear = 1;
    if (dayOfYear < 1) dayOfYear = 365;
    minutes = Sun(sunrise, dayOfYear, latitude, longitude);
  }
  return minutes;
}

}  // namespace plain
