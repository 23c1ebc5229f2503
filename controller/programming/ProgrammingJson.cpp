#include "controller/programming/ProgrammingJson.h"

#include <utility>

#include "controller/Printable.h"
#include "controller/programming/HookRules.h"

namespace controller {

namespace {

using nlohmann::ordered_json;

const char* PolicyName(CatchUp::Policy policy) {
  switch (policy) {
    case CatchUp::Policy::kIgnore:
      return "ignore";
    case CatchUp::Policy::kAlways:
      return "always";
    case CatchUp::Policy::kWithin:
      break;
  }
  return "within";
}

ordered_json WhatJson(const HookAction& hook) {
  ordered_json headers = ordered_json::object();
  for (const auto& [name, value] : hook.headers) headers[name] = value;
  return {{"hook",
           {{"method", hook.method},
            {"url", hook.url},
            {"headers", headers},
            {"body", hook.body},
            {"timeout", hook.timeoutSeconds},
            {"retries", hook.retries}}}};
}

ordered_json WhatJson(const CommandAction& command) {
  return {{"command", {{"argv", command.argv}, {"timeout", command.timeoutSeconds}}}};
}

ordered_json WhatJson(const VariableAction& variable) {
  return {
      {"variable",
       {{"device", variable.device}, {"variable", variable.variable}, {"value", variable.value}}}};
}

std::string WhatText(const HookAction& hook) { return hook.method + ' ' + ShownUrl(hook.url); }

std::string WhatText(const CommandAction& command) {
  const std::string program = command.argv.empty() ? "nothing" : command.argv.front();
  return "runs " + Printable(program.substr(program.rfind('/') + 1), 200);
}

std::string WhatText(const VariableAction& variable) {
  return "sets variable " + std::to_string(variable.variable) + " of device " +
         std::to_string(variable.device) + " to " + Quoted(variable.value);
}

}  // namespace

ordered_json ProgrammingJson(const Programming& programming) {
  ordered_json actions = ordered_json::array();
  for (const Action& action : programming.actions) actions.push_back(ActionJson(action));
  ordered_json made;
  made["enabled"] = programming.enabled;
  made["paused_until"] = nullptr;
  if (programming.pausedUntil) made["paused_until"] = DayText(*programming.pausedUntil);
  made["skip_next"] = programming.skipNext;
  made["catch_up"] = {{"policy", PolicyName(programming.catchUp.policy)},
                      {"minutes", programming.catchUp.minutes}};
  made["actions"] = std::move(actions);
  return made;
}

ordered_json ActionJson(const Action& action) {
  ordered_json made;
  made["on"] = TriggerName(action.on);
  made["delay"] = action.delaySeconds;
  if (action.condition) {
    auto written = ordered_json::parse(action.condition->json, nullptr, /*allow_exceptions=*/false);
    if (!written.is_discarded()) made["if"] = std::move(written);
  }
  made.update(std::visit([](const auto& what) { return WhatJson(what); }, action.what));
  return made;
}

std::string ActionText(const Action& action) {
  return std::visit([](const auto& what) { return WhatText(what); }, action.what);
}

}  // namespace controller
