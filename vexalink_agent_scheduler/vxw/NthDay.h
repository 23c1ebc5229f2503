#pragma once

#include "vexalink_agent_scheduler/vxw/CivilDay.h"

/// The search for the nth weekday of a month, by the walk that schedules rely on.
namespace nth_day {

/// See Event::GetNthDayOfMonth, of which this is the search: `month` 1..12, `weekday` 1 = Sunday ..
/// 7 = Saturday, `period` 1..4, any other number for the last. The epoch where no day matches.
///
/// Every step of the walk counts that shows the weekday, so none can be left out by the calendar
/// alone: a change of the clocks may show a day twice or not at all. As long as the clock stands
/// still (see ClockSpans.h) each step shows the day after the one before, and those in between two
/// of one weekday are not looked at; where that is not known, each is.
VxTime Find(int month, int weekday, int year, int period);

/// The local day of what `Find` answers. Kept while the zone stays what it is, because every event
/// of a kind asks for it on each day of the month.
CivilDay FindDay(int month, int weekday, int year, int period);

}  // namespace nth_day
