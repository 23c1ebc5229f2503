#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "vexalink_agent_scheduler/vxw/VxTime.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

/// The sun of a day as an instant of the local calendar.
namespace sun_event {

enum class Kind { kSunrise, kSunset };

/// An answer of `Instant`, and all that it depends on: for one date at one site in one present
/// moment, which has the daylight-saving flag, while the time zone stays what it is. All events
/// that are asked about a day share it.
struct Kept {
  unsigned generation = 0;  // of the zone; 0: nothing is kept here
  VxTime date;
  std::time_t present = 0;
  double latitude = 0;
  double longitude = 0;
  std::optional<VxTime> instant;

  bool Answers(const VxTime& day, double north, double east) const {
    return date == day && latitude == north && longitude == east &&
           generation == local_time::ZoneGeneration() && present == local_time::Present();
  }
};

/// The last answer of each kind; in sight so that the next event of a day costs no call.
inline constinit std::array<Kept, 2> latest{};

/// The answer of `Instant` where it is not the last one.
const Kept& Find(Kind kind, const VxTime& date, double latitude, double longitude);

/// When the sun rises or sets on the local date of `date` at a place in degrees (clamped to 85 and
/// 175). Where it does not that day, the time of day of the nearest day with one takes its place:
/// while the pole is lit the last one, else the next. Nothing where no day of the year has one. The
/// daylight-saving flag is that of the present moment. Good until the next call.
inline const std::optional<VxTime>& Instant(Kind kind, const VxTime& date, double latitude,
                                            double longitude) {
  const Kept& last = latest[static_cast<std::size_t>(kind)];
  if (last.Answers(date, latitude, longitude)) return last.instant;
  return Find(kind, date, latitude, longitude).instant;
}

}  // namespace sun_event
