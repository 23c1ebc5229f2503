#include "controller/cli/pages/Hints.h"

#include <map>

namespace controller::cli {

namespace {

/// What values of these names may be, beside what only the user knows.
const std::map<std::string, std::vector<std::string>>& KnownWords() {
  static const std::map<std::string, std::vector<std::string>> words = {
      {"TIME", {"sunrise", "sunset", "noon", "midnight"}},
      {"REPEAT", {"day", "weekday", "weekend", "week", "month", "year", "once"}},
      {"DATE", {"today", "tomorrow"}},
      {"UNTIL", {"tomorrow", "off"}},
      {"LEVEL", {"error", "warning", "info", "debug"}},
      {"SHELL", {"bash", "zsh", "fish"}},
      {"CONDITION", {"time", "weekday", "day", "date", "month", "year", "leap", "within"}},
  };
  return words;
}

}  // namespace

Hint HintFor(const OptionPage& option) {
  const std::string& name = option.isArgument ? option.names.front() : option.value;
  if (name == "FILE" || name == "PATH" || name == "DIRECTORY") return {Hint::Kind::kFiles, {}};
  if (name == "EVENT") return {Hint::Kind::kEvents, {}};
  const auto known = KnownWords().find(name);
  std::vector<std::string> words = known == KnownWords().end() ? option.Choices() : known->second;
  if (words.empty()) return {};
  return {Hint::Kind::kWords, std::move(words)};
}

std::vector<const CommandPage*> AllPages(const CommandPage& page) {
  std::vector<const CommandPage*> all = {&page};
  for (const CommandPage& command : page.commands) {
    for (const CommandPage* below : AllPages(command)) all.push_back(below);
  }
  return all;
}

std::string PathOf(const CommandPage& page) {
  const std::size_t blank = page.name.find(' ');
  return blank == std::string::npos ? "" : page.name.substr(blank + 1);
}

std::vector<std::string> CommandNames(const CommandPage& page) {
  std::vector<std::string> names;
  for (const CommandPage& command : page.commands) {
    names.push_back(command.LastName());
    names.insert(names.end(), command.aliases.begin(), command.aliases.end());
  }
  return names;
}

std::string Join(const std::vector<std::string>& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

std::string ShortDescription(const OptionPage& option) {
  const std::string& text = option.description;
  std::size_t end = text.size();
  for (const char* stop : {". ", ": ", "; "}) end = std::min(end, text.find(stop));
  return text.substr(0, end);
}

}  // namespace controller::cli
