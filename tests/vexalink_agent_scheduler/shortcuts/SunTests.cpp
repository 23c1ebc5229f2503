#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

#include "astro/AstroClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainSun.h"

namespace {

constexpr float kLatitudes[] = {-90.0f, -85.0f, -66.4f, -65.8f, -51.3f, -33.9f,
                                -0.1f,  0.0f,   1.3f,   23.5f,  40.7f,  52.5f,
                                60.2f,  65.7f,  66.4f,  69.6f,  85.0f,  90.0f};
constexpr float kLongitudes[] = {-720.0f, -180.0f, -175.0f, -122.4f, -74.0f, -0.1f,
                                 0.0f,    13.4f,   77.2f,   151.2f,  175.0f, 720.0f};

// Bit for bit, but one NaN is as good as another.
testing::AssertionResult SameBits(float ours, float theirs) {
  if (std::isnan(ours) && std::isnan(theirs)) return testing::AssertionSuccess();
  if (std::bit_cast<std::uint32_t>(ours) == std::bit_cast<std::uint32_t>(theirs)) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << ours << " and not " << theirs;
}

}  // namespace

TEST(KeptSuns, GiveTheBitsOfTwoPassesWorkedOutAfresh) {
  for (int day = -5; day <= 400; ++day) {
    for (const float latitude : kLatitudes) {
      for (const float longitude : kLongitudes) {
        SCOPED_TRACE(testing::Message() << day << " at " << latitude << " " << longitude);
        ASSERT_TRUE(SameBits(AstroClock::calcSunriseGMT(day, latitude, longitude),
                             plain::Sun(true, day, latitude, longitude)));
        ASSERT_TRUE(SameBits(AstroClock::calcSunsetGMT(day, latitude, longitude),
                             plain::Sun(false, day, latitude, longitude)));
      }
    }
  }
}

TEST(KeptSuns, AreFoundOnTheSameDays) {
  for (int day = -5; day <= 400; day += 3) {
    for (const float latitude : {-85.0f, -70.0f, -65.8f, 40.7f, 65.8f, 67.0f, 72.0f, 85.0f}) {
      for (const float longitude : {-175.0f, 0.0f, 25.0f, 175.0f}) {
        SCOPED_TRACE(testing::Message() << day << " at " << latitude << " " << longitude);
        ASSERT_TRUE(SameBits(AstroClock::findNextSunrise(day, latitude, longitude),
                             plain::FindSun(true, 1, day, latitude, longitude)));
        ASSERT_TRUE(SameBits(AstroClock::findNextSunset(day, latitude, longitude),
                             plain::FindSun(false, 1, day, latitude, longitude)));
        ASSERT_TRUE(SameBits(AstroClock::findRecentSunrise(day, latitude, longitude),
                             plain::FindSun(true, -1, day, latitude, longitude)));
        ASSERT_TRUE(SameBits(AstroClock::findRecentSunset(day, latitude, longitude),
                             plain::FindSun(false, -1, day, latitude, longitude)));
      }
    }
  }
}
