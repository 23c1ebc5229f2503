#include <CLI/CLI.hpp>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

struct RunLine : ClientOptions {
  std::string name;
  std::string button;
};

int Tell(const Session& session, const Json& event, const Json& answer, const std::string& what) {
  if (session.json) {
    session.WriteJson(answer.is_null() ? Json::object() : answer);
    return 0;
  }
  session.terminal.out << what << ' ' << EventName(event);
  if (answer.is_object() && answer.contains("journal")) {
    session.terminal.out << ", row " << answer["journal"].dump() << " of the journal";
  }
  session.terminal.out << '\n';
  return 0;
}

int RunEvent(const RunLine& line, Session& session) {
  const Json event = FindEvent(session.api, line.name);
  return Tell(session, event, session.api.Send("POST", EventPath(event, "/run")), "ran");
}

int Press(const RunLine& line, Session& session) {
  const Json event = FindEvent(session.api, line.name);
  const std::string path = EventPath(event, "/press");
  const Json answer = line.button.empty()
                          ? session.api.Send("POST", path)
                          : session.api.Send("POST", path, {{"button", line.button}});
  return Tell(session, event, answer, "pressed the button of");
}

}  // namespace

void AddRunCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<RunLine>();
  CLI::App* command =
      AddClientCommand(app, run, "run", "Work an event by hand now, as if it had fired", line,
                       [line](Session& session) { return RunEvent(*line, session); });
  AddEventArgument(*command, line->name);
  command->footer("Done means that it has begun; the journal tells what became of it.\n\n" +
                  ClientExitStatuses());
}

void AddPressCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<RunLine>();
  CLI::App* command = AddClientCommand(app, run, "press", "Press an event's button by hand", line,
                                       [line](Session& session) { return Press(*line, session); });
  AddEventArgument(*command, line->name);
  command->add_option("--button", line->button, "Only this of its two calls. Default: both")
      ->type_name("push|click")
      ->check(CLI::IsMember({"push", "click"}).description(""));
  command->footer(ClientExitStatuses());
}

}  // namespace controller::cli
