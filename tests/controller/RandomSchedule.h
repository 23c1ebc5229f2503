#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

int Between(std::mt19937& random, int least, int most);
bool OneIn(std::mt19937& random, int count);
/// A day of `year`, or of the year before.
DayFields RandomDay(std::mt19937& random, int year);

/// An event of any kind around the first day of `year`, odd ones among them; without id and
/// description.
EventElement RandomEvent(std::mt19937& random, int year);
/// So many, with ids from 1 and descriptions.
std::vector<EventElement> RandomEvents(std::mt19937& random, std::size_t count, int year);

/// A schedule as the scheduler persists it.
std::string ScheduleOf(const std::vector<EventElement>& events);

}  // namespace controller
