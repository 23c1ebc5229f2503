#pragma once

#include <ctime>

#include "controller/EventElement.h"
#include "controller/Place.h"

namespace controller {

/// Whether the sun stays up, or down, all day.
enum class Polar { kNo, kDay, kNight };

/// By declination and hour angle, the sun's upper edge at the horizon with refraction (a zenith of
/// 90.833 degrees), for the whole day at once: exact to the day, but for the days on which it
/// begins or ends.
Polar PolarOn(const DayFields& day, const Place& place);

/// Roughly when the scheduler has the sun rise or set on a civil day, within minutes: the
/// scheduler's answers are hours and minutes only, and this tells of which day they are. Where the
/// sun does not rise or set it is the time of the nearest day on which it does, searched as the
/// scheduler searches.
std::time_t SunEstimate(const DayFields& day, OffsetBase base, const Place& place);

}  // namespace controller
