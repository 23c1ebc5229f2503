#pragma once

#include <cstddef>
#include <ctime>
#include <optional>
#include <vector>

#include "controller/House.h"
#include "controller/ScratchAgent.h"
#include "controller/api/CivilRule.h"

namespace controller {

/// An occurrence of one event.
struct ProbedOccurrence {
  DayFields day;
  /// To the minute, without the random part.
  std::time_t time = 0;
};

/// One event that is shown to a scratch scheduler and asked about. Short-lived: see `ScratchAgent`.
class EventProbe {
 public:
  /// Throws a `Failure`.
  EventProbe(const House& house, const EventElement& event);
  EventProbe(const DriverLoader& loader, const Place& place, const EventElement& event);

  /// The event as the scheduler keeps it; nothing where it does not take it.
  const std::optional<EventElement>& Stored() const { return stored_; }
  /// What of the event would be another once it is stored, apart from the start of an event by week
  /// of the month; the empty text where nothing is.
  const std::string& Trouble() const { return trouble_; }

  /// When it comes on the days of a span, as the scheduler decides at the beginning of each.
  std::vector<ProbedOccurrence> On(const DaySpan& days);
  /// The next occurrences, the first of them on `from` or later, at most `count`. Those before the
  /// moment `after` are left out.
  std::vector<ProbedOccurrence> Next(const DayFields& from, std::time_t after, std::size_t count);

 private:
  Place place_;
  ScratchAgent scratch_;
  std::optional<EventElement> stored_;
  std::string trouble_;
};

}  // namespace controller
