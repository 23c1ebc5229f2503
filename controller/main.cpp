#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

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
  AddTokenCommand(app, run);
  cli::AddClientCommands(app, run);
  cli::AddPagesCommands(app, run);
}

int Fail(const char* message, ExitStatus status) {
  std::cerr << "vexalink: " << Printable(message) << '\n';
  return static_cast<int>(status);
}

int Main(int argc, char** argv) {
  CLI::App app("vexalink, a home-automation scheduler", "vexalink");
  app.formatter(std::make_shared<cli::HelpFormatter>(cli::HelpWidth()));
  app.set_version_flag("--version", "vexalink " VEXALINK_VERSION, "Tell the version");
  app.require_subcommand(0, 1);
  app.footer(kExitStatuses);
  CommandRun run;
  AddCommands(app, run);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitStatus::kBadInput);
  }
  if (!run) {
    std::cerr << "vexalink: a command is missing\n" << app.help();
    return static_cast<int>(ExitStatus::kBadInput);
  }
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
