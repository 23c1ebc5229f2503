#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "controller/Clock.h"
#include "controller/DaySeed.h"
#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/IHostObserver.h"
#include "controller/LiveDriverHost.h"
#include "controller/record/ScenarioRecorder.h"
#include "framework/AssertSink.h"

namespace controller {

/// The real scheduler on the live host, recorded, on a clock that is moved by hand.
class RecordedHouse final : private IHostObserver, private vx::IAssertSink {
 public:
  RecordedHouse(std::time_t now, const std::filesystem::path& scenario,
                const std::filesystem::path& transcript);
  ~RecordedHouse();
  RecordedHouse(const RecordedHouse&) = delete;
  RecordedHouse& operator=(const RecordedHouse&) = delete;

  std::time_t Now() const { return Clock::Now(); }
  void Tick(std::time_t now);
  /// A tick each second.
  void RunUntil(std::time_t until);
  /// The scheduler ends, and begins anew with what it has persisted before `meanwhile`.
  void Restart(const std::function<void()>& meanwhile = [] {});
  DriverInstance& Scheduler() { return *scheduler_; }
  LiveDriverHost& Host() { return host_; }

  /// Something of all that may happen.
  void Live(std::mt19937& random, int year);

  /// How many events have fired.
  int fired = 0;
  /// How many assertion records there were.
  int asserted = 0;

 private:
  void OnEventFired(IDriver&, unsigned long) override { ++fired; }
  void OnBoundCall(IDriver&, unsigned long, const IBindMessage&) override {}
  void OnUiData(IDriver&, const VxXML::INode&) override {}
  void OnStateInvalidated(IDriver&) override {}
  void OnProgrammingDropped(IDriver&, unsigned long, int) override {}
  bool OnTickBegins(IDriver&) override { return true; }
  void OnTickEnded(IDriver&) override {}
  void OnDriverLog(IDriver&, unsigned int, const char*) override {}

  void OnAssert(const char*, int, const vx::StackTrace&) override { ++asserted; }
  bool WantsStacks() const override { return false; }

  void Begin(const std::optional<std::string>& persisted);
  void ChangeSomething(std::mt19937& random, int year);
  void AskSomething(std::mt19937& random, int year);
  void MoveOn(std::mt19937& random);

  vx::IAssertSink* sinkBefore_ = vx::SetAssertSink(this);
  std::unique_ptr<DriverLoader> loader_;
  EventBase base_ = MakeEventBase();
  ScenarioRecorder recorder_;
  DaySeed seed_{"house"};
  LiveDriverHost host_{base_.get(), seed_, *this};
  std::unique_ptr<DriverInstance> scheduler_;
};

/// What `vexalink play` answers to a scenario; a failure of the test where it cannot be played.
std::string Played(const std::filesystem::path& scenario);
/// The lines of a text.
std::vector<std::string> LinesOf(const std::string& text);

}  // namespace controller
