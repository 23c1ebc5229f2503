#pragma once

#include <nlohmann/json.hpp>
#include <ostream>

#include "controller/simulate/Simulated.h"
#include "controller/simulate/SimulationFacts.h"

namespace controller {

/// What a simulation finds, for programs: JSON Lines, each with its "kind". See docs/simulate.md.
class JsonReport final : public ISimulationReport {
 public:
  /// Writes the first line. `out` must outlive it.
  JsonReport(std::ostream& out, const SimulationFacts& facts);
  /// The last line.
  void Finish(const SimulatedTotals& totals);

  void OnDay(const SimulatedDay&) override {}
  void OnClockShift(const ClockShift& shift) override;
  void OnOccurrence(const SimulatedOccurrence& occurrence) override;
  void OnDayEnd(const SimulatedDay& day, const SimulatedTotals& totals) override;

 private:
  void Write(const nlohmann::ordered_json& line);

  std::ostream& out_;
};

}  // namespace controller
