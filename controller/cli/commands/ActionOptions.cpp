#include "controller/cli/commands/ActionOptions.h"

#include <CLI/CLI.hpp>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/parse/ActionParts.h"
#include "controller/cli/parse/ConditionText.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/ShellWords.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kLongestDelay = 86400;
constexpr long kLongestHook = 300;
constexpr long kLongestCommand = 3600;
constexpr long kMostRetries = 10;

void SetHook(const ActionOptions& options, Json& action) {
  if (options.hook) action["hook"]["url"] = *options.hook;
  Json& hook = action["hook"];
  if (options.method) hook["method"] = *options.method;
  for (const std::string& text : options.headers) {
    const auto [name, value] = ParseHeader("--header", text);
    hook["headers"][name] = value;
  }
  if (options.body) hook["body"] = *options.body;
  if (options.timeout) {
    hook["timeout"] = ParseDuration("--timeout", *options.timeout, 1, 1, kLongestHook);
  }
  if (options.retries) hook["retries"] = *options.retries;
}

void SetCommand(const ActionOptions& options, Json& action, std::vector<std::string>& notes) {
  if (options.run) {
    const ShellWords split = SplitShellWords("--run", *options.run);
    action["command"]["argv"] = split.words;
    notes.insert(notes.end(), split.notes.begin(), split.notes.end());
  }
  if (options.timeout) {
    action["command"]["timeout"] =
        ParseDuration("--timeout", *options.timeout, 1, 1, kLongestCommand);
  }
}

/// The options that only a web hook has must not be lost on something else.
void RefuseHookOptions(const ActionOptions& options) {
  const char* name = options.method             ? "--method"
                     : !options.headers.empty() ? "--header"
                     : options.body             ? "--body"
                     : options.retries          ? "--retries"
                                                : nullptr;
  if (name == nullptr) return;
  throw Failure(std::string(name) + " is for web hooks; give --hook too", ExitStatus::kBadInput);
}

void RefuseTimeout(const ActionOptions& options) {
  if (!options.timeout) return;
  throw Failure("--timeout is for --hook and --run", ExitStatus::kBadInput);
}

/// One action does one thing: a new one takes the place of that before.
void SetWhat(const ActionOptions& options, Json& action, std::vector<std::string>& notes) {
  if (options.SayWhat()) {
    if (!options.hook) action.erase("hook");
    if (!options.run) action.erase("command");
    action.erase("variable");
  }
  if (options.set) action["variable"] = ParseVariable("--set", *options.set);
  if (options.hook || action.contains("hook")) {
    SetHook(options, action);
    return;
  }
  RefuseHookOptions(options);
  if (options.run || action.contains("command")) {
    SetCommand(options, action, notes);
    return;
  }
  RefuseTimeout(options);
  if (action.contains("variable")) return;
  throw Failure("nothing says what is to be done; give --run, --hook or --set",
                ExitStatus::kBadInput);
}

}  // namespace

bool ActionOptions::IsEmpty() const {
  return !SayWhat() && !method && headers.empty() && !body && !timeout && !retries && !condition &&
         !on && !delay;
}

void AddActionOptions(CLI::App& command, ActionOptions& options) {
  auto* run = command.add_option("--run", options.run,
                                 "Run a program. The text is split into words as a shell does it, "
                                 "with '...', \"...\" and \\, but no shell runs: no variables, "
                                 "patterns or pipes");
  auto* hook = command.add_option("--hook", options.hook, "Call a URL, http or https");
  auto* set = command.add_option("--set", options.set, "Set a variable of the house");
  run->type_name("COMMANDLINE")->excludes(hook)->excludes(set);
  hook->type_name("URL")->excludes(set);
  set->type_name("DEVICE.VARIABLE=VALUE");
  command.add_option("--method", options.method, "Of the hook. Default: POST")
      ->type_name("GET|POST|PUT|PATCH|DELETE");
  command
      .add_option("--header", options.headers,
                  "Of the hook, \"X-Key: abc\"; may be given several times")
      ->type_name("HEADER")
      ->type_size(1)
      ->allow_extra_args(false);
  command
      .add_option("--body", options.body,
                  "Of the hook; {event}, {description}, {planned}, {actual} and {trigger} are "
                  "replaced here, in the URL, in headers' values and in a program's arguments")
      ->type_name("TEXT");
  command
      .add_option("--timeout", options.timeout,
                  "How long the hook (default 10s) or the program (60s) may take")
      ->type_name("DURATION");
  command.add_option("--retries", options.retries, "How often a hook is tried again. Default: 3")
      ->type_name("N")
      ->check(CLI::Range(0L, kMostRetries).description(""));
  command
      .add_option("--if", options.condition,
                  "Only if at that moment: time between 22:00 and 02:00, time is night, within 30 "
                  "minutes before sunset, weekday in sat,sun, day is 1, date after 2026-12-24, "
                  "month between 11 and 2, year eq 2027, leap; see the command test")
      ->type_name("CONDITION");
  command
      .add_option("--on", options.on,
                  "The firing itself (default), or a call of the event's button")
      ->type_name("event|push|click")
      ->check(CLI::IsMember({"event", "push", "click"}).description(""));
  command.add_option("--delay", options.delay, "Wait before: 90, 5m, 1h30m; at most 24h")
      ->type_name("DURATION");
}

Json ChangedAction(const ActionOptions& options, Json action, std::vector<std::string>& notes) {
  if (options.on) action["on"] = *options.on;
  if (options.delay) {
    action["delay"] = ParseDuration("--delay", *options.delay, 1, 0, kLongestDelay);
  }
  if (options.condition && LowerCase(*options.condition) == "none") {
    action.erase("if");
  } else if (options.condition) {
    action["if"] = ParseCondition("--if", *options.condition);
  }
  SetWhat(options, action, notes);
  return action;
}

}  // namespace controller::cli
