#pragma once

#include <ctime>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// The rules of recurrence a second time, read plainly: day by day, nothing kept, nothing skipped
/// that could matter, the C library asked for every field. Of `Event` only the fields are used.
/// Slow on purpose; what the product answers and records must be the same.
namespace plain {

/// Line numbers of assertion records, in their order.
using Records = std::vector<int>;

/// Whether the event happens on the local date of `date`.
bool OccursOnDate(const Event& event, std::time_t date, Records& records);

/// The `period`-th `weekday` of a month; 0 where there is none.
std::time_t GetNthDayOfMonth(int month, int weekday, int year, int period, Records& records);

/// When the event fires on the local date of `date`; `now` is the present moment.
std::time_t EventTime(const Event& event, std::time_t date, std::time_t now, Records& records);

/// The next occurrence, and whether there is one.
std::pair<std::time_t, bool> GetNextOccurance(const Event& event, std::time_t now,
                                              Records& records);

/// The first step n in `first`..`last` on which the event happens at `origin` + n * 86400; -1 where
/// there is none.
long long FindOccurrence(const Event& event, std::time_t origin, long long first, long long last);

/// One line for each occurrence from the local date of `from` to that of `to`: "id
/// year-month-day hour:minute".
std::vector<std::string> List(const std::map<unsigned long, const Event*>& events, std::time_t from,
                              std::time_t to, std::time_t now, Records& records);

}  // namespace plain
