#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// What became of an occurrence.
enum class OccurrenceState { kPending, kFired, kHeld, kMissed };
/// "pending", "fired", "held", "missed"
const char* StateName(OccurrenceState state);

/// One occurrence of the day.
struct PlannedOccurrence {
  unsigned long event = 0;
  std::string description;
  /// As the event says it, without its random part; the seconds of a sun time are left out.
  std::time_t planned = 0;
  /// With the random part; nothing where that is not known yet.
  std::optional<std::time_t> due;
  /// The random part reaches so many minutes to both sides.
  long spread = 0;
  OffsetBase base = OffsetBase::kClock;
  /// The scheduler lists it for the day, but will not fire it: it counts the days in steps of
  /// 86400 s, and has counted them at another moment than midnight.
  bool leftOut = false;
  OccurrenceState state = OccurrenceState::kPending;
  std::string reason;
  /// The journal's row of what became of it; 0 while it is pending.
  long long journalRow = 0;
};

/// The occurrences of one civil day, each event once: what is still to come, and what became of the
/// rest.
class DayPlan {
 public:
  DayPlan() = default;
  explicit DayPlan(const DayFields& date) : date_(date) {}

  const DayFields& Date() const { return date_; }
  /// Null where the event does not occur. Valid until the plan changes.
  PlannedOccurrence* Find(unsigned long event);
  void Put(PlannedOccurrence occurrence);
  void Remove(unsigned long event) { occurrences_.erase(event); }
  /// In the order in which they are due, those of one moment by id.
  std::vector<PlannedOccurrence> InOrder() const;

 private:
  DayFields date_;
  std::map<unsigned long, PlannedOccurrence> occurrences_;
};

}  // namespace controller
