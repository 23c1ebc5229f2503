#pragma once

#include <functional>
#include <vector>

#include "controller/DriverInstance.h"
#include "controller/EventElement.h"
#include "controller/api/ClockChanges.h"

namespace controller {

/// An occurrence as the scheduler lists it.
struct ListedTime {
  unsigned long event = 0;
  DayFields day;
  /// Local time; of the day before or after where the event's minutes lead there.
  int hour = 0;
  int minute = 0;
};

/// The event of an id that the scheduler has listed.
using EventLookup = std::function<const EventElement&(unsigned long id)>;

/// What the scheduler lists on the days that count, day by day and each event once a day, as it
/// decides when the day begins.
std::vector<ListedTime> ListDays(DriverInstance& scheduler, const AskedSpan& span,
                                 const EventLookup& eventOf);

}  // namespace controller
