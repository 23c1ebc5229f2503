#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>

#include "controller/Clock.h"
#include "controller/DaySeed.h"
#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/Place.h"
#include "controller/firing/FiringDesk.h"
#include "controller/simulate/BusyMinutes.h"
#include "controller/simulate/ReportQueue.h"
#include "controller/simulate/Simulated.h"
#include "controller/simulate/SimulationHost.h"
#include "framework/AssertSink.h"

namespace controller {

/// What is simulated.
struct SimulatedHouse {
  /// See `DaySeed`: the random parts are those that the house itself draws.
  std::string projectId;
  Place place;
  /// As the scheduler has persisted it; nothing: no events. Must parse.
  std::optional<std::string> schedule;
  std::map<unsigned long, Programming> programming;
  std::optional<DayFields> awayUntil;
};

/// A span of days of a house, lived through by the real scheduler and the firing policy of a
/// running controller on a clock that is moved. Nothing is kept and nothing is done. As long as it
/// lives it holds the process's clock, the C library's generator and the record of assertions.
class Simulation final : private IFiringHouse, private vx::IAssertSink {
 public:
  enum class Pace {
    /// A tick each second, as live.
    kEverySecond,
    /// No ticks in the minutes in which nothing can fire. What comes of it is the same.
    kSkipIdle,
  };

  /// Loader and report must outlive it. Throws a `Failure`.
  Simulation(const DriverLoader& loader, SimulatedHouse house, ISimulationReport& report,
             std::optional<unsigned long> onlyEvent = std::nullopt);
  ~Simulation();
  Simulation(const Simulation&) = delete;
  Simulation& operator=(const Simulation&) = delete;

  /// Every occurrence of the days `from` .. `to`, also where its time falls past the end of its
  /// day. Once only.
  SimulatedTotals Run(const DayFields& from, const DayFields& to, Pace pace = Pace::kSkipIdle);

 private:
  // IFiringHouse
  DriverInstance& Scheduler() override { return *scheduler_; }
  const Programming& ProgrammingOf(unsigned long eventId) const override;
  std::optional<DayFields> AwayBefore() const override { return house_.awayUntil; }
  long long OnDecision(const FiringDecision& decision) override;
  void OnPlanChanged() override {}
  // vx::IAssertSink
  void OnAssert(const char*, int, const vx::StackTrace&) override {}
  bool WantsStacks() const override { return false; }

  void Begin(std::time_t before);
  void RunMinute(std::time_t first, std::time_t last);
  bool IsBusy(std::time_t last, const LocalMinute& a, const LocalMinute& b) const;
  void FindShift(std::time_t first, std::time_t last, const LocalMinute& a, const LocalMinute& b);
  void Tick(std::time_t now);
  std::vector<SimulatedAction> ActionsOf(const FiringDecision& decision);
  SimulatedAction Judged(const Action& action, const FiringDecision& decision);

  const DriverLoader& loader_;
  SimulatedHouse house_;
  ReportQueue queue_;
  ClockScope clock_;
  vx::IAssertSink* sinkBefore_;
  DaySeed seed_;
  FiringDesk desk_{*this};
  SimulationHost host_;
  std::unique_ptr<DriverInstance> scheduler_;
  Pace pace_ = Pace::kSkipIdle;
  DayFields from_;
  DayFields to_;
  /// The latest day that was begun.
  DayFields day_;
  BusyMinutes busy_;
  LocalMinute before_;
  /// The list of a day was drawn at this moment; what it holds of the past fires a second later.
  std::time_t drawn_ = 0;
};

}  // namespace controller
