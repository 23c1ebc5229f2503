#pragma once

#include <bitset>
#include <ctime>

#include "controller/EventElement.h"
#include "controller/firing/ScheduleTrace.h"

namespace controller {

/// What the local clock shows at one moment.
struct LocalMinute {
  DayFields day;
  int minuteOfDay = 0;
  /// Seconds east of UTC.
  long offset = 0;

  static LocalMinute At(std::time_t moment);
};

/// The minutes of the local clock in which a scheduler may fire. It says itself, when it draws up a
/// day's list, in which minute each event comes, so the seconds of all other minutes need no tick.
class BusyMinutes {
 public:
  void TakeUp(const ScheduleTrace& trace);
  bool Has(const LocalMinute& minute) const {
    return minutes_[static_cast<std::size_t>(minute.minuteOfDay)];
  }

 private:
  std::bitset<1440> minutes_;
};

}  // namespace controller
