// Conditions in the form in which the scheduler reads them.

#include <array>
#include <cstdio>

#include "controller/programming/ConditionForm.h"

namespace controller {

namespace {

using Is = ConditionForm::Is;
using Kind = ConditionForm::Kind;

// What is written here is made of numbers and of words without markup, so nothing needs escaping.
std::string Element(const std::string& name, const std::string& content) {
  return '<' + name + '>' + content + "</" + name + '>';
}

std::string Element(const std::string& name, int value) {
  return Element(name, std::to_string(value));
}

std::string List(const std::string& name, const std::vector<int>& entries) {
  std::string content;
  for (const int entry : entries) content += Element("entry", entry);
  return Element(name, content);
}

std::string DateElements(const std::string& prefix, const DayFields& date) {
  return Element(prefix + "_dd", date.day) + Element(prefix + "_mm", date.month) +
         Element(prefix + "_yy", date.year);
}

std::string SunXml(const ConditionForm& form) {
  // The clock's comparison and the sun's are joined by "or": without a comparator only the sun
  // counts.
  const std::string noComparator = Element("comparator", "");
  if (form.is == Is::kDaylight) return noComparator + Element("type", "Day");
  if (form.is == Is::kNight) return noComparator + Element("type", "Night");
  return noComparator + Element("type", "Within") +
         Element("offset_type", form.sunrise ? "1" : "2") +
         Element("offset", form.before ? "Before" : "After") +
         Element("offset_minutes", form.minutes);
}

std::string BetweenXml(const ConditionForm& form) {
  switch (form.kind) {
    case Kind::kTime:
      // A later day needs no 1440 more: an end before the start leads over midnight.
      return Element("offset_from", form.from) + Element("offset_to", form.to);
    case Kind::kWeekday:
      return Element("day_between", Element("day_name", "Day") +
                                        Element("dayname_from", form.from) +
                                        Element("dayname_to", form.to));
    case Kind::kDay:
      return Element("day_between", Element("day_name", "DayNum") + Element("day_from", form.from) +
                                        Element("day_to", form.to));
    case Kind::kDate:
      return Element("date_between", DateElements("date_from", form.fromDate) +
                                         DateElements("date_to", form.toDate));
    case Kind::kMonth:
      return Element("month_between",
                     Element("month_from", form.from) + Element("month_to", form.to));
    case Kind::kYear:
      return Element("year_between", Element("year_from", form.from) + Element("year_to", form.to));
    case Kind::kLeap:
      break;
  }
  return {};
}

std::string ComparedXml(const ConditionForm& form) {
  switch (form.kind) {
    case Kind::kTime:
      return Element("comp_time", form.from);
    case Kind::kWeekday:
      return Element("day_current", Element("day_name", "Day") + List("day_names", form.list));
    case Kind::kDay:
      return Element("day_current", Element("day_name", "DayNum") + List("cur_days", form.list));
    case Kind::kDate:
      return Element("date_current", DateElements("date_curr", form.fromDate));
    case Kind::kMonth:
      return Element("month_current", List("month_names", form.list));
    case Kind::kYear:
      return Element("year_current", Element("year_curr", form.from));
    case Kind::kLeap:
      break;
  }
  return {};
}

std::string Operands(const ConditionForm& form) {
  if (form.kind == Kind::kLeap) return {};
  if (form.is == Is::kDaylight || form.is == Is::kNight || form.is == Is::kWithin) {
    return SunXml(form);
  }
  return Element("comparator", ComparatorCode(form.is)) +
         (form.is == Is::kBetween ? BetweenXml(form) : ComparedXml(form));
}

}  // namespace

const char* ConditionName(const ConditionForm& form) {
  switch (form.kind) {
    case Kind::kTime:
      return "IF_TIME";
    case Kind::kWeekday:
    case Kind::kDay:
      return "IF_TODAY";
    case Kind::kDate:
      return "IF_DATE";
    case Kind::kMonth:
      return "IF_MONTH";
    case Kind::kYear:
      return "IF_YEAR";
    case Kind::kLeap:
      break;
  }
  return "IF_LEAP";
}

std::string ConditionXml(const ConditionForm& form) { return Element("condition", Operands(form)); }

const char* ComparatorCode(Is is) {
  constexpr const char* kCodes[] = {"BT", "EQ", "NE", "GT", "GE", "LT", "LE"};
  return kCodes[static_cast<std::size_t>(is)];
}

std::string ClockText(int minutes) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d", minutes / 60, minutes % 60);
  return text.data();
}

}  // namespace controller
