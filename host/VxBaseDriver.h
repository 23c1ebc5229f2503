#pragma once

#include <string>

#include "host/AutoCom.h"
#include "host/Export.h"
#include "host/IDriver.h"
#include "host/IInstanceManager.h"
#include "host/IVariableCallback.h"
#include "host/Messages.h"
#include "host/VxXml.h"

/// What a driver is to the controller.
enum class VxDriverType : int { kDevice = 0, kAgent = 1 };
/// How many of a kind a project may hold.
enum class VxMultiplicity : int { kOne = 0, kMany = 1 };
/// What a binding connects.
enum class BindingType : int { kControl = 0, kButton = 1, kAudioVideo = 2 };
/// To whom a piece of programming belongs.
enum class CI_OWNER_ID_TYPE : int { kDevice = 0, kRoom = 1, kVariable = 2, kEvent = 3 };

/// A driver's connection to a device beyond the controller.
class ICommCallback {
 public:
  /// Bytes have arrived on a connection; they are borrowed for the call.
  virtual void OnDataReceived(unsigned long connectionId, const std::string& data) = 0;
  /// A connection has come up (`online`) or gone down.
  virtual void OnConnectionChanged(unsigned long connectionId, bool online) = 0;

 protected:
  ~ICommCallback() = default;
};

/// What every driver is derived from. A driver overrides what it wants to answer; each default does
/// nothing and gives the empty answer. The operations without `virtual` are what a driver may ask
/// of its controller, at any time from its creation to its destruction, on the thread on which it
/// is called. They do not call back into the driver before they return, with one exception, see
/// `VmRegisterListener`.
class VX_API VxBaseDriver : public IDriver, public ICommCallback, public IVariableCallback {
 public:
  VxBaseDriver(IInstanceManager& manager, VxDriverType type, VxMultiplicity multiplicity);
  VxBaseDriver(const VxBaseDriver&) = delete;
  VxBaseDriver& operator=(const VxBaseDriver&) = delete;

  /// Knows no identifier: stores null in `*out` and answers 1.
  int QueryInterface(const std::string& iid, void** out) override;
  ~VxBaseDriver() override;
  unsigned long GetDeviceId() const override;
  /// Keeps the device id; reads neither node. Answers 0.
  int Initialize(unsigned long deviceId, VxXML::INode& config, VxXML::INode* persisted) override;
  vx::auto_com<VxXML::INode> GetPersistState(unsigned long flags) override;
  /// Executes the commands that every driver has; there are none at present. Answers 0.
  int ExecuteCommand(const ICmdMessage& message, ICmdReturn* result, unsigned long sender) override;
  bool TestCondition(const ICondMessage& message, unsigned long* reserved) override;
  vx::auto_com<VxXML::INode> UIRequest(const ICmdMessage& message) override;
  void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                         const std::string& value) override;
  void OnTimerExpired(unsigned long timerId, long reserved) override;

  /// What the driver declared itself to be at its creation.
  VxDriverType GetDriverType() const;
  VxMultiplicity GetMultiplicity() const;

  unsigned long AddRef() override;
  unsigned long Release() override;
  /// A binding of this driver was connected to another driver, or let go.
  virtual void OnBindingAdded(unsigned long bindingId, unsigned long otherDevice);
  virtual void OnBindingRemoved(unsigned long bindingId, unsigned long otherDevice);
  /// Another driver calls through a binding of this one.
  virtual void OnBoundCall(unsigned long bindingId, const IBindMessage& message);
  /// The user has renamed a room, or this driver's device.
  virtual void OnRoomNameChanged(unsigned long roomId, const std::string& name);
  virtual void OnDeviceNameChanged(unsigned long deviceId, const std::string& name);
  /// A room has selected an audio or video source.
  virtual void OnAudioSelected(unsigned long roomId, unsigned long sourceDevice);
  virtual void OnVideoSelected(unsigned long roomId, unsigned long sourceDevice);
  void OnDataReceived(unsigned long connectionId, const std::string& data) override;
  void OnConnectionChanged(unsigned long connectionId, bool online) override;
  /// Adds or removes a variable of this driver. Non-zero on success; the default adds none.
  virtual int VmAdd(unsigned long variableId, const std::string& name, const std::string& value);
  virtual int VmRemove(unsigned long variableId);
  /// The events that this driver may fire, for a programming editor; null: it tells none.
  virtual vx::auto_com<VxXML::INode> GetEvents();
  /// What a programming editor calls an event of this driver; empty: it has no label.
  virtual std::string GetEventLabel(unsigned long eventId);
  /// What this driver can do; null: it does not tell.
  virtual vx::auto_com<VxXML::INode> GetCapabilities();

  /// Arms a periodic timer of `intervalMilliseconds` and returns its id (never 0; 0 where the
  /// controller has none left). `kind` is for the controller's accounting. Each expiry calls
  /// `OnTimerExpired` with the id, never from inside another call.
  unsigned long AddTimer(unsigned long intervalMilliseconds, unsigned int kind);
  /// Stops a timer and sets `timerId` to 0. An unknown id is ignored.
  void KillTimer(unsigned long& timerId);

  /// Starts `OnVariableChanged` calls for one variable of one device. A controller that knows the
  /// present value delivers it before this returns. `listener` stays the caller's and must be
  /// unregistered before it goes.
  void VmRegisterListener(unsigned long device, unsigned long variable,
                          IVariableCallback& listener);
  void VmUnregisterListener(unsigned long device, unsigned long variable,
                            IVariableCallback& listener);

  /// Registers a binding under an id of the driver's choice. Negative where it was refused.
  int RegisterBinding(unsigned long bindingId, BindingType type, const std::string& name,
                      bool hidden, unsigned long roomId, const std::string& icon);
  /// Gives a registered binding a class, "BUTTON_LINK" for example, by which it finds its peers.
  void RegisterBindingClass(unsigned long bindingId, const std::string& bindingClass,
                            unsigned long flags, bool exclusive, const std::string& label);
  void UnregisterBinding(unsigned long bindingId);

  /// Tells the controller's programming that event `eventId` of this driver has happened.
  void FireEvent(unsigned long eventId);

  /// A message for `SendBoundCall`, or null where the controller gives none. The caller owns the
  /// reference.
  vx::auto_com<IBindMessage> CreateBindMessage();
  /// Calls whatever is connected to a binding. The message stays the caller's; `result` may be
  /// null.
  void SendBoundCall(unsigned long bindingId, const IBindMessage& message, ICmdReturn* result);

  /// Shows an element to every user interface that listens. The node stays the caller's.
  void ConSendDataToUI(const VxXML::INode& data);
  /// What `GetPersistState` answers has changed: the controller asks for it soon, not inside this
  /// call.
  void DmInvalidateState();
  /// Drops the programming that belongs to one owner.
  void EmRemoveByOwner(unsigned long ownerId, CI_OWNER_ID_TYPE kind);

  /// Writes a line to the controller's log. Levels as syslog counts them: 3 error, 4 warning,
  /// 6 information, 7 debugging.
  void LogMessage(unsigned int level, const char* text);

 private:
  IInstanceManager& manager_;
  unsigned long deviceId_ = 0;
  unsigned long references_ = 1;
  VxDriverType type_;
  VxMultiplicity multiplicity_;
};
