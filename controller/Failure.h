#pragma once

#include <stdexcept>
#include <string>

namespace controller {

/// How the program ends, as its help says.
enum class ExitStatus : int {
  kOk = 0,
  /// What was asked for could not be done.
  kFailed = 1,
  /// The command line or a file that was given is wrong.
  kBadInput = 2,
  // Of the commands that talk to a running controller.
  kUnreachable = 3,
  kRefused = 4,
  /// Or more than one has that name.
  kNoSuchEvent = 5,
  /// In effect, and saved as soon as that works.
  kNotSaved = 6,
};

/// What stops a command: the message says what is wrong, where, and what to do. Thrown by the
/// parts, caught at the command's edge, and never across the driver interface.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& message, ExitStatus status = ExitStatus::kFailed)
      : std::runtime_error(message), status_(status) {}
  ExitStatus Status() const { return status_; }

 private:
  ExitStatus status_;
};

}  // namespace controller
