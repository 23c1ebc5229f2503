#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// What sets an action off: the firing of the event itself, or one of the two calls on the event's
/// button binding that come with it.
enum class Trigger : int { kEvent = 0, kPush = 1, kClick = 2 };
/// "event", "push", "click"
const char* TriggerName(Trigger trigger);

/// A condition as the scheduler evaluates it (`TestCondition`).
struct Condition {
  /// "IF_TIME", "IF_TODAY", ...
  std::string name;
  /// The text of "CONDITIONAL_XML".
  std::string xml;
  /// What the user wrote, JSON text; it is what the user gets to see again.
  std::string json;
};

/// Calls a URL. Texts may hold placeholders, see `FiringFacts`.
struct HookAction {
  std::string method = "POST";
  std::string url;
  std::map<std::string, std::string> headers;
  std::string body;
  int timeoutSeconds = 10;
  int retries = 3;
};

/// Runs a program, without a shell. `argv` holds at least the program.
struct CommandAction {
  std::vector<std::string> argv;
  int timeoutSeconds = 60;
};

/// Sets a variable of the host.
struct VariableAction {
  unsigned long device = 0;
  unsigned long variable = 0;
  std::string value;
};

struct Action {
  Trigger on = Trigger::kEvent;
  int delaySeconds = 0;
  std::optional<Condition> condition;
  std::variant<HookAction, CommandAction, VariableAction> what;
};

/// What happens with an occurrence that was missed.
struct CatchUp {
  enum class Policy { kIgnore, kWithin, kAlways };
  Policy policy = Policy::kWithin;
  /// How late it may be, for `kWithin`.
  int minutes = 10;
};

/// What an event does when it fires, and whether it may.
struct Programming {
  bool enabled = true;
  /// Nothing is done before this day begins.
  std::optional<DayFields> pausedUntil;
  /// The next firing that would do something does nothing, and ends this.
  bool skipNext = false;
  CatchUp catchUp;
  std::vector<Action> actions;

  /// Whether it is as every event's is at first.
  bool IsPlain() const;
};

}  // namespace controller
