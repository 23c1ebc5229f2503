#pragma once

#include <ctime>

/// The local calendar of the agent: the C library's, with one rule added.
namespace local_time {

/// Seconds that a step from day to day takes in the recurrence rules, clock change or not.
constexpr std::time_t kSecondsPerDay = 86400;

/// The local fields of an instant. False, and `out` untouched, where the C library cannot convert
/// it.
bool Fields(std::time_t instant, std::tm* out);

/// The instant of local fields (out-of-range ones are normalised), -1 where there is none. With a
/// `tm_isdst` of -1 a local time that occurs twice, because the clocks were set back, means the
/// first of the two, whatever was converted before; a time in the gap of a clock change is what
/// `mktime` makes of it. With 0 or 1 it is `mktime`'s own answer.
std::time_t Instant(std::tm fields);

/// Local midnight, or another time, of a civil day; `year` is the full year, `month` counts from 1.
/// Everything may be out of range and is normalised.
std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst);

/// Days from 1970-01-01 to a civil day of the Gregorian calendar, extended to all years;
/// `month` 1..12.
long long CivilDays(long long year, int month, int day);

/// Lengths of the months before `month` (1..12, else 0), and of `month` itself (1..12).
int DaysBeforeMonth(int month, bool leapYear);
int DaysInMonth(int month, bool leapYear);

}  // namespace local_time
