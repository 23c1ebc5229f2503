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

bool Holds(const Json& object, const char* name) {
  return object.is_object() && object.contains(name) && !object[name].is_null();
}

std::string TextOf(const Json& object, const char* name) {
  return Holds(object, name) ? object[name].get<std::string>() : "";
}

std::vector<std::string> Blockers(const Json& programming) {
  std::vector<std::string> states;
  if (!programming.value("enabled", true)) states.emplace_back("disabled");
  if (Holds(programming, "paused_until")) {
    states.push_back("paused until " + TextOf(programming, "paused_until"));
  }
  if (programming.value("skip_next", false)) states.emplace_back("skips the next");
  return states;
}

std::size_t ActionCount(const Json& programming) {
  if (!Holds(programming, "actions")) return 0;
  const Json& actions = programming["actions"];
  return actions.is_array() ? actions.size() : actions.get<std::size_t>();
}

std::string WhatWords(const Json& action) {
  if (Holds(action, "hook")) {
    return action["hook"].value("method", "POST") + ' ' + TextOf(action["hook"], "url");
  }
  if (Holds(action, "command")) {
    return "run " + ShellQuoted(action["command"].at("argv").get<std::vector<std::string>>());
  }
  if (!Holds(action, "variable")) return "?";
  const Json& variable = action["variable"];
  return "set " + variable.at("device").dump() + '.' + variable.at("variable").dump() + '=' +
         TextOf(variable, "value");
}

}  // namespace

std::string EventName(const Json& event) {
  return "event " + event.at("id").dump() + ' ' + Quoted(TextOf(event, "description"));
}

std::string EventTimeText(const Json& event) {
  if (!Holds(event, "time")) return "?";
  const long spread = event["time"].value("spread", 0L);
  return AtText(event["time"]) + (spread > 0 ? " ±" + MinutesText(spread) : "");
}

std::string EventRepeatText(const Json& event) {
  if (!Holds(event, "repeat")) {
    return event.value("odd", false) ? "in an odd way" : "once on " + TextOf(event, "start");
  }
  const Json& repeat = event["repeat"];
  if (!Holds(repeat, "unit")) return "in an odd way";
  std::string text = "every " + EveryText(repeat);
  if (Holds(repeat, "until")) text += " until " + TextOf(repeat, "until");
  return text;
}

std::string EventNextText(const Json& event) {
  return Holds(event, "next") ? MomentText(TextOf(event, "next")) : "never";
}

std::string ProgrammingStateText(const Json& programming) {
  std::string text;
  for (const std::string& state : Blockers(programming)) text += state + ", ";
  const std::size_t actions = ActionCount(programming);
  if (actions == 0) return text + "no actions";
  return text + std::to_string(actions) + (actions == 1 ? " action" : " actions");
}

bool IsAsleep(const Json& programming) {
  return !programming.value("enabled", true) || Holds(programming, "paused_until");
}

std::string ActionWords(const Json& action) {
  std::string when;
  const std::string on = action.value("on", "event");
  if (on != "event") when = "on " + on;
  const long delay = action.value("delay", 0L);
  if (delay > 0) when += (when.empty() ? "" : ", ") + ("after " + SecondsText(delay));
  if (Holds(action, "if")) {
    when += (when.empty() ? "" : ", ") + ("if " + ConditionWords(action["if"]));
  }
  return Printable((when.empty() ? "" : when + ": ") + WhatWords(action));
}

}  // namespace controller::cli
