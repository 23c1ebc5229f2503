#pragma once

namespace controller::cli {

/// As long as it lives SIGINT and SIGTERM do not end the program but make `Fd` readable.
class StopSignals {
 public:
  /// Throws a `Failure`.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  int Fd() const { return fd_; }
  /// Whether one has come.
  bool Came() const;
  /// Waits for one, at most so long; whether one has come.
  bool WaitFor(long milliseconds) const;

 private:
  int fd_;
};

}  // namespace controller::cli
