#pragma once

#include <ctime>
#include <string>

#include "controller/DriverLoader.h"
#include "controller/Place.h"
#include "controller/firing/ScheduleTrace.h"

namespace controller {

/// The list of the day on which `moment` lies, as a scheduler with this schedule draws it up when
/// that day begins: events that have passed included, with the random parts that come of `seed`.
/// Asked of a scheduler of its own, on a clock of its own; the C library's generator is left in
/// another state. Throws a `Failure` where `persisted` does not parse.
ScheduleTrace DrawDay(const DriverLoader& loader, const Place& place, const std::string& persisted,
                      std::time_t moment, unsigned int seed);

}  // namespace controller
