#pragma once

#include "controller/CommandLine.h"

namespace controller::cli {

/// completion and manual: what tells about all commands of `app`, which must be there whole when
/// the command line is read.
void AddPagesCommands(CLI::App& app, CommandRun& run);

}  // namespace controller::cli
