#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"

#include <tuple>

namespace plain {
namespace {

constexpr std::time_t kThreeHours = 3 * 3600;

bool SameFields(const std::tm& a, const std::tm& b) {
  return std::tie(a.tm_sec, a.tm_min, a.tm_hour, a.tm_mday, a.tm_mon, a.tm_year) ==
         std::tie(b.tm_sec, b.tm_min, b.tm_hour, b.tm_mday, b.tm_mon, b.tm_year);
}

// False where mktime fails; `fields` are what it makes of them.
bool Make(std::tm* fields, std::time_t* out) {
  fields->tm_wday = -1;
  *out = std::mktime(fields);
  return fields->tm_wday >= 0;
}

std::tm Unnormalised(int year, int month, int day, int hour, int minute, int second, int isdst) {
  std::tm fields{};
  fields.tm_year = static_cast<int>(static_cast<long long>(year) - 1900);
  fields.tm_mon = static_cast<int>(static_cast<long long>(month) - 1);
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = isdst;
  return fields;
}

unsigned long unsettled = 0;

// `made` is what mktime made of `asked` with an isdst of -1, at `instant`.
bool IsUnsettled(std::tm asked, const std::tm& made, std::time_t instant) {
  const std::time_t moved = timegm(&asked) - (instant + made.tm_gmtoff);
  std::tm otherSide;
  return moved != 0 && Fields(instant + moved, &otherSide) && otherSide.tm_isdst == made.tm_isdst;
}

// Whether another instant has these fields and this flag.
bool IsTwice(const std::tm& fields, std::time_t instant) {
  for (std::time_t other = instant - kThreeHours; other <= instant + kThreeHours; other += 300) {
    std::tm local;
    if (!Fields(other, &local) || local.tm_gmtoff == fields.tm_gmtoff) continue;
    const std::time_t twin = instant + fields.tm_gmtoff - local.tm_gmtoff;
    if (Fields(twin, &local) && SameFields(local, fields) && local.tm_isdst == fields.tm_isdst) {
      return true;
    }
  }
  return false;
}

}  // namespace

unsigned long UnsettledTimes() { return unsettled; }

bool Fields(std::time_t instant, std::tm* out) {
  const std::tm* local = std::localtime(&instant);
  if (local == nullptr) return false;
  *out = *local;
  return true;
}

std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst) {
  const std::tm asked = Unnormalised(year, month, day, hour, minute, second, isdst);
  std::tm fields = asked;
  std::time_t instant = 0;
  if (!Make(&fields, &instant)) return -1;
  if (isdst >= 0) {
    if (IsTwice(fields, instant)) ++unsettled;
    return instant;
  }
  if (IsUnsettled(asked, fields, instant)) ++unsettled;
  // Where the clocks were set back since `earlier`, the same fields came that much earlier.
  constexpr std::time_t kStep = 300;  // no clock is held shorter
  std::time_t first = instant;
  for (std::time_t earlier = instant - kThreeHours; earlier < instant; earlier += kStep) {
    std::tm local;
    if (!Fields(earlier, &local)) continue;
    const std::time_t twin = instant - (local.tm_gmtoff - fields.tm_gmtoff);
    if (twin >= first || twin < instant - kThreeHours) continue;
    if (Fields(twin, &local) && SameFields(local, fields)) first = twin;
  }
  return first;
}

std::time_t InstantBySeconds(int year, int month, int day, int hour, int minute, int second) {
  std::tm fields = Unnormalised(year, month, day, hour, minute, second, -1);
  std::time_t instant = 0;
  if (!Make(&fields, &instant)) return -1;
  for (std::time_t earlier = instant - kThreeHours; earlier < instant; ++earlier) {
    std::tm local;
    if (Fields(earlier, &local) && SameFields(local, fields)) return earlier;
  }
  return instant;
}

Date::Date(std::time_t instant) {
  std::tm local;
  if (!Fields(instant, &local)) return;
  year = static_cast<int>(local.tm_year + 1900LL);
  month = local.tm_mon + 1;
  day = local.tm_mday;
  weekday = local.tm_wday + 1;
}

bool Date::IsLater(const Date& other) const {
  return std::tie(year, month, day) > std::tie(other.year, other.month, other.day);
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(int month, bool leapYear) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && leapYear ? 29 : kDays[month - 1];
}

}  // namespace plain
