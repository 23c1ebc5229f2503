// Conditions in words.

#include <algorithm>
#include <array>
#include <cstdio>

#include "controller/programming/ConditionForm.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

using Is = ConditionForm::Is;
using Kind = ConditionForm::Kind;

constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

// What was stored was checked when it came in; a text that is none any more has no form.
std::optional<ConditionForm> FormOf(const Condition& condition) {
  const auto json = nlohmann::json::parse(condition.json, nullptr, /*allow_exceptions=*/false);
  FieldErrors errors;
  return ReadConditionForm(json, "", errors);
}

const char* Subject(Kind kind) {
  switch (kind) {
    case Kind::kTime:
      return "the time";
    case Kind::kWeekday:
      return "today";
    case Kind::kDay:
      return "the day of the month";
    case Kind::kDate:
      return "the date";
    case Kind::kMonth:
      return "the month";
    default:
      return "the year";
  }
}

std::string OperandText(Kind kind, int operand) {
  switch (kind) {
    case Kind::kTime:
      return ClockText(operand);
    case Kind::kWeekday:
      return kWeekdays[operand - 1];
    case Kind::kMonth:
      return kMonths[operand - 1];
    default:
      return std::to_string(operand);
  }
}

// "1, 2 or 3"
std::string Joined(Kind kind, const std::vector<int>& list, const char* last) {
  std::string text;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i > 0) text += i + 1 < list.size() ? ", " : last;
    text += OperandText(kind, list[i]);
  }
  return text;
}

// "is after 22:00"
std::string Compared(Is is, const std::string& operand) {
  switch (is) {
    case Is::kNe:
      return " is not " + operand;
    case Is::kGt:
      return " is after " + operand;
    case Is::kGe:
      return " is " + operand + " or later";
    case Is::kLt:
      return " is before " + operand;
    case Is::kLe:
      return " is " + operand + " or earlier";
    default:
      return " is " + operand;
  }
}

// A list is compared entry by entry, so of "after any of them" only the least counts, and of
// "before any of them" only the greatest.
std::string ListText(const ConditionForm& form) {
  const std::string subject = Subject(form.kind);
  if (form.is == Is::kNe && form.list.size() > 1) {
    return subject + " is neither " + Joined(form.kind, form.list, " nor ");
  }
  if (form.is == Is::kEq || form.is == Is::kNe) {
    return subject + Compared(form.is, Joined(form.kind, form.list, " or "));
  }
  const auto [least, greatest] = std::minmax_element(form.list.begin(), form.list.end());
  const bool after = form.is == Is::kGt || form.is == Is::kGe;
  const std::string text = Compared(form.is, OperandText(form.kind, after ? *least : *greatest));
  return subject + text + (form.kind == Kind::kWeekday ? " in the week" : "");
}

std::string SunText(const ConditionForm& form) {
  if (form.is == Is::kDaylight) return "it is day";
  if (form.is == Is::kNight) return "it is night";
  const std::string sun = form.sunrise ? "sunrise" : "sunset";
  if (form.minutes == 0) return "it is the moment of " + sun;
  return "it is at most " + std::to_string(form.minutes) +
         (form.minutes == 1 ? " minute " : " minutes ") + (form.before ? "before " : "after ") +
         sun;
}

std::string FormText(const ConditionForm& form) {
  if (form.kind == Kind::kLeap) return "it is a leap year";
  if (form.is == Is::kDaylight || form.is == Is::kNight || form.is == Is::kWithin) {
    return SunText(form);
  }
  const std::string subject = Subject(form.kind);
  const bool byDate = form.kind == Kind::kDate;
  if (form.is == Is::kBetween) {
    const std::string from = byDate ? DayText(form.fromDate) : OperandText(form.kind, form.from);
    const std::string to = byDate ? DayText(form.toDate) : OperandText(form.kind, form.to);
    return subject + " is between " + from + " and " + to;
  }
  if (byDate) return subject + Compared(form.is, DayText(form.fromDate));
  if (!form.list.empty()) return ListText(form);
  return subject + Compared(form.is, OperandText(form.kind, form.from));
}

// With its seconds where they decide: in the minute with which the time is compared.
std::string TimeText(const ConditionForm& form, const std::tm& local) {
  const int minutes = local.tm_hour * 60 + local.tm_min;
  const bool bySecond = form.is == Is::kBetween || form.is == Is::kGt || form.is == Is::kGe ||
                        form.is == Is::kLt || form.is == Is::kLe;
  const bool isNear = minutes == form.from || (form.is == Is::kBetween && minutes == form.to);
  if (!bySecond || !isNear) return ClockText(minutes);
  std::array<char, 16> seconds{};
  std::snprintf(seconds.data(), seconds.size(), ":%02d", local.tm_sec);
  return ClockText(minutes) + seconds.data();
}

std::string PresentText(const ConditionForm& form, const std::tm& local) {
  switch (form.kind) {
    case Kind::kTime:
      return "it is " + TimeText(form, local);
    case Kind::kWeekday:
      return "today is " + std::string(kWeekdays[local.tm_wday]);
    case Kind::kDay:
      return "it is day " + std::to_string(local.tm_mday) + " of the month";
    case Kind::kDate:
      return "today is " + DayText({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday});
    case Kind::kMonth:
      return "it is " + std::string(kMonths[local.tm_mon]);
    default:
      return "it is " + std::to_string(local.tm_year + 1900);
  }
}

}  // namespace

std::string ConditionText(const Condition& condition) {
  const auto form = FormOf(condition);
  return form ? FormText(*form) : "the condition " + condition.name + " holds";
}

std::string ConditionBecause(const Condition& condition, std::time_t now) {
  const auto form = FormOf(condition);
  std::tm local{};
  if (!form || localtime_r(&now, &local) == nullptr) return {};
  return PresentText(*form, local);
}

}  // namespace controller
