#pragma once

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

/// Walks over days in steps of exactly 86400 seconds, as the recurrence rules count them.
namespace steps {

inline VxTime At(VxTime origin, long long step) {
  return VxTime(origin.Seconds() + step * local_time::kSecondsPerDay);
}

/// Whole steps between two instants, truncated towards zero.
inline long long Between(VxTime from, VxTime to) {
  return (to.Seconds() - from.Seconds()) / local_time::kSecondsPerDay;
}

/// The first step from 0 on with which `instant` is reached.
inline long long Reaching(VxTime origin, VxTime instant) {
  const long long distance = instant.Seconds() - origin.Seconds();
  if (distance <= 0) return 0;
  return (distance + local_time::kSecondsPerDay - 1) / local_time::kSecondsPerDay;
}

}  // namespace steps
