#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

#include <string>

namespace local_time {

void ZoneMark::Set() {
  // Goes with the library, which may be unloaded and loaded again in one process.
  static std::string kept;
  environment_ = environ;
  standardOffset_ = timezone;
  hasDaylight_ = daylight;
  hasZone_ = false;
  index_ = 0;
  entry_ = nullptr;
  if (environ == nullptr) return;
  for (; environ[index_] != nullptr; ++index_) {
    entry_ = environ[index_];
    hasZone_ = std::strncmp(entry_, "TZ=", 3) == 0;
    if (hasZone_) break;
  }
  if (!hasZone_) return;
  kept = entry_;
  text_ = kept.c_str();
  size_ = kept.size() + 1;
}

void ZoneState::Renew() {
  tzset();
  mark.Set();
  ++generation;
}

}  // namespace local_time
