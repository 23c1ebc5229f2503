#pragma once

#include <string>

#include "host/AutoCom.h"
#include "host/Messages.h"
#include "host/VxXml.h"

class IInstanceManager;

/// A driver as the controller sees it. Created by the function that the driver library's
/// `GetCreationFunc` yields, destroyed by `delete`. The controller calls one operation at a time,
/// always on the same thread, and never while another call into the same driver is under way (with
/// one exception: a variable's value may be delivered inside the registration of its listener).
class IDriver {
 public:
  /// Stores the face called `iid` in `*out` and answers 0; where there is none, stores null and
  /// answers another number. The face lives as long as the driver.
  virtual int QueryInterface(const std::string& iid, void** out) = 0;
  virtual ~IDriver() = default;
  /// The number under which the controller knows this driver; 0 before `Initialize`.
  virtual unsigned long GetDeviceId() const = 0;
  /// Once, before anything else. `config` is the driver's configuration, `persisted` what
  /// `GetPersistState` answered in an earlier life, or null; both are borrowed for the call.
  /// 0 on success.
  virtual int Initialize(unsigned long deviceId, VxXML::INode& config, VxXML::INode* persisted) = 0;
  /// What the driver wants to find again at its next start; null where it has nothing to keep.
  virtual vx::auto_com<VxXML::INode> GetPersistState(unsigned long flags) = 0;
  /// Executes a command. 0, whether or not the command is known; `result` may be null.
  virtual int ExecuteCommand(const ICmdMessage& message, ICmdReturn* result,
                             unsigned long sender) = 0;
  /// Whether a programming condition holds now; false for one that is not known.
  virtual bool TestCondition(const ICondMessage& message, unsigned long* reserved) = 0;
  /// Answers a question of a user interface; null where there is no answer.
  virtual vx::auto_com<VxXML::INode> UIRequest(const ICmdMessage& message) = 0;
  /// See IVariableCallback.
  virtual void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                                 const std::string& value) = 0;
  /// A timer of this driver has expired. `timerId` is what `AddTimer` answered.
  virtual void OnTimerExpired(unsigned long timerId, long reserved) = 0;

  // Reference counting by those who share a driver; a driver is born with one reference. The
  // count is informative: the controller that created the driver alone deletes it.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;
};

/// What `GetCreationFunc` yields: creates a driver on the instance manager; the caller owns it.
/// Null where it cannot be created.
using VxCreateFunc = IDriver* (*)(IInstanceManager&);
/// The one unmangled entry point of a driver library, named "GetCreationFunc".
using VxGetCreationFunc = VxCreateFunc (*)();
