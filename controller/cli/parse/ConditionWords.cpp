#include "controller/Printable.h"
#include "controller/cli/parse/Comparison.h"
#include "controller/cli/parse/ConditionText.h"
#include "controller/cli/parse/ConditionValue.h"
#include "controller/cli/parse/DurationText.h"

namespace controller::cli {

namespace {

std::string ValueText(const Json& value) {
  if (value.is_string()) return Printable(value.get<std::string>());
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const Json& one : value) text += (text.empty() ? "" : ",") + ValueText(one);
  return text;
}

std::string TimeWords(const Json& condition, const std::string& is) {
  if (is != "within") return "time is " + is;
  const long minutes = condition.at("minutes").get<long>();
  return "within " + MinutesText(minutes) + (minutes < 60 ? " minutes " : " ") +
         ValueText(condition.at("side")) + ' ' + ValueText(condition.at("of"));
}

}  // namespace

std::string ConditionWords(const Json& condition) {
  const std::string name = condition.at("kind").get<std::string>();
  if (name == "leap") return "leap";
  const std::string is = condition.at("is").get<std::string>();
  if (is == "between") {
    return Printable(name) + " between " + ValueText(condition.at("from")) + " and " +
           ValueText(condition.at("to"));
  }
  if (is == "within" || is == "day" || is == "night") return TimeWords(condition, is);
  const ConditionKind* kind = FindConditionKind(name);
  if (kind == nullptr) return Printable(condition.dump());
  const Json& value = condition.at(kind->field);
  const bool list = value.is_array() && value.size() > 1;
  return name + ' ' + ComparisonWords(is, list) + ' ' + ValueText(value);
}

}  // namespace controller::cli
