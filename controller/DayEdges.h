#pragma once

#include <ctime>
#include <string>

#include "controller/EventElement.h"

namespace controller {

/// The first second of a civil day here, which is not 00:00 where the clocks skip that; of a day
/// that the calendar here leaves out, the first second of the next.
std::time_t FirstSecondOf(const DayFields& day);

/// Seconds east of UTC; 0 where the C library cannot tell.
long OffsetAt(std::time_t moment);

/// "2026-03-29" of a day in words for people: "Sun 2026-03-29".
std::string NamedDay(const DayFields& day);

}  // namespace controller
