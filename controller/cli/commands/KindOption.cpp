#include "controller/cli/commands/KindOption.h"

#include <CLI/CLI.hpp>

namespace controller::cli {

void AddKindOption(CLI::App& command, std::vector<std::string>& kinds,
                   const std::string& description) {
  command.add_option("--kind", kinds, description)
      ->type_name("fired|held|missed|action|change|clock|controller")
      ->type_size(1)
      ->allow_extra_args(false)
      ->check(CLI::IsMember({"fired", "held", "missed", "action", "change", "clock", "controller"})
                  .description(""));
}

}  // namespace controller::cli
