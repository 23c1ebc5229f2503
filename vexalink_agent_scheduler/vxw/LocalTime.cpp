#include "vexalink_agent_scheduler/vxw/LocalTime.h"

#include <array>
#include <cstdint>

#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace local_time {
namespace {

constexpr std::time_t kLongestSetBack = 3 * 3600;
constexpr std::size_t kKeptDays = 2048;  // a little over five years, a power of two

struct KeptDay {
  unsigned generation = 0;  // 0: nothing is kept here
  Day day;
};

std::array<KeptDay, kKeptDays> kept;
long lastOffset = 0;  // of the day that was found last, to guess the civil day of an instant

KeptDay& Slot(long long civil) { return kept[static_cast<std::size_t>(civil) % kKeptDays]; }

long long FloorDivide(long long value, long long divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

bool Convert(std::time_t instant, std::tm* out) { return localtime_r(&instant, out) != nullptr; }

bool SameFields(const std::tm& a, const std::tm& b) {
  return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour &&
         a.tm_mday == b.tm_mday && a.tm_mon == b.tm_mon && a.tm_year == b.tm_year;
}

// `instant` has the local fields `fields`; so may an earlier one, if the clocks were set back
// since.
std::time_t FirstOfTwo(std::time_t instant, const std::tm& fields) {
  std::tm before;
  if (!Convert(instant - kLongestSetBack, &before)) return instant;
  const std::time_t setBack = before.tm_gmtoff - fields.tm_gmtoff;
  if (setBack <= 0 || setBack > kLongestSetBack) return instant;
  std::tm twin;
  if (!Convert(instant - setBack, &twin) || !SameFields(twin, fields)) return instant;
  return instant - setBack;
}

// Whether the clocks stand still from three hours before `begin`, which is `offset` east, to the
// last second of that day.
bool ClocksStandStill(std::time_t begin, const std::tm& local) {
  std::tm before;
  std::tm last;
  return Convert(begin - kLongestSetBack, &before) && before.tm_gmtoff == local.tm_gmtoff &&
         before.tm_isdst == local.tm_isdst && Convert(begin + kSecondsPerDay - 1, &last) &&
         last.tm_gmtoff == local.tm_gmtoff && last.tm_isdst == local.tm_isdst &&
         last.tm_mday == local.tm_mday && last.tm_sec == 59;
}

// Keeps the day that begins at `begin` and has the fields of `local`, one of its instants.
const Day* Keep(std::time_t begin, const std::tm& local, unsigned generation) {
  const long long civil = FloorDivide(begin + local.tm_gmtoff, kSecondsPerDay);
  KeptDay& slot = Slot(civil);
  slot.generation = generation;
  Day& day = slot.day;
  day.begin = begin;
  day.end = begin + kSecondsPerDay;
  day.civil = civil;
  day.year = static_cast<int>(std::int64_t{local.tm_year} + 1900);
  day.month = local.tm_mon + 1;
  day.day = local.tm_mday;
  day.weekday = local.tm_wday;
  day.yday = local.tm_yday;
  day.isdst = local.tm_isdst;
  day.offset = local.tm_gmtoff;
  day.zone = local.tm_zone;
  lastOffset = day.offset;
  return &day;
}

// The day of `instant`, whose fields are `local`; null where the clocks change on it.
const Day* KeepDayOf(std::time_t instant, const std::tm& local, unsigned generation) {
  const std::time_t begin = instant - (local.tm_hour * 3600L + local.tm_min * 60L + local.tm_sec);
  return ClocksStandStill(begin, local) ? Keep(begin, local, generation) : nullptr;
}

const Day* FindKept(std::time_t instant, unsigned generation) {
  const KeptDay& slot = Slot(FloorDivide(instant + lastOffset, kSecondsPerDay));
  const bool found =
      slot.generation == generation && instant >= slot.day.begin && instant < slot.day.end;
  return found ? &slot.day : nullptr;
}

// The day of `instant` from the kept day before it: one look at its last second tells whether the
// clocks stand still.
const Day* KeepDayAfterKept(std::time_t instant, unsigned generation) {
  const Day* before = FindKept(instant - kSecondsPerDay, generation);
  if (before == nullptr) return nullptr;
  const std::time_t begin = before->end;
  std::tm last;
  if (!Convert(begin + kSecondsPerDay - 1, &last) || last.tm_gmtoff != before->offset ||
      last.tm_isdst != before->isdst || last.tm_hour != 23 || last.tm_sec != 59) {
    return nullptr;
  }
  return Keep(begin, last, generation);
}

void FillFields(const Day& day, std::time_t instant, std::tm* out) {
  const int second = static_cast<int>(instant - day.begin);
  *out = {};
  out->tm_sec = second % 60;
  out->tm_min = second / 60 % 60;
  out->tm_hour = second / 3600;
  out->tm_mday = day.day;
  out->tm_mon = day.month - 1;
  out->tm_year = static_cast<int>(std::int64_t{day.year} - 1900);
  out->tm_wday = day.weekday;
  out->tm_yday = day.yday;
  out->tm_isdst = day.isdst;
  out->tm_gmtoff = day.offset;
  out->tm_zone = day.zone;
}

// The C library's own way.
std::time_t MakeInstant(std::tm fields) {
  const bool firstOfTwo = fields.tm_isdst < 0;
  fields.tm_wday = -1;  // mktime leaves it so where it fails; -1 is also a legitimate instant
  const std::time_t instant = std::mktime(&fields);
  if (!firstOfTwo || fields.tm_wday < 0) return instant;
  return FirstOfTwo(instant, fields);
}

constexpr std::array<int, 13> kDaysBefore = {0,   31,  59,  90,  120, 151, 181,
                                             212, 243, 273, 304, 334, 365};

}  // namespace

const Day* FindDay(std::time_t instant) {
  const unsigned generation = ZoneGeneration();
  if (const Day* day = FindKept(instant, generation)) return day;
  if (const Day* day = KeepDayAfterKept(instant, generation)) return day;
  std::tm local;
  return Convert(instant, &local) ? KeepDayOf(instant, local, generation) : nullptr;
}

bool Fields(std::time_t instant, std::tm* out) {
  if (const Day* day = FindDay(instant)) {
    FillFields(*day, instant, out);
    return true;
  }
  std::tm local;
  if (!Convert(instant, &local)) return false;
  *out = local;
  return true;
}

std::time_t Instant(int year, int month, int day, int hour, int minute, int second, int isdst) {
  // Any number may stand in a persisted event, so nothing here may overflow.
  const long long months = std::int64_t{month} - 1;
  const long long fullYear = year + FloorDivide(months, 12);
  const int monthOfYear = static_cast<int>(months - FloorDivide(months, 12) * 12) + 1;
  const long long time = std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
  const long long days = FloorDivide(time, kSecondsPerDay);
  const long long civil = CivilDays(fullYear, monthOfYear, day) + days;
  const unsigned generation = ZoneGeneration();
  const KeptDay& slot = Slot(civil);
  if (slot.generation == generation && slot.day.civil == civil &&
      (isdst < 0 || isdst == slot.day.isdst)) {
    return slot.day.begin + (time - days * kSecondsPerDay);
  }
  std::tm fields{};
  fields.tm_year = static_cast<int>(std::int64_t{year} - 1900);
  fields.tm_mon = static_cast<int>(months);
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = isdst;
  const std::time_t instant = MakeInstant(fields);
  FindDay(instant);  // the next time of this day comes without the C library
  return instant;
}

long long CivilDays(long long year, int month, int day) {
  constexpr long long kDaysBefore1970 = 719163;  // 0001-01-01 counts as day 1
  const long long past = year - 1;
  const long long leapDays = FloorDivide(past, 4) - FloorDivide(past, 100) + FloorDivide(past, 400);
  const bool leapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return past * 365 + leapDays + DaysBeforeMonth(month, leapYear) + day - kDaysBefore1970;
}

int DaysBeforeMonth(int month, bool leapYear) {
  if (month < 1 || month > 12) return 0;
  return kDaysBefore[static_cast<std::size_t>(month) - 1] + (leapYear && month > 2 ? 1 : 0);
}

int DaysInMonth(int month, bool leapYear) {
  return kDaysBefore[static_cast<std::size_t>(month)] -
         kDaysBefore[static_cast<std::size_t>(month) - 1] + (leapYear && month == 2 ? 1 : 0);
}

const char* PresentZoneName() {
  const std::time_t now = std::time(nullptr);
  const std::tm* local = std::localtime(&now);
  return tzname[local != nullptr && local->tm_isdst == 1 ? 1 : 0];
}

int PresentDaylightFlag() {
  const std::time_t now = std::time(nullptr);
  if (const Day* day = FindDay(now)) return day->isdst == 1 ? 1 : 0;
  std::tm local;
  return Convert(now, &local) && local.tm_isdst == 1 ? 1 : 0;
}

}  // namespace local_time
