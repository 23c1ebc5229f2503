#pragma once

#include "host/IDriver.h"
#include "host/Messages.h"
#include "host/VxXml.h"

namespace controller {

/// Who decides what comes of what a driver does. Called inside the driver's own call, so an
/// observer must not enter any driver before it returns: it posts that to the `LoopQueue`. What it
/// is given is borrowed for the call.
class IHostObserver {
 public:
  virtual void OnEventFired(IDriver& driver, unsigned long eventId) = 0;
  virtual void OnBoundCall(IDriver& driver, unsigned long bindingId,
                           const IBindMessage& message) = 0;
  virtual void OnUiData(IDriver& driver, const VxXML::INode& data) = 0;
  virtual void OnStateInvalidated(IDriver& driver) = 0;
  /// Before a driver's timer: false where the driver is not to be told, because it is gone.
  virtual bool OnTickBegins(IDriver& driver) = 0;
  /// The driver's timer call is over; drivers may be entered.
  virtual void OnTickEnded(IDriver& driver) = 0;
  virtual void OnDriverLog(IDriver& driver, unsigned int level, const char* text) = 0;
  /// The programming of one owner is to be dropped; `kind` as `CI_OWNER_ID_TYPE` counts.
  virtual void OnProgrammingDropped(IDriver& driver, unsigned long ownerId, int kind) = 0;

 protected:
  ~IHostObserver() = default;
};

}  // namespace controller
