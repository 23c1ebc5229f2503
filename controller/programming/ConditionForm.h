#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "controller/EventElement.h"
#include "controller/json/FieldErrors.h"

namespace controller {

/// A condition as its writer says it (docs/api.md, "Conditions"), checked.
struct ConditionForm {
  enum class Kind { kTime, kWeekday, kDay, kDate, kMonth, kYear, kLeap };
  enum class Is { kBetween, kEq, kNe, kGt, kGe, kLt, kLe, kDaylight, kNight, kWithin };

  Kind kind = Kind::kLeap;
  /// Of no meaning for `kLeap`.
  Is is = Is::kEq;
  /// For `kBetween`: minutes after midnight, weekdays (1 = Sunday .. 7 = Saturday), days of the
  /// month, months or years, by the kind. Otherwise `from` is the one time or year.
  int from = 0;
  int to = 0;
  /// The same of dates.
  DayFields fromDate;
  DayFields toDate;
  /// Weekdays, days of the month or months, none twice, in the order in which they were given.
  std::vector<int> list;
  /// For `kWithin`.
  int minutes = 0;
  bool before = false;
  bool sunrise = false;
};

/// Nothing where something is wrong, which is then in `errors`.
std::optional<ConditionForm> ReadConditionForm(const nlohmann::json& value,
                                               const std::string& pointer, FieldErrors& errors);
nlohmann::ordered_json ConditionFormJson(const ConditionForm& form);

/// The name by which the scheduler knows the kind: "IF_TIME", ...
const char* ConditionName(const ConditionForm& form);
/// The operands as the scheduler reads them.
std::string ConditionXml(const ConditionForm& form);

/// "sun" .. "sat" for 1 .. 7.
const std::vector<std::string>& WeekdayWords();
/// "eq" and its like, and the scheduler's "EQ"; `kBetween` to `kLe` only.
const char* ComparatorCode(ConditionForm::Is is);
/// "07:05" of minutes after midnight.
std::string ClockText(int minutes);

}  // namespace controller
