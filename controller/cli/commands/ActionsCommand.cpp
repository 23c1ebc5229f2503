#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "controller/Failure.h"
#include "controller/Files.h"
#include "controller/Printable.h"
#include "controller/cli/commands/ActionOptions.h"
#include "controller/cli/commands/ActionReports.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

constexpr std::size_t kLargestProgramming = 1UL << 20;

struct ActionsLine : ClientOptions {
  std::string name;
  ActionOptions action;
  std::optional<std::size_t> change;
  std::optional<std::size_t> remove;
  std::optional<std::size_t> test;
  std::string replace;
};

/// The position of action `number`, which counts from 1. Throws a `Failure`.
std::size_t Position(const Json& actions, std::size_t number, const Json& event) {
  if (number >= 1 && number <= actions.size()) return number - 1;
  const std::string there =
      actions.empty() ? "has no actions" : "has the actions 1 to " + std::to_string(actions.size());
  throw Failure(
      "there is no action " + std::to_string(number) + ": " + EventName(event) + ' ' + there,
      ExitStatus::kBadInput);
}

Json Changed(const ActionsLine& line, Json actions, const Json& event, const Session& session) {
  std::vector<std::string> notes;
  if (line.remove) {
    actions.erase(Position(actions, *line.remove, event));
  } else if (line.change) {
    Json& action = actions[Position(actions, *line.change, event)];
    action = ChangedAction(line.action, action, notes);
  } else {
    actions.push_back(ChangedAction(line.action, Json::object(), notes));
  }
  for (const std::string& note : notes) session.Note(note);
  return actions;
}

/// The document of --replace.
Json GivenProgramming(const std::string& file) {
  const std::string text = ReadWhole(file, kLargestProgramming);
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw Failure("--replace " + Quoted(file) + ": it is no JSON: " + error.what(),
                  ExitStatus::kBadInput);
  }
}

Json Replaced(const ActionsLine& line, Session& session, const Json& event) {
  const std::string path = EventPath(event, "/programming");
  if (!line.replace.empty()) return session.api.Send("PUT", path, GivenProgramming(line.replace));
  const Json programming = session.api.Get(path);
  if (!line.remove && line.action.IsEmpty()) return programming;
  // Whoever else changes the list meanwhile must not lose that.
  const Json actions = Changed(line, programming.at("actions"), event, session);
  session.api.IfMatch(session.api.Version());
  return session.api.Send("PATCH", path, {{"actions", actions}});
}

int Try(const ActionsLine& line, Session& session, const Json& event) {
  constexpr long kLongest = 3600 + 60;
  const Json programming = session.api.Get(EventPath(event, "/programming"));
  const Json& actions = programming.at("actions");
  const Json& action = actions[Position(actions, *line.test, event)];
  const Json outcome = session.api.Send("POST", "/actions/test",
                                        {{"action", action}, {"event", event.at("id")}}, kLongest);
  if (session.json) {
    session.WriteJson(outcome);
  } else {
    WriteOutcome(session, outcome);
  }
  const std::string how = TextField(outcome, "outcome");
  return static_cast<int>(how == "done" || how == "condition" ? ExitStatus::kOk
                                                              : ExitStatus::kFailed);
}

void CheckGiven(const ActionsLine& line) {
  const int ways = (line.remove ? 1 : 0) + (line.test ? 1 : 0) + (line.replace.empty() ? 0 : 1) +
                   (line.change || !line.action.IsEmpty() ? 1 : 0);
  const char* problem = nullptr;
  if (ways > 1) problem = "do one thing at a time: --remove, --test, --replace, or one action";
  if (ways > 0 && line.name.empty()) problem = "an event is missing: whose action it is";
  if (line.change && line.action.IsEmpty()) {
    problem = "nothing is given to change the action to; see \"vexalink actions --help\"";
  }
  if (problem != nullptr) throw Failure(problem, ExitStatus::kBadInput);
}

int Actions(const ActionsLine& line, Session& session) {
  CheckGiven(line);
  if (line.name.empty()) {
    WriteRunning(session, session.api.Get("/actions/running"));
    return 0;
  }
  const Json event = FindEvent(session.api, line.name);
  if (line.test) return Try(line, session, event);
  const Json programming = Replaced(line, session, event);
  if (session.json) {
    session.WriteJson(programming);
  } else {
    WriteActions(session, event, programming);
  }
  return 0;
}

}  // namespace

void AddActionsCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ActionsLine>();
  CLI::App* command = AddClientCommand(
      app, run, "actions", "Show or change what an event does; without an event, what is under way",
      line, [line](Session& session) { return Actions(*line, session); });
  AddEventArgument(*command, line->name)->required(false);
  AddActionOptions(*command, line->action);
  command
      ->add_option("--change", line->change,
                   "Change action N to what the other options say, instead of adding one")
      ->type_name("N");
  command->add_option("--remove", line->remove, "Take action N away")->type_name("N");
  command
      ->add_option("--test", line->test,
                   "Do action N now, if its condition holds, without its delay")
      ->type_name("N");
  command
      ->add_option("--replace", line->replace,
                   "Take over all that an event does from a JSON file, as \"actions EVENT --json\" "
                   "writes it; - for standard input")
      ->type_name("FILE");
  command->footer(
      "Examples:\n"
      "  vexalink actions Porch --hook http://hub.local/porch --if \"time is night\"\n"
      "  vexalink actions Porch --change 1 --delay 5m\n"
      "  vexalink actions Porch --test 1\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
