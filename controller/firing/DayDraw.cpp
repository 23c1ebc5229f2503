#include "controller/firing/DayDraw.h"

#include <algorithm>
#include <cstdlib>

#include "controller/Clock.h"
#include "controller/DayEdges.h"
#include "controller/DaySeed.h"
#include "controller/DriverInstance.h"
#include "controller/LocalTimeText.h"
#include "controller/ProjectVariables.h"
#include "controller/ScratchHost.h"
#include "framework/AssertSink.h"

namespace controller {

namespace {

class TracingHost final : public ScratchHost {
 public:
  using ScratchHost::ScratchHost;

  unsigned long AddTimer(VxBaseDriver&, unsigned long, unsigned int) override { return kTimer; }
  void LogMessage(VxBaseDriver&, unsigned int, const char* text) override { reader.Read(text); }

  static constexpr unsigned long kTimer = 1;
  ScheduleTraceReader reader;
};

/// The live scheduler has written these records already.
class NoRecords final : public vx::IAssertSink {
 public:
  NoRecords() : before_(vx::SetAssertSink(this)) {}
  ~NoRecords() { vx::SetAssertSink(before_); }
  NoRecords(const NoRecords&) = delete;
  NoRecords& operator=(const NoRecords&) = delete;

  void OnAssert(const char*, int, const vx::StackTrace&) override {}
  bool WantsStacks() const override { return false; }

 private:
  vx::IAssertSink* before_;
};

}  // namespace

ScheduleTrace DrawDay(const DriverLoader& loader, const Place& place, const std::string& persisted,
                      std::time_t moment, unsigned int seed) {
  const NoRecords quiet;
  TracingHost host(place);
  DriverInstance scheduler(loader, host);
  {
    // It starts on the day before, and is then told that the day has changed: only then does a
    // scheduler take up what has passed already, and say what it has drawn.
    const ClockScope dayBefore(LocalInstant(DaysAfter(LocalDay(moment), -1), 12, 0));
    scheduler.Initialize(kSchedulerDevice, persisted);
  }
  const ClockScope now(moment);
  std::srand(seed);
  scheduler.Driver().OnTimerExpired(TracingHost::kTimer, 0);
  return host.reader.Take().value_or(ScheduleTrace{LocalDay(moment), {}});
}

DayDraws DrawDays(const DriverLoader& loader, const Place& place, const std::string& persisted,
                  std::time_t from, std::time_t now, const std::string& projectId) {
  const auto draw = [&](std::time_t moment) {
    return DrawDay(loader, place, persisted, moment,
                   SeedOfDay(projectId, DayNumber(LocalDay(moment))));
  };
  DayDraws draws;
  // The days before them too: a random part may lead over midnight.
  const DayFields first = LocalDay(std::min(from, now));
  const DayFields last = LocalDay(now);
  for (const DayFields& day : {DaysAfter(first, -1), first, DaysAfter(last, -1), last}) {
    if (!draws.begun.empty() && day <= draws.begun.back().day) continue;
    draws.begun.push_back(draw(FirstSecondOf(day)));
  }
  draws.taken = draw(now);
  return draws;
}

}  // namespace controller
