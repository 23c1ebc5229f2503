#include "controller/api/EventSentence.h"

#include <vector>

#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"

namespace controller {

namespace {

constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
constexpr const char* kWeeks[] = {"first", "second", "third", "fourth", "last"};
constexpr unsigned kMondayToFriday = 0x3E;
constexpr unsigned kWeekend = 0x41;

std::string MonthName(int month) { return kMonths[(month - 1) % 12]; }

/// "1 minute", "1 hour and 30 minutes"
std::string Minutes(long minutes) {
  const auto count = [](long number, const char* unit) {
    return std::to_string(number) + ' ' + unit + (number == 1 ? "" : "s");
  };
  const long hours = minutes / 60;
  const long rest = minutes % 60;
  if (hours == 0) return count(rest, "minute");
  return count(hours, "hour") + (rest == 0 ? "" : " and " + count(rest, "minute"));
}

/// "1st", "22nd", "13th"
std::string Ordinal(int number) {
  const int tens = number % 100;
  const char* end = "th";
  if (tens < 11 || tens > 13) {
    if (number % 10 == 1) end = "st";
    if (number % 10 == 2) end = "nd";
    if (number % 10 == 3) end = "rd";
  }
  return std::to_string(number) + end;
}

std::string Every(int rate, const std::string& unit) {
  if (rate == 1) return "every " + unit;
  return "every " + std::to_string(rate) + ' ' + unit + 's';
}

std::string Weekdays(unsigned mask) {
  if (mask == kAllWeekdays) return "every day";
  if (mask == kMondayToFriday) return "Monday to Friday";
  if (mask == kWeekend) return "Saturday and Sunday";
  std::vector<std::string> names;
  // From Monday on, as a week is spoken of, with Sunday as its end.
  for (int i = 1; i <= 7; ++i) {
    if ((mask & (1u << (i % 7))) != 0) names.emplace_back(kWeekdays[i % 7]);
  }
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 < names.size() ? ", " : " and ";
    text += names[i];
  }
  return text;
}

std::string WeekOfMonth(const EventElement& event) {
  return std::string("the ") + kWeeks[event.start_period - 1] + ' ' +
         kWeekdays[event.start_weekday - 1];
}

std::string Monthly(const EventElement& event) {
  const std::string every = Every(event.rate, "month") + " on ";
  if (IsByWeek(event)) return every + WeekOfMonth(event);
  const std::string day = "the " + Ordinal(event.start.day);
  return every + day + (event.start.day > 28 ? ", in months that have one" : "");
}

std::string Yearly(const EventElement& event) {
  const std::string every = Every(event.rate, "year") + " on ";
  const std::string month = MonthName(event.start.month);
  if (IsByWeek(event)) return every + WeekOfMonth(event) + " of " + month;
  const bool leapDay = event.start.month == 2 && event.start.day == 29;
  return every + std::to_string(event.start.day) + ' ' + month + (leapDay ? ", in leap years" : "");
}

std::string Rule(const EventElement& event) {
  switch (static_cast<RepeatKind>(event.frequency)) {
    case RepeatKind::kDaily:
      return event.rate == 2 ? "every other day" : Every(event.rate, "day");
    case RepeatKind::kWeekly:
      return Every(event.rate, "week") + " on " + Weekdays(event.daymask);
    case RepeatKind::kMonthly:
      return Monthly(event);
    case RepeatKind::kYearly:
      return Yearly(event);
    default:
      return "once on " + LongDayText(event.start);
  }
}

std::string Clock(int minutes) {
  if (minutes < 0) return "at " + HourMinuteText(minutes + kMinutesPerDay) + " of the day before";
  if (minutes < kMinutesPerDay) return "at " + HourMinuteText(minutes);
  const int rest = minutes % kMinutesPerDay;
  return "at " + HourMinuteText(rest) +
         (minutes < 2 * kMinutesPerDay ? " of the day after" : " two days after");
}

std::string TimeOfDay(const EventElement& event) {
  if (event.offset == 0) return Clock(event.offset_minutes);
  const std::string& sun = kBaseNames[static_cast<std::size_t>(event.offset)];
  if (event.offset_minutes == 0) return "at " + sun;
  const bool before = event.offset_minutes < 0;
  return Minutes(before ? -event.offset_minutes : event.offset_minutes) +
         (before ? " before " : " after ") + sun;
}

}  // namespace

std::string LongDayText(const DayFields& day) {
  return std::to_string(day.day) + ' ' + MonthName(day.month) + ' ' + std::to_string(day.year);
}

std::string EventSentence(const EventElement& event) {
  std::string text = Rule(event) + ", " + TimeOfDay(event);
  if (event.randomize > 0) text += ", give or take " + Minutes(event.randomize);
  if (event.frequency == 0) return text;
  text += ", from " + LongDayText(event.start);
  if (event.end) text += " until " + LongDayText(*event.end);
  return text;
}

}  // namespace controller
