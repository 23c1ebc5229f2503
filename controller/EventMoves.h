#pragma once

#include <map>
#include <string>

#include "controller/EventElement.h"
#include "controller/ProjectStore.h"

namespace controller {

/// The number that an event has from now on, by the one that it had; 0 where it is gone, and
/// another event has the number.
using EventMoves = std::map<unsigned long, unsigned long>;

/// The events of a schedule as the scheduler keeps it, by number. Throws a `Failure` where it does
/// not parse.
std::map<unsigned long, EventElement> EventsIn(const std::string& state);

/// Which events have another number in the schedule that takes the place of the one before. They
/// are known by their descriptions.
EventMoves MovesBetween(const std::map<unsigned long, EventElement>& before,
                        const std::map<unsigned long, EventElement>& after);

/// In the project's table of what was decided about each occurrence.
void MoveDecisions(ProjectStore& store, const EventMoves& moves);

/// What the events do goes with them. What then belongs to no event is put aside with those that
/// were deleted, and what was put aside of an event of that number and description comes back.
void MoveKeptProgramming(ProjectStore& store, const std::map<unsigned long, EventElement>& before,
                         const std::map<unsigned long, EventElement>& after);

}  // namespace controller
