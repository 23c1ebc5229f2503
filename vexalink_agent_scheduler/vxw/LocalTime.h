#pragma once

#include <ctime>

#include "vexalink_agent_scheduler/vxw/CivilCalendar.h"
#include "vexalink_agent_scheduler/vxw/ClockSpans.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

/// The local calendar of the agent: the C library's, with one rule added and its answers kept.
namespace local_time {

/// Seconds that a step from day to day takes in the recurrence rules, clock change or not.
constexpr std::time_t kSecondsPerDay = 86400;

/// A civil day of the local calendar, with at most one change of the clocks, which keeps to the
/// day: whatever lies on it can be worked out without the C library. Before `begin` the clocks have
/// stood still for three hours.
struct Day {
  std::time_t begin = 0;  ///< local midnight
  std::time_t change =
      0;  ///< the first instant after a change of the clocks; `end` where there is none
  std::time_t end = 0;  ///< the next local midnight
  long long civil = 0;  ///< days since 1970-01-01
  int year = 0;         ///< full year
  int month = 0;        ///< 1..12
  int day = 0;          ///< 1..31
  int weekday = 0;      ///< 0 = Sunday .. 6 = Saturday
  int yday = 0;         ///< 0 = 1 January

  Clock before;  ///< what the clock shows before the change
  Clock after;   ///< and after it

  bool HasChange() const { return change != end; }
  const Clock& ClockAt(std::time_t instant) const { return instant < change ? before : after; }
  /// The instant of a time of day, 0 to 86399 seconds, the first of two; -1 where the change leaves
  /// that time out.
  std::time_t At(long secondOfDay) const;
};

/// The day of an instant; null where the clocks change about midnight or in a way that is not kept,
/// and where the C library cannot convert it. Days are kept while the zone stays what it is (see
/// ZoneWatch.h): what is answered is what `localtime` would answer. Good until the next call of
/// this namespace.
const Day* FindDay(std::time_t instant);

/// The span of a day, remembered so that asking whether instants lie on it, tick after tick, costs
/// a few comparisons.
class SameDay {
 public:
  /// Whether two instants lie on one local day that can be kept; where it cannot, false.
  bool AreOn(std::time_t one, std::time_t other) {
    if (generation_ != ZoneGeneration() || !Holds(one)) Remember(one);
    return Holds(one) && Holds(other);
  }

 private:
  bool Holds(std::time_t instant) const { return instant >= begin_ && instant < end_; }
  void Remember(std::time_t instant);

  unsigned generation_ = 0;
  std::time_t begin_ = 0;
  std::time_t end_ = 0;
};

/// The local fields of an instant. False, and `out` untouched, where the C library cannot convert
/// it.
bool Fields(std::time_t instant, std::tm* out);

/// The instant of local fields (out-of-range ones are normalised), -1 where there is none. With an
/// `isdst` of -1 a local time that occurs twice, because the clocks were set back, means the first
/// of the two, whatever was converted before; a time in the gap of a clock change is what `mktime`
/// makes of it. With 0 or 1 it is `mktime`'s own answer. `year` is the full year, `month` counts
/// from 1.
std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst);

/// The zone's name at the present moment, daylight-saving or standard; the C library's, good until
/// the next conversion. Its names follow its last conversion, which this makes one of the present.
const char* PresentZoneName();

/// The daylight-saving flag of the present moment: 1 in force, 0 not, or not known.
int PresentDaylightFlag();

}  // namespace local_time
