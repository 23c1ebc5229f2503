#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Play.h"

namespace controller {

namespace {

struct PlayLine {
  std::optional<std::string> agent;
  PlayOptions options;
};

int Play(PlayLine& line) {
  line.options.agentPath = AgentFile(line.agent);
  return RunPlay(line.options, std::cout, std::cerr);
}

}  // namespace

void AddPlayCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<PlayLine>();
  CLI::App* command = app.add_subcommand(
      "play", "Drive the scheduler by a scenario and write the transcript, on a clock of its own");
  command->add_option("FILE", line->options.file, "The scenario, JSON Lines; - for standard input")
      ->required();
  AddAgentOption(*command, line->agent);
  command->footer(kExitStatuses);
  command->callback([line, &run] { run = [line] { return Play(*line); }; });
}

}  // namespace controller
