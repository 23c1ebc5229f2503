#pragma once

#include <optional>
#include <string>

#include "controller/cli/Json.h"
#include "controller/cli/parse/DayText.h"

namespace CLI {
class App;
}

namespace controller::cli {

/// What an event is, as the options of `add` and `modify` give it; what is not given is empty.
struct EventOptions {
  std::optional<std::string> description;
  std::optional<std::string> at;
  std::optional<std::string> every;
  std::optional<std::string> start;
  std::optional<std::string> until;
  std::optional<std::string> spread;

  bool IsEmpty() const;
};

/// Adds the options but for the description's; `options` must live until the command has run.
void AddEventOptions(CLI::App& command, EventOptions& options);

/// The API's event for a new one. Throws a `TextError` or a `Failure`.
Json NewEvent(const EventOptions& options, const HouseToday& today);

/// The merge patch that changes of `event`, an answer of the API, what is given and nothing else.
/// Throws a `TextError` or a `Failure`.
Json EventPatch(const EventOptions& options, const HouseToday& today, const Json& event);

/// The event as it would be with the patch, as a request: without what only answers have.
Json PatchedEvent(const Json& event, const Json& patch);

}  // namespace controller::cli
