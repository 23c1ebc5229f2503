// The next occurrence, which is worked out for every event that is written.

#include <benchmark/benchmark.h>

#include "tests/support/TestClock.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

namespace {

void Measure(benchmark::State& state, int frequency, int rate, Scheduler::PERIOD period) {
  const ZoneScope zone("EST5EDT,M3.2.0,M11.1.0");
  const TestClock clock("2024-03-06 12:00:00");
  Event event(1, "Next", 40.7, -74.0);
  event.start = VxTime(2020, 2, 29, 0, 0, 0, -1);
  event.end_date = VxTime(9999, 12, 31, 23, 59, 59, -1);
  event.frequency = frequency;
  event.rate = rate;
  event.daymask = 2;
  event.start_period = period;
  event.start_weekday = 5;
  event.offset_minutes = 420;
  for (auto _ : state) benchmark::DoNotOptimize(event.GetNextOccurance());
  state.counters["found"] = event.GetNextOccurance().second ? 1 : 0;
}

BENCHMARK_CAPTURE(Measure, daily, Scheduler::kDaily, 1, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, dailyEveryMillion, Scheduler::kDaily, 1000000, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, weekly, Scheduler::kWeekly, 1, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, weeklyEvery50000, Scheduler::kWeekly, 50000, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, monthlyByDay, Scheduler::kMonthly, 1, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, monthlyFourth, Scheduler::kMonthly, 1, Scheduler::kFourth);
BENCHMARK_CAPTURE(Measure, monthlyLast, Scheduler::kMonthly, 7, Scheduler::kLast);
BENCHMARK_CAPTURE(Measure, monthlyEvery5000, Scheduler::kMonthly, 5000, Scheduler::kFirst);
BENCHMARK_CAPTURE(Measure, yearlyLeapDay, Scheduler::kYearly, 4, Scheduler::kByDay);
BENCHMARK_CAPTURE(Measure, yearlyLast, Scheduler::kYearly, 1, Scheduler::kLast);
BENCHMARK_CAPTURE(Measure, yearlyEvery1000, Scheduler::kYearly, 1000, Scheduler::kByDay);

}  // namespace
