#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "controller/Loop.h"
#include "controller/ProjectStore.h"

namespace controller {

/// Brings to the disk whatever is to be kept: the state of one driver, once that has said that it
/// changed, and what else is asked for. What comes within two milliseconds goes into one
/// transaction, all of it or nothing. Where that fails it is tried again after 1, 2, 4 ... 60
/// seconds until it succeeds; nothing that was asked for is given up. A saved state can always be
/// read back.
class Committer {
 public:
  /// Writes inside the transaction. May run more than once, so it must do nothing but write, and
  /// throws a `Failure` where that fails.
  using Write = std::function<void(ProjectStore& store)>;
  /// Called once, as soon as what was asked for is on the disk. From the loop.
  using OnSaved = std::function<void()>;
  /// Called, once at most, where the first attempt fails. `OnSaved` still comes.
  using OnDelayed = std::function<void(const std::string& why)>;
  /// The driver's state now; nothing where it has none. Must not throw.
  using Fetch = std::function<std::optional<std::string>()>;
  /// Told when saving begins to fail (why), and when it works again (the empty text).
  using OnTrouble = std::function<void(const std::string& why)>;

  Committer(event_base* base, ProjectStore& store, std::string driver, Fetch fetch,
            OnTrouble onTrouble);

  void Add(Write write, OnSaved onSaved = {}, OnDelayed onDelayed = {});
  /// Runs in every transaction, before all else: what tells how far the rest has come.
  void SetStamp(Write stamp) { stamp_ = std::move(stamp); }
  /// The state has changed. May be called inside the driver's call.
  void Invalidate();
  /// Saves the state and all that waits, at once, and answers whether it is on the disk. Not inside
  /// a driver's call.
  bool SaveNow();
  /// Whether something waits that is not on the disk yet.
  bool IsPending() const { return stateWaits_ || !waiting_.empty(); }
  /// Why saving fails; empty while it works.
  const std::string& Trouble() const { return trouble_; }

  std::uint64_t Saves() const { return saves_; }
  std::uint64_t SaveFailures() const { return saveFailures_; }

 private:
  struct Waiting {
    Write write;
    OnSaved onSaved;
    OnDelayed onDelayed;
  };

  static void OnDue(int, short, void* self);
  bool Flush();
  void WriteAll();
  void WriteState();
  void Succeeded(std::list<Waiting> saved);
  void Failed(const std::string& why);
  void Arm(long milliseconds);

  event_base* base_;
  ProjectStore& store_;
  std::string driver_;
  Fetch fetch_;
  OnTrouble onTrouble_;
  Write stamp_;
  LoopEvent due_;
  std::list<Waiting> waiting_;
  bool stateWaits_ = false;
  bool armed_ = false;
  unsigned failures_ = 0;
  std::string trouble_;
  std::uint64_t saves_ = 0;
  std::uint64_t saveFailures_ = 0;
};

/// The text as it may be saved: itself where it parses, else with U+FFFD for what XML cannot hold
/// (told in the log). Throws a `Failure` where that does not parse either.
std::string ReadableState(std::string text);

}  // namespace controller
