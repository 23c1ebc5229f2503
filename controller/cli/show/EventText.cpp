#include "controller/cli/show/EventText.h"

#include "controller/Printable.h"
#include "controller/cli/parse/ConditionText.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/EveryText.h"
#include "controller/cli/parse/ShellWords.h"
#include "controller/cli/parse/TimeText.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

std::vector<std::string> Blockers(const Json& programming) {
  std::vector<std::string> states;
  if (!FlagField(programming, "enabled", true)) states.emplace_back("disabled");
  if (HasField(programming, "paused_until")) {
    states.push_back("paused until " + TextField(programming, "paused_until"));
  }
  if (FlagField(programming, "skip_next", false)) states.emplace_back("skips the next");
  return states;
}

std::size_t ActionCount(const Json& programming) {
  if (!HasField(programming, "actions")) return 0;
  const Json& actions = programming["actions"];
  return actions.is_array() ? actions.size() : actions.get<std::size_t>();
}

std::string WhatWords(const Json& action) {
  if (HasField(action, "hook")) {
    return TextField(action["hook"], "method", "POST") + ' ' + TextField(action["hook"], "url");
  }
  if (HasField(action, "command")) {
    return "run " + ShellQuoted(action["command"].at("argv").get<std::vector<std::string>>());
  }
  if (!HasField(action, "variable")) return "?";
  const Json& variable = action["variable"];
  return "set " + variable.at("device").dump() + '.' + variable.at("variable").dump() + '=' +
         TextField(variable, "value");
}

}  // namespace

std::string EventName(const Json& event) {
  return "event " + event.at("id").dump() + ' ' + Quoted(TextField(event, "description"));
}

std::string EventTimeText(const Json& event) {
  if (!HasField(event, "time")) return "?";
  const long spread = NumberField(event["time"], "spread");
  return AtText(event["time"]) + (spread > 0 ? " ±" + MinutesText(spread) : "");
}

std::string EventRepeatText(const Json& event) {
  if (!HasField(event, "repeat")) {
    return "once on " + TextField(event, "start", "?");
  }
  const Json& repeat = event["repeat"];
  if (!HasField(repeat, "unit")) return "in an odd way";
  std::string text = "every " + EveryText(repeat);
  if (HasField(repeat, "until")) text += " until " + TextField(repeat, "until");
  return text;
}

std::string EventNextText(const Json& event) {
  return HasField(event, "next") ? MomentText(TextField(event, "next")) : "never";
}

std::string ProgrammingStateText(const Json& programming) {
  std::string text;
  for (const std::string& state : Blockers(programming)) text += state + ", ";
  const std::size_t actions = ActionCount(programming);
  if (actions == 0) return text + "no actions";
  return text + std::to_string(actions) + (actions == 1 ? " action" : " actions");
}

bool IsAsleep(const Json& programming) {
  return !FlagField(programming, "enabled", true) || HasField(programming, "paused_until");
}

std::string ActionWords(const Json& action) {
  std::string when;
  const std::string on = TextField(action, "on", "event");
  if (on != "event") when = "on " + on;
  const long delay = NumberField(action, "delay");
  if (delay > 0) when += (when.empty() ? "" : ", ") + ("after " + SecondsText(delay));
  if (HasField(action, "if")) {
    when += (when.empty() ? "" : ", ") + ("if " + ConditionWords(action["if"]));
  }
  return Printable((when.empty() ? "" : when + ": ") + WhatWords(action));
}

}  // namespace controller::cli
