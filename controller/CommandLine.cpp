#include "controller/CommandLine.h"

#include <CLI/CLI.hpp>

#include "controller/DriverLoader.h"
#include "controller/ProjectPath.h"

namespace controller {

const char* const kExitStatuses =
    "Exit status: 0 done, 1 it could not be done, 2 the command line or a given file is wrong.";

void AddProjectOption(CLI::App& command, std::optional<std::string>& project) {
  command
      .add_option("--project", project,
                  "The project's file. Default: project.db in $STATE_DIRECTORY, else in "
                  "$XDG_STATE_HOME/vexalink, else in ~/.local/state/vexalink")
      ->type_name("FILE");
}

void AddAgentOption(CLI::App& command, std::optional<std::string>& agent) {
  command
      .add_option("--agent", agent, "The scheduler's library. Default: the one beside this program")
      ->type_name("PATH");
}

std::filesystem::path ProjectFile(const std::optional<std::string>& project) {
  return ResolveProjectPath(project ? *project : DefaultProjectPath().string());
}

std::string AgentFile(const std::optional<std::string>& agent) {
  return agent ? *agent : DriverLoader::DefaultAgentPath();
}

}  // namespace controller
