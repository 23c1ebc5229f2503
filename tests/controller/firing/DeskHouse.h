#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "controller/DaySeed.h"
#include "controller/DriverInstance.h"
#include "controller/IHostObserver.h"
#include "controller/LiveDriverHost.h"
#include "controller/firing/FiringDesk.h"

namespace controller {

/// A house on a clock that is moved by hand: the real scheduler on the live host, and the firing
/// desk; what is decided is written down. The zone is UTC as long as it lives, unless told
/// otherwise.
class DeskHouse final : public IFiringHouse, private IHostObserver {
 public:
  explicit DeskHouse(const std::string& now, const char* zone = "UTC0");
  ~DeskHouse();
  DeskHouse(const DeskHouse&) = delete;
  DeskHouse& operator=(const DeskHouse&) = delete;

  /// Adds a daily event at "HH:MM" and answers its id.
  unsigned long Daily(const std::string& description, int minutes, int spread = 0);
  unsigned long Add(EventElement event);
  void Delete(unsigned long event);
  void Move(unsigned long event, int minutes);

  /// The clock goes on to a local time, with a tick each second.
  void RunUntil(const std::string& until);
  /// One tick at this time, whatever was before.
  void TickAt(const std::string& now);
  /// The scheduler ends, and begins anew at this time.
  void RestartAt(const std::string& now, const std::string& cause = "down");
  void Set(const std::string& now);

  /// "7 fired timer 07:00+5" for each decision since this was last asked: event, what, why, the
  /// planned time and the random part.
  std::vector<std::string> Decided();
  std::vector<std::string> States();

  std::map<unsigned long, Programming> programming;
  std::optional<DayFields> away;
  FiringDesk desk{*this};

 private:
  DriverInstance& Scheduler() override { return *scheduler_; }
  const Programming& ProgrammingOf(unsigned long eventId) const override;
  std::optional<DayFields> AwayBefore() const override { return away; }
  long long OnDecision(const FiringDecision& decision) override;
  void OnPlanChanged() override {}

  void OnEventFired(IDriver&, unsigned long event) override { desk.OnFired(event); }
  void OnBoundCall(IDriver&, unsigned long binding, const IBindMessage& message) override {
    desk.OnBoundCall(binding, message.GetCommand());
  }
  void OnUiData(IDriver&, const VxXML::INode& data) override;
  void OnStateInvalidated(IDriver&) override {}
  void OnProgrammingDropped(IDriver&, unsigned long, int) override {}
  bool OnTickBegins(IDriver&) override { return true; }
  void OnTickEnded(IDriver&) override;
  void OnDriverLog(IDriver&, unsigned int, const char* text) override { desk.OnLog(text); }

  void Begin(const std::optional<std::string>& persisted, const std::string& cause);

  std::optional<std::string> zoneBefore_;
  EventBase base_ = MakeEventBase();
  DaySeed seed_{"house"};
  LiveDriverHost host_{base_.get(), seed_, *this};
  std::unique_ptr<DriverLoader> loader_;
  std::unique_ptr<DriverInstance> scheduler_;
  std::vector<std::string> decided_;
  std::vector<unsigned long> changed_;
};

}  // namespace controller
