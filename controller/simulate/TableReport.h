#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "controller/simulate/Simulated.h"
#include "controller/simulate/SimulationFacts.h"

namespace controller {

/// What a simulation finds, for people: a heading for each day on which something happens, a line
/// for each occurrence, below it one for each of its actions. Whatever comes from outside is made
/// printable.
class TableReport final : public ISimulationReport {
 public:
  /// Writes the first lines. `out` must outlive it.
  TableReport(std::ostream& out, const SimulationFacts& facts);
  /// The last lines.
  void Finish(const SimulatedTotals& totals);

  void OnDay(const SimulatedDay& day) override;
  void OnClockShift(const ClockShift& shift) override;
  void OnOccurrence(const SimulatedOccurrence& occurrence) override;
  void OnDayEnd(const SimulatedDay& day, const SimulatedTotals& totals) override;

 private:
  void Heading();
  std::string ClockText(std::time_t moment) const;
  std::string Details(const SimulatedOccurrence& occurrence) const;
  void Row(const SimulatedAction& action);

  std::ostream& out_;
  std::optional<SimulatedDay> heading_;
  /// Times are told with the name of the zone's time, because some may come twice.
  bool odd_ = false;
};

}  // namespace controller
