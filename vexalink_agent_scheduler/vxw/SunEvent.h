#pragma once

#include <optional>

#include "vexalink_agent_scheduler/vxw/VxTime.h"

/// The sun of a day as an instant of the local calendar.
namespace sun_event {

enum class Kind { kSunrise, kSunset };

/// When the sun rises or sets on the local date of `date` at a place in degrees (clamped to 85 and
/// 175). Where it does not that day, the time of day of the nearest day with one takes its place:
/// while the pole is lit the last one, else the next. Nothing where no day of the year has one. The
/// daylight-saving flag is that of the present moment.
std::optional<VxTime> Instant(Kind kind, const VxTime& date, double latitude, double longitude);

}  // namespace sun_event
