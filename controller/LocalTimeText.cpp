#include "controller/LocalTimeText.h"

#include <cctype>
#include <chrono>
#include <string_view>

#include "controller/Log.h"

namespace controller {
namespace {

constexpr std::time_t kLongestSetBack = 3 * 3600;

bool HasForm(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00";
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isDigit = std::isdigit(static_cast<unsigned char>(text[i])) != 0;
    if (kForm[i] == '0' ? !isDigit : text[i] != kForm[i]) return false;
  }
  return true;
}

bool IsPossible(const std::tm& fields) {
  return fields.tm_mon >= 0 && fields.tm_mon < 12 && fields.tm_mday >= 1 && fields.tm_mday <= 31 &&
         fields.tm_hour < 24 && fields.tm_min < 60 && fields.tm_sec <= 60;
}

bool SameFields(const std::tm& a, const std::tm& b) {
  return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour &&
         a.tm_mday == b.tm_mday && a.tm_mon == b.tm_mon && a.tm_year == b.tm_year;
}

// Whatever `mktime` chose of two instants with the same local fields, the first of them.
std::time_t FirstOfTwo(std::time_t instant, const std::tm& fields) {
  const std::time_t earlier = instant - kLongestSetBack;
  std::tm before{};
  if (localtime_r(&earlier, &before) == nullptr) return instant;
  const std::time_t setBack = before.tm_gmtoff - fields.tm_gmtoff;
  if (setBack <= 0 || setBack > kLongestSetBack) return instant;
  const std::time_t twinInstant = instant - setBack;
  std::tm twin{};
  if (localtime_r(&twinInstant, &twin) == nullptr || !SameFields(twin, fields)) return instant;
  return twinInstant;
}

}  // namespace

std::optional<std::time_t> ParseLocalTime(const std::string& text) {
  if (!HasForm(text)) return std::nullopt;
  const auto number = [&text](std::size_t at, std::size_t size) {
    return std::stoi(text.substr(at, size));
  };
  std::tm fields{};
  fields.tm_year = number(0, 4) - 1900;
  fields.tm_mon = number(5, 2) - 1;
  fields.tm_mday = number(8, 2);
  fields.tm_hour = number(11, 2);
  fields.tm_min = number(14, 2);
  fields.tm_sec = number(17, 2);
  fields.tm_isdst = -1;
  if (!IsPossible(fields)) return std::nullopt;
  const std::time_t instant = std::mktime(&fields);
  return FirstOfTwo(instant, fields);
}

std::time_t LocalInstant(const DayFields& day, int hour, int minute) {
  std::tm fields{};
  fields.tm_year = day.year - 1900;
  fields.tm_mon = day.month - 1;
  fields.tm_mday = day.day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_isdst = -1;
  const std::time_t instant = std::mktime(&fields);
  return FirstOfTwo(instant, fields);
}

DayFields LocalDay(std::time_t moment) {
  std::tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return {};
  return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday};
}

namespace {

std::chrono::sys_days CivilDays(const DayFields& day) {
  return std::chrono::year(day.year) / std::chrono::month(static_cast<unsigned>(day.month)) /
         std::chrono::day(static_cast<unsigned>(day.day));
}

}  // namespace

DayFields DaysAfter(const DayFields& day, long days) {
  const std::chrono::year_month_day then(CivilDays(day) + std::chrono::days(days));
  return {static_cast<int>(then.year()), static_cast<int>(static_cast<unsigned>(then.month())),
          static_cast<int>(static_cast<unsigned>(then.day()))};
}

long DaysBetween(const DayFields& earlier, const DayFields& later) {
  return (CivilDays(later) - CivilDays(earlier)).count();
}

std::string MomentText(std::time_t moment) {
  std::tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return "";
  std::string text(32, '\0');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &fields));
  return text + OffsetText(moment);
}

int DayNumber(const DayFields& day) { return day.year * 10000 + day.month * 100 + day.day; }

DayFields DayOfNumber(long number) {
  return {static_cast<int>(number / 10000), static_cast<int>(number / 100 % 100),
          static_cast<int>(number % 100)};
}

}  // namespace controller
