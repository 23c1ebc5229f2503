#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "controller/DaySeed.h"
#include "controller/DriverTimers.h"
#include "controller/ICallRecorder.h"
#include "controller/IHostObserver.h"
#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

namespace controller {

/// The live host: keeps what drivers have asked for (timers, listeners, bindings, published
/// interfaces) and passes on to its observer what they do. Calls a driver from the loop only, one
/// call at a time; but for a variable's present value inside its registration, no operation calls
/// back.
class LiveDriverHost final : public IInstanceManager, public vx::IDriverHost {
 public:
  /// `seed` is renewed when a listener has its value, which is before a driver draws its day, and
  /// before each tick. Both must outlive this.
  LiveDriverHost(event_base* base, DaySeed& seed, IHostObserver& observer);
  LiveDriverHost(const LiveDriverHost&) = delete;
  LiveDriverHost& operator=(const LiveDriverHost&) = delete;

  /// Whatever the host calls on a driver is told to the recorder, which must outlive it.
  void SetRecorder(ICallRecorder& recorder);

  /// Sets a variable and tells its listeners. From the loop only.
  void SetVariable(unsigned long device, unsigned long variable, const std::string& value);
  const std::map<std::pair<unsigned long, unsigned long>, std::string>& Variables() const {
    return variables_;
  }
  /// Each timer of each driver expires now, besides its own time. From the loop only.
  void ExpireTimers() { timers_.ExpireAll(); }
  /// Drops what a driver that has gone has left behind. Only the address is looked at.
  void Forget(const IDriver* driver);

  int RegisterQuery(const char* iid, void* object) override;
  void UnregisterQuery(const char* iid) override;
  void* FindQuery(const char* iid) override;
  vx::IDriverHost& DriverHost() override { return *this; }

  unsigned long AddTimer(VxBaseDriver& driver, unsigned long intervalMilliseconds,
                         unsigned int kind) override;
  void KillTimer(VxBaseDriver& driver, unsigned long timerId) override;
  void VmRegisterListener(VxBaseDriver& driver, unsigned long device, unsigned long variable,
                          IVariableCallback& listener) override;
  void VmUnregisterListener(VxBaseDriver& driver, unsigned long device, unsigned long variable,
                            IVariableCallback& listener) override;
  int RegisterBinding(VxBaseDriver& driver, unsigned long bindingId, int type,
                      const std::string& name) override;
  void RegisterBindingClass(VxBaseDriver& driver, unsigned long bindingId,
                            const std::string& bindingClass) override;
  void UnregisterBinding(VxBaseDriver& driver, unsigned long bindingId) override;
  void FireEvent(VxBaseDriver& driver, unsigned long eventId) override;
  vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver& driver) override;
  void SendBoundCall(VxBaseDriver& driver, unsigned long bindingId, const IBindMessage& message,
                     ICmdReturn* result) override;
  void ConSendDataToUI(VxBaseDriver& driver, const VxXML::INode& data) override;
  void DmInvalidateState(VxBaseDriver& driver) override;
  void EmRemoveByOwner(VxBaseDriver& driver, unsigned long ownerId, int kind) override;
  void LogMessage(VxBaseDriver& driver, unsigned int level, const char* text) override;

 private:
  using Variable = std::pair<unsigned long, unsigned long>;
  struct Listener {
    const IDriver* driver;
    Variable variable;
    IVariableCallback* callback;
  };
  struct Binding {
    int type = 0;
    std::string name;
    std::string bindingClass;
  };

  void Tick(VxBaseDriver& driver, unsigned long timer);

  DaySeed& seed_;
  IHostObserver& observer_;
  DriverTimers timers_;
  std::map<unsigned long, const IDriver*> timerOwners_;
  ICallRecorder* recorder_ = nullptr;
  std::map<Variable, std::string> variables_;
  std::vector<Listener> listeners_;
  std::map<std::pair<const IDriver*, unsigned long>, Binding> bindings_;
  std::map<std::string, void*> queries_;
};

}  // namespace controller
