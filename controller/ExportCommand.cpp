#include <CLI/CLI.hpp>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Commands.h"

namespace controller {

namespace {

struct ExportLine {
  std::optional<std::string> project;
  ExportOptions options;
};

int Export(ExportLine& line) {
  line.options.project = ProjectFile(line.project);
  return static_cast<int>(RunExport(line.options));
}

}  // namespace

void AddExportCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ExportLine>();
  CLI::App* command =
      app.add_subcommand("export", "Write the project's schedule as it was last saved");
  command->add_option("FILE", line->options.file, "Default: standard output, as is -");
  AddProjectOption(*command, line->project);
  command
      ->add_option("--backup", line->options.backup,
                   "Not the present schedule but an earlier one that was put aside; 1 is the "
                   "newest, ten are kept")
      ->type_name("N");
  command->footer(kExitStatuses);
  command->callback([line, &run] { run = [line] { return Export(*line); }; });
}

}  // namespace controller
