#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "controller/DriverLoader.h"
#include "controller/Place.h"
#include "controller/firing/ScheduleTrace.h"

namespace controller {

/// The list of the day on which `moment` lies, as a scheduler with this schedule draws it up at
/// that moment: events that have passed included, with the random parts that come of `seed`.
/// Asked of a scheduler of its own, on a clock of its own; the C library's generator is left in
/// another state. Throws a `Failure` where `persisted` does not parse.
ScheduleTrace DrawDay(const DriverLoader& loader, const Place& place, const std::string& persisted,
                      std::time_t moment, unsigned int seed);

/// The lists that tell what a scheduler has done and will do.
struct DayDraws {
  /// As they were drawn up when their days began: those of the days of `from` and of `now`, and of
  /// the days before these.
  std::vector<ScheduleTrace> begun;
  /// As a scheduler that begins now draws up today's. It may hold other events, because days that
  /// are counted in steps of 86400 s may come out otherwise than at midnight.
  ScheduleTrace taken;
};

/// With the random parts that the project's days have. As for `DrawDay`.
DayDraws DrawDays(const DriverLoader& loader, const Place& place, const std::string& persisted,
                  std::time_t from, std::time_t now, const std::string& projectId);

}  // namespace controller
