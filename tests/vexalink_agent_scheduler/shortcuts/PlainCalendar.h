#pragma once

#include <ctime>

/// The local calendar by the C library alone, asked afresh for every answer: slow, and nothing is
/// kept.
namespace plain {

/// The local fields of an instant; false, and `out` untouched, where there are none.
bool Fields(std::time_t instant, std::tm* out);

/// The instant of local fields, full year and month from 1; -1 where there is none. With an `isdst`
/// of -1 it is the first with these fields in the three hours before what `mktime` answers.
std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst);

/// How often `Instant` was asked for a time that a change of the clocks left out or brings twice
/// while the daylight-saving flag stays (the date line was moved, say), the latter with a flag
/// forced. There `mktime` goes by what it was asked before, to either side: such an answer is not
/// to be compared.
unsigned long UnsettledTimes();

/// `Instant` with the three hours walked second by second, which takes milliseconds.
std::time_t InstantBySeconds(int year, int month, int day, int hour, int minute, int second);

/// A local date and its weekday, all 0 where the instant cannot be converted.
struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
  int weekday = 0;  // 1 = Sunday

  explicit Date(std::time_t instant);
  bool IsSame(const Date& other) const {
    return year == other.year && month == other.month && day == other.day;
  }
  bool IsLater(const Date& other) const;
};

bool IsLeapYear(int year);
/// `month` 1..12.
int DaysInMonth(int month, bool leapYear);

}  // namespace plain
