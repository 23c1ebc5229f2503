#include <CLI/CLI.hpp>
#include <csignal>
#include <iostream>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Printable.h"
#include "controller/simulate/Simulate.h"

namespace controller {

namespace {

struct SimulateLine {
  std::optional<std::string> project;
  std::optional<std::string> agent;
  std::optional<std::string> at;
  bool json = false;
  bool calendar = false;
  SimulateOptions options;
};

Place PlaceOf(const std::string& text) {
  const auto comma = text.find(',');
  if (comma != std::string::npos) {
    const auto latitude = ReadDegrees(text.substr(0, comma));
    const auto longitude = ReadDegrees(text.substr(comma + 1));
    if (latitude && longitude && IsValid({*latitude, *longitude})) return {*latitude, *longitude};
  }
  throw Failure("--at is " + Quoted(text) +
                    "; give degrees north and east, 52.52,13.405 for example, within 90 and 180",
                ExitStatus::kBadInput);
}

int Simulate(SimulateLine& line) {
  using Form = SimulateOptions::Form;
  line.options.agent = AgentFile(line.agent);
  line.options.project = ProjectFile(line.project);
  if (line.at) line.options.place = PlaceOf(*line.at);
  if (line.json) line.options.form = Form::kJson;
  if (line.calendar) line.options.form = Form::kCalendar;
  std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away is an error to be told
  return static_cast<int>(RunSimulate(line.options, std::cout));
}

}  // namespace

void AddSimulateCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<SimulateLine>();
  CLI::App* command = app.add_subcommand(
      "simulate", "Tell what a project's schedule does on some days, without doing it");
  AddProjectOption(*command, line->project);
  AddAgentOption(*command, line->agent);
  command->add_option("--from", line->options.from, "The first day. Default: today")
      ->type_name("DATE");
  command
      ->add_option("--to", line->options.to,
                   "The last day, at most ten years later. Default: a week in all")
      ->type_name("DATE");
  command
      ->add_option("--at", line->at,
                   "Degrees north and east, 52.52,13.405 for example. Default: the project's place")
      ->type_name("LAT,LON");
  command->add_option("--event", line->options.event, "Only what this event does")->type_name("ID");
  auto* json = command->add_flag("--json", line->json, "Write JSON Lines");
  command->add_flag("--ics", line->calendar, "Write what fires as an iCalendar file")
      ->excludes(json);
  command->footer(
      std::string("The days are those of the time zone in TZ. The project may be in use; "
                  "nothing is written to it.\n") +
      kExitStatuses);
  command->callback([line, &run] { run = [line] { return Simulate(*line); }; });
}

}  // namespace controller
