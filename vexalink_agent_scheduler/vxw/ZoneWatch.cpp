#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

#include <cstddef>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>

namespace local_time {
namespace {

// Where `TZ` stood in the environment, or that it was not there. Held against the environment as it
// is now: setting a variable replaces its entry or appends one, unsetting moves those behind it.
class EnvironmentMark {
 public:
  bool Holds() const {
    if (environ == nullptr || environ != environment_) return false;
    if (hasZone_) {
      // An entry may be changed in place. It does not get shorter than it was as memory.
      return environ[index_] == entry_ && std::memcmp(entry_, text_.c_str(), text_.size() + 1) == 0;
    }
    return environ[index_] == nullptr && (index_ == 0 || environ[index_ - 1] == entry_);
  }

  void Set() {
    environment_ = environ;
    hasZone_ = false;
    index_ = 0;
    entry_ = nullptr;
    if (environ == nullptr) return;
    for (; environ[index_] != nullptr; ++index_) {
      entry_ = environ[index_];
      hasZone_ = std::strncmp(entry_, "TZ=", 3) == 0;
      if (hasZone_) break;
    }
    if (hasZone_) text_ = entry_;
  }

 private:
  char** environment_ = nullptr;
  bool hasZone_ = false;
  std::size_t index_ = 0;  // of the entry of TZ, else of the end
  char* entry_ = nullptr;  // of TZ, else the last
  std::string text_;       // of TZ
};

EnvironmentMark mark;
long standardOffset = 0;
int hasDaylight = 0;
unsigned generation = 0;
unsigned holds = 0;

void Renew() {
  tzset();
  mark.Set();
  standardOffset = timezone;
  hasDaylight = daylight;
  ++generation;
}

}  // namespace

unsigned ZoneGeneration() {
  if (holds != 0) return generation;
  if (!mark.Holds() || timezone != standardOffset || daylight != hasDaylight) Renew();
  return generation;
}

void ForgetZone() { ++generation; }

ZoneHold::ZoneHold() {
  ZoneGeneration();
  ++holds;
}

ZoneHold::~ZoneHold() { --holds; }

}  // namespace local_time
