#pragma once

#include <ctime>
#include <vector>

#include "controller/DriverInstance.h"
#include "controller/EventElement.h"
#include "controller/firing/EventCatalog.h"

namespace controller {

/// One occurrence as the scheduler lists it.
struct ListedOccurrence {
  unsigned long event = 0;
  /// Without the random part; the seconds of a sun time are left out.
  std::time_t planned = 0;
};

/// What the scheduler says occurs on a civil day, by event id, each event once.
std::vector<ListedOccurrence> ListDay(DriverInstance& scheduler, EventCatalog& catalog,
                                      const DayFields& day);

/// The instant of an occurrence of `event` on `day` that the scheduler lists at `hour`:`minute`,
/// which may be those of the day before or after.
std::time_t PlannedInstant(const EventElement& event, const DayFields& day, int hour, int minute);

/// The random part, in minutes, that leads from `planned` to the local time `hour`:`minute`, at
/// most `spread` to both sides; of several the smallest. Nothing where none does.
std::optional<long> DrawnMinutes(std::time_t planned, long spread, int hour, int minute);

}  // namespace controller
