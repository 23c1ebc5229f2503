#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "controller/EventElement.h"

namespace controller {

/// The instant of "YYYY-MM-DDTHH:MM:SS", local time; nothing where the text has another form or no
/// such day or time can be. A time that occurs twice, because the clocks were set back, means the
/// first of the two; one in the gap of a clock change is what `mktime` makes of it.
std::optional<std::time_t> ParseLocalTime(const std::string& text);

/// The instant of a local time, by the same rule. Hours and minutes beyond the day's, and days
/// beyond the month's, lead on.
std::time_t LocalInstant(const DayFields& day, int hour, int minute);

/// The civil day on which an instant lies here; all 0 where the C library cannot tell.
DayFields LocalDay(std::time_t moment);

/// The civil day so many days later, or earlier.
DayFields DaysAfter(const DayFields& day, long days);

/// How many days `later` comes after `earlier`.
long DaysBetween(const DayFields& earlier, const DayFields& later);

/// RFC 3339 with the zone's offset at that instant, "2026-11-21T16:04:00+01:00".
std::string MomentText(std::time_t moment);

/// 20261121, and back.
int DayNumber(const DayFields& day);
DayFields DayOfNumber(long number);

}  // namespace controller
