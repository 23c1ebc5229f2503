#pragma once

#include <ctime>

#include "controller/EventElement.h"

namespace controller {

/// Whether the scheduler counts days, or weeks, from the first day on to tell when the event comes:
/// every second day, say. It counts them in steps of 86,400 s from the local midnight of the first
/// day, so where the clocks have been changed since then its answer about a civil day depends on
/// the moment of the day for which it is asked.
bool CountsDays(const EventElement& event);

/// Whether that count comes out at `moment`. Only for events that count days; `moment` is not
/// before the first day begins. The days of the week and the last day are not looked at.
bool CountComesOut(const EventElement& event, std::time_t moment);

}  // namespace controller
