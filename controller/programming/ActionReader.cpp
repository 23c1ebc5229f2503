#include "controller/programming/ActionReader.h"

#include "controller/ProjectVariables.h"
#include "controller/json/ShownJson.h"
#include "controller/programming/HookRules.h"
#include "controller/programming/Placeholders.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

using Need = ObjectReader::Need;
using nlohmann::json;

constexpr long kMostDelaySeconds = 86400;
constexpr long kMostHookSeconds = 300;
constexpr long kMostRetries = 10;
constexpr long kMostCommandSeconds = 3600;
constexpr std::size_t kMostHeaders = 50;
constexpr std::size_t kMostHeaderCharacters = 4000;
constexpr std::size_t kMostUrlCharacters = 2000;
constexpr std::size_t kMostBodyCharacters = 65536;
constexpr std::size_t kMostArguments = 100;
constexpr std::size_t kMostArgumentCharacters = 4000;
constexpr std::size_t kMostValueCharacters = 1000;
constexpr long kMostVariable = 4294967295;

const std::vector<std::string> kMethods = {"GET", "POST", "PUT", "PATCH", "DELETE"};

// What is wrong with the program of a command, or nothing.
std::string WrongProgram(const std::string& program) {
  const std::size_t slash = program.find('/');
  if (slash == std::string::npos || slash == 0) return {};
  return "is " + ShownJson(program) + "; give the whole path, or a name that stands on the PATH";
}

}  // namespace

ActionReader::ActionReader(const json& value, const std::string& pointer, FieldErrors& errors)
    : pointer_(pointer), errors_(errors), fields_(value, pointer, errors) {}

Action ActionReader::Read() {
  Action read;
  const auto on = fields_.Word("on", Need::kOptional, {"event", "push", "click"});
  if (on) read.on = static_cast<Trigger>(*on);
  read.delaySeconds =
      static_cast<int>(fields_.Whole("delay", Need::kOptional, 0, kMostDelaySeconds).value_or(0));
  if (const json* condition = fields_.Value("if")) {
    read.condition = ReadCondition(*condition, fields_.PointerTo("if"), errors_);
  }
  ReadWhat(read);
  fields_.NoOthers();
  return read;
}

void ActionReader::ReadWhat(Action& action) {
  const json* hook = fields_.Value("hook");
  const json* command = fields_.Value("command");
  const json* variable = fields_.Value("variable");
  if (hook != nullptr) action.what = ReadHook(*hook, fields_.PointerTo("hook"));
  if (command != nullptr) action.what = ReadCommand(*command, fields_.PointerTo("command"));
  if (variable != nullptr) action.what = ReadVariable(*variable, fields_.PointerTo("variable"));
  const int given = (hook != nullptr) + (command != nullptr) + (variable != nullptr);
  if (given == 1 || !fields_.IsObject()) return;
  errors_.push_back({pointer_, given == 0
                                   ? "does nothing; give \"hook\", \"command\" or \"variable\""
                                   : "does more than one thing; give one of \"hook\", "
                                     "\"command\" and \"variable\", and an action for each"});
}

HookAction ActionReader::ReadHook(const json& value, const std::string& pointer) {
  ObjectReader fields(value, pointer, errors_);
  HookAction read;
  if (const auto method = fields.Word("method", Need::kOptional, kMethods)) {
    read.method = kMethods[*method];
  }
  if (const auto url = fields.Text("url", Need::kDemanded, 1, kMostUrlCharacters)) {
    const std::string wrong = WrongUrl(*url);
    if (!wrong.empty()) fields.Complain("url", wrong);
    CheckPlaceholders(*url, fields.PointerTo("url"));
    read.url = *url;
  }
  if (const json* headers = fields.Value("headers")) {
    read.headers = ReadHeaders(*headers, fields.PointerTo("headers"));
  }
  read.body =
      fields.Text("body", Need::kOptional, 0, kMostBodyCharacters, /*lines=*/true).value_or("");
  CheckPlaceholders(read.body, fields.PointerTo("body"));
  const HookAction plain;
  read.timeoutSeconds = static_cast<int>(
      fields.Whole("timeout", Need::kOptional, 1, kMostHookSeconds).value_or(plain.timeoutSeconds));
  read.retries = static_cast<int>(
      fields.Whole("retries", Need::kOptional, 0, kMostRetries).value_or(plain.retries));
  fields.NoOthers();
  return read;
}

std::map<std::string, std::string> ActionReader::ReadHeaders(const json& value,
                                                             const std::string& pointer) {
  std::map<std::string, std::string> headers;
  ObjectReader fields(value, pointer, errors_);
  if (!value.is_object()) return headers;
  if (value.size() > kMostHeaders) {
    errors_.push_back({pointer, "has " + std::to_string(value.size()) + " headers; give at most " +
                                    std::to_string(kMostHeaders)});
    return headers;
  }
  for (const auto& header : value.items()) ReadHeader(header.key(), value, fields, headers);
  return headers;
}

void ActionReader::ReadHeader(const std::string& name, const json& all, ObjectReader& fields,
                              std::map<std::string, std::string>& headers) {
  const std::string wrong = WrongHeaderName(name);
  if (!wrong.empty()) return fields.Complain(name.c_str(), wrong);
  for (const auto& other : headers) {
    if (!SameName(other.first, name)) continue;
    return fields.Complain(
        name.c_str(), "is the same header as " + ShownJson(other.first) + "; give one of them");
  }
  if (all.at(name).is_null()) return fields.Complain(name.c_str(), "is null; leave it out");
  const auto text = fields.Text(name.c_str(), Need::kDemanded, 0, kMostHeaderCharacters);
  if (!text) return;
  CheckPlaceholders(*text, fields.PointerTo(name.c_str()));
  headers[name] = *text;
}

CommandAction ActionReader::ReadCommand(const json& value, const std::string& pointer) {
  ObjectReader fields(value, pointer, errors_);
  CommandAction read;
  if (const json* argv = fields.Value("argv", Need::kDemanded)) {
    read.argv = ReadArgv(*argv, fields.PointerTo("argv"));
  }
  read.timeoutSeconds =
      static_cast<int>(fields.Whole("timeout", Need::kOptional, 1, kMostCommandSeconds)
                           .value_or(CommandAction{}.timeoutSeconds));
  fields.NoOthers();
  return read;
}

std::vector<std::string> ActionReader::ReadArgv(const json& value, const std::string& pointer) {
  std::vector<std::string> argv;
  if (!value.is_array() || value.empty() || value.size() > kMostArguments) {
    const std::string has = value.is_array() && !value.empty()
                                ? "has " + std::to_string(value.size()) + " entries"
                                : "is " + ShownJson(value);
    errors_.push_back({pointer, has + "; give a list of 1 to " + std::to_string(kMostArguments) +
                                    " texts: the program and its arguments"});
    return argv;
  }
  // Read as fields whose names are the positions, so that the pointers come out right.
  json named = json::object();
  for (std::size_t i = 0; i < value.size(); ++i) named[std::to_string(i)] = value[i];
  ObjectReader fields(named, pointer, errors_);
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::string position = std::to_string(i);
    const auto text = fields.Text(position.c_str(), Need::kDemanded, i == 0 ? 1 : 0,
                                  kMostArgumentCharacters, /*lines=*/i > 0);
    argv.push_back(text.value_or(""));
    if (i > 0) CheckPlaceholders(argv[i], fields.PointerTo(position.c_str()));
  }
  const std::string wrong = WrongProgram(argv[0]);
  if (!wrong.empty()) fields.Complain("0", wrong);
  return argv;
}

VariableAction ActionReader::ReadVariable(const json& value, const std::string& pointer) {
  ObjectReader fields(value, pointer, errors_);
  VariableAction read;
  read.device = static_cast<unsigned long>(
      fields.Whole("device", Need::kDemanded, 0, kMostVariable).value_or(0));
  read.variable = static_cast<unsigned long>(
      fields.Whole("variable", Need::kDemanded, 0, kMostVariable).value_or(0));
  read.value = fields.Text("value", Need::kDemanded, 0, kMostValueCharacters).value_or("");
  CheckPlaceholders(read.value, fields.PointerTo("value"));
  if (IsPlaceVariable(read.device, read.variable)) {
    fields.Complain("variable", "is " + std::to_string(read.variable) +
                                    " of device 1, the place of the house, which no action sets; "
                                    "give another");
  }
  fields.NoOthers();
  return read;
}

void ActionReader::CheckPlaceholders(const std::string& text, const std::string& pointer) {
  const auto unknown = UnknownPlaceholder(text);
  if (!unknown) return;
  errors_.push_back({pointer, "holds " + *unknown +
                                  ", which is no placeholder; there are {event}, {description}, "
                                  "{planned}, {actual} and {trigger}; write {{ for a plain {"});
}

}  // namespace controller
