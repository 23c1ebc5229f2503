#include "controller/cli/pages/PagesCommands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "controller/Failure.h"
#include "controller/Files.h"
#include "controller/Printable.h"
#include "controller/cli/net/Api.h"
#include "controller/cli/pages/Completion.h"
#include "controller/cli/pages/Hints.h"
#include "controller/cli/pages/Manual.h"

namespace controller::cli {

namespace {

constexpr const char* kOfflineStatuses =
    "Exit status: 0 done, 1 it could not be done, 2 the command line is wrong.";

int Finish() {
  std::cout.flush();
  if (!std::cout) throw Failure("standard output could not be written");
  return 0;
}

/// "7<tab>Porch" for the scripts; nothing where no controller answers.
void WriteEvents(const ClientOptions& options) {
  Api api(options);
  const Json all = api.Events();
  for (const Json& event : all.at("events")) {
    std::cout << event.at("id").dump() << '\t' << Printable(TextField(event, "description"))
              << '\n';
  }
}

int WriteCompletion(const CommandPage& program, const std::string& shell,
                    const ClientOptions& options) {
  if (shell == "events") {
    WriteEvents(options);
    return Finish();
  }
  std::cout << (shell == "bash"  ? BashCompletion(program)
                : shell == "zsh" ? ZshCompletion(program)
                                 : FishCompletion(program));
  return Finish();
}

struct ManualLine {
  std::string command;
  std::string directory;
};

const CommandPage& FindPage(const CommandPage& program, const std::string& name) {
  if (name.empty()) return program;
  for (const CommandPage& command : program.commands) {
    if (command.LastName() == name) return command;
    for (const std::string& alias : command.aliases) {
      if (alias == name) return command;
    }
  }
  throw Failure("there is no command " + Quoted(name) + "; \"vexalink --help\" lists them",
                ExitStatus::kBadInput);
}

int WriteManual(const CommandPage& program, const ManualLine& line) {
  if (line.directory.empty()) {
    std::cout << ManualPage(FindPage(program, line.command), program);
    return Finish();
  }
  const std::filesystem::path directory = line.directory;
  std::filesystem::create_directories(directory);
  ReplaceFile(directory / ManualFileName(program), ManualPage(program, program));
  for (const CommandPage& command : program.commands) {
    ReplaceFile(directory / ManualFileName(command), ManualPage(command, program));
  }
  return 0;
}

void AddCompletion(CLI::App& app, CommandRun& run) {
  const auto shell = std::make_shared<std::string>();
  const auto options = std::make_shared<ClientOptions>();
  CLI::App* command =
      app.add_subcommand("completion", "Write what lets a shell complete the command line");
  command->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish", "events"}).description(""));
  // Not for people, who set the environment: the scripts ask for the events.
  command->add_option("--url", options->url)->envname("VEXALINK_URL")->group("");
  command->add_option("--token", options->token)->envname("VEXALINK_TOKEN")->group("");
  command->footer(
      "Examples:\n"
      "  vexalink completion bash > ~/.local/share/bash-completion/completions/vexalink\n"
      "  vexalink completion zsh > ~/.zfunc/_vexalink\n"
      "  vexalink completion fish > ~/.config/fish/completions/vexalink.fish\n\n" +
      std::string(kOfflineStatuses));
  command->callback([shell, options, &app, &run] {
    run = [shell, options, program = ReadPages(app)] {
      return WriteCompletion(program, *shell, *options);
    };
  });
}

void AddManual(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ManualLine>();
  CLI::App* command = app.add_subcommand("manual", "Write a manual page, in roff");
  command->add_option("COMMAND", line->command, "A command. Left out: the program itself");
  command->add_option("--output", line->directory, "Write all pages there, each into a file")
      ->type_name("DIRECTORY");
  command->footer(
      "Examples:\n"
      "  vexalink manual add | man -l -\n"
      "  vexalink manual --output ~/.local/share/man/man1\n\n" +
      std::string(kOfflineStatuses));
  command->callback([line, &app, &run] {
    run = [line, program = ReadPages(app)] { return WriteManual(program, *line); };
  });
}

}  // namespace

void AddPagesCommands(CLI::App& app, CommandRun& run) {
  AddCompletion(app, run);
  AddManual(app, run);
}

}  // namespace controller::cli
