#include <CLI/CLI.hpp>

#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/TextParts.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

struct AwayLine : ClientOptions {
  std::string until;
};

Json Change(const AwayLine& line, Session& session) {
  if (line.until.empty()) return session.api.Get("/project");
  Json until = nullptr;
  if (LowerCase(line.until) != "off") until = ParseDay("UNTIL", line.until, session.Today());
  session.api.Send("PATCH", "/project", {{"away_until", until}});
  return session.api.Get("/project");
}

int Away(const AwayLine& line, Session& session) {
  const Json project = Change(line, session);
  if (session.json) {
    session.WriteJson(project);
    return 0;
  }
  const Json& until = project.at("away_until");
  if (until.is_null()) {
    session.terminal.out << "the house is not away\n";
  } else {
    session.terminal.out << "the house is away: nothing is done before "
                         << Printable(LongDayText(until.get<std::string>())) << " begins\n";
  }
  return 0;
}

}  // namespace

void AddAwayCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<AwayLine>();
  CLI::App* command = AddClientCommand(
      app, run, "away", "Tell or set whether the house is away, so that nothing is done", line,
      [line](Session& session) { return Away(*line, session); });
  command->add_option("UNTIL", line->until,
                      "The day with which the house begins to act again, or off. Left out: only "
                      "tell");
  command->footer("Examples:\n  vexalink away 2026-12-27\n  vexalink away off\n\n" +
                  ClientExitStatuses());
}

}  // namespace controller::cli
