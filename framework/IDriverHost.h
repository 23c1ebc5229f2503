#pragma once

#include <string>
#include <string_view>

#include "host/AutoCom.h"
#include "host/IDriver.h"
#include "host/IVariableCallback.h"
#include "host/Messages.h"
#include "host/VxXml.h"

class VxBaseDriver;

namespace vx {

/// What a controller does for its drivers: `VxBaseDriver` hands every service that a driver asks
/// for to the one `IDriverHost` of its instance manager, with the asking driver in front. See
/// `VxBaseDriver` for what each operation means. Called on the driver's thread; a controller must
/// not call back into the driver before it returns, but for a variable's present value inside
/// `VmRegisterListener`.
class IDriverHost {
 public:
  virtual unsigned long AddTimer(VxBaseDriver& driver, unsigned long intervalMilliseconds,
                                 unsigned int kind) = 0;
  virtual void KillTimer(VxBaseDriver& driver, unsigned long timerId) = 0;
  virtual void VmRegisterListener(VxBaseDriver& driver, unsigned long device,
                                  unsigned long variable, IVariableCallback& listener) = 0;
  virtual void VmUnregisterListener(VxBaseDriver& driver, unsigned long device,
                                    unsigned long variable, IVariableCallback& listener) = 0;
  virtual int RegisterBinding(VxBaseDriver& driver, unsigned long bindingId, int type,
                              const std::string& name) = 0;
  virtual void RegisterBindingClass(VxBaseDriver& driver, unsigned long bindingId,
                                    const std::string& bindingClass) = 0;
  virtual void UnregisterBinding(VxBaseDriver& driver, unsigned long bindingId) = 0;
  virtual void FireEvent(VxBaseDriver& driver, unsigned long eventId) = 0;
  virtual vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver& driver) = 0;
  virtual void SendBoundCall(VxBaseDriver& driver, unsigned long bindingId,
                             const IBindMessage& message, ICmdReturn* result) = 0;
  virtual void ConSendDataToUI(VxBaseDriver& driver, const VxXML::INode& data) = 0;
  virtual void DmInvalidateState(VxBaseDriver& driver) = 0;
  virtual void EmRemoveByOwner(VxBaseDriver& driver, unsigned long ownerId, int kind) = 0;
  virtual void LogMessage(VxBaseDriver& driver, unsigned int level, const char* text) = 0;

 protected:
  ~IDriverHost() = default;
};

}  // namespace vx
