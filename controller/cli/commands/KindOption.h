#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace controller::cli {

/// Adds `--kind`, which may be given several times, for the kinds of the journal's rows.
void AddKindOption(CLI::App& command, std::vector<std::string>& kinds,
                   const std::string& description);

}  // namespace controller::cli
