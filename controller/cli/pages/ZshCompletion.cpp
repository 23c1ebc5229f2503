#include "controller/cli/pages/Completion.h"
#include "controller/cli/pages/Hints.h"

namespace controller::cli {

namespace {

/// Inside '...', where `_arguments` and `_describe` read brackets and colons.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\'') {
      escaped += "'\\''";
      continue;
    }
    if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// "_vexalink", "_vexalink_token_add"
std::string FunctionName(const CommandPage& page) {
  std::string name = '_' + page.name;
  for (char& c : name) {
    if (c == ' ' || c == '-') c = '_';
  }
  return name;
}

std::string ActionText(const OptionPage& option) {
  const Hint hint = HintFor(option);
  switch (hint.kind) {
    case Hint::Kind::kFiles:
      return "_files";
    case Hint::Kind::kEvents:
      return "_vexalink_events";
    case Hint::Kind::kWords:
      return '(' + Join(hint.words) + ')';
    default:
      return " ";
  }
}

std::string OptionText(const OptionPage& option) {
  std::string text;
  for (const std::string& name : option.names) {
    text += "    '*" + name +
            (option.value.empty()     ? ""
             : name.starts_with("--") ? "="
                                      : "+") +
            '[' + Escaped(ShortDescription(option)) + ']';
    if (!option.value.empty()) {
      text += ':' + Escaped(option.value) + ':' + ActionText(option);
    }
    text += "' \\\n";
  }
  return text;
}

std::string ArgumentText(const OptionPage& option, std::size_t position) {
  const std::string place = option.isMany ? "*" : std::to_string(position);
  return "    '" + place + ':' + Escaped(option.names.front()) + ':' + ActionText(option) +
         "' \\\n";
}

/// A command that has commands: their list, and what follows one of them.
std::string GroupText(const CommandPage& page) {
  std::string text = "  local -a commands=(\n";
  std::string cases;
  for (const CommandPage& command : page.commands) {
    text += "    '" + Escaped(command.LastName()) + ':' + Escaped(command.description) + "'\n";
    std::string pattern = command.LastName();
    for (const std::string& alias : command.aliases) {
      text += "    '" + Escaped(alias) + ':' + Escaped(command.description) + "'\n";
      pattern += '|' + alias;
    }
    cases += "        " + pattern + ") " + FunctionName(command) + " ;;\n";
  }
  text += "  )\n  local state line\n  _arguments -C \\\n";
  for (const OptionPage& option : page.options) text += OptionText(option);
  return text +
         "    '1:command:->command' \\\n"
         "    '*::argument:->argument'\n"
         "  case $state in\n"
         "    command) _describe command commands ;;\n"
         "    argument)\n"
         "      case $line[1] in\n" +
         cases + "      esac ;;\n  esac\n";
}

std::string PageText(const CommandPage& page) {
  std::string text = FunctionName(page) + "() {\n";
  if (!page.commands.empty()) return text + GroupText(page) + "}\n\n";
  text += "  _arguments \\\n";
  for (const OptionPage& option : page.options) text += OptionText(option);
  for (std::size_t i = 0; i < page.arguments.size(); ++i) {
    text += ArgumentText(page.arguments[i], i + 1);
  }
  return text + "    && return\n}\n\n";
}

}  // namespace

std::string ZshCompletion(const CommandPage& program) {
  std::string text =
      "#compdef vexalink\n"
      "# Completion of vexalink for zsh; written by \"vexalink completion zsh\".\n\n"
      "_vexalink_events() {\n"
      "  local -a events ids\n"
      "  local id description\n"
      "  while IFS=$'\\t' read -r id description; do\n"
      "    ids+=(\"$id\")\n"
      "    events+=(\"$description\")\n"
      "  done < <(vexalink completion events 2>/dev/null)\n"
      "  compadd -X event -- $events\n"
      "  compadd -- $ids\n"
      "}\n\n";
  const auto pages = AllPages(program);
  for (auto page = pages.rbegin(); page != pages.rend(); ++page) text += PageText(**page);
  return text +
         "if [ \"$funcstack[1]\" = _vexalink ]; then\n  _vexalink \"$@\"\nelse\n"
         "  compdef _vexalink vexalink\nfi\n";
}

}  // namespace controller::cli
