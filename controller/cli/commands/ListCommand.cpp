#include <CLI/CLI.hpp>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

struct ListLine : ClientOptions {
  std::string part;
};

void AddRow(Table& table, const Json& event) {
  const Json& programming = event.at("programming");
  const Style style = IsAsleep(programming) ? Style::kDim : Style::kPlain;
  table.Add({{event.at("id").dump(), style},
             {event.at("description").get<std::string>(), style},
             {EventTimeText(event), style},
             {EventRepeatText(event), style},
             {EventNextText(event), style},
             {(FlagField(event, "odd", false) ? "odd, " : "") + ProgrammingStateText(programming),
              style}});
}

int List(const ListLine& line, Session& session) {
  const Json answer = session.api.Events(line.part);
  if (session.json) {
    session.WriteJson(answer);
    return 0;
  }
  Table table({{"ID", true},
               {"DESCRIPTION", false, true},
               {"TIME"},
               {"REPEATS", false, true},
               {"NEXT"},
               {"DOES", false, true}});
  for (const Json& event : answer.at("events")) AddRow(table, event);
  if (!table.IsEmpty()) {
    table.Write(session.terminal);
  } else if (line.part.empty()) {
    session.terminal.out << "there are no events; \"vexalink add\" adds one\n";
  } else {
    session.terminal.out << "no event has that in its description\n";
  }
  return 0;
}

}  // namespace

void AddListCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ListLine>();
  CLI::App* command = AddClientCommand(app, run, "list", "List the events of the schedule", line,
                                       [line](Session& session) { return List(*line, session); });
  command->add_option("TEXT", line->part, "Only events with this in their description");
  command->footer(
      "Times are those of the house. \"sunset-30 ±10\" is half an hour before sunset, up to ten "
      "minutes earlier or later: --at sunset-30 --spread 10 to add and modify.\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
