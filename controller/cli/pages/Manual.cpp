#include "controller/cli/pages/Manual.h"

#include <map>

#include "controller/cli/pages/FooterText.h"
#include "controller/cli/pages/Hints.h"
#include "controller/cli/pages/ManualText.h"

namespace controller::cli {

namespace {

/// Of the text, not of the build: a page must not change because it is made again.
constexpr const char* kDate = "2026-11-21";

std::string UpperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

std::string DashedName(const CommandPage& page) {
  std::string name = page.name;
  for (char& c : name) {
    if (c == ' ') c = '-';
  }
  return name;
}

std::string Synopsis(const CommandPage& page) {
  std::string text = ".SH SYNOPSIS\n" + RoffBold(page.name) + '\n';
  text += "[" + RoffItalic("OPTIONS") + "]\n";
  if (!page.commands.empty()) text += RoffItalic("COMMAND") + "\n\\&...\n";
  for (const OptionPage& argument : page.arguments) {
    const std::string name = RoffItalic(argument.names.front()) + (argument.isMany ? "..." : "");
    text += (argument.isRequired ? name : '[' + name + ']') + '\n';
  }
  return text;
}

std::string Tag(const OptionPage& option) {
  std::string tag;
  for (const std::string& name : option.names) {
    tag += (tag.empty() ? "" : ", ") + (option.isArgument ? RoffItalic(name) : RoffBold(name));
  }
  if (!option.value.empty()) tag += ' ' + RoffItalic(option.value);
  return ".TP\n" + tag + '\n';
}

std::string Described(const OptionPage& option) {
  std::string text = option.description.empty() ? "" : option.description;
  if (!text.empty() && text.back() != '.') text += '.';
  if (option.isRequired && !option.isArgument) text += " Must be given.";
  if (!option.environment.empty()) text += " Environment: " + option.environment + '.';
  return Tag(option) + RoffLines(text);
}

std::string Options(const std::vector<OptionPage>& options) {
  std::string text;
  std::string common;
  for (const OptionPage& option : options) {
    (option.group == "Options" ? text : common) += Described(option);
  }
  if (!text.empty()) text = ".SH OPTIONS\n" + text;
  if (!common.empty()) text += ".SH COMMON OPTIONS\n" + common;
  return text;
}

std::string Arguments(const CommandPage& page) {
  std::string text;
  for (const OptionPage& argument : page.arguments) text += Described(argument);
  return text.empty() ? text : ".SH ARGUMENTS\n" + text;
}

std::string Commands(const CommandPage& page) {
  std::string text;
  for (const CommandPage& command : page.commands) {
    std::string tag = RoffBold(command.LastName());
    for (const std::string& alias : command.aliases) tag += ", " + RoffBold(alias);
    for (const OptionPage& argument : command.arguments) {
      tag += ' ' + RoffItalic(argument.names.front());
    }
    text += ".TP\n" + tag + '\n' + RoffLines(command.description + '.');
    // The program's own commands have pages; what stands deeper is told here.
    if (page.name.find(' ') == std::string::npos) continue;
    text += ".RS\n";
    for (const OptionPage& option : command.options) text += Described(option);
    text += ".RE\n";
  }
  return text.empty() ? text : ".SH COMMANDS\n" + text;
}

std::string Literal(const std::vector<std::string>& lines) {
  std::string text = ".nf\n";
  for (const std::string& line : lines) text += RoffText(line) + '\n';
  return text + ".fi\n";
}

std::string Ending(const Footer& footer) {
  std::string text;
  for (const FooterSection& section : footer.sections) {
    text += ".SH " + UpperCase(section.title) + '\n' + Literal(section.lines);
  }
  if (footer.statuses.empty()) return text;
  text += ".SH EXIT STATUS\n";
  for (const auto& [status, meaning] : footer.statuses) {
    text += ".TP\n" + RoffBold(status) + '\n' + RoffLines(meaning);
  }
  return text;
}

std::string SeeAlso(const CommandPage& page, const CommandPage& program) {
  std::vector<std::string> names;
  if (page.name == program.name) {
    for (const CommandPage& command : program.commands) names.push_back(DashedName(command));
  } else {
    names.push_back(program.name);
  }
  std::string text = ".SH SEE ALSO\n";
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += ".BR " + RoffText(names[i]) + " (1)" + (i + 1 < names.size() ? " ," : "") + '\n';
  }
  return text;
}

}  // namespace

std::string ManualPage(const CommandPage& page, const CommandPage& program) {
  const Footer footer = ReadFooter(page.footer);
  std::string text = ".TH \"" + RoffText(UpperCase(DashedName(page))) + "\" \"1\" \"" + kDate +
                     "\" \"vexalink " VEXALINK_VERSION "\" \"User Commands\"\n";
  text += ".SH NAME\n" + RoffText(DashedName(page)) + " \\-\n" + RoffLines(page.description);
  text += Synopsis(page) + ".SH DESCRIPTION\n" + RoffLines(page.description + '.');
  for (const std::string& paragraph : footer.paragraphs) text += ".PP\n" + RoffLines(paragraph);
  text += Commands(page) + Arguments(page) + Options(page.options) + Ending(footer);
  return text + SeeAlso(page, program);
}

std::string ManualFileName(const CommandPage& page) { return DashedName(page) + ".1"; }

}  // namespace controller::cli
