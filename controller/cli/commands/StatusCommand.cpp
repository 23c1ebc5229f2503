#include <CLI/CLI.hpp>
#include <utility>

#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/Fields.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

std::string NextText(const Json& next) {
  if (next.is_null()) return "nothing, no event comes again";
  return MomentText(TextField(next, "time")) + "  event " + next.at("event").dump() + ' ' +
         Quoted(TextField(next, "description"));
}

/// "12 fired (10 timer, 2 by-hand)"
std::string CountText(const Json& counts, const std::string& name) {
  if (!counts.contains(name) || !counts[name].is_object() || counts[name].empty()) return {};
  std::size_t total = 0;
  std::string parts;
  for (const auto& [reason, count] : counts[name].items()) {
    total += count.get<std::size_t>();
    parts += (parts.empty() ? "" : ", ") + count.dump() + ' ' + reason;
  }
  return std::to_string(total) + ' ' + name + " (" + parts + ')';
}

void AddCounts(Fields& fields, const Json& counts) {
  std::string title = "since then";
  for (const char* name : {"fired", "held", "missed", "actions"}) {
    const std::string text = CountText(counts, name);
    if (!text.empty()) fields.Add(std::exchange(title, ""), text);
  }
}

void AddSaving(Fields& fields, const Json& saving) {
  const bool works = FlagField(saving, "ok", false);
  fields.Add("saving", works ? "works" : "fails: " + TextField(saving, "why"),
             works ? Style::kGood : Style::kBad);
}

std::string ClockText(const Json& clock) {
  return std::to_string(NumberField(clock, "jumps")) + " jumps, " +
         std::to_string(NumberField(clock, "zone_changes")) + " changes of the zone";
}

void Write(const Session& session, const Json& project, const Json& status) {
  Fields fields;
  fields.Add("controller", session.api.Http().Address() + ", version " +
                               TextField(status, "version", TextField(project, "version", "?")));
  const std::string name = TextField(project, "name");
  if (!name.empty()) fields.Add("project", name);
  fields.Add("now", ExactMomentText(status.at("now").get<std::string>()) + ' ' +
                        TextField(status.at("timezone"), "name"));
  fields.Add("events", status.at("events").dump());
  fields.Add("next", NextText(status.at("next")));
  if (!status.at("away_until").is_null()) {
    fields.Add("away", "until " + LongDayText(status["away_until"].get<std::string>()),
               Style::kWarning);
  }
  AddSaving(fields, status.at("saving"));
  fields.Add("clock", ClockText(status.at("clock")));
  fields.Add("started", ExactMomentText(TextField(status, "started")));
  AddCounts(fields, status.at("counts"));
  fields.Write(session.terminal);
}

int Status(Session& session) {
  const Json status = session.api.Get("/status");
  if (session.json) {
    session.WriteJson(status);
    return 0;
  }
  Write(session, session.api.Get("/project"), status);
  return 0;
}

}  // namespace

void AddStatusCommand(CLI::App& app, CommandRun& run) {
  const auto options = std::make_shared<ClientOptions>();
  CLI::App* command =
      AddClientCommand(app, run, "status", "Tell how a running controller is", options, Status);
  command->footer(ClientExitStatuses());
}

}  // namespace controller::cli
