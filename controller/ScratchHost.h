#pragma once

#include "controller/Place.h"
#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

namespace controller {

/// A host that knows the place of the house and ignores everything else. See ScratchAgent.
class ScratchHost : public IInstanceManager, public vx::IDriverHost {
 public:
  explicit ScratchHost(const Place& place) : place_(place) {}
  virtual ~ScratchHost() = default;

  int RegisterQuery(const char*, void*) override { return 1; }
  void UnregisterQuery(const char*) override {}
  void* FindQuery(const char*) override { return nullptr; }
  vx::IDriverHost& DriverHost() override { return *this; }

  unsigned long AddTimer(VxBaseDriver&, unsigned long, unsigned int) override { return ++timers_; }
  void KillTimer(VxBaseDriver&, unsigned long) override {}
  /// Delivers the latitude or longitude.
  void VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                          IVariableCallback& listener) override;
  void VmUnregisterListener(VxBaseDriver&, unsigned long, unsigned long,
                            IVariableCallback&) override {}
  int RegisterBinding(VxBaseDriver&, unsigned long, int, const std::string&) override { return 0; }
  void RegisterBindingClass(VxBaseDriver&, unsigned long, const std::string&) override {}
  void UnregisterBinding(VxBaseDriver&, unsigned long) override {}
  void FireEvent(VxBaseDriver&, unsigned long) override {}
  vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver&) override { return nullptr; }
  void SendBoundCall(VxBaseDriver&, unsigned long, const IBindMessage&, ICmdReturn*) override {}
  void ConSendDataToUI(VxBaseDriver&, const VxXML::INode&) override {}
  void DmInvalidateState(VxBaseDriver&) override {}
  void EmRemoveByOwner(VxBaseDriver&, unsigned long, int) override {}
  void LogMessage(VxBaseDriver&, unsigned int, const char*) override {}

 private:
  Place place_;
  unsigned long timers_ = 0;
};

}  // namespace controller
