#pragma once

#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "RandomSchedule.h"
#include "controller/DriverLoader.h"
#include "controller/EventElement.h"
#include "controller/simulate/Simulation.h"

namespace controller {

/// Keeps what a simulation tells.
class KeptReport final : public ISimulationReport {
 public:
  void OnDay(const SimulatedDay& day) override { days.push_back(day); }
  void OnClockShift(const ClockShift& shift) override { shifts.push_back(shift); }
  void OnOccurrence(const SimulatedOccurrence& occurrence) override {
    occurrences.push_back(occurrence);
  }
  void OnDayEnd(const SimulatedDay&, const SimulatedTotals& totals) override {
    endedDays.push_back(totals);
  }

  /// "7 fired timer 03-06 07:00:00" for each occurrence: event, what, why, its civil day, and when.
  std::vector<std::string> Texts() const;

  std::vector<SimulatedDay> days;
  std::vector<ClockShift> shifts;
  std::vector<SimulatedOccurrence> occurrences;
  std::vector<SimulatedTotals> endedDays;
};

/// The scheduler's library, loaded once.
const DriverLoader& Agent();

/// A daily event at a time of day in minutes, since long ago.
EventElement Daily(unsigned long id, int minutes, int spread = 0);

/// A house in Berlin with these events.
SimulatedHouse HouseWith(const std::vector<EventElement>& events);

/// What random events do, and whether they may.
std::map<unsigned long, Programming> RandomProgramming(std::mt19937& random, std::size_t count,
                                                       int year);

/// What a scheduler lists for each day of a span, asked in the first second of that day.
using Listing = std::set<std::pair<DayFields, unsigned long>>;
Listing ListedDays(const SimulatedHouse& house, const DayFields& from, const DayFields& to);

}  // namespace controller
