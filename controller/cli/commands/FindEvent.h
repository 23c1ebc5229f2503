#pragma once

#include <string>
#include <vector>

#include "controller/cli/Json.h"
#include "controller/cli/net/Api.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace controller::cli {

/// How an event may be named.
enum class Naming {
  /// By its id, its description whatever the case, or a part of it that only one event has.
  kPart,
  /// By its id or all of its description: for what cannot be meant by accident.
  kWhole,
};

/// The event that the user means. Throws a `Failure` (kNoSuchEvent) where there is none, or more
/// than one; it lists those that might be meant.
Json FindEvent(Api& api, const std::string& name, Naming naming = Naming::kPart);

/// Adds the argument that names an event, or several.
CLI::Option* AddEventArgument(CLI::App& command, std::string& event);
CLI::Option* AddEventArguments(CLI::App& command, std::vector<std::string>& events);

/// "/events/7"
std::string EventPath(const Json& event, const std::string& more = {});

}  // namespace controller::cli
