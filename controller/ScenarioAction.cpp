#include "controller/ScenarioAction.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

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

// A whole number that 64 bits hold; 1.0 and 1e3 are whole too.
std::optional<long long> AsInteger(const json& value) {
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    return number >> 63 == 0 ? std::optional(static_cast<long long>(number)) : std::nullopt;
  }
  if (value.is_number_integer()) return value.get<long long>();
  if (!value.is_number_float()) return std::nullopt;
  const double number = value.get<double>();
  const bool isWhole = number == std::floor(number) && number >= -kBeyond && number < kBeyond;
  return isWhole ? std::optional(static_cast<long long>(number)) : std::nullopt;
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
  if (const auto number = AsInteger(value)) return *number;
  throw ScenarioError(what + " is " + ShownValue(value) + "; give a whole number");
}

unsigned long ToId(const json& value, const std::string& what) {
  if (value.is_number_unsigned()) return value.get<unsigned long>();
  return static_cast<unsigned long>(ToInteger(value, what));
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
  // The parser would end at the one, and pass over the other.
  if (line.find('\0') != std::string::npos) throw ScenarioError("not valid JSON: holds a NUL");
  if (line.starts_with("\xEF\xBB\xBF")) {
    throw ScenarioError("not valid JSON: begins with a byte-order mark");
  }
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

unsigned long ScenarioAction::Id(const char* key) const { return ToId(Value(key), Quoted(key)); }

std::time_t ScenarioAction::Time(const char* key) const {
  const json& value = Value(key);
  if (const auto seconds = AsInteger(value)) return *seconds;
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
