#pragma once

#include <ctime>
#include <deque>
#include <optional>
#include <variant>

#include "controller/simulate/Simulated.h"

namespace controller {

/// Firings closer than this, in seconds, are told as being near each other.
constexpr std::time_t kNearSeconds = 60;

/// Holds what a simulation finds back until it is known what comes within the minute, so that each
/// firing knows those near it; then counts it and tells it to the report.
class ReportQueue {
 public:
  /// Occurrences of events but `only` are looked at and not told. The report must outlive it.
  ReportQueue(ISimulationReport& report, std::optional<unsigned long> only)
      : report_(report), only_(only) {}

  /// In the order of time. A day ends where the next begins.
  void BeginDay(const SimulatedDay& day, std::time_t at) { Put({at, day}); }
  void Put(const ClockShift& shift) { Put({shift.at, shift}); }
  void Put(SimulatedOccurrence occurrence);
  /// The end: tells the rest.
  void Finish();

  const SimulatedTotals& Totals() const { return totals_; }

 private:
  struct Item {
    std::time_t at;
    std::variant<SimulatedDay, ClockShift, SimulatedOccurrence> what;
  };

  void Put(Item item);
  void FindNear(SimulatedOccurrence& occurrence);
  void TellFirst();
  void Tell(const SimulatedDay& day);
  void Tell(const ClockShift& shift);
  void Tell(const SimulatedOccurrence& occurrence);
  void EndDay();

  ISimulationReport& report_;
  std::optional<unsigned long> only_;
  std::deque<Item> waiting_;
  std::optional<SimulatedDay> day_;
  SimulatedTotals ofDay_;
  SimulatedTotals totals_;
};

}  // namespace controller
