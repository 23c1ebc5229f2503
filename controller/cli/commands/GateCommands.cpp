// Whether an event may do what it does: enable, disable, pause, resume, skip.

#include <CLI/CLI.hpp>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

struct GateLine : ClientOptions {
  std::vector<std::string> names;
  std::string until;
  bool undo = false;
};

/// What is told of each event that was changed: before its name, and behind it.
struct Done {
  std::string before;
  std::string behind;
};

/// Changes the programming of each event named; all are found before the first is changed.
int Patch(const GateLine& line, Session& session, const Json& patch, const Done& done) {
  std::vector<Json> events;
  for (const std::string& name : line.names) events.push_back(FindEvent(session.api, name));
  Json changed = Json::array();
  for (const Json& event : events) {
    const Json programming = session.api.Send("PATCH", EventPath(event, "/programming"), patch);
    changed.push_back({{"event", event.at("id")}, {"programming", programming}});
    if (session.json) continue;
    session.terminal.out << done.before << EventName(event) << done.behind << '\n';
  }
  if (session.json) session.WriteJson({{"changed", changed}});
  return 0;
}

int Pause(const GateLine& line, Session& session) {
  const HouseToday today = session.Today();
  const std::string day = ParseDay("--until", line.until, today);
  if (day <= today()) {
    throw Failure("--until is the day with which events begin again; " + Quoted(day) +
                      " has begun, give a later one",
                  ExitStatus::kBadInput);
  }
  return Patch(line, session, {{"paused_until", day}}, {"paused ", " until " + day});
}

int Skip(const GateLine& line, Session& session) {
  return Patch(line, session, {{"skip_next", !line.undo}},
               {"", line.undo ? " does not skip any longer" : " skips its next firing"});
}

CLI::App* AddGate(CLI::App& app, CommandRun& run, const char* name, const char* description,
                  const std::shared_ptr<GateLine>& line, SessionWork work) {
  CLI::App* command = AddClientCommand(app, run, name, description, line, std::move(work));
  AddEventArguments(*command, line->names);
  command->footer(ClientExitStatuses());
  return command;
}

/// A command that always makes the same change.
void AddFixed(CLI::App& app, CommandRun& run, const char* name, const char* description,
              const Json& patch, const Done& done) {
  const auto line = std::make_shared<GateLine>();
  AddGate(app, run, name, description, line,
          [line, patch, done](Session& session) { return Patch(*line, session, patch, done); });
}

}  // namespace

void AddGateCommands(CLI::App& app, CommandRun& run) {
  AddFixed(app, run, "enable", "Let events do what they do", {{"enabled", true}}, {"enabled ", ""});
  AddFixed(app, run, "disable", "Let events do nothing until they are enabled",
           {{"enabled", false}}, {"disabled ", ""});
  const auto pause = std::make_shared<GateLine>();
  AddGate(app, run, "pause", "Let events do nothing before a day", pause,
          [pause](Session& session) { return Pause(*pause, session); })
      ->add_option("--until", pause->until, "The day with which they begin again")
      ->type_name("DATE")
      ->required();
  AddFixed(app, run, "resume", "End the pause of events", {{"paused_until", nullptr}},
           {"resumed ", ""});
  const auto skip = std::make_shared<GateLine>();
  AddGate(app, run, "skip", "Let the next firing of events that would do something do nothing",
          skip, [skip](Session& session) { return Skip(*skip, session); })
      ->add_flag("--undo", skip->undo, "Do not skip it after all");
}

}  // namespace controller::cli
