// What happens over a year: 1,000 mixed rules, 366 days, ordered by day and id.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <libical/ical.h>

#include "bench/BenchTables.h"
#include "controller/HostMessages.h"
#include "tests/support/TestClock.h"
#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"

namespace {

constexpr int kRules = 1000;

VxTime From() { return VxTime(2024, 1, 1, 0, 0, 0, -1); }
VxTime To() { return VxTime(2024, 12, 31, 0, 0, 0, -1); }

void BM_OccurrencesOverAYear(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const auto events = MixedEvents(kRules, /*withSun=*/false);
  const auto table = TableOf(events);
  std::vector<ListedOccurrence> few;
  std::size_t total = 0;
  for (auto _ : state) {
    OccurrenceListing listing(table, From(), To());
    while (listing.Next(&few)) {
      benchmark::DoNotOptimize(few.data());
      total += few.size();
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(total));
}
BENCHMARK(BM_OccurrencesOverAYear)->Unit(benchmark::kMicrosecond);

// The least that any way of doing it costs: occurrences that are known already, put in order of day
// and id and written out.
void BM_OccurrencesOverAYear_bound(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const auto events = MixedEvents(kRules, /*withSun=*/false);
  std::vector<std::vector<std::uint32_t>> days;
  std::size_t each = 0;
  for (const auto& event : events) {
    days.emplace_back();
    for (std::uint32_t day = 0; day < 366; ++day) {
      const VxTime noon(2024, 1, static_cast<int>(day) + 1, 12, 0, 0, -1);
      if (event->OccursOnDate(noon)) days.back().push_back(day);
    }
    each += days.back().size();
  }
  std::vector<ListedOccurrence> out(each);
  std::vector<std::uint32_t> starts(367);
  for (auto _ : state) {
    std::fill(starts.begin(), starts.end(), 0U);
    for (const auto& list : days) {
      for (const std::uint32_t day : list) ++starts[day + 1];
    }
    for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
    for (std::size_t i = 0; i < days.size(); ++i) {
      for (const std::uint32_t day : days[i]) {
        ListedOccurrence& entry = out[starts[day]++];
        entry.event = events[i].get();
        entry.year = 2024;
      }
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(each) * state.iterations());
}
BENCHMARK(BM_OccurrencesOverAYear_bound)->Unit(benchmark::kMicrosecond);

std::string RuleOf(const Event& event) {
  const std::string every = ";INTERVAL=" + std::to_string(std::max(event.rate, 1));
  static const char* const kDays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
  switch (event.frequency) {
    case Scheduler::kDaily:
      return "FREQ=DAILY" + every;
    case Scheduler::kWeekly: {
      std::string days;
      for (unsigned i = 0; i < 7; ++i) {
        if ((event.daymask >> i & 1U) != 0)
          days += (days.empty() ? "" : ",") + std::string(kDays[i]);
      }
      return "FREQ=WEEKLY" + every + ";WKST=SU;BYDAY=" + days;
    }
    case Scheduler::kMonthly:
      if (event.start_period == Scheduler::kByDay) {
        return "FREQ=MONTHLY" + every + ";BYMONTHDAY=" + std::to_string(event.StartDay().day);
      }
      return "FREQ=MONTHLY" + every + ";BYDAY=" +
             (event.start_period == Scheduler::kLast ? "-1" : std::to_string(event.start_period)) +
             kDays[event.start_weekday - 1];
    case Scheduler::kYearly:
      return "FREQ=YEARLY" + every;
    default:
      return "FREQ=DAILY;COUNT=1";
  }
}

void BM_OccurrencesOverAYear_libical(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const auto events = MixedEvents(kRules, /*withSun=*/false);
  std::vector<icalrecurrencetype> rules;
  std::vector<icaltimetype> starts;
  for (const auto& event : events) {
    rules.push_back(icalrecurrencetype_from_string(RuleOf(*event).c_str()));
    const CivilDay& start = event->StartDay();
    icaltimetype first = icaltime_null_time();
    first.year = start.year;
    first.month = start.month;
    first.day = start.day;
    first.hour = event->offset_minutes / 60;
    first.minute = event->offset_minutes % 60;
    starts.push_back(first);
  }
  std::size_t total = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < rules.size(); ++i) {
      icalrecur_iterator* at = icalrecur_iterator_new(rules[i], starts[i]);
      for (icaltimetype next = icalrecur_iterator_next(at);
           !icaltime_is_null_time(next) && next.year <= 2024; next = icalrecur_iterator_next(at)) {
        if (next.year == 2024) ++total;
        benchmark::DoNotOptimize(next);
      }
      icalrecur_iterator_free(at);
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(total));
}
BENCHMARK(BM_OccurrencesOverAYear_libical)->Unit(benchmark::kMicrosecond);

// The whole request: reply tree and its text included.
void BM_OccurrencesRequest(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  BenchAgent bench(kRules, /*withSun=*/false);
  const controller::CommandMessage request("GET_EVENT_OCCURENCES", {{"FROM_YEAR", "2024"},
                                                                    {"FROM_MONTH", "1"},
                                                                    {"FROM_DAY", "1"},
                                                                    {"TO_YEAR", "2024"},
                                                                    {"TO_MONTH", "12"},
                                                                    {"TO_DAY", "31"}});
  std::int64_t total = 0;
  for (auto _ : state) {
    const auto reply = bench.agent.UIRequest(request);
    const std::string text = reply->ToString();
    benchmark::DoNotOptimize(text.data());
    state.PauseTiming();
    for (auto* event = reply->GetFirstChild(); event != nullptr; event = event->GetNextSibling()) {
      ++total;
    }
    state.ResumeTiming();
  }
  state.SetItemsProcessed(total);
}
BENCHMARK(BM_OccurrencesRequest)->Unit(benchmark::kMillisecond);

// A rule that hardly ever comes, asked for eight thousand years.
void BM_OccurrencesToYear9999(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  Event event(1, "Rare", 40.7, -74.0);
  event.start = VxTime(2024, 2, 29, 0, 0, 0, -1);
  event.end_date = VxTime(9999, 12, 31, 23, 59, 59, -1);
  event.frequency = Scheduler::kYearly;
  event.rate = static_cast<int>(state.range(0));
  const std::map<unsigned long, Event*> table{{1, &event}};
  std::vector<ListedOccurrence> few;
  std::size_t total = 0;
  for (auto _ : state) {
    OccurrenceListing listing(table, From(), VxTime(9999, 12, 31, 0, 0, 0, -1));
    while (listing.Next(&few)) total += few.size();
  }
  state.counters["occurrences"] =
      static_cast<double>(total) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_OccurrencesToYear9999)->Arg(1)->Arg(1000000)->Unit(benchmark::kMicrosecond);

// The same for the fourth Wednesday of every month.
void BM_NthOccurrencesToYear9999(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  Event event(1, "Fourth Wednesday", 40.7, -74.0);
  event.start = VxTime(2024, 1, 24, 0, 0, 0, -1);
  event.end_date = VxTime(9999, 12, 31, 23, 59, 59, -1);
  event.frequency = Scheduler::kMonthly;
  event.rate = 1;
  event.start_weekday = 4;
  event.start_period = Scheduler::kFourth;
  const std::map<unsigned long, Event*> table{{1, &event}};
  std::vector<ListedOccurrence> few;
  std::size_t total = 0;
  for (auto _ : state) {
    OccurrenceListing listing(table, From(), VxTime(9999, 12, 31, 0, 0, 0, -1));
    while (listing.Next(&few)) total += few.size();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(total));
}
BENCHMARK(BM_NthOccurrencesToYear9999)->Unit(benchmark::kMillisecond);

}  // namespace
