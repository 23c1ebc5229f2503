#pragma once

namespace local_time {

/// Counts the changes of the process's time zone, so that whoever keeps something of the local
/// calendar can tell when to forget it: what was kept under another number is stale.
///
/// Seen at once: `TZ` set, changed or unset by `setenv`, `putenv` and `unsetenv`, whether or not
/// `tzset` was called, and a `tzset` that changed the zone's standard offset or whether it has
/// daylight-saving time. A `tzset` that took up another file behind /etc/localtime and changed
/// neither is seen by the next `ForgetZone`, which the agent's tick calls every minute. Costs a few
/// comparisons of pointers, no system call.
unsigned ZoneGeneration();

/// Makes all that was kept stale.
void ForgetZone();

/// While one of these lives the zone is taken to stay as it is, which spares work that converts a
/// great many instants a look at the environment for each. For the length of one operation.
class ZoneHold {
 public:
  ZoneHold();
  ~ZoneHold();
  ZoneHold(const ZoneHold&) = delete;
  ZoneHold& operator=(const ZoneHold&) = delete;
};

}  // namespace local_time
