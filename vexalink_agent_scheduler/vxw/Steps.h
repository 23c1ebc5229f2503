#pragma once

#include <limits>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

/// Walks over days in steps of exactly 86400 seconds, as the recurrence rules count them.
namespace steps {

inline VxTime At(VxTime origin, long long step) {
  return VxTime(origin.Seconds() + step * local_time::kSecondsPerDay);
}

/// Seconds from one instant to another; the farthest there is where 64 bits do not hold them.
inline long long SecondsBetween(VxTime from, VxTime to) {
  long long seconds = 0;
  if (!__builtin_sub_overflow(to.Seconds(), from.Seconds(), &seconds)) return seconds;
  return to < from ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
}

/// Whole steps between two instants, truncated towards zero.
inline long long Between(VxTime from, VxTime to) {
  return SecondsBetween(from, to) / local_time::kSecondsPerDay;
}

/// The first step from 0 on with which `instant` is reached.
inline long long Reaching(VxTime origin, VxTime instant) {
  const long long distance = SecondsBetween(origin, instant);
  if (distance <= 0) return 0;
  return (distance - 1) / local_time::kSecondsPerDay + 1;
}

}  // namespace steps
