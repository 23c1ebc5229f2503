#pragma once

#include <string>

#include "controller/cli/pages/CommandPages.h"

namespace controller::cli {

/// The manual page of a command or of the program itself, for section 1, in the macros of man(7).
std::string ManualPage(const CommandPage& page, const CommandPage& program);

/// "vexalink-add.1"
std::string ManualFileName(const CommandPage& page);

}  // namespace controller::cli
