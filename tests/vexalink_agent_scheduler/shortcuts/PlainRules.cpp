#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainSun.h"

namespace plain {
namespace {

constexpr std::time_t kStep = 86400;

bool RateIsZero(const Event& event, int line, Records* records) {
  if (event.rate == 0) records->push_back(line);
  return event.rate == 0;
}

bool OccursDaily(const Event& event, std::time_t date, Records* records) {
  if (RateIsZero(event, 363, records)) return false;
  return (date - event.start.Seconds()) / kStep % event.rate == 0;
}

bool OccursWeekly(const Event& event, std::time_t date, Records* records) {
  if (RateIsZero(event, 379, records)) return false;
  const long long days = (date - event.start.Seconds()) / kStep;
  const int weekday = Date(event.start.Seconds()).weekday;
  const long long weeks = days / 7 + (weekday + days % 7 >= 8 ? 1 : 0);
  if (weeks % event.rate != 0) return false;
  const int today = Date(date).weekday;
  return today != 0 && (event.daymask >> (today - 1) & 1U) != 0;
}

bool OccursMonthly(const Event& event, std::time_t date, Records* records) {
  if (RateIsZero(event, 405, records)) return false;
  const Date start(event.start.Seconds());
  const Date day(date);
  const long long months =
      (static_cast<long long>(day.year) - start.year) * 12 + day.month - start.month;
  if (months % event.rate != 0) return false;
  if (event.start_period == 0) return start.day == day.day;
  return Date(NthDayOfMonth(day.month, event.start_weekday, day.year, event.start_period))
      .IsSame(day);
}

bool OccursYearly(const Event& event, std::time_t date, Records* records) {
  if (RateIsZero(event, 427, records)) return false;
  const Date start(event.start.Seconds());
  const Date day(date);
  if ((static_cast<long long>(day.year) - start.year) % event.rate != 0) return false;
  if (event.start_period == 0) return start.month == day.month && start.day == day.day;
  return Date(NthDayOfMonth(start.month, event.start_weekday, day.year, event.start_period))
      .IsSame(day);
}

float ClampedFloat(double value, float limit) {
  return static_cast<float>(std::isnan(value) ? value : std::clamp<double>(value, -limit, limit));
}

int DayOfYear(const Date& day) {
  const bool leapYear = day.year == 0 || IsLeapYear(day.year);
  int count = day.day;
  for (int month = 1; month < day.month; ++month) count += DaysInMonth(month, leapYear);
  return count;
}

float SunMinutes(bool sunrise, int dayOfYear, float latitude, float longitude) {
  const float minutes = Sun(sunrise, dayOfYear, latitude, longitude);
  if (std::isfinite(minutes) || !(std::fabs(latitude) > 0)) return minutes;
  const bool recent =
      latitude > 0 ? dayOfYear >= 80 && dayOfYear <= 266 : dayOfYear < 83 || dayOfYear > 263;
  return FindSun(sunrise, recent ? -1 : 1, dayOfYear, latitude, longitude);
}

std::time_t SunInstant(const Event& event, std::time_t date) {
  const Date day(date);
  const float minutes =
      SunMinutes(event.offset == Scheduler::kSunrise, DayOfYear(day),
                 ClampedFloat(event.latitude, 85), ClampedFloat(event.longitude, 175));
  if (!std::isfinite(minutes)) return -1;
  const float hours = minutes / 60;
  const int hour = static_cast<int>(hours);
  const float rest = (hours - static_cast<float>(hour)) * 60;
  const int minute = static_cast<int>(rest);
  const int second = static_cast<int>((rest - static_cast<float>(minute)) * 60);
  std::tm now{};
  const int isdst = Fields(std::time(nullptr), &now) && now.tm_isdst == 1 ? 1 : 0;
  tzset();
  const int west = static_cast<int>(timezone);
  return Instant(day.year, day.month, day.day, hour - west / 3600 + isdst,
                 minute - west % 3600 / 60, second, isdst) +
         std::time_t{event.offset_minutes} * 60;
}

}  // namespace

std::time_t NthDayOfMonth(int month, int weekday, int year, int period) {
  if (period == 0 || month < 1 || month > 12) return 0;
  const int lastDay = DaysInMonth(month, IsLeapYear(year));
  const std::time_t last = Instant(year, month, lastDay, 23, 59, 59, -1);
  std::time_t match = 0;
  int matches = 0;
  for (std::time_t t = Instant(year, month, 1, 0, 0, 0, -1); t <= last; t += kStep) {
    if (Date(t).weekday != weekday || weekday == 0) continue;
    match = t;
    if (++matches == period && period != 5) break;
  }
  return match;
}

bool OccursOnDate(const Event& event, std::time_t date, Records* records) {
  if (date < event.start.Seconds() || date > event.end_date.Seconds()) return false;
  switch (event.frequency) {
    case 0:
      return Date(event.start.Seconds()).IsSame(Date(date));
    case 1:
      return OccursDaily(event, date, records);
    case 2:
      return OccursWeekly(event, date, records);
    case 3:
      return OccursMonthly(event, date, records);
    case 4:
      return OccursYearly(event, date, records);
    default:
      return false;
  }
}

std::time_t EventTime(const Event& event, std::time_t date, Records* records) {
  if (event.offset == Scheduler::kClock) {
    const Date day(date);
    return Instant(day.year, day.month, day.day, 0, event.offset_minutes, 0, -1);
  }
  if (event.offset == Scheduler::kSunrise || event.offset == Scheduler::kSunset) {
    return SunInstant(event, date);
  }
  records->push_back(233);
  return date;
}

std::pair<std::time_t, bool> NextOccurrence(const Event& event, Records* records) {
  const std::time_t now = std::time(nullptr);
  const std::pair<std::time_t, bool> none{0, false};
  if (event.frequency == 0) {
    const std::time_t time = EventTime(event, event.start.Seconds(), records);
    return time > now ? std::pair{time, true} : none;
  }
  if (event.end_date.Seconds() <= now || event.frequency < 1 || event.frequency > 4) return none;
  constexpr long long kDays[] = {0, 1, 7, 31, 366};
  const long long limit = event.rate * kDays[event.frequency];
  if (limit < 0) return none;
  std::time_t day = std::max(now, event.start.Seconds());
  for (long long count = 0; count <= limit && day <= event.end_date.Seconds();
       ++count, day += kStep) {
    if (!OccursOnDate(event, day, records)) continue;
    const std::time_t time = EventTime(event, day, records);
    if (time >= now) return {time, true};
  }
  return none;
}

std::vector<unsigned long> IdsOnDate(const Table& events, std::time_t date, Records* records) {
  std::vector<unsigned long> ids;
  for (const auto& [id, event] : events) {
    if (OccursOnDate(*event, date, records)) ids.push_back(id);
  }
  return ids;
}

std::ostream& operator<<(std::ostream& out, const Listed& listed) {
  return out << listed.id << " on " << listed.year << "-" << listed.month << "-" << listed.day
             << " " << listed.hour << ":" << listed.minute;
}

std::vector<Listed> List(const Table& events, std::time_t from, std::time_t to, Records* records) {
  std::vector<Listed> list;
  const Date last(to);
  for (std::time_t day = from; !Date(day).IsLater(last); day += kStep) {
    const Date date(day);
    for (const unsigned long id : IdsOnDate(events, day, records)) {
      std::tm local;
      const bool known = Fields(EventTime(*events.at(id), day, records), &local);
      list.push_back({id, date.year, date.month, date.day, known ? local.tm_hour : -1,
                      known ? local.tm_min : -1});
    }
  }
  return list;
}

}  // namespace plain
