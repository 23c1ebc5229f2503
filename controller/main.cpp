#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>

#include "controller/CommandLine.h"
#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/pages/HelpFormatter.h"
#include "controller/cli/pages/PagesCommands.h"

namespace controller {

namespace {

void AddCommands(CLI::App& app, CommandRun& run) {
  AddServeCommand(app, run);
  AddImportCommand(app, run);
  AddExportCommand(app, run);
  AddPlayCommand(app, run);
  AddSimulateCommand(app, run);
  AddTokenCommand(app, run);
  cli::AddClientCommands(app, run);
  cli::AddPagesCommands(app, run);
}

int Fail(const char* message, ExitStatus status) {
  std::cerr << "vexalink: " << Printable(message) << '\n';
  return static_cast<int>(status);
}

/// Reads the command line; the exit status where there is nothing left to do. The definitions of
/// the commands are gone when it returns: a controller that runs for years needs none of them.
std::optional<int> Read(int argc, char** argv, CommandRun& run) {
  CLI::App app("vexalink, a home-automation scheduler", "vexalink");
  app.formatter(std::make_shared<cli::HelpFormatter>(cli::HelpWidth()));
  app.set_version_flag("--version", "vexalink " VEXALINK_VERSION, "Tell the version");
  app.require_subcommand(0, 1);
  app.footer(kExitStatuses);
  AddCommands(app, run);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitStatus::kBadInput);
  }
  if (run) return std::nullopt;
  std::cerr << "vexalink: a command is missing\n" << app.help();
  return static_cast<int>(ExitStatus::kBadInput);
}

int Main(int argc, char** argv) {
  CommandRun run;
  if (const auto status = Read(argc, argv, run)) return *status;
  try {
    return run();
  } catch (const Failure& failure) {
    return Fail(failure.what(), failure.Status());
  } catch (const std::exception& failure) {
    return Fail(failure.what(), ExitStatus::kFailed);
  }
}

}  // namespace

}  // namespace controller

int main(int argc, char** argv) { return controller::Main(argc, argv); }
