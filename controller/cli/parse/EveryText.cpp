#include "controller/cli/parse/EveryText.h"

#include <array>
#include <optional>

#include "controller/Printable.h"
#include "controller/cli/parse/WeekdayText.h"

namespace controller::cli {

namespace {

constexpr long kMostUnits = 1000000;
constexpr const char* kRight =
    "give day, week on mon, month, month on the 2nd tue or year, with a number before it for every "
    "so many, or once";

struct UnitWord {
  const char* unit;
  std::array<std::string_view, 3> words;
};

constexpr std::array<UnitWord, 4> kUnits = {{{"day", {"day", "days", "daily"}},
                                             {"week", {"week", "weeks", "weekly"}},
                                             {"month", {"month", "months", "monthly"}},
                                             {"year", {"year", "years", "yearly"}}}};

const char* ReadUnit(const std::string& word) {
  for (const UnitWord& unit : kUnits) {
    for (const std::string_view known : unit.words) {
      if (known == word) return unit.unit;
    }
  }
  return nullptr;
}

/// "3", "other" (2), or nothing.
long TakeCount(TextParts& parts) {
  if (parts.Take({"other"})) return 2;
  const std::string& text = parts.Peek().text;
  if (text.empty() || text[0] < '0' || text[0] > '9') return 1;
  const TextPart part = parts.Next();
  const auto count = ReadNumber(part.text, kMostUnits);
  if (!count || *count == 0) {
    parts.Fail(part, "is no number of units; give 1 to 1000000", "");
  }
  return *count;
}

Json DayNames(const std::vector<int>& days) {
  Json names = Json::array();
  for (const int day : days) names.push_back(kWeekdays[static_cast<std::size_t>(day)]);
  return names;
}

/// "1st".."4th", "first".."fourth" or "last" of the month.
Json TakeWeekOfMonth(TextParts& parts) {
  constexpr std::array<std::array<std::string_view, 2>, 4> kWords = {
      {{"1st", "first"}, {"2nd", "second"}, {"3rd", "third"}, {"4th", "fourth"}}};
  const TextPart part = parts.Next();
  if (part.text == "last") return "last";
  for (std::size_t week = 0; week < kWords.size(); ++week) {
    if (part.text == kWords[week][0] || part.text == kWords[week][1]) return week + 1;
  }
  parts.Fail(part,
             "is no week of the month; give 1st, 2nd, 3rd, 4th or last and a weekday (without "
             "\"on\" it is the day of the month of the start)",
             "which day is missing; give the 2nd tue, the last fri or the like");
}

Json TakeNth(TextParts& parts) {
  parts.Take({"the"});
  Json nth = {{"week", TakeWeekOfMonth(parts)}};
  nth["weekday"] = kWeekdays[static_cast<std::size_t>(TakeWeekday(parts))];
  return nth;
}

Json TakeUnit(TextParts& parts, long count) {
  const TextPart part = parts.Peek();
  // "weekday", "mon,fri": which days says which unit.
  const bool days = part.text.starts_with("weekday") || part.text.starts_with("weekend") ||
                    ReadWeekday(part.text.substr(0, part.text.find('-')));
  if (days) {
    if (count != 1) {
      parts.Fail(part, "cannot be counted; give 2 weeks on mon,fri or the like", "");
    }
    return {{"unit", "week"}, {"every", count}, {"on", DayNames(TakeWeekdays(parts))}};
  }
  const char* unit = ReadUnit(part.text);
  if (unit == nullptr) {
    parts.Fail(part, std::string("is no unit; ") + kRight,
               std::string("a unit is missing; ") + kRight);
  }
  parts.Next();
  Json repeat = {{"unit", unit}, {"every", count}};
  const bool on = parts.Take({"on"});
  if (unit == std::string("week")) {
    if (!on) {
      parts.FailAt(part.begin, part.length,
                   "the days of the week are missing; give week on mon,fri or the like");
    }
    repeat["on"] = DayNames(TakeWeekdays(parts));
  } else if (on && unit == std::string("day")) {
    parts.FailAt(part.begin, part.length,
                 "days are not on days of the week; give week on mon,fri or the like");
  } else if (on) {
    repeat["nth"] = TakeNth(parts);
  }
  return repeat;
}

std::string Days(const Json& on) {
  std::string text;
  for (const Json& day : on) text += (text.empty() ? "" : ",") + Printable(day.get<std::string>());
  if (text == "mon,tue,wed,thu,fri") return "weekdays";
  return text == "sun,sat" || text == "sat,sun" ? "weekend" : text;
}

std::string NthText(const Json& nth) {
  constexpr std::array<const char*, 5> kWords = {"?", "1st", "2nd", "3rd", "4th"};
  const Json& week = nth.at("week");
  const std::string weekday = Printable(TextField(nth, "weekday", "?"));
  if (week.is_string()) return "the " + Printable(week.get<std::string>()) + ' ' + weekday;
  const std::size_t number = week.is_number() ? week.get<std::size_t>() : 0;
  return std::string("the ") + kWords[number < kWords.size() ? number : 0] + ' ' + weekday;
}

}  // namespace

Json ParseEvery(const std::string& option, const std::string& text) {
  TextParts parts(option, text);
  parts.Take({"every"});
  if (parts.Take({"once"})) {
    parts.ExpectEnd("leave it out: once stands alone");
    return nullptr;
  }
  const long count = TakeCount(parts);
  Json repeat = TakeUnit(parts, count);
  parts.ExpectEnd(repeat.contains("nth") ? "leave it out: it ends with the weekday" : kRight);
  return repeat;
}

std::string EveryText(const Json& repeat) {
  if (repeat.is_null()) return "once";
  const std::string unit = Printable(TextField(repeat, "unit", "?"));
  const long every = NumberField(repeat, "every", 1);
  const std::string days =
      repeat.contains("on") && repeat["on"].is_array() ? Days(repeat["on"]) : "";
  if (every == 1 && days == "weekdays") return "weekday";
  if (every == 1 && days == "weekend") return "weekend";
  std::string text = every == 1 ? unit : std::to_string(every) + ' ' + unit + 's';
  if (!days.empty()) text += " on " + days;
  if (repeat.contains("nth") && repeat["nth"].is_object()) text += " on " + NthText(repeat["nth"]);
  return text;
}

}  // namespace controller::cli
