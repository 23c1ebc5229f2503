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

// Instants with room to count from; what lies beyond has no local time either.
bool IsReasonable(std::time_t instant) {
  constexpr std::time_t kFarthest = std::time_t{1} << 60;
  return instant > -kFarthest && instant < kFarthest;
}

void FillTime(int second, const Clock& clock, std::tm* out) {
  *out = {};
  out->tm_sec = second % 60;
  out->tm_min = second / 60 % 60;
  out->tm_hour = second / 3600;
  out->tm_isdst = clock.isdst;
  out->tm_gmtoff = clock.offset;
  out->tm_zone = clock.zone;
}

// What the clock of a span makes of an instant, which may lie on a day that is not kept.
void FillFields(const ClockSpan& span, std::time_t instant, std::tm* out) {
  const std::time_t local = instant + span.clock.offset;
  const long long civil = FloorDivide(local, kSecondsPerDay);
  const CivilDate date = DateOf(civil);
  FillTime(static_cast<int>(local - civil * kSecondsPerDay), span.clock, out);
  out->tm_mday = date.day;
  out->tm_mon = date.month - 1;
  out->tm_year = date.year - 1900;
  out->tm_wday = WeekdayOf(civil);
  out->tm_yday = date.yday;
}

bool Convert(std::time_t instant, std::tm* out) {
  const ClockSpan* const span = FindSpan(instant);
  if (span == nullptr) return localtime_r(&instant, out) != nullptr;
  FillFields(*span, instant, out);
  return true;
}

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

Clock ClockOf(const std::tm& local) { return {local.tm_gmtoff, local.tm_isdst, local.tm_zone}; }

// The first instant after `begin` and not after `last` at which the clock is not `before` any more;
// there is one.
std::time_t FindChange(std::time_t begin, std::time_t last, const Clock& before) {
  const auto isBefore = [&before](std::time_t instant) {
    std::tm local;
    return Convert(instant, &local) && before.IsSame(ClockOf(local));
  };
  for (const ClockSpan* span = FindSpan(begin); span != nullptr && span->end <= last;
       span = FindSpan(begin)) {
    begin = span->end;
    if (!isBefore(begin)) return begin;
  }
  while (last - begin > 1) {
    const std::time_t middle = begin + (last - begin) / 2;
    (isBefore(middle) ? begin : last) = middle;
  }
  return last;
}

// Whether both sides of a change have the date of the day, and no time comes twice that is further
// apart than the first of two is looked for.
bool KeepsToTheDay(std::time_t change, const Day& day) {
  std::tm last;
  std::tm first;
  return day.before.offset - day.after.offset <= kLongestSetBack && Convert(change - 1, &last) &&
         Convert(change, &first) && last.tm_mday == day.day && first.tm_mday == day.day &&
         day.before.IsSame(ClockOf(last)) && day.after.IsSame(ClockOf(first));
}

// Keeps the day that begins at `begin` with the clock `before`, if it is one that can be kept.
const Day* Keep(std::time_t begin, const Clock& before, unsigned generation) {
  Day day;
  day.begin = begin;
  day.before = before;
  day.civil = FloorDivide(begin + before.offset, kSecondsPerDay);
  if (day.civil * kSecondsPerDay != begin + before.offset) return nullptr;
  std::tm last;
  if (!Convert(begin + kSecondsPerDay - 1, &last)) return nullptr;
  day.after = ClockOf(last);
  day.end = (day.civil + 1) * kSecondsPerDay - day.after.offset;
  day.change = day.end;
  if (!day.before.IsSame(day.after) && !Convert(day.end - 1, &last)) return nullptr;
  if (last.tm_hour != 23 || last.tm_min != 59 || last.tm_sec != 59 ||
      !day.after.IsSame(ClockOf(last))) {
    return nullptr;
  }
  day.year = static_cast<int>(std::int64_t{last.tm_year} + 1900);
  day.month = last.tm_mon + 1;
  day.day = last.tm_mday;
  day.weekday = last.tm_wday;
  day.yday = last.tm_yday;
  if (!day.before.IsSame(day.after)) {
    day.change = FindChange(begin, day.end - 1, day.before);
    if (!KeepsToTheDay(day.change, day)) return nullptr;
  }
  KeptDay& slot = Slot(day.civil);
  slot = {generation, day};
  lastOffset = day.after.offset;
  return &slot.day;
}

const Day* FindKept(std::time_t instant, unsigned generation) {
  if (!IsReasonable(instant)) return nullptr;
  const KeptDay& slot = Slot(FloorDivide(instant + lastOffset, kSecondsPerDay));
  const bool found =
      slot.generation == generation && instant >= slot.day.begin && instant < slot.day.end;
  return found ? &slot.day : nullptr;
}

// The day of `instant` where it lies within one span of the clock.
const Day* KeepDayOfSpan(std::time_t instant, unsigned generation) {
  const ClockSpan* const span = FindSpan(instant);
  if (span == nullptr) return nullptr;
  const Clock& clock = span->clock;
  Day day;
  day.civil = FloorDivide(instant + clock.offset, kSecondsPerDay);
  day.begin = day.civil * kSecondsPerDay - clock.offset;
  day.end = day.begin + kSecondsPerDay;
  day.change = day.end;
  if (day.begin - kLongestSetBack < span->begin || day.end > span->end) return nullptr;
  const CivilDate date = DateOf(day.civil);
  day.year = date.year;
  day.month = date.month;
  day.day = date.day;
  day.weekday = WeekdayOf(day.civil);
  day.yday = date.yday;
  day.before = clock;
  day.after = clock;
  lastOffset = clock.offset;
  KeptDay& slot = Slot(day.civil);
  slot = {generation, day};
  return &slot.day;
}

// The day of `instant` from the kept day before it.
const Day* KeepDayAfterKept(std::time_t instant, unsigned generation) {
  const Day* before = FindKept(instant - kSecondsPerDay, generation);
  if (before == nullptr || before->HasChange()) return nullptr;
  const Day* day = Keep(before->end, before->after, generation);
  // A day of 23 hours may end before the instant.
  return day != nullptr && instant < day->end ? day : nullptr;
}

// The day of `instant`, whose fields are `local`.
const Day* KeepDayOf(std::time_t instant, const std::tm& local, unsigned generation) {
  // By the clock of `instant`; on a day with a change, that may be the one after it.
  std::time_t begin = instant - (local.tm_hour * 3600L + local.tm_min * 60L + local.tm_sec);
  std::tm first;
  if (!Convert(begin, &first)) return nullptr;
  if (first.tm_gmtoff != local.tm_gmtoff) {
    begin += local.tm_gmtoff - first.tm_gmtoff;
    if (!Convert(begin, &first)) return nullptr;
  }
  std::tm earlier;
  if (!Convert(begin - kLongestSetBack, &earlier) || !ClockOf(earlier).IsSame(ClockOf(first))) {
    return nullptr;
  }
  const Day* day = Keep(begin, ClockOf(first), generation);
  return day != nullptr && instant >= day->begin && instant < day->end ? day : nullptr;
}

void FillFields(const Day& day, std::time_t instant, std::tm* out) {
  const Clock& clock = day.ClockAt(instant);
  FillTime(static_cast<int>(instant + clock.offset - day.civil * kSecondsPerDay), clock, out);
  out->tm_mday = day.day;
  out->tm_mon = day.month - 1;
  out->tm_year = static_cast<int>(std::int64_t{day.year} - 1900);
  out->tm_wday = day.weekday;
  out->tm_yday = day.yday;
}

// The C library's own way.
std::time_t MakeInstant(std::tm fields) {
  const bool firstOfTwo = fields.tm_isdst < 0;
  fields.tm_wday = -1;  // mktime leaves it so where it fails; -1 is also a legitimate instant
  const std::time_t instant = std::mktime(&fields);
  if (!firstOfTwo || fields.tm_wday < 0) return instant;
  return FirstOfTwo(instant, fields);
}

// The instant of a second of a civil date by what is known; -1 where it takes the C library.
std::time_t InstantOfDay(long long civil, long long secondOfDay, int isdst) {
  const unsigned generation = ZoneGeneration();
  const KeptDay& slot = Slot(civil);
  if (slot.generation == generation && slot.day.civil == civil) {
    const bool isFlag = isdst == slot.day.before.isdst && !slot.day.HasChange();
    return isdst < 0 || isFlag ? slot.day.At(secondOfDay) : -1;
  }
  const std::time_t local = civil * kSecondsPerDay + secondOfDay;
  const ClockSpan* const span = IsReasonable(local) ? FindSpan(local - lastOffset) : nullptr;
  if (span == nullptr || (isdst >= 0 && isdst != span->clock.isdst)) return -1;
  // Far from both ends of the span, beyond which the same time might come again.
  constexpr std::time_t kFar = 3 * kSecondsPerDay;
  const std::time_t instant = local - span->clock.offset;
  return instant - kFar >= span->begin && instant + kFar < span->end ? instant : -1;
}

}  // namespace

std::time_t Day::At(long secondOfDay) const {
  const std::time_t first = civil * kSecondsPerDay + secondOfDay - before.offset;
  if (first < change) return first;
  const std::time_t second = civil * kSecondsPerDay + secondOfDay - after.offset;
  return second >= change ? second : -1;
}

const Day* FindDay(std::time_t instant) {
  const unsigned generation = ZoneGeneration();
  if (const Day* day = FindKept(instant, generation)) return day;
  if (!IsReasonable(instant)) return nullptr;
  if (const Day* day = KeepDayOfSpan(instant, generation)) return day;
  if (const Day* day = KeepDayAfterKept(instant, generation)) return day;
  std::tm local;
  if (!Convert(instant, &local)) return nullptr;
  return KeepDayOf(instant, local, generation);
}

void SameDay::Remember(std::time_t instant) {
  generation_ = ZoneGeneration();
  const Day* const day = FindDay(instant);
  begin_ = day != nullptr ? day->begin : 0;
  end_ = day != nullptr ? day->end : 0;
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
  // Any number may stand in a persisted event, so nothing here may overflow; what the C library is
  // given wraps.
  std::tm fields{};
  fields.tm_year = static_cast<int>(std::int64_t{year} - 1900);
  fields.tm_mon = static_cast<int>(std::int64_t{month} - 1);
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = isdst;
  // In the gap of a change, mktime lets seconds beyond the minute pass in a way of its own.
  if (second >= 0 && second < 60) {
    const long long years = FloorDivide(fields.tm_mon, 12);
    const int monthOfYear = static_cast<int>(fields.tm_mon - years * 12) + 1;
    const long long time = std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
    const long long days = FloorDivide(time, kSecondsPerDay);
    const long long civil = CivilDays(fields.tm_year + 1900LL + years, monthOfYear, day) + days;
    const std::time_t instant = InstantOfDay(civil, time - days * kSecondsPerDay, isdst);
    if (instant != -1) return instant;
  }
  const std::time_t instant = MakeInstant(fields);
  FindDay(instant);  // the next time of this day comes without the C library
  return instant;
}

const char* PresentZoneName() {
  const std::time_t now = std::time(nullptr);
  const std::tm* local = std::localtime(&now);
  return tzname[local != nullptr && local->tm_isdst == 1 ? 1 : 0];
}

int PresentDaylightFlag() {
  const std::time_t now = Present();
  if (const Day* day = FindDay(now)) return day->ClockAt(now).isdst == 1 ? 1 : 0;
  std::tm local;
  return Convert(now, &local) && local.tm_isdst == 1 ? 1 : 0;
}

}  // namespace local_time
