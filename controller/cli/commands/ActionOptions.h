#pragma once

#include <optional>
#include <string>
#include <vector>

#include "controller/cli/Json.h"

namespace CLI {
class App;
}

namespace controller::cli {

/// What an event does, as options give it; what is not given is empty.
struct ActionOptions {
  std::optional<std::string> run;
  std::optional<std::string> hook;
  std::optional<std::string> set;
  std::optional<std::string> method;
  std::vector<std::string> headers;
  std::optional<std::string> body;
  std::optional<std::string> timeout;
  std::optional<long> retries;
  std::optional<std::string> condition;
  std::optional<std::string> on;
  std::optional<std::string> delay;

  bool IsEmpty() const;
  /// Whether they say what is done, and not only when or how.
  bool SayWhat() const { return run || hook || set; }
};

/// Adds the options; `options` must live until the command has run.
void AddActionOptions(CLI::App& command, ActionOptions& options);

/// The API's action: `before` with what is given changed; `before` is an empty object for a new
/// one. What the user ought to know is added to `notes`. Throws a `TextError` or a `Failure`.
Json ChangedAction(const ActionOptions& options, Json before, std::vector<std::string>& notes);

}  // namespace controller::cli
