#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <vector>

#include "controller/programming/ActionRunner.h"
#include "controller/programming/ChildProcess.h"
#include "controller/programming/HookClient.h"

namespace controller {

/// What an ActionRunner does. One job is one action of one firing.
class ActionRunner::Work {
 public:
  using TryDone = std::function<void(const ActionOutcome&)>;

  Work(event_base* base, IActionHouse& house, const ActionLimits& limits);
  ~Work();

  void Start(const Action& action, const FiringFacts& facts);
  void Try(const Action& action, const FiringFacts& facts, TryDone done);
  void Cancel(unsigned long eventId);
  std::vector<RunningAction> Running() const;

 private:
  enum class State { kDelayed, kWaiting, kRunning, kRetrying };

  struct Job {
    unsigned long id = 0;
    Action action;
    FiringFacts facts;
    /// Empty: the house is told.
    TryDone done;
    State state = State::kWaiting;
    std::time_t since = 0;
    /// What the timer's callback is told; freed after it.
    std::shared_ptr<void> due;
    /// For the delay, or for the pause before another attempt.
    LoopEvent timer;
    int attempts = 0;
    std::optional<std::chrono::steady_clock::time_point> begun;
    /// What is under way.
    unsigned long call = 0;
    std::unique_ptr<ChildProcess> child;
  };

  /// Jobs of one kind, of which only some are under way at a time.
  struct Lane {
    std::deque<unsigned long> waiting;
    std::size_t running = 0;
    std::size_t most = 0;
  };

  /// The outcome of what is not done: its condition does not hold, or there is too much to do.
  std::optional<ActionOutcome> Refused(const Action& action);
  Job& AddJob(const Action& action, const FiringFacts& facts, TryDone done);
  void SetVariable(Job& job, const VariableAction& variable);
  void Proceed(Job& job);
  void Wait(Job& job);
  void SetTimer(Job& job, State state, long milliseconds);
  void OnTimer(unsigned long id);
  void PostPump();
  void Pump(Lane& lane);
  Lane& LaneOf(const Job& job);
  static void SetState(Job& job, State state);

  void Begin(Job& job);
  void BeginHook(Job& job, const HookAction& hook);
  void OnAnswer(unsigned long id, const HookAnswer& answer);
  long PauseBefore(const Job& job, const HookAnswer& answer);
  void BeginCommand(Job& job, const CommandAction& command);
  void OnCommandEnded(unsigned long id, const ChildProcess::End& end);

  void Leave(Job& job);
  void EndJob(unsigned long id, ActionOutcome::Kind kind, std::string detail,
              std::string output = {});
  void CancelJob(unsigned long id, const char* why);
  /// From the loop, later.
  void Report(Action action, FiringFacts facts, TryDone done, ActionOutcome outcome);
  /// What has been cancelled gets time to end by itself.
  void LetEnd(unsigned long id, std::unique_ptr<ChildProcess> child);
  void EndChildren();

  event_base* base_;
  IActionHouse& house_;
  ActionLimits limits_;
  LoopQueue queue_;
  HookClient hooks_;
  std::map<unsigned long, Job> jobs_;
  unsigned long lastId_ = 0;
  Lane hookLane_;
  Lane commandLane_;
  bool pumpPosted_ = false;
  /// By their jobs, which are gone.
  std::map<unsigned long, std::unique_ptr<ChildProcess>> ending_;
  std::minstd_rand random_{std::random_device{}()};
};

}  // namespace controller
