// The table of a hundred thousand events: which of them happen today, today's list, adding one.

#include <benchmark/benchmark.h>
#include <cstdlib>

#include "bench/BenchTables.h"
#include "tests/support/TestClock.h"

namespace {

void BM_EventsOnDate(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  BenchAgent bench(static_cast<int>(state.range(0)));
  std::list<Event*> today;
  for (auto _ : state) {
    bench.agent.GetEventsOnDate(VxTime::GetCurrentTime(), &today);
    benchmark::DoNotOptimize(today);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["today"] = static_cast<double>(today.size());
}
BENCHMARK(BM_EventsOnDate)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// The same answer by asking the C library for every field, as the rules read.
void BM_EventsOnDate_plain(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  const auto events = MixedEvents(static_cast<int>(state.range(0)), /*withSun=*/true);
  for (auto _ : state) {
    std::size_t today = 0;
    const std::time_t now = std::time(nullptr);
    for (const auto& event : events) {
      const std::time_t begin = event->start.Seconds();
      const std::tm start = *std::localtime(&begin);
      const std::tm date = *std::localtime(&now);
      today += start.tm_mday == date.tm_mday ? 1U : 0U;
    }
    benchmark::DoNotOptimize(today);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_EventsOnDate_plain)->Arg(10000)->Unit(benchmark::kMicrosecond);

// All of them daily, at random times of clock and sun, with a spread.
void BM_CalculateTodaysEvents(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 00:00:00");
  QuietHost host;
  vexalink_agent_scheduler agent(host);
  for (auto& event : MixedEvents(static_cast<int>(state.range(0)), /*withSun=*/true)) {
    event->frequency = Scheduler::kDaily;
    event->rate = 1;
    event->start = VxTime(2024, 1, 1, 0, 0, 0, -1);
    event->randomize = 5;
    agent.AddEvent(event.release(), /*assignNewId=*/false, /*registerButton=*/false);
  }
  for (auto _ : state) agent.CalculateTodaysEvents(/*skipPast=*/false);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CalculateTodaysEvents)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

void BM_AddAndDeleteOne(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 00:00:00");
  BenchAgent bench(static_cast<int>(state.range(0)));
  bench.agent.CalculateTodaysEvents(/*skipPast=*/false);
  unsigned minute = 0;
  for (auto _ : state) {
    minute = (minute + 317) % 1440;
    const unsigned long id = bench.agent.AddDailyEvent("One more", minute / 60, minute % 60);
    if (id == 0) state.SkipWithError("not added");
    bench.agent.DeleteEvent(id);
  }
}
BENCHMARK(BM_AddAndDeleteOne)->Arg(1000)->Arg(10000)->Arg(100000);

}  // namespace
