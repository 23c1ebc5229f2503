#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

struct NextLine : ClientOptions {
  std::string name;
  std::size_t count = 10;
};

/// How far ahead requests look, one after the other.
constexpr long kDays[] = {2, 31, 366, 3650};

bool IsOf(const Json& occurrence, const Json& event) {
  return event.is_null() || occurrence.at("event") == event.at("id");
}

/// What is still to come today. Only the controller knows what has fired already: a random part may
/// have led before the planned time, or will lead behind it.
Json Pending(const Json& today, const Json& event) {
  Json pending = Json::array();
  for (const Json& occurrence : today.at("occurrences")) {
    if (occurrence.at("state") != "pending" || !IsOf(occurrence, event)) continue;
    pending.push_back({{"event", occurrence.at("event")},
                       {"description", occurrence.at("description")},
                       {"date", today.at("date")},
                       {"time", occurrence.at("planned")},
                       {"base", occurrence.at("base")},
                       {"due", occurrence.at("due")}});
  }
  return pending;
}

/// When it comes, as far as that is known.
std::string DueText(const Json& occurrence) {
  const bool known = occurrence.contains("due") && occurrence["due"].is_string();
  return occurrence.at(known ? "due" : "time").get<std::string>();
}

/// Those of later days, until there are enough of them or there are no more.
void AddLaterDays(Json& coming, Session& session, const std::string& today, const Json& event,
                  std::size_t count) {
  const std::string from = DaysLater(today, 1);
  const std::size_t wanted = count - coming.size();
  Json later = Json::array();
  for (const long days : kDays) {
    if (later.size() >= wanted) break;
    Api::Query query = {
        {"from", from}, {"to", DaysLater(today, days)}, {"limit", std::to_string(wanted)}};
    if (!event.is_null()) query.emplace_back("event", event.at("id").dump());
    later = session.api.Get("/occurrences", query).at("occurrences");
  }
  for (const Json& occurrence : later) coming.push_back(occurrence);
}

Json FindNext(const NextLine& line, Session& session, const Json& event) {
  const Json today = session.api.Get("/today");
  Json coming = Pending(today, event);
  std::stable_sort(coming.begin(), coming.end(),
                   [](const Json& a, const Json& b) { return DueText(a) < DueText(b); });
  if (coming.size() > line.count) {
    coming.erase(coming.begin() + static_cast<std::ptrdiff_t>(line.count), coming.end());
  }
  if (coming.size() < line.count) {
    AddLaterDays(coming, session, today.at("date").get<std::string>(), event, line.count);
  }
  return coming;
}

/// The events that there are, by their ids.
std::map<std::string, Json> EventsById(Session& session) {
  std::map<std::string, Json> byId;
  const Json all = session.api.Events();
  for (const Json& event : all.at("events")) byId[event.at("id").dump()] = event;
  return byId;
}

/// What may change when it comes, and what keeps the event from doing something.
std::string NoteText(const Json& occurrence, const Json& event) {
  const std::string planned = occurrence.at("time").get<std::string>();
  const long spread =
      event.is_object() && event.contains("time") ? NumberField(event["time"], "spread") : 0;
  const bool isDue = occurrence.contains("due") && occurrence["due"].is_string();
  std::string note = isDue || spread == 0 ? "" : "±" + MinutesText(spread);
  if (DueText(occurrence) != planned) note = "planned " + MomentText(planned);
  if (!event.is_object() || !IsAsleep(event.at("programming"))) return note;
  return note + (note.empty() ? "" : ", ") + ProgrammingStateText(event["programming"]);
}

void WriteNext(Session& session, const Json& coming) {
  if (coming.empty()) {
    session.terminal.out << "nothing comes in the next ten years\n";
    return;
  }
  const std::map<std::string, Json> events = EventsById(session);
  Table table({{"WHEN"}, {"ID", true}, {"DESCRIPTION", false, true}, {"BY"}, {""}});
  for (const Json& occurrence : coming) {
    const std::string id = occurrence.at("event").dump();
    const auto event = events.find(id);
    table.Add({MomentText(DueText(occurrence)), id, TextField(occurrence, "description"),
               occurrence.at("base").is_string() ? occurrence["base"].get<std::string>() : "",
               NoteText(occurrence, event == events.end() ? Json(nullptr) : event->second)});
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
  command->footer("A random part is in it where it is drawn already: on the day itself.\n\n" +
                  ClientExitStatuses());
}

}  // namespace controller::cli
