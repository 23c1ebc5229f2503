#pragma once

#include <string>
#include <vector>

#include "controller/cli/pages/CommandPages.h"

namespace controller::cli {

/// What a shell can offer for the value of an option or an argument.
struct Hint {
  enum class Kind { kNothing, kWords, kFiles, kEvents };
  Kind kind = Kind::kNothing;
  std::vector<std::string> words;

  bool operator==(const Hint&) const = default;
};

Hint HintFor(const OptionPage& option);

/// The page and all below it, each before its own commands.
std::vector<const CommandPage*> AllPages(const CommandPage& page);

/// The name without "vexalink " before it: "token add"; of the program itself empty.
std::string PathOf(const CommandPage& page);

/// The names of the commands below a page, with their aliases.
std::vector<std::string> CommandNames(const CommandPage& page);

/// The words with `separator` between them.
std::string Join(const std::vector<std::string>& words, const std::string& separator = " ");

/// The description up to its first full stop or colon, for the narrow lists of a shell.
std::string ShortDescription(const OptionPage& option);

}  // namespace controller::cli
