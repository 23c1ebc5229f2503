#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace controller::cli {

/// An option or an argument, as the definition of its command has it.
struct OptionPage {
  /// "-n", "--count"; of an argument its name.
  std::vector<std::string> names;
  /// What its value is called, "DATE" or "auto|always|never"; empty: it has none.
  std::string value;
  std::string description;
  std::string group;
  std::string environment;
  bool isArgument = false;
  bool isRequired = false;
  /// An argument that may be given several times.
  bool isMany = false;

  /// The words that the value may be, where its name lists them.
  std::vector<std::string> Choices() const;
};

/// A command, or the program itself.
struct CommandPage {
  /// "vexalink", "vexalink token add"
  std::string name;
  std::vector<std::string> aliases;
  std::string description;
  std::string footer;
  std::vector<OptionPage> options;
  std::vector<OptionPage> arguments;
  std::vector<CommandPage> commands;

  /// The last word of the name.
  std::string LastName() const;
};

/// All that the definitions say: the source of manual pages and completion.
CommandPage ReadPages(const CLI::App& app);

}  // namespace controller::cli
