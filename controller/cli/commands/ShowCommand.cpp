#include <CLI/CLI.hpp>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/ActionParts.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/Fields.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

struct ShowLine : ClientOptions {
  std::string event;
};

std::string StateText(const Json& programming) {
  if (!FlagField(programming, "enabled", true)) return "disabled";
  if (programming.contains("paused_until") && !programming["paused_until"].is_null()) {
    return "paused until " + programming["paused_until"].get<std::string>();
  }
  return "enabled";
}

void WriteEvent(const Session& session, const Json& event, const Json& programming) {
  session.terminal.out << session.terminal.Styled(EventName(event), Style::kBold) << '\n';
  Fields fields;
  fields.Add("time", EventTimeText(event));
  fields.Add("repeats", EventRepeatText(event));
  if (FlagField(event, "odd", false)) {
    fields.Add("odd", "it holds what cannot be said here; change it, or delete it",
               Style::kWarning);
  }
  fields.Add("start", LongDayText(TextField(event, "start")));
  fields.Add("next", EventNextText(event));
  fields.Add("state", StateText(programming) +
                          (FlagField(programming, "skip_next", false) ? ", skips the next" : ""));
  fields.Add("catches up", CatchUpText(programming.at("catch_up")));
  std::size_t number = 0;
  for (const Json& action : programming.at("actions")) {
    fields.Add("action " + std::to_string(++number), ActionWords(action));
  }
  if (number == 0) fields.Add("actions", "none; \"vexalink actions\" adds one");
  fields.Write(session.terminal);
}

int Show(const ShowLine& line, Session& session) {
  const Json found = FindEvent(session.api, line.event);
  const Json event = session.api.Get(EventPath(found));
  const std::string version = session.api.Version();
  const Json programming = session.api.Get(EventPath(found, "/programming"));
  const std::string programmingVersion = session.api.Version();
  if (session.json) {
    session.WriteJson({{"event", event},
                       {"version", version},
                       {"programming", programming},
                       {"programming_version", programmingVersion}});
    return 0;
  }
  WriteEvent(session, event, programming);
  return 0;
}

}  // namespace

void AddShowCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ShowLine>();
  CLI::App* command = AddClientCommand(app, run, "show", "Show all of an event", line,
                                       [line](Session& session) { return Show(*line, session); });
  AddEventArgument(*command, line->event);
  command->footer(
      "With --json one object: event and programming as the API has them, and their versions for "
      "--if-match.\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
