#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace controller {

/// What the command line asks for, to be done once all of it has been read. Answers the exit
/// status; may throw a `Failure`.
using CommandRun = std::function<int()>;

// Each command is defined in a file of its own beside what it runs: it adds a subcommand to `app`,
// and, if it is chosen, puts what is to be done into `run`, which outlives the reading.
void AddServeCommand(CLI::App& app, CommandRun& run);
void AddImportCommand(CLI::App& app, CommandRun& run);
void AddExportCommand(CLI::App& app, CommandRun& run);
void AddPlayCommand(CLI::App& app, CommandRun& run);
void AddSimulateCommand(CLI::App& app, CommandRun& run);
void AddTokenCommand(CLI::App& app, CommandRun& run);

/// The last paragraph of the help of a command that works without a running controller.
extern const char* const kExitStatuses;

/// Options that several commands have. What they are bound to must live until `run` has been
/// called.
void AddProjectOption(CLI::App& command, std::optional<std::string>& project);
void AddAgentOption(CLI::App& command, std::optional<std::string>& agent);
/// What these options mean where they are given, and where not. Throws a `Failure`.
std::filesystem::path ProjectFile(const std::optional<std::string>& project);
std::string AgentFile(const std::optional<std::string>& agent);

}  // namespace controller
