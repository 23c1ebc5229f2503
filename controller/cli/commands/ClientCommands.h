#pragma once

#include "controller/CommandLine.h"

namespace controller::cli {

// One a command, each in a file of its own.
void AddListCommand(CLI::App& app, CommandRun& run);
void AddShowCommand(CLI::App& app, CommandRun& run);
void AddAddCommand(CLI::App& app, CommandRun& run);
void AddModifyCommand(CLI::App& app, CommandRun& run);
void AddDeleteCommand(CLI::App& app, CommandRun& run);
void AddRestoreCommand(CLI::App& app, CommandRun& run);
void AddNextCommand(CLI::App& app, CommandRun& run);
void AddOccurrencesCommand(CLI::App& app, CommandRun& run);
void AddSunCommand(CLI::App& app, CommandRun& run);
void AddTestCommand(CLI::App& app, CommandRun& run);
void AddJournalCommand(CLI::App& app, CommandRun& run);
void AddActionsCommand(CLI::App& app, CommandRun& run);
void AddRunCommand(CLI::App& app, CommandRun& run);
void AddPressCommand(CLI::App& app, CommandRun& run);
/// enable, disable, pause, resume, skip
void AddGateCommands(CLI::App& app, CommandRun& run);
void AddAwayCommand(CLI::App& app, CommandRun& run);
void AddWatchCommand(CLI::App& app, CommandRun& run);
void AddStatusCommand(CLI::App& app, CommandRun& run);

/// All commands that talk to a running controller.
void AddClientCommands(CLI::App& app, CommandRun& run);

}  // namespace controller::cli
