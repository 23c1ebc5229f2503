// Sunrise and sunset of a day.

#include <benchmark/benchmark.h>
#include <cmath>

#include "astro/AstroClock.h"
#include "tests/support/TestClock.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

void BM_SunPair(benchmark::State& state) {
  int day = 0;
  for (auto _ : state) {
    day = day % 365 + 1;
    benchmark::DoNotOptimize(AstroClock::calcSunriseGMT(day, 47.4f, 8.5f));
    benchmark::DoNotOptimize(AstroClock::calcSunsetGMT(day, 47.4f, 8.5f));
  }
}
BENCHMARK(BM_SunPair);

// The calls of the maths library that the pair cannot do without: the place twice, the sun once for
// sunrise (both of its passes have the same day) and twice for sunset.
void BM_SunPair_bound(benchmark::State& state) {
  int day = 0;
  for (auto _ : state) {
    day = day % 365 + 1;
    for (int event = 0; event < 2; ++event) {
      float latitude = 0.8272861f;
      benchmark::DoNotOptimize(latitude);
      benchmark::DoNotOptimize(cosf(latitude));
      benchmark::DoNotOptimize(tanf(latitude));
    }
    for (int pass = 0; pass < 3; ++pass) {
      float gamma = 0.017214207f * static_cast<float>(day - pass % 2);
      float sine = 0;
      float cosine = 0;
      benchmark::DoNotOptimize(gamma);
      sincosf(gamma, &sine, &cosine);
      benchmark::DoNotOptimize(sine);
      sincosf(2.0f * gamma, &sine, &cosine);
      float declination = 0.4f * sine;
      benchmark::DoNotOptimize(declination);
      benchmark::DoNotOptimize(cosf(declination));
      benchmark::DoNotOptimize(tanf(declination));
      benchmark::DoNotOptimize(acosf(declination));
    }
  }
}
BENCHMARK(BM_SunPair_bound);

// The same site and day again, as every further event of the day asks for it while today's list is
// worked out.
void BM_SunPairAgain(benchmark::State& state) {
  const ZoneScope zone("EST5EDT,M3.2.0,M11.1.0");
  const TestClock clock("2024-03-06 12:00:00");
  const VxTime date = VxTime::GetCurrentTime();
  const local_time::ZoneHold hold;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Event::CalculateEventTime(date, Scheduler::kSunrise, 0, 40.7, -74.0));
    benchmark::DoNotOptimize(Event::CalculateEventTime(date, Scheduler::kSunset, 0, 40.7, -74.0));
  }
}
BENCHMARK(BM_SunPairAgain);

}  // namespace
