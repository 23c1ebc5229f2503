#include "controller/cli/commands/ClientCommands.h"

namespace controller::cli {

void AddClientCommands(CLI::App& app, CommandRun& run) {
  AddStatusCommand(app, run);
  AddListCommand(app, run);
  AddShowCommand(app, run);
  AddAddCommand(app, run);
  AddModifyCommand(app, run);
  AddDeleteCommand(app, run);
  AddRestoreCommand(app, run);
  AddActionsCommand(app, run);
  AddNextCommand(app, run);
  AddOccurrencesCommand(app, run);
  AddSunCommand(app, run);
  AddTestCommand(app, run);
  AddJournalCommand(app, run);
  AddWatchCommand(app, run);
  AddRunCommand(app, run);
  AddPressCommand(app, run);
  AddGateCommands(app, run);
  AddAwayCommand(app, run);
}

}  // namespace controller::cli
