#include "vexalink_agent_scheduler/vxw/CivilCalendar.h"

#include <array>
#include <cstddef>

namespace local_time {
namespace {

constexpr std::array<int, 13> kDaysBefore = {0,   31,  59,  90,  120, 151, 181,
                                             212, 243, 273, 304, 334, 365};

}  // namespace

long long CivilDays(long long year, int month, int day) {
  constexpr long long kDaysBefore1970 = 719163;  // 0001-01-01 counts as day 1
  const long long past = year - 1;
  const long long leapDays = FloorDivide(past, 4) - FloorDivide(past, 100) + FloorDivide(past, 400);
  return past * 365 + leapDays + DaysBeforeMonth(month, IsLeapYear(year)) + day - kDaysBefore1970;
}

CivilDate DateOf(long long days) {
  // By the mean length of a year it is this one or a neighbour.
  constexpr long long kDaysOf400Years = 146097;
  long long year = 1970 + FloorDivide(days * 400, kDaysOf400Years);
  long long begin = CivilDays(year, 1, 1);
  while (days < begin) begin = CivilDays(--year, 1, 1);
  while (days - begin >= (IsLeapYear(year) ? 366 : 365)) begin = CivilDays(++year, 1, 1);
  const bool leapYear = IsLeapYear(year);
  const int yday = static_cast<int>(days - begin);
  // No month has more than 31 days, and all of them together lack less than one.
  int month = yday / 31 + 1;
  if (yday >= DaysBeforeMonth(month, leapYear) + DaysInMonth(month, leapYear)) ++month;
  return {static_cast<int>(year), month, yday - DaysBeforeMonth(month, leapYear) + 1, yday};
}

int DaysBeforeMonth(int month, bool leapYear) {
  if (month < 1 || month > 12) return 0;
  return kDaysBefore[static_cast<std::size_t>(month) - 1] + (leapYear && month > 2 ? 1 : 0);
}

int DaysInMonth(int month, bool leapYear) {
  return kDaysBefore[static_cast<std::size_t>(month)] -
         kDaysBefore[static_cast<std::size_t>(month) - 1] + (leapYear && month == 2 ? 1 : 0);
}

}  // namespace local_time
