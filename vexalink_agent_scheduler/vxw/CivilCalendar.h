#pragma once

/// The arithmetic of the Gregorian calendar, extended to all years: no zone, no instant.
namespace local_time {

/// A date; `yday` 0 = 1 January.
struct CivilDate {
  int year = 0;
  int month = 0;  ///< 1..12
  int day = 0;    ///< 1..31
  int yday = 0;
};

/// Rounded towards minus infinity; `divisor` above 0.
constexpr long long FloorDivide(long long value, long long divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// Days from 1970-01-01 to a date; `month` 1..12, `day` any number.
long long CivilDays(long long year, int month, int day);

/// The date that lies `days` after 1970-01-01, of a year that an int holds with room to spare.
CivilDate DateOf(long long days);

/// The weekday, 0 = Sunday .. 6 = Saturday, of the day `days` after 1970-01-01.
constexpr int WeekdayOf(long long days) {
  constexpr long long kThursday = 4;
  return static_cast<int>(days + kThursday - FloorDivide(days + kThursday, 7) * 7);
}

constexpr bool IsLeapYear(long long year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

/// Lengths of the months before `month` (1..12, else 0), and of `month` itself (1..12).
int DaysBeforeMonth(int month, bool leapYear);
int DaysInMonth(int month, bool leapYear);

}  // namespace local_time
