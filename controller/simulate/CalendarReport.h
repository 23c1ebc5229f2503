#pragma once

#include <ostream>
#include <string>

#include "controller/simulate/Simulated.h"
#include "controller/simulate/SimulationFacts.h"

namespace controller {

/// What fires in a simulation, as a calendar (RFC 5545): an entry for each firing, in UTC. The UID
/// of an entry is the same each time: it names the project, the event and the civil day.
class CalendarReport final : public ISimulationReport {
 public:
  /// Writes what comes before the entries; `stamp` is when that was. `out` must outlive it.
  CalendarReport(std::ostream& out, const SimulationFacts& facts, std::time_t stamp);
  /// The end of the calendar.
  void Finish();

  void OnDay(const SimulatedDay&) override {}
  void OnClockShift(const ClockShift&) override {}
  void OnOccurrence(const SimulatedOccurrence& occurrence) override;
  void OnDayEnd(const SimulatedDay&, const SimulatedTotals&) override {}

 private:
  void Write(const char* name, const std::string& value);

  std::ostream& out_;
  std::string projectId_;
  std::string stamp_;
  bool empty_ = true;
};

}  // namespace controller
