#include <CLI/CLI.hpp>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

constexpr long kDaysAhead = 30;

struct OccurrencesLine : ClientOptions {
  std::string name;
  std::string from = "today";
  std::string to;
  std::size_t limit = 1000;
};

Json Ask(const OccurrencesLine& line, Session& session) {
  const HouseToday today = session.Today();
  const std::string from = ParseDay("--from", line.from, today);
  const std::string to =
      line.to.empty() ? DaysLater(from, kDaysAhead) : ParseDay("--to", line.to, today);
  Api::Query query = {{"from", from}, {"to", to}, {"limit", std::to_string(line.limit)}};
  if (!line.name.empty()) {
    query.emplace_back("event", FindEvent(session.api, line.name).at("id").dump());
  }
  return session.api.Get("/occurrences", query);
}

int Occurrences(const OccurrencesLine& line, Session& session) {
  const Json answer = Ask(line, session);
  const bool truncated = FlagField(answer, "truncated", false);
  if (session.json) {
    session.WriteJson(answer);
    return 0;
  }
  Table table({{"WHEN"}, {"ID", true}, {"DESCRIPTION", false, true}, {"BY"}});
  for (const Json& occurrence : answer.at("occurrences")) {
    table.Add({MomentText(occurrence.at("time").get<std::string>()), occurrence.at("event").dump(),
               TextField(occurrence, "description"), TextField(occurrence, "base")});
  }
  if (table.IsEmpty()) {
    session.terminal.out << "nothing occurs in these days\n";
  } else {
    table.Write(session.terminal);
  }
  if (truncated) session.Note("there are more; give --limit, or fewer days");
  return 0;
}

}  // namespace

void AddOccurrencesCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<OccurrencesLine>();
  CLI::App* command =
      AddClientCommand(app, run, "occurrences", "List what occurs in a span of days", line,
                       [line](Session& session) { return Occurrences(*line, session); });
  AddEventArgument(*command, line->name)->required(false);
  command->add_option("--from", line->from, "The first day. Default: today")->type_name("DATE");
  command
      ->add_option("--to", line->to,
                   "The last day, at most ten years later. Default: 30 days after the first")
      ->type_name("DATE");
  command->add_option("--limit", line->limit, "How many at most. Default: 1000")
      ->type_name("N")
      ->check(CLI::Range(1, 10000).description(""));
  command->footer("Random parts are not in it: they are drawn on the day.\n\n" +
                  ClientExitStatuses());
}

}  // namespace controller::cli
