#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "TempFolder.h"

/// The program as its users run it: a process of its own, started at once, with its input, output
/// and error going to files. It lives in a house of its own: HOME is an empty folder, and no
/// service manager is there. Killed, where it still runs, when this goes.
class Program {
 public:
  using Environment = std::map<std::string, std::optional<std::string>>;
  struct Options {
    Environment environment;
    std::string input;
    /// Called in the process before the program takes over.
    std::function<void()> prepare;
    /// Standard error is announced as the journal's stream.
    bool journal = false;
  };

  explicit Program(std::vector<std::string> arguments);
  Program(std::vector<std::string> arguments, Options options);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t Pid() const { return pid_; }
  void Signal(int signal) const;
  /// Waits until `text` is on standard error; false where the program ends before, or after two
  /// minutes.
  bool WaitFor(const std::string& text);
  /// Waits for the end; the exit status, or 128 + the signal that killed it, or -1 where it has not
  /// ended after two minutes.
  int Wait();
  /// SIGTERM, then `Wait`.
  int Stop();

  std::string Out() const { return ReadFile(folder_ / "out"); }
  std::string Err() const { return ReadFile(folder_ / "err"); }

 private:
  [[noreturn]] void Become(const std::vector<std::string>& arguments, const Options& options);
  bool HasEnded();

  TempFolder folder_;
  pid_t pid_ = -1;
  std::optional<int> status_;
};

/// Takes from the process, root's too, the right to go where it has no permission; for
/// `Program::Options::prepare`. False where the system does not let it.
bool GiveUpOverride();
