#pragma once

#include <cstddef>
#include <ctime>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controller/EventElement.h"
#include "controller/firing/DayPlan.h"
#include "controller/programming/Programming.h"

namespace controller {

/// One action of an event that has fired.
struct SimulatedAction {
  /// Its texts are those that would be sent: placeholders are replaced.
  Action action;
  /// False: its condition did not hold at that moment.
  bool runs = true;
  /// The condition in words, and what was the case; empty where there is none.
  std::string condition;
  std::string because;
};

/// What became of one occurrence.
struct SimulatedOccurrence {
  unsigned long event = 0;
  std::string description;
  /// The civil day that it belongs to.
  DayFields date;
  /// Without the random part.
  std::time_t planned = 0;
  OffsetBase base = OffsetBase::kClock;
  /// The random part in minutes, where there is one.
  std::optional<long> drawn;
  /// When it was decided: the moment of firing.
  std::time_t at = 0;
  long lateSeconds = 0;
  /// Fired, held or missed, and why, as docs/api.md names it.
  OccurrenceState outcome = OccurrenceState::kFired;
  std::string reason;
  /// Of one that fired; in the order in which they would be begun.
  std::vector<SimulatedAction> actions;
  /// Other events that fire less than a minute before or after.
  std::set<unsigned long> near;
};

/// The clocks are put forward or back.
struct ClockShift {
  /// The first second of the new time.
  std::time_t at = 0;
  /// Seconds east of UTC.
  long before = 0;
  long after = 0;
};

/// A day of the schedule.
struct SimulatedDay {
  DayFields date;
  /// From its first second to that of the next, which a clock change makes more or less than 24
  /// hours.
  long seconds = 0;
};

/// How many became what.
struct SimulatedTotals {
  std::size_t days = 0;
  std::size_t fired = 0;
  std::size_t held = 0;
  std::size_t missed = 0;
  /// Of those that fired: less than a minute from another event.
  std::size_t near = 0;
  std::size_t actions = 0;
  /// Actions whose condition did not hold.
  std::size_t unmet = 0;
  std::size_t clockShifts = 0;

  void Count(const SimulatedOccurrence& occurrence);
};

/// Is told what a simulation finds, in the order of time.
class ISimulationReport {
 public:
  virtual ~ISimulationReport() = default;

  virtual void OnDay(const SimulatedDay& day) = 0;
  virtual void OnClockShift(const ClockShift& shift) = 0;
  virtual void OnOccurrence(const SimulatedOccurrence& occurrence) = 0;
  virtual void OnDayEnd(const SimulatedDay& day, const SimulatedTotals& totals) = 0;
};

}  // namespace controller
