#include <CLI/CLI.hpp>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/KindOption.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/JournalText.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

constexpr std::size_t kPage = 500;

struct JournalLine : ClientOptions {
  std::string name;
  std::vector<std::string> kinds;
  std::string from;
  std::string to;
  std::string search;
  std::size_t count = 50;
  bool all = false;
  bool newestFirst = false;
};

Api::Query QueryOf(const JournalLine& line, Session& session) {
  Api::Query query;
  for (const std::string& kind : line.kinds) query.emplace_back("kind", kind);
  if (!line.name.empty()) {
    query.emplace_back("event", FindEvent(session.api, line.name).at("id").dump());
  }
  const HouseToday today = session.Today();
  if (!line.from.empty()) query.emplace_back("from", ParseDay("--from", line.from, today));
  if (!line.to.empty()) query.emplace_back("to", ParseDay("--to", line.to, today));
  if (!line.search.empty()) query.emplace_back("q", line.search);
  return query;
}

/// The newest first, page by page.
Json Read(const JournalLine& line, Session& session) {
  const Api::Query query = QueryOf(line, session);
  Json rows = Json::array();
  Json next = nullptr;
  do {
    const std::size_t wanted = line.all ? kPage : std::min(kPage, line.count - rows.size());
    Api::Query page = query;
    page.emplace_back("limit", std::to_string(wanted));
    if (!next.is_null()) page.emplace_back("before", next.dump());
    const Json answer = session.api.Get("/journal", page);
    for (const Json& row : answer.at("rows")) rows.push_back(row);
    next = answer.at("rows").empty() ? Json(nullptr) : answer.at("next");
  } while (!next.is_null() && (line.all || rows.size() < line.count));
  return {{"rows", rows}, {"next", next}};
}

void AddRow(Table& table, const Json& row) {
  table.Add({ExactMomentText(TextField(row, "at")),
             {TextField(row, "kind"), JournalStyle(row)},
             JournalEventText(row),
             JournalWhatText(row)});
}

int ShowJournal(const JournalLine& line, Session& session) {
  const Json journal = Read(line, session);
  if (session.json) {
    session.WriteJson(journal);
    return 0;
  }
  const Json& rows = journal.at("rows");
  Table table({{"AT"}, {"KIND"}, {"EVENT", false, true}, {"WHAT", false, true}});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    AddRow(table, rows[line.newestFirst ? i : rows.size() - 1 - i]);
  }
  if (table.IsEmpty()) {
    session.terminal.out << "the journal has no such rows\n";
  } else {
    table.Write(session.terminal);
  }
  return 0;
}

}  // namespace

void AddJournalCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<JournalLine>();
  CLI::App* command =
      AddClientCommand(app, run, "journal", "Show what happened and why, the newest last", line,
                       [line](Session& session) { return ShowJournal(*line, session); });
  command->alias("history");
  AddEventArgument(*command, line->name)->required(false);
  AddKindOption(*command, line->kinds, "Only rows of this kind; may be given several times");
  command->add_option("--from", line->from, "From this day on")->type_name("DATE");
  command->add_option("--to", line->to, "Up to the end of this day")->type_name("DATE");
  command->add_option("--search", line->search, "Only rows with this in the description or text")
      ->type_name("TEXT");
  command->add_option("-n,--count", line->count, "How many rows, the newest. Default: 50")
      ->type_name("N")
      ->check(CLI::Range(1, 1000000).description(""));
  command->add_flag("--all", line->all, "All rows");
  command->add_flag("-r,--reverse", line->newestFirst, "The newest first");
  command->footer("With --json the newest row comes first.\n\n" + ClientExitStatuses());
}

}  // namespace controller::cli
