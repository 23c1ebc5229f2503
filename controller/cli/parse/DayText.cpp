#include "controller/cli/parse/DayText.h"

#include <array>
#include <chrono>
#include <optional>

#include "controller/EventElement.h"
#include "controller/cli/parse/TextError.h"
#include "controller/cli/parse/TextParts.h"
#include "controller/json/ObjectReader.h"

namespace controller::cli {

namespace {

std::optional<std::chrono::sys_days> CivilDay(const std::string& text) {
  const auto day = ReadDay(text);
  if (!day) return std::nullopt;
  return std::chrono::sys_days(std::chrono::year(day->year) /
                               std::chrono::month(static_cast<unsigned>(day->month)) /
                               std::chrono::day(static_cast<unsigned>(day->day)));
}

std::string Text(std::chrono::sys_days day) {
  const std::chrono::year_month_day date(day);
  return DayText({static_cast<int>(date.year()), static_cast<int>(unsigned(date.month())),
                  static_cast<int>(unsigned(date.day()))});
}

}  // namespace

std::string ParseDay(const std::string& option, const std::string& text, const HouseToday& today) {
  const std::string lower = LowerCase(text);
  if (lower == "today") return today();
  if (lower == "tomorrow") return DaysLater(today(), 1);
  if (lower == "yesterday") return DaysLater(today(), -1);
  if (ReadDay(text)) return text;
  throw TextError(option, text, 0, text.size(),
                  "this is no day; give a date like 2026-12-24, today or tomorrow");
}

std::string DaysLater(const std::string& day, long days) {
  const auto civil = CivilDay(day);
  return civil ? Text(*civil + std::chrono::days(days)) : day;
}

std::string WeekdayOf(const std::string& day) {
  constexpr std::array<const char*, 7> kNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const auto civil = CivilDay(day);
  return civil ? kNames[std::chrono::weekday(*civil).c_encoding()] : "";
}

}  // namespace controller::cli
