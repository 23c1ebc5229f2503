// At which instant an event fires on a day.

#include "vexalink_agent_scheduler/vxw/EventAssert.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/SunEvent.h"

namespace {

VxTime ClockTime(const VxTime& date, int minutes) {
  return VxTime(date.GetYear(), date.GetMonth(), date.GetDay(), 0, minutes, 0, -1);
}

}  // namespace

VxTime Event::EventTime(const VxTime& date) const {
  return CalculateEventTime(date, offset, offset_minutes, latitude, longitude);
}

VxTime Event::CalculateEventTime(const VxTime& date, Scheduler::OFFSET_TYPE offset, int minutes,
                                 double latitude, double longitude) {
  if (offset == Scheduler::kClock) return ClockTime(date, minutes);
  const bool known = offset == Scheduler::kSunrise || offset == Scheduler::kSunset;
  event_assert::Check(known, event_assert::kUnknownOffset);
  if (!known) return date;
  const auto kind =
      offset == Scheduler::kSunrise ? sun_event::Kind::kSunrise : sun_event::Kind::kSunset;
  const auto& sun = sun_event::Instant(kind, date, latitude, longitude);
  if (!sun) return VxTime(-1);
  return VxTime(sun->Seconds() + std::time_t{minutes} * 60);
}
