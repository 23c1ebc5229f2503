#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <string>

#include "controller/Commands.h"
#include "controller/DriverLoader.h"
#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/Place.h"
#include "controller/Play.h"
#include "controller/Printable.h"
#include "controller/ProjectPath.h"

namespace controller {

namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 done, 1 it could not be done, 2 the command line or a given file is wrong.";

/// The command line as it was given, for all commands.
struct CommandLine {
  std::optional<std::string> project;
  std::optional<std::string> agent;
  std::string latitude;
  std::string longitude;
  std::string logLevel = "info";
  ServeOptions serve;
  ImportOptions import;
  ExportOptions exportOptions;
  PlayOptions play;
};

void AddProject(CLI::App& command, CommandLine& line) {
  command
      .add_option("--project", line.project,
                  "The project's file. Default: project.db in $STATE_DIRECTORY, else in "
                  "$XDG_STATE_HOME/vexalink, else in ~/.local/state/vexalink")
      ->type_name("FILE");
}

void AddAgent(CLI::App& command, CommandLine& line) {
  command
      .add_option("--agent", line.agent,
                  "The scheduler's library. Default: the one beside this program")
      ->type_name("PATH");
}

CLI::App* AddServe(CLI::App& app, CommandLine& line) {
  CLI::App* command = app.add_subcommand(
      "serve", "Run the controller: take up a project's schedule and fire what falls due");
  AddProject(*command, line);
  AddAgent(*command, line);
  auto* latitude =
      command->add_option("--latitude", line.latitude,
                          "Degrees north, -90 to 90; kept in the project. Default: the "
                          "principal city of the time zone");
  auto* longitude = command->add_option("--longitude", line.longitude,
                                        "Degrees east, -180 to 180; together with --latitude");
  latitude->needs(longitude)->type_name("DEGREES");
  longitude->needs(latitude)->type_name("DEGREES");
  command->add_flag("--empty", line.serve.empty, "Start a new project without any events");
  command->add_option("--log-level", line.logLevel, "error, warning, info (default) or debug")
      ->type_name("LEVEL");
  command->footer(
      std::string("SIGTERM and SIGINT end it, SIGHUP reads the time zone again. The log "
                  "goes to standard error.\n") +
      kExitStatuses);
  return command;
}

CLI::App* AddImport(CLI::App& app, CommandLine& line) {
  CLI::App* command =
      app.add_subcommand("import", "Check a schedule and put it in the place of the project's own");
  command
      ->add_option("FILE", line.import.file,
                   "XML: an \"event_data\" element or the older \"events\"; - for standard input")
      ->required();
  AddProject(*command, line);
  AddAgent(*command, line);
  command->add_flag("--dry-run", line.import.dryRun, "Only tell what would be dropped or changed");
  command->add_flag("--force", line.import.force, "Import also where events would be dropped");
  command->footer(
      std::string("Nothing is imported, and the exit status is 1, where events would be "
                  "dropped. The schedule before is kept; see export --backup.\n") +
      kExitStatuses);
  return command;
}

CLI::App* AddExport(CLI::App& app, CommandLine& line) {
  CLI::App* command =
      app.add_subcommand("export", "Write the project's schedule as it was last saved");
  command->add_option("FILE", line.exportOptions.file, "Default: standard output, as is -");
  AddProject(*command, line);
  command
      ->add_option("--backup", line.exportOptions.backup,
                   "Not the present schedule but an earlier one that was put aside; 1 is the "
                   "newest, ten are kept")
      ->type_name("N");
  command->footer(kExitStatuses);
  return command;
}

CLI::App* AddPlay(CLI::App& app, CommandLine& line) {
  CLI::App* command = app.add_subcommand(
      "play", "Drive the scheduler by a scenario and write the transcript, on a clock of its own");
  command->add_option("FILE", line.play.file, "The scenario, JSON Lines; - for standard input")
      ->required();
  AddAgent(*command, line);
  command->footer(kExitStatuses);
  return command;
}

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

std::optional<Place> GivenPlace(const CommandLine& line) {
  if (line.latitude.empty() && line.longitude.empty()) return std::nullopt;
  const Place place{Degrees("--latitude", line.latitude), Degrees("--longitude", line.longitude)};
  if (IsValid(place)) return place;
  throw Failure("--latitude " + line.latitude + " --longitude " + line.longitude +
                    " is no place; give -90 to 90 and -180 to 180",
                ExitStatus::kBadInput);
}

ExitStatus Serve(CommandLine& line) {
  Log::Configure(LevelOf(line.logLevel));
  line.serve.place = GivenPlace(line);
  return RunServe(line.serve);
}

/// Fills in what the command line leaves open.
void Complete(CommandLine& line, bool needsProject) {
  const std::string agent = line.agent ? *line.agent : DriverLoader::DefaultAgentPath();
  line.serve.agent = line.import.agent = line.play.agentPath = agent;
  if (!needsProject) return;
  const auto project =
      ResolveProjectPath(line.project ? *line.project : DefaultProjectPath().string());
  line.serve.project = line.import.project = line.exportOptions.project = project;
}

int Run(CLI::App& app, CommandLine& line) {
  const bool play = app.got_subcommand("play");
  Complete(line, !play);
  if (play) return RunPlay(line.play, std::cout, std::cerr);
  if (app.got_subcommand("serve")) return static_cast<int>(Serve(line));
  if (app.got_subcommand("import")) return static_cast<int>(RunImport(line.import, std::cout));
  return static_cast<int>(RunExport(line.exportOptions));
}

int Main(int argc, char** argv) {
  CLI::App app("vexalink, a home-automation scheduler", "vexalink");
  CommandLine line;
  app.set_version_flag("--version", "vexalink " VEXALINK_VERSION, "Tell the version");
  app.require_subcommand(0, 1);
  app.footer(kExitStatuses);
  AddServe(app, line);
  AddImport(app, line);
  AddExport(app, line);
  AddPlay(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitStatus::kBadInput);
  }
  if (app.get_subcommands().empty()) {
    std::cerr << "vexalink: a command is missing\n" << app.help();
    return static_cast<int>(ExitStatus::kBadInput);
  }
  try {
    return Run(app, line);
  } catch (const Failure& failure) {
    std::cerr << "vexalink: " << Printable(failure.what()) << '\n';
    return static_cast<int>(failure.Status());
  } catch (const std::exception& failure) {
    std::cerr << "vexalink: " << Printable(failure.what()) << '\n';
    return static_cast<int>(ExitStatus::kFailed);
  }
}

}  // namespace

}  // namespace controller

int main(int argc, char** argv) { return controller::Main(argc, argv); }
