#include "controller/cli/parse/ConditionValue.h"

#include <algorithm>
#include <array>

#include "controller/Printable.h"
#include "controller/cli/parse/TimeText.h"
#include "controller/cli/parse/WeekdayText.h"
#include "controller/json/ObjectReader.h"

namespace controller::cli {

namespace {

using Value = ConditionKind::Value;

constexpr std::array<ConditionKind, 6> kConditionKinds = {{
    {"time", "time", false, Value::kTime, 0, 0},
    {"weekday", "days", true, Value::kWeekday, 0, 0},
    {"day", "days", true, Value::kNumber, 1, 31},
    {"date", "date", false, Value::kDate, 0, 0},
    {"month", "months", true, Value::kMonth, 1, 12},
    {"year", "year", false, Value::kNumber, 1970, 9999},
}};

constexpr std::array<std::string_view, 12> kMonths = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};

Json TakeTime(TextParts& parts, ValueUse use) {
  TextPart part = parts.Next();
  const std::string& half = parts.Peek().text;  // "7:30 pm"
  if (half == "am" || half == "pm") part.text += parts.Next().text;
  const auto minutes = ReadTimeOfDay(part.text);
  if (!minutes) {
    parts.Fail(part, "is no time of day; give 07:30, 7:30pm or noon",
               "a time of day is missing; give 07:30, 7:30pm or noon");
  }
  if (*minutes == 0 && use == ValueUse::kCompared) {
    parts.Fail(part, "cannot be compared with; give 00:01 to 23:59, or between two times", "");
  }
  return TimeOfDayText(*minutes);
}

Json TakeNumber(TextParts& parts, const ConditionKind& kind) {
  const TextPart part = parts.Next();
  const auto number = ReadNumber(part.text, kind.most);
  if (number && *number >= kind.least) return *number;
  const std::string right =
      "; give " + std::to_string(kind.least) + " to " + std::to_string(kind.most);
  parts.Fail(part, std::string("is no ") + kind.name + right,
             std::string("a ") + kind.name + " is missing" + right);
}

Json TakeMonth(TextParts& parts) {
  const TextPart part = parts.Next();
  for (std::size_t month = 0; month < kMonths.size(); ++month) {
    if (part.text.size() >= 3 && kMonths[month].starts_with(part.text)) return month + 1;
  }
  if (const auto number = ReadNumber(part.text, 12); number && *number > 0) return *number;
  parts.Fail(part, "is no month; give 1 to 12 or jan to dec",
             "a month is missing; give 1 to 12 or jan to dec");
}

Json TakeDate(TextParts& parts) {
  const TextPart part = parts.Next();
  if (ReadDay(part.text)) return part.text;
  parts.Fail(part, "is no date; give one like 2026-12-24",
             "a date is missing; give one like 2026-12-24");
}

Json TakeList(TextParts& parts, const ConditionKind& kind) {
  Json list = Json::array();
  if (kind.value == Value::kWeekday) {
    for (const int day : TakeWeekdays(parts)) {
      list.push_back(kWeekdays[static_cast<std::size_t>(day)]);
    }
    return list;
  }
  do {
    Json value = TakeConditionValue(parts, kind, ValueUse::kCompared);
    if (std::find(list.begin(), list.end(), value) == list.end()) list.push_back(std::move(value));
  } while (TakeSeparator(parts) || !parts.AtEnd());
  return list;
}

}  // namespace

const ConditionKind* FindConditionKind(std::string_view name) {
  for (const ConditionKind& kind : kConditionKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

Json TakeConditionValue(TextParts& parts, const ConditionKind& kind, ValueUse use) {
  switch (kind.value) {
    case Value::kTime:
      return TakeTime(parts, use);
    case Value::kWeekday:
      return kWeekdays[static_cast<std::size_t>(TakeWeekday(parts))];
    case Value::kNumber:
      return TakeNumber(parts, kind);
    case Value::kMonth:
      return TakeMonth(parts);
    default:
      return TakeDate(parts);
  }
}

Json TakeConditionValues(TextParts& parts, const ConditionKind& kind) {
  if (kind.list) return TakeList(parts, kind);
  return TakeConditionValue(parts, kind, ValueUse::kCompared);
}

void CheckBounds(const TextParts& parts, const ConditionKind& kind, const Json& condition,
                 std::size_t begin, std::size_t length) {
  const auto place = [&](const char* field) {
    if (kind.value != Value::kWeekday) return condition[field];
    return Json(*ReadWeekday(condition[field].get<std::string>()));
  };
  if (kind.value == Value::kTime || kind.value == Value::kMonth) return;
  if (place("from") <= place("to")) return;
  parts.FailAt(begin, length,
               kind.value == Value::kWeekday
                   ? "nothing is between these: a week begins on sun; give \"weekday in\" and the "
                     "days"
                   : "nothing is between these; give the earlier one first");
}

}  // namespace controller::cli
