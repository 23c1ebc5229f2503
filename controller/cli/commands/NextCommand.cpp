#include <CLI/CLI.hpp>
#include <map>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

struct NextLine : ClientOptions {
  std::string name;
  std::size_t count = 10;
};

/// As far ahead as one request may look.
constexpr long kDays[] = {2, 31, 366, 3650};

/// How many occurrences of today may have passed before those that are wanted.
constexpr std::size_t kMostAsked = 10000;

/// The occurrences from `now` on, at most `count`.
Json Coming(const Json& occurrences, const std::string& now, std::size_t count) {
  Json coming = Json::array();
  for (const Json& occurrence : occurrences) {
    if (coming.size() == count) break;
    // Moments of one day compare as texts but for a change of the clocks between them, and that is
    // in the night: at worst something of this hour is left out or shown.
    if (occurrence.at("time").get<std::string>().substr(0, 16) < now.substr(0, 16)) continue;
    coming.push_back(occurrence);
  }
  return coming;
}

Json FindNext(const NextLine& line, Session& session, const Json& event) {
  const std::string now = session.api.Get("/project").at("now").get<std::string>();
  const std::string today = now.substr(0, 10);
  for (const long days : kDays) {
    Api::Query query = {
        {"from", today}, {"to", DaysLater(today, days)}, {"limit", std::to_string(kMostAsked)}};
    if (!event.is_null()) query.emplace_back("event", event.at("id").dump());
    const Json answer = session.api.Get("/occurrences", query);
    Json coming = Coming(answer.at("occurrences"), now, line.count);
    const bool last = days == kDays[std::size(kDays) - 1];
    if (coming.size() == line.count || last || answer.value("truncated", false)) return coming;
  }
  return Json::array();
}

/// By event, what keeps it from doing something or changes when it comes.
std::map<std::string, std::string> Notes(Session& session) {
  std::map<std::string, std::string> notes;
  const Json all = session.api.Events();
  for (const Json& event : all.at("events")) {
    const Json& programming = event.at("programming");
    const long spread = event.contains("time") ? event["time"].value("spread", 0L) : 0;
    std::string note = spread > 0 ? "±" + std::to_string(spread) + " min" : "";
    if (IsAsleep(programming)) {
      note += (note.empty() ? "" : ", ") + ProgrammingStateText(programming);
    }
    notes[event.at("id").dump()] = note;
  }
  return notes;
}

void WriteNext(Session& session, const Json& coming) {
  if (coming.empty()) {
    session.terminal.out << "nothing comes in the next ten years\n";
    return;
  }
  std::map<std::string, std::string> notes = Notes(session);
  Table table({{"WHEN"}, {"ID", true}, {"DESCRIPTION", false, true}, {"BY"}, {""}});
  for (const Json& occurrence : coming) {
    const std::string id = occurrence.at("event").dump();
    table.Add({MomentText(occurrence.at("time").get<std::string>()), id,
               occurrence.value("description", ""), occurrence.value("base", ""), notes[id]});
  }
  table.Write(session.terminal);
}

int Next(const NextLine& line, Session& session) {
  const Json event = line.name.empty() ? Json(nullptr) : FindEvent(session.api, line.name);
  const Json coming = FindNext(line, session, event);
  if (session.json) {
    session.WriteJson({{"occurrences", coming}});
  } else {
    WriteNext(session, coming);
  }
  return 0;
}

}  // namespace

void AddNextCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<NextLine>();
  CLI::App* command = AddClientCommand(app, run, "next", "Show what comes next", line,
                                       [line](Session& session) { return Next(*line, session); });
  AddEventArgument(*command, line->name)->required(false);
  command->add_option("-n,--count", line->count, "How many occurrences. Default: 10")
      ->type_name("N")
      ->check(CLI::Range(1, 1000).description(""));
  command->footer("Random parts are not in it: they are drawn on the day.\n\n" +
                  ClientExitStatuses());
}

}  // namespace controller::cli
