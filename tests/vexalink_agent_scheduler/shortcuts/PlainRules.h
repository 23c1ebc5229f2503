#pragma once

#include <compare>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// The rules of events as they are written, day by day and event by event; every local field comes
/// from the plain calendar. `Records` takes the line numbers of assertion records in their order.
namespace plain {

using Records = std::vector<int>;
using Table = std::map<unsigned long, Event*>;

/// 0 where there is none.
std::time_t NthDayOfMonth(int month, int weekday, int year, int period);
bool OccursOnDate(const Event& event, std::time_t date, Records* records);
std::time_t EventTime(const Event& event, std::time_t date, Records* records);
std::pair<std::time_t, bool> NextOccurrence(const Event& event, Records* records);

/// The ids of what happens on a day, in their order.
std::vector<unsigned long> IdsOnDate(const Table& events, std::time_t date, Records* records);

struct Listed {
  unsigned long id;
  int year;
  int month;
  int day;
  int hour;
  int minute;

  bool operator==(const Listed&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Listed& listed);

/// The listing of the days between two instants.
std::vector<Listed> List(const Table& events, std::time_t from, std::time_t to, Records* records);

}  // namespace plain
