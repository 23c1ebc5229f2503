#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Commands.h"

namespace controller {

namespace {

struct ImportLine {
  std::optional<std::string> project;
  std::optional<std::string> agent;
  ImportOptions options;
};

int Import(ImportLine& line) {
  line.options.agent = AgentFile(line.agent);
  line.options.project = ProjectFile(line.project);
  return static_cast<int>(RunImport(line.options, std::cout));
}

}  // namespace

void AddImportCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ImportLine>();
  CLI::App* command =
      app.add_subcommand("import", "Check a schedule and put it in the place of the project's own");
  command
      ->add_option("FILE", line->options.file,
                   "XML: an \"event_data\" element or the older \"events\"; - for standard input")
      ->required();
  AddProjectOption(*command, line->project);
  AddAgentOption(*command, line->agent);
  command->add_flag("--dry-run", line->options.dryRun,
                    "Only tell what would be dropped or changed");
  command->add_flag("--force", line->options.force, "Import also where events would be dropped");
  command->footer(
      std::string("Nothing is imported, and the exit status is 1, where events would be "
                  "dropped. The schedule before is kept; see export --backup.\n") +
      kExitStatuses);
  command->callback([line, &run] { run = [line] { return Import(*line); }; });
}

}  // namespace controller
