#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Commands.h"
#include "controller/Log.h"
#include "controller/Place.h"
#include "controller/Printable.h"

namespace controller {

namespace {

struct ServeLine {
  std::optional<std::string> project;
  std::optional<std::string> agent;
  std::string latitude;
  std::string longitude;
  std::string logLevel = "info";
  ServeOptions options;
};

LogLevel LevelOf(const std::string& name) {
  const std::map<std::string, LogLevel> levels = {{"error", LogLevel::kError},
                                                  {"warning", LogLevel::kWarning},
                                                  {"info", LogLevel::kInfo},
                                                  {"debug", LogLevel::kDebug}};
  const auto found = levels.find(name);
  if (found != levels.end()) return found->second;
  throw Failure("--log-level is " + Quoted(name) + "; give error, warning, info or debug",
                ExitStatus::kBadInput);
}

double Degrees(const std::string& option, const std::string& text) {
  if (const auto degrees = ReadDegrees(text)) return *degrees;
  throw Failure(option + " is " + Quoted(text) + "; give degrees, 52.52 for example",
                ExitStatus::kBadInput);
}

std::optional<Place> GivenPlace(const ServeLine& line) {
  if (line.latitude.empty() && line.longitude.empty()) return std::nullopt;
  const Place place{Degrees("--latitude", line.latitude), Degrees("--longitude", line.longitude)};
  if (IsValid(place)) return place;
  throw Failure("--latitude " + line.latitude + " --longitude " + line.longitude +
                    " is no place; give -90 to 90 and -180 to 180",
                ExitStatus::kBadInput);
}

int Serve(ServeLine& line) {
  line.options.agent = AgentFile(line.agent);
  line.options.project = ProjectFile(line.project);
  Log::Configure(LevelOf(line.logLevel));
  line.options.place = GivenPlace(line);
  return static_cast<int>(RunServe(line.options));
}

void AddPlaceOptions(CLI::App& command, ServeLine& line) {
  auto* latitude = command.add_option("--latitude", line.latitude,
                                      "Degrees north, -90 to 90; kept in the project. Default: the "
                                      "principal city of the time zone");
  auto* longitude = command.add_option("--longitude", line.longitude,
                                       "Degrees east, -180 to 180; together with --latitude");
  latitude->needs(longitude)->type_name("DEGREES");
  longitude->needs(latitude)->type_name("DEGREES");
}

void AddRecordOptions(CLI::App& command, ServeOptions& options) {
  auto* record = command.add_option(
      "--record", options.record,
      "Record what the scheduler is called with, so that vexalink play can play it again");
  record->type_name("FILE");
  command
      .add_option("--record-transcript", options.transcript,
                  "Write beside it what play should answer")
      ->needs(record)
      ->type_name("FILE");
}

}  // namespace

void AddServeCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ServeLine>();
  CLI::App* command = app.add_subcommand(
      "serve", "Run the controller: take up a project's schedule and fire what falls due");
  AddProjectOption(*command, line->project);
  AddAgentOption(*command, line->agent);
  AddPlaceOptions(*command, *line);
  command->add_flag("--empty", line->options.empty, "Start a new project without any events");
  command
      ->add_option("--listen", line->options.listen,
                   "Where the page and the API are served, 127.0.0.1:7440 if nothing is said; port "
                   "0 takes any that is free. Elsewhere than on this computer a token is needed, "
                   "see vexalink token")
      ->type_name("ADDRESS:PORT");
  command
      ->add_option("--allow-host", line->options.allowedHosts,
                   "A further name under which browsers reach this controller")
      ->type_name("NAME");
  command->add_flag("!--no-http", line->options.http, "Serve neither page nor API");
  command->add_flag("--trust-clock", line->options.trustClock,
                    "Start at once, also where the clock is behind the journal's newest entry");
  AddRecordOptions(*command, line->options);
  command->add_option("--log-level", line->logLevel, "error, warning, info (default) or debug")
      ->type_name("LEVEL");
  command->footer(
      std::string("SIGTERM and SIGINT end it, SIGHUP reads the time zone again. The log "
                  "goes to standard error.\n") +
      kExitStatuses);
  command->callback([line, &run] { run = [line] { return Serve(*line); }; });
}

}  // namespace controller
