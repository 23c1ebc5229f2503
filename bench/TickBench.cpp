// A tick on which nothing is due.

#include <benchmark/benchmark.h>
#include <cstdlib>

#include "bench/BenchTables.h"
#include "tests/support/TestClock.h"

namespace {

// The clock moves on by a second every tick, as it does in a house.
void RunTicks(benchmark::State& state) {
  TestClock clock("2024-03-06 12:00:00");
  QuietHost host;
  vexalink_agent_scheduler agent(host);
  const auto config = VxXML::CreateXmlNode("config", "");
  agent.Initialize(2, *config, nullptr);
  agent.AddDailyEvent("In the evening", 23, 59);
  int seconds = 0;
  for (auto _ : state) {
    clock.Advance(1);
    if (++seconds == 30000) {
      clock.Set("2024-03-06 12:00:00");
      seconds = 0;
    }
    agent.OnTimerExpired(1, 0);
  }
}

void BM_IdleTick_zoneSet(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  RunTicks(state);
}
BENCHMARK(BM_IdleTick_zoneSet);

void BM_IdleTick_zoneUnset(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);  // restores the variable
  unsetenv("TZ");
  RunTicks(state);
}
BENCHMARK(BM_IdleTick_zoneUnset);

void BM_IdleTick_bound(benchmark::State& state) {
  TestClock clock(1709726400);
  for (auto _ : state) {
    clock.Advance(1);
    benchmark::DoNotOptimize(std::time(nullptr));
  }
}
BENCHMARK(BM_IdleTick_bound);

// What the C library asks for one conversion where no zone is set.
void BM_IdleTick_localtimeUnset(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  unsetenv("TZ");
  const std::time_t now = 1709726400;
  for (auto _ : state) benchmark::DoNotOptimize(std::localtime(&now));
}
BENCHMARK(BM_IdleTick_localtimeUnset);

}  // namespace
