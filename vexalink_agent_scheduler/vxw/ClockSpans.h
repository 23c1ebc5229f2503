#pragma once

#include <ctime>

#include "vexalink_agent_scheduler/vxw/CivilCalendar.h"

namespace local_time {

/// What a clock shows beside the time.
struct Clock {
  long offset = 0;  ///< seconds east of UTC
  int isdst = 0;
  const char* zone = nullptr;

  /// The name follows from the others.
  bool IsSame(const Clock& other) const { return offset == other.offset && isdst == other.isdst; }
};

/// The instants from `begin` to before `end`, on which the clock stands still: local time is UTC
/// and one offset.
struct ClockSpan {
  std::time_t begin = 0;
  std::time_t end = 0;
  Clock clock;

  bool Holds(std::time_t instant) const { return instant >= begin && instant < end; }
  /// Days from 1970-01-01 to the local day of an instant that it holds.
  long long CivilDaysAt(std::time_t instant) const {
    constexpr long long kSecondsPerDay = 86400;
    return FloorDivide(instant + clock.offset, kSecondsPerDay);
  }
};

/// A span that holds an instant, so that whatever lies on it can be worked out without the C
/// library; null where none is known. Good until the next call.
///
/// Where the clocks may change is taken from the zone's file (see ZoneChanges.h), what they show
/// from the C library: from its own conversion at both ends of a listed span; under a rule from a
/// year of the same kind, on which the changes are looked for. A clock that a rule sets is taken to
/// stay set for a day at least, in a zone file's rule for eight. Reading the file and looking for
/// changes costs some hundred conversions, so nothing is known before a zone has been asked for as
/// many: a tick never reads a file.
const ClockSpan* FindSpan(std::time_t instant);

}  // namespace local_time
