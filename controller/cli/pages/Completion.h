#pragma once

#include <string>

#include "controller/cli/pages/CommandPages.h"

namespace controller::cli {

// Scripts with which a shell completes the program's command line. They ask the program itself for
// the names of events ("vexalink completion events").

std::string BashCompletion(const CommandPage& program);
std::string ZshCompletion(const CommandPage& program);
std::string FishCompletion(const CommandPage& program);

}  // namespace controller::cli
