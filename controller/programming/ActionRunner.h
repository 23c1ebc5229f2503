#pragma once

#include <cstddef>
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
  /// When it was to fire, and when it did.
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
  /// When it came into this state.
  std::time_t since = 0;
};

/// How much is done at a time, and how long is waited; another choice than this is for tests.
struct ActionLimits {
  std::size_t hooks = 8;
  std::size_t commands = 4;
  /// Delayed, waiting for their turn or for another attempt.
  std::size_t waiting = 1000;
  /// The pause before the second attempt; each further one is twice as long, up to the longest.
  long firstPauseMilliseconds = 1000;
  long longestPauseMilliseconds = 60'000;
  /// What a server may ask for at most by Retry-After.
  long longestRetryAfterMilliseconds = 300'000;
  /// From SIGTERM to SIGKILL.
  long graceMilliseconds = 2000;
  /// Whether the end of a process is watched by a pidfd where the system has them, not by asking.
  bool pidfds = true;
};

/// Carries out actions, all on the loop and none of them holding it: web hooks with libcurl's multi
/// interface, commands as child processes in a session of their own, which is killed whole when its
/// time is up. At most a handful of hooks and of commands are under way at a time; the others wait
/// in order, and beyond a thousand waiting ones a new one fails at once, saying so.
class ActionRunner {
 public:
  /// The house must outlive it.
  ActionRunner(event_base* base, IActionHouse& house, const ActionLimits& limits = {});
  /// Ends everything: children are killed, what was waiting or under way is reported as cancelled,
  /// a `Try` to whoever waits for it.
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
