#pragma once

#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "controller/Loop.h"

namespace controller {

/// A program that is run beside the loop, without a shell: in a session of its own, in "/", with
/// nothing to read, its output and its errors in one pipe, signals as a fresh program finds them,
/// and no descriptor of ours. When its time is up, its whole process group is ended: SIGTERM, and
/// after a grace SIGKILL.
class ChildProcess {
 public:
  struct Order {
    /// The program, a path or a name to be found on the PATH, and its arguments.
    std::vector<std::string> argv;
    /// "NAME=VALUE", complete.
    std::vector<std::string> environment;
    long timeoutMilliseconds = 0;
    long graceMilliseconds = 2000;
    /// Whether its end is watched by a pidfd where the system has them, not by asking.
    bool pidfd = true;
  };
  struct End {
    /// As waitpid tells it; nothing where somebody else has taken it.
    std::optional<int> status;
    bool timedOut = false;
    /// The first 4,096 bytes of what it wrote.
    std::string output;
  };
  /// Called once, from the loop; may destroy the process it is told of. What the program has
  /// started and left running is not waited for, and may write no more.
  using Done = std::function<void(const End&)>;

  /// Starts it. Throws a `Failure` that says why it cannot be run.
  ChildProcess(event_base* base, const Order& order, Done done);
  /// Kills what still runs, the whole group.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Ends it as if its time were up; `Done` is still called.
  void Terminate();
  /// Whether the program itself has ended.
  bool HasEnded() const;

 private:
  void Spawn(const Order& order, int outputEnd);
  void WatchOutput();
  void WatchEnd(bool byPidfd);
  void ReadOutput();
  void OnEnded();
  void OnTimeUp();
  void Finish();
  void KillAndReap();
  void SignalGroup(int signal) const;
  void SetTimer(long milliseconds);

  event_base* base_;
  Done done_;
  long grace_;
  pid_t pid_ = 0;
  int output_ = -1;
  int pidfd_ = -1;
  LoopEvent outputReady_;
  LoopEvent endReady_;
  LoopEvent timeUp_;
  std::string kept_;
  enum class State { kRunning, kTerminated, kKilled } state_ = State::kRunning;
  bool timedOut_ = false;
  /// Its end is known, but its group is still given time.
  bool ended_ = false;
};

}  // namespace controller
