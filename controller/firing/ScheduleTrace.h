#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// What the scheduler writes into the log when it has drawn up a day's list: the day, and when each
/// of its events will fire, the random part included. Nothing else tells that.
struct ScheduleTrace {
  struct Entry {
    unsigned long event = 0;
    /// Local time; of which day is not said.
    int hour = 0;
    int minute = 0;
  };
  DayFields day;
  /// In the order in which they will fire.
  std::vector<Entry> entries;
};

/// Gathers a trace from the lines of the log, one after the other.
class ScheduleTraceReader {
 public:
  /// A line that is no part of a trace is left alone.
  void Read(std::string_view line);
  /// The trace that has been read since this was last asked; nothing where there was none. Of
  /// several the last.
  std::optional<ScheduleTrace> Take();

 private:
  std::optional<ScheduleTrace> trace_;
};

}  // namespace controller
