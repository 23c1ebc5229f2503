#include <CLI/CLI.hpp>

#include "controller/Failure.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

struct DeleteLine : ClientOptions {
  std::vector<std::string> names;
  std::string ifMatch;
};

int Delete(const DeleteLine& line, Session& session) {
  if (!line.ifMatch.empty() && line.names.size() > 1) {
    throw Failure("--if-match is the version of one event, and several are named",
                  ExitStatus::kBadInput);
  }
  // All are found before the first one goes.
  std::vector<Json> events;
  for (const std::string& name : line.names) {
    events.push_back(FindEvent(session.api, name, Naming::kWhole));
  }
  Json deleted = Json::array();
  for (const Json& event : events) {
    session.api.IfMatch(line.ifMatch);
    session.api.Send("DELETE", EventPath(event));
    deleted.push_back(event.at("id"));
    if (session.json) continue;
    session.terminal.out << "deleted " << EventName(event) << "; \"vexalink restore "
                         << event.at("id").dump() << "\" brings it back\n";
  }
  if (session.json) session.WriteJson({{"deleted", deleted}});
  return 0;
}

struct RestoreLine : ClientOptions {
  unsigned long id = 0;
};

int Restore(const RestoreLine& line, Session& session) {
  const std::string path = "/events/" + std::to_string(line.id);
  session.api.Send("POST", path + "/restore");
  const Json event = session.api.Get(path);
  if (session.json) {
    session.WriteJson(event);
  } else {
    session.terminal.out << "restored " << EventName(event) << '\n';
  }
  return 0;
}

}  // namespace

void AddDeleteCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<DeleteLine>();
  CLI::App* command = AddClientCommand(app, run, "delete", "Delete events and what they do", line,
                                       [line](Session& session) { return Delete(*line, session); });
  command->add_option("EVENT", line->names, "Ids or whole descriptions")->required();
  command
      ->add_option("--if-match", line->ifMatch,
                   "Only if this is still its version; \"show --json\" tells it")
      ->type_name("VERSION");
  command->footer("The command restore brings an event back.\n\n" + ClientExitStatuses());
}

void AddRestoreCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<RestoreLine>();
  CLI::App* command =
      AddClientCommand(app, run, "restore", "Bring back an event that was deleted", line,
                       [line](Session& session) { return Restore(*line, session); });
  command
      ->add_option("ID", line->id,
                   "Its id; \"vexalink journal --kind change --search deleted\" shows what went")
      ->required();
  command->footer(
      "The event comes back under its id, with what it does: that which was deleted last under "
      "it.\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
