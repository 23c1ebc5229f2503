#pragma once

#include <ctime>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// The clocks here are put forward or back.
struct ClockChange {
  /// The first second of the new time.
  std::time_t at = 0;
  /// Seconds east of UTC.
  long before = 0;
  long after = 0;
};

/// The clock changes in (from, to], by the zone that the process is in. A change that is taken back
/// within four days is not seen.
std::vector<ClockChange> ClockChangesBetween(std::time_t from, std::time_t to);

/// Civil days that follow each other, both ends included.
struct DaySpan {
  DayFields from;
  DayFields to;
};

/// A stretch of days that the scheduler may be asked about at once.
struct AskedSpan {
  /// What is to be asked for.
  DaySpan asked;
  /// Of which days the answers count.
  DaySpan counts;
};

/// Divides `days` so that the scheduler, which steps through a listing in 86,400 s, looks at each
/// day at the moment when that day begins: that is when it makes up the list of a day. So a stretch
/// ends with each clock change. Ascending; together they count each day once.
std::vector<AskedSpan> SplitAtClockChanges(const DaySpan& days);

/// Whether a civil day begins at 00:00; clocks that are put forward then make it begin later.
bool BeginsAtMidnight(const DayFields& day);

}  // namespace controller
