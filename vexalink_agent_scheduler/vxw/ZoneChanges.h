#pragma once

#include <ctime>
#include <optional>
#include <vector>

namespace local_time {

/// When the clocks of the process's zone may change, as far as that is written down.
struct ZoneChanges {
  /// Years with room to count; what lies further from 1970 is left to the C library.
  static constexpr std::time_t kFarthest = 100000LL * 365 * 86400;

  /// Instants, in order. Before the first, and from each to the next, the clock stands still.
  std::vector<std::time_t> listed;
  /// From here on, past all that are listed, the C library works out each year's changes from one
  /// rule, or there are none any more. What the clock shows is then the same in all years (of UTC)
  /// that are leap years or not and begin on the same weekday, at the same second of the year: a
  /// rule names its days by their number in the year or by month, week and weekday, whatever its
  /// offsets are. Not before 1971 where there is a rule: the C library's years begin there.
  std::time_t ruleBegin = 0;
  /// Whether the rule is that of a zone file. Those of `TZ` itself may say anything.
  bool isFile = false;
};

/// Of the zone that `TZ` names at present, or of the machine's where it is not set: the listed
/// changes from the zone's file, which the C library reads too. Nothing where there is none that
/// can be understood. Reads a file.
std::optional<ZoneChanges> ReadZoneChanges();

}  // namespace local_time
