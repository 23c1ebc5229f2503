#include "controller/ScenarioAction.h"

#include <algorithm>
#include <limits>

#include "controller/LocalTimeText.h"

namespace controller {
namespace {

using nlohmann::json;

constexpr std::size_t kMostQuoted = 60;
constexpr int kMostLevelsShown = 3;

std::string Quoted(const char* key) { return '"' + std::string(key) + '"'; }

// Whether a value has at most so many levels; writing one down takes stack in its depth.
bool IsShallow(const json& value, int levels) {
  if (!value.is_structured()) return true;
  return levels > 0 && std::all_of(value.begin(), value.end(), [levels](const json& part) {
           return IsShallow(part, levels - 1);
         });
}

// The parser's own words, without its name and number in front.
std::string ParserMessage(const json::exception& error) {
  const std::string what = error.what();
  const std::size_t end = what.find("] ");
  return end == std::string::npos ? what : what.substr(end + 2);
}

}  // namespace

std::string ShownValue(const json& value) {
  if (!IsShallow(value, kMostLevelsShown)) return value.is_array() ? "a list" : "an object";
  std::string text = value.dump(-1, ' ', true, json::error_handler_t::replace);
  if (text.size() > kMostQuoted) text = text.substr(0, kMostQuoted) + "...";
  return text;
}

long long ToInteger(const json& value, const std::string& what) {
  const bool tooLarge = value.is_number_unsigned() &&
                        value.get<std::uint64_t>() >
                            static_cast<std::uint64_t>(std::numeric_limits<long long>::max());
  if (!value.is_number_integer() || tooLarge) {
    throw ScenarioError(what + " is " + ShownValue(value) + "; give a whole number");
  }
  return value.get<long long>();
}

double ToNumber(const json& value, const std::string& what) {
  if (!value.is_number())
    throw ScenarioError(what + " is " + ShownValue(value) + "; give a number");
  return value.get<double>();
}

const std::string& ToText(const json& value, const std::string& what) {
  if (!value.is_string()) throw ScenarioError(what + " is " + ShownValue(value) + "; give a text");
  return value.get_ref<const std::string&>();
}

ScenarioAction::ScenarioAction(const std::string& line) {
  try {
    json_ = json::parse(line);
  } catch (const json::exception& error) {
    throw ScenarioError("not valid JSON: " + ParserMessage(error));
  }
  if (!json_.is_object()) {
    throw ScenarioError("the line is " + ShownValue(json_) + "; give an object with \"do\"");
  }
  name_ = Text("do");
}

const json& ScenarioAction::Value(const char* key) const {
  const auto found = json_.find(key);
  if (found == json_.end()) throw ScenarioError(Quoted(key) + " is missing");
  return *found;
}

std::string ScenarioAction::Text(const char* key) const { return ToText(Value(key), Quoted(key)); }

std::optional<std::string> ScenarioAction::OptionalText(const char* key) const {
  if (!Has(key) || Value(key).is_null()) return std::nullopt;
  return Text(key);
}

long long ScenarioAction::Integer(const char* key) const {
  return ToInteger(Value(key), Quoted(key));
}

unsigned long ScenarioAction::Id(const char* key) const {
  const long long id = Integer(key);
  if (id < 0) throw ScenarioError(Quoted(key) + " is " + std::to_string(id) + "; give 0 or more");
  return static_cast<unsigned long>(id);
}

std::time_t ScenarioAction::Time(const char* key) const {
  const json& value = Value(key);
  if (value.is_number_integer()) return ToInteger(value, Quoted(key));
  if (value.is_string()) {
    if (const auto time = ParseLocalTime(value.get_ref<const std::string&>())) return *time;
  }
  throw ScenarioError(Quoted(key) + " is " + ShownValue(value) +
                      "; give seconds since the epoch or YYYY-MM-DDTHH:MM:SS");
}

CommandMessage::Params ScenarioAction::Params(const char* key) const {
  CommandMessage::Params params;
  if (!Has(key)) return params;
  const json& object = Value(key);
  if (!object.is_object()) {
    throw ScenarioError(Quoted(key) + " is " + ShownValue(object) + "; give an object of texts");
  }
  for (const auto& [name, value] : object.items()) {
    params.emplace(name, ToText(value, Quoted(key) + "." + Quoted(name.c_str())));
  }
  return params;
}

const json& ScenarioAction::List(const char* key, std::size_t count) const {
  const json& list = Value(key);
  if (!list.is_array() || list.size() != count) {
    throw ScenarioError(Quoted(key) + " is " + ShownValue(list) + "; give a list of " +
                        std::to_string(count) + (count == 1 ? " value" : " values"));
  }
  return list;
}

}  // namespace controller
