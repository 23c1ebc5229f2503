#include "controller/cli/parse/WeekdayText.h"

namespace controller::cli {

namespace {

constexpr std::array<const char*, 7> kNames = {"sunday",   "monday", "tuesday", "wednesday",
                                               "thursday", "friday", "saturday"};
constexpr const char* kProblem = "is no day of the week; give sun, mon, tue, wed, thu, fri or sat";
constexpr const char* kMissing = "a day of the week is missing; give sun, mon, tue and so on";

using Week = std::array<bool, 7>;

/// "mon-fri", also over the end of the week.
bool AddRange(std::string_view text, Week& week) {
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return false;
  const auto first = ReadWeekday(text.substr(0, dash));
  const auto last = ReadWeekday(text.substr(dash + 1));
  if (!first || !last) return false;
  for (int day = *first;; day = (day + 1) % 7) {
    week[static_cast<std::size_t>(day)] = true;
    if (day == *last) return true;
  }
}

bool AddDays(const std::string& text, Week& week) {
  if (text == "weekday" || text == "weekdays") return AddRange("mon-fri", week);
  if (text == "weekend" || text == "weekends") return AddRange("sat-sun", week);
  if (const auto day = ReadWeekday(text)) {
    week[static_cast<std::size_t>(*day)] = true;
    return true;
  }
  return AddRange(text, week);
}

}  // namespace

std::optional<int> ReadWeekday(std::string_view lowerCase) {
  for (std::size_t day = 0; day < kNames.size(); ++day) {
    const std::string_view name = kNames[day];
    // Any beginning that says which day it is ("tues"), and the plural.
    if (lowerCase.size() >= 3 && name.starts_with(lowerCase)) return static_cast<int>(day);
    if (lowerCase.size() == name.size() + 1 && lowerCase.starts_with(name) &&
        lowerCase.back() == 's') {
      return static_cast<int>(day);
    }
  }
  return std::nullopt;
}

int TakeWeekday(TextParts& parts) {
  const TextPart part = parts.Next();
  if (const auto day = ReadWeekday(part.text)) return *day;
  parts.Fail(part, kProblem, kMissing);
}

std::vector<int> TakeWeekdays(TextParts& parts) {
  Week week{};
  do {
    const TextPart part = parts.Next();
    if (!AddDays(part.text, week)) parts.Fail(part, kProblem, kMissing);
  } while (TakeSeparator(parts) || !parts.AtEnd());
  std::vector<int> days;
  for (int day = 0; day < 7; ++day) {
    if (week[static_cast<std::size_t>(day)]) days.push_back(day);
  }
  return days;
}

bool TakeSeparator(TextParts& parts) {
  const bool comma = parts.Take({","});
  return parts.Take({"and"}) || comma;
}

}  // namespace controller::cli
