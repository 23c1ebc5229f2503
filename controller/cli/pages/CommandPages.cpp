#include "controller/cli/pages/CommandPages.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace controller::cli {

namespace {

bool IsLowerCaseWord(const std::string& text) {
  return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
    return c == ' ' || c == '.' || c == '=' || (c >= 'A' && c <= 'Z');
  });
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}

OptionPage ReadOption(const CLI::Option& option) {
  OptionPage page;
  page.isArgument = option.get_positional();
  if (page.isArgument) {
    page.names.push_back(option.get_single_name());
    page.isMany = option.get_items_expected_max() > 1;
  } else {
    for (const std::string& name : option.get_snames()) page.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames()) page.names.push_back("--" + name);
    if (option.get_type_size() != 0) page.value = option.get_type_name();
  }
  page.description = option.get_description();
  page.group = option.get_group();
  page.environment = option.get_envname();
  page.isRequired = option.get_required();
  return page;
}

CommandPage Read(const CLI::App& app, const std::string& parent) {
  CommandPage page;
  page.name = parent.empty() ? app.get_name() : parent + ' ' + app.get_name();
  page.aliases = app.get_aliases();
  page.description = app.get_description();
  page.footer = app.get_footer();
  for (const CLI::Option* option : app.get_options({})) {
    if (option->get_group().empty()) continue;  // hidden
    OptionPage read = ReadOption(*option);
    (read.isArgument ? page.arguments : page.options).push_back(std::move(read));
  }
  for (const CLI::App* command : app.get_subcommands(std::function<bool(const CLI::App*)>())) {
    if (!command->get_group().empty()) page.commands.push_back(Read(*command, page.name));
  }
  return page;
}

}  // namespace

std::vector<std::string> OptionPage::Choices() const {
  std::vector<std::string> choices;
  // Methods of HTTP are words too, though in upper case.
  const bool isList = value.find('|') != std::string::npos;
  for (const std::string& word : Split(value, '|')) {
    if (isList && (IsLowerCaseWord(word) || value.starts_with("GET|"))) choices.push_back(word);
  }
  return choices;
}

std::string CommandPage::LastName() const { return name.substr(name.rfind(' ') + 1); }

CommandPage ReadPages(const CLI::App& app) { return Read(app, ""); }

}  // namespace controller::cli
