#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controller/Loop.h"
#include "controller/programming/Programming.h"

namespace controller {

/// What an action's placeholders stand for.
struct FiringFacts {
  unsigned long eventId = 0;
  std::string description;
  std::time_t planned = 0;
  std::time_t actual = 0;
  /// The journal's row of the firing.
  std::int64_t journalRow = 0;
};

/// How an action ended.
struct ActionOutcome {
  enum class Kind { kDone, kFailed, kTimedOut, kCondition, kCancelled };
  Kind kind = Kind::kDone;
  /// A line: "200 OK", "exit status 3", "no answer within 10 s, 4 attempts".
  std::string detail;
  /// What a command wrote or a hook answered, the first 4,096 bytes, as it came.
  std::string output;
  long milliseconds = 0;
};
/// "done", "failed", "timed-out", "condition", "cancelled"
const char* OutcomeName(ActionOutcome::Kind kind);

/// What actions need of the house. Called from the loop.
class IActionHouse {
 public:
  /// Asks the scheduler, now.
  virtual bool TestCondition(const Condition& condition) = 0;
  virtual void SetVariable(const VariableAction& action) = 0;
  /// An action of a firing has ended; for the journal.
  virtual void OnActionEnded(const FiringFacts& facts, const Action& action,
                             const ActionOutcome& outcome) = 0;

 protected:
  ~IActionHouse() = default;
};

/// One action that waits for its delay, for its turn, or for its end.
struct RunningAction {
  FiringFacts facts;
  std::string text;
  /// "delayed", "waiting", "running", "retrying"
  std::string state;
  std::time_t since = 0;
};

/// Carries out actions, all on the loop and none of them holding it: web hooks with libcurl's multi
/// interface, commands as child processes in a session of their own, which is killed whole when its
/// time is up. At most a handful of hooks and of commands are under way at a time; the others wait
/// in order, and beyond a thousand waiting ones a new one fails at once, saying so.
class ActionRunner {
 public:
  ActionRunner(event_base* base, IActionHouse& house);
  /// Ends everything: children are killed, what was waiting is reported as cancelled.
  ~ActionRunner();
  ActionRunner(const ActionRunner&) = delete;
  ActionRunner& operator=(const ActionRunner&) = delete;

  /// Starts the actions of one firing that `trigger` sets off, in their order. Conditions are
  /// tested now, so not inside a driver's call.
  void Start(const std::vector<Action>& actions, Trigger trigger, const FiringFacts& facts);
  /// Does one action now, its delay left out, its condition tested; `done` is called from the loop
  /// and never from inside this call. It is not reported to the house.
  void Try(const Action& action, const FiringFacts& facts,
           std::function<void(const ActionOutcome&)> done);
  /// Ends what belongs to an event that has gone, as cancelled.
  void Cancel(unsigned long eventId);
  std::vector<RunningAction> Running() const;

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

}  // namespace controller
