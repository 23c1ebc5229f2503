#include "vexalink_agent_scheduler/vxw/LocalTime.h"

#include <array>
#include <cstdint>

namespace local_time {
namespace {

constexpr std::time_t kLongestSetBack = 3 * 3600;

bool SameFields(const std::tm& a, const std::tm& b) {
  return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour &&
         a.tm_mday == b.tm_mday && a.tm_mon == b.tm_mon && a.tm_year == b.tm_year;
}

// `instant` has the local fields `fields`; so may an earlier one, if the clocks were set back
// since.
std::time_t FirstOfTwo(std::time_t instant, const std::tm& fields) {
  std::tm before;
  if (!Fields(instant - kLongestSetBack, &before)) return instant;
  const std::time_t setBack = before.tm_gmtoff - fields.tm_gmtoff;
  if (setBack <= 0 || setBack > kLongestSetBack) return instant;
  std::tm twin;
  if (!Fields(instant - setBack, &twin) || !SameFields(twin, fields)) return instant;
  return instant - setBack;
}

constexpr std::array<int, 13> kDaysBefore = {0,   31,  59,  90,  120, 151, 181,
                                             212, 243, 273, 304, 334, 365};

}  // namespace

bool Fields(std::time_t instant, std::tm* out) {
  const std::tm* local = std::localtime(&instant);
  if (local == nullptr) return false;
  *out = *local;
  return true;
}

std::time_t Instant(std::tm fields) {
  const bool firstOfTwo = fields.tm_isdst < 0;
  fields.tm_wday = -1;  // mktime leaves it so where it fails; -1 is also a legitimate instant
  const std::time_t instant = std::mktime(&fields);
  if (!firstOfTwo || fields.tm_wday < 0) return instant;
  return FirstOfTwo(instant, fields);
}

std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst) {
  std::tm fields{};
  // Any number may stand in a persisted event: subtracted in 64 bits, then narrowed.
  fields.tm_year = static_cast<int>(std::int64_t{year} - 1900);
  fields.tm_mon = static_cast<int>(std::int64_t{month} - 1);
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = isdst;
  return Instant(fields);
}

long long CivilDays(long long year, int month, int day) {
  constexpr long long kDaysBefore1970 = 719163;  // 0001-01-01 counts as day 1
  const auto quotient = [](long long value, long long divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
  };
  const long long past = year - 1;
  const bool leapYear = quotient(year, 4) * 4 == year &&
                        (quotient(year, 100) * 100 != year || quotient(year, 400) * 400 == year);
  return past * 365 + quotient(past, 4) - quotient(past, 100) + quotient(past, 400) +
         DaysBeforeMonth(month, leapYear) + day - kDaysBefore1970;
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
