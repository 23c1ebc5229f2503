#pragma once

#include <functional>
#include <memory>
#include <string>

#include "controller/CommandLine.h"
#include "controller/cli/Json.h"
#include "controller/cli/net/Api.h"
#include "controller/cli/net/ClientOptions.h"
#include "controller/cli/parse/DayText.h"
#include "controller/cli/show/Terminal.h"

namespace controller::cli {

/// What a command works with that talks to a running controller.
struct Session {
  Api api;
  Terminal terminal;
  bool json = false;

  /// One document.
  void WriteJson(const Json& document) const;
  /// Something that the user ought to know beside the result: on standard error.
  void Note(const std::string& text) const;
  /// "today" in the house, asked once.
  HouseToday Today();
};

/// The work of a command; answers the exit status.
using SessionWork = std::function<int(Session&)>;

/// Adds a command with the options that all of them have; `options` are kept as long as `run`. The
/// work is done with the connection ready to be used. What it throws is told, and its exit status
/// the program's.
CLI::App* AddClientCommand(CLI::App& app, CommandRun& run, const std::string& name,
                           const std::string& description,
                           const std::shared_ptr<ClientOptions>& options, SessionWork work);

/// The last paragraph of their help: first what is the command's own, if anything, as "10 false".
std::string ClientExitStatuses(const std::string& own = {});

}  // namespace controller::cli
