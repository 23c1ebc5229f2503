#include "controller/cli/pages/Completion.h"
#include "controller/cli/pages/Hints.h"

namespace controller::cli {

namespace {

std::string FishQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '\'';
}

/// `-n` and the condition that the command line is at this command.
std::string AtPage(const CommandPage& page) {
  std::string paths = FishQuoted(PathOf(page));
  for (const std::string& alias : page.aliases) paths += ' ' + FishQuoted(alias);
  return "complete -c vexalink -n " + FishQuoted("__vexalink_at " + paths);
}

std::string ValueText(const Hint& hint) {
  switch (hint.kind) {
    case Hint::Kind::kFiles:
      return " -F";
    case Hint::Kind::kEvents:
      return " -f -a '(__vexalink_events)'";
    case Hint::Kind::kWords:
      return " -f -a " + FishQuoted(Join(hint.words));
    default:
      return " -f";
  }
}

std::string OptionText(const CommandPage& page, const OptionPage& option) {
  std::string text = AtPage(page);
  for (const std::string& name : option.names) {
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!option.value.empty()) text += " -r" + ValueText(HintFor(option));
  return text + " -d " + FishQuoted(ShortDescription(option)) + '\n';
}

std::string PageText(const CommandPage& page) {
  std::string text;
  for (const CommandPage& command : page.commands) {
    std::vector<std::string> names = command.aliases;
    names.insert(names.begin(), command.LastName());
    text += AtPage(page) + " -f -a " + FishQuoted(Join(names)) + " -d " +
            FishQuoted(command.description) + '\n';
  }
  for (const OptionPage& option : page.options) text += OptionText(page, option);
  if (!page.arguments.empty()) {
    text += AtPage(page) + ValueText(HintFor(page.arguments[0])) + '\n';
  } else if (page.commands.empty()) {
    text += AtPage(page) + " -f\n";
  }
  return text;
}

/// Every command with its aliases, as it stands on a command line, for `switch`.
std::string Paths(const CommandPage& program) {
  std::string text;
  for (const CommandPage* page : AllPages(program)) {
    if (page == &program) continue;
    text += ' ' + FishQuoted(PathOf(*page));
    for (const std::string& alias : page->aliases) text += ' ' + FishQuoted(alias);
  }
  return text;
}

}  // namespace

std::string FishCompletion(const CommandPage& program) {
  std::string text =
      "# Completion of vexalink for fish; written by \"vexalink completion fish\".\n\n"
      "function __vexalink_at --description 'whether the command line is at one of these'\n"
      "    set -l path ''\n"
      "    for word in (commandline -opc)[2..-1]\n"
      "        set -l longer (string trim -- \"$path $word\")\n"
      "        switch $longer\n"
      "            case" +
      Paths(program) +
      "\n"
      "                set path $longer\n"
      "        end\n"
      "    end\n"
      "    contains -- \"$path\" $argv\n"
      "end\n\n"
      "function __vexalink_events --description 'the events of the running controller'\n"
      "    vexalink completion events 2>/dev/null\n"
      "end\n\n";
  for (const CommandPage* page : AllPages(program)) text += PageText(*page);
  return text;
}

}  // namespace controller::cli
