#pragma once

#include <optional>

#include "controller/DaySeed.h"
#include "controller/HostMessages.h"
#include "controller/ScratchHost.h"
#include "controller/firing/FiringDesk.h"

namespace controller {

/// The host of a simulated scheduler: passes on to the firing desk what the live one would, and
/// seeds as that does; does nothing else.
class SimulationHost final : public ScratchHost {
 public:
  static constexpr unsigned long kTimer = 1;

  /// Both must outlive it.
  SimulationHost(const Place& place, DaySeed& seed, FiringDesk& desk)
      : ScratchHost(place), seed_(seed), desk_(desk) {}

  /// The list of the day that was drawn up since this was last asked.
  std::optional<ScheduleTrace> TakeTrace() { return trace_.Take(); }

  unsigned long AddTimer(VxBaseDriver&, unsigned long, unsigned int) override { return kTimer; }
  void VmRegisterListener(VxBaseDriver& driver, unsigned long device, unsigned long variable,
                          IVariableCallback& listener) override {
    ScratchHost::VmRegisterListener(driver, device, variable, listener);
    seed_.Seed();
  }
  void FireEvent(VxBaseDriver&, unsigned long event) override { desk_.OnFired(event); }
  vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver&) override {
    return vx::auto_com<IBindMessage>(new BindMessage);
  }
  void SendBoundCall(VxBaseDriver&, unsigned long binding, const IBindMessage& message,
                     ICmdReturn*) override {
    desk_.OnBoundCall(binding, message.GetCommand());
  }
  void LogMessage(VxBaseDriver&, unsigned int, const char* text) override {
    if (text == nullptr) return;
    desk_.OnLog(text);
    trace_.Read(text);
  }

 private:
  DaySeed& seed_;
  FiringDesk& desk_;
  ScheduleTraceReader trace_;
};

}  // namespace controller
