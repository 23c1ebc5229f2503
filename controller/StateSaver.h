#pragma once

#include <functional>
#include <optional>
#include <string>

#include "controller/Loop.h"
#include "controller/ProjectStore.h"

namespace controller {

/// Keeps the project's copy of one driver's persisted state up to date: once the driver has said
/// that it changed, it is fetched and saved as soon as the present call is over; where that fails
/// it is tried again after 1, 2, 4 ... 60 seconds until it succeeds. What is saved can always be
/// read back.
class StateSaver {
 public:
  /// The driver's state now; nothing where it has none. Must not throw.
  using Fetch = std::function<std::optional<std::string>()>;
  /// Told when saving begins to fail (why), and when it works again (the empty text).
  using OnTrouble = std::function<void(const std::string& why)>;

  StateSaver(event_base* base, ProjectStore& store, std::string driver, Fetch fetch,
             OnTrouble onTrouble);

  /// The state has changed. May be called inside the driver's call.
  void Invalidate();
  /// Fetches and saves at once, and answers whether it is on the disk. Not inside a driver's call.
  bool SaveNow();
  /// Whether something has changed that is not on the disk yet.
  bool IsPending() const { return pending_; }

 private:
  static void OnDue(int, short, void* self);
  void Save();
  void Failed(const std::string& why);
  void Arm(long milliseconds);

  ProjectStore& store_;
  std::string driver_;
  Fetch fetch_;
  OnTrouble onTrouble_;
  LoopEvent due_;
  bool pending_ = false;
  unsigned failures_ = 0;
};

/// The text as it may be saved: itself where it parses, else with U+FFFD for what XML cannot hold
/// (told in the log). Throws a `Failure` where that does not parse either.
std::string ReadableState(std::string text);

}  // namespace controller
