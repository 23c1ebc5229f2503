#include "tests/vexalink_agent_scheduler/PlainRecurrence.h"

#include <algorithm>
#include <cmath>

#include "astro/AstroClock.h"

namespace plain {
namespace {

constexpr long long kDay = 86400;

struct Local {
  bool known = false;
  int year = 0, month = 0, day = 0, hour = -1, minute = -1, weekday = -1;
};

Local Fields(std::time_t instant) {
  std::tm tm{};
  Local local;
  if (localtime_r(&instant, &tm) == nullptr) return local;
  local = {true, tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_wday};
  return local;
}

bool SameDate(std::time_t a, std::time_t b) {
  const Local x = Fields(a);
  const Local y = Fields(b);
  return x.year == y.year && x.month == y.month && x.day == y.day;
}

bool IsLater(const Local& a, const Local& b) {
  if (a.year != b.year) return a.year > b.year;
  if (a.month != b.month) return a.month > b.month;
  return a.day > b.day;
}

std::time_t Make(int year, int month, int day, int hour, int minute, int second, int isdst) {
  std::tm tm{};
  tm.tm_year = static_cast<int>(year - 1900LL);
  tm.tm_mon = static_cast<int>(month - 1LL);
  tm.tm_mday = day;
  tm.tm_hour = hour;
  tm.tm_min = minute;
  tm.tm_sec = second;
  tm.tm_isdst = isdst;
  tm.tm_wday = -1;
  const std::time_t answer = std::mktime(&tm);
  if (isdst >= 0 || tm.tm_wday < 0) return answer;
  // A time that occurs twice is the first. Clocks are set by whole quarters of an hour.
  for (std::time_t earlier = answer - 3 * 3600; earlier < answer; earlier += 900) {
    std::tm other{};
    localtime_r(&earlier, &other);
    if (other.tm_sec == tm.tm_sec && other.tm_min == tm.tm_min && other.tm_hour == tm.tm_hour &&
        other.tm_mday == tm.tm_mday && other.tm_mon == tm.tm_mon) {
      return earlier;
    }
  }
  return answer;
}

bool IsLeap(long long year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int LengthOfMonth(int month, bool leap) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && leap ? 29 : kLengths[month - 1];
}

bool Daily(const Event& event, std::time_t date, Records& records) {
  if (event.rate == 0) records.push_back(363);
  const long long days = (date - event.start.Seconds()) / kDay;
  if (days < 0) records.push_back(368);
  return event.rate != 0 && days % event.rate == 0;
}

bool Weekly(const Event& event, std::time_t date, Records& records) {
  if (event.rate == 0) records.push_back(379);
  const long long days = (date - event.start.Seconds()) / kDay;
  if (days < 0) records.push_back(384);
  const Local start = Fields(event.start.Seconds());
  const int w = start.known ? start.weekday + 1 : 0;
  long long weeks = days / 7;
  if (w + days % 7 >= 8) ++weeks;
  if (event.rate == 0 || weeks % event.rate != 0) return false;
  const Local local = Fields(date);
  return local.known && ((event.daymask >> local.weekday) & 1) == 1;
}

bool Monthly(const Event& event, std::time_t date, Records& records) {
  if (event.rate == 0) records.push_back(405);
  const Local start = Fields(event.start.Seconds());
  const Local local = Fields(date);
  const long long months =
      (static_cast<long long>(local.year) - start.year) * 12 + local.month - start.month;
  if (event.rate == 0 || months % event.rate != 0) return false;
  if (event.start_period == 0) return start.day == local.day;
  return SameDate(
      GetNthDayOfMonth(local.month, event.start_weekday, local.year, event.start_period, records),
      date);
}

bool Yearly(const Event& event, std::time_t date, Records& records) {
  if (event.rate == 0) records.push_back(427);
  const Local start = Fields(event.start.Seconds());
  const Local local = Fields(date);
  if (event.rate == 0 || (static_cast<long long>(local.year) - start.year) % event.rate != 0) {
    return false;
  }
  if (event.start_period == 0) return start.month == local.month && start.day == local.day;
  return SameDate(
      GetNthDayOfMonth(start.month, event.start_weekday, local.year, event.start_period, records),
      date);
}

// Minutes UTC of the sun on a day, another day's where it has none that day.
float SunMinutes(bool sunrise, int day, float latitude, float longitude) {
  const float plain = sunrise ? AstroClock::calcSunriseGMT(day, latitude, longitude)
                              : AstroClock::calcSunsetGMT(day, latitude, longitude);
  const bool polar = latitude > 66.4f || latitude < -66.4f;
  if (!polar && std::isfinite(plain)) return plain;
  if (std::isnan(latitude) || latitude == 0) return plain;
  const bool recent = latitude > 0 ? day >= 80 && day <= 266 : day < 83 || day > 263;
  if (sunrise) {
    return recent ? AstroClock::findRecentSunrise(day, latitude, longitude)
                  : AstroClock::findNextSunrise(day, latitude, longitude);
  }
  return recent ? AstroClock::findRecentSunset(day, latitude, longitude)
                : AstroClock::findNextSunset(day, latitude, longitude);
}

std::time_t SunTime(const Event& event, std::time_t date, std::time_t now) {
  float latitude = static_cast<float>(event.latitude);
  float longitude = static_cast<float>(event.longitude);
  if (latitude > 85) latitude = 85;
  if (latitude < -85) latitude = -85;
  if (longitude > 175) longitude = 175;
  if (longitude < -175) longitude = -175;
  const Local local = Fields(date);
  int day = local.day;
  for (int m = 1; m < local.month; ++m) day += LengthOfMonth(m, IsLeap(local.year));
  const float r = SunMinutes(event.offset == Scheduler::kSunrise, day, latitude, longitude);
  if (!std::isfinite(r)) return -1;
  const int h = static_cast<int>(r / 60);
  const int m = static_cast<int>((r / 60 - static_cast<float>(h)) * 60);
  const int s =
      static_cast<int>(((r / 60 - static_cast<float>(h)) * 60 - static_cast<float>(m)) * 60);
  std::tm present{};
  const bool summer = localtime_r(&now, &present) != nullptr && present.tm_isdst == 1;
  tzset();
  const int west = static_cast<int>(timezone);
  const std::time_t sun = Make(local.year, local.month, local.day, h - west / 3600 + summer,
                               m - west % 3600 / 60, s, summer ? 1 : 0);
  return sun + 60LL * event.offset_minutes;
}

}  // namespace

std::time_t GetNthDayOfMonth(int month, int weekday, int year, int period, Records& records) {
  if (period == 0) {
    records.push_back(309);
    return 0;
  }
  if (month < 1 || month > 12) return 0;
  const std::time_t last = Make(year, month, LengthOfMonth(month, IsLeap(year)), 23, 59, 59, -1);
  std::time_t found = 0;
  int count = 0;
  for (std::time_t t = Make(year, month, 1, 0, 0, 0, -1); t <= last; t += kDay) {
    if (Fields(t).weekday + 1 != weekday || weekday == 0) continue;
    found = t;
    if (++count == period && period <= 4) break;
  }
  return found;
}

bool OccursOnDate(const Event& event, std::time_t date, Records& records) {
  if (date < event.start.Seconds()) return false;
  if (date > event.end_date.Seconds()) return false;
  if (event.frequency == 0) return SameDate(event.start.Seconds(), date);
  if (event.frequency == 1) return Daily(event, date, records);
  if (event.frequency == 2) return Weekly(event, date, records);
  if (event.frequency == 3) return Monthly(event, date, records);
  if (event.frequency == 4) return Yearly(event, date, records);
  return false;
}

std::time_t EventTime(const Event& event, std::time_t date, std::time_t now, Records& records) {
  if (event.offset == 0) {
    const Local local = Fields(date);
    return Make(local.year, local.month, local.day, 0, event.offset_minutes, 0, -1);
  }
  if (event.offset == 1 || event.offset == 2) return SunTime(event, date, now);
  records.push_back(233);
  return date;
}

std::pair<std::time_t, bool> GetNextOccurance(const Event& event, std::time_t now,
                                              Records& records) {
  if (event.frequency == 0) {
    const std::time_t t = EventTime(event, event.start.Seconds(), now, records);
    return t > now ? std::pair<std::time_t, bool>{t, true} : std::pair<std::time_t, bool>{0, false};
  }
  if (event.end_date.Seconds() <= now) return {0, false};
  std::time_t d = now > event.start.Seconds() ? now : event.start.Seconds();
  long long limit = 0;
  switch (event.frequency) {
    case 1:
      limit = event.rate;
      break;
    case 2:
      limit = event.rate * 7LL;
      break;
    case 3:
      limit = event.rate * 31LL;
      break;
    case 4:
      limit = event.rate * 366LL;
      break;
    default:
      return {0, false};
  }
  if (limit < 0) return {0, false};
  for (long long count = 0; count <= limit; ++count, d += kDay) {
    if (d > event.end_date.Seconds()) break;  // nothing can come, and nothing is recorded
    if (!OccursOnDate(event, d, records)) continue;
    const std::time_t t = EventTime(event, d, now, records);
    if (t >= now) return {t, true};
  }
  return {0, false};
}

long long FindOccurrence(const Event& event, std::time_t origin, long long first, long long last) {
  Records ignored;
  for (long long step = first; step <= last; ++step) {
    if (OccursOnDate(event, origin + step * kDay, ignored)) return step;
  }
  return -1;
}

std::vector<std::string> List(const std::map<unsigned long, const Event*>& events, std::time_t from,
                              std::time_t to, std::time_t now, Records& records) {
  std::vector<std::string> lines;
  const Local last = Fields(to);
  for (std::time_t day = from; !IsLater(Fields(day), last); day += kDay) {
    std::vector<std::pair<unsigned long, const Event*>> happening;
    for (const auto& [id, event] : events) {
      if (OccursOnDate(*event, day, records)) happening.emplace_back(id, event);
    }
    const Local date = Fields(day);
    for (const auto& [id, event] : happening) {
      const Local time = Fields(EventTime(*event, day, now, records));
      lines.push_back(std::to_string(id) + " " + std::to_string(date.year) + "-" +
                      std::to_string(date.month) + "-" + std::to_string(date.day) + " " +
                      std::to_string(time.hour) + ":" + std::to_string(time.minute));
    }
  }
  return lines;
}

}  // namespace plain
