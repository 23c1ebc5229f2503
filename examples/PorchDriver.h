#pragma once

#include "host/VxBaseDriver.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

/// A driver to learn from: it sees to it that the schedule holds one event, the porch light at
/// 18:30 every day, and knows about it no more than what `IAgentScheduler` tells.
///
/// Drivers may start in any order, so the scheduler may not be there yet when this one starts: then
/// it looks again with every tick of a timer, until it has been found. Nothing of the scheduler is
/// kept but for the length of one call, because it may go before this driver does.
///
/// Commands: "KEEP_PORCH_LIGHT" adds the event and keeps it from now on, "DROP_PORCH_LIGHT" deletes
/// it and remembers not to add it again. Request: "GET_PORCH_LIGHT" answers
/// `<porch_light><wanted>1</wanted><eventid>7</eventid></porch_light>`, event id 0 while the
/// schedule holds no such event. State: `<porch_light><wanted>1</wanted></porch_light>`.
class PorchDriver final : public VxBaseDriver {
 public:
  /// What `GetCreationFunc` yields; null where there is no memory for a driver.
  static IDriver* Create(IInstanceManager& manager);

  explicit PorchDriver(IInstanceManager& manager);
  /// Stops the timer. The event stays in the schedule: stopping a driver is no wish to be without
  /// it.
  ~PorchDriver() override;

  int Initialize(unsigned long deviceId, VxXML::INode& config, VxXML::INode* persisted) override;
  vx::auto_com<VxXML::INode> GetPersistState(unsigned long flags) override;
  int ExecuteCommand(const ICmdMessage& message, ICmdReturn* result, unsigned long sender) override;
  vx::auto_com<VxXML::INode> UIRequest(const ICmdMessage& message) override;
  void OnTimerExpired(unsigned long timer, long reserved) override;

 private:
  IAgentScheduler* FindScheduler() const;
  unsigned long EventId() const;
  void KeepEvent();
  void DropEvent();
  void StopLooking();

  IInstanceManager& manager_;
  bool wanted_ = true;
  unsigned long timerId_ = 0;  // 0 while nothing is waited for
};
