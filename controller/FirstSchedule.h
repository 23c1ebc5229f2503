#pragma once

#include <ctime>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// What a new project starts with: a handful of events of the kinds that a house has, from the day
/// of `now` on, and one called "Welcome" that comes once, at the next full minute (at the one after
/// it where that is less than two seconds away).
std::vector<EventElement> FirstSchedule(std::time_t now);

}  // namespace controller
